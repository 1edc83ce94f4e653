// The loop controllers: their screens, and the dialogs that change set points.
#include <cstring>

#include "cursclient/displays/watlow.h"
#include "libvesk/messages/records/loopctl.h"
#include "support/display_rig.h"

namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class LovePid : public DisplayRig {
  protected:
    static constexpr const char* WINDOW = "lovepid:C11";

    LovePid() { announce("C11", "lovepid", "Heaters"); }

    static void status(const WORD (&addrs)[4], const BOOL (&comms)[4], const char* error = "") {
        NET_LOVEPID_Status s{};
        std::memcpy(s.addrs, addrs, sizeof s.addrs);
        std::memcpy(s.have_comms, comms, sizeof s.have_comms);
        UTIL_strcpynt(s.error[2].error, error);
        receive("C11", MSG_LOVEPID_STATUS, s);
    }
    static void open_setpoint_dialog() { choose(WINDOW, "2"); }
};

TEST_F(LovePid, OneRowForEachAddressAndNoneForEmptySlots) {
    EXPECT_EQ(inside(WINDOW), "\nAddr      SP       PV      Avg  Last Avg\n") << "before any status";
    receive("C11", MSG_LOVEPID_SETPOINTS, NET_LOVEPID_Setpoints{{40.0, 0, -5.25, 0}});
    receive("C11", MSG_LOVEPID_INSTANT, NET_LOVEPID_Instant{START, {40.12, 0, -5.5, 0}, {39.9, 0, -5.4, 0}});
    status({0x10, 0, 0x2A, 0}, {TRUE, TRUE, FALSE, TRUE});
    EXPECT_EQ(inside(WINDOW), R"(
Addr      SP       PV      Avg  Last Avg
  10   40.00    40.12    39.90  ----.--
  2a NO COMMS
)");
    status({0x10, 0, 0x2A, 0}, {TRUE, TRUE, FALSE, TRUE}, "checksum, and much more than the row can hold");
    EXPECT_EQ(row(WINDOW, 3), "  2a NO COMMS: checksum, and much more th");
    EXPECT_EQ(color(WINDOW, 3, 6), -CP_RED_BLUE);
    EXPECT_EQ(color(WINDOW, 3, 2), CP_WHITE_BLUE);
}

TEST_F(LovePid, TheSetPointGoesToTheChosenAddress) {
    open_setpoint_dialog();
    EXPECT_FALSE(CURSDIALOG_active()) << "without an address there is nothing to set";
    receive("C11", MSG_LOVEPID_SETPOINTS, NET_LOVEPID_Setpoints{{40.0, 0, -5.25, 0}});
    status({0x10, 0, 0x2A, 0}, {TRUE, TRUE, TRUE, TRUE});
    open_setpoint_dialog();
    EXPECT_THAT(screen_text(), AllOf(HasSubstr("Setpoint: 40.00"), HasSubstr("Address:  10")));
    press({KEY_UP, KEY_UP, ENTER, KEY_DOWN, ENTER});  // the next in the list of addresses
    EXPECT_THAT(screen_text(), HasSubstr("Address:  2A"));
    press(KEY_UP);
    type("12.5");
    press({KEY_DOWN, KEY_DOWN, ENTER});
    EXPECT_THAT(take_sent(), ElementsAre(R"(MSG_LOVEPID_SET to C11 {"sp":12.5,"addr":42})"));
    EXPECT_FALSE(CURSDIALOG_active());

    open_setpoint_dialog();
    EXPECT_THAT(screen_text(), HasSubstr("Setpoint: -5.25")) << "the address set last is preferred";
    press(ESCAPE);
    status({0x10, 0, 0, 0}, {TRUE, TRUE, TRUE, TRUE});
    open_setpoint_dialog();
    EXPECT_THAT(screen_text(), HasSubstr("Address:  10")) << "unless its controller is gone";
    press(ENTER);
    EXPECT_THAT(take_sent(), IsEmpty()) << "Cancel is focused";
}

class Watlow : public DisplayRig {
  protected:
    static constexpr const char* WINDOW = "watlow:C12";

    Watlow() : uid_(announce("C12", "watlow", "Oven")) {}
    DWORD uid_;
};

TEST_F(Watlow, ShowsItsTwoChannelsAndItsErrors) {
    EXPECT_EQ(row(WINDOW, 2), "A:   --.-      --.-     -") << "clipped at the border";
    receive("C12", MSG_WATLOW_SETPOINTS, NET_WATLOW_Channels{25.0, -3.5});
    receive("C12", MSG_WATLOW_INSTANT, NET_WATLOW_Channels{25.31, -3.44});
    receive("C12", MSG_WATLOW_AVERAGE, NET_WATLOW_Avg{START, 25.2, -3.4});
    EXPECT_EQ(row(WINDOW, 1), "     Setpoint  Instant  A");
    EXPECT_EQ(row(WINDOW, 2), "A:   25.0      25.3     2");
    EXPECT_EQ(row(WINDOW, 3), "B:   -3.5      -3.4     -");
    struct case_row {
        NET_WATLOW_Status status;
        const char* text;
        int color;
    };
    for (const case_row& c : {case_row{{0, FALSE}, "NO COMMS", -CP_RED_BLUE},
                              case_row{{17, FALSE}, "NO COMMS: ERROR 17", -CP_RED_BLUE},
                              case_row{{17, TRUE}, "ERROR 17", CP_WHITE_BLUE}}) {
        receive("C12", MSG_WATLOW_STATUS, c.status);
        EXPECT_THAT(row(WINDOW, 4), HasSubstr(c.text));
        EXPECT_EQ(color(WINDOW, 4, 13), c.color) << c.text;
    }
    receive("C12", MSG_WATLOW_STATUS, NET_WATLOW_Status{0, TRUE});
    EXPECT_EQ(row(WINDOW, 4), "");
}

TEST_F(Watlow, OnlyTheChangedChannelIsSentAndOnlyWhileItIsThere) {
    const auto open = [this] {
        WATLOW_change_setpoint(uid_);
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

}  // namespace
