// From key to screen: how long it takes from the write of a key until the bytes of the screen that it changes
// have come, and whether Escape and a key behind it are two keys. The real console in a terminal of 200x60
// with every window in view, beside a station at work. Keys come at any moment of a pass.
//
//   key_bench [KEYS]
#include <signal.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <set>

#include "console_station.h"
#include "table.h"

namespace {

using namespace std::chrono_literals;
using steady = std::chrono::steady_clock;

constexpr double BUSY_MESSAGES_PER_SECOND = 1000;

std::string milliseconds(double seconds) {
    return TABLE_number(seconds * 1e3, 1) + " ms";
}

// The times of one kind of key, in seconds.
class samples {
  public:
    void add(double seconds) { times_.push_back(seconds); }
    void print(const std::string& what, const char* median_aim, const char* worst_aim) {
        std::sort(times_.begin(), times_.end());
        TABLE_row(what + ", median of " + std::to_string(times_.size()),
                  milliseconds(times_[times_.size() / 2]), "", "", median_aim);
        TABLE_row(what + ", longest", milliseconds(times_.back()), "", "", worst_aim);
    }

  private:
    std::vector<double> times_;
};

class operator_at_keys {
  public:
    explicit operator_at_keys(Terminal& terminal) : terminal_(terminal) {}

    // Takes output for that long.
    void wait(std::chrono::milliseconds duration) {
        const auto until = steady::now() + duration;
        while (steady::now() < until)
            (void)terminal_.wait_for([] { return false; }, "", 1ms);
    }
    // The same until any moment of a pass.
    void pause() { wait(60ms + std::chrono::milliseconds(random_() % 200)); }
    // Seconds from the write of the keys until the condition holds.
    template <class CONDITION>
    double press(std::string_view keys, CONDITION condition, const char* what) {
        const auto began = steady::now();
        terminal_.type(keys);
        BENCH_must(terminal_.wait_for(condition, what));
        return BENCH_seconds_since(began);
    }
    bool shows(const char* text) { return terminal_.find(text).has_value(); }

  private:
    Terminal& terminal_;
    std::minstd_rand random_{1};
};

constexpr const char* LOG_ENTRY_KEY = "\033[24~";
constexpr const char* LOG_ENTRY = "Online Log Entry";
constexpr const char* ERROR_STRIP_KEY = "\x05";
constexpr const char* ERROR_STRIP = "Recent Errors";
constexpr int COLUMNS_TO_TITLE = 21;  // from the first letter of the entry

// Letters of a log entry, which appear one behind the other.
void letters(Terminal& terminal, const std::string& beside, int keys) {
    static constexpr int IN_A_ROW = 20;
    operator_at_keys hands(terminal);
    const auto shown = [&] { return hands.shows(LOG_ENTRY); };
    samples times;
    for (int i = 0; i < keys; ++i) {
        if (i % IN_A_ROW == 0) hands.press(LOG_ENTRY_KEY, shown, LOG_ENTRY);
        hands.pause();
        const Terminal::Place title = *terminal.find(LOG_ENTRY);
        const int column = title.col - COLUMNS_TO_TITLE + i % IN_A_ROW;
        const std::string letter(1, static_cast<char>('a' + i % 26));
        times.add(hands.press(
            letter, [&] { return terminal.cell(title.row + 1, column).text == letter; }, "a letter"));
        if ((i + 1) % IN_A_ROW == 0)
            hands.press(
                "\033", [&] { return !shown(); }, "no log entry");
    }
    if (shown())
        hands.press(
            "\033", [&] { return !shown(); }, "no log entry");
    times.print("key to screen" + beside, "under 10 ms", "under 25 ms");
}

// Escape closes the log entry: alone, and with a key 100 ms behind it that opens or closes the error strip.
void escapes(Terminal& terminal, int keys) {
    operator_at_keys hands(terminal);
    const auto open = [&] { return hands.shows(LOG_ENTRY); };
    const auto closed = [&] { return !hands.shows(LOG_ENTRY); };
    samples times;
    for (int i = 0; i < keys; ++i) {
        hands.press(LOG_ENTRY_KEY, open, LOG_ENTRY);
        hands.pause();
        times.add(hands.press("\033", closed, "no log entry"));
    }
    times.print("a lone Escape to screen", "", "under 60 ms");
    int understood = 0;
    for (int i = 0; i < keys; ++i) {
        hands.press(LOG_ENTRY_KEY, open, LOG_ENTRY);
        hands.pause();
        const bool strip = hands.shows(ERROR_STRIP);
        terminal.type("\033");
        hands.wait(100ms);
        terminal.type(ERROR_STRIP_KEY);
        hands.wait(500ms);
        if (closed() && hands.shows(ERROR_STRIP) != strip) ++understood;
        if (open()) hands.press("\033", closed, "no log entry");
    }
    TABLE_row("Escape and a key 100 ms later, understood",
              std::to_string(understood) + " of " + std::to_string(keys), "", "", "all");
}

// Passes show themselves in the clock of the debug console, which every one of them draws.
void passes(Terminal& terminal) {
    std::set<std::string> clocks;
    const auto began = steady::now();
    const auto place = terminal.find("Time: ");
    if (!place) BENCH_die("no debug console");
    BENCH_must(terminal.wait_for([&] {
        std::string clock;
        for (int i = 0; i < 22; ++i)
            clock += terminal.cell(place->row, place->col + i).text;
        clocks.insert(clock);
        return steady::now() - began >= 10s;
    }));
    TABLE_row("passes per second when nobody types",
              TABLE_number(static_cast<double>(clocks.size() - 1) / BENCH_seconds_since(began), 1), "", "",
              "5");
}

}  // namespace

int main(int argc, char** argv) {
    const int keys = argc > 1 ? std::atoi(argv[1]) : 200;
    signal(SIGPIPE, SIG_IGN);
    Station station;
    CONSOLE_write_settings(station);
    STATION_feed feed;
    STATION_link link(feed, station.socket());
    const auto console = CONSOLE_open(station);
    const CONSOLE_mark m(*console);
    const std::vector<STATION_message> messages = CONSOLE_minute(feed);
    const double ordinary = static_cast<double>(messages.size()) / 60;
    {
        const CONSOLE_load load(link, messages, ordinary);
        passes(*console);
        letters(*console, " at " + TABLE_number(ordinary) + " messages/s", keys);
        escapes(*console, keys / 5);
    }
    const CONSOLE_load load(link, messages, BUSY_MESSAGES_PER_SECOND);
    letters(*console, " at " + TABLE_number(BUSY_MESSAGES_PER_SECOND) + " messages/s", keys);
    return 0;
}
