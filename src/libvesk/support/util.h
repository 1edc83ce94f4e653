// Time, sleep, exit signals and small string helpers; the library's start and end; assertion lines.
// Only UTIL_ftime asks the clock, so that a test that replaces its source owns the time of everything.
#pragma once

#include <poll.h>

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "libvesk/support/types.h"

// Starts the library under a role name ("CURSCLIENT"): the role titles every line this process writes to
// standard error. FALSE only for a null or empty role. SIGPIPE is ignored from here on.
[[nodiscard]] BOOL LIBVESK_init(const char* role);
void LIBVESK_cleanup();
// The message-title prefix of lines on standard error: the role and ": ", "" before LIBVESK_init.
[[nodiscard]] const char* LIBVESK_title();

// Writes the line to standard error, cut to 1 KiB, in one piece: lines of several processes on one terminal
// do not mix. Bytes that are not printable become '?'. Never waits: a line that nobody takes (a full pipe, a
// terminal that is held) is lost, and the next one that is taken comes behind how many were.
void UTIL_say(std::string_view line);
// Writes "%sassertion failed (%s:%i): %s\n" to standard error, or the form with the system's error text.
void UTIL_assertion_failed(const char* source, int line, const char* expression);
void UTIL_assertion_failed_errno(const char* source, int line, const char* expression, int error);
// Says "<title>text"; printf-checked.
void UTIL_complain(const char* format, ...) __attribute__((format(printf, 1, 2)));

// Current time. Tests replace the source; null restores the real clock.
[[nodiscard]] FTIME UTIL_ftime();
using UTIL_clock = FTIME (*)();
void UTIL_set_clock(UTIL_clock source);

// Sleeps that long; a pending exit request ends the sleep early. Negative, NaN: returns at once.
void UTIL_fsleep(double seconds);
// Waits until one of the descriptors has what its pollfd asks for (TRUE), that many seconds have passed, or
// any signal was caught; an exit request ends the wait at once. Negative, NaN: only looks.
BOOL UTIL_wait_fds(std::span<pollfd> fds, double seconds);
void UTIL_sched_yield();

// The signal is ignored, as SIGHUP is under nohup. A program that starts so leaves it like that.
[[nodiscard]] BOOL UTIL_is_ignored(int signal);
// SIGINT, SIGTERM, SIGQUIT and SIGHUP set an exit request from here on instead of killing the process; those
// that are ignored stay so.
void UTIL_exit_signal_poll_setup_hup();
[[nodiscard]] BOOL UTIL_exit_poll();
// Sets the exit request as a signal would; `requested` FALSE clears it (tests).
void UTIL_request_exit(BOOL requested = TRUE);
// Blocks those signals, so that nothing interrupts exit handlers.
void UTIL_atexit_set_signal_mask();

// Copies at most n - 1 characters and always terminates `dst`; null `src` counts as empty; n 0 does nothing.
void UTIL_strncpynt(char* dst, const char* src, std::size_t n);
template <std::size_t N>
void UTIL_strcpynt(char (&dst)[N], const char* src) {
    UTIL_strncpynt(dst, src, N);
}
// The text of a fixed field of N bytes that need not be terminated.
template <std::size_t N>
[[nodiscard]] std::string_view UTIL_field(const char (&field)[N]) {
    std::string_view all(field, N);
    return all.substr(0, all.find('\0'));
}
// Blanks, the ends of lines among them, whatever the locale.
[[nodiscard]] constexpr BOOL UTIL_is_blank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}
// The text without the blanks around it.
[[nodiscard]] std::string_view UTIL_trimmed(std::string_view text);
[[nodiscard]] int UTIL_strcasecmp(const char* a, const char* b);
// Shell-style pattern: *, ?, [abc], [a-z], [!x], backslash quotes; a bracket that is not closed is a
// character. Time is bounded by text times pattern. Null counts as empty.
[[nodiscard]] BOOL UTIL_wildcard_match(const char* text, const char* pattern);
// Double value of the text as strtod reads it, in the C locale whatever the process's is; 0 when it is none.
[[nodiscard]] double UTIL_atofv(const char* text);
// Reads a whole text as a finite decimal number (blanks around it allowed, C locale); FALSE leaves `value`
// alone.
[[nodiscard]] BOOL UTIL_parse_number(std::string_view text, double* value);
// TRUE when the text begins with T or t, or its integer value is not 0: the rule of every setting.
[[nodiscard]] BOOL UTIL_text_is_true(const char* text);
// FNV-1a: a hash that is the same in every run and on every machine.
[[nodiscard]] constexpr std::uint64_t UTIL_fnv1a(std::string_view text) {
    std::uint64_t h = 14695981039346656037U;
    for (const char c : text)
        h = (h ^ static_cast<unsigned char>(c)) * 1099511628211U;
    return h;
}
// The smallest power of two not below n; 1 for 0, n itself when there is no such power.
[[nodiscard]] std::size_t UTIL_roundup_p2(std::size_t n);
// Moves the bytes of an array by `shift` (negative: toward the start); bytes moved in from outside keep
// their old contents, bytes moved out are lost. |shift| >= total does nothing.
void UTIL_shift_array(void* array, std::size_t total, std::ptrdiff_t shift);

// Printable ASCII (32 to 126), whatever the locale: the only bytes from outside that reach the terminal.
[[nodiscard]] constexpr BOOL UTIL_is_printable(unsigned char c) {
    return c >= 32 && c < 127;
}
// The character, or a blank in place of a byte that is none of those.
[[nodiscard]] constexpr char UTIL_shown(char c) {
    return UTIL_is_printable(static_cast<unsigned char>(c)) ? c : ' ';
}
// The text with a '?' in place of every other byte, newlines included: one line, whatever it was.
[[nodiscard]] std::string UTIL_printable(std::string_view text);
// The name of an instrument or its refusal: 1 to 31 printable characters, no blank at either end.
[[nodiscard]] BOOL UTIL_valid_source_name(std::string_view name);
