// The relay experiment as a row of states, and the rules that turn what it measured into parameters.
#include "simstation/physics/pid_tune.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numbers>

namespace {

// The relay switches this many standard deviations of the noise beyond its level.
constexpr double HYSTERESIS_SIGMAS = 2;
// The step to the high output must move the value by so many of them, or there is nothing to measure.
constexpr double RESPONSE_SIGMAS = 10;

// Controller gain as a share of the ultimate gain, integral and derivative time as shares of the ultimate
// period; 0: the rule has no such term.
struct rule {
    double gain, integral_time, derivative_time;
};
// Ziegler-Nichols: the ultimate sensitivity method of J. G. Ziegler and N. B. Nichols, "Optimum settings for
// automatic controllers", Transactions of the ASME 64 (1942), 759-768. It aims at a quarter of the deviation
// from one swing to the next, and so overshoots.
// Tyreus-Luyben: the PI settings of B. D. Tyreus and W. L. Luyben, "Tuning PI controllers for
// integrator/dead time processes", Industrial & Engineering Chemistry Research 31 (1992), 2625-2628; the PID
// settings as W. L. and M. L. Luyben give them beside these in "Essentials of Process Control" (1997). They
// are slower and damp more.
constexpr rule RULES[] = {
    {.gain = 1 / 2.2, .integral_time = 2.2, .derivative_time = 1 / 6.3},  // GENERICPID_TUNE_TLC_PID
    {.gain = 1 / 3.2, .integral_time = 2.2, .derivative_time = 0},        // GENERICPID_TUNE_TLC_PI
    {.gain = 0.6, .integral_time = 1 / 2.0, .derivative_time = 1 / 8.0},  // GENERICPID_TUNE_ZN_PID
    {.gain = 0.45, .integral_time = 1 / 1.2, .derivative_time = 0},       // GENERICPID_TUNE_ZN_PI
    {.gain = 0.5, .integral_time = 0, .derivative_time = 0},              // GENERICPID_TUNE_ZN_P
};
static_assert(std::size(RULES) == GENERICPID_TUNE_COUNT);

}  // namespace

// The first harmonic of a square wave of amplitude d is 4 d / pi; the amplitude of the process value's answer
// to it says how much gain would sustain the oscillation (describing function of a relay, after K. J. Astrom
// and T. Hagglund, Automatica 20 (1984), 645-651).
SIM_ultimate SIM_relay_ultimate(double relay_amp, double pv_amp, double hysteresis, double period) {
    const double effective = std::sqrt(std::max(pv_amp * pv_amp - hysteresis * hysteresis, 0.0));
    return {4 * relay_amp / (std::numbers::pi * effective), period};
}

NET_GENERICPID_Params SIM_tuning_rule(std::uint32_t param_gen, SIM_ultimate u) {
    const rule& r = RULES[param_gen];
    const double p = r.gain * u.gain;
    const double i = r.integral_time > 0 ? p / (r.integral_time * u.period) : 0;
    return {p, i, p * r.derivative_time * u.period};
}

// ---- the latest readings

void SIM_pid_tune::recent::add(double value) {
    if (values_.empty()) origin_ = value;
    values_.push_back(value);
    sum_ += value - origin_;
    squares_ += (value - origin_) * (value - origin_);
    if (values_.size() <= room_) return;
    const double oldest = values_.front() - origin_;
    values_.pop_front();
    sum_ -= oldest;
    squares_ -= oldest * oldest;
}

void SIM_pid_tune::recent::clear() {
    values_.clear();
    sum_ = 0;
    squares_ = 0;
}

double SIM_pid_tune::recent::mean() const {
    return values_.empty() ? VESK_MISSING : origin_ + sum_ / static_cast<double>(values_.size());
}

double SIM_pid_tune::recent::stddev() const {
    if (values_.size() < 2) return VESK_MISSING;
    const auto n = static_cast<double>(values_.size());
    return std::sqrt(std::max((squares_ - sum_ * sum_ / n) / (n - 1), 0.0));
}

// ---- the experiment

const char* SIM_pid_tune::fault(NET_GENERICPID_TuningRequest request, double out_min, double out_max) {
    const double start = request.start_out;
    const double amp = request.output_amp;
    if (request.num_runs == 0) return "no runs";
    if (request.stablity_samples < 2) return "fewer than two samples for stability";
    if (!(request.stablity_stddev > 0)) return "no standard deviation for stability";
    if (!(amp > 0)) return "no amplitude";
    if (!(start - amp >= out_min && start + amp <= out_max)) return "output beyond its range";
    return request.param_gen < GENERICPID_TUNE_COUNT ? nullptr : "unknown method";
}

