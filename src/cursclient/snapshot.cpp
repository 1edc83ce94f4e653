#include "cursclient/snapshot.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <utility>

#include "cursclient/dialog.h"
#include "cursclient/wincolor.h"
#include "libvesk/support/util.h"

namespace {

struct colors {
    std::uint32_t fg, bg;
};
constexpr colors BY_PAIR[] = {{TERMINAL_WHITE, TERMINAL_BLACK},  {TERMINAL_WHITE, TERMINAL_BLACK},
                              {TERMINAL_WHITE, TERMINAL_BLUE},   {TERMINAL_YELLOW, TERMINAL_BLUE},
                              {TERMINAL_YELLOW, TERMINAL_BLACK}, {TERMINAL_RED, TERMINAL_BLUE},
                              {TERMINAL_WHITE, TERMINAL_RED}};
static_assert(std::size(BY_PAIR) == CP_LAST);

// Letters of the alternate character set that frames, bars and scroll marks are made of.
struct glyph {
    wchar_t letter, shown;
};
constexpr glyph GLYPHS[] = {{L'q', L'─'}, {L'x', L'│'}, {L'l', L'┌'}, {L'k', L'┐'}, {L'm', L'└'},
                            {L'j', L'┘'}, {L't', L'├'}, {L'u', L'┤'}, {L'w', L'┬'}, {L'v', L'┴'},
                            {L'n', L'┼'}, {L'a', L'▒'}, {L'0', L'█'}, {L'-', L'↑'}, {L'.', L'↓'},
                            {L',', L'←'}, {L'+', L'→'}};

wchar_t shown(wchar_t c, attr_t attributes) {
    if ((attributes & A_ALTCHARSET) != 0)
        for (const glyph& g : GLYPHS)
            if (c == g.letter) return g.shown;
    return c == L'\0' ? L' ' : c;
}

std::string path_of(const char* ending) {
    const auto now = static_cast<std::time_t>(UTIL_ftime());
    std::tm utc{};
    gmtime_r(&now, &utc);
    char name[40];
    std::strftime(name, sizeof name, "vesk-%Y%m%d-%H%M%S", &utc);
    const char* home = std::getenv("HOME");
    return std::string(home != nullptr && *home != '\0' ? home : ".") + "/" + name + ending;
}

std::string screen_as_text() {
    std::string text;
    for (int y = 0; y < LINES; ++y) {
        std::string row;
        for (int x = 0; x < COLS; ++x)
            row += SNAPSHOT_cell(curscr, y, x).text;
        row.erase(row.find_last_not_of(' ') + 1);
        text += row + "\n";
    }
    return text;
}

std::string screen_as_picture() {
    return draw_picture(
        {LINES, COLS}, [](int y, int x) { return SNAPSHOT_cell(curscr, y, x); }, "vesk");
}

// FALSE: errno says why.
BOOL write_file(const std::string& path, const std::string& content) {
    std::FILE* file = std::fopen(path.c_str(), "wx");
    if (file == nullptr) return FALSE;
    const bool written = std::fwrite(content.data(), 1, content.size(), file) == content.size();
    return std::fclose(file) == 0 && written;
}

void write_screen() {
    const std::string text = path_of(".txt"), picture = path_of(".svg");
    if (write_file(text, screen_as_text()) && write_file(picture, screen_as_picture()))
        DIALOG_tell("Screen written", {text.c_str(), picture.c_str()}, "Close");
    else
        DIALOG_tell("Screen not written", {std::strerror(errno), text.c_str()}, "Close");
}

}  // namespace

TerminalCell SNAPSHOT_cell(WINDOW* win, int y, int x) {
    const int old_y = getcury(win), old_x = getcurx(win);
    cchar_t raw{};
    wchar_t text[CCHARW_MAX + 1] = {};
    attr_t attributes = 0;
    short pair = 0;
    if (mvwin_wch(win, y, x, &raw) == OK) getcchar(&raw, text, &attributes, &pair, nullptr);
    wmove(win, old_y, old_x);
    auto [fg, bg] = BY_PAIR[pair >= 0 && pair < CP_LAST ? pair : 0];
    const bool reverse = (attributes & A_REVERSE) != 0;
    if (reverse) std::swap(fg, bg);
    TerminalCell cell{.text = {}, .fg = fg, .bg = bg, .bold = (attributes & A_BOLD) != 0, .reverse = reverse};
    append_utf8(&cell.text, static_cast<std::uint32_t>(shown(text[0], attributes)));
    return cell;
}

BOOL SNAPSHOT_keypress(int key) {
    if (key != KEY_F(6)) return FALSE;
    write_screen();
    return TRUE;
}
