// Carries an operator's command from its button to its message. Everything that waits for the operator holds
// the uid of the display and never a pointer to it.
#include "cursclient/kit/command.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <type_traits>

#include "cursclient/globals.h"
#include "cursclient/passwd.h"
#include "cursclient/send.h"
#include "cursclient/settings.h"
#include "libvesk/support/util.h"

namespace {

// The parameter of a button, a confirmation and the password prompt.
struct pending {
    DWORD uid;
    COMMAND_action action;
    COMMAND_guard guard;
    char label[48];  // of the command, for a question; "" for none
};
static_assert(std::is_trivially_copyable_v<pending>);

void run_now(DWORD uid, const COMMAND_action& action) {
    auto* pd = COMMAND_display<INSTDISP_head>(uid);
    if (pd != nullptr) action.call(pd, uid, action.context);
}

void password_given(BOOL passok, void* param) {
    const pending p = *static_cast<pending*>(param);
    delete static_cast<pending*>(param);
    if (passok) run_now(p.uid, p.action);
}

void run_guarded(DWORD uid, const COMMAND_action& action) {
    auto* p = new (std::nothrow) pending{uid, action, COMMAND_FREE, ""};
    if (p == nullptr) return COMMAND_no_memory(uid, "(pd = malloc(sizeof(DWORD))) != NULL");
    PASSWD_checkpass(password_given, p);
}

void ask_first(const pending& p);

void pressed(CURSDIALOG_type* /*dlg*/, void* /*dlg_user_data*/, CURSDIALOG_widget* /*wd*/, void* wd_user_data,
             CURSDIALOG_button_action* act) {
    act->close_dialog = TRUE;
    const pending p = *static_cast<pending*>(wd_user_data);
    if (p.guard == COMMAND_CONFIRM && SETTINGS_on(SETTINGS_CONFIRM))
        ask_first(p);
    else
        COMMAND_run(p.uid, p.action, p.guard);
}

void ask(const char* question, const pending& p) {
    static constexpr int WIDTH = 18;
    COMMAND_ending(COMMAND_dialog(question, p.uid), 1, WIDTH, "Yes", pressed, "No", &p, sizeof p);
}

// Names the instrument and the command; the password comes after the Yes.
void ask_first(const pending& p) {
    const auto* pd = COMMAND_display<INSTDISP_head>(p.uid);
    if (pd == nullptr) return;
    std::string_view what = p.label;
    if (what.size() > 2 && what[1] == ' ') what.remove_prefix(2);  // "4 Advance Spot"
    pending yes = p;
    yes.guard = COMMAND_PASSWORD;
    ask((std::string(pd->name) + ": " + std::string(what) + "?").c_str(), yes);
}

}  // namespace

void COMMAND_no_memory(DWORD uid, const char* allocation, int line) {
    const auto* pd = COMMAND_display<INSTDISP_head>(uid);
    const std::string source = std::string("displays/") + (pd != nullptr ? pd->type : "");
    UTIL_assertion_failed_errno(source.c_str(), line, allocation, ENOMEM);
}

void COMMAND_run(DWORD uid, COMMAND_action action, COMMAND_guard guard) {
    if (guard != COMMAND_FREE)
        run_guarded(uid, action);
    else
        run_now(uid, action);
}

bool COMMAND_queue(NETMSG_type msg, DWORD flags, const char* dest, const void* payload, std::size_t size,
                   const char* record) {
    return SEND_message(msg, flags, dest, payload, size, record);
}

bool COMMAND_send(const INSTDISP_head* pd, NETMSG_type msg) {
    return COMMAND_queue(msg, 0, pd->name, nullptr, 0, nullptr);
}

CURSDIALOG_type* COMMAND_dialog(const char* title, DWORD uid) {
    return DIALOG_create(title, 0, &uid, sizeof uid);
}

CURSDIALOG_widget* COMMAND_button(CURSDIALOG_type* dlg, COMMAND_place place, int hot_key, const char* label,
                                  DWORD uid, COMMAND_action action, COMMAND_guard guard) {
    pending p{uid, action, guard, ""};
    UTIL_strcpynt(p.label, label);
    return CURSDIALOG_add_button(dlg, place.x, place.y, place.width, place.style, hot_key, label, pressed, &p,
                                 sizeof p);
}

void COMMAND_confirm(const char* question, DWORD uid, COMMAND_action on_yes) {
    ask(question, {uid, on_yes, COMMAND_FREE, ""});
}

void COMMAND_ending(CURSDIALOG_type* dlg, int y, int width, const char* ok_label, CURSDIALOG_button_cb ok,
                    const char* cancel_label, const void* user_data, std::size_t user_data_size) {
    CURSDIALOG_add_button(dlg, 1, y, width, CURSDIALOG_STYLE_ROW, 0, ok_label, ok, user_data, user_data_size);
    CURSDIALOG_widget* cancel =
        CURSDIALOG_add_button(dlg, 1 + width, y, width, CURSDIALOG_STYLE_ROW, 0, cancel_label,
                              CURSDIALOG_DEFAULT_button_close, nullptr, 0);
    CURSDIALOG_force_widget_focus(dlg, cancel);
}

CURSDIALOG_widget* COMMAND_number_entry(CURSDIALOG_type* dlg, int y, const char* label, const char* initial,
                                        int max_len, const CURSDIALOG_DEFAULT_entry_numeric_param* limits,
                                        std::size_t limits_size) {
    return CURSDIALOG_add_entry(dlg, 1, y, 0, CURSDIALOG_STYLE_LIST, 0, label, initial, max_len,
                                CURSDIALOG_DEFAULT_entry_numeric, limits,
                                limits != nullptr ? limits_size : 0);
}

double COMMAND_entry_value(CURSDIALOG_widget* entry) {
    return UTIL_atofv(CURSDIALOG_getvalue(entry, nullptr, 0));
}

std::string COMMAND_check_label(bool on, const char* text) {
    return std::string(on ? "[*] " : "[ ] ") + text;
}
