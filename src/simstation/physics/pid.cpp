// The arithmetic of a control loop, once per step.
#include "simstation/physics/pid.h"

#include <algorithm>
#include <cmath>

#include "simstation/physics/noise.h"

namespace {

constexpr double RATE_LAG = 2;  // seconds: smooths the rate, which noise would rule otherwise

double term(double v) {
    return VESK_is_missing(v) ? 0 : v;
}

}  // namespace

SIM_plant::SIM_plant(double gain, double dead_time, double lag, double rest)
    : gain_(gain), dead_time_(dead_time), lag_(lag), rest_(rest), value_(rest) {}

double SIM_plant::step(double out, double load, double dt) {
    const auto steps = static_cast<std::size_t>(std::lround(dead_time_ / dt));
    while (under_way_.size() < steps)
        under_way_.push_front(0);
    under_way_.push_back(out);
    const double arriving = under_way_.front();
    under_way_.pop_front();
    value_ = SIM_approach(value_, rest_ + load + gain_ * arriving, lag_, dt);
    return value_;
}

double SIM_pid::rate_of(double pv, double dt) {
    const double raw = VESK_is_missing(last_pv_) ? 0 : (pv - last_pv_) / dt;
    last_pv_ = pv;
    rate_ = SIM_approach(rate_, raw, RATE_LAG, dt);
    return rate_;
}

double SIM_pid::step(double sp, double pv, double dt) {
    const double error = sp - pv;
    derivative_ = -term(params.d) * rate_of(pv, dt);
    const double unlimited = term(params.p) * error + integral_ + derivative_;
    // At a limit the integral only moves back inside: what it winds up beyond would have to unwind later.
    const BOOL wound_up = (unlimited >= max_ && error > 0) || (unlimited <= min_ && error < 0);
    if (!wound_up) integral_ = std::clamp(integral_ + term(params.i) * error * dt, min_ - max_, max_ - min_);
    return std::clamp(term(params.p) * error + integral_ + derivative_, min_, max_);
}

void SIM_pid::reset() {
    integral_ = 0;
    derivative_ = 0;
    rate_ = 0;
    last_pv_ = VESK_MISSING;
}

void SIM_pid::resume(double out, double sp, double pv) {
    reset();
    integral_ = out - term(params.p) * (sp - pv);
}
