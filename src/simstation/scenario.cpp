// Reading and checking scenarios.
#include "simstation/scenario.h"

#include <algorithm>
#include <cmath>

#include "libvesk/support/util.h"

namespace {

enum argument { NOTHING, ON_OFF, NUMBER, ASSIGNMENT, TEXT };
enum scope { INSTRUMENT, STATION, ANYBODY };

struct verb_row {
    const char* word;
    SIM_verb verb;
    scope who;
    argument what;
};

constexpr verb_row g_verbs[] = {
    {.word = "comms", .verb = SIM_V_COMMS, .who = INSTRUMENT, .what = ON_OFF},
    {.word = "flags", .verb = SIM_V_FLAGS, .who = INSTRUMENT, .what = NUMBER},
    {.word = "logging", .verb = SIM_V_LOGGING, .who = INSTRUMENT, .what = ON_OFF},
    {.word = "leave", .verb = SIM_V_LEAVE, .who = INSTRUMENT, .what = NOTHING},
    {.word = "join", .verb = SIM_V_JOIN, .who = INSTRUMENT, .what = NOTHING},
    {.word = "set", .verb = SIM_V_SET, .who = INSTRUMENT, .what = ASSIGNMENT},
    {.word = "error", .verb = SIM_V_ERROR, .who = ANYBODY, .what = TEXT},
    {.word = "message", .verb = SIM_V_MESSAGE, .who = STATION, .what = TEXT},
    {.word = "bypass", .verb = SIM_V_BYPASS, .who = STATION, .what = ON_OFF},
    {.word = "contaminate", .verb = SIM_V_CONTAMINATE, .who = STATION, .what = ON_OFF},
    {.word = "quit", .verb = SIM_V_QUIT, .who = STATION, .what = NOTHING},
};

constexpr double HIGHEST_FLAGS = 0xFFFF;

std::string quoted(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

// Up to a "#" that begins the line or follows a blank.
std::string_view without_comment(std::string_view line) {
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '#' && (i == 0 || line[i - 1] == ' ' || line[i - 1] == '\t')) return line.substr(0, i);
    }
    return line;
}

// Takes the first word off the text.
std::string_view next_word(std::string_view& text) {
    const auto end = std::min(text.find_first_of(" \t"), text.size());
    const std::string_view word = text.substr(0, end);
    text = UTIL_trimmed(text.substr(end));
    return word;
}

// "90", "1.5", "02:30", "1:00:00": FALSE for anything else and for what is negative.
BOOL parse_clock(std::string_view text, double* seconds) {
    *seconds = 0;
    for (int parts = 1; parts <= 3; ++parts) {
        const auto colon = text.find(':');
        const std::string_view part = text.substr(0, colon);
        double value = 0;
        if (part.empty() || part.find_first_not_of("0123456789.") != std::string_view::npos) return FALSE;
        if (!UTIL_parse_number(part, &value)) return FALSE;
        if (parts > 1 && value >= 60) return FALSE;
        *seconds = *seconds * 60 + value;
        if (colon == std::string_view::npos) return TRUE;
        text.remove_prefix(colon + 1);
    }
    return FALSE;
}

BOOL parse_when(std::string_view text, double before, double* at) {
    const BOOL relative = text.starts_with('+');
    if (relative) text.remove_prefix(1);
    if (!parse_clock(text, at)) return FALSE;
    if (relative) *at += before;
    return TRUE;
}

// A decimal or hexadecimal (0x) number of 16 bits.
BOOL parse_flags(std::string_view text, double* flags) {
    const BOOL is_hex = text.starts_with("0x");
    const std::string_view digits = is_hex ? text.substr(2) : text;
    const char* const allowed = is_hex ? "0123456789abcdefABCDEF" : "0123456789";
    if (digits.empty() || digits.find_first_not_of(allowed) != std::string_view::npos) return FALSE;
    *flags = std::strtod(std::string(text).c_str(), nullptr);
    return *flags <= HIGHEST_FLAGS;
}

// The fault of the argument, "" for none.
std::string take_argument(argument what, std::string_view text, SIM_event* event) {
    switch (what) {
        case NOTHING:
            return text.empty() ? "" : "nothing follows the event";
        case ON_OFF:
            event->value = SIM_value(text);
            return text == "on" || text == "off" ? "" : "\"on\" or \"off\" follows the event";
        case NUMBER:
            return parse_flags(text, &event->value.number) ? ""
                                                           : "a number from 0 to 0xFFFF follows the event";
        case TEXT:
            event->text = text;
            return text.empty() ? "a text follows the event" : "";
        case ASSIGNMENT:
            break;
    }
    const auto equals = text.find('=');
    if (equals == std::string_view::npos || equals == 0) return "NAME=VALUE follows the event";
    event->text = UTIL_trimmed(text.substr(0, equals));
    event->value = SIM_value(UTIL_trimmed(text.substr(equals + 1)));
    return "";
}

