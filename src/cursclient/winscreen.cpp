// Start and end of the curses screen, and the way of its bytes. Curses writes to a descriptor of its own,
// which is the terminal, since curses asks that for its size and settings; only while it writes a picture
// does memory stand in the terminal's place.
#include "cursclient/winscreen.h"

#include <curses.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "cursclient/crash.h"
#include "cursclient/ttyline.h"
#include "libvesk/support/util.h"

namespace {

constexpr int PARTING_MS = 1000;

SCREEN* g_screen = nullptr;
std::FILE* g_curses_out = nullptr;  // what curses writes to
int g_memory = -1;                  // takes its place during an update
int g_line = -1;                    // the terminal, to be written to without waiting
std::string g_waiting;              // what it has not taken yet
std::string g_title;                // of the terminal's window; "" while it has its own

bool g_is_line = false;
termios g_shell_settings;  // as the terminal was found
termios g_settings;        // as the console has it

volatile std::sig_atomic_t g_size_signalled = 0;
volatile std::sig_atomic_t g_stop_asked = 0;
struct sigaction g_curses_winch;  // what curses itself does on a new size
struct sigaction g_curses_tstp;

// ---- signals

void on_new_size(int signal) {
    g_size_signalled = 1;
    if (g_curses_winch.sa_handler != SIG_DFL && g_curses_winch.sa_handler != SIG_IGN)
        g_curses_winch.sa_handler(signal);
}

void on_stop(int) {
    g_stop_asked = 1;
}

// Curses would stop in the handler itself, in the middle of whatever is being written.
void watch_signals() {
    sigaction(SIGWINCH, nullptr, &g_curses_winch);
    struct sigaction action = g_curses_winch;
    action.sa_handler = on_new_size;
    sigaction(SIGWINCH, &action, nullptr);
    sigaction(SIGTSTP, nullptr, &g_curses_tstp);
    if (g_curses_tstp.sa_handler == SIG_IGN) return;
    action = g_curses_tstp;
    action.sa_handler = on_stop;
    sigaction(SIGTSTP, &action, nullptr);
}

void unwatch_signals() {
    sigaction(SIGWINCH, &g_curses_winch, nullptr);
    sigaction(SIGTSTP, &g_curses_tstp, nullptr);
}

// ---- start

void complain_about_terminal() {
    const char* term = std::getenv("TERM");
    if (term == nullptr || *term == '\0')
        UTIL_complain("cannot use the terminal: TERM is not set");
    else
        UTIL_complain("cannot use the terminal: its type \"%s\" (TERM) is unknown or cannot move the cursor",
                      term);
}

// A pseudo-terminal passes on what it gets at any speed; a real line may need its Ctrl-S and Ctrl-Q.
bool is_pseudo_terminal(int fd) {
    constexpr unsigned FIRST_MAJOR = 136, LAST_MAJOR = 143;  // of Linux's pseudo-terminals
    struct stat st {};
    return fstat(fd, &st) == 0 && S_ISCHR(st.st_mode) && major(st.st_rdev) >= FIRST_MAJOR &&
           major(st.st_rdev) <= LAST_MAJOR;
}

// Curses' own settings, made known to it.
void set_line() {
    cbreak();
    noecho();
    nonl();
    if (!g_is_line) return;
    tcgetattr(STDOUT_FILENO, &g_settings);
    if (is_pseudo_terminal(STDOUT_FILENO)) g_settings.c_iflag &= ~static_cast<tcflag_t>(IXON);
    tcsetattr(STDOUT_FILENO, TCSANOW, &g_settings);
    def_prog_mode();
}

// A description of its own, so that standard output, which others share, need not stop blocking. It may not
// be had of a terminal that belongs to somebody else.
void open_line() {
    const std::string name = "/proc/self/fd/" + std::to_string(STDOUT_FILENO);
    g_line = open(name.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (g_line == -1) g_line = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    g_memory = memfd_create("screen", MFD_CLOEXEC);
}

void close_all() {
    delscreen(g_screen);
    g_screen = nullptr;
    for (int* fd : {&g_memory, &g_line}) {
        if (*fd != -1) close(*fd);
        *fd = -1;
    }
    std::fclose(g_curses_out);
    g_curses_out = nullptr;
    g_waiting.clear();
}

BOOL start_curses() {
    const int fd = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    g_curses_out = fd != -1 ? fdopen(fd, "w") : nullptr;
    if (g_curses_out == nullptr) {
        if (fd != -1) close(fd);
        return FALSE;
    }
    g_screen = newterm(nullptr, g_curses_out, stdin);
    if (g_screen != nullptr && tigetstr("cup") != nullptr) return TRUE;
    if (g_screen != nullptr) endwin();
    close_all();
    return FALSE;
}

// ---- the way of the bytes

void take_from_memory() {
    const off_t size = lseek(g_memory, 0, SEEK_CUR);
    if (size <= 0) return;
    const std::size_t before = g_waiting.size();
    g_waiting.resize(before + static_cast<std::size_t>(size));
    const ssize_t n = pread(g_memory, g_waiting.data() + before, static_cast<std::size_t>(size), 0);
    g_waiting.resize(before + static_cast<std::size_t>(n > 0 ? n : 0));
    lseek(g_memory, 0, SEEK_SET);
}

// Queues the bytes that curses writes in `write` until the terminal takes them.
template <class WRITE>
void collect(WRITE write) {
    if (g_memory == -1) {
        write();
        return;
    }
    dup3(g_memory, fileno(g_curses_out), O_CLOEXEC);
    write();
    dup3(STDOUT_FILENO, fileno(g_curses_out), O_CLOEXEC);
    take_from_memory();
}

// xterm's sequences, which the terminals below have taken over: OSC 2 sets the title of the window, and
// 22;2 and 23;2 of XTWINOPS keep and restore it.
constexpr char PUSH_TITLE[] = "\033[22;2t";
constexpr char POP_TITLE[] = "\033[23;2t";

bool has_title() {
    static constexpr std::string_view FAMILIES[] = {
        "xterm", "tmux", "screen", "rxvt", "alacritty", "foot", "konsole", "gnome", "vte", "kitty", "st-"};
    const char* term = std::getenv("TERM");
    return term != nullptr && std::ranges::any_of(FAMILIES, [term](std::string_view family) {
               return std::string_view(term).starts_with(family);
           });
}

// The terminal as it was found. Of one that does not take it within the time, what it still holds is thrown
// away for it.
void give_back() {
    (void)WINSCREEN_ready();
    const std::size_t picture = g_waiting.size();
    collect([] { endwin(); });
    if (!g_title.empty()) g_waiting += POP_TITLE;
    g_title.clear();
    const std::size_t taken = TTYLINE_write(g_line, g_waiting.data(), g_waiting.size(), PARTING_MS);
    if (taken < g_waiting.size()) {
        TTYLINE_release(g_line);
        TTYLINE_write(g_line, g_waiting.data() + picture, g_waiting.size() - picture, 0);
    }
    g_waiting.clear();
    if (g_is_line) tcsetattr(STDOUT_FILENO, TCSANOW, &g_shell_settings);
}

}  // namespace

BOOL WINSCREEN_start() {
    // Characters only: numbers on the screen and in files keep their point in every language.
    std::setlocale(LC_CTYPE, "");
    g_is_line = tcgetattr(STDOUT_FILENO, &g_shell_settings) == 0;
    if (!start_curses()) {
        complain_about_terminal();
        return FALSE;
    }
    set_line();
    open_line();
    watch_signals();
    if (g_is_line) CRASH_arm(g_shell_settings);
    return TRUE;
}

void WINSCREEN_update() {
    collect([] { doupdate(); });
    (void)WINSCREEN_ready();
}

BOOL WINSCREEN_ready() {
    if (g_waiting.empty()) return TRUE;
    g_waiting.erase(0, TTYLINE_write(g_line, g_waiting.data(), g_waiting.size(), 0));
    return g_waiting.empty();
}

int WINSCREEN_waiting_fd() {
    return g_waiting.empty() ? -1 : g_line;
}

void WINSCREEN_title(const std::string& title) {
    if (g_screen == nullptr || title == g_title || !has_title()) return;
    if (g_title.empty()) g_waiting += PUSH_TITLE;
    g_waiting += "\033]2;" + title + "\a";
    g_title = title;
}

void WINSCREEN_repaint() {
    clearok(curscr, TRUE);
}

void WINSCREEN_stop_if_asked() {
    if (g_stop_asked == 0) return;
    g_stop_asked = 0;
    give_back();
    struct sigaction mine {};
    struct sigaction stop {};
    stop.sa_handler = SIG_DFL;
    sigaction(SIGTSTP, &stop, &mine);
    raise(SIGTSTP);
    sigaction(SIGTSTP, &mine, nullptr);
    if (g_is_line) tcsetattr(STDOUT_FILENO, TCSANOW, &g_settings);
    WINSCREEN_repaint();
}

BOOL WINSCREEN_size_signalled() {
    const BOOL signalled = g_size_signalled != 0;
    g_size_signalled = 0;
    return signalled;
}

void WINSCREEN_end() {
    if (g_screen == nullptr) return;
    unwatch_signals();
    give_back();
    close_all();
    CRASH_disarm();
}
