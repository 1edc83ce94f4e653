// The documents' pictures: every kind of the simulated station in every view, and the windows that need no
// instrument. Each screen is brought up by the real programs, in a terminal just as large as its window.
// Where VESK_SCREENS names a folder (docs/images) the pictures there are drawn anew; otherwise what the
// program draws now is compared with them, labels and sizes but not the values, which change.
#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <map>

#include "journey.h"

namespace {

// Room for whatever a window grows to while it is measured.
constexpr TerminalSize ROOMY{50, 120};
constexpr int LEFT = 2, TOP = 1;      // where the window stands
constexpr int RIGHT = 2, BOTTOM = 1;  // what stays free behind it, beside the status line
constexpr int STATUS_COLS = 40;       // an indicator or two, and the time
constexpr long START = 1700049600;    // 12:00:00 UTC, away from the hours at which zeros are due

// ---- comparing pictures

std::string attribute(std::string_view element, std::string_view name) {
    const auto at = element.find(" " + std::string(name) + "=\"");
    if (at == std::string_view::npos) return "";
    element.remove_prefix(at + name.size() + 3);
    return std::string(element.substr(0, element.find('"')));
}

// A word that says what something is: it has a letter, and no digit as values and error words do.
bool is_label(std::string_view word) {
    const auto any = [&](int (*is)(int)) {
        return std::any_of(word.begin(), word.end(),
                           [&](char c) { return is(static_cast<unsigned char>(c)) != 0; });
    };
    return any(std::isalpha) && !any(std::isdigit);
}

std::vector<std::string> labels_in(std::string_view text) {
    std::vector<std::string> words;
    while (!text.empty()) {
        const std::string_view word = text.substr(0, text.find(' '));
        text.remove_prefix(std::min(word.size() + 1, text.size()));
        if (is_label(word)) words.emplace_back(word);
    }
    return words;
}

// The picture's size, then a line for each row of the screen with its labels.
std::string essence(const std::string& svg) {
    std::map<int, std::map<int, std::string>> rows;  // texts by their places
    for (auto at = svg.find("<text xml:space"); at != std::string::npos;
         at = svg.find("<text xml:space", at + 1)) {
        const std::string_view element = std::string_view(svg).substr(at, svg.find("</text>", at) - at);
        rows[std::atoi(attribute(element, "y").c_str())][std::atoi(attribute(element, "x").c_str())] =
            element.substr(element.find('>') + 1);
    }
    std::string result = attribute(svg, "width") + "x" + attribute(svg, "height") + "\n";
    for (const auto& [y, texts] : rows) {
        std::string line;
        for (const auto& [x, text] : texts)
            for (const std::string& word : labels_in(text))
                line += (line.empty() ? "" : " ") + word;
        if (!line.empty()) result += line + "\n";
    }
    return result;
}

// Draws the picture anew, or finds that it still shows what the program does. The time comes up with the
// first tick, half a drawing is none, and a label that depends on what was received comes when that does.
void picture(Terminal& console, const std::string& name) {
    EXPECT_TRUE(console.shows("UTC: ") && console.settles());
    save_screen(console, name);
    if (std::getenv("VESK_SCREENS") != nullptr) return;
    const std::string path = VESK_DOCS "/images/" + name + ".svg";
    const std::string shown = essence(read_file(path));
    const auto now = [&] { return essence(console.svg("vesk.cursclient")); };
    const auto same = console.wait_for([&] { return now() == shown; });
    EXPECT_TRUE(same) << path << " is not what the program draws now; see docs/architecture.md\n"
                      << testing::PrintToString(shown) << "\n"
                      << testing::PrintToString(now());
}

// ---- the terminal

// The frame whose upper left corner is at that place reaches to there; nothing while it is not whole.
std::optional<TerminalSize> frame_end(const Terminal& console, int row, int col) {
    int right = col, bottom = row;
    while (right < console.size().cols && console.cell(row, right).text != "┐")
        ++right;
    while (bottom < console.size().rows - 1 && console.cell(bottom, col).text != "└")
        ++bottom;
    if (right == console.size().cols || bottom == console.size().rows - 1) return std::nullopt;
    return TerminalSize{bottom + 1, right + 1};
}

class ScreensDrawn : public testing::Test {
  protected:
    // A console with the window of that instrument open in its corner.
    void open(const std::string& kind, const std::string& name) {
        const std::string key = "Windows;" + kind + ":" + name + ";";
        write_file(station_.settings_file(), key + "XPos = " + std::to_string(LEFT) + "\n" + key + "YPos = " +
                                                 std::to_string(TOP) + "\n" + key + "Visible = TRUE\n");
        console_ = station_.console({.arguments = {}, .size = ROOMY});
        ASSERT_TRUE(is_up(*console_));
    }
    // The condition holds on a screen that was drawn whole: the clock, which is drawn last, has gone on while
    // it did.
    testing::AssertionResult holds(const std::function<bool()>& condition, const std::string& what) {
        std::string clock;
        return console_->wait_for(
            [&] {
                const std::string now = condition() ? console_->row(console_->size().rows - 1) : "";
                if (clock.empty() || now.empty()) clock = now;
                return now != clock;
            },
            what);
    }
    testing::AssertionResult stands(const std::string& text) {
        return holds([&] { return console_->find(text).has_value(); }, "\"" + text + "\"");
    }
    // Makes the terminal as large as the window in its corner needs it, and waits until that stands there.
    void fit(TerminalSize at_least = {0, 0}) {
        console_->resize(ROOMY);
        std::optional<TerminalSize> end;
        const auto frame = [&] {
            const auto now = frame_end(*console_, TOP, LEFT);
            const bool same = now && end && *now == *end;
            end = now;
            return same;
        };
        ASSERT_TRUE(holds(frame, "a whole window"));
        const TerminalSize wanted = *end;
        const TerminalSize fitting{std::max(wanted.rows + BOTTOM + 1, at_least.rows),
                                   std::max({wanted.cols + RIGHT, at_least.cols, STATUS_COLS})};
        console_->resize(fitting);
        ASSERT_TRUE(holds([&] { return frame_end(*console_, TOP, LEFT) == wanted; },
                          "the same window in a smaller terminal"));
    }

