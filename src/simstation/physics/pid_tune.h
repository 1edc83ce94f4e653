// Automatic tuning of a PID controller by a relay experiment: the output is switched between two values
// around a start output, whenever the process value passes the level that belongs to that output. The loop
// then oscillates with about its ultimate period, and the size of the oscillation gives its ultimate gain.
#pragma once

#include <cstddef>
#include <deque>

#include "libvesk/messages/records/genericpid.h"
#include "simstation/physics/average.h"

// The gain at which a proportional controller alone would just oscillate, and the period of that.
struct SIM_ultimate {
    double gain;
    double period;  // seconds
};
// From an oscillation of the process value (its amplitude, half its span) under a relay of an amplitude that
// switches `hysteresis` beyond the level.
[[nodiscard]] SIM_ultimate SIM_relay_ultimate(double relay_amp, double pv_amp, double hysteresis,
                                              double period);
// Parameters by one of the rules (NET_GENERICPID_TuningParamGenType, within its range); a term that the rule
// does not use is 0.
[[nodiscard]] NET_GENERICPID_Params SIM_tuning_rule(std::uint32_t param_gen, SIM_ultimate u);

class SIM_pid_tune {
  public:
    // The fault of a request for a controller of that range, or null.
    [[nodiscard]] static const char* fault(NET_GENERICPID_TuningRequest request, double out_min,
                                           double out_max);
    explicit SIM_pid_tune(NET_GENERICPID_TuningRequest request);

    // Takes a reading; the output until the next one, dt seconds later.
    double step(double pv, double dt);
    // All runs are done, or there can be none: then failure() says why. It stays so.
    [[nodiscard]] BOOL over() const { return state_ == GENERICPID_NOTTUNING; }
    [[nodiscard]] const char* failure() const { return failure_; }  // null: none
    [[nodiscard]] double start_out() const { return request_.start_out; }

    [[nodiscard]] NET_GENERICPID_TuningSatus status() const;
    [[nodiscard]] NET_GENERICPID_TuningInstant instant() const;
    [[nodiscard]] NET_GENERICPID_TuningResults results() const;  // means of the runs so far

  private:
    // The standard deviation of the latest readings, of however many without summing them all anew.
    class recent {
      public:
        explicit recent(std::size_t room) : room_(room) {}
        void add(double value);
        void clear();
        [[nodiscard]] BOOL full() const { return values_.size() == room_; }
        [[nodiscard]] double mean() const;
        [[nodiscard]] double stddev() const;  // missing below two values

      private:
        std::size_t room_;
        std::deque<double> values_;
        double origin_ = 0;  // sums are of distances from here, to keep their digits
        double sum_ = 0;
        double squares_ = 0;
    };

    [[nodiscard]] BOOL is_stable() const;
    [[nodiscard]] BOOL is_priming() const { return cycles_ < request_.num_prime; }
    [[nodiscard]] double output() const;
    void advance(double pv);
    void take_base();
    void take_high();
    void begin_cycle(double pv);
    void end_cycle(double pv);
    void take_run();
    void fail(const char* why);

    NET_GENERICPID_TuningRequest request_;
    std::uint32_t state_ = GENERICPID_WAIT_BASE_STABLITY;
    const char* failure_ = nullptr;
    recent recent_;
    double base_ = 0;        // process value that belongs to the start output
    double hysteresis_ = 0;  // beyond it, so that noise alone switches nothing
    std::uint32_t cycles_ = 0;
    double seconds_ = 0;  // of the present cycle
    double low_ = 0, high_ = 0;
    SIM_stats p_, i_, d_;
    NET_GENERICPID_Params last_;
};
