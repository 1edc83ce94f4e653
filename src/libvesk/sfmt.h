// Growable string buffers with a type-checked printf and the fixed-width number conversions of the displays.
//
// Formats are checked against their arguments when the program is compiled: a wrong one is a compile error.
// `%` conversions are those of printf (flags, width, precision, length; d i u x X o c s p f e g E G, %%).
// The extended calls (alt) also take number conversions of one double, introduced by "*~" or by "*":
//
//   *~[flag]W.Df         W integer places, the point, D decimals: W + 1 + D columns, W when D is 0
//   *~[flag]I.D.Ee       I integer digits, D decimals, the letter as written (e or E), the exponent's sign
//   and
//                        E digits
//
// flag: "+" or " " adds a sign column; "-" left-aligns; otherwise a minus takes an integer place. Absent
// groups mean natural width ("*~.0f", "*~.1e"). A letter right after a conversion is literal. A "*" that
// starts no conversion is literal too. The rendering of missing, non-finite and too large values:
//
//   missing        dashes over the same width, the point in place, a blank sign column: "-----.-"
//   NaN, Inf, -Inf right-aligned words
//   too large      decimals go first, then the field is filled with "*": a field never grows
//   narrow exponent: mantissa decimals go first
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "libvesk/types.h"

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
