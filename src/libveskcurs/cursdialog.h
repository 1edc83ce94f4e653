// The dialog toolkit: framed pop-ups with buttons, entries and labels, stacked above every window, the
// topmost taking all keys. Attributes are handed in; the look, the keys and the placing are decided here.
//
// Every operation that takes user data copies `size` bytes of it and hands the copy to the callbacks (null
// and 0: none). Callbacks may open and close dialogs, their own included; the records of a dialog live until
// its last callback has returned. A null dialog or widget is ignored by every operation.
#pragma once

#include <cstddef>

#include "libvesk/support/types.h"

struct CURSDIALOG_type;    // one open dialog
struct CURSDIALOG_widget;  // one button, entry or label, owned by its dialog

struct CURSDIALOG_button_action {
    BOOL close_dialog;
};
struct CURSDIALOG_entry_action {
    BOOL close_dialog;
    BOOL revert_value;   // put the entry's previous text back
    const char* reason;  // with revert_value: shown in the bottom border until the next key; static text, or
                         // null for "not accepted". The toolkit copies it when the callback returns
};

using CURSDIALOG_button_cb = void (*)(CURSDIALOG_type* dlg, void* dlg_user_data, CURSDIALOG_widget* wd,
                                      void* wd_user_data, CURSDIALOG_button_action* act);
// `str` is a copy of the text entered, which already is the entry's value. The callback may change it in
// place, up to max_len characters (it has room for 128): what it leaves there becomes the value, unless
// reverted.
using CURSDIALOG_entry_verify_cb = void (*)(CURSDIALOG_type* dlg, void* dlg_user_data, CURSDIALOG_widget* wd,
                                            void* wd_user_data, char* str, CURSDIALOG_entry_action* act);
using CURSDIALOG_closed_cb = void (*)(CURSDIALOG_type* dlg, void* dlg_user_data);
using CURSDIALOG_cleanup_cb = void (*)(void* dlg_user_data);

// Styles of widgets. A style 0 is drawn like CURSDIALOG_STYLE_LIST.
inline constexpr int CURSDIALOG_STYLE_ROW = 1;      // buttons side by side: "< OK >"
inline constexpr int CURSDIALOG_STYLE_LIST = 2;     // one per row; also ordinary entries
inline constexpr int CURSDIALOG_STYLE_CLOSE = 3;    // closing and emphasised buttons
inline constexpr int CURSDIALOG_STYLE_MENU = 8;     // entries laid out in columns
inline constexpr int CURSDIALOG_STYLE_HIDDEN = 16;  // entries only: one "*" per character

[[nodiscard]] BOOL CURSDIALOG_init();
// Closes every open dialog from the top down; closed and cleanup callbacks run as ever, so that what dialogs
// own is released. A callback that opens a dialog meanwhile gets null.
void CURSDIALOG_cleanup();
// Draws the open dialogs, re-centred when the screen changed. Once per pass.
void CURSDIALOG_update();
// TRUE when an open dialog consumed the key: it consumes every key but KEY_RESIZE, which is none.
[[nodiscard]] BOOL CURSDIALOG_keypress(int key);
[[nodiscard]] BOOL CURSDIALOG_active();

// Opens a dialog, on top. Width 0 sizes it to its widgets, else it has that many interior columns. Both
// callbacks may be null, and each runs once: `closed` when it closes for any reason, `cleanup` when it is
// destroyed, which is after the last callback of the toolkit that was running has returned.
[[nodiscard]] CURSDIALOG_type* CURSDIALOG_create(int attr, int hl_attr, const char* title, int width,
                                                 const void* user_data, std::size_t user_data_size,
                                                 CURSDIALOG_closed_cb closed, CURSDIALOG_cleanup_cb cleanup);
// A button at column x, row y inside the frame, both from 1; width 0 sizes it to its label. `hot_key` presses
// it directly (0: none). `reserved` is always 0. Null when it cannot be made.
CURSDIALOG_widget* CURSDIALOG_add_button(CURSDIALOG_type* dlg, int x, int y, int width, int style,
                                         int hot_key, const char* label, CURSDIALOG_button_cb cb,
                                         const void* user_data, std::size_t user_data_size, int reserved = 0);
// A labelled one-line entry with `initial` in it, at most `max_len` characters. Width 0: a usable one, or to
// the dialog's edge when that has a width; otherwise label and value together take `width` columns (the value
// alone, when the label leaves it none of them).
CURSDIALOG_widget* CURSDIALOG_add_entry(CURSDIALOG_type* dlg, int x, int y, int width, int style, int hot_key,
                                        const char* label, const char* initial, int max_len,
                                        CURSDIALOG_entry_verify_cb verify, const void* user_data,
                                        std::size_t user_data_size, int reserved = 0);
// A fixed line of text.
CURSDIALOG_widget* CURSDIALOG_add_label(CURSDIALOG_type* dlg, int x, int y, int width, int style,
                                        const char* text);

// Replaces a button's or label's text; the dialog grows if it must.
void CURSDIALOG_setlabel(CURSDIALOG_widget* wd, const char* text);
// An entry's committed value, a button's or label's text; "" for a null widget. dst null: the toolkit's own
// text, valid until it changes; else a terminated copy in dst, and dst.
const char* CURSDIALOG_getvalue(CURSDIALOG_widget* wd, char* dst, std::size_t dst_size);
// Moves the focus to a button or entry of that dialog. Editing under way elsewhere in it ends uncommitted.
void CURSDIALOG_force_widget_focus(CURSDIALOG_type* dlg, CURSDIALOG_widget* wd);
// Puts the entry into editing at once, the cursor behind its text; Escape then closes the dialog.
void CURSDIALOG_force_entry_input(CURSDIALOG_type* dlg, CURSDIALOG_widget* wd);
// Closing a dialog that is closed already does nothing.
void CURSDIALOG_close(CURSDIALOG_type* dlg);

// Button callback that only closes.
void CURSDIALOG_DEFAULT_button_close(CURSDIALOG_type* dlg, void* dlg_user_data, CURSDIALOG_widget* wd,
                                     void* wd_user_data, CURSDIALOG_button_action* act);

struct CURSDIALOG_DEFAULT_entry_numeric_param {
    double min;
    double max;
    char fmt[32];  // printf format of one double in which an accepted value is shown; "": as typed
    CURSDIALOG_entry_verify_cb pass_through;  // gets the accepted text and the same user data; may be null
};
// Entry verify callback: accepts a number within [min, max] and rejects anything else with the reason ("a
// number from 1 to 9999"). An accepted number becomes the value as `fmt` shows it, and `pass_through` gets
// that text; as typed when `fmt` is empty or converts anything but one double, and when its text would be
// longer than the entry takes or be rounded out of the limits. Null user data: number check only.
void CURSDIALOG_DEFAULT_entry_numeric(CURSDIALOG_type* dlg, void* dlg_user_data, CURSDIALOG_widget* wd,
                                      void* wd_user_data, char* str, CURSDIALOG_entry_action* act);
