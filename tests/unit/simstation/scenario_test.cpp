// Scenario files: what is read from good lines, what is said about wrong ones.
#include "simstation/scenario.h"

#include <gmock/gmock.h>

#include "simstation/roster.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Scenario, ReadsEventsInOrderOfTime) {
    std::vector<std::string> errors;
    const auto events = SIM_parse_scenario(
        "# a morning\n"
        "\n"
        "01:30  N61      comms off   # a cable\n"
        "+30    N61      comms on\r\n"
        "5      station  error  flow # 3 out of limits\n"
        "1:00:00 *       flags 0x0005\n"
        "  2.5\tN61  set  liquid = 0.1\n"
        "3 station message No #tags here",
        &errors);
    EXPECT_THAT(errors, IsEmpty());
    ASSERT_EQ(events.size(), 6u);
    EXPECT_EQ(events[0].at, 2.5);
    EXPECT_EQ(events[0].verb, SIM_V_SET);
    EXPECT_EQ(events[0].text, "liquid");
    EXPECT_EQ(events[0].value.number, 0.1);
    EXPECT_EQ(events[1].text, "No");
    EXPECT_EQ(events[2].text, "flow") << "a comment follows a blank";
    EXPECT_EQ(events[3].at, 90);
    EXPECT_EQ(events[3].target, "N61");
    EXPECT_EQ(events[3].line, 3);
    EXPECT_EQ(events[4].at, 120);
    EXPECT_EQ(events[4].value.number, 1);
    EXPECT_EQ(events[5].at, 3600);
    EXPECT_EQ(events[5].value.number, 5);
}

TEST(Scenario, SaysWhatIsWrongWithWhichLine) {
    const std::pair<const char*, const char*> cases[] = {
        {"soon N61 comms on", "\"soon\" is no time"},
        {"1:60 N61 comms on", "\"1:60\" is no time"},
        {"1:2:3:4 N61 comms on", "\"1:2:3:4\" is no time"},
        {"1: N61 comms on", "\"1:\" is no time"},
        {"nan N61 comms on", "\"nan\" is no time"},
        {"5", "no target"},
        {"5 N61", "no event"},
        {"5 N61 explode", "unknown event \"explode\""},
        {"5 N61 comms maybe", "\"comms\": \"on\" or \"off\" follows the event"},
        {"5 N61 flags 65536", "\"flags\": a number from 0 to 0xFFFF follows the event"},
        {"5 N61 flags 0x", "\"flags\": a number from 0 to 0xFFFF follows the event"},
        {"5 N61 flags 1e2", "\"flags\": a number from 0 to 0xFFFF follows the event"},
        {"5 N61 leave now", "\"leave\": nothing follows the event"},
        {"5 N61 set liquid", "\"set\": NAME=VALUE follows the event"},
        {"5 N61 set =1", "\"set\": NAME=VALUE follows the event"},
        {"5 station error", "\"error\": a text follows the event"},
        {"5 station comms off", "\"comms\": an event of instruments only"},
        {"5 N61 quit", "\"quit\": an event of the station only"},
    };
    for (const auto& [line, wrong] : cases) {
        std::vector<std::string> errors;
        EXPECT_THAT(SIM_parse_scenario(std::string("# first\n") + line + "\n", &errors), IsEmpty()) << line;
        EXPECT_THAT(errors, ElementsAre("line 2: " + std::string(wrong)));
    }
}

TEST(Scenario, ChecksTargetsAndSettingsAgainstTheInstruments) {
    std::vector<std::string> errors;
    const auto members = SIM_roster("cpc_3010,inst_skel", &errors);
    const auto events = SIM_parse_scenario(
        "1 N61 set liquid=0.1\n"
        "2 N99 comms off\n"
        "3 N61 set filter=1\n"
        "4 N61 set liquid=empty\n"
        "5 * set liquid=1\n"
        "6 * comms off\n"
        "7 station error x\n",
        &errors);
    ASSERT_THAT(errors, IsEmpty());
    SIM_check_scenario(events, members, &errors);
    EXPECT_THAT(errors,
                ElementsAre("line 2: no instrument \"N99\"", "line 3: cpc_3010 has no setting \"filter\"",
                            "line 4: \"empty\" is no number and neither on nor off",
                            "line 5: inst_skel has no setting \"liquid\""));
}

}  // namespace