SIM_pid_tune::SIM_pid_tune(NET_GENERICPID_TuningRequest request)
    : request_(request), recent_(request.stablity_samples), last_(NETDSD_default<NET_GENERICPID_Params>()) {}

double SIM_pid_tune::step(double pv, double dt) {
    recent_.add(pv);
    seconds_ += dt;
    low_ = std::min(low_, pv);
    high_ = std::max(high_, pv);
    advance(pv);
    return output();
}

void SIM_pid_tune::advance(double pv) {
    switch (state_) {
        case GENERICPID_WAIT_BASE_STABLITY:
            if (is_stable()) take_base();
            break;
        case GENERICPID_WAIT_HIGH_STABLITY:
            if (!is_stable()) break;
            take_high();
            if (failure_ == nullptr) begin_cycle(pv);
            break;
        case GENERICPID_DOWNWARD_PRIME:
        case GENERICPID_DOWNWARD:
            if (pv < base_ - hysteresis_) state_ = is_priming() ? GENERICPID_UPWARD_PRIME : GENERICPID_UPWARD;
            break;
        case GENERICPID_UPWARD_PRIME:
        case GENERICPID_UPWARD:
            if (pv > base_ + hysteresis_) end_cycle(pv);
            break;
        default:
            break;
    }
}

BOOL SIM_pid_tune::is_stable() const {
    return recent_.full() && recent_.stddev() < request_.stablity_stddev;
}

void SIM_pid_tune::take_base() {
    base_ = recent_.mean();
    hysteresis_ = HYSTERESIS_SIGMAS * recent_.stddev();
    recent_.clear();
    state_ = GENERICPID_WAIT_HIGH_STABLITY;
}

void SIM_pid_tune::take_high() {
    const double response = recent_.mean() - base_;
    if (response < RESPONSE_SIGMAS / HYSTERESIS_SIGMAS * hysteresis_)
        fail("the process value does not follow the output");
}

void SIM_pid_tune::begin_cycle(double pv) {
    state_ = is_priming() ? GENERICPID_DOWNWARD_PRIME : GENERICPID_DOWNWARD;
    seconds_ = 0;
    low_ = pv;
    high_ = pv;
}

void SIM_pid_tune::end_cycle(double pv) {
    if (!is_priming()) take_run();
    ++cycles_;
    if (cycles_ - request_.num_prime == request_.num_runs)
        state_ = GENERICPID_NOTTUNING;
    else
        begin_cycle(pv);
}

void SIM_pid_tune::take_run() {
    const SIM_ultimate u = SIM_relay_ultimate(request_.output_amp, (high_ - low_) / 2, hysteresis_, seconds_);
    last_ = SIM_tuning_rule(request_.param_gen, u);
    p_.add(last_.p);
    i_.add(last_.i);
    d_.add(last_.d);
}

void SIM_pid_tune::fail(const char* why) {
    failure_ = why;
    state_ = GENERICPID_NOTTUNING;
}

double SIM_pid_tune::output() const {
    switch (state_) {
        case GENERICPID_WAIT_HIGH_STABLITY:
        case GENERICPID_UPWARD_PRIME:
        case GENERICPID_UPWARD:
            return request_.start_out + request_.output_amp;
        case GENERICPID_DOWNWARD_PRIME:
        case GENERICPID_DOWNWARD:
            return request_.start_out - request_.output_amp;
        default:
            return request_.start_out;
    }
}

// ---- what it says

// While it primes, the cycles of that are what is counted.
NET_GENERICPID_TuningSatus SIM_pid_tune::status() const {
    const BOOL priming = state_ == GENERICPID_DOWNWARD_PRIME || state_ == GENERICPID_UPWARD_PRIME;
    if (priming) return {state_, cycles_, request_.num_prime};
    const std::uint32_t run = is_priming() ? 0 : cycles_ - request_.num_prime;
    return {state_, run, request_.num_runs};
}

NET_GENERICPID_TuningInstant SIM_pid_tune::instant() const {
    return {recent_.stddev(), results(), last_};
}

NET_GENERICPID_TuningResults SIM_pid_tune::results() const {
    return {{p_.mean(), i_.mean(), d_.mean()}, {p_.stddev(), i_.stddev(), d_.stddev()}};
}
