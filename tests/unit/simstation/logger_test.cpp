// The station's own voice: error lines, answers, and the log-wide commands of consoles.
#include "simstation/logger.h"

#include <gmock/gmock.h>

#include "libvesk/messages/records/messaging.h"
#include "libvesk/support/util.h"
#include "support/sim_probe.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class Logger : public testing::Test {
  protected:
    Logger() { sink.now = &world.now; }
    SIM_logger make(const SIM_logger_settings& settings) {
        return SIM_logger(world, sink, "LOGGER", settings, {"N61", "N62"});
    }
    void run(SIM_logger& logger, int seconds) {
        for (int i = 0; i < seconds; ++i) {
            world.advance();
            logger.tick();
        }
    }
    template <class... Args>
    static void receive(SIM_logger& logger, Args... args) {
        logger.receive(DeliveredMessage(args...).get());
    }
    template <class R>
    R record(std::size_t i) const {
        return sink.sent.at(i).as<R>();
    }
    static NETDS_MESSAGE_OneMessage message(const char* text) {
        auto r = NETDSD_default<NETDS_MESSAGE_OneMessage>();
        UTIL_strcpynt(r.contents, text);
        return r;
    }

    CollectingSink sink;
    SIM_world world{SIM_settings{}, SIM_START};
};

TEST_F(Logger, ErrorLinesComeAtTheirRate) {
    SIM_logger logger = make({.errors_per_hour = 10});
    run(logger, 36000);
    EXPECT_NEAR(static_cast<double>(sink.sent.size()), 100, 30);
    EXPECT_EQ(record<NET_LOG_MonitorMessage>(0).flags, NET_LOG_MONITOR_ERROR);
    EXPECT_THAT(record<NET_LOG_MonitorMessage>(0).msg, testing::StartsWith("N6"));
}

TEST_F(Logger, AnswersWithinSecondsOnlyWhenChatty) {
    SIM_logger silent = make({.errors_per_hour = 0});
    receive(silent, MSG_MESSAGING_MESSAGE, message("anybody?"), "");
    run(silent, 30);
    EXPECT_THAT(sink.sent, IsEmpty());
    EXPECT_THAT(sink.lines, ElementsAre("LOGGER: MSG_MESSAGING_MESSAGE from CLIENT: anybody?"));

    SIM_logger logger = make({.errors_per_hour = 0, .chatty = TRUE});
    receive(logger, MSG_MESSAGING_MESSAGE, message("anybody?"), "", "LOGGER");
    run(logger, 30);
    EXPECT_THAT(sink.sent, IsEmpty()) << "it talks to itself";
    receive(logger, MSG_MESSAGING_MESSAGE, message("anybody?"), "");
    EXPECT_THAT(sink.sent, IsEmpty());
    run(logger, 5);
    ASSERT_THAT(sink.sent, SizeIs(1));
    EXPECT_EQ(+record<NETDS_MESSAGE_OneMessage>(0).time_sent, sink.sent[0].time);
    EXPECT_STRNE(record<NETDS_MESSAGE_OneMessage>(0).contents, "");

    for (int i = 0; i < 1000; ++i)
        receive(logger, MSG_MESSAGING_MESSAGE, message("x"), "");
    run(logger, 1000);
    EXPECT_THAT(sink.sent, SizeIs(1 + 8)) << "a flood is not answered one by one";
}

TEST_F(Logger, SaysWhatConsolesAskedFor) {
    SIM_logger logger = make({});
    auto note = NETDSD_default<NET_LOG_MonitorMessage>();
    note.flags = NET_LOG_MONITOR_NOTE;
    UTIL_strcpynt(note.msg, "USER: roof open");
    receive(logger, MSG_LOG_FLUSH);
    receive(logger, MSG_LOG_SWITCHFILES, NET_LOG_SwitchFiles{1'700'000'000}, "");
    receive(logger, MSG_LOG_MONITOR, note, "");
    receive(logger, MSG_LOG_SET_STATE, NET_LOG_SetState{FALSE}, "N61");
    receive(logger, MSG_LOG_FLUSH, "", "N61");  // no console
    EXPECT_THAT(sink.lines, ElementsAre("LOGGER: MSG_LOG_FLUSH from CLIENT: buffers flushed",
                                        "LOGGER: MSG_LOG_SWITCHFILES from CLIENT: data files rotated at "
                                        "2023-11-14 22:13:20",
                                        "LOGGER: MSG_LOG_MONITOR from CLIENT: USER: roof open",
                                        "LOGGER: MSG_LOG_SET_STATE from CLIENT for N61: logging off"));
}

TEST_F(Logger, BypassAndContaminationAreSharedAndLast) {
    SIM_logger logger = make({});
    receive(logger, MSG_CONTAMINATION_BYPASS);
    EXPECT_TRUE(record<NET_LOG_AVG_Bypass>(0).bypassed);
    EXPECT_EQ(sink.sent[0].flags, DWORD{FRAME_TO_ALL | FRAME_KEEP});
    receive(logger, MSG_CONTAMINATION_UNBYPASSOVERRIDE);
    EXPECT_FALSE(record<NET_LOG_AVG_Bypass>(1).bypassed);
    receive(logger, MSG_CONTAMINATION_CONTAMINATE);
    EXPECT_TRUE(record<NET_LOG_AVG_Contamination>(2).contaminated);
    EXPECT_EQ(sink.sent[2].msg, MSG_LOG_AVG_CONTAMINATION);
}

TEST_F(Logger, PlaysTheStationsEvents) {
    std::vector<std::string> errors;
    SIM_logger logger = make({});
    for (const SIM_event& event : SIM_parse_scenario("0 station error pump 2 hot\n"
                                                     "1 station message lunch\n"
                                                     "2 station contaminate on\n",
                                                     &errors))
        logger.play(event);
    ASSERT_THAT(sink.sent, SizeIs(3));
    EXPECT_STREQ(record<NET_LOG_MonitorMessage>(0).msg, "pump 2 hot");
    EXPECT_STREQ(record<NETDS_MESSAGE_OneMessage>(1).contents, "lunch");
    EXPECT_TRUE(record<NET_LOG_AVG_Contamination>(2).contaminated);
    EXPECT_THAT(sink.lines[0], HasSubstr("error: pump 2 hot"));
}

}  // namespace
