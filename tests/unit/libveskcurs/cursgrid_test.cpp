// The picture of a window: what passes into it, and what of it reaches curses.
#include "libveskcurs/cursgrid.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "support/screen.h"

namespace {

class Grid : public testing::Test {
  protected:
    static constexpr int ROWS = 4, COLS = 12;

    ~Grid() override { delwin(win); }

    // The part of the picture that the window shows.
    std::string shown() {
        picture.show();
        return TestScreen::dump(win);
    }
    // Rows that curses has to look at again since the last call.
    std::string touched_rows() {
        picture.show();
        std::string rows;
        for (int y = 0; y < ROWS; ++y)
            if (is_linetouched(win, y)) rows += std::to_string(y);
        untouchwin(win);
        return rows;
    }

    TestScreen screen;
    WINDOW* win = newwin(ROWS, COLS, 3, 5);
    CURSGRID picture{win};
};

// Whatever comes, wherever it is put: it stays in its place, and only printable ASCII is in it.
TEST_F(Grid, NothingPassesButPrintableCharactersInTheirPlace) {
    const CURSGRID_box place{1, 2, 2, 5};
    const std::string texts[] = {"plain", "much too long for it", std::string("\0\x1b[2J\r\n\x7f", 8),
                                 "\xC3\xA9\xE2\x94\x80\xFF\x9B", ""};
    for (const std::string& text : texts) {
        for (const int y : {-1000000000, -1, 0, 1, 2, 3, 4, 1000000000}) {
            for (int x = -30; x < 30; ++x) {
                picture.fill(COLOR_PAIR(2));
                picture.put(place, y, x, COLOR_PAIR(5), text);
                picture.show();
                for (int row = 0; row < ROWS; ++row) {
                    for (int col = 0; col < COLS; ++col) {
                        const bool inside = row == y && row >= 1 && row <= 2 && col >= 2 && col <= 6 &&
                                            col >= x && col < x + static_cast<int>(text.size());
                        const unsigned char byte = inside ? static_cast<unsigned char>(text[col - x]) : ' ';
                        const char expected = byte >= 32 && byte < 127 ? static_cast<char>(byte) : ' ';
                        ASSERT_EQ(TestScreen::row(win, row)[static_cast<std::size_t>(col)], expected);
                        ASSERT_EQ(TestScreen::color_pair(win, row, col), inside ? 5 : 2);
                    }
                }
            }
        }
    }
}

TEST_F(Grid, CentresAndFrames) {
    picture.fill(0);
    picture.put_border(A_BOLD);
    picture.put_centered(picture.whole(), 0, 0, "odd");
    picture.put_rule(1, 0);
    picture.put_centered(picture.inside(), 2, 0, "much too long for it");
    EXPECT_EQ(shown(),
              "+----odd---+\n"
              "+----------+\n"
              "|much too l|\n"
              "+----------+\n");
    EXPECT_NE(TestScreen::attributes(win, 3, 0) & A_BOLD, 0U);
}

TEST_F(Grid, CursesGetsWhatDiffersOnly) {
    const auto draw = [&](const char* word, chtype attr) {
        picture.fill(0);
        picture.put_border(0);
        picture.put(picture.inside(), 2, 3, attr, word);
    };
    draw("word", 0);
    EXPECT_EQ(touched_rows(), "0123");
    draw("word", 0);
    EXPECT_EQ(touched_rows(), "");
    draw("ward", 0);
    EXPECT_EQ(touched_rows(), "2");
    draw("ward", A_BOLD);
    EXPECT_EQ(touched_rows(), "2");
    draw("", 0);
    EXPECT_EQ(touched_rows(), "2");
    EXPECT_EQ(shown(), "+----------+\n|          |\n|          |\n+----------+\n");
}

TEST_F(Grid, WhatAWindowLostComesBack) {
    picture.fill(0);
    picture.put(picture.whole(), 0, 0, 0, "text");
    EXPECT_EQ(shown(), "text\n\n\n\n");
    werase(win);
    CURSGRID::forget_shown();
    EXPECT_EQ(shown(), "text\n\n\n\n");
    wresize(win, 2, 3);
    picture.fill(0);
    picture.put(picture.whole(), 1, 0, 0, "text");
    EXPECT_EQ(shown(), "\ntex\n");
    WINDOW* other = newwin(2, 3, 0, 0);
    picture.attach(other);
    picture.show();
    EXPECT_EQ(TestScreen::dump(other), "\ntex\n");
    delwin(other);
    picture.attach(win);
}

}  // namespace
