// Steps the cell by seconds.
#include "simstation/physics/neph_cell.h"

#include <algorithm>
#include <cmath>

#include "simstation/physics/humidity.h"

namespace {

constexpr double PER_MM = 1e-6;  // 1/Mm in 1/m

// Air at 550 nm: 12.26 /Mm (Bucholtz 1995, Appl. Opt. 34). The exponent holds within 0.5 % from 450 to 700
// nm; it is more than 4 because the refractive index of air depends on the wavelength too.
constexpr double RAYLEIGH_550 = 12.26 * PER_MM;
constexpr double RAYLEIGH_EXPONENT = 4.08;

// The pump renews the cell's air within seconds; a bottle's few litres per minute push it out more slowly.
constexpr double PUMP_LAG = 9;     // seconds, at normal flow
constexpr double BOTTLE_LAG = 30;  // seconds
constexpr double LEAST_FLOW = 0.01;

// How far a channel's calibration is off. A span check compares CO2 as a whole, whose larger part is above
// what the zero takes away, so that it finds 0.6 of this.
constexpr double GAIN_LOW = 0.018;
constexpr double GAIN_HIGH = 0.040;

struct channel_row {
    double wall;         // light from the walls, 1/Mm
    double noise;        // of one second, 1/Mm
    double sensitivity;  // counts per second for 1/Mm
    double calibrator;   // counts per second
    double dark;         // counts per second
};

constexpr channel_row g_channels[SIM_NEPH_SIX] = {
    {.wall = 6.5, .noise = 0.25, .sensitivity = 420, .calibrator = 21000, .dark = 12},
    {.wall = 8.0, .noise = 0.20, .sensitivity = 400, .calibrator = 24000, .dark = 8},
    {.wall = 10.5, .noise = 0.25, .sensitivity = 190, .calibrator = 11000, .dark = 55},
    {.wall = 4.0, .noise = 0.09, .sensitivity = 400, .calibrator = 20000, .dark = 12},
    {.wall = 4.5, .noise = 0.07, .sensitivity = 380, .calibrator = 23000, .dark = 8},
    {.wall = 6.0, .noise = 0.09, .sensitivity = 180, .calibrator = 10500, .dark = 55},
};
// Slow enough that a span check of half an hour sees little of it, and the hourly zeros some.
constexpr double WALL_DRIFT = 0.7;  // relative to the noise of one second
constexpr double WALL_MEMORY = 86400;

// The same air at another temperature.
double humidity_at(double humidity, double from, double to) {
    return std::clamp(humidity * SIM_OVER_WATER.pressure(from) / SIM_OVER_WATER.pressure(to), 0.0, 100.0);
}

}  // namespace

double SIM_rayleigh(double nm) {
    return RAYLEIGH_550 * std::pow(550 / nm, RAYLEIGH_EXPONENT);
}

SIM_neph_six SIM_neph_nothing() {
    SIM_neph_six six;
    six.fill(VESK_MISSING);
    return six;
}

SIM_neph_cell::SIM_neph_cell(const SIM_neph_model& model) : backscatter(model.backscatter), model_(model) {}

SIM_neph_cell::wall_drift::wall_drift() : SIM_drift(WALL_DRIFT, WALL_MEMORY) {}

double SIM_neph_cell::wall_light(SIM_instrument& sim, std::size_t i) {
    const channel_row& row = g_channels[i];
    return row.wall + row.noise * walls_[i].step(sim.noise(), sim.dt());
}

// Gas scatters as much backward as forward.
double SIM_neph_cell::air_rayleigh(std::size_t i) const {
    return SIM_rayleigh(model_.nm[i % 3]) / (i < 3 ? 1 : 2);
}

BOOL SIM_neph_cell::has(std::size_t i) const {
    return model_.nm[i % 3] > 0 && (i < 3 || backscatter);
}

SIM_neph_six SIM_neph_cell::rayleigh() const {
    SIM_neph_six six = SIM_neph_nothing();
    for (std::size_t i = 0; i < SIM_NEPH_SIX; ++i) {
        if (has(i)) six[i] = air_rayleigh(i);
    }
    return six;
}

