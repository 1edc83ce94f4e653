// Start and end of the curses screen.
#include "cursclient/winscreen.h"

#include <curses.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>

#include "libvesk/util.h"

namespace {

SCREEN* g_screen = nullptr;

void complain_about_terminal() {
    const char* term = std::getenv("TERM");
    if (term == nullptr || *term == '\0')
        UTIL_complain("cannot use the terminal: TERM is not set");
    else
        UTIL_complain("cannot use the terminal: its type \"%s\" (TERM) is unknown or cannot move the cursor",
                      term);
}

}  // namespace

BOOL WINSCREEN_start() {
    // Characters only: numbers on the screen and in files keep their point in every language.
    std::setlocale(LC_CTYPE, "");
    g_screen = newterm(nullptr, stdout, stdin);
    if (g_screen == nullptr || tigetstr("cup") == nullptr) {
        WINSCREEN_end();
        complain_about_terminal();
        return FALSE;
    }
    cbreak();
    noecho();
    nonl();
    def_prog_mode();
    return TRUE;
}

void WINSCREEN_end() {
    if (g_screen == nullptr) return;
    endwin();
    delscreen(g_screen);
    g_screen = nullptr;
}
