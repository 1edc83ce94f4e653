// The engine behind the formatting calls: buffer growth, the % conversions, and the handing of "*" fields to
// the number layout. Numbers go through to_chars, which no locale touches.
#include "libvesk/support/sfmt.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "libvesk/support/sfmt_field.h"
#include "libvesk/support/util.h"

namespace {

// Makes the text longer by n characters, which the caller fills in.
char* extend(SFMT_buffer* b, std::size_t n) {
    const std::size_t needed = b->length + n + 1;
    if (needed > b->sz_buffer) {
        const std::size_t size = UTIL_roundup_p2(std::max<std::size_t>(needed, 64));
        void* memory = std::realloc(b->buffer, size);
        if (memory == nullptr) {
            UTIL_assertion_failed(__FILE__, __LINE__, "memory for a text");
            std::abort();
        }
        b->buffer = static_cast<char*>(memory);
        b->sz_buffer = size;
    }
    char* added = b->buffer + b->length;
    b->length += n;
    b->buffer[b->length] = '\0';
    return added;
}

void append(SFMT_buffer* b, std::string_view text) {
    if (!text.empty()) std::memcpy(extend(b, text.size()), text.data(), text.size());
}

void append_fill(SFMT_buffer* b, std::size_t n, char c) {
    if (n > 0) std::memset(extend(b, n), c, n);
}

// Sign or base, then digits, in the width of the conversion; zeros go between the two.
void append_aligned(SFMT_buffer* b, const SFMT_spec& conv, std::string_view prefix, std::string_view body,
                    bool may_fill_zeros) {
    const std::size_t used = prefix.size() + body.size();
    const auto width = static_cast<std::size_t>(conv.width);
    const std::size_t missing = width > used ? width - used : 0;
    const bool zeros = conv.zeros && may_fill_zeros && !conv.left;
    if (!conv.left && !zeros) append_fill(b, missing, ' ');
    append(b, prefix);
    if (zeros) append_fill(b, missing, '0');
    append(b, body);
    if (conv.left) append_fill(b, missing, ' ');
}

std::string_view sign_text(const SFMT_spec& conv, bool negative) {
    if (negative) return "-";
    if (conv.plus) return "+";
    return conv.blank ? " " : "";
}

void to_upper(char* begin, const char* end) {
    for (; begin != end; ++begin)
        if (*begin >= 'a' && *begin <= 'z') *begin = static_cast<char>(*begin - 'a' + 'A');
}

void append_digits(SFMT_buffer* b, const SFMT_spec& conv, std::string_view prefix, unsigned long long value,
                   int base) {
    char digits[SFMT_MAX_DIGITS + 32];
    char* begin = digits + SFMT_MAX_DIGITS;  // room in front for the zeros of a precision
    char* end = std::to_chars(begin, digits + sizeof digits, value, base).ptr;
    if (value == 0 && conv.precision == 0) end = begin;
    while (end - begin < conv.precision)
        *--begin = '0';
    if (base == 8 && conv.alternate && (begin == end || *begin != '0')) *--begin = '0';
    if (conv.conversion == 'X') to_upper(begin, end);
    append_aligned(b, conv, prefix, {begin, end}, conv.precision < 0);
}

unsigned long long low_bits(unsigned long long value, int bits) {
    return bits < 64 ? value & ((1ULL << bits) - 1) : value;
}

void append_signed(SFMT_buffer* b, const SFMT_spec& conv, const SFMT_arg& arg) {
    unsigned long long value = arg.integer;
    bool negative = arg.negative;
    if (conv.bits > 0) {
        value = low_bits(value, conv.bits);
        negative = (value >> (conv.bits - 1)) != 0;
        if (negative) value |= ~low_bits(~0ULL, conv.bits);
    }
    append_digits(b, conv, sign_text(conv, negative), negative ? 0 - value : value, 10);
}

void append_unsigned(SFMT_buffer* b, const SFMT_spec& conv, const SFMT_arg& arg) {
    const unsigned long long value = low_bits(arg.integer, conv.bits > 0 ? conv.bits : arg.bits);
    const bool hex = conv.conversion == 'x' || conv.conversion == 'X';
    const bool marked = hex && conv.alternate && value != 0;
    const std::string_view prefix = conv.conversion == 'X' ? "0X" : "0x";
    append_digits(b, conv, marked ? prefix : "", value, hex ? 16 : conv.conversion == 'o' ? 8 : 10);
}

void append_real(SFMT_buffer* b, const SFMT_spec& conv, double value) {
    char text[SFMT_LONGEST_NUMBER];
    const char lower = static_cast<char>(conv.conversion | 0x20);
    const auto form = lower == 'f'   ? std::chars_format::fixed
                      : lower == 'e' ? std::chars_format::scientific
                                     : std::chars_format::general;
    const int precision = conv.precision < 0 ? 6 : conv.precision;
    char* end = std::isnan(value)
                    ? std::copy_n("nan", 3, text)
                    : std::to_chars(text, text + sizeof text, std::fabs(value), form, precision).ptr;
    if (lower != conv.conversion) to_upper(text, end);
    append_aligned(b, conv, sign_text(conv, std::signbit(value)), {text, end}, std::isfinite(value));
}

void append_text(SFMT_buffer* b, const SFMT_spec& conv, const SFMT_arg& arg) {
    const auto* text = static_cast<const char*>(arg.pointer);
    if (text == nullptr) text = "";
    const std::size_t most = conv.precision < 0 ? SIZE_MAX : static_cast<std::size_t>(conv.precision);
    // Up to `most` only: with a precision the text need not be terminated.
    const std::size_t length = arg.length == SFMT_arg::TERMINATED
                                   ? (most == SIZE_MAX ? std::strlen(text) : strnlen(text, most))
                                   : std::min(arg.length, most);
    append_aligned(b, conv, "", {text, length}, false);
}

void append_character(SFMT_buffer* b, const SFMT_spec& conv, const SFMT_arg& arg) {
    const char c = static_cast<char>(arg.integer);
    const char shown = c == '\0' ? ' ' : c;  // a NUL would end the text for every reader
    append_aligned(b, conv, "", {&shown, 1}, false);
}

void append_pointer(SFMT_buffer* b, const SFMT_spec& conv, const SFMT_arg& arg) {
    append_digits(b, conv, "0x", reinterpret_cast<std::uintptr_t>(arg.pointer), 16);
}

void append_field(SFMT_buffer* b, const SFMT_spec& conv, double value) {
    char text[SFMT_LONGEST_NUMBER];
    append(b, SFMT_layout_number(text, conv, value));
}

void append_argument(SFMT_buffer* b, const SFMT_spec& conv, const SFMT_arg& arg) {
    if (conv.is_field) return append_field(b, conv, arg.real);
    switch (conv.conversion) {
        case 'd':
        case 'i':
            return append_signed(b, conv, arg);
        case 'u':
        case 'x':
        case 'X':
        case 'o':
            return append_unsigned(b, conv, arg);
        case 'c':
            return append_character(b, conv, arg);
        case 's':
            return append_text(b, conv, arg);
        case 'p':
            return append_pointer(b, conv, arg);
        default:
            return append_real(b, conv, arg.real);
    }
}

}  // namespace

