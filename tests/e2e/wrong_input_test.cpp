// What goes wrong for a new user, an old file or a broken peer: a clear error each time, nothing lost, and
// nobody else disturbed.
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
#include <random>
#include <sstream>

#include "journey.h"
#include "libvesk/link/frame.h"
#include "libvesk/link/veskmsg.h"
#include "libvesk/messages/records/cpc.h"
#include "libvesk/messages/records/server.h"

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

// ---------------------------------------------------------------- peers

TEST(WrongPeer, GarbageOnTheSocketCostsOnlyItsSender) {
    Station station;
    auto counter = start_counter(station);
    auto console = station.console();
    ASSERT_TRUE(open_counter(*console));
    std::mt19937 random(1);
    for (int i = 0; i < 20; ++i) {
        std::string garbage(1 + random() % 5000, '\0');
        for (char& c : garbage)
            c = static_cast<char>(random());
        const int fd = connect_unix(station.socket());
        ASSERT_GE(fd, 0);
        EXPECT_GT(send(fd, garbage.data(), garbage.size(), MSG_NOSIGNAL), 0);
        if (i % 2 == 0) shutdown(fd, SHUT_WR);
        // The server hangs up by itself: the end of the stream, or a reset.
        char byte = 0;
        while (recv(fd, &byte, 1, 0) > 0) {
        }
        close(fd);
    }
    report_reading(*counter, 55.5);
    EXPECT_TRUE(console->shows("Last reading:    55.5"));
    EXPECT_TRUE(station.server().running());
}

template <class R>
void add_message(FRAME_bytes* to, NETMSG_type type, const R& record, std::size_t size = sizeof(R)) {
    const FRAME_span payload = std::as_bytes(std::span(&record, 1)).first(size);
    FRAME_encode_message(to, {type, FRAME_TO_ALL, "", "", NETDSD_of<R>()->name, payload});
}

// What only a peer with a link of its own making can send.
TEST(WrongPeer, WrongSizeIsDroppedAndTextWithoutTerminatorIsCut) {
    Station station;
    auto console = station.console();
    ASSERT_TRUE(is_up(*console));
    NET_SERVER_InstrumentInfo info{};
    std::strcpy(info.type, "cpc_3010");
    std::memset(info.display_name, 'X', sizeof info.display_name);
    info.id_ch = 'N';
    auto instant = NETDSD_default<NET_CPC_3010_Instant>();
    FRAME_bytes bytes;
    FRAME_encode_hello(&bytes, {FRAME_VERSION, FRAME_PEER_INSTRUMENT, "N11"});
    add_message(&bytes, MSG_SERVER_INSTRUMENTINFO, info);
    instant.concentration = 1;
    add_message(&bytes, MSG_CPC_3010_INSTANT, instant);
    instant.concentration = 2;
    add_message(&bytes, MSG_CPC_3010_INSTANT, instant, sizeof instant - 1);

    const int fd = connect_unix(station.socket());
    ASSERT_GE(fd, 0);
    ASSERT_EQ(send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL), static_cast<ssize_t>(bytes.size()));
    ASSERT_TRUE(is_up(*console, "N"));
    console->alt('n');
    EXPECT_TRUE(shows_all(*console, {std::string(29, 'X'), "Last reading:     1.0"}));
    auto& server = station.server();
    EXPECT_TRUE(server.wait_for([&] { return server.err().find("size") != std::string::npos; }))
        << server.err();

    // The sender keeps its link: what it sends next arrives.
    bytes.clear();
    instant.concentration = 3;
    add_message(&bytes, MSG_CPC_3010_INSTANT, instant);
    ASSERT_EQ(send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL), static_cast<ssize_t>(bytes.size()));
    EXPECT_TRUE(console->shows("Last reading:     3.0"));
    close(fd);
}

TEST(WrongPeer, TextsCannotReachTheTerminalRaw) {
    Station station;
    auto instrument = station.peer({"--as", "N11"});
    instrument->write_line(R"({"msg":"MSG_SERVER_INSTRUMENTINFO","payload":{"type":"cpc_3010",)"
                           R"("display_name":"A\u001b[2JB\u0007C","id_ch":"N"}})");
    auto console = station.console();
    ASSERT_TRUE(is_up(*console, "N"));
    console->alt('n');
    EXPECT_TRUE(console->shows("A [2JB C"));
}

}  // namespace
