// Faults around the console: a server that stops, a peer that says too much, a terminal that goes away, and
// the console's own crash.

#include <csignal>
#include <cstdlib>

#include "journey.h"
#include "libvesk/link/linktime.h"
#include "libvesk/messages/records/cpc.h"
#include "support/wire.h"

namespace {

using std::chrono::seconds;

bool says(Process& program, std::string_view text) {
    return program.wait_for([&] { return program.err().find(text) != std::string::npos; });
}

// ---- the server

// Stopped, it neither closes the connection nor says anything: its peers take 30 s of that for its end.
TEST(ServerFault, StoppedIsFoundOutByItsSilence) {
    Station station;
    auto console = station.console();
    auto peer = station.peer();
    auto simulation = station.simstation({"--kinds", "cpc_3010"});
    ASSERT_TRUE(is_up(*console, "1"));
    station.server().signal(SIGSTOP);
    ASSERT_TRUE(console->wait_exit(seconds(static_cast<int>(LINKTIME_SILENCE)) + PATIENCE).has_value());
    EXPECT_TRUE(left_restored(*console));
    for (Process* program : {peer.get(), simulation.get()}) {
        EXPECT_NE(program->wait_exit().value_or(0), 0);
        EXPECT_TRUE(says(*program, "silence")) << program->err();
    }
}

// The settings of a console on a wall, and of one that nobody may command from.
TEST(ServerFault, AConsoleThatReconnectsComesBackWithItsWindows) {
    Station station;
    write_file(station.settings_file(), "Settings;Reconnect = TRUE\nSettings;ReadOnly = TRUE\n");
    auto counter = start_counter(station);
    auto console = station.console();
    ASSERT_TRUE(open_counter(*console));
    station.replace_server();
    EXPECT_TRUE(console->shows("The server is away"));
    counter = start_counter(station);
    EXPECT_TRUE(shows_all(*console, counter_rows())) << "its window came back by itself";
    console->type("\x04");  // the disk operations
    ASSERT_TRUE(choose(*console, "Flush buffers"));
    EXPECT_TRUE(console->shows("This console only watches"));
}

TEST(ServerFault, AStopThatEndsInTimeLosesNothing) {
    Station station;
    auto counter = start_counter(station);
    auto console = station.console();
    ASSERT_TRUE(open_counter(*console));
    station.server().signal(SIGSTOP);
    for (int i = 1; i <= 100; ++i)
        report_reading(*counter, i);
    EXPECT_TRUE(console->never_shows("Last reading:   100.0"));
    station.server().signal(SIGCONT);
    EXPECT_TRUE(console->shows("Last reading:   100.0"));
}

TEST(ServerFault, ALogThatNobodyReadsStopsNothing) {
    Station station;
    auto counter = start_counter(station);
    auto console = station.console();
    ASSERT_TRUE(open_counter(*console));
    station.server().ignore_output(true);
    for (int i = 0; i < 2000; ++i) {  // each leaves a line or two: more than a pipe holds
        const int fd = connect_unix(station.socket());
        ASSERT_GE(fd, 0);
        ASSERT_EQ(send(fd, "no frame", 8, MSG_NOSIGNAL), 8);
        close(fd);
    }
    report_reading(*counter, 77.7);
    EXPECT_TRUE(console->shows("Last reading:    77.7"));
}

// ---- peers

// Everything that `from` has queued is on its way.
testing::AssertionResult all_sent(wire::End& from) {
    if (!wire::until([&] { from.look(); }, [&] { return from.unsent() == 0 || from.ended(); }))
        return testing::AssertionFailure() << from.unsent() << " bytes were not taken";
    if (from.ended()) return testing::AssertionFailure() << "the server hung up";
    return testing::AssertionSuccess();
}

TEST(PeerFault, AFloodStopsNeitherTheConsoleNorOthers) {
    Station station;
    auto counter = start_counter(station);
    auto console = station.console();
    ASSERT_TRUE(open_counter(*console));
    wire::End flood(station.socket());
    flood.send(wire::hello(FRAME_PEER_INSTRUMENT, "T11"));
    auto reading = NETDSD_default<NET_CPC_3010_Instant>();
    FRAME_bytes message;
    FRAME_encode_message(&message,
                         {MSG_CPC_3010_INSTANT, 0, "", "CLIENT", NETDSD_of<NET_CPC_3010_Instant>()->name,
                          std::as_bytes(std::span(&reading, 1))});
    for (int round = 1; round <= 4; ++round) {
        for (int i = 0; i < 25'000; ++i)
            flood.send(message);
        for (int i = 0; i < 20; ++i)
            flood.look();
        // In the midst of it the operator's keys work, and others are heard.
        console->press(Key::enter);
        EXPECT_TRUE(console->shows("Quit"));
        console->press(Key::escape);
        EXPECT_TRUE(console->hides("Quit"));
        ASSERT_TRUE(all_sent(flood));
        report_reading(*counter, 900 + round);
        EXPECT_TRUE(console->shows("Last reading:   90" + std::to_string(round) + ".0"));
    }
}

// ---- the terminal

// The sanitizers leave the signals of a crash to the programs that are started from here on.
void use_plain_signals() {
    const char* options = std::getenv("ASAN_OPTIONS");
    setenv("ASAN_OPTIONS",
           (std::string(options != nullptr ? options : "") + ":handle_segv=0:handle_sigbus=0").c_str(), 1);
}

// A console that no signal tells of its terminal's end: it runs in a session of its own, below a shell that
// stays and reports how it ended.
std::unique_ptr<Terminal> console_behind_a_shell(const Station& station, const std::string& before,
                                                 const std::string& redirections) {
    const std::string script = before + "'" + program("vesk.cursclient") + "' " + redirections +
                               "; echo $? >'" + (station.folder() / "status") + "'";
    return std::make_unique<Terminal>(Command{
        {"/bin/sh", "-c", script}, {{"VESK_SOCKET", station.socket()}, {"HOME", station.folder() / ""}}});
}

TEST(TerminalFault, AnErrorOnTheLineAloneEndsTheConsole) {
    Station station;
    auto console = console_behind_a_shell(station, "trap '' HUP; setsid --wait ", "");
    ASSERT_TRUE(is_up(*console));
    console->hang_up();
    ASSERT_TRUE(console->wait_exit().has_value());
    EXPECT_EQ(read_file(station.folder() / "status"), "0\n");
}

TEST(TerminalFault, TheEndOfItsInputEndsTheConsole) {
    Station station;
    auto console = console_behind_a_shell(station, "", "</dev/null");
    EXPECT_TRUE(left_restored(*console));
    EXPECT_EQ(read_file(station.folder() / "status"), "0\n");
}

TEST(TerminalFault, AnotherProgramsLettersGoWithCtrlL) {
    Station station;
    auto console = station.console();
    ASSERT_TRUE(is_up(*console));
    console->scribble("\033[3;3Hfrom root: the station will be down");
    ASSERT_TRUE(console->shows("from root"));
    console->type("\x0c");
    EXPECT_TRUE(console->hides("from root"));
    EXPECT_TRUE(is_up(*console));
}

// In a session of its own nobody could let it go on: it gives the terminal back and takes it again at once.
TEST(TerminalFault, AStopGivesTheTerminalBackUntilItGoesOn) {
    Station station;
    auto counter = start_counter(station);
    auto console = station.console();
    ASSERT_TRUE(open_counter(*console));
    console->type("\x1a");
    const auto left_and_entered = [&] {
        const std::size_t left = console->output().find("\033[?1049l");
        return left != std::string::npos && console->output().find("\033[?1049h", left) != std::string::npos;
    };
    EXPECT_TRUE(console->wait_for(left_and_entered, "the stop"));
    EXPECT_TRUE(shows_all(*console, counter_rows()));
    console->type("\x03");
    EXPECT_TRUE(left_restored(*console));
}

class HeldTerminal : public testing::TestWithParam<int> {};

TEST_P(HeldTerminal, HoldsUpItsPictureOnly) {
    use_plain_signals();
    Station station;
    auto peer = station.peer();
    auto console = station.console();
    ASSERT_TRUE(is_up(*console));
    for (const char* entry : {"one", "two"}) {
        console->hold(true);
        console->type(std::string("\033[24~") + entry + "\r");
        EXPECT_TRUE(peer->wait_line({"MSG_LOG_MONITOR", entry})) << "keys and messages go on";
        if (entry == std::string_view("two")) break;
        console->hold(false);
        console->press(Key::enter);
        EXPECT_TRUE(console->shows("Quit"));
        console->press(Key::escape);
        EXPECT_TRUE(console->hides("Quit"));
    }
    console->signal(GetParam());
    EXPECT_TRUE(left_restored(*console, GetParam() == SIGTERM ? 0 : 128 + GetParam()));
}

INSTANTIATE_TEST_SUITE_P(All, HeldTerminal, testing::Values(SIGTERM, SIGSEGV),
                         [](const auto& param) { return std::string(sigabbrev_np(param.param)); });

// ---- the console's own

class Crashes : public testing::TestWithParam<int> {};

TEST_P(Crashes, RestoreTheTerminalAndEndOfTheirSignal) {
    use_plain_signals();
    Station station;
    auto counter = start_counter(station);
    auto console = station.console();
    ASSERT_TRUE(open_counter(*console));
    console->signal(GetParam());
    EXPECT_TRUE(left_restored(*console, 128 + GetParam()));
}

INSTANTIATE_TEST_SUITE_P(All, Crashes, testing::Values(SIGSEGV, SIGBUS, SIGABRT),
                         [](const auto& param) { return std::string(sigabbrev_np(param.param)); });

}  // namespace
