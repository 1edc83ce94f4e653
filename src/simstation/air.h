// The air that all instruments of the station sample: one particle load with its daily cycle, slow changes
// and passing plumes, so that counters, nephelometers and absorption photometers tell the same story.
#pragma once

#include "simstation/noise.h"

class SIM_air {
  public:
    explicit SIM_air(std::uint64_t seed);

    // Moves on by dt seconds to `now`. Called once per simulated second, before any instrument looks.
    void advance(FTIME now, double dt);

    [[nodiscard]] double number() const { return m_number; }      // particles above 10 nm: 300 to 15,000 cm-3
    [[nodiscard]] double scattering(double nm) const;             // green (550 nm): 5 to 80 per Mm
    [[nodiscard]] double absorption(double nm) const;             // green (550 nm): 0.5 to 15 per Mm
    [[nodiscard]] double angstrom() const { return m_angstrom; }  // of scattering: 1 to 2
    [[nodiscard]] double backscatter_fraction() const { return m_backscatter; }  // 0.10 to 0.15

    [[nodiscard]] double temperature() const { return m_temperature; }  // outdoors, Celsius
    [[nodiscard]] double humidity() const { return m_humidity; }        // outdoors, percent
    [[nodiscard]] double pressure() const { return m_pressure; }        // hPa
    [[nodiscard]] double room_temperature() const { return m_room; }    // where the racks are, Celsius

  private:
    void advance_plume(double dt);

    SIM_noise m_noise;
    SIM_drift m_mass{0.55, 3 * 3600};  // aged aerosol: what scatters
    SIM_drift m_fresh{0.35, 2400};     // fresh small particles: what only counters see
    SIM_drift m_size{1, 5 * 3600};
    SIM_drift m_weather{1, 12 * 3600};
    double m_source = 0;  // of the plume, as it leaves its chimney
    double m_plume = 0;
    double m_number = 0;
    double m_scattering = 0;
    double m_absorption = 0;
    double m_angstrom = 0;
    double m_backscatter = 0;
    double m_temperature = 0;
    double m_humidity = 0;
    double m_pressure = 0;
    double m_room = 0;
};
