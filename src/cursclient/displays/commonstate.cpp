// The display without a window: it only listens, so that a value which several displays need is kept once and
// from the very start.
#include "cursclient/displays_generated.h"
#include "cursclient/kit/spancheck.h"

namespace {

BOOL COMMONSTATE_init(void*, DISPLAY_common_params*, DISPLAY_match_params*, void*) {
    g_spancheck_duration = {.air_flush = 180.0, .air_sample = 600.0, .co2_flush = 600.0, .co2_sample = 300.0};
    return TRUE;
}

void COMMONSTATE_cleanup(void*) {}

void COMMONSTATE_msg_proc(void*, DISPLAY_common_params*, DISPLAY_msg_params* mp, void*) {
    if (mp->pm->msg->msg != MSG_COMMON_NEPH_SPANCHECK_DURATION) return;
    if (const auto* duration = VESKMSG_payload<NET_COMMON_Neph_SpancheckDuration>(mp->pm))
        g_spancheck_duration = *duration;
}

}  // namespace

const DISPLAY_DECL DDCL_PERSISTENT_COMMONSTATE = {
    .sz_private = 0,
    .cb_init = COMMONSTATE_init,
    .cb_cleanup = COMMONSTATE_cleanup,
    .cb_update = nullptr,
    .cb_msg_proc = COMMONSTATE_msg_proc,
    .cb_keypress = nullptr,
    .cb_match = nullptr,
};
