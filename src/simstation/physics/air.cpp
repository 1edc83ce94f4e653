// The station's air, advanced second by second.
#include "simstation/physics/air.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double GREEN_NM = 550;
constexpr double ABSORPTION_ANGSTROM = 1.1;  // soot mostly
constexpr double PLUMES_PER_SECOND = 1.0 / 2700;

}  // namespace

SIM_air::SIM_air(std::uint64_t seed) : noise_(seed, "air") {}

// A plume comes within seconds and thins out over minutes.
void SIM_air::advance_plume(double dt) {
    if (noise_.chance(PLUMES_PER_SECOND * dt)) source_ += noise_.lognormal(1, 0.5);
    source_ = SIM_approach(source_, 0, 240, dt);
    plume_ = SIM_approach(plume_, source_, 20, dt);
}

void SIM_air::advance(FTIME now, double dt) {
    advance_plume(dt);
    const double mass = mass_.step(noise_, dt);
    const double fresh = fresh_.step(noise_, dt);
    const double size = std::tanh(size_.step(noise_, dt));
    const double weather = weather_.step(noise_, dt);
    const double afternoon = SIM_diurnal(now, 15);
    const double morning = SIM_diurnal(now, 7);

    number_ =
        SIM_within(1800 * std::exp(0.3 * afternoon + 0.6 * mass + fresh) * (1 + 2.5 * plume_), 300, 15000);
    scattering_ = SIM_within(20 * std::exp(0.2 * morning + mass) * (1 + 0.5 * plume_), 5, 80);
    absorption_ =
        SIM_within(2.5 * std::exp(0.3 * morning + 0.9 * mass + 0.3 * fresh) * (1 + 1.5 * plume_), 0.5, 15);
    angstrom_ = 1.5 + 0.4 * size;  // small particles scatter blue
    backscatter_ = 0.125 + 0.02 * size;
    temperature_ = 14 + 5 * afternoon + 3 * weather;
    humidity_ = std::clamp(60 - 18 * afternoon - 10 * weather, 5.0, 99.0);
    pressure_ = 985 + 6 * weather;
    room_ = 23.5 + 0.6 * afternoon;
}

double SIM_air::scattering(double nm) const {
    return scattering_ * std::pow(GREEN_NM / nm, angstrom_);
}

double SIM_air::absorption(double nm) const {
    return absorption_ * std::pow(GREEN_NM / nm, ABSORPTION_ANGSTROM);
}
