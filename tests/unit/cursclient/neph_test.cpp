// The nephelometers' windows: the three-wavelength kind with its parameters, the one that is only watched,
// the single-wavelength kind and the Aurora 3000.
#include "libvesk/messages/records/neph.h"
#include "libvesk/messages/records/common_neph.h"
#include "support/display_rig.h"

namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class Neph : public DisplayRig {
  protected:
    static constexpr const char* WINDOW = "neph:N11";

    Neph() { announce("N11", "neph", "Dry neph", 'n'); }
    static void comms() { receive("N11", MSG_NEPH_STATUS, NET_NEPH_Status{TRUE}); }
    static void choose(std::string_view buttons) { DisplayRig::choose(WINDOW, buttons); }
};

// Values that differ in every field: `base` plus the field's place in tenths.
template <class View>
void fill(View* v, double base) {
    for (int i = 0; i < 3; ++i) {
        v->s.bsp[i] = (base + i) * 1e-6;
        v->s.bbsp[i] = (base + i + 0.1) * 1e-6;
        v->pc.calTS[i] = base * 10 + i;
        v->pc.calBS[i] = base * 20 + i;
        v->pc.darkTS[i] = base * 30 + i;
        v->pc.darkBS[i] = base * 40 + i;
        v->pc.sampTS[i] = base * 1e4 + i;
        v->pc.sampBS[i] = base * 1e-4;
    }
    v->T_inlet = base + 0.2;
    v->T_neph = base + 0.3;
    v->RH_inlet = base + 0.4;
    v->RH_neph = base + 0.5;
    v->P_neph = base + 900;
    v->alphaGR = 1.23;
    v->alphabGR = -0.5;
}

NET_NEPH_Instant reading() {
    auto r = NETDSD_default<NET_NEPH_Instant>();
    fill(&r, 10);
    fill(&r.running, 20);
    r.sec_left = 1234;
    r.ref_green = 98765;
    r.lamp_V = 12.34;
    r.lamp_I = 5.6;
    r.aux_in = 100;
    return r;
}

TEST_F(Neph, ShowsTheViewOfItsModeAndAlwaysTheLatestLampAndSeconds) {
    comms();
    EXPECT_EQ(row(WINDOW, 15), "") << "no zero is planned";
    receive("N11", MSG_NEPH_INSTANT, reading());
    auto average = NETDSD_default<NET_NEPH_Avg>();
    fill(&average, 30);
    average.s.bsp[1] = VESK_MISSING;
    receive("N11", MSG_NEPH_AVERAGE, average);
    report("N11", MSG_NEPH_ZERO, R"({"bspBK": [1e-6, 2e-6, 3e-6], "bbspBK": [4e-6, 5e-6, 6e-6],
        "bspBKshift": [-7e-7, -8e-7, -9e-7]})");
    receive("N11", MSG_NEPH_MODES, NET_NEPH_Modes{0x1a2, "NBXX"});
    receive("N11", MSG_NEPH_ZEROSCHEDULE, NET_NEPH_ZeroSchedule{START + 100.9});
    EXPECT_EQ(inside(WINDOW), R"(
                    BLUE       GREEN           RED
Bsp:                10.0        11.0          12.0
Bbsp:               10.1        11.1          12.1
BspBK:               1.0         2.0           3.0
BbspBK:              4.0         5.0           6.0
BspBKShift:         -0.7        -0.8          -0.9
BbspBKShift:     -----.-     -----.-       -----.-
Mode:               NBXX     Sample T:        10.3
Flags:              01A2     Inlet T:         10.2
P hPa:             910.0     Sample RH:       10.5
Alpha GR:           1.23     Inlet RH:        10.4
AlphaB GR:         -0.50     Sec rem:         1234
Lamp V:            12.34     Lamp I:          5.60
Green Ref:         98765     BNC in mV:        100
Next zero:      22:15:00
)");
    choose("2");
    EXPECT_EQ(row(WINDOW, 2), "Bsp:                20.0        21.0          22.0");
    EXPECT_EQ(row(WINDOW, 8), "Mode:               NBXX     Sample T:        20.3");
    EXPECT_EQ(row(WINDOW, 12), "AlphaB GR:         -0.50     Sec rem:         1234");
    choose("2");
    EXPECT_EQ(row(WINDOW, 2), "Bsp:                30.0     -----.-          32.0");
    choose("2");
    press('s');
    EXPECT_EQ(inside(WINDOW).substr(0, inside(WINDOW).find("Mode:")), R"(
                    BLUE       GREEN           RED
SampTS:           1.00e+05    1.00e+05      1.00e+05
SampBS:           1.00e-03    1.00e-03      1.00e-03
DarkTS:           3.00e+02    3.01e+02      3.02e+02
DarkBS:           4.00e+02    4.01e+02      4.02e+02
CalTS:            1.00e+02    1.01e+02      1.02e+02
CalBS:            2.00e+02    2.01e+02      2.02e+02
)");
    press('S');
    EXPECT_EQ(row(WINDOW, 2), "Bsp:                10.0        11.0          12.0");
}

