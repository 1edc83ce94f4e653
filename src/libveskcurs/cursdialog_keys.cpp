// The keys of a dialog: moving the focus, pressing buttons, editing entries and committing what was entered.
// Any callback run here may close the dialog; its record outlives the call.
#include "libveskcurs/cursdialog_keys.h"

#include <algorithm>
#include <string>
#include <utility>

#include "libvesk/support/util.h"
#include "libveskcurs/cursdialog_focus.h"
#include "libveskcurs/cursdialog_stack.h"
#include "libveskcurs/curskeys.h"

namespace cursdialog {

namespace {

constexpr std::size_t VERIFY_ROOM = 128;  // characters that a verifier may write, at least

void move_focus(CURSDIALOG_type& dlg, CURSDIALOG_widget* wd) {
    if (wd != nullptr) set_focus(dlg, wd);
}

// Enter, Space or a hot key on a widget.
void activate(CURSDIALOG_type& dlg, CURSDIALOG_widget* wd) {
    if (wd->kind == Kind::ENTRY) return start_editing(dlg, wd, wd->value, false);
    set_focus(dlg, wd);
    CURSDIALOG_button_action action{};
    if (wd->pressed != nullptr) wd->pressed(&dlg, dlg.user_data.get(), wd, wd->user_data.get(), &action);
    if (action.close_dialog) close_dialog(&dlg);
}

// The verifier's word on a value that was just entered; it may have changed it, too.
CURSDIALOG_entry_action verify(CURSDIALOG_type& dlg, CURSDIALOG_widget& wd) {
    CURSDIALOG_entry_action action{};
    if (wd.verify == nullptr) return action;
    std::string text = wd.value;
    text.resize(std::max(VERIFY_ROOM, wd.max_len) + 1, '\0');
    wd.verify(&dlg, dlg.user_data.get(), &wd, wd.user_data.get(), text.data(), &action);
    if (!action.revert_value) wd.value.assign(text, 0, std::min(text.find('\0'), wd.max_len));
    return action;
}

// Ends editing with the text as it stands. TRUE when it was accepted and the focus is still there: what moves
// on from the entry may do so.
bool commit(CURSDIALOG_type& dlg) {
    CURSDIALOG_widget& wd = *dlg.focus;
    const std::string before = std::exchange(wd.value, dlg.editor->text());
    dlg.editor.reset();
    const CURSDIALOG_entry_action action = verify(dlg, wd);
    if (action.revert_value) {
        wd.value = before;
        dlg.reason = action.reason != nullptr ? action.reason : "not accepted";
    }
    if (action.close_dialog) close_dialog(&dlg);
    return !action.revert_value && dlg.window != nullptr && dlg.focus == &wd && !dlg.editor;
}

void commit_and_move(CURSDIALOG_type& dlg, int direction) {
    if (commit(dlg)) move_focus(dlg, next_widget(dlg, direction));
}

void editing_key(CURSDIALOG_type& dlg, int key) {
    dlg.follow_focus = true;
    if (CURSKEYS_is_enter(key)) {
        commit(dlg);
        return;
    }
    switch (key) {
        case CURSKEYS_ESCAPE:
            if (dlg.forced_input) return close_dialog(&dlg);
            return dlg.editor.reset();
        case CURSKEYS_CTRL_W:
            return close_dialog(&dlg);
        case CURSKEYS_TAB:
        case KEY_DOWN:
            return commit_and_move(dlg, 1);
        case CURSKEYS_BTAB:
        case KEY_UP:
            return commit_and_move(dlg, -1);
        default:
            return dlg.editor->key(key);
    }
}

// By rows without moving the focus: there is text to read beyond the last widget.
void scroll_by(CURSDIALOG_type& dlg, int rows) {
    const Layout layout = layout_of(dlg);
    const int top = std::clamp(dlg.top + rows, 0, std::max(layout.content_rows - layout.view.rows, 0));
    if (top != dlg.top) dlg.follow_focus = false;
    dlg.top = top;
}

void step(CURSDIALOG_type& dlg, int direction) {
    if (dlg.focus == nullptr) return scroll_by(dlg, direction);
    move_focus(dlg, next_widget(dlg, direction));
}

void page(CURSDIALOG_type& dlg, int direction) {
    const int rows = layout_of(dlg).view.rows;
    CURSDIALOG_widget* target = page_widget(dlg, direction, rows);
    if (target == nullptr) return scroll_by(dlg, direction * rows);
    set_focus(dlg, target);
}

// The keys that move the focus; FALSE for any other.
bool moving_key(CURSDIALOG_type& dlg, int key) {
    switch (key) {
        case CURSKEYS_TAB:
        case KEY_DOWN:
            return step(dlg, 1), true;
        case CURSKEYS_BTAB:
        case KEY_UP:
            return step(dlg, -1), true;
        case KEY_LEFT:
            return move_focus(dlg, beside_widget(dlg, -1)), true;
        case KEY_RIGHT:
            return move_focus(dlg, beside_widget(dlg, 1)), true;
        case KEY_NPAGE:
            return page(dlg, 1), true;
        case KEY_PPAGE:
            return page(dlg, -1), true;
        case KEY_HOME:
            return move_focus(dlg, first_widget(dlg)), true;
        case KEY_END:
            return move_focus(dlg, last_widget(dlg)), true;
        default:
            return false;
    }
}

void widget_key(CURSDIALOG_type& dlg, int key) {
    if (key == CURSKEYS_ESCAPE || key == CURSKEYS_CTRL_W) return close_dialog(&dlg);
    if (moving_key(dlg, key)) return;
    const bool printable = key > 0 && key < 0x80 && UTIL_is_printable(static_cast<unsigned char>(key));
    if (printable && dlg.focus != nullptr && dlg.focus->kind == Kind::ENTRY) {
        start_editing(dlg, dlg.focus, "", false);
        return dlg.editor->key(key);
    }
    if (dlg.focus != nullptr && (CURSKEYS_is_enter(key) || key == ' ')) return activate(dlg, dlg.focus);
    if (CURSDIALOG_widget* hot = hot_widget(dlg, key); hot != nullptr) activate(dlg, hot);
}

}  // namespace

void dialog_key(CURSDIALOG_type& dlg, int key) {
    dlg.reason.clear();
    if (dlg.editor) {
        editing_key(dlg, key);
    } else {
        widget_key(dlg, key);
    }
}

}  // namespace cursdialog
