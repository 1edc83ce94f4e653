// The word of a source whose driver has fallen silent. A driver that hangs, or a cable between it and us that
// is pulled, would leave its last reading on every screen as if it were new: after some time without a line
// the source reports lost communications by itself, and takes that back with the next line.
#pragma once

#include <optional>
#include <string>

#include "libvesk/json/json_line.h"
#include "libvesk/messages/kinds.h"

class SILENCE {
  public:
    // `seconds` without a line are silence, counted from `now`; 0: never.
    SILENCE(double seconds, FTIME now) : seconds_(seconds), last_(now) {}

    // A line of the driver's that says nothing: only that it lives.
    [[nodiscard]] std::optional<JSONLINE_message> heard(FTIME now);
    // A message of the driver's, before it is sent. Both return what the source has to say before it.
    [[nodiscard]] std::optional<JSONLINE_message> heard(const JSONLINE_message& m, FTIME now);
    // The message of a source that has been silent for too long: once for every silence.
    [[nodiscard]] std::optional<JSONLINE_message> look(FTIME now);

    // When to look next.
    [[nodiscard]] FTIME deadline() const;
    [[nodiscard]] bool is_silent() const { return silent_; }

  private:
    [[nodiscard]] JSONLINE_message report(bool have_comms, FTIME now) const;

    double seconds_;
    FTIME last_;
    bool silent_ = false;
    bool told_ = false;                       // anything about its communications, by us or by the driver
    const KINDS_row* kind_ = nullptr;         // as announced
    std::optional<JSONLINE_message> status_;  // as the driver told it last
};
