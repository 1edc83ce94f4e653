// The photometer with eight spots: its seven views, the status line, the demand for the operator's attention,
// and the commands, each to the byte.
#include <gmock/gmock.h>

#include "cursclient/cursclient.h"
#include "cursclient/passwd.h"
#include "display_rig.h"
#include "libvesk/netdsd.h"
#include "libvesk/records/clap3w.h"
#include "libvesk/util.h"
#include "libveskcurs/cursdialog.h"

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

constexpr int ENTER = 13;
constexpr int ESCAPE = 27;
constexpr const char* FINISHED = "Have you finished changing the filter?";

class Clap : public DisplayRig {
  protected:
    static constexpr const char* WINDOW = "clap3w:A13";

    Clap() {
        announce("A13", "clap3w", "Photometer");
        focus(WINDOW);
    }
    static void have_comms() { receive("A13", MSG_CLAP3W_STATUS, NET_CLAP3W_Status{TRUE}); }
    static void state(std::int32_t status, WORD active_spot = 0) {
        auto record = NETDSD_default<NET_CLAP3W_FilterStatus>();
        record.status = status;
        record.active_spot = active_spot;
        receive("A13", MSG_CLAP3W_FILTERSTATUS, record);
    }
    static void flags(WORD flags) {
        auto record = NETDSD_default<NET_CLAP3W_Instant>();
        record.flags = flags;
        record.spot_index = 3;
        receive("A13", MSG_CLAP3W_INSTANT, record);
    }
    // Each value tells its colour by the hundreds, its element by the units. By bytes, for the doubles of
    // records may be unaligned.
    static void number(NET_CLAP3W_Instant* record, std::size_t array, int n, double hundreds, double scale) {
        char* const at = reinterpret_cast<char*>(record) + array;
        for (int i = 0; i < n; ++i)
            NETDSD_store<double>(at + static_cast<std::size_t>(i) * sizeof(double), (hundreds + i) * scale);
    }
    static NET_CLAP3W_Instant numbered() {
        auto in = NETDSD_default<NET_CLAP3W_Instant>();
        in.spot_index = 5;
        number(&in, offsetof(NET_CLAP3W_Instant, in.IB), 10, 100, 1000);
        number(&in, offsetof(NET_CLAP3W_Instant, in.IG), 10, 200, 1000);
        number(&in, offsetof(NET_CLAP3W_Instant, in.IR), 10, 300, 1000);
        number(&in, offsetof(NET_CLAP3W_Instant, in.ID), 10, 400, 1000);
        number(&in, offsetof(NET_CLAP3W_Instant, IgB), 10, 100, 1e-6);
        number(&in, offsetof(NET_CLAP3W_Instant, IgG), 10, 200, 1e-6);
        number(&in, offsetof(NET_CLAP3W_Instant, IgR), 10, 300, 1e-6);
        number(&in, offsetof(NET_CLAP3W_Instant, in.InB), 8, 110, 0.01);
        number(&in, offsetof(NET_CLAP3W_Instant, in.InG), 8, 210, 0.01);
        number(&in, offsetof(NET_CLAP3W_Instant, in.InR), 8, 310, 0.01);
        number(&in, offsetof(NET_CLAP3W_Instant, IngB), 8, 120, 0.01);
        number(&in, offsetof(NET_CLAP3W_Instant, IrwG), 8, 230, 0.01);
        number(&in, offsetof(NET_CLAP3W_Instant, IrzR), 8, 340, 0.01);
        return in;
    }
    // The messages sent since the last look, as they are named; each must be a bare one to the instrument.
    static std::vector<std::string> commands() {
        std::vector<std::string> names;
        for (const Sent& s : sent) {
            EXPECT_TRUE(s.flags == 0 && s.dest == "A13" && s.record.empty() && s.payload.empty());
            names.emplace_back(NETMSG_by_type(s.msg)->name);
        }
        sent.clear();
        return names;
    }
    using list = std::vector<std::string>;
};

