// The PID controller's display: what its window shows in each of its three sizes, and every command with its
// dialog, up to the bytes that are sent.
#include <gmock/gmock.h>

#include <limits>
#include <string>

#include "cursclient/displays/genericpid.h"
#include "cursclient/passwd.h"
#include "display_rig.h"
#include "libvesk/util.h"
#include "libveskcurs/cursdialog.h"

namespace {

using ::testing::HasSubstr;
using ::testing::Not;

constexpr int TAB = 9;
constexpr int ENTER = 13;
constexpr int ESCAPE = 27;
constexpr const char* IDENT = "genericpid:C13";
constexpr double NONE = VESK_MISSING;

struct Size {
    int cols, rows;
    bool operator==(const Size&) const = default;
};

class GenericPid : public DisplayRig {
  protected:
    GenericPid() { announce("C13", "genericpid", "Line heater"); }

    static NET_GENERICPID_Info info(NET_GENERICPID_ControllerParams params) {
        NET_GENERICPID_Info i{};
        UTIL_strcpynt(i.chan_pv, "T_line");
        UTIL_strcpynt(i.chan_out, "V_heater_of_the_line");
        i.params = params;
        return i;
    }
    static void report() {
        receive("C13", MSG_GENERICPID_INFO,
                info({{0.4, 0.0125, 3.0}, {0.1, NONE, -0.001}, {0.9, NONE, 12.0}}));
        receive("C13", MSG_GENERICPID_INSTANT, NET_GENERICPID_Instant{START, 44.987, -2.5, 2.4, -0.01});
        receive("C13", MSG_GENERICPID_SETPOINT, NET_GENERICPID_Setpoint{45});
    }
    static void state(std::uint32_t state, std::uint32_t run = 0) {
        receive("C13", MSG_GENERICPID_TUNING_STATUS, NET_GENERICPID_TuningSatus{state, run, 8});
    }
    static Size size() {
        WINDOW* win = redrawn(IDENT)->win;
        return {getmaxx(win), getmaxy(win)};
    }
    // Opens the menu and presses the button with that hot key.
    static void choose(char hot_key) {
        focus(IDENT);
        type("m");
        type(std::string(1, hot_key));
    }
    static void press_times(int key, int times) {
        for (int i = 0; i < times; ++i)
            press(key);
    }
    // The one message sent since the last time, which went to the controller alone.
    static Sent take_sent(NETMSG_type msg) {
        EXPECT_EQ(sent.size(), 1u);
        if (sent.empty()) return {};
        const Sent one = sent.front();
        sent.clear();
        EXPECT_EQ(one.msg, msg);
        EXPECT_EQ(one.flags, 0u);
        EXPECT_EQ(one.dest, "C13");
        return one;
    }
};

// ---- the window

TEST_F(GenericPid, ShowsValuesAndTermsOnceTheyCome) {
    EXPECT_EQ(size(), (Size{31, 6}));
    EXPECT_EQ(inside(IDENT), R"(
                :  -.--------
                :  -.--------
              SP:  -.--------
I:  -.-------- D:  -.--------
)") << "before anything came";
    report();
    EXPECT_EQ(inside(IDENT), R"(
          T_line:  4.4987e+01
V_heater_of_the_: -2.5000e+00
              SP:  4.5000e+01
I:  2.4000e+00 D: -1.0000e-02
)");
    receive("C14", MSG_GENERICPID_SETPOINT, NET_GENERICPID_Setpoint{99});
    receive("C13", MSG_GENERICPID_SETPOINT);
    receive("C13", MSG_GENERICPID_INFO);
    EXPECT_EQ(row(IDENT, 3), "              SP:  4.5000e+01") << "another's, and one without a record";
}

TEST_F(GenericPid, GrowsWhileTuningAndKeepsTheResults) {
    report();
    state(GENERICPID_DOWNWARD);
    NET_GENERICPID_TuningInstant now{0.0125, {{0.5, 0.02, NONE}, {0.01, 0.002, NONE}}, {0.49, 0.019, 3.25}};
    receive("C13", MSG_GENERICPID_TUNING_INSTANT, now);
    EXPECT_EQ(size(), (Size{55, 11}));
    EXPECT_EQ(inside(IDENT), R"(
          T_line:  4.4987e+01
V_heater_of_the_: -2.5000e+00
              SP:  4.5000e+01
-----------------------------------------------------
Params   P:  5.0000e-01 I:  2.0000e-02 D:  -.--------
StdDev   P:  1.0000e-02 I:  2.0000e-03 D:  -.--------
LastRun  P:  4.9000e-01 I:  1.9000e-02 D:  3.2500e+00
Run          1/8               PV StdDev:  1.2500e-02
Status:      Downward sweep
)");

    const NET_GENERICPID_TuningResults found{{0.51, 0.021, 3.3}, {0.015, 0.003, 0.1}};
    receive("C13", MSG_GENERICPID_TUNING_RESULTS, found);
    EXPECT_EQ(size(), (Size{55, 11})) << "tuning goes on";
    state(GENERICPID_NOTTUNING);
    EXPECT_EQ(size(), (Size{55, 9}));
    EXPECT_EQ(inside(IDENT), R"(
          T_line:  4.4987e+01
V_heater_of_the_: -2.5000e+00
              SP:  4.5000e+01
I:  2.4000e+00 D: -1.0000e-02
-----------------------------------------------------
Params   P:  5.1000e-01 I:  2.1000e-02 D:  3.3000e+00
StdDev   P:  1.5000e-02 I:  3.0000e-03 D:  1.0000e-01
)");
    receive("C13", MSG_GENERICPID_TUNING_RESULTS, NETDSD_default<NET_GENERICPID_TuningResults>());
    EXPECT_EQ(size(), (Size{31, 6})) << "results taken back";
    receive("C13", MSG_GENERICPID_TUNING_RESULTS,
            NET_GENERICPID_TuningResults{{NONE, NONE, std::numeric_limits<double>::quiet_NaN()}, {}});
    EXPECT_EQ(size(), (Size{55, 9})) << "not a number is no missing value";
}

TEST_F(GenericPid, SaysWhatTheTuningDoes) {
    struct status_case {
        std::uint32_t state, run;
        const char *status, *run_text;
    };
    for (const status_case& c :
         {status_case{1, 0, "Waiting baseline stablity", "   1/8"},
          status_case{2, 0, "Waiting high value stablity", "   1/8"},
          status_case{3, 1, "Priming downward sweep", "   2/8"},
          status_case{4, 1, "Priming upward sweep", "   2/8"}, status_case{6, 7, "Upward sweep", "   8/8"},
          status_case{9, 7, "Upward sweep", "   8/8"},
          status_case{0xFFFFFFFF, 9998, "Upward sweep", "9999/8"}}) {
        state(c.state, c.run);
        EXPECT_EQ(row(IDENT, 9), std::string("Status:      ") + c.status);
        EXPECT_THAT(row(IDENT, 8), HasSubstr(c.run_text));
    }
}

TEST_F(GenericPid, GrowingBringsNoHiddenWindowUpAndCoversNoDialog) {
    state(GENERICPID_UPWARD);
    redraw();
    EXPECT_FALSE(window(IDENT)->visible);
    EXPECT_THAT(screen_text(), Not(HasSubstr("Upward sweep")));

    state(GENERICPID_NOTTUNING);
    focus(IDENT);
    type("m");
    const std::string before = screen_text();
    ASSERT_THAT(before, HasSubstr("5 Start tuning sequence"));
    state(GENERICPID_UPWARD);
    const std::string after = screen_text();
    EXPECT_THAT(after, HasSubstr("5 Start tuning sequence"));
    EXPECT_THAT(after, HasSubstr("1 Hide window"));
    EXPECT_THAT(after, HasSubstr("Status:")) << "the window behind has grown";
}

TEST_F(GenericPid, FitsAScreenThatIsTooSmall) {
    state(GENERICPID_UPWARD);
    report();
    focus(IDENT);
    resize(6, 24);
    EXPECT_THAT(screen_text(), HasSubstr("T_line:"));
    resize(40, 100);
    EXPECT_EQ(size(), (Size{55, 11}));
}

// ---- commands

TEST_F(GenericPid, SetPoint) {
    report();
    choose('2');
    EXPECT_THAT(screen_text(), HasSubstr("Setpoint:4.500000e+01"));
    press(ENTER);
    EXPECT_FALSE(CURSDIALOG_active()) << "Cancel has the focus";
    EXPECT_TRUE(sent.empty());
    choose('2');
    press(KEY_UP);
    press(KEY_UP);
    type("-31.25");
    press(TAB);  // commits, on to "Apply"
    press(ENTER);
    EXPECT_EQ(take_sent(MSG_GENERICPID_SET).as<NET_GENERICPID_Setpoint>().sp + 0, -31.25);
    EXPECT_FALSE(CURSDIALOG_active());
}

TEST_F(GenericPid, ResetAsksTwice) {
    choose('3');
    EXPECT_THAT(screen_text(), HasSubstr("Confirm PID Reset"));
    press(ENTER);
    EXPECT_FALSE(CURSDIALOG_active()) << "Cancel has the focus";
    EXPECT_TRUE(sent.empty());
    choose('3');
    press(KEY_UP);
    press(ENTER);
    EXPECT_EQ(take_sent(MSG_GENERICPID_RESET).record, "");
}

TEST_F(GenericPid, ParametersWithTheirLimits) {
    report();
    choose('4');
    const std::string dialog = screen_text();
    for (const char* text : {"P: 4.000000e-01", "I: 1.250000e-02", "D: 3.000000e+00", "[*] Limit P",
                             "[ ] Limit I", "[*] Limit D", "Min:1.000000e-01 Max:9.000000e-01",
                             "Min:9.999000e-99 Max:9.999000e-99", "Min:-1.00000e-03 Max:1.200000e+01"})
        EXPECT_THAT(dialog, HasSubstr(text));
    press(KEY_LEFT);  // from "Cancel" to "Apply"
    press(ENTER);
    const auto same = take_sent(MSG_GENERICPID_SET_PARMS).as<NET_GENERICPID_ControllerParams>();
    EXPECT_EQ(+same.params.p, 0.4);
    EXPECT_EQ(+same.params.i, 0.0125);
    EXPECT_EQ(+same.params.d, 3.0);
    EXPECT_EQ(+same.min.p, 0.1);
    EXPECT_EQ(+same.max.p, 0.9);
    EXPECT_TRUE(VESK_is_missing(+same.min.i) && VESK_is_missing(+same.max.i)) << "unlimited";
    EXPECT_EQ(+same.min.d, -0.001) << "shortened to its entry, not cut";
    EXPECT_EQ(+same.max.d, 12.0);
}

TEST_F(GenericPid, TogglingALimitSendsItOrNot) {
    report();
    choose('4');
    press_times(TAB, 4);  // from "Cancel" around to the first toggle
    ASSERT_THAT(screen_text(), HasSubstr("[*] Limit P"));
    press(' ');  // P off
    EXPECT_THAT(screen_text(), HasSubstr("[ ] Limit P"));
    press_times(TAB, 3);
    press(' ');  // I on
    EXPECT_THAT(screen_text(), HasSubstr("[*] Limit I"));
    press(TAB);
    type("0.5");
    press(TAB);
    type("0.75");
    press(TAB);
    press(' ');  // D off; its button reads P from now on
    EXPECT_THAT(screen_text(), Not(HasSubstr("Limit D")));
    press_times(TAB, 3);
    press(ENTER);
    const auto params = take_sent(MSG_GENERICPID_SET_PARMS).as<NET_GENERICPID_ControllerParams>();
    EXPECT_TRUE(VESK_is_missing(+params.min.p) && VESK_is_missing(+params.max.p));
    EXPECT_EQ(+params.min.i, 0.5);
    EXPECT_EQ(+params.max.i, 0.75);
    EXPECT_TRUE(VESK_is_missing(+params.min.d) && VESK_is_missing(+params.max.d));
}

TEST_F(GenericPid, TuningIsProposedFromTheOutput) {
    report();
    choose('5');
    const std::string dialog = screen_text();
    for (const char* text : {"Start tuning sequence", "Number of runs: 8", "Number of priming cycles: 2",
                             "Start output: -2.500000e+00", "Output oscillation amplitude: 6.250000e-01",
                             "PV samples for stablity: 120", "PV StdDev for stablity: 1.250000e-02",
                             "Calculation method: Tyreus-Luyben PID"})
        EXPECT_THAT(dialog, HasSubstr(text));
    press(KEY_LEFT);
    press(ENTER);
    const auto sent_message = take_sent(MSG_GENERICPID_TUNING_START);
    EXPECT_EQ(sent_message.payload.size(), 40u);
    const auto request = sent_message.as<NET_GENERICPID_TuningRequest>();
    EXPECT_EQ(+request.num_runs, 8u);
    EXPECT_EQ(+request.num_prime, 2u);
    EXPECT_EQ(+request.start_out, -2.5);
    EXPECT_EQ(+request.output_amp, 0.625);
    EXPECT_EQ(+request.stablity_samples, 120u);
    EXPECT_EQ(+request.stablity_stddev, 0.0125);
    EXPECT_EQ(+request.param_gen, +GENERICPID_TUNE_TLC_PID);
}

TEST_F(GenericPid, TuningIsProposedWithoutAnOutputToo) {
    choose('5');
    EXPECT_THAT(screen_text(), HasSubstr("Output oscillation amplitude: 2.499750e-99"));
    EXPECT_THAT(screen_text(), HasSubstr("PV StdDev for stablity: 4.999500e-101"));
}

TEST_F(GenericPid, TuningTakesWhatTheOperatorChose) {
    report();
    choose('5');
    press(TAB);
    type("0");
    press(ENTER);
    EXPECT_THAT(screen_text(), HasSubstr("Number of runs: 8")) << "out of its limits";
    EXPECT_THAT(screen_text(), HasSubstr("a number from 1 to 9999"));
    type("12");
    press_times(TAB, 6);
    press(ENTER);  // the list of methods, the present one focused
    EXPECT_THAT(screen_text(), HasSubstr("Ziegler-Nichols P "));
    press_times(KEY_DOWN, 3);
    press(ENTER);
    EXPECT_THAT(screen_text(), HasSubstr("Calculation method: Ziegler-Nichols PI"));
    press(ENTER);
    EXPECT_THAT(screen_text(), HasSubstr("+ Calculation method +"));
    press(ESCAPE);
    press(TAB);
    press(ENTER);
    const auto request = take_sent(MSG_GENERICPID_TUNING_START).as<NET_GENERICPID_TuningRequest>();
    EXPECT_EQ(+request.num_runs, 12u);
    EXPECT_EQ(+request.param_gen, +GENERICPID_TUNE_ZN_PI);
    EXPECT_FALSE(CURSDIALOG_active());
}

TEST_F(GenericPid, TheMenuStopsATuningThatRuns) {
    state(GENERICPID_WAIT_BASE_STABLITY);
    focus(IDENT);
    type("m");
    EXPECT_THAT(screen_text(), HasSubstr("5 Stop tuning sequence"));
    EXPECT_THAT(screen_text(), Not(HasSubstr("5 Start")));
    state(GENERICPID_NOTTUNING);
    type("5");
    EXPECT_EQ(take_sent(MSG_GENERICPID_TUNING_STOP).record, "") << "the button does what it said";
}

TEST_F(GenericPid, AWrongPasswordSendsNothingAndOpensNothing) {
    report();
    UTIL_strcpynt(g_passwd, "abc");
    for (const char hot_key : {'2', '3', '4', '5'}) {
        for (const char* password : {"wrong", "abc"}) {
            choose(hot_key);
            if (hot_key == '3') {
                press(KEY_UP);
                press(ENTER);
            }
            type(password);
            press(ENTER);
            const BOOL right = std::string(password) == "abc";
            EXPECT_EQ(CURSDIALOG_active(), right && hot_key != '3') << hot_key;
            EXPECT_EQ(sent.size(), right && hot_key == '3' ? 1u : 0u) << hot_key;
            press_times(ESCAPE, CURSDIALOG_active() ? 1 : 0);
            sent.clear();
        }
    }
}

TEST_F(GenericPid, DialogsOfADisplayThatWentSendNothing) {
    report();
    for (const char hot_key : {'2', '3', '4', '5'}) {
        choose(hot_key);
        press(hot_key == '3' ? KEY_UP : KEY_LEFT);  // off "Cancel"
        leave("C13");
        press(ENTER);
        EXPECT_TRUE(sent.empty()) << hot_key;
        EXPECT_FALSE(CURSDIALOG_active()) << hot_key;
        announce("C13", "genericpid", "Line heater");
        report();
    }
}

}  // namespace
