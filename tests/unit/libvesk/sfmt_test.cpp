// The formatting calls: fields of numbers over the whole matrix of widths and values, the % conversions
// beside the C library's own, what is refused at compile time, and the growth of buffers.
#include "libvesk/support/sfmt.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <string>
#include <string_view>

namespace {

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double QUIET_NAN = std::numeric_limits<double>::quiet_NaN();

struct text_buffer {
    SFMT_buffer b{};
    text_buffer() = default;
    text_buffer(const text_buffer&) = delete;
    text_buffer& operator=(const text_buffer&) = delete;
    ~text_buffer() { SFMT_destroy_buffer(&b); }
    std::string text() const {
        EXPECT_EQ(std::string_view(SFMT_get_buffer(&b)).size(), b.length);
        return SFMT_get_buffer(&b);
    }
};

template <class... A>
std::string alt(SFMT_altformat<std::type_identity_t<A>...> format, A... args) {
    text_buffer t;
    SFMT_altprintf(&t.b, format, args...);
    return t.text();
}

template <class... A>
std::string plain(SFMT_format<std::type_identity_t<A>...> format, A... args) {
    text_buffer t;
    SFMT_printf(&t.b, format, args...);
    return t.text();
}

struct field_row {
    SFMT_altformat<double> format;
    double value;
    const char* expected;
};

void expect_rows(std::span<const field_row> rows) {
    for (const field_row& row : rows)
        EXPECT_EQ(alt(row.format, row.value), row.expected) << row.format.text() << " of " << row.value;
}

TEST(SfmtField, FixedRoundsAndAligns) {
    static constexpr field_row ROWS[] = {
        {"*~5.1f", 12.34, "   12.3"},      {"*~5.0f", 12.5, "   12"},    {"*~5.0f", 13.5, "   14"},
        {"*~3.2f", 0.005, "  0.01"},       {"*~1.3f", 0.9996, "1.000"},  {"*~5.1f", -12.34, "  -12.3"},
        {"*~+3.1f", 2.5, "  +2.5"},        {"*~+3.1f", 123.4, "+123.4"}, {"*~ 5.1f", 12345.6, " 12345.6"},
        {"*~ 5.1f", -12345.6, "-12345.6"}, {"*~-4.0f", 12, "12  "},      {"*~-2.3f", 1.5, "1.500 "},
        {"*~- 4.1f", 7.25, " 7.2   "},     {"*2.1f", 7.25, " 7.2"},      {"*7.1f", 7.25, "      7.2"},
        {"*~.0f", 1234.5, "1234"},         {"*~+.1f", 3, "+3.0"},
    };
    expect_rows(ROWS);
}

TEST(SfmtField, TooLargeGivesUpDecimalsThenShowsStars) {
    static constexpr field_row ROWS[] = {
        {"*~3.2f", 1234.56, "1234.6"},  {"*~3.2f", 12345.6, " 12346"}, {"*~3.2f", 999999.4, "999999"},
        {"*~3.2f", 999999.5, "******"}, {"*~3.2f", 9999.96, " 10000"}, {"*~3.2f", 999.996, "1000.0"},
        {"*~3.1f", -123.4, " -123"},    {"*~3.1f", -9999.4, "-9999"},  {"*~3.1f", -9999.5, "*****"},
        {"*~1.3f", -0.5, "-0.50"},      {"*~+3.0f", 1000, "****"},     {"*~ 3.0f", 1000, "****"},
        {"*~-2.1f", 123.4, "123 "},     {"*~5.1f", 1e300, "*******"},  {"*~1.0f", -5, "*"},
    };
    expect_rows(ROWS);
}

TEST(SfmtField, ZeroHasNoMinus) {
    static constexpr field_row ROWS[] = {
        {"*~3.1f", -0.0, "  0.0"},    {"*~3.1f", -0.04, "  0.0"},
        {"*~+3.1f", -0.04, "  +0.0"}, {"*~+01.03.02e", -0.0, "+0.000e+00"},
        {"*~2.1.02e", 0, "00.0e+00"}, {"*~3.1f", -0.06, " -0.1"},
    };
    expect_rows(ROWS);
}

TEST(SfmtField, Scientific) {
    static constexpr field_row ROWS[] = {
        {"*~+01.03.02e", 1.2345e-5, "+1.234e-05"}, {"*~+01.03.02e", -1.2355e5, "-1.236e+05"},
        {"*~1.3.02e", -1.2344e9, "-1.23e+09"},     {"*~1.0.02e", 15000, "2e+04"},
        {"*~.1e", -1.25e-130, "-1.2e-130"},        {"*~2.2.02e", -12345, "-1.23e+04"},
        {"*~3.1.02e", 99.94, "999.4e-01"},
    };
    expect_rows(ROWS);
    EXPECT_EQ(alt("*~1.3.02ef", 1.0), "1.000e+00f");
    // An exponent too long for its digits takes those of the mantissa.
    static constexpr field_row LONG_EXPONENTS[] = {
        {"*~1.2.1E", 1.234e10, "1.2E+10"},        {"*~1.2.1E", 1.234e-100, " 1E-100"},
        {"*~1.2.02e", 9.996e99, "1.0e+100"},      {"*~1.0.1e", 1e10, "****"},
        {"*~+01.03.02e", 4.9e-324, "+4.94e-324"},
    };
    expect_rows(LONG_EXPONENTS);
}

TEST(SfmtField, MissingShowsDashesAndNonFiniteShowsWords) {
    static constexpr struct {
        SFMT_altformat<double> format;
        const char* missing;
        const char* nan;
        const char* inf;
        const char* minus_inf;
    } ROWS[] = {
        {"*~5.1f", "-----.-", "    NaN", "    Inf", "   -Inf"},
        {"*~2.0f", "--", "**", "**", "**"},
        {"*~3.0f", "---", "NaN", "Inf", "***"},
        {"*~+3.1f", " ---.-", "   NaN", "   Inf", "  -Inf"},
        {"*~-4.0f", "----", "NaN ", "Inf ", "-Inf"},
        {"*~.2f", "-.--", "NaN", "Inf", "-Inf"},
        {"*~+01.03.02e", " -.-------", "       NaN", "       Inf", "      -Inf"},
        {"*~1.2.1E", "-.-----", "    NaN", "    Inf", "   -Inf"},
    };
    for (const auto& row : ROWS) {
        EXPECT_EQ(alt(row.format, VESK_MISSING), row.missing) << row.format.text();
        EXPECT_EQ(alt(row.format, -QUIET_NAN), row.nan) << row.format.text();
        EXPECT_EQ(alt(row.format, INF), row.inf) << row.format.text();
        EXPECT_EQ(alt(row.format, -INF), row.minus_inf) << row.format.text();
    }
    EXPECT_EQ(alt("*~5.1f", -VESK_MISSING), "    0.0") << "only the exact value is missing";
}

// Whatever the value, a field has its width, and what it shows reads back as the value to the digits shown.
TEST(SfmtField, WidthAndValueHoldForEveryMagnitude) {
    static constexpr struct {
        SFMT_altformat<double> format;
        std::size_t width;
        double worst;  // relative error of the shown digits, at least one decimal being shown
    } ROWS[] = {{"*~+01.03.02e", 10, 5.1e-3}, {"*~1.3.02e", 9, 5.1e-2}, {"*~2.5.02e", 12, 5.1e-3}};
    for (const auto& row : ROWS) {
        for (int power = -323; power <= 308; ++power) {
            for (double digits : {1.0, -1.0, 9.9999999, -9.9999999, 4.4445}) {
                const double value = digits * std::pow(10.0, power);
                if (!std::isfinite(value) || std::fabs(value) < 1e-307) continue;
                const std::string text = alt(row.format, value);
                ASSERT_EQ(text.size(), row.width) << text;
                const double shown = std::strtod(text.c_str(), nullptr);
                if (!std::isfinite(shown)) continue;  // rounded up beyond the largest double
                ASSERT_LE(std::fabs(shown / value - 1), row.worst) << text << " for " << value;
            }
        }
    }
}

TEST(SfmtField, StarsThatStartNoConversionAreText) {
    EXPECT_EQ(alt("[*] Enable"), "[*] Enable");
    EXPECT_EQ(alt("*** 5*3.5 * *.f *"), "*** 5*3.5 * *.f *");
    EXPECT_EQ(alt("*~3.1fm/s *~1.0f", 1.5, 2.0), "  1.5m/s 2");
    EXPECT_EQ(alt("100%%*~2.0f%%", 5.0), "100% 5%");
    EXPECT_EQ(plain("*5.1f [*]"), "*5.1f [*]") << "the plain calls know no fields";
}

TEST(SfmtPercent, IntegersAsTheCLibrary) {
    EXPECT_EQ(plain("%d|%5d|%-4d|%+d|% d|%04d|%.3d|%i", 42, -42, 7, 7, 7, -7, 7, 0),
              "42|  -42|7   |+7| 7|-007|007|0");
    EXPECT_EQ(plain("%hd|%hd|%hhd", 70000, static_cast<short>(-5), 511), "4464|-5|-1");
    EXPECT_EQ(plain("%3hx|%3hX|%04X|%08X|%06X|%x", 0xAB, std::int16_t{-1}, 0xBEEF, 0xDEADBEEFU, 0xFFU, -1),
              " ab|FFFF|BEEF|DEADBEEF|0000FF|ffffffff");
    EXPECT_EQ(plain("%08lx|%lu|%zu|%ld|%lld", 0xABCUL, 1UL << 40, sizeof(int), -5L, INT64_MIN),
              "00000abc|1099511627776|4|-5|-9223372036854775808");
    EXPECT_EQ(plain("%u|%u|%o|%#x|%#X|%#o|%#x", -1, 7, 8, 255, 255, 8, 0), "4294967295|7|10|0xff|0XFF|010|0");
    EXPECT_EQ(plain("%d %d %d", true, std::uint8_t{200}, UINT64_MAX), "1 200 18446744073709551615");
    EXPECT_EQ(plain("%.0d|%5.3d|%-05d|", 0, 7, 3), "|  007|3    |");
}

TEST(SfmtPercent, TextAndCharacters) {
    const char unterminated[4] = {'a', 'b', 'c', 'd'};
    const char* pointer = unterminated;
    const char* none = nullptr;
    EXPECT_EQ(plain("%s|%-8s|%8s|%.2s|%5.1s|", "x", "left", "right", "cut", "c"),
              "x|left    |   right|cu|    c|");
    EXPECT_EQ(plain("%.4s", pointer), "abcd");
    EXPECT_EQ(plain("[%s][%3s]", none, none), "[][   ]");
    EXPECT_EQ(plain("%s %s", std::string_view("view", 2), std::string("string")), "vi string");
    EXPECT_EQ(plain("%c%c%3c|%-3c|", 'A', 66, 'c', 'd'), "AB  c|d  |");
    EXPECT_EQ(plain("[%c]", '\0'), "[ ]");
}

TEST(SfmtPercent, RealsAsTheCLibrary) {
    static constexpr SFMT_format<double> FORMATS[] = {"%f",    "%.1f", "%9.5f", "%0.1f",    "%+.2e",
                                                      "%g",    "%.3g", "%E",    "%-12.2fx", "%012.3f",
                                                      "% .4f", "%G",   "%.0f"};
    for (const auto& format : FORMATS) {
        for (double value :
             {0.0, -0.0, 1.5, -2.25, 1e-5, 123456789.0, 99.996, 1e22, 1e100, INF, -INF, QUIET_NAN}) {
            char expected[512];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
            std::snprintf(expected, sizeof expected, format.text(), value);
#pragma GCC diagnostic pop
            EXPECT_EQ(plain(format, value), expected) << format.text();
        }
    }
    EXPECT_EQ(plain("%.1f", 2.5F), "2.5");
}

// A wrong format does not compile; the check that the compiler runs is asked here.
enum class strict { ONE };
static_assert(SFMT_fault<true, double, int, const char*>("*~5.1f %d %s") == nullptr);
static_assert(SFMT_fault<false, char*>("%s") == nullptr);
static_assert(SFMT_fault<true, int>("*~5.1f") != nullptr, "a field takes a real number");
static_assert(SFMT_fault<true, double>("%d") != nullptr);
static_assert(SFMT_fault<true, int>("%s") != nullptr);
static_assert(SFMT_fault<true, strict>("%d") != nullptr);
static_assert(SFMT_fault<true>("%d") != nullptr, "too few arguments");
static_assert(SFMT_fault<true, int>("none") != nullptr, "too many arguments");
static_assert(SFMT_fault<true, double>("*~5f") != nullptr, "a field needs its point");
static_assert(SFMT_fault<true, double>("*~99999999999999999999.1f") != nullptr);
static_assert(SFMT_fault<false, double>("*~5.1f") != nullptr, "the plain calls know no fields");
static_assert(SFMT_fault<true, int*>("%n") != nullptr);
static_assert(SFMT_fault<true, int, int>("%*d") != nullptr);
static_assert(SFMT_fault<true, double>("%#.1f") != nullptr);

TEST(SfmtCalls, BuffersGrowReplaceAndAppend) {
    text_buffer t;
    EXPECT_EQ(t.text(), "") << "a zero-filled buffer is empty";
    SFMT_copystr(&t.b, "one");
    SFMT_appendstr(&t.b, nullptr);
    SFMT_appendstr(&t.b, " two");
    SFMT_printfcat(&t.b, " %d", 3);
    EXPECT_EQ(t.text(), "one two 3");
    SFMT_printf(&t.b, "%s", "new");
    EXPECT_EQ(t.text(), "new");
    SFMT_altprintf(&t.b, "*~1.1f", 1.0);
    EXPECT_EQ(t.text(), "1.0");
    const std::string large(100'000, 'x');
    SFMT_printf(&t.b, "<%s>%999d", large, 1);
    EXPECT_EQ(t.text(), "<" + large + ">" + std::string(998, ' ') + "1");
    SFMT_copystr(&t.b, nullptr);
    EXPECT_EQ(t.text(), "");
    SFMT_destroy_buffer(&t.b);
    SFMT_altprintfcat(&t.b, "*~1.1f", 2.0);
    EXPECT_EQ(t.text(), "2.0") << "usable again after its end";
}

}  // namespace