TEST_F(Clap, ShowsNothingMeasuredBeforeItReports) {
    EXPECT_EQ(inside(WINDOW), R"(
                 Blue       Green         Red
Bap (1/Mm,1Hz)----.--     ----.--     ----.--
Bap (1/Mm,avg)----.--     ----.--     ----.--
Transmittance:----.-----------.-----------.-------
I reference:     ---------   ---------   ---------
I sample:        ---------   ---------   ---------
I norm RSD:   ----.-----------.-----------.-------
Flow (slpm):  ----.--        Volts:   ----.----
T (C):        ----.--
Tcase (C):    ----.--
Spot:            0
Flags:        0000
                     NO COMMS
)");
    EXPECT_EQ(getmaxx(window(WINDOW)->win), 52);
    EXPECT_EQ(getmaxy(window(WINDOW)->win), 15);
}

TEST_F(Clap, StandardViewShowsReadingsAndAverages) {
    auto in = NETDSD_default<NET_CLAP3W_Instant>();
    auto avg = NETDSD_default<NET_CLAP3W_Avg>();
    for (int i = 0; i < 3; ++i) {
        in.bap[i] = (3.5 + i) * 1e-6;
        avg.bap[i] = -0.25e-6 * i;
        in.tr[i] = 0.9 - 0.1 * i;
        in.Iref[i] = 150000.0 + i;
        in.Isam[i] = 130000.4;
        in.Inormrsd[i] = 0.0000321;
    }
    in.Q = 0.823;
    in.VQ = 2.4567;
    in.T = 25.5;
    in.T_case = -3.25;
    in.spot_index = 7;
    in.flags = 0x00AF;
    receive("A13", MSG_CLAP3W_INSTANT, in);
    receive("A13", MSG_CLAP3W_AVERAGE, avg);
    have_comms();
    EXPECT_EQ(inside(WINDOW), R"(
                 Blue       Green         Red
Bap (1/Mm,1Hz)   3.50        4.50        5.50
Bap (1/Mm,avg)   0.00       -0.25       -0.50
Transmittance:   0.9000000   0.8000000   0.7000000
I reference:     150000      150001      150002
I sample:        130000      130000      130000
I norm RSD:      0.0000321   0.0000321   0.0000321
Flow (slpm):     0.82        Volts:      2.4567
T (C):          25.50
Tcase (C):      -3.25
Spot:            7
Flags:        00AF
)");
}

TEST_F(Clap, RawIntensitiesShowTenDetectorsAndTheDarkColumnAsFarAsItGoes) {
    receive("A13", MSG_CLAP3W_INSTANT, numbered());
    have_comms();
    type("d");
    redraw();
    EXPECT_EQ(TestScreen::row(window(WINDOW)->win, 1),
              "+------------------Raw Intensities-----------------+");
    EXPECT_EQ(row(WINDOW, 2), "                  Blue       Green         Red");
    EXPECT_EQ(row(WINDOW, 3), "I odd ref:      100000      200000      300000");
    EXPECT_EQ(row(WINDOW, 4), "I even ref:     101000      201000      301000");
    EXPECT_EQ(row(WINDOW, 5), "I spot 1:       102000      202000      302000");
    EXPECT_EQ(row(WINDOW, 12), "I spot 8:       109000      209000      309000");
    EXPECT_EQ(row(WINDOW, 13), "Spot: 5");
    auto in = numbered();
    in.in.ID[0] = 9876543210.0;
    receive("A13", MSG_CLAP3W_INSTANT, in);
    EXPECT_EQ(row(WINDOW, 3), "I odd ref:      100000      200000      300000  98") << "clipped, not wrapped";
    EXPECT_EQ(TestScreen::row(window(WINDOW)->win, 3).back(), '|');

    type("D");
    redraw();
    EXPECT_THAT(TestScreen::row(window(WINDOW)->win, 1), HasSubstr("-Raw Intensity RSD-"));
    EXPECT_EQ(row(WINDOW, 3), "Ig odd ref:  0.0001000   0.0002000   0.0003000  --");
    EXPECT_EQ(row(WINDOW, 12), "Ig spot 8:   0.0001090   0.0002090   0.0003090  --");
}

