// A station's minutes, recorded with `vesk.peer --monitor` and shown again.
#include <csignal>

#include "journey.h"

namespace {

// All rows but the status bar's, which has the clock.
std::string windows(const Terminal& console) {
    std::string text;
    for (int y = 0; y + 1 < console.size().rows; ++y)
        text += console.row(y) + "\n";
    return text;
}

const std::string THREE_WINDOWS = R"(
Windows;neph:N11;XPos = 1
Windows;neph:N11;YPos = 1
Windows;neph:N11;Visible = TRUE
Windows;aethalometer:A81;XPos = 2
Windows;aethalometer:A81;YPos = 20
Windows;aethalometer:A81;Visible = TRUE
Windows;cpc_3010:N61;XPos = 59
Windows;cpc_3010:N61;YPos = 2
Windows;cpc_3010:N61;Visible = TRUE
)";

std::unique_ptr<Terminal> open_console(Station& station) {
    write_file(station.settings_file(), THREE_WINDOWS);
    return station.console({.arguments = {}, .size = {32, 92}});
}

TEST(Replay, ShowsTheSameScreenAsTheStationDid) {
    Station station;
    auto monitor = station.peer({"--monitor"});
    auto simulated =
        station.simstation({"--kinds", "neph,aethalometer,cpc_3010", "--speed", "60", "--seed", "3"});
    auto live = open_console(station);
    for (int block = 0; block < 4; ++block)
        ASSERT_TRUE(monitor->wait_line({"MSG_CPC_3010_AVERAGE"}));
    simulated->signal(SIGSTOP);
    // The console's message comes last: a peer that has it has all.
    auto marker = station.peer();
    ASSERT_TRUE(marker->write_line(R"({"msg":"MSG_LOG_FLUSH"})"));
    ASSERT_TRUE(monitor->wait_line({"MSG_LOG_FLUSH"}));

    Station stage;
    auto console = open_console(stage);
    ASSERT_TRUE(is_up(*console));
    auto replay = stage.peer({"--replay", "-", "--speed", "20"});
    ASSERT_TRUE(replay->write(monitor->out())) << replay->err();
    EXPECT_TRUE(console->shows("Last Average:"));
    const auto same = [&] { return windows(*console) == windows(*live); };
    // Each shows what it got only while it is looked at.
    for (const Deadline deadline(PATIENCE); !same() && !deadline.passed();) {
        static_cast<void>(live->wait_for(same, "", WATCH / 4));
        static_cast<void>(console->wait_for(same, "", WATCH / 4));
    }
    EXPECT_EQ(windows(*console), windows(*live));

    replay->close_input();
    EXPECT_EQ(replay->wait_exit(), 0);
    EXPECT_NE(replay->err().find("of 3 sources played, 1 of consoles left out\n"), std::string::npos)
        << replay->err();
    EXPECT_TRUE(console->hides("Nephelometer"));
}

}  // namespace
