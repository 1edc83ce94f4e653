// A software control loop in numbers alone: the process that it acts on, and the PID controller.
#pragma once

#include <deque>

#include "libvesk/records/genericpid.h"

// A process with dead time: what the output does to it begins only after a while, and then comes as a first
// order lag.
class SIM_plant {
  public:
    // gain: change of the value for an output of 1; dead_time and lag in seconds; rest: value without output.
    SIM_plant(double gain, double dead_time, double lag, double rest);
    // One step of dt seconds (always the same) with that output; `load` moves the value's goal.
    double step(double out, double load, double dt);
    [[nodiscard]] double value() const { return m_value; }

  private:
    double m_gain, m_dead_time, m_lag, m_rest;
    double m_value;
    std::deque<double> m_under_way;  // outputs that have not reached the process yet
};

// The controller: out = p e + i * integral of e - d * rate of the process value, e = set point - value. The
// rate is the value's, not the deviation's, so that a new set point causes no kick. A missing term is 0.
class SIM_pid {
  public:
    SIM_pid(double out_min, double out_max) : m_min(out_min), m_max(out_max) {}

    double step(double sp, double pv, double dt);  // the output, within its limits
    void reset();                                  // forgets the integral and the rate
    // Goes on from an output that others set, without a jump.
    void resume(double out, double sp, double pv);
    [[nodiscard]] double i_val() const { return m_integral; }
    [[nodiscard]] double d_val() const { return m_derivative; }
    [[nodiscard]] double out_min() const { return m_min; }
    [[nodiscard]] double out_max() const { return m_max; }

    NET_GENERICPID_Params params{0, 0, 0};  // the integral keeps its value when they change

  private:
    double rate_of(double pv, double dt);

    double m_min, m_max;
    double m_integral = 0;    // in units of the output
    double m_derivative = 0;  // likewise
    double m_rate = 0;
    double m_last_pv = VESK_MISSING;
};
