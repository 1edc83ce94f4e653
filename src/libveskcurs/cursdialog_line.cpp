// Keys change the text at the cursor; the part of it that a narrow field shows follows the cursor.
#include "libveskcurs/cursdialog_line.h"

#include <curses.h>

#include <algorithm>
#include <utility>

#include "libvesk/support/util.h"
#include "libveskcurs/curskeys.h"

namespace cursdialog {

namespace {

constexpr int CTRL_U = 21;

bool is_text(int key) {
    return key >= 0 && key < 0x80 && UTIL_is_printable(static_cast<unsigned char>(key));
}

}  // namespace

LineEditor::LineEditor(std::string text, std::size_t max_len)
    : text_(std::move(text)), max_len_(max_len), cursor_(text_.size()) {}

void LineEditor::key(int key) {
    if (is_text(key)) return insert(static_cast<char>(key));
    if (CURSKEYS_is_backspace(key)) {
        if (cursor_ > 0) text_.erase(--cursor_, 1);
        return;
    }
    switch (key) {
        case KEY_LEFT:
            if (cursor_ > 0) --cursor_;
            break;
        case KEY_RIGHT:
            if (cursor_ < text_.size()) ++cursor_;
            break;
        case KEY_HOME:
            cursor_ = 0;
            break;
        case KEY_END:
            cursor_ = text_.size();
            break;
        case KEY_DC:
            if (cursor_ < text_.size()) text_.erase(cursor_, 1);
            break;
        case CTRL_U:
            text_.clear();
            cursor_ = 0;
            break;
        default:
            break;
    }
}

void LineEditor::insert(char c) {
    if (text_.size() >= max_len_) return;
    text_.insert(cursor_++, 1, c);
}

std::size_t LineEditor::first_shown(std::size_t columns) {
    const std::size_t width = std::max<std::size_t>(columns, 1);
    const std::size_t needed = text_.size() + 1;  // the cursor may stand behind the text
    first_ = std::min(first_, needed > width ? needed - width : 0);
    if (cursor_ < first_) first_ = cursor_;
    if (cursor_ >= first_ + width) first_ = cursor_ - width + 1;
    return first_;
}

}  // namespace cursdialog
