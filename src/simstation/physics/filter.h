// The physics of the filter absorption photometers: a pump draws air through a spot of a filter, the
// spot darkens, and detectors compare the light behind it with that behind clean filter.
#pragma once

#include <array>
#include <span>

#include "simstation/sim.h"

using SIM_colors = std::array<double, 3>;  // blue, green, red; an instrument of one colour uses the first

inline constexpr double SIM_FILTER_FULL = 0.7;  // transmittance at which a spot is used up

struct SIM_filter_model {
    std::span<const double> nm;  // wavelengths, at most three
    double area;                 // of a spot, m2
    double flow;                 // slpm
    double noise;                // relative, of one reading of a detector
};

// A place on a filter.
class SIM_filter_spot {
  public:
    void renew(SIM_noise& noise);  // clean again; no two are quite alike
    void darken(std::size_t color, double depth) { depth_[color] += depth; }
    void set_transmittance(double transmittance);  // of every colour
    void add_volume(double m3) { volume_ += m3; }
    [[nodiscard]] double clean(std::size_t color) const { return clean_[color]; }
    [[nodiscard]] double transmittance(std::size_t color) const;  // since it was clean
    // Light behind it, relative to that behind the reference.
    [[nodiscard]] double light(std::size_t color) const { return clean_[color] * transmittance(color); }
    [[nodiscard]] double volume() const { return volume_; }  // m3 drawn through it

  private:
    SIM_colors clean_{1, 1, 1};
    SIM_colors depth_{};
    double volume_ = 0;
};

// How much a reading varies: its relative standard deviation, old readings fading away.
class SIM_ripple {
  public:
    void add(double value);
    [[nodiscard]] double rsd() const;

  private:
    BOOL begun_ = FALSE;
    double mean_ = 0;
    double variance_ = 0;
};

// Attenuation by a filter relative to the absorption of the same particles in air (Bond, Anderson and
// Campbell, 1999): its inverse corrects the measurement.
[[nodiscard]] double SIM_filter_enhancement(double transmittance);

enum SIM_filter_lid { SIM_LID_CLOSED, SIM_LID_OPEN };  // open: the filter is being changed

// Lamps, detectors and pump.
class SIM_filter_cell {
  public:
    explicit SIM_filter_cell(const SIM_filter_model& model) : model_(model) {}

    // One second of measuring on that spot.
    void step(SIM_instrument& sim, SIM_filter_spot& spot, BOOL pumping, SIM_filter_lid lid);
    // A detector's reading of this second behind something that lets `light` of the colour through.
    [[nodiscard]] double detect(SIM_noise& noise, std::size_t color, double light) const;
    // A reading relative to this second's of the reference.
    [[nodiscard]] double relative(std::size_t color, double reading) const;
    [[nodiscard]] double dark(SIM_noise& noise) const;

    [[nodiscard]] std::size_t colors() const { return model_.nm.size(); }
    // How many times faster than in nature filters load, 1 to 100,000.
    [[nodiscard]] BOOL set_loading(double factor);

    // The next reading cannot be compared with the last one: another spot, another filter.
    void forget() { normalized = {}; }

    double flow = 0;  // slpm
    SIM_colors reference{}, sample{};
    SIM_colors normalized{};  // sample relative to reference
    SIM_colors change{};      // of that, since the last second
    SIM_colors transmittance{};
    SIM_colors attenuation{};  // 1/m, from the last two readings
    SIM_colors absorption{};   // the same, corrected

  private:
    void measure(SIM_noise& noise, const SIM_filter_spot& spot, double column, std::size_t color);

    const SIM_filter_model& model_;
    double loading_ = 1;
    double drawn_ = 0;  // by the pump, slpm
    SIM_filter_lid lid_ = SIM_LID_CLOSED;
    SIM_drift lamp_{5e-4, 4 * 3600};
    BOOL begun_ = FALSE;
};

// The settings that scenarios have for each of them.
inline constexpr SIM_setting SIM_FILTER_TRANSMITTANCE = {"transmittance", "of the present spot: 0.1 to 1"};
inline constexpr SIM_setting SIM_FILTER_LOADING = {"loading",
                                                   "how many times faster than in nature filters load"};
// FALSE when the value is no good, or the name is neither.
[[nodiscard]] BOOL SIM_filter_set(SIM_filter_cell& cell, SIM_filter_spot& spot, std::string_view name,
                                  const SIM_value& value);
