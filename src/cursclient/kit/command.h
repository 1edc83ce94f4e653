// Commands of instrument displays: buttons, the password and confirmations keep only the display's uid and
// find the display again when the operator has answered; by then it may be gone. Also the messages that
// commands send and the dialogs that ask for their values.
#pragma once

#include <new>
#include <string>

#include "cursclient/dialog.h"
#include "cursclient/display.h"
#include "cursclient/kit/insthead.h"
#include "libvesk/link/veskmsg.h"

// An action on a display, to be done some time later. COMMAND_do makes it of a function of the kind's own.
struct COMMAND_action {
    void (*call)(void* pd, DWORD uid, const void* context);
    const void* context;  // static; what `call` wants besides
};
template <auto function, class R>
[[nodiscard]] constexpr COMMAND_action COMMAND_action_of(void (* /*its type*/)(R* pd, DWORD uid)) {
    return {[](void* pd, DWORD uid, const void*) { function(static_cast<R*>(pd), uid); }, nullptr};
}
template <auto function>
inline constexpr COMMAND_action COMMAND_do = COMMAND_action_of<function>(function);

// The record of a display, or null when it is gone or has no name to address.
template <class R>
[[nodiscard]] R* COMMAND_display(DWORD uid) {
    R* pd = static_cast<R*>(DISPLAY_privatedata_by_uid(uid));
    return pd != nullptr && pd->name[0] != '\0' ? pd : nullptr;
}

enum COMMAND_guard {
    COMMAND_FREE,
    COMMAND_PASSWORD,
    COMMAND_CONFIRM,  // the password too; where the settings say so, a question first that names the command
};

// Runs the action if the display is still there: at once, or after the password was given.
void COMMAND_run(DWORD uid, COMMAND_action action, COMMAND_guard guard);

// ---- messages

// To the instrument alone, without a record or with one.
bool COMMAND_send(const INSTDISP_head* pd, NETMSG_type msg);
// As VESKMSG_queue_message on the console's link.
bool COMMAND_queue(NETMSG_type msg, DWORD flags, const char* dest, const void* payload, std::size_t size,
                   const char* record);

// The action of a command without a value.
template <NETMSG_type MSG, class R>
void COMMAND_issue(R* pd, DWORD /*uid*/) {
    COMMAND_send(pd, MSG);
}

template <class Record>
bool COMMAND_send(const INSTDISP_head* pd, NETMSG_type msg, Record record) {
    return COMMAND_queue(msg, 0, pd->name, &record, sizeof record, NETDSD_of<Record>()->name);
}
// To nobody in particular, with the given flags.
template <class Record>
bool COMMAND_broadcast(NETMSG_type msg, DWORD flags, Record record) {
    return COMMAND_queue(msg, flags, nullptr, &record, sizeof record, NETDSD_of<Record>()->name);
}

// ---- dialogs

struct COMMAND_place {
    int x, y, width, style;
};

// A dialog whose user data is the display's uid.
[[nodiscard]] CURSDIALOG_type* COMMAND_dialog(const char* title, DWORD uid);
// A button that closes its dialog and runs the action.
CURSDIALOG_widget* COMMAND_button(CURSDIALOG_type* dlg, COMMAND_place place, int hot_key, const char* label,
                                  DWORD uid, COMMAND_action action, COMMAND_guard guard);
// "Yes" and "No" under a question in the title, "No" focused; yes runs the action if the display is still
// there.
void COMMAND_confirm(const char* question, DWORD uid, COMMAND_action on_yes);
// The pair that ends a dialog, side by side from column 1 on row y, each `width` wide: `ok` runs the callback
// with `user_data` (which closes the dialog itself), the other one (focused) only closes.
void COMMAND_ending(CURSDIALOG_type* dlg, int y, int width, const char* ok_label, CURSDIALOG_button_cb ok,
                    const char* cancel_label = "Cancel", const void* user_data = nullptr,
                    std::size_t user_data_size = 0);
// A numeric entry at column 1; null limits: any number will do. `limits` may begin a larger record that its
// pass_through wants, of `limits_size` bytes.
CURSDIALOG_widget* COMMAND_number_entry(
    CURSDIALOG_type* dlg, int y, const char* label, const char* initial, int max_len,
    const CURSDIALOG_DEFAULT_entry_numeric_param* limits,
    std::size_t limits_size = sizeof(CURSDIALOG_DEFAULT_entry_numeric_param));
[[nodiscard]] double COMMAND_entry_value(CURSDIALOG_widget* entry);
// "[*] text" or "[ ] text".
[[nodiscard]] std::string COMMAND_check_label(bool on, const char* text);

// Says in the name of the display's unit that the allocation of which `allocation` is the assertion has
// failed.
void COMMAND_no_memory(DWORD uid, const char* allocation, int line = __builtin_LINE());

// A dialog with a record of its own, zero-filled or as P initialises it, that lives and dies with it. The
// dialog's user data is a pointer to it: COMMAND_param<P> reads that in callbacks.
template <class P>
struct COMMAND_form {
    CURSDIALOG_type* dlg;  // null: not made, and neither was `param`
    P* param;
};
template <class P>
[[nodiscard]] P* COMMAND_param(void* dlg_user_data) {
    return *static_cast<P**>(dlg_user_data);
}
template <class P>
[[nodiscard]] COMMAND_form<P> COMMAND_create_form(const char* title, CURSDIALOG_closed_cb closed = nullptr) {
    P* param = new (std::nothrow) P{};
    if (param == nullptr) return {nullptr, nullptr};
    const auto cleanup = [](void* dlg_user_data) { delete COMMAND_param<P>(dlg_user_data); };
    CURSDIALOG_type* dlg = DIALOG_create(title, 0, &param, sizeof param, closed, cleanup);
    if (dlg != nullptr) return {dlg, param};
    delete param;
    return {nullptr, nullptr};
}
