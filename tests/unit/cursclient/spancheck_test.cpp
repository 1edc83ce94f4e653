// The span check as the operator runs it from the nephelometers' displays, whatever their kind: dialogs, the
// choice of instruments, what is sent, the window, and the results of all of them.
#include <limits>

#include "cursclient/kit/spancheck.h"
#include "libvesk/messages/records/log.h"
#include "libvesk/messages/records/neph.h"
#include "support/display_rig.h"

namespace {

using ::testing::_;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class SpanCheck : public DisplayRig {
  protected:
    static void announce_three() {
        announce("N11", "neph", "Dry neph", '1');
        announce("N21", "neph_passive", "Their neph", '2');
        announce("N41", "neph_aurora3000", "Aurora", '4');
    }
    // In the start dialog with Cancel focused: on to "Begin", which stands left of it.
    static void begin() { press({KEY_LEFT, ENTER}); }
    static void open_selection() { press({KEY_UP, KEY_UP, ENTER}); }

    static void phase(const char* source, std::int32_t number, FTIME until = START + 60.9) {
        receive(source, MSG_COMMON_NEPH_SPANCHECK_PHASE, NET_COMMON_Neph_SpancheckPhase{number, until});
    }
    static void result(const char* source, double err) {
        report(
            source, MSG_COMMON_NEPH_SPANCHECK_RESULTS,
            R"({"bsgCO2": [1e-5, 2e-5, 3e-5], "pcterrTS": [-1.5, -0.5, 0.5], "bbsgCO2": [4e-6, 5e-6, 6e-6],)"
            R"("avgErr": )" +
                (VESK_is_missing(err) ? "null" : std::to_string(err)) + "}");
    }
    // Where the start went: "to N11", "flags 1" for all.
    static std::vector<std::string> issued() {
        std::vector<std::string> destinations;
        for (const std::string& s : take_sent())
            if (s.starts_with("MSG_COMMON_NEPH_SPANCHECK_ISSUE "))
                destinations.push_back(s.substr(32, s.find(" {") - 32));
        return destinations;
    }
};

TEST_F(SpanCheck, OfTheOnlyNephelometerGoesToAll) {
    announce("N11", "neph", "Dry neph", '1');
    choose("neph:N11", "5");
    const std::string dialog = screen_text();
    for (const char* text : {"Configure spancheck", "Air flush time (sec):180", "Air measure time (sec):600",
                             "CO2 flush time (sec):600", "CO2 measure time (sec):300"})
        EXPECT_THAT(dialog, HasSubstr(text));
    EXPECT_THAT(dialog, Not(HasSubstr("Select")));
    begin();
    EXPECT_FALSE(CURSDIALOG_active());
    EXPECT_THAT(take_sent(),
                ElementsAre("MSG_COMMON_NEPH_SPANCHECK_ISSUE flags 1 "
                            R"({"end_init_air_flush":1700000180,"end_init_co2_flush":1700000780,)"
                            R"("end_co2_sample":1700001080,"end_sample_air_flush":1700001260,)"
                            R"("end_air_sample":1700001860})",
                            "MSG_COMMON_NEPH_SPANCHECK_DURATION flags 7 "
                            R"({"air_flush":180,"air_sample":600,"co2_flush":600,"co2_sample":300})"));
    EXPECT_TRUE(window("neph:N11.sc")->focused);
}

TEST_F(SpanCheck, DurationsAreThoseLastSharedAndThoseTypedAreSent) {
    announce("N31", "nephM903", "M903", '3');
    receive("CLIENT", MSG_COMMON_NEPH_SPANCHECK_DURATION,
            NET_COMMON_Neph_SpancheckDuration{60, 120, 90, 100});
    receive("CLIENT", MSG_COMMON_NEPH_SPANCHECK_DURATION);  // says nothing
    choose("nephM903:N31", "2");
    EXPECT_THAT(screen_text(), HasSubstr("Air measure time (sec):120"));
    press({KEY_DOWN});  // round to the first entry
    type("10");
    press(KEY_DOWN);
    type("0");                              // rejected
    press({KEY_DOWN, KEY_DOWN, KEY_DOWN});  // the first one only rejects
    type("7");
    press({KEY_DOWN, ENTER});
    EXPECT_THAT(
        take_sent(),
        ElementsAre(HasSubstr(R"("end_air_sample":1700000237})"),  // in 10 + 90 + 7 + 10 + 120 seconds
                    HasSubstr(R"({"air_flush":10,"air_sample":120,"co2_flush":90,"co2_sample":7})")));
}

TEST_F(SpanCheck, NonsenseThatWasSharedIsNotStarted) {
    announce("N11", "neph", "Dry neph", '1');
    const double nan = std::numeric_limits<double>::quiet_NaN();
    receive("N99", MSG_COMMON_NEPH_SPANCHECK_DURATION, NET_COMMON_Neph_SpancheckDuration{60, nan, 90, 1e300});
    choose("neph:N11", "5");
    begin();
    EXPECT_THAT(screen_text(), HasSubstr("Configure spancheck"));
    EXPECT_THAT(take_sent(), IsEmpty());
    type("20");  // the focus went where a time is missing
    press({KEY_DOWN, KEY_DOWN});
    type("30");
    press({KEY_DOWN, ENTER});
    EXPECT_THAT(take_sent(), ElementsAre(_, HasSubstr(R"({"air_flush":60,"air_sample":20,)"
                                                      R"("co2_flush":90,"co2_sample":30})")));
}

TEST_F(SpanCheck, GoesToTheChosenOnes) {
    announce_three();
    choose("neph:N11", "5");
    open_selection();
    press({KEY_UP, KEY_UP, ENTER, KEY_DOWN, ENTER, ENTER, KEY_DOWN, ENTER});
    press(ENTER);  // the selection remembers
    EXPECT_THAT(screen_text(), HasSubstr("[ ] Their neph"));
    EXPECT_THAT(screen_text(), HasSubstr("[*] Aurora"));
    press({ENTER, KEY_DOWN, ENTER});
    EXPECT_THAT(issued(), ElementsAre("to N11", "to N41"));
}

TEST_F(SpanCheck, NoneChosenMeansAllAndTheUntouchedSelectionNamesEachOfThem) {
    announce_three();
    choose("neph_aurora3000:N41", "4");
    open_selection();
    press(ENTER);  // closed untouched
    press({KEY_DOWN, ENTER});
    EXPECT_THAT(issued(), ElementsAre("to N11", "to N21", "to N41"));

    choose("neph_aurora3000:N41", "4");
    open_selection();
    for (int i = 0; i < 3; ++i)
        press({KEY_UP, ENTER});
    for (const char* text : {"[ ] Dry neph", "[ ] Their neph", "[ ] Aurora"})
        EXPECT_THAT(screen_text(), HasSubstr(text));
    press(ESCAPE);
    press({KEY_DOWN, ENTER});
    EXPECT_THAT(issued(), ElementsAre("flags 1")) << "to all";
}

TEST_F(SpanCheck, DisplaysThatGoAreLeftOut) {
    announce_three();
    choose("neph:N11", "5");
    open_selection();
    leave("N41");
    press({KEY_UP, ENTER});  // its button no longer does anything
    press(ESCAPE);
    press({KEY_DOWN, ENTER});
    EXPECT_THAT(issued(), ElementsAre("to N11", "to N21"));

    // The one whose menu it was.
    choose("neph:N11", "5");
    leave("N11");
    begin();
    EXPECT_FALSE(CURSDIALOG_active());
    EXPECT_THAT(take_sent(), IsEmpty());
    EXPECT_EQ(g_running_nephs.count, 1);
    leave("N21");
    EXPECT_EQ(g_running_nephs.count, 0);
}

TEST_F(SpanCheck, IsRefusedWhileTheStationWouldNotMeasure) {
    announce_three();
    announce("N31", "nephM903", "M903", '3');
    const NET_LOG_AVG_Bypass bypassed{TRUE, START};
    const auto refuses = [](const char* ident, const char* button) -> BOOL {
        choose(ident, button);
        const std::string screen = screen_text();
        const BOOL refused = screen.find("Spancheck Error") != std::string::npos;
        EXPECT_THAT(screen, HasSubstr(refused ? "Can't initiate a spancheck while bypassed/contaminated."
                                              : "Configure spancheck"));
        press(refused ? ENTER : ESCAPE);
        EXPECT_FALSE(CURSDIALOG_active());
        return refused;
    };
    receive("N11", MSG_LOG_AVG_BYPASS, bypassed);
    receive(nullptr, MSG_LOG_AVG_BYPASS, bypassed);
    receive("", MSG_LOG_AVG_BYPASS, bypassed);
    receive("LOGGER", MSG_LOG_AVG_BYPASS);
    EXPECT_FALSE(refuses("neph:N11", "5")) << "its own word, nobody's, and no word";
    receive("LOGGER", MSG_LOG_AVG_BYPASS, bypassed);
    EXPECT_TRUE(refuses("neph:N11", "5"));
    EXPECT_FALSE(refuses("neph_aurora3000:N41", "4")) << "asks for contamination";
    EXPECT_FALSE(refuses("nephM903:N31", "2"));
    receive("LOGGER", MSG_LOG_AVG_BYPASS, NET_LOG_AVG_Bypass{FALSE, START});
    receive("LOGGER", MSG_LOG_AVG_CONTAMINATION, NET_LOG_AVG_Contamination{TRUE, START});
    EXPECT_FALSE(refuses("neph:N11", "5"));
    EXPECT_TRUE(refuses("neph_aurora3000:N41", "4"));
    EXPECT_TRUE(refuses("nephM903:N31", "2"));
}

// ---- the window

TEST_F(SpanCheck, TheWindowTellsWhatToDoInEachPhase) {
    constexpr const char* WINDOW = "nephM903:N31.sc";
    announce("N31", "nephM903", "M903", '3');
    receive("N31", MSG_NEPHM903_STATUS, NET_NEPHM903_Status{TRUE});
    EXPECT_EQ(inside(WINDOW), "\nNo spancheck done or in progress.\n");
    EXPECT_THAT(TestScreen::row(window(WINDOW)->win, 0), HasSubstr("-M903 spancheck-"));
    const std::string co2 = R"(
CO2 is now flowing through the nephelometer.  Please set the regulator
output to 25 psi, and verify the flow is 4-5 lpm (8-10 lpm for two neph
systems).  Please make a log entry with the CO2 flowrate and pressure.

)";
    const std::string air = R"(
The CO2 span check is finished.  Please turn off the main valve on the CO2
tank.  The nephelometer is now flushing with filtered air.

)";
    const struct {
        std::int32_t phase;
        std::string text;
        const char* short_name;
    } cases[] = {
        {1, R"(
The nephelometer is now being flushed with filtered air.  If you haven't
already opened the CO2 tank valve, please do so NOW. Please make a log
entry with the tank pressure.

The CO2 span check will begin at 22:14:20
)",
         "F. AIR (INIT)"},
        {2, co2 + "CO2 will be flushed until 22:14:20\n", "F. CO2"},
        {3, co2 + "CO2 flush finished\nCO2 will be sampled until 22:14:20\n", "S. CO2"},
        {4, air + "Air will be flushed until 22:14:20\n", "F. AIR (SMPL)"},
        {5, air + "Air flush finished.\nAir will be sampled until 22:14:20\n", "S. AIR"},
        {6, "\n", ""},
        {-1, "\n", ""},
    };
    for (const auto& c : cases) {
        phase("N31", c.phase);
        EXPECT_EQ(inside(WINDOW), c.text) << c.phase;
        EXPECT_EQ(row("nephM903:N31", 9), std::string(c.short_name) + " UNTIL 22:14:20");
        EXPECT_EQ(SPANCHECK_phase_name(c.phase)[0], c.short_name[0]);
    }
    phase("N32", 1);
    EXPECT_EQ(inside(WINDOW), "\n") << "another's phase";
}

