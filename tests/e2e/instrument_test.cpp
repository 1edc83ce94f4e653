// An instrument's life as the operators see it: announced, reporting, killed, back; on several consoles.
#include <csignal>

#include "journey.h"

namespace {

TEST(Instrument, ConsolesStartedBeforeAndAfterItShowTheSameValues) {
    Station station;
    auto before = station.console();
    ASSERT_TRUE(is_up(*before));
    auto counter = start_counter(station);
    EXPECT_TRUE(open_counter(*before));
    auto after = station.console();
    EXPECT_TRUE(open_counter(*after));
    EXPECT_TRUE(after->hides("NO COMMS"));

    report_reading(*counter, 777.5);
    EXPECT_TRUE(before->shows("Last reading:   777.5"));
    EXPECT_TRUE(after->shows("Last reading:   777.5"));
}

TEST(Instrument, GoesWithWindowMenuEntryAndIndicatorAndComesBackToItsSavedPlace) {
    Station station;
    auto counter = start_counter(station);
    auto console = station.console();
    ASSERT_TRUE(open_counter(*console));
    ASSERT_TRUE(stands_at(*console, "Counter", 6, 25));
    console->press(Key::up);
    console->press(Key::up);
    console->press(Key::left);
    ASSERT_TRUE(stands_at(*console, "Counter", 4, 24));
    ASSERT_TRUE(choose_from_menu(*console, "Save configuration"));
    ASSERT_TRUE(console->hides("Quit"));

    counter->signal(SIGKILL);
    EXPECT_TRUE(console->hides("Last reading"));
    EXPECT_TRUE(console->wait_for([&] { return console->cell(23, 0).text == " "; }, "no indicator"));
    console->press(Key::enter);
    ASSERT_TRUE(console->shows("Quit"));
    EXPECT_FALSE(console->find("Counter"));
    console->press(Key::escape);
    ASSERT_TRUE(console->hides("Quit"));

    auto again = start_counter(station);
    EXPECT_TRUE(shows_all(*console, counter_rows()));
    EXPECT_TRUE(stands_at(*console, "Counter", 4, 24));
    auto other = station.console();
    EXPECT_TRUE(shows_all(*other, counter_rows()));
    EXPECT_TRUE(stands_at(*other, "Counter", 4, 24));
}

TEST(Instrument, AConsoleKilledDisturbsNobody) {
    Station station;
    auto counter = start_counter(station);
    auto killed = station.console();
    auto other = station.console();
    ASSERT_TRUE(open_counter(*killed));
    ASSERT_TRUE(open_counter(*other));
    killed->signal(SIGKILL);
    EXPECT_TRUE(killed->exits_with(128 + SIGKILL));
    report_reading(*counter, 4321);
    EXPECT_TRUE(other->shows("Last reading:  4321.0"));
    EXPECT_TRUE(counter->running());
    EXPECT_TRUE(station.server().running());
}

TEST(Instrument, ShowsOnAConsoleOverTcp) {
    Station station({"--listen", "127.0.0.1:0"});
    auto counter = start_counter(station);
    const std::string& log = station.server().err();
    const std::string listening = "listening on 127.0.0.1:";
    ASSERT_TRUE(station.server().wait_for([&] {
        const std::size_t at = log.find(listening);
        return at != std::string::npos && log.find('\n', at) != std::string::npos;
    })) << log;
    const std::size_t port = log.find(listening) + listening.size();
    const std::string host = "127.0.0.1:" + log.substr(port, log.find('\n', port) - port);
    // After the host nothing is an option any more; the local socket is not even looked for.
    Terminal console({{program("vesk.cursclient"), host, "-h"}, {{"VESK_SOCKET", "/nonexistent/socket"}}});
    EXPECT_TRUE(open_counter(console));
}

}  // namespace
