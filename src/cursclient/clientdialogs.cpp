// Client options take effect at once and last when the configuration is saved; disk operations are orders to
// the data logger, the one that ends its files behind the password.
#include "cursclient/clientdialogs.h"

#include <cstdio>

#include "cursclient/dialog.h"
#include "cursclient/globals.h"
#include "cursclient/passwd.h"
#include "cursclient/send.h"
#include "libvesk/messages/records/log.h"
#include "libvesk/support/util.h"

namespace {

// ---- client options

void MAINMENU_client_options_entry_errordisp_cb(CURSDIALOG_type* /*dlg*/, void* /*dlg_user_data*/,
                                                CURSDIALOG_widget* /*wd*/, void* /*wd_user_data*/, char* str,
                                                CURSDIALOG_entry_action* /*act*/) {
    g_errordisp_show_time = UTIL_atofv(str);
}

const char* color_label() {
    return g_conf_enable_color ? "[*] Enable colors" : "[ ] Enable colors";
}

void toggle_color(CURSDIALOG_type* /*dlg*/, void* /*dlg_user_data*/, CURSDIALOG_widget* wd,
                  void* /*wd_user_data*/, CURSDIALOG_button_action* /*act*/) {
    g_conf_enable_color = !g_conf_enable_color;
    CURSDIALOG_setlabel(wd, color_label());
    WINS_setcolors(g_conf_enable_color);
}

void change_password(bool passok, void* /*param*/) {
    if (passok) PASSWD_display_change_dialog();
}

void set_password(CURSDIALOG_type* /*dlg*/, void* /*dlg_user_data*/, CURSDIALOG_widget* /*wd*/,
                  void* /*wd_user_data*/, CURSDIALOG_button_action* /*act*/) {
    PASSWD_checkpass(change_password, nullptr);
}

CURSDIALOG_widget* add_error_time(CURSDIALOG_type* dlg) {
    constexpr int COLUMNS = 30;
    constexpr int MAX_CHARACTERS = 20;
    const CURSDIALOG_DEFAULT_entry_numeric_param numeric{
        .min = 0,
        .max = 1e16,
        .fmt = "%.1f",
        .pass_through = MAINMENU_client_options_entry_errordisp_cb,
    };
    char seconds[MAX_CHARACTERS + 1];
    std::snprintf(seconds, sizeof seconds, "%.1f", g_errordisp_show_time);
    return CURSDIALOG_add_entry(dlg, 1, 1, COLUMNS, CURSDIALOG_STYLE_LIST, 0, "Error display time: ", seconds,
                                MAX_CHARACTERS, CURSDIALOG_DEFAULT_entry_numeric, &numeric, sizeof numeric);
}

// ---- disk operations

void flush_buffers(CURSDIALOG_type* /*dlg*/, void* /*dlg_user_data*/, CURSDIALOG_widget* /*wd*/,
                   void* /*wd_user_data*/, CURSDIALOG_button_action* act) {
    act->close_dialog = true;
    SEND_message(MSG_LOG_FLUSH, FRAME_TO_ALL, nullptr, nullptr, 0, nullptr);
}

void switch_files(bool passok, void* /*param*/) {
    if (!passok) return;
    SEND_record(MSG_LOG_SWITCHFILES, FRAME_TO_ALL, nullptr,
                NET_LOG_SwitchFiles{.switchtime = static_cast<TIME32>(UTIL_ftime())});
}

void start_new_files(CURSDIALOG_type* /*dlg*/, void* /*dlg_user_data*/, CURSDIALOG_widget* /*wd*/,
                     void* /*wd_user_data*/, CURSDIALOG_button_action* act) {
    act->close_dialog = true;
    PASSWD_checkpass(switch_files, nullptr);
}

// ---- building

struct button {
    int row;
    int style;
    const char* label;
    CURSDIALOG_button_cb cb;
};

bool add_buttons(CURSDIALOG_type* dlg, std::initializer_list<button> buttons) {
    for (const button& b : buttons)
        if (CURSDIALOG_add_button(dlg, 1, b.row, 0, b.style, 0, b.label, b.cb, nullptr, 0) == nullptr)
            return false;
    return true;
}

}  // namespace

void CLIENTDIALOGS_client_options(void* /*user_ptr*/) {
    CURSDIALOG_type* dlg = DIALOG_create("Client options", 0);
    if (dlg == nullptr) return;
    if (add_error_time(dlg) == nullptr ||
        !add_buttons(dlg, {
                              {2, CURSDIALOG_STYLE_LIST, color_label(), toggle_color},
                              {4, CURSDIALOG_STYLE_CLOSE, "Set Password", set_password},
                              {5, CURSDIALOG_STYLE_CLOSE, "Close", CURSDIALOG_DEFAULT_button_close},
                          }))
        CURSDIALOG_close(dlg);
}

void CLIENTDIALOGS_disk_operations(void* /*user_ptr*/) {
    CURSDIALOG_type* dlg = DIALOG_create("Disk operations", 0);
    if (dlg == nullptr) return;
    if (!add_buttons(dlg, {
                              {1, CURSDIALOG_STYLE_LIST, "Flush buffers", flush_buffers},
                              {2, CURSDIALOG_STYLE_LIST, "Start new files", start_new_files},
                              {3, CURSDIALOG_STYLE_CLOSE, "Cancel", CURSDIALOG_DEFAULT_button_close},
                          }))
        CURSDIALOG_close(dlg);
}
