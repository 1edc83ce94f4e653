// The console and its terminal: kinds of terminals, and how it is left however the console ends.
#include <csignal>
#include <fstream>

#include "journey.h"

namespace {

struct Kind {
    const char* term;
    bool colour;
};

void PrintTo(const Kind& kind, std::ostream* os) {
    *os << kind.term;
}

class TerminalKind : public testing::TestWithParam<Kind> {};

TEST_P(TerminalKind, ShowsFramesValuesAndAttributes) {
    Station station;
    auto counter = start_counter(station);
    auto console = station.console({.arguments = {}, .size = {}, .term = GetParam().term});
    ASSERT_TRUE(open_counter(*console));
    EXPECT_TRUE(stands_at(*console, "Counter", 6, 25));
    EXPECT_TRUE(console->wait_for([&] { return console->cell(17, 55).text == "┘"; }, "the whole frame"));
    EXPECT_EQ(console->cell(17, 40).text, "─");
    EXPECT_EQ(console->cell(10, 25).text, "│");
    EXPECT_TRUE(console->cell(6, 25).bold) << "the focus shows without colours too";
    EXPECT_EQ(console->cell(0, 0).bg, GetParam().colour ? TERMINAL_BLUE : TERMINAL_BLACK);
    EXPECT_FALSE(console->cursor_visible() && std::string_view(GetParam().term) != "vt100");

    console->press(Key::left);
    EXPECT_TRUE(stands_at(*console, "Counter", 6, 24));
    ASSERT_TRUE(choose_from_menu(*console, "Quit"));
    EXPECT_TRUE(left_restored(*console));
}

INSTANTIATE_TEST_SUITE_P(All, TerminalKind,
                         testing::Values(Kind{"vt100", false}, Kind{"linux", true},
                                         Kind{"screen-256color", true}, Kind{"xterm-256color", true}),
                         [](const auto& param) {
                             std::string name = param.param.term;
                             std::erase(name, '-');
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

TEST(TerminalLoss, BothConsolesEndWhenTheServerDies) {
    Station station;
    auto first = station.console();
    auto second = station.console();
    ASSERT_TRUE(is_up(*first));
    ASSERT_TRUE(is_up(*second));
    station.server().signal(SIGKILL);
    EXPECT_TRUE(left_restored(*first));
    EXPECT_TRUE(left_restored(*second));
}

// The demo as it comes up, an hour of its time later. For the documents: writes the picture into the folder
// that VESK_SCREENS names.
TEST(Screens, DemoStationFillsTheScreen) {
    Station station;
    auto simulated = station.simstation({"--speed", "300", "--seed", "3"});
    auto console = station.console({.arguments = {"-c", VESK_DEMO_CONF}, .size = {32, 92}});
    ASSERT_TRUE(is_up(*console));
    for (const char* title : {"Nephelometer", "Aethalometer", "TSI 3010 CPC"})
        EXPECT_TRUE(console->shows(title));
    const auto settled = [&] {
        const std::string text = console->text();
        const auto has = [&](const char* part) { return text.find(part) != std::string::npos; };
        return has("Last Average:") && !has("-.-") && !has("NO COMMS") && !has("LASER/TEMP");
    };
    ASSERT_TRUE(console->wait_for(settled, "values in every window, and no warnings"));
    if (const char* folder = std::getenv("VESK_SCREENS")) {
        std::ofstream file(std::string(folder) + "/console.svg");
        file << console->svg("vesk.cursclient");
        EXPECT_TRUE(file.flush().good()) << "cannot write to " << folder;
    }
}

}  // namespace
