// The CCN counter: its housekeeping in the three data sets, and its commands with their dialogs.
#include "libvesk/messages/records/ccn.h"
#include "support/display_rig.h"

namespace {

using ::testing::IsEmpty;

// The values of a data set, `base` and up; averages and instantaneous data name them alike.
template <class Values>
Values values(double base) {
    auto v = NETDSD_default<Values>();
    v.cnc = base * 100;
    v.ss_setting = base / 10;
    v.bin_number = static_cast<int>(base);
    v.T1 = base + 0.1;
    v.T2 = base + 0.2;
    v.T3 = base + 4.35;
    v.T_sample = base + 0.4;
    v.T_inlet = base + 0.5;
    v.T_OPC = base + 5;
    v.T_nafion = base - 0.5;
    v.Q_sample = base + 0.7;
    v.Q_sheath = base + 400;
    v.P_sample = base + 900;
    v.I_laser = base + 50;
    v.V_fsm = base / 4;
    return v;
}

class Ccn : public DisplayRig {
  protected:
    static constexpr const char* WINDOW = "ccn:B11";

    Ccn() {
        announce("B11", "ccn", "CCN");
        focus(WINDOW);
        status(FALSE);
    }

    static void status(BOOL in_calibration) {
        receive("B11", MSG_CCN_STATUS, NET_CCN_Status{TRUE, in_calibration});
    }
    static void scanning(double last, BOOL enabled, double next = VESK_MISSING,
                         FTIME time_next = VESK_MISSING) {
        receive("B11", MSG_CCN_SCANNING, NET_CCN_Scanning{last, START, next, time_next, enabled});
    }
    // Through a dialog whose entry is to hold `text` ("" leaves it), to its first button.
    static void enter(const char* menu_keys, const char* text) {
        type(menu_keys);
        if (*text != '\0') {
            press({KEY_UP, KEY_UP});
            type(text);
            press(TAB);
        } else {
            press(KEY_LEFT);
        }
        press(ENTER);
        EXPECT_FALSE(CURSDIALOG_active());
    }
};

TEST_F(Ccn, HousekeepingOfTheThreeDataSets) {
    auto in = values<NET_CCN_Instant>(20);
    in.running = values<NET_CCN_Avg>(21);
    in.running.dT_T3_T1_stddev = 0.123;
    auto avg = values<NET_CCN_Avg>(22);
    avg.dT_T3_T1_stddev = 0.456;
    receive("B11", MSG_CCN_INSTANT, in);
    receive("B11", MSG_CCN_AVERAGE, avg);
    report("B11", MSG_CCN_DMTMODELRESULTS, R"({"ss_calc": 0.51})");
    scanning(4.5, FALSE);
    press('h');
    EXPECT_EQ(inside(WINDOW), R"(
      Housekeeping - Instantanous
N ccn (1/cc):       2000.0
SS Set/Calc (%):       2.000/0.510
dT Set/Calc (C):        4.50/4.25
T stable CALC/rep:     Y,y
StdDev T3-T1(C):       0.123
Bin # (N ccn):        20
T Sample (C):         20.4
T Inlet (C):          20.5
T TEC1 (C):           20.1
T TEC2 (C):           20.2
T TEC3 (C):           24.4
T OPC (C):            25.0
T Nafion (C):         19.5
Q Sample (ccm):       20.7
Q Sheath (ccm):      420.0
P Sample (hPa):      920.0
Laser current (mA):   70.0
First stage monitor:   5.00
dT OPC/Nafion (C):     0.6/-1.0
Next dT SP:         NONE
)");
    for (const auto& [flag, text] : {std::pair{1, "Y,n"}, {2, "N,y"}, {3, "N,n"}, {4, "Y,y"}}) {
        in.stable_flag = static_cast<BYTE>(flag);
        receive("B11", MSG_CCN_INSTANT, in);
        EXPECT_EQ(row(WINDOW, 5), std::string("T stable CALC/rep:     ") + text) << "calculated, reported";
    }
    press('a');
    EXPECT_EQ(row(WINDOW, 1), "    Housekeeping - Running average");
    EXPECT_EQ(row(WINDOW, 2), "N ccn (1/cc):       2100.0");
    EXPECT_EQ(row(WINDOW, 6), "StdDev T3-T1(C):       0.123");
    press('a');
    EXPECT_EQ(row(WINDOW, 2), "N ccn (1/cc):       2200.0");
    EXPECT_EQ(row(WINDOW, 6), "StdDev T3-T1(C):       0.456");
    avg.T3 = VESK_MISSING;
    receive("B11", MSG_CCN_AVERAGE, avg);
    EXPECT_EQ(row(WINDOW, 4), "dT Set/Calc (C):        4.50/--.--");
    EXPECT_EQ(row(WINDOW, 20), "dT OPC/Nafion (C):  ----.-/-1.0");
}

TEST_F(Ccn, TheLastRowSaysWhatComesNext) {
    press('h');
    EXPECT_EQ(row(WINDOW, 21), "Next dT SP:         NONE") << "before any scanning record";
    struct {
        BOOL enabled;
        FTIME time_next;
        const char* text;
    } const cases[] = {
        {TRUE, START + 65.9, "Next dT SP:            6.25 @ 22:14:25"},
        {TRUE, -1.0, "Next dT SP:            6.25 @"},
        {TRUE, VESK_MISSING, "Next dT SP:         NONE"},
        {FALSE, START, "Next dT SP:         NONE"},
    };
    for (const auto& c : cases) {
        scanning(4.5, c.enabled, 6.25, c.time_next);
        EXPECT_EQ(row(WINDOW, 21), c.text);
    }
    scanning(4.5, TRUE, 6.25, START);
    status(TRUE);
    EXPECT_EQ(row(WINDOW, 21), "RUNNING CALIBRATION");
}

TEST_F(Ccn, GraphAndTableOverTheFixedAxis) {
    auto in = NETDSD_default<NET_CCN_Instant>();
    for (std::size_t i = 0; i < NET_CCN_BINS; ++i)
        in.dN[i] = 100;
    receive("B11", MSG_CCN_INSTANT, in);
    EXPECT_EQ(row(WINDOW, 1), "        cum N(D) - Instantanous");
    EXPECT_EQ(row(WINDOW, 2), " 2100.0                    #")
        << "the last bin, with its rounding neighbour below";
    EXPECT_EQ(row(WINDOW, 19), "  100.0 ####################");
    EXPECT_EQ(row(WINDOW, 20), "") << "the labels stand one row lower than elsewhere";
    EXPECT_EQ(row(WINDOW, 21), "       0    3    5    8    10") << "0.5, 2.88, 5.26, 7.64 and 10.02";
    press('t');
    EXPECT_EQ(row(WINDOW, 2), "     D       dN    cum N(D)");
    EXPECT_EQ(row(WINDOW, 3), "  (nm)  (cm^-3)     (cm^-3)");
    EXPECT_EQ(row(WINDOW, 5), "   1.0    100.0       200.0");
    press({KEY_NPAGE, KEY_NPAGE});
    EXPECT_EQ(row(WINDOW, 8), "  10.0    100.0      2100.0") << "the 21st";
    EXPECT_EQ(row(WINDOW, 9), "");
}

// ---- commands

TEST_F(Ccn, WhatChangesNothingIsNotSent) {
    scanning(4.5, TRUE);
    enter("m3", "");
    enter("m3", "4.5");
    scanning(VESK_MISSING, TRUE);
    enter("m3", "");
    enter("m4", "0");
    EXPECT_THAT(take_sent(), IsEmpty());
}

}  // namespace
