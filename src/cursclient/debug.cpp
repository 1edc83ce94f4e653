// The debug console. Standard error is a pipe while curses owns the terminal: both ends are non-blocking, so
// that a burst of lines may lose some but never stops the only thread, and the pipe is emptied on every pass
// whether the window shows or not.
#include "cursclient/debug.h"

#include <curses.h>
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string>

#include "cursclient/crash.h"
#include "cursclient/wins.h"
#include "cursclient/wintext.h"
#include "libvesk/support/sfmt.h"
#include "libvesk/support/util.h"
#include "libvesk/support/veskfile.h"
#include "libveskcurs/curskeys.h"

namespace {

constexpr int RING_LINES = 4;
constexpr int LINE_SIZE = 70;
constexpr int WIDTH = 72;
constexpr int HEIGHT = 19;

using text_line = char[LINE_SIZE];

// The last four entries; the next slot to fill is also the oldest one.
template <class T>
struct ring {
    T entries[RING_LINES];
    int next;

    void clear() { *this = {}; }
    T& slot() { return entries[next]; }
    void advance() { next = (next + 1) % RING_LINES; }
    [[nodiscard]] const T& oldest(int i) const { return entries[(next + i) % RING_LINES]; }
};

// The parts of a message that are shown, kept as they are: thousands may come for each one that is drawn.
struct DEBUG_message {
    FTIME tm;
    const NETMSG_entry* msg;  // null in a slot that was never filled
    const NETDSD_entry* dsd;
    const void* pds;
    DWORD flags;
    text_line dest;
    text_line src;
};

struct DEBUG_keyevent {
    int key;
    FTIME tm;
};

int g_stderr_fh = -1;    // handle of the read end
int g_stderr_real = -1;  // the standard error that the program was started with
ring<text_line> g_stderr_buffer;
ring<DEBUG_message> g_dmsg_buffer;
std::array<DEBUG_keyevent, RING_LINES> g_debug_keys;  // newest first
int g_debug_last_interp_key;
WINS_window* g_debug_window;

bool capture_failed(const char* what, int line, bool with_errno) {
    if (with_errno)
        UTIL_complain("%s: %s (%s:%i)", what, std::strerror(errno), "debug.c", line);
    else
        UTIL_complain("%s (%s:%i)", what, "debug.c", line);
    return false;
}

void read_stderr() {
    char line[LINE_SIZE];
    while (g_stderr_fh != -1 && VESKFILE_readuntil_int(g_stderr_fh, line, sizeof line, "\n", 1) > 0) {
        UTIL_strcpynt(g_stderr_buffer.slot(), line);
        g_stderr_buffer.advance();
    }
}

char shown_character(int key) {
    return UTIL_shown(static_cast<char>(key & 0x7F));
}

SFMT_buffer g_line;  // for building lines

template <class... A>
void put(int y, SFMT_format<std::type_identity_t<A>...> format, A... values) {
    SFMT_printf(&g_line, format, values...);
    WINTEXT_put(g_debug_window, y, 1, SFMT_get_buffer(&g_line));
}

void draw_clock() {
    const FTIME now = UTIL_ftime();
    const double whole = std::floor(now);
    const auto seconds = static_cast<std::time_t>(whole);
    std::tm local{};
    localtime_r(&seconds, &local);
    put(1, "Time: %.4f - %04d-%02d-%02d %02d:%02d:%02d.%04d", now, local.tm_year + 1900, local.tm_mon + 1,
        local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec, static_cast<int>((now - whole) * 10000.0));
}

void draw_keys() {
    const int last = g_debug_last_interp_key;
    put(2, "Last interpreted keystoke: '%c' - 0x%08X %d", shown_character(last), static_cast<unsigned>(last),
        last);
    WINTEXT_rule(g_debug_window, 3, "Keystokes");
    for (int i = 0; i < RING_LINES; ++i) {
        const DEBUG_keyevent& event = g_debug_keys[static_cast<std::size_t>(RING_LINES - 1 - i)];
        put(4 + i, "%.4f - '%c' - 0x%08X %d", event.tm, shown_character(event.key),
            static_cast<unsigned>(event.key), event.key);
    }
}

void draw_message(int y, const DEBUG_message& m) {
    SFMT_printf(&g_line, "%0.1f,%s,%s,%s,0x%08X", m.tm, m.msg->name, m.dest, m.src, m.flags);
    if (m.dsd != nullptr && m.dsd->name != nullptr)
        SFMT_printfcat(&g_line, ",(%s)0x%08lx", m.dsd->name, reinterpret_cast<unsigned long>(m.pds));
    WINTEXT_put(g_debug_window, y, 1, std::string_view(SFMT_get_buffer(&g_line)).substr(0, LINE_SIZE - 1));
}

void draw_messages() {
    WINTEXT_rule(g_debug_window, 8, "Messages");
    for (int i = 0; i < RING_LINES; ++i)
        if (const DEBUG_message& m = g_dmsg_buffer.oldest(i); m.msg != nullptr) draw_message(9 + i, m);
}

void draw_stderr() {
    WINTEXT_rule(g_debug_window, 13, "Standard Error");
    for (int i = 0; i < RING_LINES; ++i)
        WINTEXT_put(g_debug_window, 14 + i, 1, g_stderr_buffer.oldest(i));
}

}  // namespace

