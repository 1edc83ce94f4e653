// The harness itself, on small programs: what it says about a screen, a key or an exit must be so, or no
// journey proves anything.
#include <gtest/gtest.h>

#include <csignal>

#include "support/station.h"

namespace {

Command shell(const std::string& script) {
    return {{"/bin/sh", "-c", script}, {}};
}

TEST(Harness, ScreenHasTextColoursAndLines) {
    // Bold yellow on blue at row 1, column 3; a box corner by the alternate character set; reverse video.
    Terminal terminal(
        shell(R"(printf '\033[2;4H\033[1;33;44mHi\033[m\033[3;1H\033(0lqk\033(B\033[4;1H\033[7mR'
                               sleep 100)"));
    ASSERT_TRUE(terminal.shows("R"));
    const auto place = terminal.find("Hi");
    ASSERT_TRUE(place);
    EXPECT_EQ(place->row, 1);
    EXPECT_EQ(place->col, 3);
    const TerminalCell cell = terminal.cell(1, 3);
    EXPECT_TRUE(cell.text == "H" && cell.bold && cell.fg == TERMINAL_YELLOW && cell.bg == TERMINAL_BLUE);
    EXPECT_EQ(terminal.row(2).substr(0, 9), "┌─┐");
    const TerminalCell reversed = terminal.cell(3, 0);
    EXPECT_TRUE(reversed.reverse && reversed.fg == TERMINAL_BLACK && reversed.bg == TERMINAL_WHITE);

    const std::string svg = terminal.svg("a <title>");
    EXPECT_NE(svg.find("a &lt;title&gt;"), std::string::npos);
    EXPECT_NE(svg.find(">Hi</text>"), std::string::npos);
    EXPECT_NE(svg.find("#1f3f77"), std::string::npos);
}

TEST(Harness, FailureShowsTheScreenAndWhatWasAwaited) {
    Terminal terminal(shell("echo what there is; sleep 100"));
    ASSERT_TRUE(terminal.shows("what there is"));
    const auto result = terminal.wait_for([] { return false; }, "nothing", std::chrono::milliseconds(1));
    EXPECT_FALSE(result);
    EXPECT_NE(std::string(result.message()).find("nothing"), std::string::npos);
    EXPECT_NE(std::string(result.message()).find("what there is"), std::string::npos);
    EXPECT_FALSE(terminal.never_shows("what there is"));
}

TEST(Harness, KeysSizesAndTerminalQueriesReachTheProgram) {
    // The program asks where the cursor is: the terminal answers on its input.
    Terminal terminal(shell(R"(trap 'echo resized to $(stty size)' WINCH
                               stty -icanon -echo; stty size; printf 'ask\033[6n'
                               while :; do dd bs=1 count=1 2>/dev/null | od -An -c; done)"),
                      {10, 40});
    ASSERT_TRUE(terminal.shows("10 40"));
    ASSERT_TRUE(terminal.shows("033"));
    ASSERT_TRUE(terminal.shows("R"));
    terminal.type("x");
    EXPECT_TRUE(terminal.shows("   x"));
    terminal.resize({8, 30});
    terminal.type("y");
    EXPECT_TRUE(terminal.shows("resized to 8 30"));
}

TEST(Harness, SurvivesASmallerSizeWhileLinesScroll) {
    Terminal terminal(
        shell(R"(printf '\033[20;24rscrolls'; read -r _; printf '\033[M\033[9;1H\n\n\n\nstill'; sleep 100)"));
    ASSERT_TRUE(terminal.shows("scrolls"));
    terminal.resize({10, 80});
    terminal.type("\n");
    EXPECT_TRUE(terminal.shows("still"));
}

TEST(Harness, SurvivesAWideCharacterInASingleColumn) {
    Terminal terminal(shell(R"(printf '\360\237\230\200'; exit 3)"), {3, 1});
    EXPECT_EQ(terminal.wait_exit(), 3);
}

TEST(Harness, TellsHowTheTerminalWasLeft) {
    Terminal terminal(shell(R"(printf '\033[?1049h\033[?25lin'; stty raw; read -r x
                               stty sane; printf '\033[?1049l\033[?25hout'; exit 7)"));
    ASSERT_TRUE(terminal.shows("in"));
    ASSERT_TRUE(terminal.wait_for([&] { return terminal.settings_changed(); }));
    EXPECT_TRUE(terminal.alternate_screen());
    EXPECT_FALSE(terminal.cursor_visible());
    terminal.type("\n");
    EXPECT_TRUE(terminal.exits_with(7));
    EXPECT_FALSE(terminal.alternate_screen());
    EXPECT_TRUE(terminal.cursor_visible());
    EXPECT_NE(terminal.text().find("out"), std::string::npos);
}

TEST(Harness, SignalsAndHangUpsReachTheProgram) {
    Terminal killed(shell("echo up; sleep 100"));
    ASSERT_TRUE(killed.shows("up"));
    killed.signal(SIGKILL);
    EXPECT_TRUE(killed.exits_with(128 + SIGKILL));

    Terminal hung_up(shell("trap 'exit 5' HUP; echo up; while :; do sleep 0.01; done"));
    ASSERT_TRUE(hung_up.shows("up"));
    hung_up.hang_up();
    EXPECT_TRUE(hung_up.exits_with(5));

    Terminal missing({{"/nonexistent/program"}, {}});
    EXPECT_TRUE(missing.exits_with(127));
}

TEST(Harness, ProcessLinesInputAndExit) {
    Process process(shell("while read -r line; do echo \"got $line\"; done; echo bye >&2; exit 3"));
    ASSERT_TRUE(process.write_line("one"));
    ASSERT_TRUE(process.write_line("two"));
    EXPECT_EQ(process.wait_line({"got", "two"}), "got two");
    EXPECT_FALSE(process.wait_line({"two"}, std::chrono::milliseconds(1))) << "each line is found once";
    EXPECT_TRUE(process.running());
    process.close_input();
    EXPECT_EQ(process.wait_exit(), 3);
    EXPECT_EQ(process.out(), "got one\ngot two\n");
    EXPECT_EQ(process.err(), "bye\n");
}

TEST(Harness, ProcessTakesMoreThanAPipeHolds) {
    Process process(shell("head -c 1000000 /dev/zero | tr '\\0' x; cat >/dev/null"));
    const std::string much(1000000, 'y');
    EXPECT_TRUE(process.write(much));
    process.close_input();
    EXPECT_EQ(process.wait_exit(), 0);
    EXPECT_EQ(process.out(), std::string(1000000, 'x'));
}

TEST(Harness, EnvironmentIsPinned) {
    setenv("VESK_SOCKET", "/of/the/tester", 1);
    Process process({{"/usr/bin/env"}, {{"TERM", "vt100"}}});
    EXPECT_EQ(process.wait_exit(), 0);
    EXPECT_EQ(process.out().find("VESK_SOCKET"), std::string::npos);
    EXPECT_NE(process.out().find("TERM=vt100\n"), std::string::npos);
    EXPECT_NE(process.out().find("TZ=UTC\n"), std::string::npos);
}

}  // namespace
