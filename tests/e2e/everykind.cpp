// The kinds come from the simulation's own list, so that a new one is in these tests at once.
#include "everykind.h"

#include <cstdlib>
#include <sstream>
#include <stdexcept>

namespace {

// Staggered, so that something of every window shows.
constexpr int PER_ROW = 7, STEP_COLS = 18, STEP_ROWS = 9;

// A sanitizer's report would stay in the captured standard error; an abort lets it out.
void abort_on_findings() {
    for (const char* name : {"ASAN_OPTIONS", "UBSAN_OPTIONS"}) {
        const char* present = std::getenv(name);
        setenv(name, (std::string(present != nullptr ? present : "") + ":abort_on_error=1").c_str(), 1);
    }
}

long number_from_environment(const char* name, long otherwise) {
    const char* text = std::getenv(name);
    return text != nullptr ? std::strtol(text, nullptr, 10) : otherwise;
}

}  // namespace

EveryKind::EveryKind() {
    abort_on_findings();
    auto list = station_.start("vesk.simstation", {"--list"});
    if (list->wait_exit() != 0) throw std::runtime_error("vesk.simstation --list: " + list->err());
    std::istringstream lines(list->out());
    for (std::string line; std::getline(lines, line);) {
        Instrument i;
        if (line[0] != ' ' && std::istringstream(line) >> i.type >> i.name) instruments_.push_back(i);
    }
    save_layout();
}

void EveryKind::save_layout() {
    std::vector<std::string> windows{"MESSAGING", "SCRESULTS"};
    for (const Instrument& i : instruments_)
        windows.push_back(i.type + ":" + i.name);
    std::ostringstream settings;
    for (std::size_t i = 0; i < windows.size(); ++i) {
        settings << "Windows;" << windows[i] << ";XPos = " << i % PER_ROW * STEP_COLS << "\nWindows;"
                 << windows[i] << ";YPos = " << i / PER_ROW * STEP_ROWS << "\nWindows;" << windows[i]
                 << ";Visible = TRUE\n";
    }
    write_file(station_.settings_file(), settings.str());
}

void EveryKind::simulate() {
    std::string kinds;
    for (const Instrument& i : instruments_)
        kinds += (kinds.empty() ? "" : ",") + i.type;
    auto monitor = station_.peer();
    simulation_ = station_.simstation({"--kinds", kinds, "--speed", "20", "--seed", "1"});
    for (const Instrument& i : instruments_)
        if (!monitor->wait_line({"MSG_SERVER_INSTRUMENTINFO", "\"" + i.type + "\""}))
            throw std::runtime_error("no " + i.type + ": " + simulation_->err());
}

std::unique_ptr<Terminal> EveryKind::open(TerminalSize size) {
    auto console = station_.console({.arguments = {}, .size = size});
    EXPECT_TRUE(is_up(*console));
    return console;
}

testing::AssertionResult EveryKind::all_run() {
    if (!station_.server().running())
        return testing::AssertionFailure() << "the server ended: " << station_.server().err();
    if (simulation_ && !simulation_->running())
        return testing::AssertionFailure() << "the simulation ended: " << simulation_->err();
    return testing::AssertionSuccess();
}

std::chrono::seconds stress_time(std::chrono::seconds usual) {
    return std::chrono::seconds(number_from_environment("VESK_STRESS_SECONDS", usual.count()));
}

unsigned stress_seed() {
    return static_cast<unsigned>(number_from_environment("VESK_STRESS_SEED", 1));
}
