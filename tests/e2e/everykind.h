// A simulated station with an instrument of every kind, and consoles on it that open with every window.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "journey.h"

class EveryKind : public testing::Test {
  protected:
    struct Instrument {
        std::string type;
        std::string name;
    };

    EveryKind();

    [[nodiscard]] Station& station() { return station_; }
    // One of each kind that can be simulated, which is each that has a display.
    [[nodiscard]] const std::vector<Instrument>& instruments() const { return instruments_; }
    // Starts all of them in the simulation.
    void simulate();
    // A console with all windows open, once it is up.
    [[nodiscard]] std::unique_ptr<Terminal> open(TerminalSize size = {50, 160});
    // Every program of the station still runs.
    [[nodiscard]] testing::AssertionResult all_run();

  private:
    void save_layout();

    Station station_;
    std::vector<Instrument> instruments_;
    std::unique_ptr<Process> simulation_;
};

// How long a test with chance in it goes on: `usual`, or the seconds that VESK_STRESS_SECONDS says.
[[nodiscard]] std::chrono::seconds stress_time(std::chrono::seconds usual);
// Where its chance begins: 1, or VESK_STRESS_SEED.
[[nodiscard]] unsigned stress_seed();
