// From lines to events.
#include "peer/recording.h"

#include <algorithm>
#include <cmath>

#include "libvesk/support/util.h"
#include "peer/input.h"
#include "peer/options.h"

namespace {

constexpr const char* CONSOLE = "CLIENT";
// Longer between two looks at the clock: the program was stopped, or the clock was set.
constexpr double LONGEST_STEP = 5;

BOOL is_for_one_instrument(const JSONLINE_message& m) {
    return (m.flags & FRAME_TO_ALL) == 0 && m.dest != CONSOLE;
}

}  // namespace

RECORDING_reader::RECORDING_reader(std::vector<std::string> only, double longest_gap)
    : only_(std::move(only)), longest_gap_(longest_gap), lines_(INPUT_LINE_LIMIT) {}

void RECORDING_reader::feed(std::string_view bytes) {
    lines_.feed(bytes, [this](const LINES_line& line) { take(line); });
}

void RECORDING_reader::finish() {
    lines_.finish([this](const LINES_line& line) { take(line); });
}

void RECORDING_reader::take(const LINES_line& line) {
    if (INPUT_is_blank(line)) return;
    RECORDING_event event;
    std::string error;
    if (!INPUT_read(line, &event.message, &error) || !take_event(&event, &error)) {
        ++counts_.refused;
        return INPUT_complain(line, error);
    }
    const std::string warning = INPUT_warning(event.message);
    if (!warning.empty()) INPUT_complain(line, warning);
    move_time(event.message.time, line);
    event.at = at_;
    if (event.message.src == CONSOLE) {
        ++counts_.of_consoles;
    } else if (!event.leaves && is_for_one_instrument(event.message)) {
        ++counts_.to_instruments;
    } else {
        select(std::move(event));
    }
}

BOOL RECORDING_reader::take_event(RECORDING_event* event, std::string* error) {
    if (!UTIL_valid_source_name(event->message.src)) {
        *error = "no \"src\" that is a name: not from a recording";
        return FALSE;
    }
    event->leaves = event->message.msg->msg == MSG_NOTIFY_CLIENT_TERMINATE;
    return event->leaves || INPUT_may_send(event->message, error);
}

void RECORDING_reader::select(RECORDING_event event) {
    const std::string& source = event.message.src;
    if (event.leaves) {
        held_.erase(source);
        if (on_stage_.erase(source) > 0) events_.push_back(std::move(event));
    } else if (PEER_is_wanted(only_, event.message.msg->name, source.c_str())) {
        announce(std::move(event));
    } else if (event.message.msg->msg == MSG_SERVER_INSTRUMENTINFO) {
        if (on_stage_.contains(source))
            events_.push_back(std::move(event));
        else
            held_.insert_or_assign(source, std::move(event));
    }
}

// Something wanted: what its source announced goes before.
void RECORDING_reader::announce(RECORDING_event event) {
    on_stage_.insert(event.message.src);
    if (auto held = held_.extract(event.message.src)) {
        held.mapped().at = event.at;
        events_.push_back(std::move(held.mapped()));
    }
    events_.push_back(std::move(event));
}

void RECORDING_reader::move_time(FTIME time, const LINES_line& line) {
    if (!std::isfinite(time) || time < 0) return;
    const double gap = VESK_is_missing(last_) ? 0 : time - last_;
    last_ = time;
    at_ += std::clamp(gap, 0.0, longest_gap_);
    if (gap > longest_gap_ && ++counts_.gaps == 1)
        UTIL_complain("line %zu: comes %g s after the line before, played as %g s", line.number, gap,
                      longest_gap_);
}

double RECORDING_position::at(FTIME now) {
    if (!VESK_is_missing(last_)) {
        const double step = now - last_;
        at_ += speed_ * (step <= LONGEST_STEP ? std::max(step, 0.0) : 0);
    }
    last_ = now;
    return at_;
}
