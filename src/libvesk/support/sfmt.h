// Growable string buffers with a type-checked printf and the fixed-width number conversions of the displays.
//
// Formats are checked against their arguments when the program is compiled: a wrong one is a compile error.
// `%` conversions are those of printf (flags, width, precision, length; d i u x X o c s p f e g E G, %%)
// except "*" for a width; any integer type suits any integer conversion, a null text prints as empty, a NUL
// character as a blank. The extended calls (alt) also take number conversions of one double, introduced by
// "*~" or "*":
//
//   *~[flags]W.Df      W integer places, the point, D decimals: W + 1 + D columns, W when D is 0
//   *~[flags]I.D.Ee    I integer digits, D decimals, the letter as written (e or E), the exponent's sign and
//                      E digits
//
// Flags: "+" or " " adds a sign column; "-" left-aligns; without a sign column a minus takes an integer
// place. Absent groups mean natural width ("*~.0f", "*~.1e"). A letter right after a conversion is literal. A
// "*" that starts no conversion is literal too. Exceptional values:
//
//   missing            dashes over the same width, the point in place, a blank sign column: "-----.-"
//   NaN, Inf, -Inf     as these words, aligned as a number is
//   too large          decimals go first, then the field is filled with "*": a field never grows
//   narrow exponent    mantissa decimals go first
//   rounds to zero     has no minus
//
// No output depends on the locale or is ever cut; when memory is out the process aborts.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <type_traits>

#include "libvesk/support/sfmt_check.h"
#include "libvesk/support/types.h"

// Owned text; trivially copyable and valid when zero-filled, so that it can live in private records that the
// registry allocates. Owner calls SFMT_destroy_buffer.
struct SFMT_buffer {
    char* buffer;           // NUL-terminated, or null when nothing was ever written
    std::size_t sz_buffer;  // allocated bytes
    std::size_t length;     // of the text
};

void SFMT_init_buffer(SFMT_buffer* b);
void SFMT_destroy_buffer(SFMT_buffer* b);
// The current text, never null; valid until the next change.
[[nodiscard]] const char* SFMT_get_buffer(const SFMT_buffer* b);
void SFMT_copystr(SFMT_buffer* b, const char* text);
void SFMT_appendstr(SFMT_buffer* b, const char* text);

// A format that suits arguments of these types. Made from literals only; may stand in constexpr tables and be
// handed on, in variadic calls of other units, with arguments of just these types.
template <class... A>
using SFMT_format = SFMT_checked_format<false, A...>;
template <class... A>
using SFMT_altformat = SFMT_checked_format<true, A...>;

// Appends the result; the engine behind the calls below, which alone make sure that the arguments suit.
void SFMT_append_args(SFMT_buffer* b, const char* format, bool fields, std::span<const SFMT_arg> args);

template <bool FIELDS, class... A>
void SFMT_append_checked(SFMT_buffer* b, SFMT_checked_format<FIELDS, A...> format, const A&... args) {
    const std::array<SFMT_arg, sizeof...(A)> erased{SFMT_make_arg(args)...};
    SFMT_append_args(b, format.text(), FIELDS, erased);
}

// Replace the text by, or append, the formatted one. Arguments must not point into the buffer itself.
template <class... A>
void SFMT_printfcat(SFMT_buffer* b, SFMT_format<std::type_identity_t<A>...> format, A... args) {
    SFMT_append_checked<false, A...>(b, format, args...);
}
template <class... A>
void SFMT_printf(SFMT_buffer* b, SFMT_format<std::type_identity_t<A>...> format, A... args) {
    SFMT_copystr(b, "");
    SFMT_append_checked<false, A...>(b, format, args...);
}
template <class... A>
void SFMT_altprintfcat(SFMT_buffer* b, SFMT_altformat<std::type_identity_t<A>...> format, A... args) {
    SFMT_append_checked<true, A...>(b, format, args...);
}
template <class... A>
void SFMT_altprintf(SFMT_buffer* b, SFMT_altformat<std::type_identity_t<A>...> format, A... args) {
    SFMT_copystr(b, "");
    SFMT_append_checked<true, A...>(b, format, args...);
}
