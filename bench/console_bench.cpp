// The real console in a terminal of 200x60, with the real server and every kind of instrument: how long it
// takes to start, what it uses, how it follows ten thousand messages a second, and whether its memory stays
// when hours of messages have gone through. One window shows a number that says when it was sent, so that
// what is measured is what an operator sees.
//
//   console_bench [SECONDS_OF_LOAD]
#include <signal.h>
#include <time.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <thread>

#include "libvesk/support/util.h"
#include "station_link.h"
#include "support/station.h"
#include "table.h"

namespace {

using steady = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr double MESSAGES_PER_SECOND = 10000;
constexpr int STARTS = 20;
constexpr int HOURS = 4;
constexpr auto LONG_WAIT = 600s;

[[noreturn]] void die(const std::string& what) {
    std::fprintf(stderr, "console_bench: %s\n", what.c_str());
    std::exit(1);
}

double seconds_since(steady::time_point began) {
    return std::chrono::duration<double>(steady::now() - began).count();
}

// ---- what the system says of a process

double cpu_seconds(pid_t pid) {
    clockid_t clock{};
    timespec used{};
    if (clock_getcpuclockid(pid, &clock) != 0 || clock_gettime(clock, &used) != 0) die("no CPU clock");
    return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) * 1e-9;
}

// In MiB.
double resident(pid_t pid) {
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmRSS:")) return std::atof(line.c_str() + 6) / 1024;
    die("no resident size");
}

std::string mebibytes(const Terminal& terminal) {
    return TABLE_number(resident(terminal.pid()), 2) + " MiB";
}

// ---- the console with everything in view

constexpr TerminalSize SIZE{60, 200};

// Every window that settings can open, side by side as far as there is room.
void write_settings(const Station& station) {
    std::vector<std::string> idents;
    for (const SIM_kind& kind : SIM_kinds()) {
        idents.push_back(std::string(kind.type) + ":" + kind.name);
        if (std::string_view(kind.tags) == "neph") idents.push_back(idents.back() + ".sc");
    }
    idents.insert(idents.end(), {"MESSAGING", "SCRESULTS"});
    std::string text;
    int n = 0;
    const auto set = [&](const std::string& ident, const char* key, const std::string& value) {
        text += "Windows;" + ident + ";" + key + " = " + value + "\n";
    };
    for (const std::string& ident : idents) {
        set(ident, "XPos", std::to_string(n % 6 * 33));
        set(ident, "YPos", std::to_string(n++ / 6 * 9));
        set(ident, "Visible", "TRUE");
    }
    write_file(station.settings_file(), text);
}

void must(const testing::AssertionResult& result) {
    if (!result) die(result.message());
}

std::unique_ptr<Terminal> open_console(Station& station, double* took = nullptr) {
    const auto began = steady::now();
    auto console = station.console({.arguments = {}, .size = SIZE});
    must(console->shows("UTC: "));
    if (took != nullptr) *took = seconds_since(began);
    return console;
}

// The marking instrument's window on top, and the number in it.
class mark {
  public:
    explicit mark(Terminal& terminal) : terminal_(terminal) {
        terminal.press(Key::f5);  // the debug console
        terminal.type("\x05");    // the error strip
        terminal.alt(STATION_link::MARK_KEY);
        must(terminal.wait_for([&] { return locate(); }, "the window of the mark"));
    }
    [[nodiscard]] double number() const {
        const std::string text = inside();
        return text.starts_with(LABEL) ? std::atof(text.c_str() + std::string_view(LABEL).size()) : -1;
    }

  private:
    static constexpr const char* TITLE = "\u2500Mark\u2500";
    static constexpr const char* LABEL = "Last Average:";
    static constexpr int COLUMNS_TO_TITLE = 11;  // from the window's inside
    static constexpr int ROWS_TO_LABEL = 2;

    // The window may be half drawn.
    bool locate() {
        const auto title = terminal_.find(TITLE);
        if (title) place_ = {title->row + ROWS_TO_LABEL, title->col - COLUMNS_TO_TITLE};
        return title && inside().starts_with(LABEL);
    }
    [[nodiscard]] std::string inside() const {
        std::string text;
        for (int x = 0; x < 29; ++x)
            text += terminal_.cell(place_.row, place_.col + x).text;
        return text;
    }
    Terminal& terminal_;
    Terminal::Place place_{};
};

// ---- the measurements

void start_up(Station& station) {
    std::vector<double> times(STARTS);
    for (double& t : times)
        open_console(station, &t);
    std::sort(times.begin(), times.end());
    TABLE_row("start-up to the first screen, median of 20", TABLE_number(times[STARTS / 2] * 1e3, 1) + " ms");
    TABLE_row("start-up to the first screen, longest of 20", TABLE_number(times.back() * 1e3, 1) + " ms");
}

// Sends the messages round and round at a rate, the time since the start now and then.
class load {
  public:
    load(STATION_link& link, const std::vector<STATION_message>& messages, double rate)
        : began_(steady::now()), thread_([this, &link, &messages, rate] { run(link, messages, rate); }) {}
    ~load() {
        stop_ = true;
        thread_.join();
    }
    load(const load&) = delete;
    load& operator=(const load&) = delete;
    [[nodiscard]] double milliseconds() const { return seconds_since(began_) * 1e3; }
    [[nodiscard]] std::size_t sent() const { return sent_; }

