// The chance of the simulated station: one reproducible stream of numbers per name, and the slow wanderings
// made from it. The generator and the draws use basic arithmetic only, so that a seed means the same station
// everywhere; the library's own distributions would differ from one standard library to the next.
#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string_view>

#include "libvesk/support/types.h"

class SIM_noise {
  public:
    // The same seed and name give the same numbers.
    SIM_noise(std::uint64_t seed, std::string_view name);

    double uniform();  // 0 to below 1
    double uniform(double low, double high);
    double normal();  // mean 0, standard deviation 1, within 6 of them
    double normal(double mean, double sd) { return mean + sd * normal(); }
    double lognormal(double median, double sigma);  // sigma of the natural logarithm
    double poisson(double mean);                    // a whole number; 0 for a mean that is not positive
    BOOL chance(double probability) { return uniform() < probability; }
    std::size_t pick(std::size_t n);  // 0 to n - 1; n is at least 1

  private:
    std::mt19937_64 engine_;
};

// A value that wanders around 0 and always comes back: standard deviation `sd`, memory `tau` seconds.
class SIM_drift {
  public:
    constexpr SIM_drift(double sd, double tau) : sd_(sd), tau_(tau) {}
    double step(SIM_noise& noise, double dt);  // the first step draws where it begins
    [[nodiscard]] double value() const { return value_; }

  private:
    double sd_;
    double tau_;
    double value_ = 0;
    BOOL begun_ = FALSE;
};

// `value` after dt seconds on its way to `target` with a time constant of `lag` seconds; 0: at once.
[[nodiscard]] double SIM_approach(double value, double target, double lag, double dt);
// The daily cycle: 1 at `peak_hour` (UTC), -1 twelve hours later.
[[nodiscard]] double SIM_diurnal(FTIME now, double peak_hour);
// Presses a positive value smoothly (on a logarithmic scale) between the two, so that it never clips flat.
[[nodiscard]] double SIM_within(double value, double low, double high);
