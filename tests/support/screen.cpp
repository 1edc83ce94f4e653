// The curses screen in memory: newterm on a pipe and /dev/null, with cells read back from the windows that
// curses keeps. Nothing here depends on the terminal, the locale or the environment that the tests run in.
#include "support/screen.h"

#include <fcntl.h>
#include <panel.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "libveskcurs/curskeys.h"

struct TestScreen::Impl {
    SCREEN* screen = nullptr;
    std::FILE* in = nullptr;
    std::FILE* out = nullptr;
    int keys_fd = -1;  // the pipe's end that the tests type into
};

namespace {

[[noreturn]] void die(const char* what) {
    std::perror(what);
    std::abort();
}

struct Cell {
    wchar_t ch = L' ';
    attr_t attributes = 0;
    short pair = 0;
};

// The cursor of the window stays where it was: some code prints at it.
Cell cell_at(WINDOW* win, int y, int x) {
    const int old_y = getcury(win);
    const int old_x = getcurx(win);
    cchar_t raw{};
    wchar_t text[CCHARW_MAX + 1] = {};
    Cell cell;
    if (mvwin_wch(win, y, x, &raw) == OK) {
        getcchar(&raw, text, &cell.attributes, &cell.pair, nullptr);
        cell.ch = text[0];
    }
    wmove(win, old_y, old_x);
    return cell;
}

// Line drawing and the like: as curses stores it in a cell (a letter of the alternate character set), as a
// terminal shows it, and as texts of tests have it.
struct Glyph {
    wchar_t alternate;
    wchar_t shown;
    char ascii;
};
constexpr Glyph GLYPHS[] = {{L'q', L'─', '-'}, {L'x', L'│', '|'}, {L'l', L'┌', '+'}, {L'k', L'┐', '+'},
                            {L'm', L'└', '+'}, {L'j', L'┘', '+'}, {L't', L'├', '+'}, {L'u', L'┤', '+'},
                            {L'w', L'┬', '+'}, {L'v', L'┴', '+'}, {L'n', L'┼', '+'}, {L'a', L'▒', '#'},
                            {L'0', L'█', '#'}, {L'-', L'↑', '^'}, {L'.', L'↓', 'v'}, {L',', L'←', '<'},
                            {L'+', L'→', '>'}};

wchar_t shown_in(const Cell& cell) {
    if ((cell.attributes & A_ALTCHARSET) != 0)
        for (const Glyph& glyph : GLYPHS)
            if (cell.ch == glyph.alternate) return glyph.shown;
    return cell.ch == L'\0' ? L' ' : cell.ch;
}

char cell_as_ascii(const Cell& cell) {
    const wchar_t shown = shown_in(cell);
    for (const Glyph& glyph : GLYPHS)
        if (shown == glyph.shown) return glyph.ascii;
    return shown >= 32 && shown < 127 ? static_cast<char>(shown) : '?';
}

// The environment is where curses takes the size from before it asks any terminal.
SCREEN* start_curses(int lines, int cols, const char* term, std::FILE* out, std::FILE* in) {
    setenv("LINES", std::to_string(lines).c_str(), 1);
    setenv("COLUMNS", std::to_string(cols).c_str(), 1);
    use_env(TRUE);
    SCREEN* screen = newterm(term, out, in);
    unsetenv("LINES");
    unsetenv("COLUMNS");
    return screen;
}

void set_up_colors() {
    if (!has_colors()) return;
    start_color();
    init_pair(1, COLOR_WHITE, COLOR_BLACK);
    init_pair(2, COLOR_WHITE, COLOR_BLUE);
    init_pair(3, COLOR_YELLOW, COLOR_BLUE);
    init_pair(4, COLOR_YELLOW, COLOR_BLACK);
    init_pair(5, COLOR_RED, COLOR_BLUE);
    init_pair(6, COLOR_WHITE, COLOR_RED);
}

}  // namespace

TestScreen::TestScreen(int lines, int cols, const char* term) : impl_(std::make_unique<Impl>()) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) die("pipe2");
    impl_->keys_fd = ends[1];
    impl_->in = fdopen(ends[0], "r");
    impl_->out = std::fopen("/dev/null", "w");
    if (impl_->in == nullptr || impl_->out == nullptr) die("fdopen");

    impl_->screen = start_curses(lines, cols, term, impl_->out, impl_->in);
    if (impl_->screen == nullptr) die(term);
    set_up_colors();
    // A pipe refuses these modes, a terminal would not; keys pass through unchanged either way.
    cbreak();
    noecho();
    nonl();
    keypad(stdscr, TRUE);
    nodelay(stdscr, TRUE);
    meta(stdscr, TRUE);
    CURSKEYS_set_input_fd(ends[0]);
}

TestScreen::~TestScreen() {
    CURSKEYS_set_input_fd(STDIN_FILENO);
    endwin();
    delscreen(impl_->screen);
    hang_up();
    std::fclose(impl_->in);
    std::fclose(impl_->out);
}

void TestScreen::use() {
    set_term(impl_->screen);
}

void TestScreen::type(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t n = write(impl_->keys_fd, bytes.data(), bytes.size());
        if (n <= 0) die("typing into the screen");
        bytes.remove_prefix(static_cast<std::size_t>(n));
    }
}

void TestScreen::hang_up() {
    if (impl_->keys_fd >= 0) close(impl_->keys_fd);
    impl_->keys_fd = -1;
}

void TestScreen::resize(int lines, int cols) {
    resizeterm(lines, cols);
}

std::string TestScreen::row(WINDOW* win, int y) {
    std::string text;
    const int columns = getmaxx(win);
    for (int x = 0; x < columns; ++x)
        text += cell_as_ascii(cell_at(win, y, x));
    return text;
}

std::string TestScreen::screen_row(int y) {
    update_panels();
    return row(newscr, y);
}

std::string TestScreen::dump(WINDOW* win) {
    std::string all;
    for (int y = 0; y < getmaxy(win); ++y) {
        std::string line = row(win, y);
        line.erase(line.find_last_not_of(' ') + 1);
        all += line + '\n';
    }
    return all;
}

std::string TestScreen::screen_dump() {
    update_panels();
    return dump(newscr);
}

attr_t TestScreen::attributes(WINDOW* win, int y, int x) {
    return cell_at(win, y, x).attributes & ~static_cast<attr_t>(A_COLOR);
}

int TestScreen::color_pair(WINDOW* win, int y, int x) {
    return cell_at(win, y, x).pair;
}

wchar_t TestScreen::character(WINDOW* win, int y, int x) {
    return shown_in(cell_at(win, y, x));
}
