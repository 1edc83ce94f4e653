// The record of one button, entry or label, how much room it takes and how it looks. Private to the toolkit.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "libveskcurs/cursdialog_line.h"
#include "libveskcurs/cursdialog_types.h"
#include "libveskcurs/cursdialog_window.h"

namespace cursdialog {

enum class Kind { BUTTON, ENTRY, LABEL };

// A private copy of what a caller handed over, aligned for any record.
class UserData {
  public:
    UserData(const void* data, std::size_t size);
    [[nodiscard]] void* get() { return bytes_.empty() ? nullptr : bytes_.data(); }

  private:
    std::vector<std::byte> bytes_;
};

// The attributes of a dialog as they come out on this terminal.
struct Look {
    chtype normal;
    chtype highlight;
    chtype focus;  // highlighted in a way that shows without colours too
};
[[nodiscard]] Look look_of(int attr, int hl_attr);

}  // namespace cursdialog

struct CURSDIALOG_widget {
    CURSDIALOG_type* dialog;
    cursdialog::Kind kind;
    int x, y;   // from 1, within the dialog's frame
    int width;  // as asked for; 0: its own
    int style;
    int hot_key;  // 0: none
    std::string label;
    cursdialog::UserData user_data;

    CURSDIALOG_button_cb pressed = nullptr;       // buttons
    CURSDIALOG_entry_verify_cb verify = nullptr;  // entries, and what follows
    std::string value = {};                       // the committed text
    std::size_t max_len = 0;                      // characters
};

namespace cursdialog {

[[nodiscard]] bool takes_focus(const CURSDIALOG_widget& wd);
// Columns from x on that the widget takes in a dialog of that many interior columns (0: as many as needed).
[[nodiscard]] int columns_of(const CURSDIALOG_widget& wd, int dialog_width);
// Those of them that an entry's value has, behind its label.
[[nodiscard]] int field_columns(const CURSDIALOG_widget& wd, int dialog_width);
// `editor` is that of an entry being edited, else null.
void draw(const CURSDIALOG_widget& wd, const View& view, const Look& look, int dialog_width, bool focused,
          LineEditor* editor);

}  // namespace cursdialog
