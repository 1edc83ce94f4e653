// Types that the callers of the dialog toolkit and its inner parts share: handles, the callbacks with the
// records that they fill in, and the styles of widgets.
#pragma once

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