void SIM_neph_cell::start(SIM_instrument& sim) {
    acclimatise(sim);
    for (std::size_t i = 0; i < SIM_NEPH_SIX; ++i) {
        const double off = sim.noise().uniform(GAIN_LOW, GAIN_HIGH);
        gain_[i] = sim.noise().chance(0.5) ? 1 + off : 1 - off;
        const double wall = wall_light(sim, i);
        const double aged = sim.noise().normal(0, g_channels[i].noise);
        if (has(i)) background_[i] = gas(i) + (wall + aged) * PER_MM;
    }
}

void SIM_neph_cell::exchange(SIM_neph_inlet inlet, double dt) {
    const BOOL bottle = inlet == SIM_NEPH_CO2;
    if (bottle && !bottle_open) return;  // pump off, bottle closed: nothing moves
    const double lag = bottle ? BOTTLE_LAG : PUMP_LAG / std::max(flow, LEAST_FLOW);
    particles_ = SIM_approach(particles_, inlet == SIM_NEPH_AMBIENT ? 1 : 0, lag, dt);
    co2_ = SIM_approach(co2_, bottle ? 1 : 0, lag, dt);
}

// The lamp warms the cell by some degrees; CO2 from a bottle is dry.
void SIM_neph_cell::acclimatise(SIM_instrument& sim) {
    const SIM_air& air = sim.air();
    const double warm = 1 - std::exp(-sim.age() / 900);
    climate_.T_inlet = air.room_temperature() + 0.4 + sim.noise().normal(0, 0.02);
    climate_.T_neph = air.room_temperature() + 5.5 * light * warm + sim.noise().normal(0, 0.02);
    climate_.RH_inlet = humidity_at(air.humidity(), air.temperature(), climate_.T_inlet);
    climate_.RH_neph = humidity_at(air.humidity(), air.temperature(), climate_.T_neph) * (1 - co2_);
    climate_.P = air.pressure() - 5 * flow + sim.noise().normal(0, 0.1);
}

double SIM_neph_cell::density() const {
    return climate_.P / 1013.25 * 273.15 / (273.15 + climate_.T_neph);
}

// The scattering of the gas in the cell, as the channel sees it.
double SIM_neph_cell::gas(std::size_t i) const {
    return gain_[i] * air_rayleigh(i) * density() * (1 + (SIM_CO2_TO_AIR - 1) * co2_);
}

void SIM_neph_cell::step(SIM_instrument& sim, SIM_neph_inlet inlet) {
    exchange(inlet, sim.dt());
    acclimatise(sim);
    for (std::size_t i = 0; i < SIM_NEPH_SIX; ++i) {
        const double wall = wall_light(sim, i);
        const double noise = sim.noise().normal(0, g_channels[i].noise);
        if (!has(i)) {
            scattering_[i] = sample_[i] = calibrator_[i] = dark_[i] = VESK_MISSING;
            continue;
        }
        const double share = i < 3 ? 1 : sim.air().backscatter_fraction();
        const double particles =
            gain_[i] * particles_ * share * sim.air().scattering(model_.nm[i % 3]) * PER_MM;
        const double scattered = particles + gas(i) + wall * PER_MM;
        if (VESK_is_missing(background_[i])) background_[i] = gas(i) + wall * PER_MM;
        scattering_[i] = light > 0 ? scattered - background_[i] + noise * PER_MM : VESK_MISSING;
        count(sim, i, scattered);
    }
}

void SIM_neph_cell::count(SIM_instrument& sim, std::size_t i, double scattered) {
    const channel_row& row = g_channels[i];
    const double amplified = amplification[i % 3];
    dark_[i] = amplified * sim.noise().poisson(row.dark);
    calibrator_[i] = amplified * sim.noise().poisson(row.calibrator * light) + dark_[i];
    sample_[i] = amplified * sim.noise().poisson(row.sensitivity * scattered / PER_MM * light) + dark_[i];
}

SIM_neph_six SIM_neph_cell::raw() const {
    SIM_neph_six six = SIM_neph_nothing();
    for (std::size_t i = 0; i < SIM_NEPH_SIX; ++i) {
        if (!VESK_is_missing(scattering_[i])) six[i] = scattering_[i] + background_[i];
    }
    return six;
}

double SIM_neph_cell::angstrom(double green, double red) const {
    if (VESK_is_missing(green) || VESK_is_missing(red) || green <= 0 || red <= 0) return VESK_MISSING;
    return std::log(green / red) / std::log(model_.nm[2] / model_.nm[1]);
}
