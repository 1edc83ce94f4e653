// Draws, drifts and the small curves that all instruments use.
#include "simstation/physics/noise.h"

#include <cmath>
#include <numbers>

#include "libvesk/support/util.h"

namespace {

constexpr double SECONDS_PER_DAY = 86400;

}  // namespace

SIM_noise::SIM_noise(std::uint64_t seed, std::string_view name)
    : engine_(seed * 0x9E3779B97F4A7C15u ^ UTIL_fnv1a(name)) {}

double SIM_noise::uniform() {
    return static_cast<double>(engine_() >> 11) * 0x1.0p-53;
}

double SIM_noise::uniform(double low, double high) {
    return low + (high - low) * uniform();
}

// The sum of twelve uniform numbers has variance 1 and needs no function of the mathematics library.
double SIM_noise::normal() {
    double sum = -6;
    for (int i = 0; i < 12; ++i)
        sum += uniform();
    return sum;
}

double SIM_noise::lognormal(double median, double sigma) {
    return median * std::exp(sigma * normal());
}

double SIM_noise::poisson(double mean) {
    if (!(mean > 0)) return 0;
    if (mean > 30) return std::max(0.0, std::round(normal(mean, std::sqrt(mean))));
    const double limit = std::exp(-mean);
    double n = 0;
    for (double product = uniform(); product > limit; product *= uniform())
        n += 1;
    return n;
}

std::size_t SIM_noise::pick(std::size_t n) {
    return static_cast<std::size_t>(uniform() * static_cast<double>(n));
}

double SIM_drift::step(SIM_noise& noise, double dt) {
    if (!begun_) {
        begun_ = TRUE;
        value_ = noise.normal(0, sd_);
        return value_;
    }
    const double keep = std::exp(-dt / tau_);
    value_ = value_ * keep + noise.normal(0, sd_ * std::sqrt(1 - keep * keep));
    return value_;
}

double SIM_approach(double value, double target, double lag, double dt) {
    return lag > 0 ? target + (value - target) * std::exp(-dt / lag) : target;
}

double SIM_diurnal(FTIME now, double peak_hour) {
    const double of_day = std::fmod(now, SECONDS_PER_DAY) / SECONDS_PER_DAY;
    return std::cos(2 * std::numbers::pi * (of_day - peak_hour / 24));
}

double SIM_within(double value, double low, double high) {
    const double middle = (std::log(low) + std::log(high)) / 2;
    const double half = (std::log(high) - std::log(low)) / 2;
    return std::exp(middle + half * std::tanh((std::log(value) - middle) / half));
}
