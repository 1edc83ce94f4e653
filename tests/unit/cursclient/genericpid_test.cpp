// The PID controller's display: what its window shows in each of its three sizes, and every command with its
// dialog, up to the bytes that are sent.
#include <limits>
#include <string>

#include "cursclient/displays/genericpid.h"
#include "support/display_rig.h"

namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr const char* IDENT = "genericpid:C13";
constexpr double NONE = VESK_MISSING;

struct Size {
    int cols, rows;
    bool operator==(const Size&) const = default;
};

class GenericPid : public DisplayRig {
  protected:
    GenericPid() { announce("C13", "genericpid", "Line heater"); }

    static void come_up() {
        report("C13", MSG_GENERICPID_INFO, R"({"chan_pv": "T_line", "chan_out": "V_heater_of_the_line",
            "params": {"params": {"p": 0.4, "i": 0.0125, "d": 3.0}, "min": {"p": 0.1, "d": -0.001},
                       "max": {"p": 0.9, "d": 12.0}}})");
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
    static void choose(std::string_view button) { DisplayRig::choose(IDENT, button); }
    static void press_times(int key, int times) {
        for (int i = 0; i < times; ++i)
            press(key);
    }
};

// ---- the window

TEST_F(GenericPid, ShowsValuesAndTerms) {
    EXPECT_EQ(size(), (Size{31, 6}));
    come_up();
    EXPECT_EQ(inside(IDENT), R"(
          T_line:  4.4987e+01
V_heater_of_the_: -2.5000e+00
              SP:  4.5000e+01
I:  2.4000e+00 D: -1.0000e-02
)");
}

TEST_F(GenericPid, GrowsWhileTuningAndKeepsTheResults) {
    come_up();
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
    EXPECT_EQ(row(IDENT, 4), "I:  2.4000e+00 D: -1.0000e-02");
    EXPECT_EQ(row(IDENT, 6), "Params   P:  5.1000e-01 I:  2.1000e-02 D:  3.3000e+00");
    EXPECT_EQ(row(IDENT, 7), "StdDev   P:  1.5000e-02 I:  3.0000e-03 D:  1.0000e-01");
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
    for (const status_case& c : {status_case{1, 0, "Waiting baseline stablity", "   1/8"},
                                 status_case{2, 0, "Waiting high value stablity", "   1/8"},
                                 status_case{3, 1, "Priming downward sweep", "   2/8"},
                                 status_case{4, 7, "Priming upward sweep", "   8/8"},
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
    choose("");
    ASSERT_THAT(screen_text(), HasSubstr("5 Start tuning sequence"));
    state(GENERICPID_UPWARD);
    EXPECT_THAT(screen_text(),
                AllOf(HasSubstr("5 Start tuning sequence"), HasSubstr("1 Hide window"), HasSubstr("Status:")))
        << "the window behind has grown";
}

// ---- commands

TEST_F(GenericPid, ResetAsksFirstAndThenForThePassword) {
    const auto confirm = [] {
        choose("3");
        press({KEY_UP, ENTER});
    };
    choose("3\r");
    EXPECT_FALSE(CURSDIALOG_active()) << "Cancel has the focus";
    UTIL_strcpynt(g_passwd, "abc");
    confirm();
    type("abd\r");
    EXPECT_THAT(take_sent(), IsEmpty());
    confirm();
    type("abc\r");
    EXPECT_THAT(take_sent(), ElementsAre("MSG_GENERICPID_RESET to C13"));
    g_passwd[0] = '\0';
    choose("3");
    press(KEY_UP);
    leave("C13");
    press(ENTER);
    EXPECT_THAT(take_sent(), IsEmpty());
    EXPECT_FALSE(CURSDIALOG_active());
}

TEST_F(GenericPid, ParametersWithTheirLimits) {
    come_up();
    choose("4");
    for (const char* text : {"P: 4.000000e-01", "I: 1.250000e-02", "D: 3.000000e+00", "[*] Limit P",
                             "[ ] Limit I", "[*] Limit D", "Min:1.000000e-01 Max:9.000000e-01",
                             "Min:9.999000e-99 Max:9.999000e-99", "Min:-1.00000e-03 Max:1.200000e+01"})
        EXPECT_THAT(screen_text(), HasSubstr(text));
    press({KEY_LEFT, ENTER});  // from "Cancel" to "Apply"
    EXPECT_THAT(take_sent(),
                ElementsAre(R"(MSG_GENERICPID_SET_PARMS to C13 {"params":{"p":0.4,"i":0.0125,"d":3},)"
                            R"("min":{"p":0.1,"i":null,"d":-0.001},"max":{"p":0.9,"i":null,"d":12}})"))
        << "values are shortened to their entries, not cut";

    choose("4");
    press_times(TAB, 4);  // around to the first toggle
    press(' ');           // P off
    EXPECT_THAT(screen_text(), HasSubstr("[ ] Limit P"));
    press_times(TAB, 3);
    type(" \t0.5\t0.75\t ");  // I on, D off; its button reads P from now on
    EXPECT_THAT(screen_text(), Not(HasSubstr("Limit D")));
    press_times(TAB, 3);
    press(ENTER);
    EXPECT_THAT(take_sent(), ElementsAre(HasSubstr(R"("min":{"p":null,"i":0.5,"d":null},)"
                                                   R"("max":{"p":null,"i":0.75,"d":null}})")));
}

TEST_F(GenericPid, TuningIsProposedFromTheOutputAndTakesWhatTheOperatorChose) {
    come_up();
    choose("5");
    EXPECT_THAT(screen_text(), HasSubstr("Calculation method: Tyreus-Luyben PID"));
    press({KEY_LEFT, ENTER});
    const std::string start = R"(MSG_GENERICPID_TUNING_START to C13 {"stablity_samples":120,)"
                              R"("stablity_stddev":0.0125,"num_runs":)";
    EXPECT_THAT(take_sent(),
                ElementsAre(start + R"(8,"num_prime":2,"start_out":-2.5,"output_amp":0.625,"param_gen":0})"));

    choose("5\t0\r");
    EXPECT_THAT(screen_text(), AllOf(HasSubstr("Number of runs: 8"), HasSubstr("a number from 1 to 9999")));
    type("12");
    press_times(TAB, 6);
    press(ENTER);  // the list of methods, the present one focused
    EXPECT_THAT(screen_text(), HasSubstr("Ziegler-Nichols P "));
    press_times(KEY_DOWN, 3);
    press(ENTER);
    EXPECT_THAT(screen_text(), HasSubstr("Calculation method: Ziegler-Nichols PI"));
    press(ENTER);
    EXPECT_THAT(screen_text(), HasSubstr("+ Calculation method +"));
    press({ESCAPE, TAB, ENTER});
    EXPECT_THAT(
        take_sent(),
        ElementsAre(start + R"(12,"num_prime":2,"start_out":-2.5,"output_amp":0.625,"param_gen":3})"));
    EXPECT_FALSE(CURSDIALOG_active());
}

}  // namespace
