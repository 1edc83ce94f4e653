// The shared body of simulated instruments: who a message is for, logging, averaging blocks, what is sent
// when.
#include "simstation/sim.h"

#include <gmock/gmock.h>

#include "libvesk/messages/records/cpc.h"
#include "libvesk/messages/records/server.h"
#include "simstation/physics/average.h"
#include "support/sim_probe.h"

namespace {

using testing::ElementsAre;

// A kind that writes down what happens to it.
struct recorder {
    static constexpr SIM_setting settings[] = {{"level", "a number"}};
    void start(SIM_instrument& sim) { sim.log("start"); }
    void tick(SIM_instrument& sim) {
        sim.send_instant(MSG_CPC_PULSE_STATUS, NET_CPC_Pulse_Status{TRUE});
        if (sim.average_due())
            sim.send_kept(MSG_CPC_PULSE_AVERAGE, NET_CPC_Pulse_Avg{sim.average_start(), sim.time(), level});
    }
    void status(SIM_instrument& sim) {
        sim.send_changed(MSG_CPC_3010_STATUS,
                         NET_CPC_3010_Status{sim.have_comms(), FALSE, sim.alarm_flags()});
    }
    BOOL command(SIM_instrument& sim, const VESKMSG_proc_msg* pm) {
        sim.log("command %s", pm->src_name);
        return pm->msg->msg == MSG_TEST_ONE;
    }
    BOOL set(SIM_instrument&, std::string_view, const SIM_value& value) {
        level = value.number;
        return level < 10;
    }
    void leave(SIM_instrument& sim) { sim.log("leave"); }
    double level = 0;
};

constexpr SIM_decl DCL = SIM_decl_of<recorder>();
constexpr SIM_kind KIND = {"recorder", "R1", "Recorder", 'r', "first second", FALSE, &DCL};

class Instrument : public testing::Test {
  protected:
    Instrument() { sink.now = &world.now; }

    void run(int seconds) {
        for (int i = 0; i < seconds; ++i) {
            world.advance();
            sim.tick();
        }
    }
    template <class... Args>
    BOOL receive(Args... args) {
        return sim.receive(DeliveredMessage(args...).get());
    }
    std::vector<NETMSG_type> sent_types() const {
        std::vector<NETMSG_type> types;
        for (const SentMessage& m : sink.sent)
            types.push_back(m.msg);
        return types;
    }
    template <class R>
    R record(std::size_t i) const {
        return sink.sent.at(i).as<R>();
    }

