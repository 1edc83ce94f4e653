// The units of measurement that numbers of records travel in, and how people read them. A record's descriptor
// names one of these objects for each of its numbers, so that a misspelled unit does not compile.
#pragma once

#include <cstddef>

#include "libvesk/support/types.h"

struct UNIT {
    const char* symbol;  // as documents and JSON write it: "1/Mm"
    const char* name;    // in words
    // How screens show a number of this unit: multiplied by the factor, with this symbol; null: as it is.
    const char* screen_symbol = nullptr;
    double screen_factor = 1;
};

// One X(identifier, members of UNIT) each, which become UNIT_<identifier>.
// clang-format off
#define UNIT_LIST(X) \
    X(none, "none", "a number without a unit: a ratio, an index, a code, an exponent", "") \
    X(bits, "bits", "a word of flags", "") \
    X(varies, "varies", "the channel, the controller or the message decides it", "") \
    X(counts, "counts", "counts of a detector", "") \
    X(epoch, "s since 1970", "seconds since 1970-01-01 00:00 UTC", "") \
    X(s, "s", "seconds") \
    X(min, "min", "minutes") \
    X(Hz, "Hz", "hertz") \
    X(nm, "nm", "nanometres") \
    X(um, "um", "micrometres") \
    X(m, "m", "metres") \
    X(km, "km", "kilometres", "nmi", 0.5399568) /* a nautical mile is 1.852 km */ \
    X(m3, "m3", "cubic metres") \
    X(deg, "deg", "degrees of an angle") \
    X(degC, "degC", "degrees Celsius") \
    X(percent, "%", "percent") \
    X(hPa, "hPa", "hectopascals") \
    X(lpm, "lpm", "litres per minute") \
    X(slpm, "slpm", "litres per minute at standard temperature and pressure") \
    X(ccm, "ccm", "cubic centimetres per minute") \
    X(V, "V", "volts") \
    X(mV, "mV", "millivolts") \
    X(A, "A", "amperes") \
    X(mA, "mA", "milliamperes") \
    X(W, "W", "watts") \
    X(per_m, "1/m", "per metre", "1/Mm", 1e6) \
    X(per_Mm, "1/Mm", "per megametre") \
    X(per_cm3, "cm-3", "particles per cubic centimetre") \
    X(ng_per_m3, "ng/m3", "nanograms per cubic metre") \
    X(ug_per_m3, "ug/m3", "micrograms per cubic metre")
// clang-format on

#define UNIT_DEFINE(id, ...) inline constexpr UNIT UNIT_##id{__VA_ARGS__};
UNIT_LIST(UNIT_DEFINE)
#undef UNIT_DEFINE

#define UNIT_ADDRESS(id, ...) &UNIT_##id,
inline constexpr const UNIT* UNITS[] = {UNIT_LIST(UNIT_ADDRESS)};
#undef UNIT_ADDRESS

// The symbol that screens write behind a number of that unit; "" for none.
[[nodiscard]] constexpr const char* UNIT_screen_symbol(const UNIT& unit) {
    return unit.screen_symbol != nullptr ? unit.screen_symbol : unit.symbol;
}
// The number that screens show for `v` of that unit; the missing value stays missing.
[[nodiscard]] constexpr double UNIT_on_screen(const UNIT& unit, double v) {
    return VESK_scaled(v, unit.screen_factor);
}
