// A screen as an SVG picture: backgrounds are rectangles, text stands in runs of one look, frames are lines,
// so that they join in every font.
#include "libveskcurs/picture.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace {

constexpr int CELL_WIDTH = 9;
constexpr int CELL_HEIGHT = 18;
constexpr int FONT_SIZE = 15;
constexpr int BASELINE = 14;  // of a row of text, from its top
constexpr int BAR_HEIGHT = 28;
constexpr int MARGIN = 8;

// The arms of a line-drawing character, from the middle of its cell.
struct Arms {
    const char* text;
    bool left, right, up, down;
};
constexpr std::array<Arms, 11> LINES{{{"─", true, true, false, false},
                                      {"│", false, false, true, true},
                                      {"┌", false, true, false, true},
                                      {"┐", true, false, false, true},
                                      {"└", false, true, true, false},
                                      {"┘", true, false, true, false},
                                      {"├", false, true, true, true},
                                      {"┤", true, false, true, true},
                                      {"┬", true, true, false, true},
                                      {"┴", true, true, true, false},
                                      {"┼", true, true, true, true}}};

const Arms* arms_of(const std::string& text) {
    for (const Arms& arms : LINES) {
        if (text == arms.text) return &arms;
    }
    return nullptr;
}

std::string color(std::uint32_t rgb) {
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "#%06x", rgb & 0xFFFFFF);
    return text.data();
}

std::string escaped(std::string_view text) {
    std::string result;
    for (const char c : text) {
        switch (c) {
            case '&':
                result += "&amp;";
                break;
            case '<':
                result += "&lt;";
                break;
            case '>':
                result += "&gt;";
                break;
            default:
                result += c;
        }
    }
    return result;
}

std::string attribute(const char* name, int value) {
    return std::string(" ") + name + "=\"" + std::to_string(value) + "\"";
}

std::string rectangle(int x, int y, int width, int height, std::uint32_t rgb, int radius = 0) {
    return "<rect" + attribute("x", x) + attribute("y", y) + attribute("width", width) +
           attribute("height", height) + (radius != 0 ? attribute("rx", radius) : "") + " fill=\"" +
           color(rgb) + "\"/>\n";
}

// Text is pale: behind it, red has to be darker than in front.
std::uint32_t background(std::uint32_t rgb) {
    return rgb == TERMINAL_RED ? 0xa01c1c : rgb;
}

class Picture {
  public:
    Picture(TerminalSize size, const std::function<TerminalCell(int, int)>& cell)
        : size_(size), cell_(cell) {}

    std::string draw(std::string_view title) {
        const int width = size_.cols * CELL_WIDTH + 2 * MARGIN;
        const int height = size_.rows * CELL_HEIGHT + BAR_HEIGHT + MARGIN;
        svg_ = "<svg xmlns=\"http://www.w3.org/2000/svg\"" + attribute("width", width) +
               attribute("height", height) + " font-family=\"DejaVu Sans Mono,Menlo,Consolas,monospace\"" +
               attribute("font-size", FONT_SIZE) + ">\n";
        svg_ += "<title>" + escaped(title) + "</title>\n";
        svg_ += rectangle(0, 0, width, height, 0x2e3436, MARGIN);
        svg_ += "<text" + attribute("x", width / 2) + attribute("y", 19) +
                " text-anchor=\"middle\" fill=\"#d3d7cf\">" + escaped(title) + "</text>\n";
        for (int y = 0; y < size_.rows; ++y)
            backgrounds(y);
        for (int y = 0; y < size_.rows; ++y)
            glyphs(y);
        return svg_ + "</svg>\n";
    }

  private:
    static int left(int col) { return MARGIN + col * CELL_WIDTH; }
    static int top(int row) { return BAR_HEIGHT + row * CELL_HEIGHT; }

    // The end of the run of cells from `from` that `same` holds together with the first of them.
    template <class Same>
    int run_end(int row, int from, Same same) const {
        const TerminalCell first = cell_(row, from);
        int end = from + 1;
        while (end < size_.cols && same(first, cell_(row, end)))
            ++end;
        return end;
    }

    void backgrounds(int row) {
        for (int from = 0, end = 0; from < size_.cols; from = end) {
            end =
                run_end(row, from, [](const TerminalCell& a, const TerminalCell& b) { return a.bg == b.bg; });
            svg_ += rectangle(left(from), top(row), (end - from) * CELL_WIDTH, CELL_HEIGHT,
                              background(cell_(row, from).bg));
        }
    }

    void glyphs(int row) {
        const auto same = [](const TerminalCell& a, const TerminalCell& b) {
            return a.fg == b.fg && a.bold == b.bold && arms_of(a.text) == nullptr &&
                   arms_of(b.text) == nullptr;
        };
        for (int from = 0, end = 0; from < size_.cols; from = end) {
            end = run_end(row, from, same);
            const TerminalCell first = cell_(row, from);
            if (const Arms* arms = arms_of(first.text)) {
                lines(row, from, *arms, first);
            } else {
                text(row, from, end, first);
            }
        }
    }

    void lines(int row, int col, const Arms& arms, const TerminalCell& cell) {
        const int x = left(col) + CELL_WIDTH / 2;
        const int y = top(row) + CELL_HEIGHT / 2;
        const auto stroke = [&](int x1, int y1, int x2, int y2) {
            const int thick = cell.bold ? 2 : 1;
            svg_ += rectangle(x1, y1, std::max(x2 - x1, thick), std::max(y2 - y1, thick), cell.fg);
        };
        const int right = left(col) + CELL_WIDTH;
        const int bottom = top(row) + CELL_HEIGHT;
        if (arms.left || arms.right) stroke(arms.left ? left(col) : x, y, arms.right ? right : x + 1, y);
        if (arms.up || arms.down) stroke(x, arms.up ? top(row) : y, x, arms.down ? bottom : y + 1);
    }

    void text(int row, int from, int end, const TerminalCell& look) {
        std::string content;
        for (int col = from; col < end; ++col)
            content += cell_(row, col).text;
        if (content.find_first_not_of(' ') == std::string::npos) return;
        svg_ += "<text xml:space=\"preserve\"" + attribute("x", left(from)) +
                attribute("y", top(row) + BASELINE) + attribute("textLength", (end - from) * CELL_WIDTH) +
                " fill=\"" + color(look.fg) + "\"" + (look.bold ? " font-weight=\"bold\"" : "") + ">" +
                escaped(content) + "</text>\n";
    }

    TerminalSize size_;
    const std::function<TerminalCell(int, int)>& cell_;
    std::string svg_;
};

}  // namespace

std::string draw_picture(TerminalSize size, const std::function<TerminalCell(int, int)>& cell,
                         std::string_view title) {
    return Picture(size, cell).draw(title);
}

void append_utf8(std::string* text, std::uint32_t c) {
    const auto put = [text](std::uint32_t byte) { text->push_back(static_cast<char>(byte)); };
    if (c < 0x80) return put(c);
    if (c < 0x800) {
        put(0xC0 | c >> 6);
    } else {
        if (c < 0x10000) {
            put(0xE0 | c >> 12);
        } else {
            put(0xF0 | c >> 18);
            put(0x80 | (c >> 12 & 0x3F));
        }
        put(0x80 | (c >> 6 & 0x3F));
    }
    put(0x80 | (c & 0x3F));
}
