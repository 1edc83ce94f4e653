// Time, sleep, exit signals and the small string helpers; the library's start and end; assertion lines. All
// of it is process-wide: the role, the clock's source and the exit request belong to this unit.
#include "libvesk/support/util.h"

#include <limits.h>
#include <locale.h>
#include <poll.h>
#include <sched.h>
#include <strings.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <bit>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace {

constexpr int EXIT_SIGNALS[] = {SIGINT, SIGTERM, SIGQUIT, SIGHUP};

char g_title[64];
unsigned g_lines_lost;
UTIL_clock g_clock;
std::atomic<bool> g_exit_requested;
static_assert(std::atomic<bool>::is_always_lock_free, "the exit request is set by a signal handler");

void on_exit_signal(int) {
    g_exit_requested = true;
}

sigset_t exit_signal_set() {
    sigset_t set;
    sigemptyset(&set);
    for (int signal : EXIT_SIGNALS)
        sigaddset(&set, signal);
    return set;
}

double seconds_of(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

timespec to_timespec(double seconds) {
    const double whole = std::floor(seconds);
    return {static_cast<time_t>(whole), std::min(static_cast<long>((seconds - whole) * 1e9), 999'999'999L)};
}

const char* text_or_empty(const char* text) {
    return text == nullptr ? "" : text;
}

}  // namespace

BOOL LIBVESK_init(const char* role) {
    if (role == nullptr || *role == '\0') return FALSE;
    std::snprintf(g_title, sizeof g_title, "%s: ", role);
    std::signal(SIGPIPE, SIG_IGN);
    return TRUE;
}

void LIBVESK_cleanup() {
    g_title[0] = '\0';
}

const char* LIBVESK_title() {
    return g_title;
}

void UTIL_assertion_failed(const char* source, int line, const char* expression) {
    UTIL_complain("assertion failed (%s:%i): %s", source, line, expression);
}

void UTIL_assertion_failed_errno(const char* source, int line, const char* expression, int error) {
    UTIL_complain("assertion failed (%s:%i): %s: %s", source, line, expression, std::strerror(error));
}

void UTIL_say(std::string_view line) {
    constexpr std::size_t LONGEST = 1023;
    std::string text;
    if (g_lines_lost > 0) text = "(lines lost: " + std::to_string(g_lines_lost) + ")\n";
    text.append(UTIL_printable(line.substr(0, LONGEST))).push_back('\n');
    // A pipe that takes anything takes PIPE_BUF bytes, so the write does not wait either.
    static_assert(LONGEST + 64 <= PIPE_BUF);
    pollfd fd{STDERR_FILENO, POLLOUT, 0};
    const bool taken = poll(&fd, 1, 0) > 0 && write(fd.fd, text.data(), text.size()) >= 0;
    g_lines_lost = taken ? 0 : g_lines_lost + 1;
}

void UTIL_complain(const char* format, ...) {
    char text[1024];
    va_list args;
    va_start(args, format);
    std::vsnprintf(text, sizeof text, format, args);
    va_end(args);
    UTIL_say(std::string(g_title) + text);
}

FTIME UTIL_ftime() {
    return g_clock != nullptr ? g_clock() : seconds_of(CLOCK_REALTIME);
}

void UTIL_set_clock(UTIL_clock source) {
    g_clock = source;
}

BOOL UTIL_wait_fds(std::span<pollfd> fds, double seconds) {
    constexpr double LONGEST = 1e8;  // three years; keeps the conversion to whole seconds defined
    const timespec wait = to_timespec(seconds > 0 ? std::min(seconds, LONGEST) : 0);
    // The signals are let in only by ppoll itself: none can arrive between looking at the request and
    // falling asleep.
    const sigset_t exit_signals = exit_signal_set();
    sigset_t before;
    pthread_sigmask(SIG_BLOCK, &exit_signals, &before);
    const int ready = g_exit_requested ? 0 : ppoll(fds.data(), fds.size(), &wait, &before);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return ready > 0;
}

void UTIL_fsleep(double seconds) {
    const double end = seconds_of(CLOCK_MONOTONIC) + seconds;
    for (double left = seconds; left > 0 && !g_exit_requested; left = end - seconds_of(CLOCK_MONOTONIC))
        UTIL_wait_fds({}, left);
}

void UTIL_sched_yield() {
    sched_yield();
}

BOOL UTIL_is_ignored(int signal) {
    struct sigaction present {};
    return sigaction(signal, nullptr, &present) == 0 && present.sa_handler == SIG_IGN;
}

void UTIL_exit_signal_poll_setup_hup() {
    struct sigaction action {};
    action.sa_handler =
        on_exit_signal;  // no SA_RESTART: a blocking call returns, its caller looks and leaves
    sigemptyset(&action.sa_mask);
    for (int signal : EXIT_SIGNALS)
        if (!UTIL_is_ignored(signal)) sigaction(signal, &action, nullptr);
}

BOOL UTIL_exit_poll() {
    return g_exit_requested;
}

void UTIL_request_exit(BOOL requested) {
    g_exit_requested = requested;
}

void UTIL_atexit_set_signal_mask() {
    const sigset_t exit_signals = exit_signal_set();
    pthread_sigmask(SIG_BLOCK, &exit_signals, nullptr);
}

void UTIL_strncpynt(char* dst, const char* src, std::size_t n) {
    if (n == 0) return;
    src = text_or_empty(src);
    const std::size_t length = strnlen(src, n - 1);
    std::memmove(dst, src, length);
    dst[length] = '\0';
}

std::string_view UTIL_trimmed(std::string_view text) {
    while (!text.empty() && UTIL_is_blank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && UTIL_is_blank(text.back()))
        text.remove_suffix(1);
    return text;
}

int UTIL_strcasecmp(const char* a, const char* b) {
    return strcasecmp(text_or_empty(a), text_or_empty(b));
}

double UTIL_atofv(const char* text) {
    static const locale_t c_locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return strtod_l(text_or_empty(text), nullptr, c_locale);
}

BOOL UTIL_parse_number(std::string_view text, double* value) {
    text = UTIL_trimmed(text);
    if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
    double number = 0;
    const char* end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc{} || stopped != end || !std::isfinite(number)) return FALSE;
    *value = number;
    return TRUE;
}

BOOL UTIL_text_is_true(const char* text) {
    text = text_or_empty(text);
    return *text == 'T' || *text == 't' || std::strtol(text, nullptr, 10) != 0;
}

std::size_t UTIL_roundup_p2(std::size_t n) {
    constexpr std::size_t LARGEST = (SIZE_MAX >> 1) + 1;
    return n > LARGEST ? n : std::bit_ceil(n);
}

void UTIL_shift_array(void* array, std::size_t total, std::ptrdiff_t shift) {
    const auto bytes = static_cast<std::byte*>(array);
    const std::size_t distance =
        shift < 0 ? 0 - static_cast<std::size_t>(shift) : static_cast<std::size_t>(shift);
    if (distance == 0 || distance >= total) return;
    if (shift < 0)
        std::memmove(bytes, bytes + distance, total - distance);
    else
        std::memmove(bytes + distance, bytes, total - distance);
}

std::string UTIL_printable(std::string_view text) {
    std::string out(text);
    for (char& c : out)
        if (!UTIL_is_printable(static_cast<unsigned char>(c))) c = '?';
    return out;
}

BOOL UTIL_valid_source_name(std::string_view name) {
    if (name.empty() || name.size() > 31 || name.front() == ' ' || name.back() == ' ') return FALSE;
    return std::all_of(name.begin(), name.end(),
                       [](char c) { return UTIL_is_printable(static_cast<unsigned char>(c)); });
}
