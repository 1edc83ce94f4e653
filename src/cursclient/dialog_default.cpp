// Buttons keep a window's identity or a copy of what they need: the display may go while they wait.
#include "cursclient/dialog_default.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include "cursclient/globals.h"
#include "cursclient/passwd.h"
#include "cursclient/send.h"
#include "libvesk/messages/records/log.h"
#include "libvesk/support/util.h"

void DIALOG_DEFAULT_button_hide_window_close(CURSDIALOG_type* /*dlg*/, void* /*dlg_user_data*/,
                                             CURSDIALOG_widget* /*wd*/, void* wd_user_data,
                                             CURSDIALOG_button_action* act) {
    act->close_dialog = TRUE;
    WINS_window* win = WINS_window_by_uid(static_cast<const WINS_UID*>(wd_user_data));
    if (win != nullptr) WINS_hide_window(win);
}

void DIALOG_DEFAULT_button_set_logging_close(CURSDIALOG_type* /*dlg*/, void* /*dlg_user_data*/,
                                             CURSDIALOG_widget* /*wd*/, void* wd_user_data,
                                             CURSDIALOG_button_action* act) {
    act->close_dialog = TRUE;
    if (wd_user_data == nullptr) return;
    // The button's own data go with the dialog; the check may outlive it.
    void* pcopy = std::malloc(sizeof(DIALOG_DEFAULT_button_set_logging_param));
    if (pcopy == nullptr) {
        UTIL_assertion_failed_errno(
            "dialog", __LINE__, "(pcopy = malloc(sizeof(DIALOG_DEFAULT_button_set_logging_param))) != NULL",
            errno);
        return;
    }
    std::memcpy(pcopy, wd_user_data, sizeof(DIALOG_DEFAULT_button_set_logging_param));
    PASSWD_checkpass(DIALOG_DEFALT_set_logging_passwd, pcopy);
}

void DIALOG_DEFALT_set_logging_passwd(BOOL passok, void* pd) {
    if (pd == nullptr) return;
    DIALOG_DEFAULT_button_set_logging_param prm;
    std::memcpy(&prm, pd, sizeof prm);
    std::free(pd);
    if (!passok) return;
    const std::string dest(UTIL_field(prm.net_name));
    SEND_record(MSG_LOG_SET_STATE, FRAME_TO_ALL, dest.empty() ? nullptr : dest.c_str(),
                NET_LOG_SetState{.enable = prm.set_to});
}