TEST_F(Neph, TheMenuFollowsModeCountsAndSpanCheck) {
    choose("");
    EXPECT_THAT(screen_text(),
                AllOf(HasSubstr("2 Displaying instantanous data"), HasSubstr("5 Begin spancheck"),
                      HasSubstr("S Display counts"), Not(HasSubstr("6 Show"))));
    type("S");
    choose("2");
    receive("N11", MSG_COMMON_NEPH_SPANCHECK_PHASE, NET_COMMON_Neph_SpancheckPhase{1, START + 60});
    choose("");
    EXPECT_THAT(screen_text(), AllOf(HasSubstr("2 Displaying running average"),
                                     HasSubstr("5 Abort spancheck"), HasSubstr("6 Show spancheck window"),
                                     HasSubstr("S Display scattering"), Not(HasSubstr("Begin"))));
    // The operator reads "Abort": that the phase changes meanwhile must not turn the button around.
    receive("N11", MSG_COMMON_NEPH_SPANCHECK_PHASE, NET_COMMON_Neph_SpancheckPhase{0, -1});
    type("5");
    EXPECT_THAT(take_sent(), ElementsAre("MSG_COMMON_NEPH_SPANCHECK_ABORT flags 1"));
}

// ---- parameters

TEST_F(Neph, ParametersUntouchedAreSentAsReported) {
    const std::string reported =
        R"({"smz":4,"sta":60,"stb":62,"stp":3601,"stz":301,"smb":false,"sp":75,"l":true,)"
        R"("sx":5,"b":254,"svb":1100,"svg":1000,"svr":900})";
    report("N11", MSG_NEPH_CONFIG, reported);
    choose("4");
    for (const char* text :
         {"SMZ - Number of autozero measurements to average: 4", "STA - Length (sec) of averaging time: 60",
          "STB - Blanking time (sec): 62", "STP - Time (sec) between autozeros: 3601",
          "STZ - Duration (sec) of filter air zero check: 301", "SP - Lamp power (watts): 75",
          "B - Blower (0-255): 254", "SVB - Blue PMT voltage (1-1200): 1100",
          "SVG - Green PMT voltage (1-1200): 1000", "SVR - Red PMT voltage (1-1200): 900",
          "SX - Analog out (mv): 5", "Total mode", "Lamp ON", "Zero valve unchanged"})
        EXPECT_THAT(screen_text(), HasSubstr(text));
    for (int i = 0; i < 14; ++i)
        press(KEY_DOWN);
    press(ENTER);
    EXPECT_FALSE(CURSDIALOG_active());
    EXPECT_THAT(take_sent(), ElementsAre("MSG_NEPH_CONFIG to N11 " + reported)) << "the valve was left alone";
}

