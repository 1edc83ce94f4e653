// A window that changes size is made anew and swapped into its panel: curses may have shrunk or moved the old
// one on its own when the terminal was resized.
#include "libveskcurs/cursdialog_window.h"

namespace cursdialog {

Window::Window() {
    if (place({0, 0, 1, 1})) hide_panel(panel_);
}

Window::~Window() {
    if (panel_ != nullptr) del_panel(panel_);
    if (win_ != nullptr) delwin(win_);
}

bool Window::place(const Box& box) {
    if (stdscr == nullptr) return false;
    if (win_ != nullptr && box == Box{getbegy(win_), getbegx(win_), getmaxy(win_), getmaxx(win_)})
        return true;

    WINDOW* fresh = newwin(box.rows, box.cols, box.y, box.x);
    if (fresh == nullptr) return false;
    if (panel_ != nullptr) {
        replace_panel(panel_, fresh);
    } else if ((panel_ = new_panel(fresh)) == nullptr) {
        delwin(fresh);
        return false;
    }
    if (win_ != nullptr) delwin(win_);
    win_ = fresh;
    picture_.emplace(fresh);
    return true;
}

void Window::raise() {
    picture_->show();
    top_panel(panel_);
}

}  // namespace cursdialog