TEST_F(SpanCheck, TheWindowKeepsTheResultsUntilTheNext) {
    constexpr const char* WINDOW = "neph:N11.sc";
    announce("N11", "neph", "Dry neph", '1');
    phase("N11", 5);
    result("N11", 2.345);
    phase("N11", 0, -1);
    const char* const shown = R"(
The air check finished at 22:13:20.  The nephelometer will return to normal
sampling after a zero check.

Results:
            TS_blue   TS_green     TS_red    BS_blue   BS_green     BS_red
  BsgCO2:+1.000e-05 +2.000e-05 +3.000e-05 +4.000e-06 +5.000e-06 +6.000e-06
PctError:-1.500e+00 -5.000e-01 +5.000e-01  -.-------  -.-------  -.-------
Average error:  2.35
)";
    EXPECT_EQ(inside(WINDOW), shown);
    choose("neph:N11", "6");
    EXPECT_TRUE(window(WINDOW)->focused);
    press('m');
    EXPECT_THAT(screen_text(), HasSubstr("5 Begin spancheck")) << "the menu opens from here too";
    press({ESCAPE, ENTER});
    EXPECT_FALSE(window(WINDOW)->visible);
    phase("N11", 1);
    choose("neph:N11", "6");
    press(ENTER);
    EXPECT_TRUE(window(WINDOW)->visible) << "not while one runs: Enter goes on to the main menu";
    EXPECT_THAT(screen_text(), HasSubstr("Quit"));
    press(ESCAPE);
    phase("N11", 0, -1);
    EXPECT_EQ(inside(WINDOW), shown);
}

