// Widgets on the screen: "< OK >" side by side, "[ Close ]" for what closes or weighs more, plain lines for
// the rest; an entry is its label and a field filled with underscores.
#include "libveskcurs/cursdialog_widget.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace cursdialog {

namespace {

constexpr int WIDEST_OWN_FIELD = 40;  // of an entry that was given no width; longer values scroll

int length(const std::string& text) {
    return static_cast<int>(text.size());
}

// The two characters that stand around the label, or none.
std::string_view brackets(const CURSDIALOG_widget& wd) {
    if (wd.kind != Kind::BUTTON) return "";
    if (wd.style == CURSDIALOG_STYLE_ROW) return "<>";
    if (wd.style == CURSDIALOG_STYLE_CLOSE) return "[]";
    return "";
}

struct Face {
    std::string text;         // all of the button
    std::size_t label_start;  // where its label begins
};

// The label cut or padded to the width; between brackets it is centred.
Face face_of(const CURSDIALOG_widget& wd, int dialog_width) {
    const auto width = static_cast<std::size_t>(columns_of(wd, dialog_width));
    const std::string_view around = brackets(wd);
    if (around.empty() || width < 2) {
        std::string text = wd.label.substr(0, width);
        text.resize(width, ' ');
        return {text, 0};
    }
    const std::string label = wd.label.substr(0, width - 2);
    std::string text(width, ' ');
    text.front() = around.front();
    text.back() = around.back();
    const std::size_t start = 1 + (width - 2 - label.size()) / 2;
    text.replace(start, label.size(), label);
    return {text, start};
}

// Where the hot key's character stands in the label: itself first, then its other case; npos when nowhere.
std::size_t hot_position(const CURSDIALOG_widget& wd) {
    if (wd.hot_key <= 0) return std::string::npos;
    const std::size_t exact = wd.label.find(static_cast<char>(wd.hot_key));
    if (exact != std::string::npos) return exact;
    const int other = std::isupper(wd.hot_key) != 0 ? std::tolower(wd.hot_key) : std::toupper(wd.hot_key);
    return wd.label.find(static_cast<char>(other));
}

void draw_hot_key(const CURSDIALOG_widget& wd, const View& view, int label_x, int last_x, chtype attr) {
    const std::size_t at = hot_position(wd);
    if (at == std::string::npos || label_x + static_cast<int>(at) > last_x) return;
    view.put(wd.y, label_x + static_cast<int>(at), wd.label[at], attr | A_UNDERLINE);
}

void draw_button(const CURSDIALOG_widget& wd, const View& view, const Look& look, int dialog_width,
                 bool focused) {
    const Face face = face_of(wd, dialog_width);
    const chtype plain = look.normal | (wd.style == CURSDIALOG_STYLE_CLOSE ? A_BOLD : A_NORMAL);
    view.put(wd.y, wd.x, face.text, focused ? look.focus : plain);
    draw_hot_key(wd, view, wd.x + static_cast<int>(face.label_start), wd.x + length(face.text) - 1,
                 focused ? look.focus : look.highlight);
}

void draw_entry(const CURSDIALOG_widget& wd, const View& view, const Look& look, int dialog_width,
                bool focused, LineEditor* editor) {
    const chtype attr = focused ? look.focus : look.normal;
    view.put(wd.y, wd.x, wd.label, attr);
    draw_hot_key(wd, view, wd.x, wd.x + length(wd.label) - 1, focused ? look.focus : look.highlight);

    const auto columns = static_cast<std::size_t>(field_columns(wd, dialog_width));
    const int field_x = wd.x + length(wd.label);
    const std::size_t first = editor != nullptr ? editor->first_shown(columns) : 0;
    std::string text = editor != nullptr ? editor->text() : wd.value;
    if ((wd.style & CURSDIALOG_STYLE_HIDDEN) != 0) text.assign(text.size(), '*');
    text.erase(0, first);
    text.resize(columns, '_');
    view.put(wd.y, field_x, text, attr | A_UNDERLINE);
    if (editor == nullptr) return;
    // The terminal's own cursor is off: a cell in reverse shows where typing goes.
    const std::size_t at = editor->cursor() - first;
    const char under = text[at] == '_' && editor->cursor() == editor->text().size() ? ' ' : text[at];
    view.put(wd.y, field_x + static_cast<int>(at), under, attr ^ A_REVERSE);
}

// The pair's two colours are those of the other one: colours are off, or the terminal has none.
bool same_colors(int a, int b) {
    short fg_a = 0, bg_a = 0, fg_b = 0, bg_b = 0;
    if (!has_colors() || pair_content(static_cast<short>(PAIR_NUMBER(a)), &fg_a, &bg_a) == ERR) return true;
    if (pair_content(static_cast<short>(PAIR_NUMBER(b)), &fg_b, &bg_b) == ERR) return true;
    return fg_a == fg_b && bg_a == bg_b;
}

}  // namespace

UserData::UserData(const void* data, std::size_t size) {
    if (data == nullptr) return;
    const auto* first = static_cast<const std::byte*>(data);
    bytes_.assign(first, first + size);
}

Look look_of(int attr, int hl_attr) {
    Look look{static_cast<chtype>(attr), static_cast<chtype>(hl_attr), static_cast<chtype>(hl_attr)};
    if (same_colors(attr, hl_attr) && ((look.normal ^ look.highlight) & A_REVERSE) == 0)
        look.focus ^= A_REVERSE;
    return look;
}

bool takes_focus(const CURSDIALOG_widget& wd) {
    return wd.kind != Kind::LABEL;
}

int field_columns(const CURSDIALOG_widget& wd, int dialog_width) {
    const int label = length(wd.label);
    // A width that leaves the value no room can only have meant the value.
    if (wd.width > 0) return wd.width > label ? wd.width - label : wd.width;
    if (dialog_width > 0) return std::max(dialog_width - (wd.x - 1) - label, 1);
    return std::clamp(static_cast<int>(wd.max_len), 1, WIDEST_OWN_FIELD);
}

int columns_of(const CURSDIALOG_widget& wd, int dialog_width) {
    if (wd.kind == Kind::ENTRY) return length(wd.label) + field_columns(wd, dialog_width);
    if (wd.width > 0) return wd.width;
    return length(wd.label) + (brackets(wd).empty() ? 0 : 4);
}

void draw(const CURSDIALOG_widget& wd, const View& view, const Look& look, int dialog_width, bool focused,
          LineEditor* editor) {
    switch (wd.kind) {
        case Kind::BUTTON:
            return draw_button(wd, view, look, dialog_width, focused);
        case Kind::ENTRY:
            return draw_entry(wd, view, look, dialog_width, focused, editor);
        case Kind::LABEL:
            return view.put(wd.y, wd.x, face_of(wd, dialog_width).text, look.normal);
    }
}

}  // namespace cursdialog
