// The dialog toolkit: framed pop-ups with buttons, entries and labels, stacked above every window, the
// topmost taking all keys. Attributes are handed in; the look, the keys and the placing are decided here.
//
// Every operation that takes user data copies `size` bytes of it and hands the copy to the callbacks (null
// and 0: none). Callbacks may open and close dialogs, their own included; the records of a dialog live until
// its last callback has returned. A null dialog or widget is ignored by every operation.
#pragma once

#include <cstddef>

#include "libveskcurs/cursdialog_types.h"

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