// ---- the results of all

class SpanCheckResults : public SpanCheck {
  protected:
    static constexpr const char* WINDOW = "SCRESULTS";
    // The rows of values that are there, and the mean of their errors.
    static std::string shown() {
        const std::string text = inside(WINDOW);
        std::size_t n = 0;
        for (std::size_t at = text.find("PctError"); at != std::string::npos;
             at = text.find("PctError", at + 1))
            ++n;
        const std::size_t mean = text.find("nephs: ");
        return std::to_string(n) + "," +
               (mean != std::string::npos ? text.substr(mean + 7, text.find('\n', mean) - mean - 7)
                                          : "clipped");
    }
};

TEST_F(SpanCheckResults, ComeUpWithEveryOneAndGoWithEnter) {
    EXPECT_FALSE(window(WINDOW)->visible);
    EXPECT_EQ(inside(WINDOW), "\n");
    receive("N11", MSG_COMMON_NEPH_SPANCHECK_RESULTS);
    receive("N11", MSG_COMMON_NEPH_SPANCHECK_RESULTS, NET_NEPH_Status{TRUE});
    result(nullptr, 1);
    EXPECT_FALSE(window(WINDOW)->visible);
    result("N11", 1.5);
    EXPECT_TRUE(window(WINDOW)->visible && window(WINDOW)->focused);
    EXPECT_EQ(inside(WINDOW), R"(
            TS_blue   TS_green     TS_red    BS_blue   BS_green     BS_red
  BsgCO2:+1.000e-05 +2.000e-05 +3.000e-05 +4.000e-06 +5.000e-06 +6.000e-06
PctError:-1.500e+00 -5.000e-01 +5.000e-01  -.-------  -.-------  -.-------

Average error of all nephs:  1.50

Press enter to close this window.
)");
    press('z');
    EXPECT_TRUE(window(WINDOW)->visible);
    press(ENTER);
    EXPECT_FALSE(window(WINDOW)->visible);
    result("N12", 2.5);
    EXPECT_TRUE(window(WINDOW)->visible && window(WINDOW)->focused) << "again, though it was closed";
}

TEST_F(SpanCheckResults, BelongTogetherForThirtySecondsAfterTheFirstByName) {
    result("N2", 2);
    result("N3", VESK_MISSING);
    result("N1", 4);
    EXPECT_EQ(shown(), "3, 3.00") << "the mean of those that have an error";
    result("N2", 8);
    EXPECT_EQ(shown(), "3, 6.00") << "replaced";
    set_time(START + 29.9);
    result("N1", 2);
    EXPECT_EQ(shown(), "3, 5.00");
    set_time(START + 59.8);
    result("N3", 1);
    EXPECT_EQ(shown(), "3, 3.67") << "the first by name came 29.9 s ago";
    set_time(START + 59.9);
    result("N3", VESK_MISSING);
    EXPECT_EQ(shown(), "1,--.--") << "30 s: another span check";
    set_time(START);
    result("N4", 1);
    EXPECT_EQ(shown(), "1, 1.00") << "the clock was set back";
    for (const char* source : {"N1", "N2", "N3", "N5", "N6", "N7"})
        result(source, 1);
    EXPECT_EQ(shown(), "6,clipped") << "those that do not fit";
}

}  // namespace