TEST_F(Clap, EightSpotViewsEachShowTheirOwnArrays) {
    receive("A13", MSG_CLAP3W_INSTANT, numbered());
    have_comms();
    struct case_row {
        const char *title, *first, *last;
    };
    type("dd");
    for (const case_row& c :
         {case_row{"-Normalized Intensities-", "In spot 1:     1.1000000    2.1000000    3.1000000",
                   "In spot 8:     1.1700000    2.1700000    3.1700000"},
          case_row{"-Normalized Intensity RSD-", "Ing spot 1:    1.2000000   --.-------   --.-------",
                   "Ing spot 8:    1.2700000   --.-------   --.-------"},
          case_row{"-Intensity White Filter Ratio-", "Irw spot 1:   --.-------    2.3000000   --.-------",
                   "Irw spot 8:   --.-------    2.3700000   --.-------"},
          case_row{"-Intensity Filter Start Ratio-", "Irz spot 1:   --.-------   --.-------    3.4000000",
                   "Irz spot 8:   --.-------   --.-------    3.4700000"}}) {
        type("d");
        redraw();
        EXPECT_THAT(TestScreen::row(window(WINDOW)->win, 1), HasSubstr(c.title));
        EXPECT_EQ(row(WINDOW, 2), "               Blue         Green        Red");
        EXPECT_EQ(row(WINDOW, 3), c.first);
        EXPECT_EQ(row(WINDOW, 10), c.last);
        EXPECT_EQ(row(WINDOW, 11), "Spot: 5");
        EXPECT_EQ(row(WINDOW, 12), "");
    }
    state(NET_CLAP3W_WAIT_SPOT);
    EXPECT_EQ(row(WINDOW, 11), "Waiting for spot stability...") << "instead of the spot";
    type("d");
    EXPECT_THAT(row(WINDOW, 2), HasSubstr("Bap (1/Mm,1Hz)")) << "round to the standard view";
}

TEST_F(Clap, StatusLineByStateAndErrorFlag) {
    struct case_row {
        std::int32_t state;
        const char* plain;
        const char* with_error;
    };
    constexpr const char* ERROR = "                FILTER OR LED ERROR";
    have_comms();
    for (const case_row& c :
         {case_row{0, "", ""},
          {1, "Waiting for spot stability...", "Waiting for spot stability..."},
          {2, "Changing filter...", "Changing filter..."},
          {3, "White filter check...", "White filter check..."},
          {4, "Waiting for filter stability...", "Waiting for filter stability..."},
          {5, "Waiting for white filter stability...", "Waiting for white filter stability..."},
          {6, "FLOW DISABLED ON SPOT 4", ERROR},
          {7, "FLOW DISABLED WITH PENDING SPOT 4", ERROR},
          {8, "FILTER CHANGE REQUIRED", ERROR},
          {9, "WHITE FILTER CHECK REQUIRED", ERROR},
          {10, "", ERROR},
          {-1, "", ERROR}}) {
        state(c.state, 4);
        flags(0x00FF);
        EXPECT_EQ(row(WINDOW, 13), c.plain) << c.state;
        flags(0x0100);
        EXPECT_EQ(row(WINDOW, 13), c.with_error) << c.state;
    }
    EXPECT_EQ(color(WINDOW, 13, 20), CP_RED_BLUE) << "the error is steady";
    flags(0);
    state(8);
    EXPECT_EQ(color(WINDOW, 13, 3), -CP_RED_BLUE) << "the demand blinks";
    g_tick += 2;
    EXPECT_EQ(color(WINDOW, 13, 3), CP_RED_BLUE);
    flags(0x0100);
    EXPECT_EQ(color(WINDOW, 13, 20), CP_RED_BLUE);
    receive("A13", MSG_CLAP3W_STATUS, NET_CLAP3W_Status{FALSE});
    EXPECT_THAT(row(WINDOW, 13), HasSubstr("NO COMMS")) << "before everything else";
}

