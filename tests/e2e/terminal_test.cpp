// The console and its terminal: kinds of terminals, and how it is left however the console ends.
#include <cctype>
#include <csignal>

#include "journey.h"

namespace {

struct Kind {
    const char* term;
    const char* locale;
    bool colour;
    TerminalSize size = {};
};

void PrintTo(const Kind& kind, std::ostream* os) {
    *os << kind.term << " " << kind.locale << " " << kind.size.cols << "x" << kind.size.rows;
}

// Where the counter's window comes up: in the middle, or as much of it as there is room for.
struct Frame {
    int top, left, bottom, right;
};

Frame frame_on(TerminalSize size) {
    if (size == TerminalSize{}) return {6, 25, 17, 55};
    return {0, 0, size.rows - 2, size.cols - 1};
}

class TerminalKind : public testing::TestWithParam<Kind> {};

TEST_P(TerminalKind, ShowsFramesValuesAndAttributes) {
    const auto [term, locale, colour, size] = GetParam();
    const Frame frame = frame_on(size);
    Station station;
    auto counter = start_counter(station);
    auto console = station.console({.arguments = {}, .size = size, .term = term, .locale = locale});
    ASSERT_TRUE(console->wait_for([&] { return console->cell(size.rows - 1, 0).text == "N"; }, "its letter"));
    console->alt('N');
    ASSERT_TRUE(console->shows("Last reading:"));
    const auto is_at = [&](int y, int x, const char* text) {
        return console->wait_for([&] { return console->cell(y, x).text == text; }, text);
    };
    EXPECT_TRUE(is_at(frame.top, frame.left, "┌"));
    EXPECT_TRUE(is_at(frame.top, frame.right, "┐"));
    EXPECT_TRUE(is_at(frame.bottom, frame.left, "└"));
    EXPECT_TRUE(is_at(frame.bottom, frame.right, "┘"));
    EXPECT_TRUE(is_at(frame.bottom, frame.left + 15, "─"));
    EXPECT_TRUE(is_at(frame.top + 4, frame.left, "│"));
    EXPECT_TRUE(is_at(frame.top + 4, frame.right, "│"));
    EXPECT_TRUE(console->cell(frame.top, frame.left).bold) << "the focus shows without colours too";
    EXPECT_EQ(console->cell(frame.top + 1, frame.left + 1).bg, colour ? TERMINAL_BLUE : TERMINAL_BLACK);
    EXPECT_FALSE(colour && console->cursor_visible()) << "only some without colours cannot hide it";

    console->type("\x03");
    EXPECT_TRUE(left_restored(*console));
}

constexpr TerminalSize SMALLEST{8, 20};

INSTANTIATE_TEST_SUITE_P(
    All, TerminalKind,
    testing::Values(Kind{"vt100", "C.UTF-8", false}, Kind{"vt100", "C", false, SMALLEST},
                    Kind{"vt220", "C", false}, Kind{"xterm-mono", "C.UTF-8", false, SMALLEST},
                    Kind{"linux", "C.UTF-8", true}, Kind{"linux", "C", true},
                    Kind{"screen", "C", true, SMALLEST}, Kind{"screen-256color", "C.UTF-8", true},
                    Kind{"tmux-256color", "C.UTF-8", true}, Kind{"xterm", "C", true},
                    Kind{"xterm-256color", "C.UTF-8", true, SMALLEST}, Kind{"xterm-256color", "POSIX", true}),
    [](const auto& param) {
        std::string name = testing::PrintToString(param.param);
        std::erase_if(name, [](unsigned char c) { return std::isalnum(c) == 0; });
        return name;
    });

struct Ending {
    const char* name;
    void (*end)(Station&, Terminal&);
};

void PrintTo(const Ending& ending, std::ostream* os) {
    *os << ending.name;
}

class Ends : public testing::TestWithParam<Ending> {};

TEST_P(Ends, WithStatusZeroAndTheTerminalRestored) {
    Station station;
    auto console = station.console();
    ASSERT_TRUE(is_up(*console));
    EXPECT_TRUE(console->alternate_screen());
    EXPECT_TRUE(console->settings_changed());
    GetParam().end(station, *console);
    EXPECT_TRUE(left_restored(*console));
}

INSTANTIATE_TEST_SUITE_P(
    All, Ends,
    testing::Values(
        Ending{"ServerKilled", [](Station& station, Terminal&) { station.server().signal(SIGKILL); }},
        Ending{"ServerStopped", [](Station& station, Terminal&) { station.server().signal(SIGTERM); }},
        Ending{"Terminated", [](Station&, Terminal& console) { console.signal(SIGTERM); }},
        Ending{"Interrupted", [](Station&, Terminal& console) { console.type("\x03"); }},
        Ending{"HangUpSignal", [](Station&, Terminal& console) { console.signal(SIGHUP); }},
        Ending{"Quit", [](Station&, Terminal& console) { ASSERT_TRUE(choose_from_menu(console, "Quit")); }}),
    [](const auto& param) { return std::string(param.param.name); });

TEST(TerminalLoss, EndsTheConsoleAndNobodyElse) {
    Station station;
    auto lost = station.console();
    auto other = station.console();
    ASSERT_TRUE(is_up(*lost));
    ASSERT_TRUE(is_up(*other));
    lost->hang_up();
    EXPECT_TRUE(lost->exits_with(0));
    auto counter = start_counter(station);
    EXPECT_TRUE(open_counter(*other));
}

}  // namespace
