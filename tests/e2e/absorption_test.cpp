// The filter absorption photometers on the real simulated station: a whole life of the eight-spot filter, and
// the filter changes, with every command as it crosses the link.
#include <csignal>

#include "journey.h"

namespace {

class Absorption : public testing::Test {
  protected:
    // The kinds, in hurried time, with a scenario; the console stands ready, with their indicators and no
    // window.
    void start(const std::string& kinds, std::string_view indicators, const std::string& speed,
               const std::string& scenario = "") {
        const std::string file = station_.folder() / "scenario.txt";
        write_file(file, scenario);
        monitor_ = station_.peer({"--monitor"});
        console_ = station_.console({.arguments = {}, .size = {30, 100}});
        ASSERT_TRUE(is_up(*console_));
        simulated_ =
            station_.simstation({"--kinds", kinds, "--seed", "3", "--speed", speed, "--scenario", file});
        ASSERT_TRUE(is_up(*console_, indicators));
    }
    void choose_in_menu(const char* label) {
        console_->type("m");
        ASSERT_TRUE(console_->shows(label));
        console_->type(std::string_view(label).substr(0, 1));
        ASSERT_TRUE(console_->hides("1 Hide window"));
    }
    // Yes stands left of No, which has the focus.
    void confirm(const char* question) {
        ASSERT_TRUE(console_->shows(question));
        console_->press(Key::left);
        console_->press(Key::enter);
        ASSERT_TRUE(console_->hides(question));
    }
    // A bare command to that instrument has crossed the link, after those that were asked for before.
    void crosses(const std::string& msg, const std::string& dest) {
        EXPECT_TRUE(monitor_->wait_line({R"("src":"CLIENT)", R"("dest":")" + dest + '"', R"("flags":0)",
                                         R"("msg":")" + msg + '"', R"("payload":null)"}))
            << msg;
    }
    // The photometer with eight spots says that it is in that state.
    void reaches(int state) {
        EXPECT_TRUE(monitor_->wait_line(
            {R"("msg":"MSG_CLAP3W_FILTERSTATUS")", R"("status":)" + std::to_string(state) + ","}))
            << "state " << state;
    }

    Station station_;
    std::unique_ptr<Process> monitor_;
    std::unique_ptr<Terminal> console_;
    std::unique_ptr<Process> simulated_;
};

// Flow dialog, with "Cancel" focused: the two buttons are on the row above it, the box above these.
class Flow : public Absorption {
  protected:
    enum lock { RESPECT, OVERRIDE };
    void set_flow(lock locks, const char* button) {
        choose_in_menu("5 Set flow override");
        ASSERT_TRUE(console_->shows("[ ] Override locks"));
        if (locks == OVERRIDE) {
            ASSERT_TRUE(choose(*console_, "[ ] Override locks"));
            ASSERT_TRUE(console_->shows("[*] Override locks"));
        }
        ASSERT_TRUE(choose(*console_, button));
        ASSERT_TRUE(console_->hides("Set Flow Status"));
    }
};

TEST_F(Absorption, AWholeFilterLifeOfThePhotometer) {
    start("clap3w", "F", "60", "0 A13 set loading=1000\n");
    reaches(1);
    reaches(0);
    reaches(1);
    ASSERT_TRUE(console_->never_shows("Transmittance:")) << "nothing asks for attention yet";

    // The demand after the last spot brings the window up, once.
    ASSERT_TRUE(console_->shows("FILTER CHANGE REQUIRED"));
    const auto place = corner(*console_, "CLAP");
    ASSERT_TRUE(place);
    EXPECT_TRUE(console_->wait_for(
        [&] { return console_->cell(place->row, place->col).fg == TERMINAL_YELLOW; }, "the focus"));
    EXPECT_TRUE(console_->shows("Spot:            8"));
    reaches(8);
    console_->press(Key::escape);
    ASSERT_TRUE(console_->hides("FILTER CHANGE REQUIRED"));
    reaches(8);
    EXPECT_TRUE(console_->never_shows("FILTER CHANGE REQUIRED"));

    console_->alt('f');
    ASSERT_TRUE(console_->shows("FILTER CHANGE REQUIRED"));
    choose_in_menu("2 Start filter change");
    crosses("MSG_CLAP3W_FILTERCHANGE", "A13");
    EXPECT_TRUE(console_->shows("Changing filter..."));
    choose_in_menu("2 Stop filter change");
    confirm("Have you finished changing the filter?");
    crosses("MSG_CLAP3W_FILTERCHANGE", "A13");
    reaches(4);
    reaches(1);
    reaches(0);
    simulated_->signal(SIGTERM);
    EXPECT_EQ(simulated_->wait_exit(), 0) << simulated_->err();
    EXPECT_TRUE(console_->hides("Transmittance:"));
}

TEST_F(Absorption, AWhiteFilterCheckFromAChangeOn) {
    start("clap3w", "F", "60");
    console_->alt('f');
    ASSERT_TRUE(console_->shows("Transmittance:"));
    choose_in_menu("2 Start filter change");
    ASSERT_TRUE(console_->shows("Changing filter..."));
    choose_in_menu("3 Switch to white filter check");
    crosses("MSG_CLAP3W_WHITECHANGE", "A13");
    ASSERT_TRUE(console_->shows("White filter check..."));
    choose_in_menu("2 Stop white filter change");
    confirm("Have you finished changing the filter?");
    crosses("MSG_CLAP3W_FILTERCHANGE", "A13");
    reaches(5);
    reaches(1);
    reaches(0);
    choose_in_menu("3 Start white filter check");
    crosses("MSG_CLAP3W_WHITECHANGE", "A13");
    EXPECT_TRUE(console_->shows("White filter check..."));
}

TEST_F(Flow, OffAndOnWithAndWithoutOverride) {
    start("clap3w", "F", "5");
    console_->alt('f');
    ASSERT_TRUE(console_->shows("Transmittance:"));
    set_flow(RESPECT, "Disable Flow");
    crosses("MSG_CLAP3W_NOFLOW", "A13");
    EXPECT_TRUE(console_->shows("FLOW DISABLED ON SPOT "));
    EXPECT_TRUE(console_->shows("Flow (slpm):     0.0"));
    choose_in_menu("4 Advance Spot");
    crosses("MSG_CLAP3W_SPOTADVANCE", "A13");
    EXPECT_TRUE(console_->shows("FLOW DISABLED WITH PENDING SPOT "));
    set_flow(RESPECT, "Enable Flow");
    crosses("MSG_CLAP3W_FLOW", "A13");
    EXPECT_TRUE(console_->shows("Waiting for spot stability..."));
    // While the spot settles, only an override stops the flow.
    set_flow(OVERRIDE, "Disable Flow");
    crosses("MSG_CLAP3W_NOFLOWOVERRIDE", "A13");
    EXPECT_TRUE(console_->shows("FLOW DISABLED WITH PENDING SPOT "));
    set_flow(OVERRIDE, "Enable Flow");
    crosses("MSG_CLAP3W_FLOWOVERRIDE", "A13");
    EXPECT_TRUE(console_->hides("FLOW DISABLED"));
    EXPECT_TRUE(console_->shows("Flow (slpm):     0.8"));
}

TEST_F(Absorption, AllSevenViewsShowTheStationsReadings) {
    start("clap3w", "F", "60", "0:30 A13 flags 0x0100\n");
    console_->alt('f');
    // The averages of the first minute complete the standard view.
    ASSERT_TRUE(
        console_->wait_for([&] { return console_->find("Bap (1/Mm,avg)") && !console_->find("-.--"); },
                           "a view without missing values"));
    EXPECT_TRUE(shows_all(*console_, {"Flags:        0100", "Volts:      3.", "Tcase (C):"}));
    for (const std::string name : {"I", "Ig", "In", "Ing", "Irw", "Irz"}) {
        console_->type("d");
        ASSERT_TRUE(console_->shows(name + " spot 8:")) << name;
        EXPECT_FALSE(console_->find("-.--")) << name;
    }
}

TEST_F(Absorption, AFaultIsTheReasonOfADemandedWhiteFilterCheck) {
    start("clap3w", "F", "60", "0:30 A13 flags 0x0100\n0:31 A13 set demand=9\n");
    reaches(9);
    console_->alt('f');
    EXPECT_TRUE(shows_all(*console_, {"Flags:        0100", "FILTER OR LED ERROR"}));
}

TEST_F(Absorption, ThePsapsChangeTheirFilters) {
    struct case_row {
        const char *name, *prefix;
        char key;
        const char* new_filter;
    };
    start("psap,psap3", "BQ", "20");
    for (const case_row& c : {case_row{"A11", "MSG_PSAP_", 'b', "Transmittance:   1.000"},
                              case_row{"A12", "MSG_PSAP3_", 'q', "Transmittance:      1.000        1.000"}}) {
        const auto sets = [&](const char* changing) {
            const std::string flag = std::string(R"("changing_filter":)") + changing;
            EXPECT_TRUE(
                monitor_->wait_line({R"("src":"CLIENT)", std::string(R"("dest":")") + c.name, R"("flags":0)",
                                     c.prefix + std::string("SETFILTERSATUS"), flag}));
            EXPECT_TRUE(monitor_->wait_line({c.prefix + std::string("FILTERSTATUS"), flag}));
        };
        console_->alt(c.key);
        ASSERT_TRUE(console_->shows("Flow (slpm):"));
        choose_in_menu("2 Start filter change");
        sets("true");
        EXPECT_TRUE(console_->shows("Changing filter..."));
        choose_in_menu("2 Stop filter change");
        confirm("Have you pressed 'RESET Transmitance'?");
        sets("false");
        EXPECT_TRUE(console_->hides("Changing filter..."));
        EXPECT_TRUE(console_->shows(c.new_filter));
        console_->press(Key::escape);
        ASSERT_TRUE(console_->hides("Flow (slpm):"));
    }
}

TEST_F(Absorption, TapesAdvanceAndCavitiesAreZeroedOnCommand) {
    start("aethalometer,maap,caps,pax", "CEMP", "60");
    struct case_row {
        char key;
        const char *name, *first_row, *screen, *button, *command, *dest, *answer;
    };
    // Each shows what it measures; those that take a command answer it.
    for (const case_row& c : {
             case_row{'e', "Aethalometer", "370", "aethalometer", nullptr, nullptr, nullptr, nullptr},
             case_row{'m', "MAAP", "BC conc (ug/m3):", "maap", "Advance filter tape", "MSG_MAAP_ADVANCE",
                      "A82", "MSG_MAAP_FILTER"},
             case_row{'c', "CAPS", "Extinction (1/Mm):", "caps", "2 Start zero now", "MSG_CAPS_ISSUE_ZERO",
                      "E71", "MSG_CAPS_ZERO"},
             case_row{'p', "PAX", "Scattering (Mm-1):", "pax", nullptr, nullptr, nullptr, nullptr},
         }) {
        SCOPED_TRACE(c.name);
        console_->alt(c.key);
        ASSERT_TRUE(console_->shows(c.first_row));
        if (c.button != nullptr) {
            console_->type("m");
            ASSERT_TRUE(choose(*console_, c.button));
            crosses(c.command, c.dest);
            EXPECT_TRUE(monitor_->wait_line({std::string(R"("src":")") + c.dest, c.answer}));
        }
        EXPECT_TRUE(console_->hides("-.--")) << "reported";
        console_->press(Key::escape);
        ASSERT_TRUE(console_->hides(c.first_row));
    }
}

}  // namespace
