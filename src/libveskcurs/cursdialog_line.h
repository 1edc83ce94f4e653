// The editor of one line of text, without a screen: what an entry of a dialog edits in.
#pragma once

#include <cstddef>
#include <string>

namespace cursdialog {

class LineEditor {
  public:
    // Edits that text, the cursor behind it. Text beyond `max_len` stays until it is deleted.
    LineEditor(std::string text, std::size_t max_len);

    // Left, Right, Home, End, Backspace, Delete, Ctrl-U and printable characters; others do nothing.
    void key(int key);

    [[nodiscard]] const std::string& text() const { return text_; }
    [[nodiscard]] std::size_t cursor() const { return cursor_; }
    // The first character that a field of that many columns shows, so that the cursor is in it. It moves no
    // further than it must from one call to the next.
    [[nodiscard]] std::size_t first_shown(std::size_t columns);

  private:
    void insert(char c);

    std::string text_;
    std::size_t max_len_;
    std::size_t cursor_;
    std::size_t first_ = 0;
};

}  // namespace cursdialog
