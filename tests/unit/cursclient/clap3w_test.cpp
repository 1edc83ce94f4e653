// The photometer with eight spots: its seven views, the status line, the demand for the operator's attention,
// and what its menu offers while the filter is out.
#include "libvesk/messages/records/clap3w.h"
#include "cursclient/cursclient.h"
#include "libvesk/messages/netdsd.h"
#include "support/display_rig.h"

namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

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
        number(&in, offsetof(NET_CLAP3W_Instant, in.ID), 10, 98765, 1e5);
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
};

TEST_F(Clap, StandardViewShowsReadingsAndAverages) {
    report("A13", MSG_CLAP3W_INSTANT, R"({"bap": [3.5e-6, 4.5e-6, 5.5e-6], "tr": [0.9, 0.8, 0.7],
        "Iref": [150000, 150001, 150002], "Isam": [130000.4, 130000.4, 130000.4],
        "Inormrsd": [0.0000321, 0.0000321], "Q": 0.823, "VQ": 2.4567, "T": 25.5, "T_case": -3.25,
        "spot_index": 7, "flags": 175})");
    report("A13", MSG_CLAP3W_AVERAGE, R"({"bap": [0, -0.25e-6, -0.5e-6]})");
    have_comms();
    EXPECT_EQ(inside(WINDOW), R"(
                 Blue       Green         Red
Bap (1/Mm,1Hz)   3.50        4.50        5.50
Bap (1/Mm,avg)   0.00       -0.25       -0.50
Transmittance:   0.9000000   0.8000000   0.7000000
I reference:     150000      150001      150002
I sample:        130000      130000      130000
I norm RSD:      0.0000321   0.0000321----.-------
Flow (slpm):     0.82        Volts:      2.4567
T (C):          25.50
Tcase (C):      -3.25
Spot:            7
Flags:        00AF
)");
}

TEST_F(Clap, TheOtherViewsEachShowTheirOwnArrays) {
    receive("A13", MSG_CLAP3W_INSTANT, numbered());
    have_comms();
    struct case_row {
        const char *title, *first, *last;
        int last_row = 10;
    };
    // Of the dark column as much as the window has room for: clipped, not wrapped.
    for (const case_row& c :
         {case_row{"-Raw Intensities-", "I odd ref:      100000      200000      300000  98",
                   "I spot 8:       109000      209000      309000  98", 12},
          case_row{"-Raw Intensity RSD-", "Ig odd ref:  0.0001000   0.0002000   0.0003000  --",
                   "Ig spot 8:   0.0001090   0.0002090   0.0003090  --", 12},
          case_row{"-Normalized Intensities-", "In spot 1:     1.1000000    2.1000000    3.1000000",
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
        EXPECT_EQ(row(WINDOW, 3), c.first);
        EXPECT_EQ(row(WINDOW, c.last_row), c.last);
        EXPECT_EQ(row(WINDOW, c.last_row + 1), "Spot: 5");
    }
    state(NET_CLAP3W_WAIT_SPOT);
    EXPECT_EQ(row(WINDOW, 11), "Waiting for spot stability...") << "instead of the spot";
    state(10);
    EXPECT_EQ(row(WINDOW, 11), "") << "of an unknown state nothing is said";
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
          {2, "Changing filter...", "Changing filter..."},
          {3, "White filter check...", "White filter check..."},
          {4, "Waiting for filter stability...", "Waiting for filter stability..."},
          {5, "Waiting for white filter stability...", "Waiting for white filter stability..."},
          {6, "FLOW DISABLED ON SPOT 4", ERROR},
          {7, "FLOW DISABLED WITH PENDING SPOT 4", ERROR},
          {8, "FILTER CHANGE REQUIRED", ERROR},
          {9, "WHITE FILTER CHECK REQUIRED", ERROR},
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

TEST_F(Clap, ADemandPullsTheFocusOnce) {
    const auto comes_up = [](std::int32_t s) -> BOOL {
        WINS_hide_window(window(WINDOW));
        state(s);
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

TEST_F(Clap, WhileTheFilterIsOutTheMenuHasNoMoreThanItsWaysBack) {
    for (const auto& [out, absent] : {std::pair{NET_CLAP3W_CHANGING_FILTER, "4 Advance"},
                                      {NET_CLAP3W_WHITE_CHECK, "4 Advance"},
                                      {NET_CLAP3W_WHITE_CHECK, "white filter check"}}) {
        state(out);
        choose(WINDOW, "");
        EXPECT_THAT(screen_text(), Not(HasSubstr(absent))) << out;
        press(ESCAPE);
    }
}

TEST_F(Clap, ACheckThatBeganBeforeThePasswordWasGivenCanOnlyBeEnded) {
    UTIL_strcpynt(g_passwd, "abc");
    choose(WINDOW, "3");
    state(NET_CLAP3W_WHITE_CHECK);  // that another console began
    type("abc\r");
    EXPECT_THAT(take_sent(), IsEmpty());
    EXPECT_THAT(screen_text(), HasSubstr("Have you finished changing the filter?"));
}

}  // namespace
