#include "console_station.h"

#include <cstdio>
#include <cstdlib>
#include <iterator>

using namespace std::chrono_literals;
using steady = std::chrono::steady_clock;

namespace {

constexpr TerminalSize SIZE{60, 200};

}  // namespace

void BENCH_die(const std::string& what) {
    std::fprintf(stderr, "benchmark: %s\n", what.c_str());
    std::exit(1);
}

void BENCH_must(const testing::AssertionResult& result) {
    if (!result) BENCH_die(result.message());
}

double BENCH_seconds_since(steady::time_point began) {
    return std::chrono::duration<double>(steady::now() - began).count();
}

void CONSOLE_write_settings(const Station& station) {
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

std::unique_ptr<Terminal> CONSOLE_open(Station& station, double* took) {
    const auto began = steady::now();
    auto console = station.console({.arguments = {}, .size = SIZE});
    BENCH_must(console->shows("UTC: "));
    if (took != nullptr) *took = BENCH_seconds_since(began);
    return console;
}

CONSOLE_mark::CONSOLE_mark(Terminal& terminal) : terminal_(terminal) {
    terminal.press(Key::f5);  // the debug console
    terminal.type("\x05");    // the error strip
    terminal.alt(STATION_link::MARK_KEY);
    BENCH_must(terminal.wait_for([&] { return locate(); }, "the window of the mark"));
}

double CONSOLE_mark::number() const {
    const std::string text = inside();
    return text.starts_with(LABEL) ? std::atof(text.c_str() + std::string_view(LABEL).size()) : -1;
}

// The window may be half drawn.
bool CONSOLE_mark::locate() {
    const auto title = terminal_.find(TITLE);
    if (title) place_ = {title->row + ROWS_TO_LABEL, title->col - COLUMNS_TO_TITLE};
    return title && inside().starts_with(LABEL);
}

std::string CONSOLE_mark::inside() const {
    std::string text;
    for (int x = 0; x < 29; ++x)
        text += terminal_.cell(place_.row, place_.col + x).text;
    return text;
}

CONSOLE_load::CONSOLE_load(STATION_link& link, const std::vector<STATION_message>& messages, double rate)
    : began_(steady::now()), thread_([this, &link, &messages, rate] { run(link, messages, rate); }) {}

CONSOLE_load::~CONSOLE_load() {
    stop_ = true;
    thread_.join();
}

void CONSOLE_load::run(STATION_link& link, const std::vector<STATION_message>& messages, double rate) {
    while (!stop_) {
        const auto due = static_cast<std::size_t>(BENCH_seconds_since(began_) * rate);
        while (sent_ < due)
            link.send(messages[sent_++ % messages.size()]);
        link.show(milliseconds());
        link.pump();
        std::this_thread::sleep_for(10ms);
    }
    link.flush();
}

std::vector<STATION_message> CONSOLE_minute(STATION_feed& feed) {
    std::vector<STATION_message> messages;
    for (int i = 0; i < 60; ++i) {
        auto second = feed.next_second();
        std::move(second.begin(), second.end(), std::back_inserter(messages));
    }
    return messages;
}