TEST_F(Neph, ParametersChangedGoToTheirOwnPlaces) {
    choose("4");  // never reported: the usual configuration
    for (const char* value : {"1", "2", "6", "99999", "8", "9", "10", "11", "12", "13", "14"}) {
        type(value);
        press(KEY_DOWN);
    }
    press({' ', KEY_DOWN, ' ', KEY_DOWN, ' ', ' '});
    EXPECT_THAT(screen_text(),
                AllOf(HasSubstr("STP - Time (sec) between autozeros: 99999"), HasSubstr("Total mode"),
                      HasSubstr("Lamp OFF"), HasSubstr("Zero valve on")));
    press({KEY_DOWN, ENTER});
    EXPECT_THAT(
        take_sent(),
        ElementsAre(R"(MSG_NEPH_CONFIG to N11 {"smz":1,"sta":2,"stb":6,"stp":-31073,"stz":8,"smb":false,)"
                    R"("sp":9,"l":false,"sx":14,"b":10,"svb":11,"svg":12,"svr":13})",
                    R"(MSG_NEPH_OVERRIDEPARAMS to N11 {"v":1})"));
}

TEST_F(Neph, ParametersOutOfRangeAreRejectedAndTheValveGoesRound) {
    choose("4");
    type("25");
    press(KEY_DOWN);
    EXPECT_THAT(screen_text(), HasSubstr("average: 1_")) << "SMZ keeps what it had";
    for (int i = 0; i < 13; ++i)
        press(KEY_DOWN);
    for (const char* valve : {"Zero valve off", "Zero valve on", "Zero valve unchanged"}) {
        press(' ');
        EXPECT_THAT(screen_text(), HasSubstr(valve));
    }
    press({KEY_DOWN, KEY_RIGHT, ENTER});
    EXPECT_THAT(take_sent(), IsEmpty()) << "cancelled";
}

// ---- watched only

TEST_F(Neph, WatchedOnlyOffersNoCommand) {
    constexpr const char* PASSIVE = "neph_passive:N21";
    announce("N21", "neph_passive", "Their neph", 'p');
    receive("N21", MSG_NEPH_STATUS, NET_NEPH_Status{TRUE});
    receive("N21", MSG_NEPH_INSTANT, reading());
    receive("N21", MSG_COMMON_NEPH_SPANCHECK_PHASE, NET_COMMON_Neph_SpancheckPhase{2, START + 60});
    EXPECT_EQ(row(PASSIVE, 2), "Bsp:                10.0        11.0          12.0");
    EXPECT_EQ(row(PASSIVE, 15), "SPANCHECK: FLUSH CO2 UNTIL 22:14:20");
    EXPECT_EQ(row("neph_passive:N21.sc", 5), "CO2 will be flushed until 22:14:20");
    DisplayRig::choose(PASSIVE, "345");
    EXPECT_TRUE(CURSDIALOG_active()) << "keys that are not offered";
    EXPECT_THAT(screen_text(),
                AllOf(HasSubstr("1 Hide window"), Not(HasSubstr("pancheck")), Not(HasSubstr("zero"))));
    type("2");
    EXPECT_EQ(row(PASSIVE, 2), "Bsp:                20.0        21.0          22.0");
    EXPECT_THAT(take_sent(), IsEmpty());
}

// ---- the single-wavelength kind

class NephM903 : public DisplayRig {};

TEST_F(NephM903, ShowsReadingAndRunningAverage) {
    constexpr const char* WINDOW = "nephM903:N31";
    announce("N31", "nephM903", "M903");
    const NET_NEPHM903_Avg running{START, 20e-6, VESK_MISSING, 23, 45, 24, 46, 1000};
    receive("N31", MSG_NEPHM903_INSTANT,
            NET_NEPHM903_Instant{START, 12.34e-6, 0.000012, 21.1, 33.3, -1.5, 44.4, 987.6, running});
    receive("N31", MSG_NEPHM903_STATUS, NET_NEPHM903_Status{TRUE});
    receive("N31", MSG_COMMON_NEPH_SPANCHECK_PHASE, NET_COMMON_Neph_SpancheckPhase{4, START + 60});
    EXPECT_EQ(inside(WINDOW), R"(
             Instant  Average
Bs (1/Mm):      12.3     20.0
Green ref:      12.0  -----.-
T inlet (C):    -1.5     24.0
RH inlet (%)    44.4     46.0
T neph (C):     21.1     23.0
RH neph (%):    33.3     45.0
P (hPa):       987.6   1000.0
F. AIR (SMPL) UNTIL 22:14:20
)");
    choose(WINDOW, "3");
    EXPECT_TRUE(window("nephM903:N31.sc")->focused);
    EXPECT_EQ(row("nephM903:N31.sc", 4), "Air will be flushed until 22:14:20");
}

