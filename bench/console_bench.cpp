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

#include "console_station.h"
#include "table.h"

namespace {

using steady = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr double MESSAGES_PER_SECOND = 10000;
constexpr int STARTS = 20;
constexpr int HOURS = 4;
constexpr auto LONG_WAIT = 600s;

// ---- what the system says of a process

double cpu_seconds(pid_t pid) {
    clockid_t clock{};
    timespec used{};
    if (clock_getcpuclockid(pid, &clock) != 0 || clock_gettime(clock, &used) != 0) BENCH_die("no CPU clock");
    return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) * 1e-9;
}

// In MiB.
double resident(pid_t pid) {
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmRSS:")) return std::atof(line.c_str() + 6) / 1024;
    BENCH_die("no resident size");
}

std::string mebibytes(const Terminal& terminal) {
    return TABLE_number(resident(terminal.pid()), 2) + " MiB";
}

// ---- the measurements

void start_up(Station& station) {
    std::vector<double> times(STARTS);
    for (double& t : times)
        CONSOLE_open(station, &t);
    std::sort(times.begin(), times.end());
    TABLE_row("start-up to the first screen, median of 20", TABLE_number(times[STARTS / 2] * 1e3, 1) + " ms");
    TABLE_row("start-up to the first screen, longest of 20", TABLE_number(times.back() * 1e3, 1) + " ms");
}

struct followed {
    double cpu;    // per cent of a core
    double rate;   // messages per second that were really sent
    double first;  // ms: the oldest number that was on the screen, in the first third of the time
    double last;   // and in the last third
};

followed follow(Terminal& terminal, const CONSOLE_mark& m, STATION_link& link,
                const std::vector<STATION_message>& messages, double rate, double duration) {
    CONSOLE_load l(link, messages, rate);
    BENCH_must(terminal.wait_for([&] { return l.milliseconds() > 2000; }, "two seconds"));
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
    BENCH_must(terminal.wait_for(look, "the end of the load", LONG_WAIT));
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

void idle_and_loaded(Terminal& terminal, const CONSOLE_mark& m, STATION_link& link, STATION_feed& feed,
                     double duration) {
    const std::vector<STATION_message> messages = CONSOLE_minute(feed);
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
void an_hour(Terminal& terminal, const CONSOLE_mark& m, STATION_link& link, STATION_feed& feed, int number) {
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
    BENCH_must(
        terminal.wait_for([&] { return done && m.number() == number; }, "an hour's messages", LONG_WAIT));
    sender.join();
    const std::string hour = "hour " + std::to_string(number) + " of the station's messages";
    TABLE_row(hour + ", taken at",
              TABLE_number(static_cast<double>(sent) / BENCH_seconds_since(began)) + "/s", "", "",
              "at least 10000/s");
    TABLE_row("resident size after " + TABLE_number(static_cast<double>(sent)) + " more", mebibytes(terminal),
              "", "", number == 1 ? "" : "as before");
}

}  // namespace

int main(int argc, char** argv) {
    const double duration = argc > 1 ? std::atof(argv[1]) : 20;
    signal(SIGPIPE, SIG_IGN);
    Station station;
    start_up(station);
    CONSOLE_write_settings(station);
    STATION_feed feed;
    STATION_link link(feed, station.socket());
    const auto console = CONSOLE_open(station);
    const CONSOLE_mark m(*console);
    TABLE_row("resident size, every kind open", mebibytes(*console), "", "", "under 15 MB");
    idle_and_loaded(*console, m, link, feed, duration);
    for (int hour = 1; hour <= HOURS; ++hour)
        an_hour(*console, m, link, feed, hour);
    return 0;
}