void SFMT_init_buffer(SFMT_buffer* b) {
    *b = SFMT_buffer{};
}

void SFMT_destroy_buffer(SFMT_buffer* b) {
    std::free(b->buffer);
    SFMT_init_buffer(b);
}

const char* SFMT_get_buffer(const SFMT_buffer* b) {
    return b->buffer != nullptr ? b->buffer : "";
}

void SFMT_copystr(SFMT_buffer* b, const char* text) {
    b->length = 0;
    extend(b, 0);
    SFMT_appendstr(b, text);
}

void SFMT_appendstr(SFMT_buffer* b, const char* text) {
    append(b, text != nullptr ? text : "");
}

void SFMT_append_args(SFMT_buffer* b, const char* format, bool fields, std::span<const SFMT_arg> args) {
    std::string_view rest = format;
    while (!rest.empty()) {
        const std::size_t literal = std::min(rest.find_first_of(fields ? "%*" : "%"), rest.size());
        append(b, rest.substr(0, literal));
        rest.remove_prefix(literal);
        if (rest.empty()) return;
        const SFMT_spec conv = SFMT_read_spec(rest, fields);
        const std::size_t length = std::max<std::size_t>(conv.length, 1);
        if (conv.length == 0 || conv.conversion == '%') {
            append(b, rest.substr(0, 1));
        } else {
            if (args.empty()) return;  // the check has seen to it that none is missing
            append_argument(b, conv, args.front());
            args = args.subspan(1);
        }
        rest.remove_prefix(length);
    }
}

void SFMT_wrong_format(const char* fault) {
    UTIL_assertion_failed(__FILE__, __LINE__, fault);
    std::abort();
}
