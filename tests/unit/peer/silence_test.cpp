// When a source speaks for its driver, and what it says. Seconds are counted from 0.
#include "peer/silence.h"

#include <gmock/gmock.h>

namespace {

using testing::HasSubstr;

class Silence : public testing::Test {
  protected:
    static JSONLINE_message message(std::string_view line) {
        JSONLINE_message m;
        std::string error;
        EXPECT_TRUE(JSONLINE_read(line, &m, &error)) << error;
        return m;
    }
    // The message of the source before the driver's line is sent.
    std::string before(FTIME now, std::string_view line) {
        return text(line.empty() ? silence.heard(now) : silence.heard(message(line), now));
    }
    std::string at(FTIME now) { return text(silence.look(now)); }
    void announce(const std::string& kind) {
        EXPECT_EQ(before(0, R"({"msg":"MSG_SERVER_INSTRUMENTINFO","payload":{"type":")" + kind + R"("}})"),
                  "");
    }

    SILENCE silence{30, 0};
    static constexpr const char* INSTANT = R"({"msg":"MSG_CPC_3010_INSTANT","payload":{"concentration":5}})";

  private:
    static std::string text(const std::optional<JSONLINE_message>& m) {
        if (!m) return "";
        const VESKMSG_proc_msg pm{m->msg, m->dsd, m->flags, "", m->dest.c_str(), m->payload.data()};
        std::string line;
        JSONLINE_write(&line, &pm, 0);
        return line.substr(line.find("\"flags"));
    }
};

TEST_F(Silence, ReportsLostCommunicationsOnceAndTakesThemBack) {
    announce("cpc_3010");
    EXPECT_EQ(before(1, R"({"msg":"MSG_CPC_3010_STATUS","flags":7,"payload":{"have_comms":true,"flags":2}})"),
              "");
    EXPECT_EQ(before(2, INSTANT), "") << "the driver tells its communications itself";
    EXPECT_EQ(silence.deadline(), 32);
    EXPECT_EQ(at(31.9), "");
    EXPECT_EQ(at(32), R"("flags":7,"msg":"MSG_CPC_3010_STATUS","record":"NET_CPC_3010_Status",)"
                      R"("payload":{"have_comms":false,"dip_error":false,"flags":2}})"
                      "\n")
        << "what else the status said stays";
    EXPECT_EQ(at(99), "");
    EXPECT_THAT(before(100, INSTANT), HasSubstr(R"("have_comms":true,"dip_error":false,"flags":2)"));
    EXPECT_EQ(before(120, ""), "") << "a blank line keeps it alive";
    EXPECT_EQ(at(149), "");
}

TEST_F(Silence, ADriversOwnWordIsNotContradicted) {
    announce("cpc_3010");
    static_cast<void>(before(1, R"({"msg":"MSG_CPC_3010_STATUS","payload":{"have_comms":false}})"));
    EXPECT_THAT(at(40), HasSubstr(R"("have_comms":false)"));
    EXPECT_THAT(before(41, ""), HasSubstr(R"("have_comms":false)")) << "its instrument is still lost";
    static_cast<void>(at(99));
    EXPECT_EQ(before(100, R"({"msg":"MSG_CPC_3010_STATUS","payload":{"have_comms":true}})"), "");
    EXPECT_FALSE(silence.is_silent());
}

TEST_F(Silence, ADriverThatSaysNothingOfCommunicationsNeedNot) {
    announce("lovepid");
    EXPECT_EQ(before(1, ""), "") << "nothing has been measured yet";
    const char* const reading = R"({"msg":"MSG_LOVEPID_INSTANT","payload":{"pv":[20]}})";
    EXPECT_THAT(before(2, reading), HasSubstr(R"("have_comms":[true,true,true,true])"));
    EXPECT_EQ(before(3, reading), "");
    EXPECT_THAT(at(40), HasSubstr(R"("have_comms":[false,false,false,false])"));
}

TEST_F(Silence, AKindWithoutAStatusWritesIntoTheLog) {
    announce("genericpid");
    EXPECT_EQ(before(1, R"({"msg":"MSG_GENERICPID_INSTANT","payload":{}})"), "");
    EXPECT_THAT(at(31),
                HasSubstr(R"("payload":{"flags":1,"msgtime":31,"msg":"nothing is heard from the driver"})"));
    EXPECT_THAT(before(32, ""), HasSubstr(R"("flags":2,"msgtime":32,"msg":"the driver speaks again")"));
}

TEST_F(Silence, NeitherAClockThatIsSetNorAnUnaskedWatchIsSilence) {
    announce("cpc_3010");
    static_cast<void>(before(1000, INSTANT));
    EXPECT_EQ(at(10), "");
    EXPECT_EQ(at(39), "") << "counted from the clock that was set back";
    EXPECT_THAT(at(40), HasSubstr("false"));
    SILENCE never(0, 0);
    EXPECT_FALSE(never.heard(message(INSTANT), 1));
    EXPECT_FALSE(never.look(1e9));
}

}  // namespace