    CollectingSink sink;
    SIM_world world{SIM_settings{}, SIM_START};
    SIM_instrument sim{world, sink, {&KIND, "R1", "Recorder", 'r'}};
};

TEST_F(Instrument, JoinSaysWhoItIsBeforeItsStartAndItsStatusAfter) {
    sim.join();
    EXPECT_THAT(sent_types(), ElementsAre(MSG_SERVER_INSTRUMENTINFO, MSG_LOG_INFO, MSG_CPC_3010_STATUS));
    const auto info = record<NET_SERVER_InstrumentInfo>(0);
    EXPECT_STREQ(info.type, "recorder");
    EXPECT_STREQ(info.display_name, "Recorder");
    EXPECT_STREQ(info.tags[1].tag, "second");
    EXPECT_STREQ(info.tags[2].tag, "");
    for (const SentMessage& m : sink.sent)
        EXPECT_EQ(m.flags, DWORD{FRAME_TO_ALL | FRAME_KEEP});
    sim.join();
    EXPECT_EQ(sink.sent.size(), 3u) << "joining twice changes nothing";
}

TEST_F(Instrument, BlocksEndOnTheMinuteWhateverItsStart) {
    for (int i = 0; i < 45; ++i)
        world.advance();
    sim.join();  // at :45
    run(15 + 60);
    std::vector<NET_CPC_Pulse_Avg> averages;
    for (const SentMessage& m : sink.sent)
        if (m.msg == MSG_CPC_PULSE_AVERAGE) averages.push_back(m.as<NET_CPC_Pulse_Avg>());
    ASSERT_EQ(averages.size(), 2u);
    EXPECT_EQ(+averages[0].start_time, SIM_START + 45);
    EXPECT_EQ(+averages[0].concentration, SIM_START + 59) << "sent in the last second of the minute";
    EXPECT_EQ(+averages[1].start_time, SIM_START + 60);
}

TEST_F(Instrument, StatusGoesOutOnlyWhenItChanges) {
    sim.join();
    run(5);
    const auto statuses = [&] { return std::ranges::count(sent_types(), MSG_CPC_3010_STATUS); };
    EXPECT_EQ(statuses(), 1);
    sim.set_alarm_flags(4);
    EXPECT_EQ(record<NET_CPC_3010_Status>(sink.sent.size() - 1).flags, 4);
    sim.set_alarm_flags(4);
    EXPECT_EQ(statuses(), 2);
    sim.leave();
    sim.join();
    EXPECT_EQ(statuses(), 3) << "the server forgot it with the old link";
}

TEST_F(Instrument, LoggingIsSwitchedByNameOrForAllAndNeverForAnother) {
    sim.join();
    const NET_LOG_SetState off{FALSE};
    EXPECT_FALSE(receive(MSG_LOG_SET_STATE, off, "R2"));
    EXPECT_TRUE(sim.logging());
    EXPECT_TRUE(receive(MSG_LOG_SET_STATE, off, "R1"));
    EXPECT_FALSE(sim.logging());
    EXPECT_FALSE(record<NET_LOG_Info>(sink.sent.size() - 1).logging);
    EXPECT_TRUE(receive(MSG_LOG_SET_STATE, NET_LOG_SetState{TRUE}, ""));
    EXPECT_TRUE(sim.logging());
    EXPECT_FALSE(receive(MSG_LOG_SET_STATE, "R1")) << "without a record it says nothing";
}

TEST_F(Instrument, CommandsReachTheKindOnlyWhenTheyAreForIt) {
    EXPECT_FALSE(receive(MSG_TEST_ONE, "R1")) << "not there yet";
    sim.join();
    EXPECT_TRUE(receive(MSG_TEST_ONE, "R1"));
    EXPECT_TRUE(receive(MSG_TEST_ONE));
    EXPECT_FALSE(receive(MSG_TEST_ONE, "R2"));
    EXPECT_FALSE(receive(MSG_TEST_ONE, "", "R1")) << "its own words come back";
    EXPECT_FALSE(receive(MSG_TEST_TWO, "R1"));
    sim.set_comms(FALSE);
    EXPECT_FALSE(receive(MSG_TEST_ONE, "R1"));
    EXPECT_THAT(sink.lines,
                ElementsAre("R1: start", "R1: MSG_TEST_ONE from CLIENT", "R1: command CLIENT",
                            "R1: command CLIENT", "R1: MSG_TEST_TWO from CLIENT", "R1: command CLIENT",
                            "R1: error: R1: MSG_TEST_TWO refused: not understood", "R1: communications lost",
                            "R1: MSG_TEST_ONE from CLIENT",
                            "R1: error: R1: MSG_TEST_ONE refused: no communications with the instrument"));
    EXPECT_FALSE(receive(MSG_TEST_ONE, "R1"));
    EXPECT_EQ(sink.lines.size(), 11u) << "said once in a second";
}

TEST_F(Instrument, SettingsGoToTheKindAndRefusalsAreSaid) {
    EXPECT_FALSE(sim.set("level", SIM_value("3")));
    sim.join();
    EXPECT_TRUE(sim.set("level", SIM_value("3")));
    EXPECT_FALSE(sim.set("level", SIM_value("30")));
    EXPECT_THAT(sink.lines, ElementsAre("R1: start", "R1: level = 3", "R1: level = 30: refused"));
    EXPECT_EQ(SIM_value("on").number, 1);
    EXPECT_EQ(SIM_value("no").number, 0);
    EXPECT_EQ(SIM_value("-2.5").number, -2.5);
    EXPECT_TRUE(std::isnan(SIM_value("open").number));
}

}  // namespace
