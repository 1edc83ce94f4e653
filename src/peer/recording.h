// A recording, which is what --monitor printed, as the events of a play: what each instrument said to all or
// to consoles, and when it left. What consoles said and what was for one instrument alone is left out: there
// is nobody now to obey it, or the wrong one.
#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "libvesk/json/json_line.h"
#include "peer/lines.h"

struct RECORDING_event {
    double at = 0;             // seconds since the first line; never less than of the event before
    BOOL leaves = FALSE;       // the source's connection ended; else it said `message`
    JSONLINE_message message;  // names the source
};

// Lines that are no events.
struct RECORDING_counts {
    std::size_t refused = 0;         // wrong ones
    std::size_t of_consoles = 0;     // said by a console
    std::size_t to_instruments = 0;  // said by one instrument to another alone
    std::size_t gaps = 0;            // longer than the longest
};

class RECORDING_reader {
  public:
    // Messages whose name or source matches one of the patterns are events; all when there are none.
    // Announcements and departures are events of every source that has others.
    // Between two lines pass `longest_gap` seconds at most, whatever their times say: a clock that was set
    // during the recording would hold up the play for ever. The first such gap is told on standard error.
    RECORDING_reader(std::vector<std::string> only, double longest_gap);

    // Takes bytes of the recording; each wrong line is told on standard error.
    void feed(std::string_view bytes);
    void finish();  // at the end of the recording

    // Events read and not yet taken.
    [[nodiscard]] std::deque<RECORDING_event>& events() { return events_; }
    [[nodiscard]] const RECORDING_counts& counts() const { return counts_; }

  private:
    void take(const LINES_line& line);
    [[nodiscard]] BOOL take_event(RECORDING_event* event, std::string* error);
    void select(RECORDING_event event);
    void announce(RECORDING_event event);
    void move_time(FTIME time, const LINES_line& line);

    std::vector<std::string> only_;
    double longest_gap_;
    LINES_reader lines_;
    std::deque<RECORDING_event> events_;
    RECORDING_counts counts_;
    std::set<std::string> on_stage_;               // sources of events
    std::map<std::string, RECORDING_event> held_;  // announcements of those that may yet become one
    double at_ = 0;
    FTIME last_ = VESK_MISSING;
};

// How far a play has come. Time in which the program was stopped is not made up for, and a clock that is set
// moves nothing.
class RECORDING_position {
  public:
    explicit RECORDING_position(double speed) : speed_(speed) {}
    // Seconds of the recording at real time `now`; 0 at the first call.
    double at(FTIME now);

  private:
    double speed_;
    double at_ = 0;
    FTIME last_ = VESK_MISSING;
};
