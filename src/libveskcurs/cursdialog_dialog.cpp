// Layout and drawing of a dialog. Everything is worked out from the widgets and the size of the screen on
// each pass, so that a resize or a longer label needs no care anywhere else.
#include "libveskcurs/cursdialog_dialog.h"

#include <algorithm>
#include <string_view>

namespace cursdialog {

namespace {

int length(std::string_view text) {
    return static_cast<int>(text.size());
}

// The first of `n` cells in the middle of `room` cells.
int centred(int room, int n) {
    return std::max((room - n) / 2, 0);
}

// The offset, moved no further than needed for the `size` cells from `first` on (from 0) to show; their
// beginning when they are more than the view has.
int revealed(int offset, int first, int size, int view) {
    if (first < offset || size >= view) return first;
    return std::max(offset, first + size - view);
}

int clamped_offset(int offset, int content, int view) {
    return std::clamp(offset, 0, std::max(content - view, 0));
}

// Text above the first widget belongs to it: it shows too when there is room for both.
int first_row_to_show(const CURSDIALOG_type& dlg, int view_rows) {
    const int y = dlg.focus->y;
    const bool above = std::any_of(dlg.widgets.begin(), dlg.widgets.end(),
                                   [&](const auto& wd) { return takes_focus(*wd) && wd->y < y; });
    return above || y > view_rows ? y : 1;
}

void scroll_to_focus(CURSDIALOG_type& dlg, const Layout& layout) {
    const CURSDIALOG_widget& wd = *dlg.focus;
    const int first = first_row_to_show(dlg, layout.view.rows);
    dlg.top = revealed(dlg.top, first - 1, wd.y - first + 1, layout.view.rows);
    dlg.left = revealed(dlg.left, wd.x - 1, columns_of(wd, dlg.width), layout.view.cols);
    if (!dlg.editor) return;
    const auto columns = static_cast<std::size_t>(field_columns(wd, dlg.width));
    const std::size_t at = wd.label.size() + dlg.editor->cursor() - dlg.editor->first_shown(columns);
    dlg.left = revealed(dlg.left, wd.x - 1 + static_cast<int>(at), 1, layout.view.cols);
}

void settle_view(CURSDIALOG_type& dlg, const Layout& layout) {
    if (dlg.focus != nullptr && dlg.follow_focus) scroll_to_focus(dlg, layout);
    dlg.top = clamped_offset(dlg.top, layout.content_rows, layout.view.rows);
    dlg.left = clamped_offset(dlg.left, layout.content_cols, layout.view.cols);
}

// A text with a blank at either end, centred in the border on row y; cut where the border ends.
void draw_in_border(const View& whole, int y, const std::string& text, chtype attr) {
    if (text.empty()) return;
    const int room = whole.box.cols - 2;
    std::string shown = length(text) + 2 <= room ? ' ' + text + ' ' : text;
    shown.resize(static_cast<std::size_t>(std::min(length(shown), room)));
    whole.put(y, 2 + centred(room, length(shown)), shown, attr);
}

// Marks where the contents go on beyond the view.
void draw_marks(const CURSDIALOG_type& dlg, const Layout& layout, const View& whole, chtype attr) {
    const int rows = layout.box.rows;
    const int cols = layout.box.cols;
    const int middle = (rows + 1) / 2;
    if (dlg.top > 0) whole.put(1, cols - 1, '^', attr);
    if (dlg.top + layout.view.rows < layout.content_rows) whole.put(rows, cols - 1, 'v', attr);
    if (dlg.left > 0) whole.put(middle, 1, '<', attr);
    if (dlg.left + layout.view.cols < layout.content_cols) whole.put(middle, cols, '>', attr);
}

void draw_frame(const CURSDIALOG_type& dlg, const Layout& layout, const Look& look, bool on_top) {
    CURSGRID& picture = dlg.window->picture();
    const chtype attr = on_top ? look.highlight : look.normal;
    picture.put_border(attr);
    const View whole{&picture, picture.whole(), 0, 0};
    draw_in_border(whole, 1, dlg.title, attr);
    draw_in_border(whole, layout.box.rows, dlg.reason, look.highlight);
    draw_marks(dlg, layout, whole, look.highlight);
}

}  // namespace

void set_focus(CURSDIALOG_type& dlg, CURSDIALOG_widget* wd) {
    dlg.editor.reset();
    dlg.focus = wd;
    dlg.follow_focus = true;
}

void start_editing(CURSDIALOG_type& dlg, CURSDIALOG_widget* wd, const std::string& text, bool forced) {
    set_focus(dlg, wd);
    dlg.editor.emplace(text, wd->max_len);
    dlg.forced_input = forced;
}

Layout layout_of(const CURSDIALOG_type& dlg) {
    Layout layout{};
    layout.content_rows = 1;
    layout.content_cols = 1;
    for (const auto& wd : dlg.widgets) {
        layout.content_rows = std::max(layout.content_rows, wd->y);
        layout.content_cols = std::max(layout.content_cols, wd->x - 1 + columns_of(*wd, dlg.width));
    }
    // A dialog without a width has room for its title; any dialog has for a reason, as long as it is shown.
    int inside = dlg.width > 0 ? dlg.width : std::max(layout.content_cols, length(dlg.title) + 2);
    inside = std::max(inside, dlg.reason.empty() ? 0 : length(dlg.reason) + 2);

    const int rows = std::clamp(layout.content_rows + 2, 1, std::max(LINES, 1));
    const int cols = std::clamp(inside + 2, 1, std::max(COLS, 1));
    layout.box = {centred(LINES, rows), centred(COLS, cols), rows, cols};
    layout.framed = rows >= 3 && cols >= 3;
    layout.view = layout.framed ? Box{1, 1, rows - 2, cols - 2} : Box{0, 0, rows, cols};
    return layout;
}

void draw(CURSDIALOG_type& dlg, bool on_top) {
    const Layout layout = layout_of(dlg);
    if (dlg.window == nullptr || !dlg.window->place(layout.box)) return;
    settle_view(dlg, layout);

    const Look look = look_of(dlg.attr, dlg.hl_attr);
    CURSGRID& picture = dlg.window->picture();
    picture.fill(look.normal);
    if (layout.framed) draw_frame(dlg, layout, look, on_top);
    const View view{&picture, layout.view, dlg.top, dlg.left};
    for (const auto& wd : dlg.widgets) {
        const bool focused = wd.get() == dlg.focus;
        draw(*wd, view, look, dlg.width, focused, focused && dlg.editor ? &*dlg.editor : nullptr);
    }
    dlg.window->raise();
}

}  // namespace cursdialog
