// The key reader: takes the bytes that are waiting from curses, which knows the terminal's own function keys,
// and settles what curses leaves open: Alt, reverse Tab, foreign control sequences and UTF-8. It owns one
// hidden pad to read through.
#include "libveskcurs/curskeys.h"

#include <curses.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <deque>
#include <iterator>
#include <string>
#include <vector>

namespace {

using steady = std::chrono::steady_clock;

constexpr int NO_WAIT = 0;
// For so long after a lone Escape what looks like the rest of a sequence, and came in one piece, is one.
constexpr std::chrono::milliseconds LATE_REST{300};
constexpr int KEYS_PER_CALL = 2048;
constexpr std::size_t LONGEST_SEQUENCE = 32;

// Keys are read through a pad, since curses refreshes any other window that it reads through: the half-drawn
// standard screen would flash below the panels.
WINDOW* g_pad = nullptr;
int g_input_fd = STDIN_FILENO;
steady::time_point g_lone_escape;  // when the last one was given out

int bytes_waiting() {
    int waiting = 0;
    return ioctl(g_input_fd, FIONREAD, &waiting) == 0 ? waiting : 0;
}

WINDOW* key_pad() {
    if (g_pad != nullptr || stdscr == nullptr) return g_pad;
    g_pad = newpad(1, 1);
    if (g_pad == nullptr) return nullptr;
    set_escdelay(CURSKEYS_ESCAPE_MS);
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
    {"Z", CURSKEYS_BTAB}, {"A", KEY_UP},     {"B", KEY_DOWN},    {"C", KEY_RIGHT},   {"D", KEY_LEFT},
    {"H", KEY_HOME},      {"F", KEY_END},    {"1~", KEY_HOME},   {"7~", KEY_HOME},   {"4~", KEY_END},
    {"8~", KEY_END},      {"3~", KEY_DC},    {"5~", KEY_PPAGE},  {"6~", KEY_NPAGE},  {"P", KEY_F(1)},
    {"Q", KEY_F(2)},      {"R", KEY_F(3)},   {"S", KEY_F(4)},    {"11~", KEY_F(1)},  {"12~", KEY_F(2)},
    {"13~", KEY_F(3)},    {"14~", KEY_F(4)}, {"15~", KEY_F(5)},  {"17~", KEY_F(6)},  {"18~", KEY_F(7)},
    {"19~", KEY_F(8)},    {"20~", KEY_F(9)}, {"21~", KEY_F(10)}, {"23~", KEY_F(11)}, {"24~", KEY_F(12)},
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
        asked_ = steady::now();
        if (waiting_ == 0) waiting_ = bytes_waiting();
        // Told to wait for ever, curses reads a byte that is known to be there without asking for it first:
        // half the price of a text that is pasted.
        wtimeout(pad_, waiting_ > 0 ? -1 : wait_ms);
        const int c = wgetch(pad_);
        // A key of the terminal's own may have been any number of bytes.
        waiting_ = c >= 0 && c <= 0xFF && waiting_ > 0 ? waiting_ - 1 : 0;
        if (c != ERR && raw_cb_ != nullptr) raw_cb_(c);
        return c;
    }
    // The rest of an Escape's time: curses has waited too, if its terminal has keys that begin with one.
    [[nodiscard]] int rest_of_escape() const {
        const auto passed = std::chrono::ceil<std::chrono::milliseconds>(steady::now() - asked_);
        return static_cast<int>(std::clamp<long>(CURSKEYS_ESCAPE_MS - passed.count(), 0, CURSKEYS_ESCAPE_MS));
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
        if (alt == 0 && (c == '[' || c == 'O') && is_late_rest()) return swallow_sequence(c);
        emit(alt + c);
    }

    void escape() {
        const int c = next(rest_of_escape());
        if (c == '[') return known_or_nothing(control_sequence());
        if (c == 'O') return known_or_nothing(single_shift());
        if (c == KEY_BACKSPACE) return emit(CURSKEYS_ALT + 127);
        if (c == ERR || c == CURSKEYS_ESCAPE || c > 0xFF) {
            put_back(c);
            if (c == ERR) g_lone_escape = steady::now();
            return emit(CURSKEYS_ESCAPE);
        }
        interpret(c, CURSKEYS_ALT);
    }

    // The Escape of a sequence came so far ahead that it was taken for a key. The rest must not be typed into
    // a window; nobody types two characters at once.
    bool is_late_rest() {
        if (steady::now() - g_lone_escape > LATE_REST) return false;
        const int c = next(NO_WAIT);
        put_back(c);
        return is_sequence_byte(c);
    }
    void swallow_sequence(int introducer) { (void)(introducer == '[' ? control_sequence() : single_shift()); }

    // After "ESC [": parameters and intermediates up to a final letter.
    std::string control_sequence() {
        return body('[', CURSKEYS_SEQUENCE_MS, [](const std::string& text) {
            return text != "[" && is_final(text.back());  // the Linux console's function keys: "ESC [ [ A"
        });
    }

    // After "ESC O": a letter, perhaps with digits before it.
    std::string single_shift() {
        return body('O', rest_of_escape(), [](const std::string& text) {
            return (text.back() < '0' || text.back() > '9') && text.back() != ';';
        });
    }

    // The body of a sequence, to be waited for for `wait_ms`; "" when it was broken off by something that
    // belongs to none, or by silence. Without any body it was Alt with the introducer.
    template <class COMPLETE>
    std::string body(char introducer, int wait_ms, COMPLETE complete) {
        std::string text;
        for (;;) {
            const int c = next(text.empty() ? wait_ms : CURSKEYS_SEQUENCE_MS);
            if (!is_sequence_byte(c)) {
                put_back(c);
                if (text.empty()) emit(CURSKEYS_ALT + introducer);
                return "";
            }
            text += static_cast<char>(c);
            if (complete(text) || text.size() == LONGEST_SEQUENCE) return text;
        }
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
            const int c = next(CURSKEYS_ESCAPE_MS);
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
    steady::time_point asked_;  // when curses was last asked for a key
    int waiting_ = 0;           // bytes that are there at least, in the descriptor or in curses
    std::deque<int> ahead_;     // read, but not used yet
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
    g_lone_escape = {};
}

int CURSKEYS_input_fd() {
    return g_input_fd;
}

BOOL CURSKEYS_handle_keys(CURSKEYS_cb raw_cb, CURSKEYS_cb key_cb) {
    WINDOW* pad = key_pad();
    return pad != nullptr && Reader(pad, raw_cb, key_cb).run();
}

BOOL CURSKEYS_terminal_lost() {
    pollfd input{g_input_fd, POLLIN, 0};
    if (poll(&input, 1, 0) <= 0) return FALSE;
    // Readable without a byte to read is the end of the file, with or without a hang-up reported.
    return bytes_waiting() == 0;
}
