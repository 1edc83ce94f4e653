// Reads one conversion of a format: used by the check when the program is compiled and by the engine when it
// runs, so that both agree by construction. Private to sfmt.
#pragma once

#include <cstddef>
#include <string_view>

struct SFMT_spec {
    std::size_t length = 0;       // characters of the format that it takes; 0 when no conversion starts here
    const char* fault = nullptr;  // what is wrong with it
    char conversion = '\0';       // its letter; '%' for "%%"
    bool is_field = false;        // one of the "*" conversions
    bool left = false;
    bool plus = false;
    bool blank = false;
    bool zeros = false;
    bool alternate = false;
    int width = 0;       // columns; of a field the integer places, 0 for natural width
    int precision = -1;  // decimals, least digits or most characters; -1 when not given
    int exponent = 0;    // exponent digits of a field, 0 for natural width
    int bits = 0;        // 16 and 8 for "h" and "hh"; 0: the argument's own size
};

inline constexpr int SFMT_MAX_WIDTH = 999;
inline constexpr int SFMT_MAX_DIGITS = 99;  // of each group of a field and of a precision of a number

// What is left of a format, taken off its front.
struct SFMT_cursor {
    std::string_view rest;

    constexpr char peek() const { return rest.empty() ? '\0' : rest.front(); }
    constexpr bool take(char c) {
        if (rest.empty() || rest.front() != c) return false;
        rest.remove_prefix(1);
        return true;
    }
    constexpr bool take(std::string_view text) {
        if (!rest.starts_with(text)) return false;
        rest.remove_prefix(text.size());
        return true;
    }
    // A number, or `absent` when no digit is there; far too large ones stay beyond every limit.
    constexpr int take_number(int absent) {
        if (peek() < '0' || peek() > '9') return absent;
        int number = 0;
        for (; peek() >= '0' && peek() <= '9'; rest.remove_prefix(1))
            number = number > SFMT_MAX_WIDTH ? number : number * 10 + (peek() - '0');
        return number;
    }
};

constexpr void SFMT_read_flags(SFMT_cursor& at, SFMT_spec& spec, bool percent) {
    for (;;) {
        if (at.take('-'))
            spec.left = true;
        else if (at.take('+'))
            spec.plus = true;
        else if (at.take(' '))
            spec.blank = true;
        else if (percent && at.take('0'))
            spec.zeros = true;
        else if (percent && at.take('#'))
            spec.alternate = true;
        else
            return;
    }
}

constexpr void SFMT_read_size(SFMT_cursor& at, SFMT_spec& spec) {
    if (at.take("hh"))
        spec.bits = 8;
    else if (at.take('h'))
        spec.bits = 16;
    else if (!at.take("ll"))  // arguments know their own size: what does not narrow changes nothing
        static_cast<void>(at.take('l') || at.take('z') || at.take('j') || at.take('t'));
}

// `format` begins with "%".
constexpr SFMT_spec SFMT_read_percent(std::string_view format) {
    SFMT_spec spec;
    SFMT_cursor at{format.substr(1)};
    SFMT_read_flags(at, spec, true);
    spec.width = at.take_number(0);
    if (at.take('.')) spec.precision = at.take_number(0);
    SFMT_read_size(at, spec);
    spec.conversion = at.peek();
    constexpr std::string_view LETTERS = "diuxXocspfFeEgG%";
    if (spec.conversion == '\0' || LETTERS.find(spec.conversion) == std::string_view::npos)
        spec.fault = "an unknown conversion follows a %";
    else if (spec.conversion == '%' && at.rest.size() + 1 != format.size())
        spec.fault = "%% takes neither flags nor width";
    else if (spec.alternate && std::string_view("xXo").find(spec.conversion) == std::string_view::npos)
        spec.fault = "# suits x, X and o only";
    else if (spec.width > SFMT_MAX_WIDTH || (spec.precision > SFMT_MAX_DIGITS && spec.conversion != 's'))
        spec.fault = "a width or precision is too large";
    spec.length = format.size() - at.rest.size() + (at.rest.empty() ? 0 : 1);
    return spec;
}

// `format` begins with "*". Without "~" what is no conversion is literal text.
constexpr SFMT_spec SFMT_read_field(std::string_view format) {
    SFMT_spec spec;
    SFMT_cursor at{format.substr(1)};
    const bool certain = at.take('~');
    spec.is_field = true;
    SFMT_read_flags(at, spec, false);
    spec.width = at.take_number(0);
    bool complete = at.take('.');
    spec.precision = at.take_number(-1);
    complete = complete && spec.precision >= 0;
    const bool three = complete && at.take('.');
    if (three) spec.exponent = at.take_number(0);
    spec.conversion = at.peek();
    const bool is_exponent = spec.conversion == 'e' || spec.conversion == 'E';
    complete = complete && (is_exponent || (spec.conversion == 'f' && !three));
    if (!complete) return {.fault = certain ? "\"*~\" begins no number conversion" : nullptr};
    if (spec.width > SFMT_MAX_DIGITS || spec.precision > SFMT_MAX_DIGITS || spec.exponent > SFMT_MAX_DIGITS)
        spec.fault = "a group of a number conversion is too large";
    spec.length = format.size() - at.rest.size() + 1;
    return spec;
}

// The conversion at the front of `format`; `fields` says whether "*" conversions are read.
constexpr SFMT_spec SFMT_read_spec(std::string_view format, bool fields) {
    if (format.starts_with('%')) return SFMT_read_percent(format);
    if (fields && format.starts_with('*')) return SFMT_read_field(format);
    if (format.starts_with("*~")) return {.fault = "\"*~\" needs one of the alt calls"};
    return {};
}
