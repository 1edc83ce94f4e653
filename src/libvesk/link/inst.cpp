// The program's link to its server: the message link, waited for and asked about.
#include "libvesk/link/inst.h"

#include "libvesk/link/linktime.h"

namespace {

constexpr double SLICE_SECONDS = 0.1;  // of a wait, between two looks at the exit request

}  // namespace

BOOL INST_connect(INST_link* link, const VESKMSG_connect_params* params) {
    link->msg_lnk_up = FALSE;
    return VESKMSG_connect(&link->msg_lnk, params);
}

BOOL INST_wait_connected(INST_link* link) {
    VESKMSG_link* const msg_lnk = &link->msg_lnk;
    LINKTIME time(1.0);
    while (msg_lnk->stat == VESKMSG_S_AWAITING_HANDSHAKE && time.look() < INST_CONNECT_SECONDS) {
        if (UTIL_exit_poll()) return FALSE;
        VESKMSG_wait({&msg_lnk, 1}, SLICE_SECONDS);
    }
    return INST_test_connected(link);
}

BOOL INST_test_connected(INST_link* link) {
    link->msg_lnk_up = link->msg_lnk.stat == VESKMSG_S_OPEN;
    return link->msg_lnk_up;
}

void INST_disconnect(INST_link* link) {
    VESKMSG_disconnect(&link->msg_lnk);
    link->msg_lnk_up = FALSE;
}
