// The handler of a crash's signals. It may only use what is safe when anything may be broken: writes, and the
// settings of the line.
#include "cursclient/crash.h"

#include <curses.h>
#include <term.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstddef>
#include <iterator>

#include "cursclient/ttyline.h"

namespace {

constexpr int SIGNALS[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};
constexpr std::size_t COUNT = std::size(SIGNALS);
constexpr int PATIENCE_MS = 200;
constexpr std::size_t STACK_SIZE = 64 * 1024;  // of its own: the fault may be that the usual one is full

bool g_armed = false;
termios g_settings;
struct sigaction g_before[COUNT];
alignas(16) std::array<char, STACK_SIZE> g_stack;
bool g_own_stack = false;

volatile std::sig_atomic_t g_stderr_real = -1;
volatile std::sig_atomic_t g_stderr_captured = -1;

// The sequences that give the screen back.
std::array<char, 512> g_sequences;
std::size_t g_sequences_used = 0;

int add_character(int c) {
    if (g_sequences_used == g_sequences.size()) return ERR;
    g_sequences[g_sequences_used++] = static_cast<char>(c);
    return c;
}

void add_sequence(const char* sequence) {
    if (sequence != nullptr) tputs(sequence, 1, add_character);
}

// Writes the same as endwin(), in its order; no colour was redefined.
void prepare_sequences() {
    g_sequences_used = 0;
    add_sequence(exit_alt_charset_mode);
    add_sequence(exit_attribute_mode);
    add_sequence(orig_pair);
    add_sequence(tparm(cursor_address, LINES - 1, 0));
    add_sequence(exit_ca_mode);
    add_sequence(keypad_local);
    add_sequence(cursor_normal);
}

// A terminal that is held is let go, since it has to be given back. FALSE when not all of it was taken even
// so.
bool put(int fd, const char* bytes, std::size_t n) {
    const std::size_t taken = TTYLINE_write(fd, bytes, n, PATIENCE_MS);
    if (taken == n) return true;
    TTYLINE_release(fd);
    return TTYLINE_write(fd, bytes + taken, n - taken, 0) == n - taken;
}

void release_stderr() {
    if (g_stderr_real == -1) return;
    dup2(g_stderr_real, STDERR_FILENO);
    char bytes[512];
    for (ssize_t n; (n = read(g_stderr_captured, bytes, sizeof bytes)) > 0;)
        if (!put(STDERR_FILENO, bytes, static_cast<std::size_t>(n))) return;
}

void restore_terminal() {
    put(STDOUT_FILENO, g_sequences.data(), g_sequences_used);
    tcsetattr(STDOUT_FILENO, TCSANOW, &g_settings);
}

std::size_t index_of(int signal) {
    std::size_t i = 0;
    while (i + 1 < COUNT && SIGNALS[i] != signal)
        ++i;
    return i;
}

// After this the signal comes again and meets what was there before. A real fault repeats itself, which tells
// its catcher where it was; one that was sent has to be sent again.
void on_crash(int signal, siginfo_t* info, void*) {
    restore_terminal();
    release_stderr();
    sigaction(signal, &g_before[index_of(signal)], nullptr);
    if (info->si_code <= 0) raise(signal);
}

// A sanitizer brings a stack of its own, and is used to finding it.
void use_own_stack() {
    stack_t present{};
    if (sigaltstack(nullptr, &present) != 0 || (present.ss_flags & SS_DISABLE) == 0) return;
    stack_t own{};
    own.ss_sp = g_stack.data();
    own.ss_size = g_stack.size();
    g_own_stack = sigaltstack(&own, nullptr) == 0;
}

}  // namespace

void CRASH_arm(const termios& settings) {
    if (g_armed) return;
    g_settings = settings;
    prepare_sequences();
    use_own_stack();
    struct sigaction action {};
    action.sa_sigaction = on_crash;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    sigfillset(&action.sa_mask);  // also the stop of a background process that sets its terminal
    for (std::size_t i = 0; i < COUNT; ++i)
        sigaction(SIGNALS[i], &action, &g_before[i]);
    g_armed = true;
}

void CRASH_disarm() {
    if (!g_armed) return;
    g_armed = false;
    for (std::size_t i = 0; i < COUNT; ++i)
        sigaction(SIGNALS[i], &g_before[i], nullptr);
    if (!g_own_stack) return;
    stack_t none{};
    none.ss_flags = SS_DISABLE;
    sigaltstack(&none, nullptr);
    g_own_stack = false;
}

void CRASH_set_captured_stderr(int real, int captured) {
    g_stderr_real = real;
    g_stderr_captured = captured;
}
