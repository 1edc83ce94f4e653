// The public operations: they make dialogs and widgets of what they are given and hand keys and drawing on.
#include "libveskcurs/cursdialog.h"

#include <algorithm>
#include <memory>
#include <new>
#include <string>
#include <utility>

#include "libvesk/support/util.h"
#include "libveskcurs/cursdialog_dialog.h"
#include "libveskcurs/cursdialog_keys.h"
#include "libveskcurs/cursdialog_stack.h"

using namespace cursdialog;

namespace {

constexpr int FARTHEST = 9999;  // row, column and width that a widget may ask for

// No exception crosses to the callers: a failed allocation gives null.
template <class F>
auto null_without_memory(F make) -> decltype(make()) {
    try {
        return make();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

const char* text_or_empty(const char* text) {
    return text != nullptr ? text : "";
}

bool owns(const CURSDIALOG_type* dlg, const CURSDIALOG_widget* wd) {
    return is_open(dlg) && wd != nullptr && wd->dialog == dlg && takes_focus(*wd);
}

// Gives the dialog a widget with the fields that all kinds have.
CURSDIALOG_widget* add_widget(CURSDIALOG_type* dlg, CURSDIALOG_widget made) {
    if (!is_open(dlg)) return nullptr;
    made.dialog = dlg;
    made.x = std::clamp(made.x, 1, FARTHEST);
    made.y = std::clamp(made.y, 1, FARTHEST);
    made.width = std::clamp(made.width, 0, FARTHEST);
    dlg->widgets.push_back(std::make_unique<CURSDIALOG_widget>(std::move(made)));
    CURSDIALOG_widget* wd = dlg->widgets.back().get();
    if (dlg->focus == nullptr && takes_focus(*wd)) dlg->focus = wd;
    return wd;
}

}  // namespace

BOOL CURSDIALOG_init() {
    return TRUE;
}

void CURSDIALOG_cleanup() {
    close_all();
}

void CURSDIALOG_update() {
    const Dialogs& dialogs = open_dialogs();
    for (const auto& dlg : dialogs)
        draw(*dlg, dlg == dialogs.back());
}

BOOL CURSDIALOG_keypress(int key) {
    if (!CURSDIALOG_active() || key == KEY_RESIZE) return FALSE;
    const CallScope scope;
    dialog_key(*open_dialogs().back(), key);
    return TRUE;
}

BOOL CURSDIALOG_active() {
    return !open_dialogs().empty();
}

CURSDIALOG_type* CURSDIALOG_create(int attr, int hl_attr, const char* title, int width, const void* user_data,
                                   std::size_t user_data_size, CURSDIALOG_closed_cb closed,
                                   CURSDIALOG_cleanup_cb cleanup) {
    return null_without_memory([&]() -> CURSDIALOG_type* {
        auto dlg = std::make_unique<CURSDIALOG_type>(
            attr, hl_attr, text_or_empty(title), std::clamp(width, 0, FARTHEST), user_data, user_data_size);
        dlg->closed_cb = closed;
        dlg->cleanup_cb = cleanup;
        dlg->window = std::make_unique<Window>();
        if (!dlg->window->made()) return nullptr;
        return open_dialog(std::move(dlg));
    });
}

CURSDIALOG_widget* CURSDIALOG_add_button(CURSDIALOG_type* dlg, int x, int y, int width, int style,
                                         int hot_key, const char* label, CURSDIALOG_button_cb cb,
                                         const void* user_data, std::size_t user_data_size,
                                         int /*reserved*/) {
    return null_without_memory([&] {
        return add_widget(dlg, {.dialog = dlg,
                                .kind = Kind::BUTTON,
                                .x = x,
                                .y = y,
                                .width = width,
                                .style = style,
                                .hot_key = hot_key,
                                .label = text_or_empty(label),
                                .user_data = UserData(user_data, user_data_size),
                                .pressed = cb});
    });
}

CURSDIALOG_widget* CURSDIALOG_add_entry(CURSDIALOG_type* dlg, int x, int y, int width, int style, int hot_key,
                                        const char* label, const char* initial, int max_len,
                                        CURSDIALOG_entry_verify_cb verify_cb, const void* user_data,
                                        std::size_t user_data_size, int /*reserved*/) {
    return null_without_memory([&] {
        const auto room = static_cast<std::size_t>(std::max(max_len, 0));
        return add_widget(dlg, {.dialog = dlg,
                                .kind = Kind::ENTRY,
                                .x = x,
                                .y = y,
                                .width = width,
                                .style = style,
                                .hot_key = hot_key,
                                .label = text_or_empty(label),
                                .user_data = UserData(user_data, user_data_size),
                                .verify = verify_cb,
                                .value = std::string(text_or_empty(initial)).substr(0, room),
                                .max_len = room});
    });
}

CURSDIALOG_widget* CURSDIALOG_add_label(CURSDIALOG_type* dlg, int x, int y, int width, int style,
                                        const char* text) {
    return null_without_memory([&] {
        return add_widget(dlg, {.dialog = dlg,
                                .kind = Kind::LABEL,
                                .x = x,
                                .y = y,
                                .width = width,
                                .style = style,
                                .hot_key = 0,
                                .label = text_or_empty(text),
                                .user_data = UserData(nullptr, 0)});
    });
}

void CURSDIALOG_setlabel(CURSDIALOG_widget* wd, const char* text) {
    if (wd != nullptr) wd->label = text_or_empty(text);
}

const char* CURSDIALOG_getvalue(CURSDIALOG_widget* wd, char* dst, std::size_t dst_size) {
    const char* text = "";
    if (wd != nullptr) text = wd->kind == Kind::ENTRY ? wd->value.c_str() : wd->label.c_str();
    if (dst == nullptr) return text;
    UTIL_strncpynt(dst, text, dst_size);
    return dst;
}

void CURSDIALOG_force_widget_focus(CURSDIALOG_type* dlg, CURSDIALOG_widget* wd) {
    if (owns(dlg, wd)) set_focus(*dlg, wd);
}

void CURSDIALOG_force_entry_input(CURSDIALOG_type* dlg, CURSDIALOG_widget* wd) {
    if (owns(dlg, wd) && wd->kind == Kind::ENTRY) start_editing(*dlg, wd, wd->value, true);
}

void CURSDIALOG_close(CURSDIALOG_type* dlg) {
    close_dialog(dlg);
}