// ---- the Aurora 3000

class NephAurora : public DisplayRig {
  protected:
    static constexpr const char* WINDOW = "neph_aurora3000:N41";

    NephAurora() { announce("N41", "neph_aurora3000", "Aurora"); }
};

TEST_F(NephAurora, ShowsScatteringAndCounts) {
    report("N41", MSG_NEPHAURORA3000_INSTANT, R"({
        "s": {"bsp": [10e-6, 20e-6, 30e-6], "bbsp": [1e-6, 2e-6, 3e-6]},
        "c": {"total": [12345, 12346, 12347], "back": [0.001, 0.001, 0.001], "dark": 7},
        "T_sample": 25.5, "T_cell": 26.5, "RH_sample": 40, "P_sample": 990.5, "aGR": 1.5, "abGR": 1.25,
        "running": {"s": {"bsp": [5e-6, 5e-6, 5e-6]}}})");
    receive("N41", MSG_NEPHAURORA3000_STATUS, NET_NEPHAURORA3000_Status{TRUE});
    receive("N41", MSG_NEPHAURORA3000_ZEROSCHEDULE, NET_NEPHAURORA3000_ZeroSchedule{START});
    EXPECT_EQ(inside(WINDOW), R"(
                    BLUE       GREEN           RED
Bsp:                10.0        20.0          30.0
Bbsp:                1.0         2.0           3.0
BspBK:           -----.-     -----.-       -----.-
BbspBK:          -----.-     -----.-       -----.-
BspBKShift:      -----.-     -----.-       -----.-
BbspBKShift:     -----.-     -----.-       -----.-
Flags:              FFFF     Sample T:        25.5
P hPa:             990.5     Sample RH:       40.0
Ang GR:             1.50     Cell T:          26.5
AnbB GR:            1.25
Next zero:      22:13:20
)");
    focus(WINDOW);
    press('s');
    EXPECT_EQ(inside(WINDOW).substr(0, inside(WINDOW).find("Flags:")), R"(
                    BLUE       GREEN           RED
NTotal:          1.2345e+04  1.2346e+04    1.2347e+04
NBack:           1.0000e-03  1.0000e-03    1.0000e-03
NRef:            -.--------  -.--------    -.--------
NDark:           7.0000e+00


)") << "two rows stay empty";
    type("m2s");
    EXPECT_EQ(row(WINDOW, 2), "Bsp:                 5.0         5.0           5.0");
}

TEST_F(NephAurora, TheSpanCheckWindowHasAnotherKeyAfterwards) {
    const auto menu = [] {
        choose(WINDOW, "");
        const std::string text = screen_text();
        press(ESCAPE);
        return text;
    };
    EXPECT_THAT(menu(), AllOf(HasSubstr("4 Begin spancheck"), Not(HasSubstr("Show spancheck"))));
    receive("N41", MSG_COMMON_NEPH_SPANCHECK_PHASE, NET_COMMON_Neph_SpancheckPhase{1, START + 60});
    EXPECT_THAT(menu(), AllOf(HasSubstr("4 Abort spancheck"), HasSubstr("6 Show spancheck window")));
    receive("N41", MSG_COMMON_NEPH_SPANCHECK_RESULTS, NET_COMMON_Neph_SpancheckResults{});
    receive("N41", MSG_COMMON_NEPH_SPANCHECK_PHASE, NET_COMMON_Neph_SpancheckPhase{0, -1});
    EXPECT_THAT(menu(), AllOf(HasSubstr("5 Show spancheck window"), Not(HasSubstr("6 Show"))));
}

}  // namespace
