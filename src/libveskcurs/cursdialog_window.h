// The drawing surface of a dialog: a curses window with its panel and its picture, and the part of that which
// shows a dialog's contents, scrolled. Knows neither dialogs nor widgets.
#pragma once

#include <curses.h>
#include <panel.h>

#include <optional>
#include <string_view>

#include "libveskcurs/cursgrid.h"

namespace cursdialog {

using Box = CURSGRID_box;

// Owns a window and its panel, hidden until raised. Must go before the curses screen does.
class Window {
  public:
    Window();
    ~Window();
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    // FALSE when curses had none to give, as without a screen.
    [[nodiscard]] bool made() const { return panel_ != nullptr; }
    // Takes that place, at least one cell and within the screen. FALSE when it could not.
    [[nodiscard]] bool place(const Box& box);
    // The picture that it shall show.
    [[nodiscard]] CURSGRID& picture() { return *picture_; }
    // Shows its picture above every other window.
    void raise();

  private:
    WINDOW* win_ = nullptr;
    PANEL* panel_ = nullptr;
    std::optional<CURSGRID> picture_;
};

// A view of contents whose rows and columns count from 1. Whatever is outside the box is cut off.
struct View {
    CURSGRID* picture;
    Box box;   // within the window
    int top;   // rows of the contents scrolled out above the box
    int left;  // columns scrolled out to the left of it

    void put(int y, int x, std::string_view text, chtype attr) const {
        picture->put(box, box.y + y - 1 - top, box.x + x - 1 - left, attr, text);
    }
    void put(int y, int x, char c, chtype attr) const { put(y, x, std::string_view(&c, 1), attr); }
};

}  // namespace cursdialog