TEST_F(Clap, AnUnknownStateKeepsTheSpotHidden) {
    have_comms();
    flags(0);
    type("ddd");
    EXPECT_EQ(row(WINDOW, 11), "Spot: 3");
    state(10);
    EXPECT_EQ(row(WINDOW, 11), "");
}

TEST_F(Clap, ADemandPullsTheFocusOnce) {
    for (const std::int32_t calm : {0, 1, 2, 6, 7}) {
        WINS_hide_window(window(WINDOW));
        state(calm);
        EXPECT_FALSE(window(WINDOW)->visible) << calm;
    }
    for (const std::int32_t demand : {8, 9}) {
        WINS_hide_window(window(WINDOW));
        state(demand);
        EXPECT_TRUE(window(WINDOW)->visible && window(WINDOW)->focused) << demand;
        WINS_hide_window(window(WINDOW));
        state(demand);
        EXPECT_FALSE(window(WINDOW)->visible) << "repeated " << demand;
    }
    state(0);
    state(8);
    EXPECT_TRUE(window(WINDOW)->focused) << "again, when it comes again";
}

TEST_F(Clap, MenuByState) {
    struct case_row {
        std::int32_t state;
        list shown, hidden;
    };
    const std::string start = "2 Start filter change", white = "3 Start white filter check",
                      advance = "4 Advance Spot", stop = "2 Stop filter change",
                      change_to_white = "3 Switch to white filter check",
                      stop_white = "2 Stop white filter change";
    for (const case_row& c : {case_row{0, {start, white, advance}, {stop, change_to_white, stop_white}},
                              {2, {stop, change_to_white}, {start, white, advance, stop_white}},
                              {3, {stop_white}, {start, white, advance, stop, change_to_white}},
                              {8, {start, white, advance}, {stop, change_to_white, stop_white}}}) {
        state(c.state);
        focus(WINDOW);
        type("m");
        const std::string screen = screen_text();
        EXPECT_THAT(screen, HasSubstr("1 Hide window"));
        EXPECT_THAT(screen, HasSubstr("5 Set flow override"));
        for (const std::string& label : c.shown)
            EXPECT_THAT(screen, HasSubstr(label)) << c.state;
        for (const std::string& label : c.hidden)
            EXPECT_THAT(screen, Not(HasSubstr(label))) << c.state;
        press(ESCAPE);
    }
}

TEST_F(Clap, TheMenuGoesOnToTheNextViewByName) {
    for (const char* label :
         {"D Display intensities", "D Display intensity RSD", "D Display normalized intensities",
          "D Display normalized intensity RSD", "D Display white filter ratio",
          "D Display filter start ratio", "D Standard display", "D Display intensities"}) {
        type("m");
        EXPECT_THAT(screen_text(), HasSubstr(label));
        type("d");
        EXPECT_FALSE(CURSDIALOG_active());
    }
    EXPECT_THAT(row(WINDOW, 3), HasSubstr("I odd ref:"));
}

TEST_F(Clap, CommandsThatGoAtOnce) {
    type("m2");
    EXPECT_EQ(commands(), list{"MSG_CLAP3W_FILTERCHANGE"});
    type("m3");
    EXPECT_EQ(commands(), list{"MSG_CLAP3W_WHITECHANGE"});
    type("m4");
    EXPECT_EQ(commands(), list{"MSG_CLAP3W_SPOTADVANCE"});
    state(NET_CLAP3W_CHANGING_FILTER);
    type("m3");
    EXPECT_EQ(commands(), list{"MSG_CLAP3W_WHITECHANGE"}) << "switches the change to a check";
    EXPECT_FALSE(CURSDIALOG_active());
}

