// Parts that the command lines of all programs share: options that are numbers, and how a wrong command
// line ends the program. For the units that read a command line only: its library is slow to compile.
#pragma once

#include <CLI/CLI.hpp>
#include <charconv>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

#include "libvesk/support/util.h"

inline constexpr int CMDLINE_WRONG = 2;  // exit status of a program whose command line is wrong

// The values that an option takes, both ends included.
template <class T>
struct CMDLINE_range {
    T low;
    T high;
};

// Reads a whole text as a number of that type; FALSE for anything else: NaN, infinities, a sign where there
// can be none, blanks or other characters behind it.
template <class T>
[[nodiscard]] BOOL CMDLINE_read(std::string_view text, T* value) {
    if constexpr (std::is_floating_point_v<T>) {
        return UTIL_parse_number(text, value);
    } else {
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), *value);
        return error == std::errc{} && end == text.data() + text.size();
    }
}

// "1000000" for whole numbers, "0.25" for others.
template <class T>
[[nodiscard]] std::string CMDLINE_text(T value) {
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value).ptr;
    return {text, end};
}

// Declares an option that is a number. A number outside of the range, and what is no number, is refused. The
// help shows the range, and what `target` holds as the default unless that is outside of the range.
template <class T>
CLI::Option* CMDLINE_number(CLI::App& app, const char* name, T* target,
                            CMDLINE_range<std::type_identity_t<T>> range, const std::string& help) {
    const std::string limits = CMDLINE_text(range.low) + " to " + CMDLINE_text(range.high);
    const auto take = [=](const std::string& text) {
        T value{};
        if (!CMDLINE_read(text, &value) || value < range.low || value > range.high)
            throw CLI::ValidationError(name, "a number from " + limits + ", not \"" + text + "\"");
        *target = value;
    };
    CLI::Option* const option = app.add_option_function<std::string>(name, take, help + " (" + limits + ")");
    if (*target >= range.low && *target <= range.high) option->default_str(CMDLINE_text(*target));
    return option->type_name("NUMBER");
}

// Reads the command line. A value is the exit status with which the program ends at once: 0 after the help,
// CMDLINE_WRONG after anything wrong, which has then been said on standard error.
[[nodiscard]] std::optional<int> CMDLINE_parse(CLI::App& app, int argc, const char* const* argv);
