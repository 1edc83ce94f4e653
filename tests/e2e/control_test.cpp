// Controllers from the console: a tuning run on the simulated loop from its start to results that are
// applied, and the commands of the loop controllers and of the flight schedule as others on the link see
// them.
#include <algorithm>
#include <cstdlib>

#include "journey.h"

namespace {

// Simulated seconds per second: a tuning run of a quarter of an hour in a few seconds.
const std::string FAST = "200";

// Opens the menu of the focused window and presses the button.
testing::AssertionResult choose_command(Terminal& console, std::string_view label) {
    console.type("m");
    if (auto result = console.shows("1 Hide window"); !result) return result;
    if (auto result = console.shows(label); !result) return result;
    console.type(label.substr(0, 1));
    return console.hides("1 Hide window");
}

// In a dialog that has just opened, with "Cancel" at its end focused: Tab goes around to its first entry.
// Types the keys and waits until the dialog shows every text, then presses Enter on what has the focus.
testing::AssertionResult fill_in(Terminal& console, std::string_view title, std::string_view keys,
                                 const std::vector<std::string>& texts) {
    if (auto result = console.shows(title); !result) return result;
    console.type(keys);
    if (auto result = shows_all(console, texts); !result) return result;
    console.press(Key::enter);
    return console.hides(title);
}

// The number behind "name": in a line of the monitor.
double number(const std::string& line, const std::string& name) {
    const auto at = line.find("\"" + name + "\":");
    EXPECT_NE(at, std::string::npos) << name << " in " << line;
    return at != std::string::npos ? std::strtod(line.c_str() + at + name.size() + 3, nullptr) : 0;
}

class Tuning : public testing::Test {
  protected:
    void SetUp() override {
        monitor_ = station_.peer({"--monitor", "--only", "MSG_GENERICPID_*"});
        simulated_ = station_.simstation({"--kinds", "genericpid", "--speed", FAST, "--errors", "0"});
        console_ = station_.console({.arguments = {}, .size = {40, 120}});
        ASSERT_TRUE(is_up(*console_, "H"));
        console_->alt('h');
        ASSERT_TRUE(shows_all(*console_, {"T_line:", "V_line_heater:", "SP:  4.5000e+01"}));
    }

    // Lines of readings until so many simulated seconds have passed; calls visit(process value).
    template <class F>
    void watch(double seconds, F visit) {
        double begin = 0;
        for (double now = 0; begin == 0 || now < begin + seconds;) {
            const auto line = monitor_->wait_line({"\"msg\":\"MSG_GENERICPID_INSTANT\""});
            ASSERT_TRUE(line);
            now = number(*line, "start_time");
            if (begin == 0) begin = now;
            visit(number(*line, "pv"));
        }
    }
    // Commands a set point 5 degrees away and returns how far the value went beyond it.
    double overshoot(double from, double to) {
        const std::string value = std::to_string(static_cast<int>(to));
        EXPECT_TRUE(choose_command(*console_, "2 Change setpoint"));
        EXPECT_TRUE(fill_in(*console_, "Change setpoint", "\t" + value + "\t", {"Setpoint:" + value + "__"}));
        EXPECT_TRUE(seen("MSG_GENERICPID_SET", "NET_GENERICPID_Setpoint", {"\"sp\":" + value}));
        double beyond = 0;
        watch(400, [&](double pv) { beyond = std::max(beyond, to > from ? pv - to : to - pv); });
        return beyond;
    }
    // The console's command to the controller alone.
    testing::AssertionResult seen(const std::string& msg, const std::string& record,
                                  const std::vector<std::string>& parts = {}) {
        std::vector<std::string> all{"\"src\":\"CLIENT\"", "\"dest\":\"C13\"", "\"flags\":0",
                                     "\"msg\":\"" + msg + "\"",
                                     "\"record\":" + (record.empty() ? "null" : "\"" + record + "\"")};
        all.insert(all.end(), parts.begin(), parts.end());
        if (monitor_->wait_line(all)) return testing::AssertionSuccess();
        return testing::AssertionFailure() << msg << " was not sent";
    }
    void start_tuning() {
        ASSERT_TRUE(choose_command(*console_, "5 Start tuning sequence"));
        ASSERT_TRUE(fill_in(*console_, "Begin", "\t\t\t3.5\t0.75\t\t0.02\t\t",
                            {"Start output: 3.5__", "amplitude: 7.500000e-01", "stablity: 2.000000e-02"}));
    }

