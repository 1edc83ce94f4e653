// The extinction monitor and the photoacoustic extinctiometer.
#include "libvesk/messages/records/extinction.h"
#include "support/display_rig.h"

namespace {

class Caps : public DisplayRig {
  protected:
    static constexpr const char* WINDOW = "caps:E71";
    Caps() { announce("E71", "caps", "CAPS"); }
};

TEST_F(Caps, ShowsInstantaneousAndRunningValues) {
    report("E71", MSG_CAPS_INSTANT,
           R"({"in": {"ext": 55.254, "signal": 18000.5, "flags": 418}, "ra": {"ext": -0.5}})");
    receive("E71", MSG_CAPS_ZERO, NET_CAPS_Zero{START, 480.5, -0.25});
    receive("E71", MSG_CAPS_STATUS, NET_CAPS_Status{TRUE});
    EXPECT_EQ(inside(WINDOW), R"(
                   Instant  Average
Extinction (1/Mm):   55.25    -0.50
Loss (1/Mm):       ----.--  ----.--
Temperature (C):   ----.--  ----.--
Pressure (hPa):    ----.--  ----.--
Signal (mV):      18000.50 -----.--
-----------------------------------
Baseline (1/Mm):             480.50
Baseline Shift (1/Mm):        -0.25
Flags:                      01A2
)") << "no zero is planned";
    receive("E71", MSG_CAPS_ZEROSCHEDULE, NET_CAPS_ZeroSchedule{START + 0.9});
    EXPECT_EQ(row(WINDOW, 11), "Next zero:                 22:13:20");
}

class Pax : public DisplayRig {
  protected:
    static constexpr const char* WINDOW = "pax:E72";
    Pax() { announce("E72", "pax", "PAX"); }

    static void instant(int mode, FTIME next) {
        report("E72", MSG_PAX_INSTANT,
               R"({"in": {"bs": 12.5, "iScat": 0.00123, "qFactor": 60.25, "frequency": 1503.4},)"
               R"("ra": {"bs": 13.5, "qFactor": 61.25}, "mode": )" +
                   std::to_string(mode) + R"(, "next_mode": )" + std::to_string(next) + "}");
    }
    static void comms(BOOL have) { receive("E72", MSG_PAX_STATUS, NET_PAX_Status{have}); }
};

TEST_F(Pax, ShowsTheChosenReading) {
    instant(NET_PAX_MODE_MEASURE, START + 59.6);
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
    type("md");
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
        instant(r.mode, r.next);
        comms(r.have_comms);
        EXPECT_EQ(row(WINDOW, 13), r.text);
    }
}

}  // namespace
