// The counters and sizers of the real simulated station on a real console, and the CCN counter's commands as
// they cross the link.
#include "journey.h"

namespace {

struct shown_window {
    const char* ident;
    int x, y;
    const char* text;  // what stands in it once its instrument has reported
};

// All that count particles, none over another.
constexpr shown_window WINDOWS[] = {
    {"cpc_3010:N61", 0, 0, "Delta T:         1"},
    {"cpc_3022:N62", 32, 0, "Q (lpm):          0.3"},
    {"cpc_3775:N64", 64, 0, "P ambient (hPa): 98"},
    {"cpc_3781:N65", 96, 0, "T Growth:"},
    {"cpc_3783:N66", 128, 0, "T Water (C):          24"},
    {"cpc_bmi1710:N67", 128, 15, "Q Saturator (lpm):       0.3"},
    {"cpc_3703:N63", 0, 19, "Last reading:"},
    {"cpc_pulse:N68", 32, 19, "Last reading:"},
    {"grimm:S11", 0, 27, "cum N(D) - Instantanous"},
    {"lasair:S12", 55, 27, "0.10  0.40    2.00"},
    {"sems:S13", 90, 27, "dN/dlogD, upward sweep"},
    {"ccn:N71", 160, 27, "3    5    8    10"},
};

std::string placed(const shown_window& w) {
    const std::string key = std::string("Windows;") + w.ident;
    return key + ";XPos = " + std::to_string(w.x) + "\n" + key + ";YPos = " + std::to_string(w.y) + "\n" +
           key + ";Visible = TRUE\n";
}

class Sizers : public testing::Test {
  protected:
    void start(const std::string& kinds, TerminalSize size, std::string_view indicators = "") {
        simulated_ = station_.simstation({"--kinds", kinds, "--seed", "7", "--speed", "20"});
        monitor_ = station_.peer({"--monitor", "--only", "MSG_CCN_S*"});
        console_ = station_.console({.arguments = {}, .size = size});
        ASSERT_TRUE(is_up(*console_, indicators));
    }
    // A menu's button, by its hot key, once the menu shows it.
    void choose_in_menu(const char* label) {
        console_->type("m");
        ASSERT_TRUE(console_->shows(label));
        console_->type(std::string_view(label).substr(0, 1));
    }
    // Types into the only entry of the open dialog and presses the button beside "Cancel", which has the
    // focus.
    void enter(std::string_view entry, std::string_view value, std::string_view button) {
        ASSERT_TRUE(highlight(*console_, entry));
        console_->type(value);
        console_->press(Key::enter);
        ASSERT_TRUE(console_->shows(std::string(entry) + std::string(value)));
        ASSERT_TRUE(choose(*console_, button));
        ASSERT_TRUE(console_->hides(button));
    }

    Station station_;
    std::unique_ptr<Process> simulated_;
    std::unique_ptr<Process> monitor_;
    std::unique_ptr<Terminal> console_;
};

TEST_F(Sizers, AllTwelveStandSideBySide) {
    std::string settings, kinds;
    for (const shown_window& w : WINDOWS) {
        const std::string ident = w.ident;
        settings += placed(w);
        kinds += (kinds.empty() ? "" : ",") + ident.substr(0, ident.find(':'));
    }
    write_file(station_.settings_file(), settings);
    start(kinds, {.rows = 52, .cols = 204});
    for (const shown_window& w : WINDOWS)
        EXPECT_TRUE(console_->shows(w.text)) << w.ident;
    EXPECT_TRUE(console_->shows("█")) << "bars";
    EXPECT_FALSE(console_->find("NO COMMS"));
}

TEST_F(Sizers, TheMobilitySizersScreens) {
    start("sems", {.rows = 24, .cols = 80}, "S");
    console_->alt('s');
    ASSERT_TRUE(console_->shows("dN/dlogD, upward sweep"));
    EXPECT_TRUE(console_->shows("█"));
    console_->type("n");
    EXPECT_TRUE(console_->shows("dN/dlogD, downward sweep"));
    EXPECT_TRUE(console_->shows("█"));
    console_->type("t");
    ASSERT_TRUE(console_->shows("(um^3/cm^3)"));
    EXPECT_TRUE(console_->shows("   10   0.000e+00 ----.-      -.-------     -.-------")) << "the blind end";
    console_->type("h");
    EXPECT_TRUE(shows_all(*console_, {"   Upward:  ", " Downward:  ", "Q sheath:          3.0"}));
    EXPECT_TRUE(console_->hides("----")) << "once both sweeps are through";
}

TEST_F(Sizers, TheCcnCountersCommandsAreSentAndDone) {
    start("ccn", {.rows = 26, .cols = 60}, "D");
    console_->alt('d');
    ASSERT_TRUE(console_->shows("cum N(D) - Instantanous"));
    console_->type("h");
    ASSERT_TRUE(console_->shows("Next dT SP:            "));

    choose_in_menu("2 Disable setpoint scanning");
    auto line = monitor_->wait_line({"\"msg\":\"MSG_CCN_SET_SCANNING\""});
    ASSERT_TRUE(line);
    EXPECT_NE(line->find(R"("payload":{"sp":null,"enable":false,"set_enable":true})"), std::string::npos)
        << *line;
    EXPECT_NE(line->find(R"("dest":"N71")"), std::string::npos) << *line;
    EXPECT_TRUE(console_->shows("Next dT SP:         NONE"));

    choose_in_menu("3 Change dT setpoint");
    enter("Setpoint: ", "7.25", "Apply");
    line = monitor_->wait_line({"\"msg\":\"MSG_CCN_SET_SCANNING\""});
    ASSERT_TRUE(line);
    EXPECT_NE(line->find(R"("payload":{"sp":7.25,"enable":true,"set_enable":false})"), std::string::npos)
        << *line;
    EXPECT_TRUE(console_->shows("dT Set/Calc (C):        7.25/"));

    // The same again, and no cycles: neither is sent, as the calibration after them shows.
    choose_in_menu("3 Change dT setpoint");
    enter("Setpoint: ", "7.25", "Apply");
    choose_in_menu("4 Start calibration scans");
    enter("Cycles: ", "0", "<     Start");
    choose_in_menu("4 Start calibration scans");
    enter("Cycles: ", "99", "<     Start");
    line = monitor_->wait_line({"\"src\":\"CLIENT\""});
    ASSERT_TRUE(line);
    EXPECT_NE(line->find("\"msg\":\"MSG_CCN_START_CALIBRATION\""), std::string::npos) << *line;
    EXPECT_NE(line->find(R"("payload":{"cycles":99})"), std::string::npos) << *line;
    EXPECT_TRUE(console_->shows("RUNNING CALIBRATION"));

    choose_in_menu("4 Stop calibration scans");
    line = monitor_->wait_line({"\"src\":\"CLIENT\""});
    ASSERT_TRUE(line);
    EXPECT_NE(line->find("\"msg\":\"MSG_CCN_STOP_CALIBRATION\""), std::string::npos) << *line;
    EXPECT_NE(line->find("\"payload\":null"), std::string::npos) << *line;
    EXPECT_TRUE(console_->hides("RUNNING CALIBRATION"));
}

}  // namespace
