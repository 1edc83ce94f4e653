// The state that all instruments of one simulated station share: the settings, the simulated clock and the
// air.
#pragma once

#include <cstdint>

#include "simstation/physics/air.h"

struct SIM_settings {
    std::uint64_t seed = 1;
    int average_seconds = 60;  // length of the blocks that averages are made of, aligned to the epoch
};

struct SIM_world {
    // `start` is cut to a whole second.
    SIM_world(const SIM_settings& s, FTIME start)
        : settings(s), now(static_cast<FTIME>(static_cast<std::int64_t>(start))), air(s.seed) {
        air.advance(now, TICK);
    }
    // One simulated second passes.
    void advance() {
        now += TICK;
        air.advance(now, TICK);
    }

    static constexpr double TICK = 1;
    SIM_settings settings;
    FTIME now;
    SIM_air air;
};
