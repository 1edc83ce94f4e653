// Steps that many journeys share: an instrument that reports, and the operator's ways through menus and
// windows.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "support/station.h"

// The readings of the counter that journeys watch, and the rows that its window shows for them.
[[nodiscard]] std::vector<std::string> counter_lines();
[[nodiscard]] const std::vector<std::string>& counter_rows();
// An instrument "N11", a cpc_3010 with the hot key 'N' and the title "Counter", that has reported them.
[[nodiscard]] std::unique_ptr<Process> start_counter(Station& station);
// The counter reports another reading ("Last reading: ...").
void report_reading(Process& counter, double concentration);

// The console is up: its clock shows, and the status bar begins with these indicators.
[[nodiscard]] testing::AssertionResult is_up(Terminal& console, std::string_view indicators = "");
// All rows of text stand on the screen.
[[nodiscard]] testing::AssertionResult shows_all(Terminal& console, const std::vector<std::string>& rows);
// Brings up the counter's window by its hot key and waits for its readings.
[[nodiscard]] testing::AssertionResult open_counter(Terminal& console);

// In an open dialog: moves the highlight to the button or entry with this label, and presses Enter on it.
[[nodiscard]] testing::AssertionResult highlight(Terminal& console, std::string_view label);
[[nodiscard]] testing::AssertionResult choose(Terminal& console, std::string_view label);
// Opens the main menu and chooses an entry.
[[nodiscard]] testing::AssertionResult choose_from_menu(Terminal& console, std::string_view entry);
// Sets a password through the client options, from none or from `present`.
[[nodiscard]] testing::AssertionResult set_password(Terminal& console, std::string_view password);

// Where the frame of the window with that title has its top left corner.
[[nodiscard]] std::optional<Terminal::Place> corner(const Terminal& console, std::string_view title);
[[nodiscard]] testing::AssertionResult stands_at(Terminal& console, std::string_view title, int row, int col);
// The program has ended with `code` and left its terminal as it found it.
[[nodiscard]] testing::AssertionResult left_restored(Terminal& console, int code = 0);
