// Button actions that many display menus share.
#pragma once

#include "cursclient/dialog.h"

// User data: a WINS_UID. Closes and hides that window.
void DIALOG_DEFAULT_button_hide_window_close(CURSDIALOG_type* dlg, void* dlg_user_data, CURSDIALOG_widget* wd,
                                             void* wd_user_data, CURSDIALOG_button_action* act);

struct DIALOG_DEFAULT_button_set_logging_param {
    BOOL set_to;        // TRUE switches logging on
    char net_name[32];  // whose logging; empty: no destination
};
static_assert(sizeof(DIALOG_DEFAULT_button_set_logging_param) == 33);

// User data: the record above. Closes, asks for the password and sends MSG_LOG_SET_STATE.
void DIALOG_DEFAULT_button_set_logging_close(CURSDIALOG_type* dlg, void* dlg_user_data, CURSDIALOG_widget* wd,
                                             void* wd_user_data, CURSDIALOG_button_action* act);
// Its password callback (the name is spelled so); frees `pd`.
void DIALOG_DEFALT_set_logging_passwd(BOOL passok, void* pd);
