// The key reader: takes the bytes that are waiting from curses, which knows the terminal's own function keys,
// and settles what curses leaves open: Alt, reverse Tab, foreign control sequences and UTF-8. It owns one
// hidden pad to read through.
#include "libveskcurs/curskeys.h"

#include <curses.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <deque>
#include <iterator>
#include <string>
#include <vector>

namespace {

constexpr int ESCAPE_DELAY_MS = 25;
// Inside a control sequence more is certain to come: a slow line gets more time than a lone Escape does.
constexpr int SEQUENCE_DELAY_MS = 100;
constexpr int NO_WAIT = 0;
constexpr int KEYS_PER_CALL = 256;
constexpr std::size_t LONGEST_SEQUENCE = 32;

// Keys are read through a pad, since curses refreshes any other window that it reads through: the half-drawn
// standard screen would flash below the panels.
WINDOW* g_pad = nullptr;
int g_input_fd = STDIN_FILENO;

WINDOW* key_pad() {
    if (g_pad != nullptr || stdscr == nullptr) return g_pad;
    g_pad = newpad(1, 1);
    if (g_pad == nullptr) return nullptr;
    set_escdelay(ESCAPE_DELAY_MS);
    keypad(g_pad, TRUE);
    // Some descriptions have this sequence under a private name, which curses would then give a code of its
    // own.
    define_key("\033[Z", KEY_BTAB);
    return g_pad;
}

// Sequences that any terminal may send, whatever its description says: what stands after "ESC [", and the
// final letters after "ESC O" too.
struct Sequence {
    const char* body;
    int key;
};
constexpr Sequence SEQUENCES[] = {
    {"Z", CURSKEYS_BTAB}, {"A", KEY_UP},  {"B", KEY_DOWN},   {"C", KEY_RIGHT},  {"D", KEY_LEFT},
    {"H", KEY_HOME},      {"F", KEY_END}, {"1~", KEY_HOME},  {"7~", KEY_HOME},  {"4~", KEY_END},
    {"8~", KEY_END},      {"3~", KEY_DC}, {"5~", KEY_PPAGE}, {"6~", KEY_NPAGE},
};

bool is_final(int c) {
    return c >= 0x40 && c <= 0x7E;
}
bool is_sequence_byte(int c) {
    return c >= 0x20 && c <= 0x7E;
}
bool is_continuation(int c) {
    return c >= 0x80 && c <= 0xBF;
}
// How many bytes follow the first byte of a UTF-8 sequence; 0 when it starts none.
std::size_t utf8_tail(int lead) {
    if (lead >= 0xC2 && lead <= 0xDF) return 1;
    if (lead >= 0xE0 && lead <= 0xEF) return 2;
    if (lead >= 0xF0 && lead <= 0xF4) return 3;
    return 0;
}

class Reader {
  public:
    Reader(WINDOW* pad, CURSKEYS_cb raw_cb, CURSKEYS_cb key_cb)
        : pad_(pad), raw_cb_(raw_cb), key_cb_(key_cb) {}

    // Everything that waits, up to the limit; TRUE when there was anything.
    bool run() {
        int taken = 0;
        for (; taken < KEYS_PER_CALL || !ahead_.empty(); ++taken) {
            const int c = next(NO_WAIT);
            if (c == ERR) break;
            interpret(c, 0);
        }
        return taken > 0;
    }

  private:
    int next(int wait_ms) {
        if (!ahead_.empty()) {
            const int c = ahead_.front();
            ahead_.pop_front();
            return c;
        }
        wtimeout(pad_, wait_ms);
        const int c = wgetch(pad_);
        if (c != ERR && raw_cb_ != nullptr) raw_cb_(c);
        return c;
    }
    void put_back(int c) {
        if (c != ERR) ahead_.push_front(c);
    }
    void emit(int key) {
        if (key_cb_ != nullptr) key_cb_(key);
    }

    // One code of curses; `alt` is CURSKEYS_ALT when an Escape stood before it, else 0.
    void interpret(int c, int alt) {
        if (c == CURSKEYS_ESCAPE) return escape();
        if (c == KEY_BTAB) return emit(CURSKEYS_BTAB);
        if (c >= 0x80 && c <= 0xFF) return high_byte(c, alt);
        emit(alt + c);
    }

