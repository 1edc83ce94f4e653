// The extinction monitor and the photoacoustic extinctiometer.
#include <gmock/gmock.h>

#include "cursclient/passwd.h"
#include "display_rig.h"
#include "libvesk/records/extinction.h"
#include "libvesk/util.h"

namespace {

using ::testing::HasSubstr;

constexpr int ENTER = 13;

class Caps : public DisplayRig {
  protected:
    static constexpr const char* WINDOW = "caps:E71";
    Caps() { announce("E71", "caps", "CAPS"); }
};

TEST_F(Caps, ShowsInstantaneousAndRunningValues) {
    EXPECT_EQ(inside(WINDOW), R"(
                   Instant  Average
Extinction (1/Mm): ----.--  ----.--
Loss (1/Mm):       ----.--  ----.--
Temperature (C):   ----.--  ----.--
Pressure (hPa):    ----.--  ----.--
Signal (mV):      -----.-- -----.--
-----------------------------------
Baseline (1/Mm):            ----.--
Baseline Shift (1/Mm):      ----.--
Flags:                      0000
             NO COMMS
)");
    auto instant = NETDSD_default<NET_CAPS_Instant>();
    instant.in.ext = 55.254;
    instant.ra.ext = -0.5;
    instant.in.signal = 18000.5;
    instant.in.flags = 0x1A2;
    receive("E71", MSG_CAPS_INSTANT, instant);
    receive("E71", MSG_CAPS_ZERO, NET_CAPS_Zero{START, 480.5, -0.25});
    receive("E71", MSG_CAPS_STATUS, NET_CAPS_Status{TRUE});
    EXPECT_EQ(row(WINDOW, 2), "Extinction (1/Mm):   55.25    -0.50");
    EXPECT_EQ(row(WINDOW, 6), "Signal (mV):      18000.50 -----.--");
    EXPECT_EQ(row(WINDOW, 8), "Baseline (1/Mm):             480.50");
    EXPECT_EQ(row(WINDOW, 9), "Baseline Shift (1/Mm):        -0.25");
    EXPECT_EQ(row(WINDOW, 10), "Flags:                      01A2");
    EXPECT_EQ(row(WINDOW, 11), "") << "no zero is planned";
    receive("E71", MSG_CAPS_ZEROSCHEDULE, NET_CAPS_ZeroSchedule{START + 0.9});
    EXPECT_EQ(row(WINDOW, 11), "Next zero:                 22:13:20");
}

TEST_F(Caps, AZeroStartsBehindThePassword) {
    UTIL_strcpynt(g_passwd, "abc");
    focus(WINDOW);
    type("m2no");
    press(ENTER);
    EXPECT_TRUE(sent.empty());
    type("m2abc");
    leave("E71");
    press(ENTER);
    EXPECT_TRUE(sent.empty()) << "the display went while the password was typed";
    announce("E71", "caps", "CAPS");
    focus(WINDOW);
    type("m2abc");
    press(ENTER);
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(sent[0].msg, MSG_CAPS_ISSUE_ZERO);
    EXPECT_EQ(sent[0].dest, "E71");
    EXPECT_EQ(sent[0].flags, 0u);
}

class Pax : public DisplayRig {
  protected:
    static constexpr const char* WINDOW = "pax:E72";
    Pax() { announce("E72", "pax", "PAX"); }

    static NET_PAX_Instant instant(std::int32_t mode, FTIME next) {
        auto i = NETDSD_default<NET_PAX_Instant>();
        i.in.bs = 12.5;
        i.ra.bs = 13.5;
        i.in.iScat = 0.00123;
        i.in.qFactor = 60.25;
        i.ra.qFactor = 61.25;
        i.in.frequency = 1503.4;
        i.mode = mode;
        i.next_mode = next;
        return i;
    }
    static void comms(BOOL have) { receive("E72", MSG_PAX_STATUS, NET_PAX_Status{have}); }
};

TEST_F(Pax, ShowsTheChosenReading) {
    receive("E72", MSG_PAX_INSTANT, instant(NET_PAX_MODE_MEASURE, START + 59.6));
    receive("E72", MSG_PAX_ZERO, NET_PAX_Zero{START, 1.5, 2.5, 123.25, -0.1, 0.2});
    comms(TRUE);
    EXPECT_EQ(inside(WINDOW), R"(
Scattering (Mm-1):    12.50    Scat Zero (Mm-1):      2.50
   Raw Signal:         1.23E-3    Shift (Mm-1):       0.20
Absorption (Mm-1):  ----.--    Abs Zero (Mm-1):       1.50
   Phase (deg):     ----.--       Shift (Mm-1):      -0.10
   Raw Signal:         -.-----    Phase (deg):      123.25
----------------------------------------------------------
T Sample (C):       ----.--    T Laser (C):        ----.--
RH Sample (%):      ----.--    Laser Phase (deg):  ----.--
P Sample (hPa):     ----.--    Laser Pwr (watts):  ----.--
P Inlet (hPa):      ----.--    Laser Current (A):  ----.--
P Vacuum (hPa):     ----.--    PD Current (A):     ----.--
Frequency (Hz):     1503       Q Factor:             60.25
Mode:               Measure    NEXT AT 22:14:20
)");
    focus(WINDOW);
    type("d");
    EXPECT_EQ(row(WINDOW, 1).substr(0, 28), "Scattering (Mm-1):    13.50 ");
    type("m");
    EXPECT_THAT(screen_text(), HasSubstr("D Displaying running average"));
    type("d");
    EXPECT_EQ(row(WINDOW, 1).substr(0, 28), "Scattering (Mm-1):  ----.-- ");
    type("D");
    EXPECT_EQ(row(WINDOW, 1).substr(0, 28), "Scattering (Mm-1):    12.50 ");
}

TEST_F(Pax, TheModeRow) {
    struct case_row {
        std::int32_t mode;
        FTIME next;
        BOOL have_comms;
        const char* text;
    };
    const case_row rows[] = {
        {NET_PAX_MODE_FLUSH, VESK_NO_TIME, TRUE, "Mode:                 Flush      60.25"},
        {NET_PAX_MODE_ZERO, START, TRUE, "Mode:                  Zero    NEXT AT 22:13:20"},
        {NET_PAX_MODE_ACOUSTIC_CAL, START, TRUE, "Mode:          Acoustic Cal    NEXT AT 22:13:20"},
        {4, START, TRUE, ""},
        {-1, START, TRUE, ""},
        {NET_PAX_MODE_ZERO, START, FALSE, "                         NO COMMS"},
    };
    for (const case_row& r : rows) {
        receive("E72", MSG_PAX_INSTANT, instant(r.mode, r.next));
        comms(r.have_comms);
        EXPECT_EQ(row(WINDOW, 13), r.text);
    }
}

}  // namespace
