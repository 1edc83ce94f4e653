// A screen as an SVG picture for the documents, whoever holds its cells.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

struct TerminalSize {
    int rows = 24;
    int cols = 80;
    bool operator==(const TerminalSize&) const = default;
};

// The contents of one cell. Colours are 0xRRGGBB, after reverse video was applied.
struct TerminalCell {
    std::string text;  // one character in UTF-8, a blank for an empty cell
    std::uint32_t fg = 0;
    std::uint32_t bg = 0;
    bool bold = false;
    bool reverse = false;
};

// The console's colours in pictures: readable on each other in documents.
enum TerminalColor : std::uint32_t {
    TERMINAL_BLACK = 0x000000,
    TERMINAL_RED = 0xff5f5f,
    TERMINAL_YELLOW = 0xf2d14e,
    TERMINAL_BLUE = 0x1f3f77,
    TERMINAL_WHITE = 0xe4e6e1,
};

// The screen with `title` in a window bar.
[[nodiscard]] std::string draw_picture(TerminalSize size,
                                       const std::function<TerminalCell(int row, int col)>& cell,
                                       std::string_view title);

// Appends a character as UTF-8.
void append_utf8(std::string* text, std::uint32_t c);
