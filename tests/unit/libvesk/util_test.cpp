// Text helpers, patterns, numbers, the clock, sleep and exit signals, and lines on standard error.
#include "libvesk/support/util.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <clocale>
#include <csignal>
#include <cstring>
#include <limits>
#include <string>
#include <thread>

#include <pthread.h>
#include <unistd.h>

namespace {

TEST(UtilText, CopiesAreCutAndTerminated) {
    char field[5];
    const struct {
        const char* source;
        const char* expected;
    } rows[] = {{"abcd", "abcd"}, {"abcdefgh", "abcd"}, {"", ""}, {nullptr, ""}};
    for (const auto& row : rows) {
        std::memset(field, 'x', sizeof field);
        UTIL_strcpynt(field, row.source);
        EXPECT_STREQ(field, row.expected);
    }
    field[0] = 'k';
    UTIL_strncpynt(field, "new", 0);
    EXPECT_EQ(field[0], 'k');
    const char full[3] = {'a', 'b', 'c'};
    EXPECT_EQ(UTIL_field(full), "abc");
}

TEST(UtilText, ComparesWithoutCase) {
    EXPECT_EQ(UTIL_strcasecmp("NEPH", "neph"), 0);
    EXPECT_LT(UTIL_strcasecmp("a", "B"), 0);
    EXPECT_GT(UTIL_strcasecmp("b", nullptr), 0);
}

TEST(UtilText, SourceNames) {
    for (const char* good : {"N11", "a b", "cpc_3010:N61", "1234567890123456789012345678901"})
        EXPECT_TRUE(UTIL_valid_source_name(good)) << good;
    for (const char* bad :
         {"", " N11", "N11 ", "N\t11", "N\x7f", "caf\xc3\xa9", "12345678901234567890123456789012"})
        EXPECT_FALSE(UTIL_valid_source_name(bad)) << bad;
}

TEST(UtilText, WildcardMatches) {
    const struct {
        const char* text;
        const char* pattern;
        bool expected;
    } rows[] = {
        {"", "", true},         {"", "*", true},         {"", "?", false},
        {"N11", "n11", false},  {"N11", "N1", false},    {"N1", "N11", false},
        {"N11", "N?1", true},   {"N11", "**1", true},    {"aXbXc", "a*b*c", true},
        {"abab", "*ab", true},  {"ababa", "*ab", false}, {"N5", "N[0-4]", false},
        {"N3", "N[0-4]", true}, {"Nd", "N[!abc]", true}, {"Nb", "N[!abc]", false},
        {"N]", "N[]x]", true},  {"N]", "N[!]x]", false}, {"N-", "N[a-]", true},
        {"N*", "N\\*", true},   {"Nx", "N\\*", false},   {"N[", "N[", true},
        {"N[a", "N[a", true},   {"N]", "N[\\]]", true},  {"a\\", "a\\", true},
        {"-", "[a\\-z]", true}, {"m", "[a\\-z]", false}, {"\xe9", "[\x80-\xff]", true},
        {"abc", "a*?c", true},  {"ac", "a*?c", false},   {"MSG_LOG", "MSG_*_*", false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(UTIL_wildcard_match(row.text, row.pattern), row.expected)
            << row.text << " / " << row.pattern;
    EXPECT_TRUE(UTIL_wildcard_match(nullptr, nullptr));
}

// A matcher that tries every share between the stars would not end within the life of the machine.
TEST(UtilText, WildcardIsNotExponential) {
    const std::string text(2000, 'a');
    std::string pattern;
    for (int i = 0; i < 30; ++i)
        pattern += "*a[a-z]";
    EXPECT_FALSE(UTIL_wildcard_match(text.c_str(), (pattern + "b").c_str()));
    EXPECT_TRUE(UTIL_wildcard_match(text.c_str(), (pattern + "*").c_str()));
}

TEST(UtilNumbers, ReadAsInTheCLocale) {
    for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "C"})
        if (std::setlocale(LC_ALL, name) != nullptr) break;
    EXPECT_EQ(UTIL_atofv(" 2.5s"), 2.5);
    EXPECT_EQ(UTIL_atofv("none"), 0);
    EXPECT_EQ(UTIL_atofv(nullptr), 0);
    const struct {
        const char* text;
        bool good;
        double value;
    } rows[] = {{"1.5", true, 1.5}, {" +2 ", true, 2},   {"-3e-2", true, -0.03}, {".5", true, 0.5},
                {"7.", true, 7},    {"", false, 0},      {" ", false, 0},        {"1 2", false, 0},
                {"1,5", false, 0},  {"+-1", false, 0},   {"0x10", false, 0},     {"nan", false, 0},
                {"inf", false, 0},  {"1e999", false, 0}, {"5m", false, 0}};
    for (const auto& row : rows) {
        double value = 99;
        EXPECT_EQ(UTIL_parse_number(row.text, &value), row.good) << row.text;
        EXPECT_EQ(value, row.good ? row.value : 99) << row.text;
    }
}

TEST(UtilNumbers, BooleanSettings) {
    for (const char* text : {"TRUE", "true", "t", "Tall", "1", "-2", " 3", "1x"})
        EXPECT_TRUE(UTIL_text_is_true(text)) << text;
    for (const char* text : {"FALSE", "false", "no", "yes", "0", "", "x1"})
        EXPECT_FALSE(UTIL_text_is_true(text)) << text;
    EXPECT_FALSE(UTIL_text_is_true(nullptr));
}

TEST(UtilNumbers, PowersOfTwo) {
    const std::size_t largest = (SIZE_MAX >> 1) + 1;
    const struct {
        std::size_t n;
        std::size_t expected;
    } rows[] = {{0, 1}, {1, 1}, {2, 2}, {3, 4}, {32, 32}, {33, 64}, {largest, largest}, {SIZE_MAX, SIZE_MAX}};
    for (const auto& row : rows)
        EXPECT_EQ(UTIL_roundup_p2(row.n), row.expected) << row.n;
}

TEST(UtilArray, ShiftsBothWays) {
    const struct {
        std::ptrdiff_t shift;
        const char* expected;
    } rows[] = {{0, "abcdef"}, {-2, "cdefef"}, {2, "ababcd"},           {-5, "fbcdef"},         {5, "abcdea"},
                {6, "abcdef"}, {-6, "abcdef"}, {PTRDIFF_MIN, "abcdef"}, {PTRDIFF_MAX, "abcdef"}};
    for (const auto& row : rows) {
        char text[] = "abcdef";
        UTIL_shift_array(text, 6, row.shift);
        EXPECT_STREQ(text, row.expected) << row.shift;
    }
}

double seconds_taken(double sleep) {
    const auto start = std::chrono::steady_clock::now();
    UTIL_fsleep(sleep);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

TEST(UtilTime, SleepsAsLongAsAsked) {
    EXPECT_GE(seconds_taken(0.02), 0.02);
    for (double none : {-1.0, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_LT(seconds_taken(none), 5.0);
}

TEST(UtilTime, WaitsForADescriptorAsLongAsAsked) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    pollfd fds[] = {{-1, POLLIN, 0}, {ends[0], POLLIN, 0}};
    EXPECT_FALSE(UTIL_wait_fds(fds, 0.001));
    ASSERT_EQ(write(ends[1], "x", 1), 1);
    EXPECT_TRUE(UTIL_wait_fds(fds, 1000));
    close(ends[0]);
    close(ends[1]);
}

class UtilExit : public testing::Test {
  protected:
    void SetUp() override {
        for (int signal : {SIGINT, SIGTERM, SIGQUIT, SIGHUP})  // whoever runs the tests may ignore some
            std::signal(signal, SIG_DFL);
        UTIL_exit_signal_poll_setup_hup();
    }
    void TearDown() override { UTIL_request_exit(FALSE); }
};

TEST_F(UtilExit, SignalsRequestExit) {
    for (int signal : {SIGINT, SIGTERM, SIGQUIT, SIGHUP}) {
        EXPECT_FALSE(UTIL_exit_poll());
        std::raise(signal);
        EXPECT_TRUE(UTIL_exit_poll()) << signal;
        UTIL_request_exit(FALSE);
    }
}

TEST_F(UtilExit, SignalThatWasIgnoredAtTheStartStaysSo) {
    std::signal(SIGHUP, SIG_IGN);
    UTIL_exit_signal_poll_setup_hup();
    std::raise(SIGHUP);
    EXPECT_FALSE(UTIL_exit_poll());
}

// Once pending before the sleep, once arriving in it; the sleep is far longer than the test may take.
TEST_F(UtilExit, RequestEndsSleep) {
    std::raise(SIGTERM);
    EXPECT_LT(seconds_taken(1000), 60);
    UTIL_request_exit(FALSE);
    const pthread_t sleeper = pthread_self();
    std::thread sender([sleeper] { pthread_kill(sleeper, SIGHUP); });
    EXPECT_LT(seconds_taken(1e300), 60);
    sender.join();
    EXPECT_TRUE(UTIL_exit_poll());
}

TEST_F(UtilExit, BlockedSignalsWaitWhileExitHandlersRun) {
    UTIL_atexit_set_signal_mask();
    std::raise(SIGINT);
    EXPECT_FALSE(UTIL_exit_poll());
    EXPECT_GE(seconds_taken(0.001), 0.001) << "a sleep must not let them in either";
    EXPECT_FALSE(UTIL_exit_poll());
}

TEST(UtilLines, CarryTheRole) {
    EXPECT_FALSE(LIBVESK_init(nullptr));
    EXPECT_FALSE(LIBVESK_init(""));
    ASSERT_TRUE(LIBVESK_init("CURSCLIENT"));
    testing::internal::CaptureStderr();
    UTIL_assertion_failed("wins.c", 12, "wd != NULL");
    UTIL_assertion_failed_errno("displays/logentry.c", 151, "buffer != NULL", ENOMEM);
    UTIL_complain("%s", std::string(5000, 'x').c_str());
    const std::string text = testing::internal::GetCapturedStderr();
    const std::string lines =
        "CURSCLIENT: assertion failed (wins.c:12): wd != NULL\n"
        "CURSCLIENT: assertion failed (displays/logentry.c:151): buffer != NULL: Cannot allocate memory\n"
        "CURSCLIENT: xxx";
    EXPECT_EQ(text.substr(0, lines.size()), lines);
    EXPECT_EQ(text.find('\n', lines.size()), text.size() - 1) << "a long line is cut and still ends";
    EXPECT_EQ(std::raise(SIGPIPE), 0);
    LIBVESK_cleanup();
    EXPECT_STREQ(LIBVESK_title(), "");
}

// A reader of the log that hangs must not stop a program that instruments wait for.
TEST(UtilSay, NeverWaitsForAReaderAndTellsWhatWasLost) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const int before = dup(STDERR_FILENO);
    dup2(ends[1], STDERR_FILENO);
    for (int i = 0; i < 1000; ++i)
        UTIL_say(std::string(500, 'x'));
    std::string text(1 << 20, '\0');
    const ssize_t taken = read(ends[0], text.data(), text.size());
    UTIL_say("the next");
    const ssize_t n = read(ends[0], text.data(), text.size());
    dup2(before, STDERR_FILENO);
    for (const int fd : {before, ends[0], ends[1]})
        close(fd);
    ASSERT_GT(taken, 0);
    EXPECT_EQ(taken % 501, 0) << "a line was cut";
    EXPECT_EQ(text.substr(0, static_cast<std::size_t>(n)),
              "(lines lost: " + std::to_string(1000 - taken / 501) + ")\nthe next\n");
}

}  // namespace