BOOL DEBUG_preinit() {
    g_stderr_buffer.clear();
    g_dmsg_buffer.clear();
    g_debug_keys = {};
    g_debug_last_interp_key = 0;
    g_stderr_fh = -1;
    int ends[2];
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) == -1) return capture_failed("Failed to create pipe", 219, TRUE);
    g_stderr_real = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (g_stderr_real == -1 || dup2(ends[1], STDERR_FILENO) == -1) {
        capture_failed("Failed to redirect stderr", 223, TRUE);
        close(ends[0]);
        close(ends[1]);
        DEBUG_release_stderr();
        return FALSE;
    }
    close(ends[1]);
    g_stderr_fh = VESKFILE_associate_fh(ends[0], 0);
    if (g_stderr_fh != -1) {
        CRASH_set_captured_stderr(g_stderr_real, ends[0]);
        return TRUE;
    }
    DEBUG_release_stderr();
    close(ends[0]);
    return capture_failed("Error associating stderr", 230, FALSE);
}

BOOL DEBUG_init() {
    g_debug_window = WINS_create(nullptr, WIDTH, HEIGHT);
    return g_debug_window != nullptr;
}

void DEBUG_cleanup() {
    WINS_delete(g_debug_window);
    g_debug_window = nullptr;
    SFMT_destroy_buffer(&g_line);
    read_stderr();  // the operator had these in view: a program that ends in order ends quietly
}

void DEBUG_release_stderr() {
    CRASH_set_captured_stderr(-1, -1);
    if (g_stderr_real != -1) {
        dup2(g_stderr_real, STDERR_FILENO);
        close(g_stderr_real);
        g_stderr_real = -1;
    }
    if (g_stderr_fh == -1) return;
    char line[256];
    while (VESKFILE_readuntil_int(g_stderr_fh, line, sizeof line, "\n", 1) > 0)
        UTIL_say(line);
    if (VESKFILE_readrest(g_stderr_fh, line, sizeof line) > 0) UTIL_say(line);
    VESKFILE_close(g_stderr_fh);
    g_stderr_fh = -1;
}

void DEBUG_rawkeypress(int key) {
    if (key == KEY_F(5) && g_debug_window != nullptr) WINS_focus_window(g_debug_window);
    for (std::size_t i = g_debug_keys.size() - 1; i > 0; --i)
        g_debug_keys[i] = g_debug_keys[i - 1];
    g_debug_keys[0] = {key, UTIL_ftime()};
}

void DEBUG_interpkeypress(int key) {
    g_debug_last_interp_key = key;
}

BOOL DEBUG_keypress(int key) {
    return g_debug_window != nullptr && WINS_default_keyhandler(g_debug_window, key);
}

BOOL DEBUG_handle_message(const VESKMSG_proc_msg* pm) {
    const auto text = [](const char* s) { return s != nullptr ? s : ""; };
    DEBUG_message& m = g_dmsg_buffer.slot();
    m.tm = UTIL_ftime();
    m.msg = pm->msg;
    m.dsd = pm->dsd;
    m.pds = pm->pds;
    m.flags = pm->flags;
    UTIL_strcpynt(m.dest, text(pm->dest_name));
    UTIL_strcpynt(m.src, text(pm->src_name));
    g_dmsg_buffer.advance();
    return FALSE;
}

void DEBUG_update() {
    read_stderr();
    if (g_debug_window == nullptr || !g_debug_window->visible) return;
    WINS_draw_frame(g_debug_window, "Debug");
    draw_clock();
    draw_keys();
    draw_messages();
    draw_stderr();
}
