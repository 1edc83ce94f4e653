// Steps that journeys share. Each waits for what it caused, so that the next one finds it done.
#include "journey.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <set>
#include <tuple>

namespace {

constexpr int MENU_STEPS = 40;  // more than any menu has entries

// Bold yellow, or in reverse video where there are no colours.
bool is_highlighted(const TerminalCell& cell) {
    return (cell.bold && cell.fg == TERMINAL_YELLOW) || cell.reverse;
}

using Cells = std::set<std::tuple<int, int, std::string>>;

// The highlighted cells above the status bar: row, column, text.
Cells highlights(const Terminal& console) {
    Cells result;
    for (int row = 0; row < console.size().rows - 1; ++row) {
        for (int col = 0; col < console.size().cols; ++col) {
            const TerminalCell cell = console.cell(row, col);
            if (is_highlighted(cell)) result.emplace(row, col, cell.text);
        }
    }
    return result;
}

// Some cell is highlighted that was not before. (That others are no longer may be half of a drawing.)
bool has_moved(const Terminal& console, const Cells& before) {
    const Cells now = highlights(console);
    return std::any_of(now.begin(), now.end(), [&](const auto& cell) { return !before.contains(cell); });
}

// All of the label: hot keys are highlighted in every button.
bool is_highlighted(const Terminal& console, std::string_view label) {
    const auto place = console.find(label);
    if (!place) return false;
    for (int i = 0; i < static_cast<int>(label.size()); ++i) {
        if (!is_highlighted(console.cell(place->row, place->col + i))) return false;
    }
    return true;
}

}  // namespace

std::vector<std::string> counter_lines() {
    return {
        R"({"msg":"MSG_CPC_3010_AVERAGE","flags":7,"payload":
            {"concentration":1180,"stddev_concentration":120.5}})",
        R"({"msg":"MSG_CPC_3010_INSTANT","flags":7,"payload":{"concentration":1234.5,
            "display_concentration":1230,"T_condenser":20.9,"T_saturator":38.1,
            "running":{"concentration":1200.1,"stddev_concentration":12.34}}})",
        R"({"msg":"MSG_CPC_3010_STATUS","flags":7,"payload":{"have_comms":true}})",
    };
}

const std::vector<std::string>& counter_rows() {
    static const std::vector<std::string> ROWS{
        "Last Average:  1180.0  120.50", "Running Avg:   1200.1   12.34", "Last reading:  1234.5",
        "Display Conc:  1230.0",         "T Saturator:     38.1",         "T Condenser:     20.9",
        "Delta T:         17.2",
    };
    return ROWS;
}

std::unique_ptr<Process> start_counter(Station& station) {
    auto counter = station.instrument("N11", "cpc_3010", "Counter", 'N');
    for (std::string line : counter_lines()) {
        std::erase(line, '\n');
        counter->write_line(line);
    }
    return counter;
}

void report_reading(Process& counter, double concentration) {
    counter.write_line(R"({"msg":"MSG_CPC_3010_INSTANT","flags":7,"payload":{"concentration":)" +
                       std::to_string(concentration) + "}}");
}

testing::AssertionResult is_up(Terminal& console, std::string_view indicators) {
    const auto up = [&] {
        return console.find("UTC: ") &&
               console.row(console.size().rows - 1).substr(0, indicators.size()) == indicators;
    };
    return console.wait_for(up, "the status bar with \"" + std::string(indicators) + "\"");
}

testing::AssertionResult shows_all(Terminal& console, const std::vector<std::string>& rows) {
    for (const std::string& row : rows) {
        if (auto result = console.shows(row); !result) return result;
    }
    return testing::AssertionSuccess();
}

testing::AssertionResult open_counter(Terminal& console) {
    if (auto result = is_up(console, "N"); !result) return result;
    console.alt('n');
    return shows_all(console, counter_rows());
}

testing::AssertionResult highlight(Terminal& console, std::string_view label) {
    if (auto result = console.shows(label); !result) return result;
    // Half a drawing would count as a step.
    if (auto result = console.settles(); !result) return result;
    for (int step = 0; step < MENU_STEPS && !is_highlighted(console, label); ++step) {
        const Cells before = highlights(console);
        console.press(Key::down);
        auto moved = console.wait_for([&] { return has_moved(console, before); }, "the highlight to move");
        if (!moved) return moved;
        if (auto result = console.settles(); !result) return result;
    }
    return console.wait_for([&] { return is_highlighted(console, label); },
                            "the highlight on \"" + std::string(label) + "\"");
}

testing::AssertionResult choose(Terminal& console, std::string_view label) {
    auto result = highlight(console, label);
    if (result) console.press(Key::enter);
    return result;
}

testing::AssertionResult choose_from_menu(Terminal& console, std::string_view entry) {
    console.press(Key::enter);
    if (auto result = console.shows("Quit"); !result) return result;
    return choose(console, entry);
}

testing::AssertionResult set_password(Terminal& console, std::string_view password) {
    if (auto result = choose_from_menu(console, "Client options"); !result) return result;
    if (auto result = choose(console, "Set Password"); !result) return result;
    if (auto result = highlight(console, "Password: "); !result) return result;
    console.type(password);
    if (auto result = console.shows(password); !result) return result;
    console.press(Key::enter);
    if (auto result = choose(console, "OK"); !result) return result;
    if (auto result = console.hides("Set password"); !result) return result;
    if (auto result = choose(console, "Close"); !result) return result;
    return console.hides("Client options");
}

std::optional<Terminal::Place> corner(const Terminal& console, std::string_view title) {
    auto place = console.find(title);
    while (place && console.cell(place->row, place->col).text != "┌") {
        if (--place->col < 0) return std::nullopt;
    }
    return place;
}

testing::AssertionResult stands_at(Terminal& console, std::string_view title, int row, int col) {
    const auto there = [&] {
        const auto place = corner(console, title);
        return place && place->row == row && place->col == col;
    };
    return console.wait_for(there, "\"" + std::string(title) + "\" at row " + std::to_string(row) +
                                       ", column " + std::to_string(col));
}

testing::AssertionResult left_restored(Terminal& console, int code) {
    if (auto result = console.exits_with(code); !result) return result;
    if (console.alternate_screen()) return testing::AssertionFailure() << "on the alternate screen";
    if (!console.cursor_visible()) return testing::AssertionFailure() << "the cursor is hidden";
    if (console.settings_changed()) return testing::AssertionFailure() << "the line settings changed";
    return testing::AssertionSuccess();
}