  private:
    void run(STATION_link& link, const std::vector<STATION_message>& messages, double rate) {
        while (!stop_) {
            const auto due = static_cast<std::size_t>(seconds_since(began_) * rate);
            while (sent_ < due)
                link.send(messages[sent_++ % messages.size()]);
            link.show(milliseconds());
            link.pump();
            std::this_thread::sleep_for(10ms);
        }
        link.flush();
    }

    steady::time_point began_;
    std::atomic<bool> stop_{false};
    std::atomic<std::size_t> sent_{0};
    std::thread thread_;
};

struct followed {
    double cpu;    // per cent of a core
    double rate;   // messages per second that were really sent
    double first;  // ms: the oldest number that was on the screen, in the first third of the time
    double last;   // and in the last third
};

followed follow(Terminal& terminal, const mark& m, STATION_link& link,
                const std::vector<STATION_message>& messages, double rate, double duration) {
    load l(link, messages, rate);
    must(terminal.wait_for([&] { return l.milliseconds() > 2000; }, "two seconds"));
    const double cpu = cpu_seconds(terminal.pid());
    const std::size_t sent = l.sent();
    const double from = l.milliseconds();
    const double to = from + duration * 1e3;
    followed f{};
    const auto look = [&] {
        const double now = l.milliseconds();
        const double age = now - m.number();
        double* const worst = now < from + (to - from) / 3 ? &f.first
                              : now > to - (to - from) / 3 ? &f.last
                                                           : nullptr;
        if (worst != nullptr) *worst = std::max(*worst, age);
        return now >= to;
    };
    must(terminal.wait_for(look, "the end of the load", LONG_WAIT));
    const double took = (l.milliseconds() - from) / 1e3;
    f.cpu = (cpu_seconds(terminal.pid()) - cpu) / took * 100;
    f.rate = static_cast<double>(l.sent() - sent) / took;
    return f;
}

std::string per_cent(double value) {
    return TABLE_number(value, 2) + " %";
}
std::string milliseconds(double value) {
    return TABLE_number(value) + " ms";
}

void idle_and_loaded(Terminal& terminal, const mark& m, STATION_link& link, STATION_feed& feed,
                     double duration) {
    std::vector<STATION_message> messages;
    for (int i = 0; i < 60; ++i) {
        auto second = feed.next_second();
        std::move(second.begin(), second.end(), std::back_inserter(messages));
    }
    const double ordinary = static_cast<double>(messages.size()) / 60;
    const followed calm = follow(terminal, m, link, messages, ordinary, duration);
    const std::string at_ease = " at " + TABLE_number(calm.rate) + " messages/s";
    TABLE_row("CPU of the console" + at_ease, per_cent(calm.cpu), "", "", "under 1 %");
    TABLE_row("oldest value on the screen" + at_ease, milliseconds(std::max(calm.first, calm.last)));
    const followed busy = follow(terminal, m, link, messages, MESSAGES_PER_SECOND, duration);
    const std::string loaded = " at " + TABLE_number(busy.rate) + " messages/s";
    TABLE_row("CPU of the console" + loaded, per_cent(busy.cpu));
    TABLE_row("oldest value on the screen" + loaded + ", last third", milliseconds(busy.last),
              "first third " + milliseconds(busy.first), TABLE_number(busy.last / busy.first, 2),
              "not growing");
}

// All that a station sends in an hour, as fast as the console takes it.
void an_hour(Terminal& terminal, const mark& m, STATION_link& link, STATION_feed& feed, int number) {
    std::atomic<bool> done{false};
    std::atomic<std::size_t> sent{0};
    std::thread sender([&] {
        for (int i = 0; i < 3600; ++i) {
            for (const STATION_message& message : feed.next_second()) {
                link.send(message);
                ++sent;
            }
            if (i % 10 == 9) link.flush();
        }
        link.show(number);
        link.flush();
        done = true;
    });
    const auto began = steady::now();
    must(terminal.wait_for([&] { return done && m.number() == number; }, "an hour's messages", LONG_WAIT));
    sender.join();
    const std::string hour = "hour " + std::to_string(number) + " of the station's messages";
    TABLE_row(hour + ", taken at", TABLE_number(static_cast<double>(sent) / seconds_since(began)) + "/s", "",
              "", "at least 10000/s");
    TABLE_row("resident size after " + TABLE_number(static_cast<double>(sent)) + " more", mebibytes(terminal),
              "", "", number == 1 ? "" : "as before");
}

}  // namespace

int main(int argc, char** argv) {
    const double duration = argc > 1 ? std::atof(argv[1]) : 20;
    signal(SIGPIPE, SIG_IGN);
    Station station;
    start_up(station);
    write_settings(station);
    STATION_feed feed;
    STATION_link link(feed, station.socket());
    const auto console = open_console(station);
    const mark m(*console);
    TABLE_row("resident size, every kind open", mebibytes(*console), "", "", "under 15 MB");
    idle_and_loaded(*console, m, link, feed, duration);
    for (int hour = 1; hour <= HOURS; ++hour)
        an_hour(*console, m, link, feed, hour);
    return 0;
}
