// The real console beside a station at work, for benchmarks: a terminal of 200x60 with every window that
// there is, a number on the screen that says when it was sent, and messages at a rate of one's choice.
#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "station_link.h"
#include "support/station.h"

[[noreturn]] void BENCH_die(const std::string& what);
void BENCH_must(const testing::AssertionResult& result);
[[nodiscard]] double BENCH_seconds_since(std::chrono::steady_clock::time_point began);

// Settings that open every window, side by side as far as there is room.
void CONSOLE_write_settings(const Station& station);
// Starts a console and waits for its first screen; `took` gets the seconds of that, unless null.
std::unique_ptr<Terminal> CONSOLE_open(Station& station, double* took = nullptr);

// The marking instrument's window on top, and the number in it.
class CONSOLE_mark {
  public:
    static constexpr const char* TITLE = "\u2500Mark\u2500";

    explicit CONSOLE_mark(Terminal& terminal);
    [[nodiscard]] double number() const;

  private:
    static constexpr const char* LABEL = "Last Average:";
    static constexpr int COLUMNS_TO_TITLE = 11;  // from the window's inside
    static constexpr int ROWS_TO_LABEL = 2;

    bool locate();
    [[nodiscard]] std::string inside() const;

    Terminal& terminal_;
    Terminal::Place place_{};
};

// Sends the messages round and round at a rate, the time since the start now and then.
class CONSOLE_load {
  public:
    CONSOLE_load(STATION_link& link, const std::vector<STATION_message>& messages, double rate);
    ~CONSOLE_load();
    CONSOLE_load(const CONSOLE_load&) = delete;
    CONSOLE_load& operator=(const CONSOLE_load&) = delete;
    [[nodiscard]] double milliseconds() const { return BENCH_seconds_since(began_) * 1e3; }
    [[nodiscard]] std::size_t sent() const { return sent_; }

  private:
    void run(STATION_link& link, const std::vector<STATION_message>& messages, double rate);

    std::chrono::steady_clock::time_point began_;
    std::atomic<bool> stop_{false};
    std::atomic<std::size_t> sent_{0};
    std::thread thread_;
};

// The messages that a station sends in a minute.
[[nodiscard]] std::vector<STATION_message> CONSOLE_minute(STATION_feed& feed);
