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

// The rest of a format, taken off its front.
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

constexpr void SFMT_read_flags(SFMT_cursor& at, SFMT_spec& conv, bool percent) {
    for (;;) {
        if (at.take('-'))
            conv.left = true;
        else if (at.take('+'))
            conv.plus = true;
        else if (at.take(' '))
            conv.blank = true;
        else if (percent && at.take('0'))
            conv.zeros = true;
        else if (percent && at.take('#'))
            conv.alternate = true;
        else
            return;
    }
}

constexpr void SFMT_read_size(SFMT_cursor& at, SFMT_spec& conv) {
    if (at.take("hh"))
        conv.bits = 8;
    else if (at.take('h'))
        conv.bits = 16;
    else if (!at.take("ll"))  // arguments know their own size: what does not narrow changes nothing
        static_cast<void>(at.take('l') || at.take('z') || at.take('j') || at.take('t'));
}

// `format` begins with "%".
constexpr SFMT_spec SFMT_read_percent(std::string_view format) {
    SFMT_spec conv;
    SFMT_cursor at{format.substr(1)};
    SFMT_read_flags(at, conv, true);
    conv.width = at.take_number(0);
    if (at.take('.')) conv.precision = at.take_number(0);
    SFMT_read_size(at, conv);
    conv.conversion = at.peek();
    constexpr std::string_view LETTERS = "diuxXocspfFeEgG%";
    if (conv.conversion == '\0' || LETTERS.find(conv.conversion) == std::string_view::npos)
        conv.fault = "an unknown conversion follows a %";
    else if (conv.conversion == '%' && at.rest.size() + 1 != format.size())
        conv.fault = "%% takes neither flags nor width";
    else if (conv.alternate && std::string_view("xXo").find(conv.conversion) == std::string_view::npos)
        conv.fault = "# suits x, X and o only";
    else if (conv.width > SFMT_MAX_WIDTH || (conv.precision > SFMT_MAX_DIGITS && conv.conversion != 's'))
        conv.fault = "a width or precision is too large";
    conv.length = format.size() - at.rest.size() + (at.rest.empty() ? 0 : 1);
    return conv;
}

// `format` begins with "*". Without "~" what is no conversion is literal text.
constexpr SFMT_spec SFMT_read_field(std::string_view format) {
    SFMT_spec conv;
    SFMT_cursor at{format.substr(1)};
    const bool certain = at.take('~');
    conv.is_field = true;
    SFMT_read_flags(at, conv, false);
    conv.width = at.take_number(0);
    bool complete = at.take('.');
    conv.precision = at.take_number(-1);
    complete = complete && conv.precision >= 0;
    const bool three = complete && at.take('.');
    if (three) conv.exponent = at.take_number(0);
    conv.conversion = at.peek();
    const bool is_exponent = conv.conversion == 'e' || conv.conversion == 'E';
    complete = complete && (is_exponent || (conv.conversion == 'f' && !three));
    if (!complete) return {.fault = certain ? "\"*~\" begins no number conversion" : nullptr};
    if (conv.width > SFMT_MAX_DIGITS || conv.precision > SFMT_MAX_DIGITS || conv.exponent > SFMT_MAX_DIGITS)
        conv.fault = "a group of a number conversion is too large";
    conv.length = format.size() - at.rest.size() + 1;
    return conv;
}

// The conversion at the front of `format`; `fields` says whether "*" conversions are read.
constexpr SFMT_spec SFMT_read_spec(std::string_view format, bool fields) {
    if (format.starts_with('%')) return SFMT_read_percent(format);
    if (fields && format.starts_with('*')) return SFMT_read_field(format);
    if (format.starts_with("*~")) return {.fault = "\"*~\" needs one of the alt calls"};
    return {};
}
