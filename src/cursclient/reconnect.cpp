#include "cursclient/reconnect.h"

#include <algorithm>
#include <string>
#include <vector>

#include "cursclient/display.h"
#include "cursclient/globals.h"
#include "cursclient/overview.h"
#include "cursclient/settings.h"
#include "cursclient/wins.h"
#include "cursclient/wintext.h"
#include "libvesk/link/io.h"
#include "libvesk/support/util.h"

namespace {

constexpr double FIRST_PAUSE = 1;     // seconds before the first try
constexpr double LONGEST_PAUSE = 10;  // between two tries

struct waiting {
    BOOL is_waiting = FALSE;
    FTIME next_try = 0;
    double pause = FIRST_PAUSE;
    WINS_window* notice = nullptr;
};
waiting g_waiting;

// Every instrument leaves, as the server would have said it.
void let_instruments_leave() {
    std::vector<std::string> names;
    for (const auto& [name, it] : OVERVIEW_watch().instruments())
        if (it.state != WATCH_GONE) names.push_back(name);
    OVERVIEW_watch().link_lost(UTIL_ftime());
    for (const std::string& name : names) {
        VESKMSG_proc_msg left{
            NETMSG_by_type(MSG_NOTIFY_CLIENT_TERMINATE), nullptr, FRAME_TO_ALL, name.c_str(), "", nullptr};
        DISPLAY_handle_message(&left);
    }
    IO_cleanup();
    if (IO_init()) IO_register_link(&g_lnk);
}

void begin() {
    if (g_conf == nullptr) g_conf = CONF_alloc();
    WINS_save_window_setup();
    let_instruments_leave();
    g_waiting = {
        .is_waiting = TRUE, .next_try = UTIL_ftime() + FIRST_PAUSE, .notice = WINS_create(nullptr, 44, 3)};
    if (g_waiting.notice == nullptr) return;
    g_waiting.notice->flags = WINS_ON_TOP | WINS_SKIP_IN_CYCLE;
    WINS_show_window(g_waiting.notice);
}

void end() {
    WINS_delete(g_waiting.notice);
    g_waiting = {};
    OVERVIEW_note("", "connected to the server again");
}

void try_again() {
    VESKMSG_connect_params cps;
    VESKMSG_init_params(&cps);
    cps.id_str = "CLIENT";
    cps.host_override = g_hostoverride;
    g_waiting.pause = std::min(g_waiting.pause * 2, LONGEST_PAUSE);
    g_waiting.next_try = UTIL_ftime() + g_waiting.pause;
    if (!INST_connect(&g_lnk, &cps)) return;  // said by the next try's result
}

}  // namespace

bool RECONNECT_wait() {
    if (!SETTINGS_on(SETTINGS_RECONNECT)) return false;
    if (!g_waiting.is_waiting) begin();
    return true;
}

void RECONNECT_update() {
    if (!g_waiting.is_waiting) return;
    if (g_lnk.msg_lnk.stat == VESKMSG_S_OPEN) return end();
    if (g_lnk.msg_lnk.stat != VESKMSG_S_AWAITING_HANDSHAKE && UTIL_ftime() >= g_waiting.next_try) try_again();
    if (g_waiting.notice == nullptr || g_waiting.notice->win == nullptr) return;
    WINS_draw_frame(g_waiting.notice, "No server");
    WINTEXT_put_centered(g_waiting.notice, 1, WINS_attr_alarm(), "The server is away; trying again");
}
