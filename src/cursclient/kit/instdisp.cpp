// The part of every instrument display that depends on no kind: what is made from an announcement and taken
// down again, whose messages count, the logging flag and the top of the menu.
#include "cursclient/kit/instdisp.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "cursclient/dialog_default.h"
#include "libvesk/messages/records/log.h"
#include "libvesk/support/util.h"

namespace {

constexpr std::size_t IDENT_SIZE = 64;  // of the window's "type:source", terminator included

void copy_announcement(INSTDISP_head* pd, const DISPLAY_match_params* mps) {
    UTIL_strcpynt(pd->name, mps->src_name);
    UTIL_strcpynt(pd->display_name, mps->display_name);
    UTIL_strcpynt(pd->type, mps->type);
    pd->id_ch = mps->id_ch;
}

}  // namespace

bool INSTDISP_open(INSTDISP_head* pd, const DISPLAY_match_params* mps, int cols, int rows) {
    pd->win = nullptr;
    pd->mme = nullptr;
    pd->se = nullptr;
    pd->is_logging = TRUE;
    SFMT_init_buffer(&pd->sbfr);
    if (mps == nullptr) return false;
    copy_announcement(pd, mps);
    char ident[IDENT_SIZE];
    std::snprintf(ident, sizeof ident, "%s:%s", pd->type, pd->name);
    pd->win = WINS_create(ident, cols, rows);
    if (pd->win == nullptr) return false;
    if (pd->id_ch != 0) {
        pd->se = STATUS_addentry(pd->id_ch, TRUE);
        if (pd->se == nullptr) return false;
    }
    pd->mme = MAINMENU_addentry(pd->id_ch, pd->display_name, MAINMENU_default_focus_window, pd->win);
    return pd->mme != nullptr;
}

void INSTDISP_close(INSTDISP_head* pd) {
    SFMT_destroy_buffer(&pd->sbfr);
    if (pd->mme != nullptr) MAINMENU_deleteentry(pd->mme);
    pd->mme = nullptr;
    if (pd->se != nullptr) STATUS_deleteentry(pd->se);
    pd->se = nullptr;
    if (pd->win != nullptr) WINS_delete(pd->win);
    pd->win = nullptr;
}

bool INSTDISP_is_own(const INSTDISP_head* pd, const VESKMSG_proc_msg* pm) {
    return pm->src_name != nullptr && std::strcmp(pm->src_name, pd->name) == 0;
}

void INSTDISP_take_log_info(INSTDISP_head* pd, const VESKMSG_proc_msg* pm) {
    if (pm->msg->msg != MSG_LOG_INFO || pd->se == nullptr) return;
    const auto* info = VESKMSG_payload<NET_LOG_Info>(pm);
    if (info == nullptr) return;
    pd->is_logging = info->logging;
    STATUS_setlogging(pd->se, pd->is_logging);
}

CURSDIALOG_type* INSTDISP_menu(const INSTDISP_head* pd, const char* title, DWORD uid) {
    CURSDIALOG_type* dlg = COMMAND_dialog(title, uid);
    if (pd->win == nullptr) return dlg;
    WINS_UID ident;
    WINS_uid_of_window(pd->win, &ident);
    CURSDIALOG_add_button(dlg, 1, 1, 0, CURSDIALOG_STYLE_LIST, '1', "1 Hide window",
                          DIALOG_DEFAULT_button_hide_window_close, ident, sizeof ident);
    return dlg;
}

INSTDISP_clock INSTDISP_time(FTIME t) {
    static constexpr double DAY = 86400.0;
    static constexpr double FAR = 1e15;  // beyond, a double no longer tells seconds
    INSTDISP_clock clock{"--:--:--"};
    if (!(std::fabs(t) < FAR)) return clock;
    const double of_day = std::floor(t) - std::floor(t / DAY) * DAY;
    const auto s = static_cast<unsigned>(of_day);
    std::snprintf(clock.text, sizeof clock.text, "%02u:%02u:%02u", s / 3600 % 24, s / 60 % 60, s % 60);
    return clock;
}

int INSTDISP_next_mode(int mode) {
    return mode == 0 || mode == 1 ? mode + 1 : 0;
}

std::string INSTDISP_mode_label(char hot_key, int mode) {
    static constexpr const char* NAMES[] = {"instantanous data", "running average", "last average"};
    const std::size_t known = mode < 0 ? 0 : static_cast<std::size_t>(mode);
    return std::string(1, hot_key) + " Displaying " +
           NAMES[known < std::size(NAMES) ? known : std::size(NAMES) - 1];
}