TEST_F(Clap, EndingAChangeIsConfirmed) {
    for (const std::int32_t out : {NET_CLAP3W_CHANGING_FILTER, NET_CLAP3W_WHITE_CHECK}) {
        state(out);
        type("m2");
        EXPECT_THAT(screen_text(), HasSubstr(FINISHED));
        press(ENTER);
        EXPECT_EQ(commands(), list{}) << "No is focused";
        type("m2");
        press({KEY_LEFT, ENTER});
        EXPECT_EQ(commands(), list{"MSG_CLAP3W_FILTERCHANGE"}) << out;
        EXPECT_FALSE(CURSDIALOG_active());
    }
}

TEST_F(Clap, WhatThePasswordOpensDependsOnTheStateThen) {
    UTIL_strcpynt(g_passwd, "abc");
    type("m2wrong");
    press(ENTER);
    EXPECT_EQ(commands(), list{});
    // A white-filter check that another console began meanwhile can only be ended.
    type("m3");
    state(NET_CLAP3W_WHITE_CHECK);
    type("abc");
    press(ENTER);
    EXPECT_THAT(screen_text(), HasSubstr(FINISHED));
    press({KEY_LEFT, ENTER});
    EXPECT_EQ(commands(), list{"MSG_CLAP3W_FILTERCHANGE"});
}

TEST_F(Clap, FlowWithAndWithoutOverride) {
    // From the focused "Cancel": up to the row above, whose left button is the first.
    const auto disable = [] { press({KEY_UP, ENTER}); };
    const auto enable = [] { press({KEY_UP, KEY_LEFT, ENTER}); };
    const auto tick_box = [] { press({KEY_UP, KEY_UP, KEY_UP, ENTER, KEY_DOWN, KEY_DOWN, KEY_DOWN}); };
    const auto open = [] {
        type("m5");
        EXPECT_THAT(screen_text(), HasSubstr("Set Flow Status"));
        EXPECT_THAT(screen_text(), HasSubstr("[ ] Override locks")) << "always cleared first";
    };
    open();
    press(ENTER);
    EXPECT_EQ(commands(), list{}) << "Cancel is focused";
    EXPECT_FALSE(CURSDIALOG_active());
    open();
    enable();
    EXPECT_EQ(commands(), list{"MSG_CLAP3W_FLOW"});
    open();
    disable();
    EXPECT_EQ(commands(), list{"MSG_CLAP3W_NOFLOW"});
    open();
    tick_box();
    EXPECT_THAT(screen_text(), HasSubstr("[*] Override locks"));
    enable();
    EXPECT_EQ(commands(), list{"MSG_CLAP3W_FLOWOVERRIDE"});
    open();
    tick_box();
    disable();
    EXPECT_EQ(commands(), list{"MSG_CLAP3W_NOFLOWOVERRIDE"});
    open();
    tick_box();
    tick_box();
    EXPECT_THAT(screen_text(), HasSubstr("[ ] Override locks"));
    disable();
    EXPECT_EQ(commands(), list{"MSG_CLAP3W_NOFLOW"});
}

TEST_F(Clap, AnInstrumentThatWentGetsNothing) {
    const auto goes_and_comes = [] {
        leave("A13");
        announce("A13", "clap3w", "Photometer");
    };
    type("m5");
    goes_and_comes();
    press({KEY_UP, KEY_UP, KEY_UP, ENTER});  // the box finds nothing to tick
    EXPECT_THAT(screen_text(), HasSubstr("[ ] Override locks"));
    press({KEY_DOWN, ENTER});
    focus(WINDOW);
    state(NET_CLAP3W_CHANGING_FILTER);
    type("m2");
    goes_and_comes();
    press({KEY_LEFT, ENTER});
    UTIL_strcpynt(g_passwd, "abc");
    focus(WINDOW);
    type("m4");
    goes_and_comes();
    type("abc");
    press(ENTER);
    EXPECT_FALSE(CURSDIALOG_active());
    EXPECT_EQ(commands(), list{});
}

}  // namespace
