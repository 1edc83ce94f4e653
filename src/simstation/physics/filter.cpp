// Light, filter and pump of the absorption photometers, second by second.
#include "simstation/physics/filter.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double PER_M = 1e-6;                          // 1/Mm in 1/m
constexpr double M3_PER_S = 1e-3 / 60;                  // slpm in m3/s
constexpr double PUMP_LAG = 2;                          // seconds
constexpr double MEMORY = 10;                           // seconds, of a ripple
constexpr double DARK = 1200;                           // counts
constexpr SIM_colors LAMPS = {265000, 420000, 380000};  // counts behind a reference
constexpr double DAYLIGHT = 2e-4;                       // relative unrest of a reading while the lid is open

}  // namespace

void SIM_filter_spot::renew(SIM_noise& noise) {
    depth_ = {};
    volume_ = 0;
    for (double& clean : clean_)
        clean = noise.normal(0.95, 0.01);
}

void SIM_filter_spot::set_transmittance(double transmittance) {
    depth_.fill(-std::log(transmittance));
}

double SIM_filter_spot::transmittance(std::size_t color) const {
    return std::exp(-depth_[color]);
}

void SIM_ripple::add(double value) {
    if (!begun_) mean_ = value;
    begun_ = TRUE;
    const double step = (value - mean_) / MEMORY;
    variance_ = (1 - 1 / MEMORY) * (variance_ + step * (value - mean_));
    mean_ += step;
}

double SIM_ripple::rsd() const {
    return mean_ != 0 ? std::sqrt(variance_) / std::fabs(mean_) : 0;
}

double SIM_filter_enhancement(double transmittance) {
    return 1.0796 * transmittance + 0.71;
}

double SIM_filter_cell::dark(SIM_noise& noise) const {
    return noise.normal(DARK, 2);
}

double SIM_filter_cell::detect(SIM_noise& noise, std::size_t color, double light) const {
    const double unrest = lid_ == SIM_LID_OPEN ? DAYLIGHT : model_.noise;
    return DARK + LAMPS[color] * (1 + lamp_.value()) * light * std::max(0.1, noise.normal(1, unrest));
}

double SIM_filter_cell::relative(std::size_t color, double reading) const {
    return (reading - DARK) / (reference[color] - DARK);
}

BOOL SIM_filter_cell::set_loading(double factor) {
    if (!(factor >= 1 && factor <= 100000)) return FALSE;
    loading_ = factor;
    return TRUE;
}

void SIM_filter_cell::step(SIM_instrument& sim, SIM_filter_spot& spot, BOOL pumping, SIM_filter_lid lid) {
    lid_ = lid;
    lamp_.step(sim.noise(), sim.dt());
    const double wanted = pumping ? model_.flow : 0;
    drawn_ = begun_ ? SIM_approach(drawn_, wanted, PUMP_LAG, sim.dt()) : wanted;
    begun_ = TRUE;
    flow = drawn_ + sim.noise().normal(0, 0.001);
    const double volume = drawn_ * M3_PER_S * sim.dt();
    spot.add_volume(volume);
    // Metres of air drawn through the spot. Without flow, what it would be shows the noise alone.
    const double column = volume / model_.area * loading_;
    const double usual = model_.flow * M3_PER_S * sim.dt() / model_.area * loading_;
    for (std::size_t i = 0; i < colors(); ++i) {
        const double absorbed = sim.air().absorption(model_.nm[i]) * PER_M * column;
        spot.darken(i, absorbed * SIM_filter_enhancement(spot.transmittance(i)));
        measure(sim.noise(), spot, std::max(column, usual / 2), i);
    }
}

void SIM_filter_cell::measure(SIM_noise& noise, const SIM_filter_spot& spot, double column,
                              std::size_t color) {
    const double before = normalized[color];
    reference[color] = detect(noise, color, 1);
    sample[color] = detect(noise, color, spot.light(color));
    normalized[color] = relative(color, sample[color]);
    change[color] = before > 0 ? normalized[color] - before : 0;
    transmittance[color] = normalized[color] / spot.clean(color);
    attenuation[color] = before > 0 ? std::log(before / normalized[color]) / column : 0;
    absorption[color] = attenuation[color] / SIM_filter_enhancement(std::min(transmittance[color], 1.0));
}

BOOL SIM_filter_set(SIM_filter_cell& cell, SIM_filter_spot& spot, std::string_view name,
                    const SIM_value& value) {
    if (name == SIM_FILTER_LOADING.name) return cell.set_loading(value.number);
    if (name != SIM_FILTER_TRANSMITTANCE.name || !(value.number >= 0.1 && value.number <= 1)) return FALSE;
    spot.set_transmittance(value.number);
    return TRUE;
}
