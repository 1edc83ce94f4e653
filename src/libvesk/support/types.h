// Base types of the whole system: the scalar types that records are made of, the missing value and the
// sentinels. Every unit includes this first; it includes nothing of the project.
#pragma once

#include <cstddef>
#include <cstdint>

// curses defines the same two words as 1 and 0; identical definitions may stand side by side.
#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif

using BOOL = bool;  // one byte; bytes off the wire are made 0 or 1 before anybody reads them as BOOL
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using FTIME = double;         // seconds since the Unix epoch (UTC), with fraction
using TIME32 = std::int32_t;  // whole seconds since the epoch, as records carry them
template <std::size_t N>
using STRING = char[N];  // fixed text field of a record, always terminated within its N bytes

static_assert(sizeof(BOOL) == 1 && sizeof(FTIME) == 8);

// "There is no value": compared by exact equality, passed on unchanged by scaling.
inline constexpr double VESK_MISSING = 9.999e-99;
// Start times and "next" times that are not known or not planned.
inline constexpr FTIME VESK_NO_TIME = -1.0;
// Bounds of a size distribution before any bin was seen.
inline constexpr double VESK_BOUND_MIN_START = +2.2472535717e307;
inline constexpr double VESK_BOUND_MAX_START = -2.2472535717e307;

[[nodiscard]] constexpr BOOL VESK_is_missing(double v) {
    return v == VESK_MISSING;
}
// v times factor; the missing value stays missing.
[[nodiscard]] constexpr double VESK_scaled(double v, double factor) {
    return VESK_is_missing(v) ? VESK_MISSING : v * factor;
}
// a minus b; missing when either operand is.
[[nodiscard]] constexpr double VESK_difference(double a, double b) {
    return VESK_is_missing(a) || VESK_is_missing(b) ? VESK_MISSING : a - b;
}