    Station station_;
    std::unique_ptr<Process> monitor_;
    std::unique_ptr<Process> simulated_;
    std::unique_ptr<Terminal> console_;
};

TEST_F(Tuning, FromStartToResultsThatMakeTheLoopBetter) {
    watch(600, [](double) {});
    const double before = overshoot(45, 50);

    start_tuning();
    EXPECT_TRUE(seen("MSG_GENERICPID_TUNING_START", "NET_GENERICPID_TuningRequest",
                     {"\"stablity_samples\":120", "\"stablity_stddev\":0.02", "\"num_runs\":8",
                      "\"num_prime\":2", "\"start_out\":3.5", "\"output_amp\":0.75", "\"param_gen\":0"}));
    EXPECT_TRUE(shows_all(*console_, {"LastRun  P:", "Status:      Waiting"}));
    for (const char state : std::string("123456"))
        EXPECT_TRUE(monitor_->wait_line({"MSG_GENERICPID_TUNING_STATUS", std::string("\"state\":") + state}));
    const auto results = monitor_->wait_line({"MSG_GENERICPID_TUNING_RESULTS", "\"p\":0."});
    ASSERT_TRUE(results);
    EXPECT_TRUE(console_->hides("Status:")) << "the window has shrunk to the results";
    EXPECT_TRUE(shows_all(*console_, {"Params   P:  ", "StdDev   P:  "}));

    ASSERT_TRUE(choose_command(*console_, "4 Change PID parameters"));
    const std::string found = results->substr(results->find("\"params\""));
    std::string keys;
    std::vector<std::string> texts;
    for (const std::string term : {"p", "i", "d"}) {
        const std::string value = std::to_string(number(found, term));
        keys += "\t" + value;
        texts.push_back(": " + value + "__");
    }
    // Past the three rows of limits.
    ASSERT_TRUE(fill_in(*console_, "Change PID Parameters", keys + std::string(10, '\t'), texts));
    EXPECT_TRUE(seen("MSG_GENERICPID_SET_PARMS", "NET_GENERICPID_ControllerParams",
                     {"\"min\":{\"p\":null,\"i\":null,\"d\":null}"}));
    watch(400, [](double) {});
    const double after = overshoot(50, 45);
    EXPECT_LT(after, before / 4) << "beyond the set point, C";
    EXPECT_GT(before, 1);

    ASSERT_TRUE(choose_command(*console_, "3 Reset PID control"));
    ASSERT_TRUE(fill_in(*console_, "Confirm PID Reset", "\t", {"Reset PID control"}));
    EXPECT_TRUE(seen("MSG_GENERICPID_RESET", ""));
    EXPECT_TRUE(console_->hides("StdDev")) << "the window is plain again";
}

TEST_F(Tuning, IsStoppedFromTheMenu) {
    start_tuning();
    EXPECT_TRUE(console_->shows("Status:      Waiting"));
    ASSERT_TRUE(choose_command(*console_, "5 Stop tuning sequence"));
    EXPECT_TRUE(seen("MSG_GENERICPID_TUNING_STOP", ""));
    EXPECT_TRUE(console_->hides("Status:"));
    EXPECT_FALSE(console_->find("StdDev")) << "no results, so the window is plain";
}

TEST(LoopController, TakesItsSetPointFromTheConsole) {
    Station station;
    auto monitor = station.peer({"--monitor", "--only", "MSG_LOVEPID_SET*"});
    auto simulated = station.simstation({"--kinds", "lovepid", "--errors", "0"});
    auto console = station.console();
    ASSERT_TRUE(is_up(*console, "L"));
    console->alt('l');
    ASSERT_TRUE(shows_all(*console, {"Addr      SP", "10   40.00", "2a   18.00"}));
    ASSERT_TRUE(choose_command(*console, "2 Change setpoint"));
    ASSERT_TRUE(console->shows("Address:  10"));
    ASSERT_TRUE(fill_in(*console, "Change setpoint", "\t41.25\t\t", {"Setpoint: 41.25"}));
    EXPECT_TRUE(monitor->wait_line(
        {"\"dest\":\"C11\"", "\"flags\":0", "\"msg\":\"MSG_LOVEPID_SET\"", "\"sp\":41.25", "\"addr\":16"}));
    EXPECT_TRUE(console->shows("10   41.25"));
}

TEST(Schedule, IsDisabledAndResetFromTheConsole) {
    Station station;
    auto monitor = station.peer({"--monitor", "--only", "MSG_VERTICALPROFILE_*"});
    auto simulated = station.simstation({"--kinds", "verticalprofile", "--errors", "0"});
    auto console = station.console();
    ASSERT_TRUE(is_up(*console, "V"));
    console->alt('v');
    ASSERT_TRUE(console->shows("Events:    ENABLED"));
    ASSERT_TRUE(choose_command(*console, "2 Disable scheduled tasks"));
    EXPECT_TRUE(monitor->wait_line(
        {"\"dest\":\"V11\"", "\"flags\":0", "MSG_VERTICALPROFILE_SET_ENABLED", "\"enabled\":false"}));
    EXPECT_TRUE(console->shows("Events:    DISABLED"));
    ASSERT_TRUE(choose_command(*console, "4 Reset tasks to preflight state"));
    EXPECT_TRUE(
        monitor->wait_line({"\"dest\":\"V11\"", "MSG_VERTICALPROFILE_RESETTASKS", "\"payload\":null"}));
    EXPECT_TRUE(console->shows("Last task: NONE"));
}

}  // namespace
