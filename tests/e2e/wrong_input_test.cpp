// Mistakes of new users, and old files: a clear error each time, and nothing lost.
#include <sstream>

#include "journey.h"

namespace {

const std::string NOT_CONNECTED = "\n\n *** Failed to connect to server\n\n";

Command console_command(std::vector<std::string> arguments, Environment env = {}) {
    arguments.insert(arguments.begin(), program("vesk.cursclient"));
    env.try_emplace("VESK_SOCKET", "/nonexistent/server.sock");
    return {std::move(arguments), std::move(env)};
}

TEST(WrongArguments, HelpIsTheUsageAndStatusOne) {
    for (const char* help : {"-h", "--help"}) {
        Process console(console_command({help}));
        EXPECT_EQ(console.wait_exit(), 1);
        EXPECT_TRUE(console.err().starts_with("Usage: vesk.cursclient [-h] [-c FILENAME] [HOSTNAME]\n"));
    }
}

TEST(WrongArguments, NoServerOrWrongHostFailsWithTheTextAndStatusOne) {
    const std::vector<std::vector<std::string>> rows{{},
                                                     {"/nonexistent/socket"},
                                                     {"no-such-host.invalid"},
                                                     {"127.0.0.1:1"},
                                                     {"127.0.0.1:99999"},
                                                     {"[::1"},
                                                     {""}};
    for (const auto& arguments : rows) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        Process console(console_command(arguments));
        EXPECT_EQ(console.wait_exit(), 1);
        EXPECT_NE(console.err().find(NOT_CONNECTED), std::string::npos) << console.err();
        EXPECT_EQ(console.out(), "") << "the terminal is not touched";
    }
}

TEST(WrongArguments, TheTerminalIsNotTouchedWithoutAServer) {
    Terminal console(console_command({}));
    EXPECT_TRUE(left_restored(console, 1));
    EXPECT_TRUE(console.find("*** Failed to connect to server"));
}

TEST(WrongArguments, UnknownTerminalSaysSoAndExitsWithTwo) {
    Station station;
    for (const char* term : {"no-such-terminal", ""}) {
        auto console = station.console({.arguments = {}, .size = {}, .term = term});
        EXPECT_TRUE(left_restored(*console, 2));
        EXPECT_NE(console->text().find("erminal"), std::string::npos) << console->text();
    }
}

// ---------------------------------------------------------------- settings

const std::string HALF_BROKEN =
    "# where the windows are\n"
    "Settings;ErrorDisplayTime = 4.5\n"
    "this line is no setting\n"
    "\n"
    "Windows;cpc_3010:N11;XPos = 3\n"
    "Windows;cpc_3010:N11;YPos = 2\n"
    "Windows;cpc_3010:N11;Visible = TRUE\n";

TEST(WrongSettings, BrokenLineIsReportedAndKeptAndTheRestIsRead) {
    Station station;
    write_file(station.settings_file(), HALF_BROKEN);
    auto counter = start_counter(station);
    auto console = station.console();
    ASSERT_TRUE(shows_all(*console, counter_rows()));
    EXPECT_TRUE(stands_at(*console, "Counter", 2, 3));
    console->press(Key::f5);
    EXPECT_TRUE(console->shows("line 3"));
    console->press(Key::escape);
    ASSERT_TRUE(console->hides("line 3"));
    ASSERT_TRUE(choose_from_menu(*console, "Save configuration"));
    ASSERT_TRUE(console->hides("Quit"));
    const std::string saved = read_file(station.settings_file());
    std::istringstream lines(HALF_BROKEN);
    for (std::string line; std::getline(lines, line);)
        EXPECT_NE(("\n" + saved).find("\n" + line + "\n"), std::string::npos) << line << "\nin\n" << saved;
}

TEST(WrongSettings, TheLastFileNamedCountsAndAnOptionWithoutOneIsIgnored) {
    Station station;
    auto counter = start_counter(station);
    const std::string file = station.folder() / "second.conf";
    write_file(file, HALF_BROKEN);
    auto console =
        station.console({.arguments = {"-c", "/nonexistent/first.conf", "-c", file, "-c"}, .size = {}});
    EXPECT_TRUE(stands_at(*console, "Counter", 2, 3));
}

// A folder in the file's place can be neither read nor written, not even by root.
TEST(WrongSettings, FileThatCannotBeReadOrWritten) {
    Station station;
    auto counter = start_counter(station);
    for (const std::string& file : {station.folder() / "", station.folder() / "missing/console.conf"}) {
        auto console = station.console({.arguments = {"-c", file}, .size = {}});
        ASSERT_TRUE(open_counter(*console));
        ASSERT_TRUE(choose_from_menu(*console, "Save configuration"));
        EXPECT_TRUE(console->shows("Not saved:"));
        console->press(Key::escape);
        console->press(Key::f5);
        EXPECT_TRUE(console->shows("cannot save the configuration to " + (station.folder() / "")));
        EXPECT_TRUE(console->wait_for([&] {
            return console->find("is not a regular file") || console->find("No such file or directory");
        }));
    }
}

}  // namespace
