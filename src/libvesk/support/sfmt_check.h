// The compile-time half of the formatting calls: which kind an argument is, whether a format suits its
// arguments, and the class of formats that do. Private to sfmt; its users see SFMT_format and SFMT_altformat.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string_view>
#include <type_traits>

#include "libvesk/support/sfmt_spec.h"

// One argument of a formatting call, its type forgotten.
struct SFMT_arg {
    enum kind { INTEGER, REAL, TEXT, POINTER, UNSUITABLE };
    static constexpr std::size_t TERMINATED = static_cast<std::size_t>(-1);

    kind type = UNSUITABLE;
    bool negative = false;  // an integer below 0, whose two's complement is in `integer`
    int bits = 0;           // of the integer's type
    unsigned long long integer = 0;
    double real = 0;
    const void* pointer = nullptr;  // of a text too
    std::size_t length = 0;         // of a text; TERMINATED: up to its NUL
};

template <class T>
constexpr SFMT_arg::kind SFMT_kind_of() {
    if constexpr (std::is_integral_v<T> || (std::is_enum_v<T> && std::is_convertible_v<T, long long>))
        return SFMT_arg::INTEGER;
    else if constexpr (std::is_same_v<T, double> || std::is_same_v<T, float>)
        return SFMT_arg::REAL;
    else if constexpr (std::is_convertible_v<T, const char*> || std::is_convertible_v<T, std::string_view>)
        return SFMT_arg::TEXT;
    else if constexpr (std::is_convertible_v<T, const void*>)
        return SFMT_arg::POINTER;
    else
        return SFMT_arg::UNSUITABLE;
}

template <class T>
SFMT_arg SFMT_make_arg(const T& value) {
    SFMT_arg arg;
    arg.type = SFMT_kind_of<T>();
    if constexpr (std::is_enum_v<T>) {
        return SFMT_make_arg(static_cast<std::underlying_type_t<T>>(value));
    } else if constexpr (std::is_integral_v<T>) {
        if constexpr (std::is_signed_v<T>) arg.negative = value < 0;
        arg.bits = static_cast<int>(sizeof(T) * 8);
        arg.integer = static_cast<unsigned long long>(value);
    } else if constexpr (SFMT_kind_of<T>() == SFMT_arg::REAL) {
        arg.real = static_cast<double>(value);
    } else if constexpr (std::is_convertible_v<T, const void*>) {
        arg.pointer = static_cast<const void*>(value);
        arg.length = SFMT_arg::TERMINATED;
    } else {
        const std::string_view text(value);
        arg.pointer = text.data();
        arg.length = text.size();
    }
    return arg;
}

constexpr SFMT_arg::kind SFMT_wanted_kind(const SFMT_spec& conv) {
    if (conv.is_field || std::string_view("fFeEgG").find(conv.conversion) != std::string_view::npos)
        return SFMT_arg::REAL;
    if (conv.conversion == 's') return SFMT_arg::TEXT;
    return conv.conversion == 'p' ? SFMT_arg::POINTER : SFMT_arg::INTEGER;
}

// The fault of a format for arguments of these kinds, or null.
constexpr const char* SFMT_find_fault(std::string_view format, bool fields,
                                      std::span<const SFMT_arg::kind> kinds) {
    std::size_t used = 0;
    while (!format.empty()) {
        const SFMT_spec conv = SFMT_read_spec(format, fields);
        if (conv.fault != nullptr) return conv.fault;
        format.remove_prefix(conv.length > 0 ? conv.length : 1);
        if (conv.length == 0 || conv.conversion == '%') continue;
        if (used == kinds.size()) return "more conversions than arguments";
        if (kinds[used++] != SFMT_wanted_kind(conv)) return "an argument does not suit its conversion";
    }
    return used == kinds.size() ? nullptr : "more arguments than conversions";
}

template <bool FIELDS, class... A>
constexpr const char* SFMT_fault(std::string_view format) {
    constexpr std::array<SFMT_arg::kind, sizeof...(A)> kinds{SFMT_kind_of<A>()...};
    return SFMT_find_fault(format, FIELDS, kinds);
}

// Not constexpr on purpose: the compiler names it, and the fault, where a format is wrong.
[[noreturn]] void SFMT_wrong_format(const char* fault);

template <bool FIELDS, class... A>
class SFMT_checked_format {
  public:
    consteval SFMT_checked_format(const char* text) : text_(text) {  // NOLINT: literals convert
        if (const char* fault = SFMT_fault<FIELDS, A...>(text)) SFMT_wrong_format(fault);
    }
    [[nodiscard]] constexpr const char* text() const { return text_; }

  private:
    const char* text_;
};
