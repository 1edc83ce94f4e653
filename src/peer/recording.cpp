// From lines to events.
#include "peer/recording.h"

#include <algorithm>
#include <cmath>

#include "libvesk/util.h"
#include "peer/input.h"
#include "peer/options.h"

namespace {

constexpr const char* CONSOLE = "CLIENT";
// Longer between two looks at the clock: the program was stopped, or the clock was set.
constexpr double LONGEST_STEP = 5;

BOOL is_for_one_instrument(const JSONLINE_message& m) {
    return (m.flags & VESKMSG_TO_ALL) == 0 && m.dest != CONSOLE;
}

}  // namespace

RECORDING_reader::RECORDING_reader(std::vector<std::string> only)
    : m_only(std::move(only)), m_lines(INPUT_LINE_LIMIT) {}

void RECORDING_reader::feed(std::string_view bytes) {
    m_lines.feed(bytes, [this](const LINES_line& line) { take(line); });
}

void RECORDING_reader::finish() {
    m_lines.finish([this](const LINES_line& line) { take(line); });
}

void RECORDING_reader::take(const LINES_line& line) {
    if (INPUT_is_blank(line)) return;
    RECORDING_event event;
    std::string error;
    if (!INPUT_read(line, &event.message, &error) || !take_event(&event, &error)) {
        ++m_counts.refused;
        return INPUT_complain(line, error);
    }
    move_time(event.message.time);
    event.at = m_at;
    if (event.message.src == CONSOLE) {
        ++m_counts.of_consoles;
    } else if (!event.leaves && is_for_one_instrument(event.message)) {
        ++m_counts.to_instruments;
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
        m_held.erase(source);
        if (m_on_stage.erase(source) > 0) m_events.push_back(std::move(event));
    } else if (PEER_is_wanted(m_only, event.message.msg->name, source.c_str())) {
        announce(std::move(event));
    } else if (event.message.msg->msg == MSG_SERVER_INSTRUMENTINFO) {
        if (m_on_stage.contains(source))
            m_events.push_back(std::move(event));
        else
            m_held.insert_or_assign(source, std::move(event));
    }
}

// Something wanted: what its source announced goes before.
void RECORDING_reader::announce(RECORDING_event event) {
    m_on_stage.insert(event.message.src);
    if (auto held = m_held.extract(event.message.src)) {
        held.mapped().at = event.at;
        m_events.push_back(std::move(held.mapped()));
    }
    m_events.push_back(std::move(event));
}

void RECORDING_reader::move_time(FTIME time) {
    if (!std::isfinite(time) || time < 0) return;
    if (!VESK_is_missing(m_last)) m_at += std::max(time - m_last, 0.0);
    m_last = time;
}

double RECORDING_position::at(FTIME now) {
    if (!VESK_is_missing(m_last)) {
        const double step = now - m_last;
        m_at += m_speed * (step <= LONGEST_STEP ? std::max(step, 0.0) : 0);
    }
    m_last = now;
    return m_at;
}
