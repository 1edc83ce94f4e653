// The record of one open dialog: its widgets, which of them has the focus, the line being edited; how it is
// laid out on the present screen and drawn. Private to the toolkit.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "libveskcurs/cursdialog_widget.h"

struct CURSDIALOG_type {
    CURSDIALOG_type(int attr_, int hl_attr_, const char* title_, int width_, const void* data,
                    std::size_t size)
        : attr(attr_), hl_attr(hl_attr_), width(width_), title(title_), user_data(data, size) {}

    int attr;
    int hl_attr;
    int width;  // interior columns asked for; 0: as its widgets need
    std::string title;
    cursdialog::UserData user_data;
    CURSDIALOG_closed_cb closed_cb = nullptr;
    CURSDIALOG_cleanup_cb cleanup_cb = nullptr;

    std::vector<std::unique_ptr<CURSDIALOG_widget>> widgets;  // in order of adding, the order of Tab
    CURSDIALOG_widget* focus = nullptr;                       // null while no widget can take it
    std::optional<cursdialog::LineEditor> editor;             // of the focused entry while it is edited
    bool forced_input = false;                                // that editing was forced: Escape closes
    std::string reason;  // why a value was rejected, shown until the next key

    int top = 0;                                 // rows of the contents scrolled out
    int left = 0;                                // columns
    bool follow_focus = true;                    // the view goes where the focus is, until it is paged away
    std::unique_ptr<cursdialog::Window> window;  // null once closed
};

namespace cursdialog {

// Gives it the focus and shows it; editing that was under way ends without a commit.
void set_focus(CURSDIALOG_type& dlg, CURSDIALOG_widget* wd);
// The same for an entry, which is edited from that text on.
void start_editing(CURSDIALOG_type& dlg, CURSDIALOG_widget* wd, const std::string& text, bool forced);

// A dialog on the present screen.
struct Layout {
    Box box;                         // all of it
    bool framed;                     // a screen too small for a frame gets the contents only
    Box view;                        // within the box: where contents show
    int content_rows, content_cols;  // all of the contents
};
[[nodiscard]] Layout layout_of(const CURSDIALOG_type& dlg);

// Draws it anew, above every other window. `on_top` is TRUE for the dialog that takes the keys.
void draw(CURSDIALOG_type& dlg, bool on_top);

}  // namespace cursdialog