    void escape() {
        const int c = next(NO_WAIT);
        if (c == '[') return control_sequence();
        if (c == 'O') return single_shift();
        if (c == KEY_BACKSPACE) return emit(CURSKEYS_ALT + 127);
        if (c == ERR || c == CURSKEYS_ESCAPE || c > 0xFF) {
            put_back(c);
            return emit(CURSKEYS_ESCAPE);
        }
        interpret(c, CURSKEYS_ALT);
    }

    // After "ESC [": parameters and intermediates up to a final letter.
    void control_sequence() {
        std::string body;
        for (;;) {
            const int c = next(body.empty() ? NO_WAIT : SEQUENCE_DELAY_MS);
            if (!is_sequence_byte(c)) return broken_off('[', body, c);
            body += static_cast<char>(c);
            if (body == "[") continue;  // the Linux console's function keys: "ESC [ [ A"
            if (is_final(c) || body.size() == LONGEST_SEQUENCE) return known_or_nothing(body);
        }
    }

    // After "ESC O": a letter, perhaps with digits before it.
    void single_shift() {
        std::string body;
        for (;;) {
            const int c = next(body.empty() ? NO_WAIT : SEQUENCE_DELAY_MS);
            if (!is_sequence_byte(c)) return broken_off('O', body, c);
            body += static_cast<char>(c);
            const bool goes_on = (c >= '0' && c <= '9') || c == ';';
            if (!goes_on || body.size() == LONGEST_SEQUENCE) return known_or_nothing(body);
        }
    }

    // Something that belongs to no sequence came, or nothing more: without any body it was Alt with a
    // character.
    void broken_off(char introducer, const std::string& body, int c) {
        put_back(c);
        if (body.empty()) emit(CURSKEYS_ALT + introducer);
    }

    void known_or_nothing(const std::string& body) {
        const auto* found = std::find_if(std::begin(SEQUENCES), std::end(SEQUENCES),
                                         [&](const Sequence& s) { return body == s.body; });
        if (found != std::end(SEQUENCES)) emit(found->key);
    }

    // A character beyond ASCII is nothing that any window takes; a byte that is part of none is meta.
    void high_byte(int lead, int alt) {
        std::vector<int> tail;
        while (tail.size() < utf8_tail(lead)) {
            const int c = next(ESCAPE_DELAY_MS);
            if (!is_continuation(c)) {
                put_back(c);
                break;
            }
            tail.push_back(c);
        }
        if (!tail.empty() && tail.size() == utf8_tail(lead)) return;
        ahead_.insert(ahead_.begin(), tail.begin(), tail.end());
        if (lead < 0xFF) emit(alt + lead);
    }

    WINDOW* pad_;
    CURSKEYS_cb raw_cb_;
    CURSKEYS_cb key_cb_;
    std::deque<int> ahead_;  // read, but not used yet
};

}  // namespace

BOOL CURSKEYS_is_enter(int key) {
    return key == '\n' || key == '\r' || key == KEY_ENTER;
}

BOOL CURSKEYS_is_backspace(int key) {
    return key == KEY_BACKSPACE || key == 127 || key == 8;
}

void CURSKEYS_set_input_fd(int fd) {
    if (g_pad != nullptr) delwin(g_pad);
    g_pad = nullptr;
    g_input_fd = fd;
}

BOOL CURSKEYS_handle_keys(CURSKEYS_cb raw_cb, CURSKEYS_cb key_cb) {
    WINDOW* pad = key_pad();
    return pad != nullptr && Reader(pad, raw_cb, key_cb).run();
}

BOOL CURSKEYS_terminal_lost() {
    pollfd input{g_input_fd, POLLIN, 0};
    if (poll(&input, 1, 0) <= 0) return FALSE;
    // Readable without a byte to read is the end of the file, with or without a hang-up reported.
    int waiting = 0;
    return ioctl(g_input_fd, FIONREAD, &waiting) != 0 || waiting == 0;
}
