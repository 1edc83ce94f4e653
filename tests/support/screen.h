// A curses screen in memory for unit tests: keys come from a pipe, output goes to /dev/null, cells are read
// back from windows.
#pragma once

#include <curses.h>

#include <memory>
#include <string>
#include <string_view>

class TestScreen {
  public:
    // Starts curses with `lines` x `cols` on the given terminal type, with the colours of the console when
    // the terminal has them. Ends it when destroyed.
    explicit TestScreen(int lines = 24, int cols = 80, const char* term = "xterm-256color");
    ~TestScreen();
    TestScreen(const TestScreen&) = delete;
    TestScreen& operator=(const TestScreen&) = delete;

    // Makes it the screen that curses is working on, where there are several.
    void use();
    // Bytes that the next key read finds waiting.
    void type(std::string_view bytes);
    // Ends the input, as a terminal that went away does.
    void hang_up();
    // A new size, as a terminal that was resized reports it (KEY_RESIZE is pending afterwards).
    void resize(int lines, int cols);

    // Row y of a window as text: line drawing as '|', '-' and '+', the block as '#', other non-ASCII as '?'.
    static std::string row(WINDOW* win, int y);
    // Row y of the screen as the panels would show it now (update_panels and the virtual screen).
    static std::string screen_row(int y);
    // All rows, each with a newline, trailing blanks cut: what a failing test prints.
    static std::string dump(WINDOW* win);
    static std::string screen_dump();
    // The character that a terminal shows in a cell, line drawing included.
    static wchar_t character(WINDOW* win, int y, int x);
    // Attributes (A_BOLD, A_REVERSE, ...) and colour pair of a cell.
    static attr_t attributes(WINDOW* win, int y, int x);
    static int color_pair(WINDOW* win, int y, int x);

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};
