// Numbers in fields of fixed columns. A value is written with all its decimals first; only when that is too
// long for the field is it written again with fewer, so the usual case is one conversion and one copy.
#include "libvesk/support/sfmt_field.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

#include "libvesk/support/types.h"

namespace {

struct layout {
    bool scientific;
    bool sign_column;
    int whole;     // integer digits; at least 1
    int decimals;  // as asked for
    int exponent;  // least exponent digits
    int total;     // columns; 0 for natural width
};

constexpr int NATURAL_EXPONENT = 2;

layout layout_of(const SFMT_spec& conv) {
    const bool scientific = conv.conversion != 'f';
    const bool natural = conv.width == 0 || (scientific && conv.exponent == 0);
    layout l{.scientific = scientific,
             .sign_column = conv.plus || conv.blank,
             .whole = std::max(conv.width, 1),
             .decimals = conv.precision,
             .exponent = scientific && conv.exponent == 0 ? NATURAL_EXPONENT : conv.exponent,
             .total = 0};
    if (natural) return l;
    l.total = l.sign_column + l.whole + (l.decimals > 0 ? 1 + l.decimals : 0);
    if (scientific) l.total += 2 + l.exponent;
    return l;
}

char* put(char* at, int n, char c) {
    return std::fill_n(at, n, c);
}

char* put_missing(char* at, const layout& l) {
    if (l.sign_column) *at++ = ' ';
    at = put(at, l.whole, '-');
    if (l.decimals > 0) *at++ = '.';
    return put(at, l.decimals + (l.scientific ? 2 + l.exponent : 0), '-');
}

// Moves the point behind the given number of digits and writes the exponent that this leaves, for a text
// "d.ddde+dd" as to_chars makes it.
char* put_scientific(char* at, double magnitude, const SFMT_spec& conv, const layout& l, int decimals) {
    char raw[SFMT_LONGEST_NUMBER];
    const int digits = l.whole + decimals;
    const char* end =
        std::to_chars(raw, raw + sizeof raw, magnitude, std::chars_format::scientific, digits - 1).ptr;
    if (digits > 1) raw[1] = raw[0];  // overwrites the point: the digits stand together from here
    const char* first = digits > 1 ? raw + 1 : raw;
    at = std::copy_n(first, l.whole, at);
    if (decimals > 0) {
        *at++ = '.';
        at = std::copy_n(first + l.whole, decimals, at);
    }
    int power = 0;
    const char* power_text = first + digits + 1;
    std::from_chars(power_text + (*power_text == '+'), end, power);
    if (magnitude != 0) power -= l.whole - 1;
    *at++ = conv.conversion;
    *at++ = power < 0 ? '-' : '+';
    char power_digits[8];
    const char* power_end =
        std::to_chars(power_digits, power_digits + sizeof power_digits, std::abs(power)).ptr;
    const int n = static_cast<int>(power_end - power_digits);
    at = put(at, std::max(0, l.exponent - n), '0');
    return std::copy_n(power_digits, n, at);
}

char* put_magnitude(char* at, double magnitude, const SFMT_spec& conv, const layout& l, int decimals) {
    if (l.scientific) return put_scientific(at, magnitude, conv, l, decimals);
    char* end = at + SFMT_LONGEST_NUMBER - 1;
    return std::to_chars(at, end, magnitude, std::chars_format::fixed, decimals).ptr;
}

// A minus before nothing but zeros would say that there is something to see.
bool shows_zero(std::string_view number) {
    return number.substr(0, number.find_first_of("eE")).find_first_not_of("0.") == std::string_view::npos;
}

std::string_view aligned(char (&text)[SFMT_LONGEST_NUMBER], char* begin, char* end, const SFMT_spec& conv,
                         const layout& l) {
    const int length = static_cast<int>(end - begin);
    const int gap = std::max(0, l.total - length);
    if (gap == 0) return {begin, end};
    std::memmove(conv.left ? text : text + gap, begin, static_cast<std::size_t>(length));
    put(conv.left ? text + length : text, gap, ' ');
    return {text, static_cast<std::size_t>(l.total)};
}

std::string_view filled(char (&text)[SFMT_LONGEST_NUMBER], const layout& l) {
    return {text, static_cast<std::size_t>(put(text, l.total, '*') - text)};
}

std::string_view word_for(double value) {
    if (std::isnan(value)) return "NaN";
    return value < 0 ? "-Inf" : "Inf";
}

std::string_view put_word(char (&text)[SFMT_LONGEST_NUMBER], const SFMT_spec& conv, const layout& l,
                          double value) {
    const std::string_view word = word_for(value);
    if (l.total > 0 && static_cast<int>(word.size()) > l.total) return filled(text, l);
    return aligned(text, text, std::copy(word.begin(), word.end(), text), conv, l);
}

}  // namespace

std::string_view SFMT_layout_number(char (&text)[SFMT_LONGEST_NUMBER], const SFMT_spec& conv, double value) {
    layout l = layout_of(conv);
    if (VESK_is_missing(value)) return {text, static_cast<std::size_t>(put_missing(text, l) - text)};
    if (!std::isfinite(value)) return put_word(text, conv, l, value);
    const bool crowded = value < 0 && !l.sign_column && l.total > 0;
    if (l.scientific && crowded && l.whole > 1) --l.whole;  // the place that the minus takes
    for (int decimals = l.decimals;;) {
        char* first_digit = text + 1;
        char* end = put_magnitude(first_digit, std::fabs(value), conv, l, decimals);
        const bool minus = value < 0 && !shows_zero({first_digit, end});
        char* begin = minus || l.sign_column ? text : first_digit;
        if (begin == text) *begin = minus ? '-' : conv.plus ? '+' : ' ';
        const int excess = l.total > 0 ? static_cast<int>(end - begin) - l.total : 0;
        if (excess <= 0) return aligned(text, begin, end, conv, l);
        if (decimals == 0) return filled(text, l);
        decimals = std::max(0, decimals - excess);
    }
}
