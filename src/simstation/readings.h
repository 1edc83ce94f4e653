// The messages of a simulated instrument that reports one set of values: the latest ones with their running
// averages every second, and the mean of each averaging block.
#pragma once

#include "simstation/physics/average.h"
#include "simstation/sim.h"

template <class Instant, class Reading>
class SIM_readings {
  public:
    SIM_readings(NETMSG_type instant, NETMSG_type average) : instant_(instant), average_(average) {}

    // Once per tick; sets the time of the reading.
    void say(SIM_instrument& sim, Reading now) {
        now.start_time = sim.time();
        running_.add(sim.time(), now);
        block_.add(now);
        sim.send_instant(instant_, Instant{now, running_.mean()});
        if (!sim.average_due()) return;
        Reading mean = block_.mean();
        mean.start_time = sim.average_start();
        sim.send_kept(average_, mean);
        block_.reset();
    }

  private:
    NETMSG_type instant_, average_;
    SIM_record_running<Reading> running_;
    SIM_record_block<Reading> block_;
};
