// A program in a terminal: runs it on a pseudo-terminal whose output a terminal emulator turns into cells
// with colours, types keys, resizes, and tells how the terminal was left. Also draws the screen as SVG, so
// that documents show the real thing.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "libveskcurs/picture.h"
#include "support/process.h"

// Keys that are more than one plain character.
enum class Key { up, down, left, right, enter, tab, back_tab, backspace, remove, home, end, escape, f5 };

class Terminal {
  public:
    // Starts the program; TERM is xterm-256color unless the command's environment says otherwise.
    explicit Terminal(Command command, TerminalSize size = {});
    ~Terminal();  // kills and reaps it
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    [[nodiscard]] pid_t pid() const;
    void signal(int number) const;

    void type(std::string_view characters);
    void press(Key key);
    void alt(char character);
    // A new size, as a terminal window that is pulled at its corner makes it.
    void resize(TerminalSize size);
    // The line is held, as by Ctrl-S, or goes on.
    void hold(bool on) const;
    // Text that another program writes to the same terminal.
    void scribble(std::string_view bytes) const;
    // The terminal goes away, as a closed window or a lost remote line does.
    void hang_up();

    // Takes output until `condition` holds; the failure prints the screen and, if given, what was waited for.
    testing::AssertionResult wait_for(const std::function<bool()>& condition, std::string_view what = "",
                                      std::chrono::milliseconds wait = PATIENCE);
    // Waits until the text stands on some row, or on none any more.
    testing::AssertionResult shows(std::string_view text);
    testing::AssertionResult hides(std::string_view text);
    // Waits until the program has taken all keys and drawn what they caused: it sleeps, nothing is on its
    // way.
    testing::AssertionResult settles();
    // Watches for WATCH that the text does not come up.
    testing::AssertionResult never_shows(std::string_view text);
    // The program's exit code (128 plus a signal), taking output meanwhile; the failure prints the screen.
    testing::AssertionResult exits_with(int code);
    std::optional<int> wait_exit(std::chrono::milliseconds wait = PATIENCE);

    [[nodiscard]] TerminalSize size() const;
    [[nodiscard]] std::string row(int row) const;  // all columns, blanks included
    [[nodiscard]] std::string text() const;        // all rows, trailing blanks cut, a newline after each
    [[nodiscard]] TerminalCell cell(int row, int col) const;
    struct Place {
        int row;
        int col;
    };
    // Where the text first stands, in columns.
    [[nodiscard]] std::optional<Place> find(std::string_view text) const;

    // Every byte that the program has written.
    [[nodiscard]] const std::string& output() const;

    // How the terminal is: on the alternate screen, the cursor visible, and its line settings others than the
    // program found.
    [[nodiscard]] bool alternate_screen() const;
    [[nodiscard]] bool cursor_visible() const;
    [[nodiscard]] bool settings_changed() const;

    // The screen as an SVG picture with `title` in a window bar.
    [[nodiscard]] std::string svg(std::string_view title) const;

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};
