// A software control loop in numbers alone: the process that it acts on, and the PID controller.
#pragma once

#include <deque>

#include "libvesk/messages/records/genericpid.h"

// A process with dead time: what the output does to it begins only after a while, and then comes as a first
// order lag.
class SIM_plant {
  public:
    // gain: change of the value for an output of 1; dead_time and lag in seconds; rest: value without output.
    SIM_plant(double gain, double dead_time, double lag, double rest);
    // One step of dt seconds (always the same) with that output; `load` moves the value's goal.
    double step(double out, double load, double dt);
    [[nodiscard]] double value() const { return value_; }

  private:
    double gain_, dead_time_, lag_, rest_;
    double value_;
    std::deque<double> under_way_;  // outputs that have not reached the process yet
};

// The controller: out = p e + i * integral of e - d * rate of the process value, e = set point - value. The
// rate is the value's, not the deviation's, so that a new set point causes no kick. A missing term is 0.
class SIM_pid {
  public:
    SIM_pid(double out_min, double out_max) : min_(out_min), max_(out_max) {}

    double step(double sp, double pv, double dt);  // the output, within its limits
    void reset();                                  // forgets the integral and the rate
    // Goes on from an output that others set, without a jump.
    void resume(double out, double sp, double pv);
    [[nodiscard]] double i_val() const { return integral_; }
    [[nodiscard]] double d_val() const { return derivative_; }
    [[nodiscard]] double out_min() const { return min_; }
    [[nodiscard]] double out_max() const { return max_; }

    NET_GENERICPID_Params params{0, 0, 0};  // the integral keeps its value when they change

  private:
    double rate_of(double pv, double dt);

    double min_, max_;
    double integral_ = 0;    // in units of the output
    double derivative_ = 0;  // likewise
    double rate_ = 0;
    double last_pv_ = VESK_MISSING;
};
