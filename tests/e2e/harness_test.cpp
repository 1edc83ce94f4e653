// The harness itself: what it says about a screen or an exit must be so, or no journey proves anything.
#include <csignal>

#include "support/station.h"

namespace {

TEST(Harness, TellsCellsAndColoursFailuresAndExits) {
    // Bold yellow on blue, a box corner of the alternate character set, reverse video.
    Terminal terminal({{"/bin/sh", "-c",
                        R"(printf '\033[2;4H\033[1;33;44mHi\033[m\033[3;1H\033(0lqk\033(B\033[4;1H\033[7mR'
                           read x; exit 7)"},
                       {}});
    ASSERT_TRUE(terminal.shows("R"));
    const TerminalCell cell = terminal.cell(1, 3);
    EXPECT_TRUE(cell.text == "H" && cell.bold && cell.fg == TERMINAL_YELLOW && cell.bg == TERMINAL_BLUE);
    EXPECT_EQ(terminal.row(2).substr(0, 9), "┌─┐");
    EXPECT_TRUE(terminal.cell(3, 0).reverse && terminal.cell(3, 0).bg == TERMINAL_WHITE);

    const auto result = terminal.wait_for([] { return false; }, "nothing", std::chrono::milliseconds(1));
    EXPECT_FALSE(result);
    EXPECT_NE(std::string(result.message()).find("nothing"), std::string::npos);
    EXPECT_NE(std::string(result.message()).find("Hi"), std::string::npos) << "it prints the screen";
    EXPECT_FALSE(terminal.never_shows("Hi"));
    terminal.type("\n");
    EXPECT_FALSE(terminal.exits_with(0));

    Terminal killed({{"/bin/sh", "-c", "echo up; sleep 100"}, {}});
    ASSERT_TRUE(killed.shows("up"));
    killed.signal(SIGKILL);
    EXPECT_TRUE(killed.exits_with(128 + SIGKILL));
}

}  // namespace
