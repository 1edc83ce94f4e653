// The cost of one value on the screen: a field of the extended format beside the C library's printf of the
// same width. Values differ from call to call, as measurements do, and stay in the range that fits the field.
#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <random>

#include "libvesk/support/sfmt.h"

namespace {

constexpr std::size_t N_VALUES = 1024;  // a power of two

// Evenly spread over the decades from 10^low to 10^high, either sign.
std::array<double, N_VALUES> values_between(double low, double high) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> exponent(low, high);
    std::array<double, N_VALUES> values{};
    for (double& v : values)
        v = std::pow(10.0, exponent(random)) * ((random() & 1U) != 0 ? 1 : -1);
    return values;
}

const std::array<double, N_VALUES>& fixed_values() {
    static const auto values = values_between(-1, 4);
    return values;
}
const std::array<double, N_VALUES>& scientific_values() {
    static const auto values = values_between(-8, 3);
    return values;
}

void with_snprintf(benchmark::State& state, const std::array<double, N_VALUES>& values, const char* format) {
    char text[64];
    std::size_t i = 0;
    for (auto _ : state) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
        std::snprintf(text, sizeof text, format, values[i++ % N_VALUES]);
#pragma GCC diagnostic pop
        benchmark::DoNotOptimize(text);
        benchmark::ClobberMemory();
    }
}

void with_sfmt(benchmark::State& state, const std::array<double, N_VALUES>& values,
               SFMT_altformat<double> format) {
    SFMT_buffer text{};
    std::size_t i = 0;
    for (auto _ : state) {
        SFMT_altprintf(&text, format, values[i++ % N_VALUES]);
        benchmark::DoNotOptimize(text.buffer);
        benchmark::ClobberMemory();
    }
    SFMT_destroy_buffer(&text);
}

void fixed_snprintf(benchmark::State& state) {
    with_snprintf(state, fixed_values(), "%7.1f");
}
void fixed_sfmt(benchmark::State& state) {
    with_sfmt(state, fixed_values(), "*~5.1f");
}
void scientific_snprintf(benchmark::State& state) {
    with_snprintf(state, scientific_values(), "%+.3e");
}
void scientific_sfmt(benchmark::State& state) {
    with_sfmt(state, scientific_values(), "*~+01.03.02e");
}
void missing_sfmt(benchmark::State& state) {
    static const auto values = [] {
        std::array<double, N_VALUES> none{};
        none.fill(VESK_MISSING);
        return none;
    }();
    with_sfmt(state, values, "*~5.1f");
}

BENCHMARK(fixed_snprintf);
BENCHMARK(fixed_sfmt);
BENCHMARK(scientific_snprintf);
BENCHMARK(scientific_sfmt);
BENCHMARK(missing_sfmt);

}  // namespace
