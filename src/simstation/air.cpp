// The station's air, advanced second by second.
#include "simstation/air.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double GREEN_NM = 550;
constexpr double ABSORPTION_ANGSTROM = 1.1;  // soot mostly
constexpr double PLUMES_PER_SECOND = 1.0 / 2700;

}  // namespace

SIM_air::SIM_air(std::uint64_t seed) : m_noise(seed, "air") {}

// A plume comes within seconds and thins out over minutes.
void SIM_air::advance_plume(double dt) {
    if (m_noise.chance(PLUMES_PER_SECOND * dt)) m_source += m_noise.lognormal(1, 0.5);
    m_source = SIM_approach(m_source, 0, 240, dt);
    m_plume = SIM_approach(m_plume, m_source, 20, dt);
}

void SIM_air::advance(FTIME now, double dt) {
    advance_plume(dt);
    const double mass = m_mass.step(m_noise, dt);
    const double fresh = m_fresh.step(m_noise, dt);
    const double size = std::tanh(m_size.step(m_noise, dt));
    const double weather = m_weather.step(m_noise, dt);
    const double afternoon = SIM_diurnal(now, 15);
    const double morning = SIM_diurnal(now, 7);

    m_number =
        SIM_within(1800 * std::exp(0.3 * afternoon + 0.6 * mass + fresh) * (1 + 2.5 * m_plume), 300, 15000);
    m_scattering = SIM_within(20 * std::exp(0.2 * morning + mass) * (1 + 0.5 * m_plume), 5, 80);
    m_absorption =
        SIM_within(2.5 * std::exp(0.3 * morning + 0.9 * mass + 0.3 * fresh) * (1 + 1.5 * m_plume), 0.5, 15);
    m_angstrom = 1.5 + 0.4 * size;  // small particles scatter blue
    m_backscatter = 0.125 + 0.02 * size;
    m_temperature = 14 + 5 * afternoon + 3 * weather;
    m_humidity = std::clamp(60 - 18 * afternoon - 10 * weather, 5.0, 99.0);
    m_pressure = 985 + 6 * weather;
    m_room = 23.5 + 0.6 * afternoon;
}

double SIM_air::scattering(double nm) const {
    return m_scattering * std::pow(GREEN_NM / nm, m_angstrom);
}

double SIM_air::absorption(double nm) const {
    return m_absorption * std::pow(GREEN_NM / nm, ABSORPTION_ANGSTROM);
}
