// The picture of one curses window. What the window shall show is drawn here, all of it and as often as one
// likes; curses gets only what differs from what it shows already. Everything on the screen is drawn here, so
// this is the one gate of text: only printable ASCII passes, and nothing leaves the place that it was given.
#pragma once

#include <curses.h>

#include <string_view>
#include <vector>

// A rectangle of cells, from row 0 and column 0.
struct CURSGRID_box {
    int y, x, rows, cols;
    bool operator==(const CURSGRID_box&) const = default;
};

class CURSGRID {
  public:
    // All blanks in the window's background. The window stays its owner's.
    explicit CURSGRID(WINDOW* win);
    // Goes on with that window, which may be another one. One that has the address of its predecessor is not
    // told from it: whoever makes a window calls forget_shown().
    void attach(WINDOW* win);

    [[nodiscard]] CURSGRID_box whole() const { return {0, 0, rows_, cols_}; }
    // Without the cells of a frame.
    [[nodiscard]] CURSGRID_box inside() const { return {1, 1, rows_ - 2, cols_ - 2}; }

    // Begins the picture anew: blanks in that attribute, in the window's present size. An attribute without a
    // colour pair gets the background's, here and below.
    void fill(chtype attr);
    // The text from (y, x) on, as far as it lies within `place`; a blank for every byte that is not
    // printable.
    void put(const CURSGRID_box& place, int y, int x, chtype attr, std::string_view text);
    // The same centred in the width of the window; a text too long for it begins at column 1.
    void put_centered(const CURSGRID_box& place, int y, chtype attr, std::string_view text);
    // A symbol of the program's own: one of the ACS_ characters, with the attribute.
    void put_symbol(const CURSGRID_box& place, int y, int x, chtype symbol_and_attr);
    // A character of the program's own where the terminal takes UTF-8, and the symbol elsewhere.
    void put_special(const CURSGRID_box& place, int y, int x, chtype attr, wchar_t utf8, chtype elsewhere);
    // A line of ACS_HLINE from border to border, joined to both.
    void put_rule(int y, chtype attr);
    // The frame along the edges. In a single column there is room for one side only.
    void put_border(chtype attr);

    // Hands curses what differs.
    void show();
    // Windows may have lost what they showed, as when the screen has a new size: the next show() of every
    // picture hands all of it over.
    static void forget_shown();

  private:
    struct cell {
        wchar_t ch;
        chtype attr;  // with the colour pair
        bool operator==(const cell&) const = default;
    };
    [[nodiscard]] cell blank() const;
    [[nodiscard]] chtype with_pair(chtype attr) const;
    [[nodiscard]] cell* at(const CURSGRID_box& place, int y, int x);
    void set(const CURSGRID_box& place, int y, int x, cell c);
    void take_size();
    void show_row(int y);
    void hand_over(int y, int x, const cell* cells, int n);

    WINDOW* win_;
    int rows_ = 0;
    int cols_ = 0;
    std::vector<cell> drawn_;  // row by row
    std::vector<cell> shown_;  // what the window holds; empty when that is not known
    unsigned generation_ = 0;  // of what is known
};
