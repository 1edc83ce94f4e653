// Water vapour: saturation pressures and the temperatures of dew and frost.
#pragma once

#include <cmath>

// Saturation pressure by the formula of Magnus with the constants of Sonntag (1990), as in the Guide to
// Instruments and Methods of Observation (WMO-No. 8), annex 4.B.
struct SIM_saturation {
    double a, b;                              // b in degrees Celsius
    static constexpr double AT_ZERO = 6.112;  // hPa

    [[nodiscard]] double pressure(double celsius) const {  // hPa
        return AT_ZERO * std::exp(a * celsius / (b + celsius));
    }
    // The temperature at which that vapour pressure saturates, Celsius; `hpa` is above 0.
    [[nodiscard]] double temperature(double hpa) const {
        const double x = std::log(hpa / AT_ZERO);
        return b * x / (a - x);
    }
};
inline constexpr SIM_saturation SIM_OVER_WATER{.a = 17.62, .b = 243.12};
inline constexpr SIM_saturation SIM_OVER_ICE{.a = 22.46, .b = 272.62};
