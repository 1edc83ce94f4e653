// Hands messages out to those whom they are for. Frames that came one behind the other and go to the same
// connections are handed out as one run: it is copied once, into blocks that the queues of all of them share.
// Each audience has blocks of its own, so that whoever holds a block needs all that lies behind in it, too.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "server/connection.h"

class FANOUT {
  public:
    // `connections` lives as long as this.
    FANOUT(const CONNECTION_list& connections, std::pmr::memory_resource* memory)
        : connections_(connections), to_all_(memory), to_clients_(memory), to_monitors_(memory) {}

    // A message of those flags and that destination is for this peer.
    [[nodiscard]] static bool is_for(const CONNECTION& to, DWORD flags, std::string_view dest);
    // Adds a frame to the present run, or to a new one; `bytes` lasts until hand_out(). Whoever is over the
    // bound of its queue then holds up `from`, if that is not null.
    void add(DWORD flags, std::string_view dest, FRAME_span bytes, CONNECTION* from);
    // Puts what was added into the queues.
    void hand_out();
    // Somebody has come or gone; what was added has been handed out before.
    void forget_audience() { audience_.known = false; }
    // Gives back the blocks that no queue needs.
    void release_idle();

  private:
    struct audience {
        bool known = false;
        bool all = false;
        std::string dest;
        std::vector<CONNECTION*> members;
        BLOCKS* blocks = nullptr;
        [[nodiscard]] bool is(DWORD flags, std::string_view d) const {
            return known && all == ((flags & FRAME_TO_ALL) != 0) && (all || dest == d);
        }
    };
    void address(DWORD flags, std::string_view dest);

    const CONNECTION_list& connections_;
    BLOCKS to_all_;
    BLOCKS to_clients_;   // and to monitors, as all that follow
    BLOCKS to_monitors_;  // what is for nobody else
    audience audience_;
    FRAME_span run_;
    CONNECTION* from_ = nullptr;
};
