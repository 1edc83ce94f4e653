// The password guard. A check that has to ask lives in the user data of its prompt: whoever answers first
// takes the callback out of that record, so that it runs once whatever closes the dialog.
#include "cursclient/passwd.h"

#include <curses.h>

#include <cstring>
#include <utility>

#include "cursclient/dialog.h"
#include "cursclient/globals.h"
#include "libvesk/support/util.h"

char g_passwd[64];

namespace {

constexpr char SETTING[] = "Settings;Password";
constexpr int MAX_LENGTH = static_cast<int>(sizeof g_passwd) - 1;

int dialog_width() {
    return 2 * COLS / 3;
}

void answer(void* dlg_user_data, BOOL passok) {
    auto* check = static_cast<PASSWD_checkpass_param*>(dlg_user_data);
    if (check == nullptr) return;
    const PASSWD_callback cb = std::exchange(check->cb, nullptr);
    if (cb != nullptr) cb(passok, check->param);
}

void PASSWD_dialog_verify(CURSDIALOG_type* /*dlg*/, void* dlg_user_data, CURSDIALOG_widget* /*wd*/,
                          void* /*wd_user_data*/, char* str, CURSDIALOG_entry_action* act) {
    act->close_dialog = TRUE;
    answer(dlg_user_data, std::strcmp(str, g_passwd) == 0);
}

void PASSWD_dialog_closed(CURSDIALOG_type* /*dlg*/, void* dlg_user_data) {
    answer(dlg_user_data, FALSE);
}

void PASSWD_change_okay_button(CURSDIALOG_type* /*dlg*/, void* /*dlg_user_data*/, CURSDIALOG_widget* /*wd*/,
                               void* wd_user_data, CURSDIALOG_button_action* act) {
    act->close_dialog = TRUE;
    if (wd_user_data == nullptr) return;
    CURSDIALOG_widget* entry;
    std::memcpy(&entry, wd_user_data, sizeof entry);
    CURSDIALOG_getvalue(entry, g_passwd, sizeof g_passwd);
}

// FALSE when a widget cannot be made.
BOOL add_change_widgets(CURSDIALOG_type* dlg) {
    const int button_width = COLS / 3;
    CURSDIALOG_widget* entry = CURSDIALOG_add_entry(dlg, 1, 1, 0, CURSDIALOG_STYLE_LIST, 0,
                                                    "Password: ", g_passwd, MAX_LENGTH, nullptr, nullptr, 0);
    return entry != nullptr &&
           CURSDIALOG_add_button(dlg, 1, 2, button_width, CURSDIALOG_STYLE_ROW, 0, "OK",
                                 PASSWD_change_okay_button, &entry, sizeof entry) != nullptr &&
           CURSDIALOG_add_button(dlg, button_width + 1, 2, button_width, CURSDIALOG_STYLE_ROW, 0, "Cancel",
                                 CURSDIALOG_DEFAULT_button_close, nullptr, 0) != nullptr;
}

}  // namespace

BOOL PASSWD_init() {
    UTIL_strcpynt(g_passwd, CONF_lookup(g_conf, SETTING));
    return TRUE;
}

void PASSWD_cleanup() {}

void PASSWD_save_config() {
    if (g_conf != nullptr) CONF_set(g_conf, SETTING, g_passwd);
}

void PASSWD_checkpass(PASSWD_callback cb, void* param) {
    if (cb == nullptr) return;
    if (g_passwd[0] == '\0') {
        cb(TRUE, param);
        return;
    }
    const PASSWD_checkpass_param check{.cb = cb, .param = param};
    CURSDIALOG_type* dlg =
        DIALOG_create("Enter password", dialog_width(), &check, sizeof check, PASSWD_dialog_closed);
    if (dlg == nullptr) {
        cb(FALSE, param);
        return;
    }
    CURSDIALOG_widget* entry = CURSDIALOG_add_entry(dlg, 1, 1, 0, CURSDIALOG_STYLE_HIDDEN, 0, "", "",
                                                    MAX_LENGTH, PASSWD_dialog_verify, nullptr, 0);
    if (entry == nullptr)
        CURSDIALOG_close(dlg);  // its closed callback answers
    else
        CURSDIALOG_force_entry_input(dlg, entry);
}

void PASSWD_display_change_dialog() {
    CURSDIALOG_type* dlg = DIALOG_create("Set password", dialog_width());
    if (dlg != nullptr && !add_change_widgets(dlg)) CURSDIALOG_close(dlg);
}
