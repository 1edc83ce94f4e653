// The air that all instruments of the station sample: one particle load with its daily cycle, slow changes
// and passing plumes, so that counters, nephelometers and absorption photometers tell the same story.
#pragma once

#include "simstation/physics/noise.h"

class SIM_air {
  public:
    explicit SIM_air(std::uint64_t seed);

    // Moves on by dt seconds to `now`. Called once per simulated second, before any instrument looks.
    void advance(FTIME now, double dt);

    [[nodiscard]] double number() const { return number_; }      // particles above 10 nm: 300 to 15,000 cm-3
    [[nodiscard]] double scattering(double nm) const;            // green (550 nm): 5 to 80 per Mm
    [[nodiscard]] double absorption(double nm) const;            // green (550 nm): 0.5 to 15 per Mm
    [[nodiscard]] double angstrom() const { return angstrom_; }  // of scattering: 1 to 2
    [[nodiscard]] double backscatter_fraction() const { return backscatter_; }  // 0.10 to 0.15

    [[nodiscard]] double temperature() const { return temperature_; }  // outdoors, Celsius
    [[nodiscard]] double humidity() const { return humidity_; }        // outdoors, percent
    [[nodiscard]] double pressure() const { return pressure_; }        // hPa
    [[nodiscard]] double room_temperature() const { return room_; }    // where the racks are, Celsius

  private:
    void advance_plume(double dt);

    SIM_noise noise_;
    SIM_drift mass_{0.55, 3 * 3600};  // aged aerosol: what scatters
    SIM_drift fresh_{0.35, 2400};     // fresh small particles: what only counters see
    SIM_drift size_{1, 5 * 3600};
    SIM_drift weather_{1, 12 * 3600};
    double source_ = 0;  // of the plume, as it leaves its chimney
    double plume_ = 0;
    double number_ = 0;
    double scattering_ = 0;
    double absorption_ = 0;
    double angstrom_ = 0;
    double backscatter_ = 0;
    double temperature_ = 0;
    double humidity_ = 0;
    double pressure_ = 0;
    double room_ = 0;
};
