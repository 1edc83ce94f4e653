#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "libvesk/messages/records/all.h"
#include "libvesk/watch/watch.h"

namespace {

using testing::ElementsAre;

constexpr FTIME START = 1.7e9;

// A station whose messages the test makes; its clock stands until the test moves it.
struct WatchedStation : testing::Test {
    WATCH watch{START};
    FTIME now = START + 100;  // long after it settled

    template <class R>
    void say(const char* source, NETMSG_type msg, const R& record) {
        const VESKMSG_proc_msg pm{NETMSG_by_type(msg), NETDSD_of<R>(), 1, source, "", &record};
        watch.message(&pm, now);
    }
    void say(const char* source, NETMSG_type msg) {
        const VESKMSG_proc_msg pm{NETMSG_by_type(msg), nullptr, 1, source, "", nullptr};
        watch.message(&pm, now);
    }
    void announce(const char* source, const char* kind) {
        auto info = NETDSD_default<NET_SERVER_InstrumentInfo>();
        std::snprintf(info.type, sizeof info.type, "%s", kind);
        say(source, MSG_SERVER_INSTRUMENTINFO, info);
    }
    void count(const char* source, double concentration) {
        auto in = NETDSD_default<NET_CPC_3010_Instant>();
        in.concentration = concentration;
        say(source, MSG_CPC_3010_INSTANT, in);
    }
    void status(const char* source, BOOL have_comms, WORD flags = 0) {
        auto status = NETDSD_default<NET_CPC_3010_Status>();
        status.have_comms = have_comms;
        status.flags = flags;
        say(source, MSG_CPC_3010_STATUS, status);
    }
    WATCH_state state(const char* source) { return watch.find(source)->state; }
    std::vector<std::string> happened() {
        std::vector<std::string> texts;
        for (const WATCH_event& e : watch.events())
            texts.push_back(e.source + ": " + e.text);
        return texts;
    }
};

TEST_F(WatchedStation, TellsHowEachInstrumentIsAndSinceWhen) {
    announce("N11", "cpc_3010");
    count("N11", 1234.5);
    status("N11", TRUE);
    EXPECT_EQ(state("N11"), WATCH_RUNNING);
    EXPECT_EQ(KEYVALUE_text(watch.find("N11")->kind->values[0], watch.find("N11")->values[0]), "1234.5 cm-3");

    now += 5;
    status("N11", FALSE);
    EXPECT_EQ(state("N11"), WATCH_NO_COMMS);
    EXPECT_EQ(watch.find("N11")->since, now);
    status("N11", TRUE, NET_CPC_3010_WARNINGS[0].value);
    EXPECT_EQ(state("N11"), WATCH_FAULT);
    EXPECT_EQ(watch.find("N11")->fault, NET_CPC_3010_WARNINGS[0].text);
    status("N11", TRUE);
    const FTIME last_data = now;
    now += 16;
    watch.tick(now);
    EXPECT_EQ(state("N11"), WATCH_SILENT);
    EXPECT_EQ(watch.find("N11")->since, last_data) << "silence began with the last data";
    count("N11", 1);
    EXPECT_EQ(state("N11"), WATCH_RUNNING);
    say("N11", MSG_NOTIFY_CLIENT_TERMINATE);
    EXPECT_EQ(state("N11"), WATCH_GONE);
    announce("N11", "cpc_3010");
    EXPECT_THAT(happened(),
                ElementsAre("N11: has joined", "N11: comms lost",
                            std::string("N11: ") + NET_CPC_3010_WARNINGS[0].text, "N11: fault over",
                            "N11: sends no data", "N11: sends data again", "N11: has left", "N11: is back"));
    EXPECT_EQ(watch.unacknowledged(), 4) << "what is over needs nobody";
    watch.acknowledge();
    EXPECT_EQ(watch.unacknowledged(), 0);
}

TEST_F(WatchedStation, PutsTheWorstFirstAndKeepsUnknownKinds) {
    announce("B", "of a kind that nobody knows");
    announce("C", "cpc_3010");
    announce("A", "cpc_3010");
    status("C", FALSE);
    std::string order;
    for (const WATCH_instrument* it : watch.sorted(WATCH_WORST_FIRST))
        order += it->name;
    EXPECT_EQ(order, "CAB");
    EXPECT_TRUE(watch.find("B")->values.empty());
    now += KEYVALUES_QUIET + 1;
    watch.tick(now);
    EXPECT_EQ(state("B"), WATCH_SILENT);
    watch.link_lost(now);
    EXPECT_EQ(state("A"), WATCH_GONE);
}

TEST_F(WatchedStation, TreatsSeveralUnitsBehindOneDriverAsOne) {
    announce("Q", "lovepid");
    auto status = NETDSD_default<NET_LOVEPID_Status>();
    status.have_comms[1] = TRUE;
    say("Q", MSG_LOVEPID_STATUS, status);
    EXPECT_EQ(state("Q"), WATCH_RUNNING) << "places without a controller never answer";
    status.have_comms[1] = FALSE;
    say("Q", MSG_LOVEPID_STATUS, status);
    EXPECT_EQ(state("Q"), WATCH_NO_COMMS);
}

TEST_F(WatchedStation, KeepsAnHourOfMinuteMeansAndBoundsItsEvents) {
    announce("N11", "cpc_3010");
    now = START + 6000;
    now -= static_cast<double>(static_cast<long long>(now) % 60);
    count("N11", 10);
    count("N11", 20);
    count("N11", VESK_MISSING);
    now += 120;
    count("N11", 7);
    const WATCH_trend& trend = watch.find("N11")->trend;
    EXPECT_EQ(trend.at(now, 2), 15);
    EXPECT_EQ(trend.at(now, 1), VESK_MISSING);
    EXPECT_EQ(trend.at(now, 0), 7);
    EXPECT_EQ(trend.at(now + 3600, 0), VESK_MISSING) << "an hour later its place is another minute's";
    for (std::size_t i = 0; i < WATCH_MAX_EVENTS + 10; ++i)
        watch.note(now, "N11", std::to_string(i), WATCH_FAULT);
    EXPECT_EQ(watch.events().size(), WATCH_MAX_EVENTS);
    EXPECT_EQ(watch.unacknowledged(), WATCH_MAX_EVENTS);
}

}  // namespace