    Station station_;
    std::unique_ptr<Terminal> console_;
};

// ---- what takes more than a key

// The controller while it is tuned, and with what was found. The instrument is the test's own, so that every
// state lasts as long as it looks; the same below.
TEST_F(ScreensDrawn, Tuning) {
    open("genericpid", "C13");
    auto pid = station_.instrument("C13", "genericpid", "Line heater PID", 'H');
    const auto say = [&](const std::string& msg, const std::string& payload) {
        pid->write_line(R"({"msg":"MSG_GENERICPID_)" + msg + R"(","flags":7,"payload":)" + payload + "}");
    };
    const std::string found =
        R"({"params":{"p":0.45081,"i":7.8813e-3,"d":1.8605},"stddev":{"p":1.2366e-3,"i":2.1619e-5,"d":5.1034e-3}})";
    say("INFO", R"({"chan_pv":"T_line","chan_out":"V_line_heater"})");
    say("SETPOINT", R"({"sp":45})");
    say("INSTANT", R"({"pv":47.463,"out":4.1301,"i_val":2.8813,"d_val":0})");
    say("TUNING_INSTANT",
        R"({"pv_stddev":0.62594,"last":{"p":0.44987,"i":7.8649e-3,"d":1.8566},"current":)" + found + "}");
    say("TUNING_STATUS", R"({"state":6,"run":3,"run_max":8})");
    ASSERT_TRUE(console_->shows("Upward sweep"));
    fit();
    ASSERT_TRUE(stands("Status:      Upward sweep"));
    picture(*console_, "displays/genericpid-tuning");
    say("TUNING_RESULTS", found);
    say("TUNING_STATUS", R"({"state":0,"run":0,"run_max":0})");
    ASSERT_TRUE(console_->hides("LastRun"));
    fit();
    ASSERT_TRUE(stands("StdDev   P:"));
    picture(*console_, "displays/genericpid-results");
}

TEST_F(ScreensDrawn, SpanCheck) {
    const auto phase = [](int number, long until) {
        return R"({"msg":"MSG_COMMON_NEPH_SPANCHECK_PHASE","flags":7,"payload":{"phase":)" +
               std::to_string(number) + R"(,"next_time":)" + std::to_string(until) + "}}";
    };
    open("neph", "N11.sc");
    auto neph = station_.instrument("N11", "neph", "Nephelometer", 'N');
    neph->write_line(R"({"msg":"MSG_NEPH_STATUS","flags":7,"payload":{"have_comms":true}})");
    ASSERT_TRUE(console_->shows("No spancheck done or in progress."));
    neph->write_line(phase(2, START + 900));
    ASSERT_TRUE(console_->shows("CO2 will be flushed until 12:15:00"));
    fit();
    picture(*console_, "displays/spancheck");
    console_->resize({24, 80});
    console_->alt('n');
    ASSERT_TRUE(console_->shows("SPANCHECK: FLUSH CO2 UNTIL 12:15:00"));
    neph->write_line(phase(0, -1));
    ASSERT_TRUE(console_->hides("SPANCHECK:"));
    console_->type("m5");
    ASSERT_TRUE(stands("CO2 measure time (sec):300"));
    picture(*console_, "displays/spancheck-begin");
    console_->press(Key::escape);
    ASSERT_TRUE(console_->hides("CO2 measure time"));
    console_->type("\x17\x17");
    ASSERT_TRUE(console_->hides("Nephelometer"));
    neph->write_line(
        R"({"msg":"MSG_COMMON_NEPH_SPANCHECK_RESULTS","flags":1,"payload":{"bsgCO2":[2.75e-5,1.23e-5,4.61e-6],)"
        R"("bbsgCO2":[1.37e-5,6.2e-6,2.33e-6],"pcterrTS":[1.2,-0.8,2.1],"pcterrBS":[-1.5,0.4,3.3],)"
        R"("avgErr":1.55}})");
    ASSERT_TRUE(stands("Average error of all nephs:  1.55"));
    picture(*console_, "displays/spancheck-results");
}

// ---- the console itself

TEST_F(ScreensDrawn, OfTheConsole) {
    console_ = station_.console();
    auto counter = start_counter(station_);
    ASSERT_TRUE(open_counter(*console_));
    console_->type("m");
    ASSERT_TRUE(stands("1 Hide window"));
    picture(*console_, "window-menu");
    console_->press(Key::escape);
    ASSERT_TRUE(console_->hides("1 Hide window"));

    console_->press(Key::enter);
    ASSERT_TRUE(stands("Quit"));
    picture(*console_, "main-menu");
    ASSERT_TRUE(choose(*console_, "Client options"));
    ASSERT_TRUE(stands("Set Password"));
    picture(*console_, "client-options");
    console_->press(Key::escape);
    ASSERT_TRUE(console_->hides("Set Password"));
    ASSERT_TRUE(set_password(*console_, "open sesame"));
    console_->type("\x04");
    ASSERT_TRUE(stands("Flush buffers"));
    picture(*console_, "disk-operations");
    ASSERT_TRUE(choose(*console_, "Start new files"));
    ASSERT_TRUE(console_->shows("Enter password"));
    console_->type("sesame");
    ASSERT_TRUE(stands("******"));
    picture(*console_, "password");
    console_->press(Key::escape);
    ASSERT_TRUE(console_->hides("Enter password"));
}

TEST_F(ScreensDrawn, OfThePersistentWindows) {
    write_file(station_.settings_file(), "Settings;ErrorDisplayTime = 600\n");
    console_ = station_.console();
    auto peer = station_.peer();
    ASSERT_TRUE(is_up(*console_));
    console_->type("\x1bOP");
    ASSERT_TRUE(stands("General keystrokes"));
    picture(*console_, "help");
    console_->press(Key::escape);
    ASSERT_TRUE(console_->hides("General keystrokes"));

    console_->type("\x1b[24~");
    ASSERT_TRUE(console_->shows("Press ENTER to make entry"));
    console_->type("Inlet of N61 cleaned, flow 1.00 lpm before and after.");
    ASSERT_TRUE(stands("before and after."));
    picture(*console_, "log-entry");
    console_->press(Key::escape);
    ASSERT_TRUE(console_->hides("before and after."));

    ASSERT_TRUE(choose_from_menu(*console_, "Messaging"));
    console_->type("CO2 bottle is changed");
    console_->press(Key::enter);
    ASSERT_TRUE(console_->shows(" CO2 bottle is changed"));
    console_->type("Span check at noon?");
    ASSERT_TRUE(stands("Span check at noon?"));
    picture(*console_, "messaging");
    console_->press(Key::escape);
    ASSERT_TRUE(console_->hides("Span check at noon?"));

    peer->write_line(R"({"msg":"MSG_LOG_MONITOR","payload":{"flags":1,"msg":"N61: no response, retrying"}})");
    ASSERT_TRUE(stands("retrying"));
    picture(*console_, "errors");
    console_->type("\x05");
    ASSERT_TRUE(console_->hides("retrying"));
    console_->press(Key::f5);
    ASSERT_TRUE(stands("Standard Error"));
    picture(*console_, "debug");
}

}  // namespace
