// A whole simulated station in memory: one instrument of every kind, second by second, as fast as the caller
// asks for it. What it sends is what a console of a real station would see, message for message.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "simstation/kinds.h"

struct STATION_message {
    const char* source;  // lives as long as the feed
    NETMSG_type msg;
    const NETDSD_entry* dsd;  // null without a payload
    std::vector<char> payload;
};

class STATION_feed {
  public:
    STATION_feed();

    // The first messages of the instruments: announcements and states. Once, before the first second.
    [[nodiscard]] std::vector<STATION_message> join();
    // Everything that they send in the next second.
    [[nodiscard]] std::vector<STATION_message> next_second();
    [[nodiscard]] FTIME now() const { return world_.now; }

  private:
    class sink;
    struct seat {
        std::shared_ptr<sink> out;
        std::unique_ptr<SIM_instrument> instrument;
    };
    SIM_world world_;
    std::vector<STATION_message> sent_;
    std::vector<seat> seats_;
};
