// Behaviour of single displays that a screen file cannot state.
#include "cursclient/displays/watlow.h"
#include "libvesk/messages/records/loopctl.h"
#include "support/display_rig.h"

namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

class Displays : public DisplayRig {};

TEST_F(Displays, TheClapsDemandPullsTheFocusOnce) {
    constexpr const char* WINDOW = "clap3w:A13";
    announce("A13", "clap3w");
    const auto comes_up = [](std::int32_t state) -> BOOL {
        WINS_hide_window(window(WINDOW));
        report("A13", MSG_CLAP3W_FILTERSTATUS, R"({"status":)" + std::to_string(state) + "}");
        return window(WINDOW)->visible && window(WINDOW)->focused;
    };
    for (const std::int32_t calm : {0, 1, 2, 6, 7})
        EXPECT_FALSE(comes_up(calm)) << calm;
    for (const std::int32_t demand : {8, 9}) {
        EXPECT_TRUE(comes_up(demand)) << demand;
        EXPECT_FALSE(comes_up(demand)) << "repeated " << demand;
    }
    EXPECT_FALSE(comes_up(0));
    EXPECT_TRUE(comes_up(8)) << "again, when it comes again";
}

// Its menu does not offer set points.
TEST_F(Displays, TheWatlowIsSentChangedChannelsOnlyAndOnlyWhileItIsThere) {
    const DWORD uid = announce("C12", "watlow");
    const auto open = [uid] {
        WATLOW_change_setpoint(uid);
        EXPECT_THAT(screen_text(), HasSubstr("Setpoint A: 25.0"));
    };
    receive("C12", MSG_WATLOW_SETPOINTS, NET_WATLOW_Channels{25.0, -3.5});
    open();
    press({KEY_UP, KEY_UP, '7', TAB, ENTER});
    EXPECT_THAT(take_sent(), ElementsAre(R"(MSG_WATLOW_SET to C12 {"chan":"B","val":7})"));
    open();
    press({KEY_LEFT, ENTER});
    EXPECT_THAT(take_sent(), IsEmpty()) << "unchanged channels are not sent";
    open();
    press({KEY_UP, KEY_UP, '7', TAB});
    leave("C12");
    press(ENTER);
    EXPECT_THAT(take_sent(), IsEmpty());
    EXPECT_FALSE(CURSDIALOG_active());
}

TEST_F(Displays, APidWindowThatGrowsWhileHiddenStaysHidden) {
    announce("C13", "genericpid");
    report("C13", MSG_GENERICPID_TUNING_STATUS, R"({"state":6})");
    redraw();
    EXPECT_FALSE(window("genericpid:C13")->visible);
    EXPECT_THAT(screen_text(), Not(HasSubstr("Upward sweep")));
}

TEST_F(Displays, OfMessagesTheLastRowsShowAndAnEntryHoldsAFullOneAndNoMore) {
    for (int i = 1; i <= 13; ++i)
        report("CLIENT", MSG_MESSAGING_MESSAGE,
               R"({"time_sent":1700000000,"contents":"number )" + std::to_string(i) + "\"}");
    EXPECT_EQ(row("MESSAGING", 1), "22:13:20 number 2");
    EXPECT_EQ(row("MESSAGING", 12), "22:13:20 number 13");
    type(std::string(2100, 'x') + "y");
    EXPECT_EQ(row("MESSAGING", 13), std::string(58, 'x'));
    press(ENTER);
    EXPECT_THAT(take_sent(), ElementsAre(AllOf(StartsWith("MSG_MESSAGING_MESSAGE flags 1 {"),
                                               HasSubstr(":\"" + std::string(2047, 'x') + "\""))));
}

TEST_F(Displays, ANoteTakesNoMoreThanTheLogDoes) {
    press(KEY_F(12));
    type(std::string(8184, 'x'));
    EXPECT_THAT(screen_text(), Not(HasSubstr("the entry is full")));
    type("yz");
    EXPECT_EQ(row("2", 4), std::string(57, 'x') + "y");
    EXPECT_THAT(screen_text(), HasSubstr("the entry is full"));
    press(ENTER);
    EXPECT_THAT(take_sent(), ElementsAre(HasSubstr("\"USER: " + std::string(8184, 'x') + "y\"")));
}

}  // namespace
