// The time by which a link lives: heartbeats, silence, time-outs. It follows UTIL_ftime, but neither a clock
// that is set nor a process that was stopped can make it leap, for a leap would look like silence.
#pragma once

#include <algorithm>

#include "libvesk/support/util.h"

inline constexpr double LINKTIME_HEARTBEAT = 5.0;  // seconds between two heartbeats
inline constexpr double LINKTIME_SILENCE = 30.0;   // seconds without a byte until a link counts as down

class LINKTIME {
  public:
    // `most` bounds the seconds that may pass between two looks.
    explicit LINKTIME(double most) : most_(most), last_(UTIL_ftime()) {}
    // Seconds of link time.
    [[nodiscard]] double now() const { return now_; }
    double look() {
        const FTIME clock = UTIL_ftime();
        now_ += std::clamp(clock - last_, 0.0, most_);
        last_ = clock;
        return now_;
    }

  private:
    double most_;
    FTIME last_;
    double now_ = 0.0;
};
