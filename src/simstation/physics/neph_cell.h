// The measuring cell of a nephelometer: the air or gas that fills it, what that and the walls scatter, and
// the counts of the photomultipliers. It knows no commands and no messages; what is drawn into it is decided
// by the instrument (neph.h).
#pragma once

#include <array>

#include "simstation/sim.h"

// Scattering of CO2 relative to that of air at equal density (Anderson et al. 1996, J. Atmos. Oceanic
// Technol.).
inline constexpr double SIM_CO2_TO_AIR = 2.61;
// Total Rayleigh scattering of air at 0 degrees Celsius and 1013.25 hPa, 1/m.
[[nodiscard]] double SIM_rayleigh(double nm);

// Blue, green, red of total scatter, then of backscatter. Missing for what an instrument does not have.
inline constexpr std::size_t SIM_NEPH_SIX = 6;
using SIM_neph_six = std::array<double, SIM_NEPH_SIX>;
[[nodiscard]] SIM_neph_six SIM_neph_nothing();

// Writes them into a record's fields bsp and bbsp.
template <class R>
void SIM_neph_put(R& record, const SIM_neph_six& six) {
    for (std::size_t i = 0; i < 3; ++i) {
        record.bsp[i] = six[i];
        record.bbsp[i] = six[i + 3];
    }
}

struct SIM_neph_model {
    std::array<double, 3> nm;  // wavelengths; 0: the instrument does not have this colour
    BOOL backscatter;
    NETMSG_type forbids_spancheck;  // the message whose first byte says that no span check may begin
};

enum SIM_neph_inlet { SIM_NEPH_AMBIENT, SIM_NEPH_FILTERED, SIM_NEPH_CO2 };

struct SIM_neph_climate {
    double T_inlet, T_neph;    // Celsius
    double RH_inlet, RH_neph;  // percent
    double P;                  // hPa
};

class SIM_neph_cell {
  public:
    explicit SIM_neph_cell(const SIM_neph_model& model);
    // The instrument is switched on, with a background that an earlier zero found.
    void start(SIM_instrument& sim);
    // One second of measuring, with that at the inlet.
    void step(SIM_instrument& sim, SIM_neph_inlet inlet);

    double flow = 1;                                  // of the blower, share of its normal one
    double light = 1;                                 // of the lamp, likewise; 0 is dark
    std::array<double, 3> amplification = {1, 1, 1};  // of the photomultipliers, likewise
    BOOL backscatter;                                 // the shutter that lets it see that works
    BOOL bottle_open = TRUE;                          // CO2 comes when it is asked for

    // 1/m. `scattering` is that of the particles, which is what is left of all light (`raw`) without the
    // background: gas and walls.
    [[nodiscard]] const SIM_neph_six& scattering() const { return scattering_; }
    [[nodiscard]] const SIM_neph_six& background() const { return background_; }
    [[nodiscard]] SIM_neph_six raw() const;
    void set_background(const SIM_neph_six& background) { background_ = background; }
    // Counts per second.
    [[nodiscard]] const SIM_neph_six& sample_counts() const { return sample_; }
    [[nodiscard]] const SIM_neph_six& calibrator_counts() const { return calibrator_; }
    [[nodiscard]] const SIM_neph_six& dark_counts() const { return dark_; }

    [[nodiscard]] const SIM_neph_climate& climate() const { return climate_; }
    [[nodiscard]] double density() const;  // of the gas, relative to 0 degrees Celsius and 1013.25 hPa
    // Of the exponent's colours, green and red; missing without light in both.
    [[nodiscard]] double angstrom(double green, double red) const;
    [[nodiscard]] SIM_neph_six rayleigh() const;  // of air at standard conditions

  private:
    struct wall_drift : SIM_drift {
        wall_drift();
    };
    [[nodiscard]] BOOL has(std::size_t i) const;
    void exchange(SIM_neph_inlet inlet, double dt);
    void acclimatise(SIM_instrument& sim);
    [[nodiscard]] double gas(std::size_t i) const;
    [[nodiscard]] double air_rayleigh(std::size_t i) const;
    [[nodiscard]] double wall_light(SIM_instrument& sim, std::size_t i);
    void count(SIM_instrument& sim, std::size_t i, double scattered);

    const SIM_neph_model& model_;
    double particles_ = 1;                        // share of the outer air's that is in the cell
    double co2_ = 0;                              // share of the cell that it fills
    SIM_neph_six gain_{};                         // calibration of each channel, ideally 1
    std::array<wall_drift, SIM_NEPH_SIX> walls_;  // dust comes and goes
    SIM_neph_six background_ = SIM_neph_nothing();
    SIM_neph_six scattering_ = SIM_neph_nothing();
    SIM_neph_six sample_ = SIM_neph_nothing();
    SIM_neph_six calibrator_ = SIM_neph_nothing();
    SIM_neph_six dark_ = SIM_neph_nothing();
    SIM_neph_climate climate_{};
};

// Writes the counts into a record's fields sampTS, sampBS and so on.
template <class R>
void SIM_neph_put_counts(R& record, const SIM_neph_cell& cell) {
    for (std::size_t i = 0; i < 3; ++i) {
        record.calTS[i] = cell.calibrator_counts()[i];
        record.calBS[i] = cell.calibrator_counts()[i + 3];
        record.darkTS[i] = cell.dark_counts()[i];
        record.darkBS[i] = cell.dark_counts()[i + 3];
        record.sampTS[i] = cell.sample_counts()[i];
        record.sampBS[i] = cell.sample_counts()[i + 3];
    }
}

// Writes temperatures, humidities and pressure.
template <class R>
void SIM_neph_put_climate(R& record, const SIM_neph_climate& climate) {
    record.T_inlet = climate.T_inlet;
    record.T_neph = climate.T_neph;
    record.RH_inlet = climate.RH_inlet;
    record.RH_neph = climate.RH_neph;
    if constexpr (requires { record.P_neph; }) {
        record.P_neph = climate.P;
    } else {
        record.P = climate.P;
    }
}