std::string check_scope(scope who, std::string_view target) {
    const BOOL is_station = target == SIM_STATION_TARGET;
    if (who == STATION && !is_station) return "an event of the station only";
    if (who == INSTRUMENT && is_station) return "an event of instruments only";
    return "";
}

// The fault of the line, "" for none.
std::string parse_line(std::string_view line, double before, SIM_event* event) {
    const std::string_view when = next_word(line);
    if (!parse_when(when, before, &event->at)) return quoted(when) + " is no time";
    event->target = next_word(line);
    if (event->target.empty()) return "no target";
    const std::string_view word = next_word(line);
    if (word.empty()) return "no event";
    const auto row = std::find_if(std::begin(g_verbs), std::end(g_verbs),
                                  [&](const verb_row& v) { return word == v.word; });
    if (row == std::end(g_verbs)) return "unknown event " + quoted(word);
    event->verb = row->verb;
    std::string wrong = check_scope(row->who, event->target);
    if (wrong.empty()) wrong = take_argument(row->what, line, event);
    return wrong.empty() ? "" : quoted(word) + ": " + wrong;
}

std::string line_error(int line, const std::string& wrong) {
    return "line " + std::to_string(line) + ": " + wrong;
}

BOOL is_for(const SIM_event& event, const SIM_member& member) {
    return event.target == SIM_EVERYONE_TARGET || event.target == member.name;
}

// The fault of the setting for that kind, "" for none.
std::string check_setting(const SIM_event& event, const SIM_kind& kind) {
    const auto settings = kind.dcl->settings;
    const auto found = std::find_if(settings.begin(), settings.end(),
                                    [&](const SIM_setting& s) { return event.text == s.name; });
    if (found == settings.end()) return std::string(kind.type) + " has no setting " + quoted(event.text);
    if (!found->is_text && std::isnan(event.value.number))
        return quoted(event.value.text) + " is no number and neither on nor off";
    return "";
}

std::string check_event(const SIM_event& event, const std::vector<SIM_member>& members) {
    if (event.target == SIM_STATION_TARGET) return "";
    BOOL found = FALSE;
    for (const SIM_member& member : members) {
        if (!is_for(event, member)) continue;
        found = TRUE;
        if (event.verb != SIM_V_SET) continue;
        const std::string wrong = check_setting(event, *member.kind);
        if (!wrong.empty()) return wrong;
    }
    return found ? "" : "no instrument " + quoted(event.target);
}

}  // namespace

std::vector<SIM_event> SIM_parse_scenario(std::string_view text, std::vector<std::string>* errors) {
    std::vector<SIM_event> events;
    double before = 0;
    int number = 0;
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        const std::string_view line = UTIL_trimmed(without_comment(text.substr(0, end)));
        text.remove_prefix(std::min(end + 1, text.size()));
        ++number;
        if (line.empty()) continue;
        SIM_event event{.at = 0, .target = "", .verb = SIM_V_QUIT, .text = "", .line = number};
        const std::string wrong = parse_line(line, before, &event);
        if (!wrong.empty()) {
            errors->push_back(line_error(number, wrong));
            continue;
        }
        before = event.at;
        events.push_back(std::move(event));
    }
    std::stable_sort(events.begin(), events.end(),
                     [](const SIM_event& a, const SIM_event& b) { return a.at < b.at; });
    return events;
}

void SIM_check_scenario(const std::vector<SIM_event>& events, const std::vector<SIM_member>& members,
                        std::vector<std::string>* errors) {
    for (const SIM_event& event : events) {
        const std::string wrong = check_event(event, members);
        if (!wrong.empty()) errors->push_back(line_error(event.line, wrong));
    }
}

void SIM_play_event(SIM_instrument& instrument, const SIM_event& event) {
    const BOOL on = event.value.number != 0;
    switch (event.verb) {
        case SIM_V_COMMS:
            return instrument.set_comms(on);
        case SIM_V_FLAGS:
            return instrument.set_alarm_flags(static_cast<WORD>(event.value.number));
        case SIM_V_LOGGING:
            return instrument.set_logging(on);
        case SIM_V_SET:
            static_cast<void>(instrument.set(event.text, event.value));
            return;
        case SIM_V_ERROR:
            return instrument.send_error_line("%s", event.text.c_str());
        default:
            return;
    }
}
