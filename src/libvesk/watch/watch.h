// The watch over a station: who is there, how each instrument is, since when, its key values, and what
// happened. It is fed with every message of a link and asked by whoever shows a station; it knows no screen
// and no link. An instrument's faults come from its records' descriptors: every member whose value or bit
// means a fault.
#pragma once

#include <array>
#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "libvesk/link/veskmsg.h"
#include "libvesk/watch/keyvalues.h"

enum WATCH_state {  // from well to ill
    WATCH_RUNNING,
    WATCH_SILENT,    // no data for longer than its kind should need
    WATCH_FAULT,     // says itself that something is wrong
    WATCH_GONE,      // its driver has left
    WATCH_NO_COMMS,  // its driver does not reach it
};
[[nodiscard]] const char* WATCH_state_text(WATCH_state state);  // "no comms"

inline constexpr std::size_t WATCH_TREND_MINUTES = 60;
inline constexpr std::size_t WATCH_MAX_EVENTS = 5000;       // beyond, the oldest are dropped
inline constexpr std::size_t WATCH_MAX_INSTRUMENTS = 1000;  // beyond, those longest gone are dropped

// The means of the last minutes of one number.
class WATCH_trend {
  public:
    void add(FTIME now, double value);
    // The mean of the minute that ended so many minutes before `now`'s (0: the present one); VESK_MISSING
    // when nothing came in it. `minutes_ago` is below WATCH_TREND_MINUTES.
    [[nodiscard]] double at(FTIME now, std::size_t minutes_ago) const;

  private:
    struct minute {
        long long number = -1;  // minutes since 1970
        double sum = 0;
        int count = 0;
    };
    std::array<minute, WATCH_TREND_MINUTES> minutes_{};
};

struct WATCH_instrument {
    std::string name;
    NET_SERVER_InstrumentInfo info;
    const KEYVALUES_kind* kind = nullptr;  // null: no row for its kind
    WATCH_state state = WATCH_RUNNING;
    FTIME since = 0;             // of that state
    FTIME heard = -1;            // latest data, -1 for none yet
    std::string fault;           // texts of what is wrong, separated by ", "
    std::vector<double> values;  // one for each of the kind's key values, on the wire's units
    WATCH_trend trend;           // of the first of them

    std::map<NETMSG_type, std::string> faults_by_message = {};  // what each message last complained of
    std::map<NETMSG_type, BOOL> comms_by_message = {};          // FALSE: it said that nothing answers
    std::string fault_noted = {};                               // the texts that the last event told

    [[nodiscard]] double quiet_limit() const { return kind != nullptr ? kind->quiet : KEYVALUES_QUIET; }
};

struct WATCH_event {
    FTIME time;
    std::string source;  // "" for the station
    std::string text;
    WATCH_state severity;  // WATCH_RUNNING for what needs nobody
    BOOL acknowledged;
};

enum WATCH_order { WATCH_WORST_FIRST, WATCH_BY_NAME };

class WATCH {
  public:
    // The instruments that are found within the first seconds after `now` are no news.
    explicit WATCH(FTIME now);

    // Every message of the link, in order. `now` is the clock of whoever watches: ages go by arrival.
    void message(const VESKMSG_proc_msg* pm, FTIME now);
    // Finds out who has become silent; once per pass or second is often enough.
    void tick(FTIME now);
    // Something that happened on this side, such as a command that was sent.
    void note(FTIME now, std::string source, std::string text, WATCH_state severity = WATCH_RUNNING);
    // The link was lost: all instruments are gone until they are announced again.
    void link_lost(FTIME now);

    [[nodiscard]] const std::map<std::string, WATCH_instrument, std::less<>>& instruments() const {
        return instruments_;
    }
    // All of them in that order; the pointers live until the next call that changes the watch.
    [[nodiscard]] std::vector<const WATCH_instrument*> sorted(WATCH_order order) const;
    [[nodiscard]] const WATCH_instrument* find(std::string_view name) const;

    [[nodiscard]] const std::deque<WATCH_event>& events() const { return events_; }  // oldest first
    [[nodiscard]] std::size_t unacknowledged() const { return unacknowledged_; }
    void acknowledge();

  private:
    void announced(const VESKMSG_proc_msg* pm, FTIME now);
    void departed(WATCH_instrument& it, FTIME now);
    void take_values(WATCH_instrument& it, const VESKMSG_proc_msg* pm, FTIME now);
    void take_faults(WATCH_instrument& it, const VESKMSG_proc_msg* pm);
    void judge(WATCH_instrument& it, FTIME now);
    void make_room();

    FTIME born_;
    std::map<std::string, WATCH_instrument, std::less<>> instruments_;
    std::deque<WATCH_event> events_;
    std::size_t unacknowledged_ = 0;
};
