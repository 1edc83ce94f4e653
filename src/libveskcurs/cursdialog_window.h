// What a dialog is drawn on: a curses window with its panel, and the part of it that shows a dialog's
// contents, scrolled and clipped. Knows neither dialogs nor widgets.
#pragma once

#include <curses.h>
#include <panel.h>

#include <string_view>

namespace cursdialog {

// A place on the screen, in cells.
struct Box {
    int y, x, rows, cols;
    bool operator==(const Box&) const = default;
};

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
    // Shows it above every other window.
    void raise();
    [[nodiscard]] WINDOW* get() const { return win_; }

  private:
    WINDOW* win_ = nullptr;
    PANEL* panel_ = nullptr;
};

// A view of contents whose rows and columns count from 1. Whatever is outside the view is cut off.
struct Canvas {
    WINDOW* win;
    Box view;  // within the window
    int top;   // rows of the contents scrolled out above the view
    int left;  // columns scrolled out to the left of it

    // The text in that attribute; bytes that are not printable show as blanks.
    void put(int y, int x, std::string_view text, chtype attr) const;
    void put(int y, int x, char c, chtype attr) const { put(y, x, std::string_view(&c, 1), attr); }
};

}  // namespace cursdialog
