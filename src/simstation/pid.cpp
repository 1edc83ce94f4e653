// The arithmetic of a control loop, once per step.
#include "simstation/pid.h"

#include <algorithm>
#include <cmath>

#include "simstation/noise.h"

namespace {

constexpr double RATE_LAG = 2;  // seconds: smooths the rate, which noise would rule otherwise

double term(double v) {
    return VESK_is_missing(v) ? 0 : v;
}

}  // namespace

SIM_plant::SIM_plant(double gain, double dead_time, double lag, double rest)
    : m_gain(gain), m_dead_time(dead_time), m_lag(lag), m_rest(rest), m_value(rest) {}

double SIM_plant::step(double out, double load, double dt) {
    const auto steps = static_cast<std::size_t>(std::lround(m_dead_time / dt));
    while (m_under_way.size() < steps)
        m_under_way.push_front(0);
    m_under_way.push_back(out);
    const double arriving = m_under_way.front();
    m_under_way.pop_front();
    m_value = SIM_approach(m_value, m_rest + load + m_gain * arriving, m_lag, dt);
    return m_value;
}

double SIM_pid::rate_of(double pv, double dt) {
    const double raw = VESK_is_missing(m_last_pv) ? 0 : (pv - m_last_pv) / dt;
    m_last_pv = pv;
    m_rate = SIM_approach(m_rate, raw, RATE_LAG, dt);
    return m_rate;
}

double SIM_pid::step(double sp, double pv, double dt) {
    const double error = sp - pv;
    m_derivative = -term(params.d) * rate_of(pv, dt);
    const double unlimited = term(params.p) * error + m_integral + m_derivative;
    // At a limit the integral only moves back inside: what it winds up beyond would have to unwind later.
    const BOOL wound_up = (unlimited >= m_max && error > 0) || (unlimited <= m_min && error < 0);
    if (!wound_up)
        m_integral = std::clamp(m_integral + term(params.i) * error * dt, m_min - m_max, m_max - m_min);
    return std::clamp(term(params.p) * error + m_integral + m_derivative, m_min, m_max);
}

void SIM_pid::reset() {
    m_integral = 0;
    m_derivative = 0;
    m_rate = 0;
    m_last_pv = VESK_MISSING;
}

void SIM_pid::resume(double out, double sp, double pv) {
    reset();
    m_integral = out - term(params.p) * (sp - pv);
}
