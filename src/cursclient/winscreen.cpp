// Start and end of the curses screen.
#include "cursclient/winscreen.h"

#include <curses.h>
#include <unistd.h>

#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "cursclient/crash.h"
#include "libvesk/support/util.h"

namespace {

SCREEN* g_screen = nullptr;
volatile std::sig_atomic_t g_size_signalled = 0;
struct sigaction g_curses_action;  // what curses itself does on a new size

void on_new_size(int signal) {
    g_size_signalled = 1;
    if (g_curses_action.sa_handler != SIG_DFL && g_curses_action.sa_handler != SIG_IGN)
        g_curses_action.sa_handler(signal);
}

void watch_size() {
    sigaction(SIGWINCH, nullptr, &g_curses_action);
    struct sigaction action = g_curses_action;
    action.sa_handler = on_new_size;
    sigaction(SIGWINCH, &action, nullptr);
}

void complain_about_terminal() {
    const char* term = std::getenv("TERM");
    if (term == nullptr || *term == '\0')
        UTIL_complain("cannot use the terminal: TERM is not set");
    else
        UTIL_complain("cannot use the terminal: its type \"%s\" (TERM) is unknown or cannot move the cursor",
                      term);
}

void end_curses() {
    if (g_screen == nullptr) return;
    endwin();
    delscreen(g_screen);
    g_screen = nullptr;
}

}  // namespace

BOOL WINSCREEN_start() {
    // Characters only: numbers on the screen and in files keep their point in every language.
    std::setlocale(LC_CTYPE, "");
    termios settings{};
    const bool is_line = tcgetattr(STDOUT_FILENO, &settings) == 0;
    g_screen = newterm(nullptr, stdout, stdin);
    if (g_screen == nullptr || tigetstr("cup") == nullptr) {
        end_curses();
        complain_about_terminal();
        return FALSE;
    }
    cbreak();
    noecho();
    nonl();
    def_prog_mode();
    watch_size();
    if (is_line) CRASH_arm(settings);
    return TRUE;
}

BOOL WINSCREEN_size_signalled() {
    const BOOL signalled = g_size_signalled != 0;
    g_size_signalled = 0;
    return signalled;
}

void WINSCREEN_end() {
    if (g_screen == nullptr) return;
    sigaction(SIGWINCH, &g_curses_action, nullptr);
    end_curses();
    CRASH_disarm();
}
