// The sequence of a span check and its arithmetic.
#include "simstation/kinds/spancheck.h"

#include <algorithm>
#include <cmath>

#include "libvesk/support/util.h"

namespace {

constexpr double SHORTEST_PHASE = 1;       // seconds
constexpr double LONGEST_CHECK = 86400;    // seconds: beyond, somebody's clock is wrong
constexpr double SAME_CLOCK = 3;           // seconds: a station in real time is at most that much behind
constexpr double CHOPPER_PER_SECOND = 23;  // revolutions
constexpr double LEAST_STEP = 1e-6;        // 1/m between the gases: below, no CO2 came

struct phase_row {
    const char* name;
    SIM_neph_inlet inlet;
};

constexpr phase_row g_phases[NET_COMMON_NEPH_SC_COUNT] = {
    {.name = "none", .inlet = SIM_NEPH_AMBIENT},
    {.name = "flushing with air", .inlet = SIM_NEPH_FILTERED},
    {.name = "flushing with CO2", .inlet = SIM_NEPH_CO2},
    {.name = "sampling CO2", .inlet = SIM_NEPH_CO2},
    {.name = "flushing with air", .inlet = SIM_NEPH_FILTERED},
    {.name = "sampling air", .inlet = SIM_NEPH_FILTERED},
};

using five_times = std::array<FTIME, NET_COMMON_NEPH_SC_COUNT - 1>;

five_times ends_of(const NET_COMMON_Neph_SpancheckIssue& order) {
    return {order.end_init_air_flush, order.end_init_co2_flush, order.end_co2_sample,
            order.end_sample_air_flush, order.end_air_sample};
}

// The fault of the ordered ends, null for none.
const char* objection(const five_times& ends, FTIME now) {
    if (!std::all_of(ends.begin(), ends.end(), [](FTIME t) { return std::isfinite(t); }))
        return "an end is no time";
    if (!std::is_sorted(ends.begin(), ends.end())) return "the ends are not in order";
    return ends.back() - now > LONGEST_CHECK ? "it would take more than a day" : nullptr;
}

// The ends of the simulated clock. A station that runs in real time keeps the very times of the console.
five_times simulated(const five_times& ends, FTIME simulated_now, FTIME real_now) {
    const double ahead = simulated_now - real_now;
    five_times mapped;
    mapped[0] = ends[0] + (std::abs(ahead) < SAME_CLOCK ? 0 : ahead);
    mapped[0] = std::max(mapped[0], simulated_now + SHORTEST_PHASE);
    for (std::size_t i = 1; i < ends.size(); ++i)
        mapped[i] = mapped[i - 1] + std::max(ends[i] - ends[i - 1], SHORTEST_PHASE);
    return mapped;
}

// Means, but for the revolutions, which are summed.
NET_COMMON_Neph_SpancheckRun run_of(const SIM_record_block<NET_COMMON_Neph_SpancheckRun>& block) {
    NET_COMMON_Neph_SpancheckRun run = block.mean();
    const double revolutions = CHOPPER_PER_SECOND * block.count();
    for (int i = 0; i < 3; ++i) {
        if (!VESK_is_missing(run.bsp[i])) run.revsTS[i] = revolutions;
        if (!VESK_is_missing(run.bbsp[i])) run.revsBS[i] = revolutions;
    }
    return run;
}

// One channel of the results. The instrument shows CO2 above the air of its zero; with the air's own
// scattering added it is that of the whole gas, at standard conditions.
struct channel {
    double co2 = VESK_MISSING;
    double sensitivity = VESK_MISSING;
    double error = VESK_MISSING;
};

struct channel_run {
    double scattering, counts, density;
};

channel compare(channel_run air, channel_run co2, double rayleigh) {
    channel c;
    const double step = VESK_difference(co2.scattering, air.scattering);
    if (VESK_is_missing(step) || VESK_is_missing(rayleigh)) return c;
    c.co2 = (step + rayleigh * air.density) / co2.density;
    c.error = 100 * (c.co2 / (SIM_CO2_TO_AIR * rayleigh) - 1);
    const double counted = VESK_difference(co2.counts, air.counts);
    if (!VESK_is_missing(counted) && std::abs(step) >= LEAST_STEP) c.sensitivity = counted / step;
    return c;
}

}  // namespace

NET_COMMON_Neph_SpancheckResults SIM_spancheck_results(const NET_COMMON_Neph_SpancheckRun& air,
                                                       const NET_COMMON_Neph_SpancheckRun& co2,
                                                       const SIM_neph_six& rayleigh) {
    auto r = NETDSD_default<NET_COMMON_Neph_SpancheckResults>();
    r.air = air;
    r.co2 = co2;
    SIM_stats errors;
    const auto count_in = [&errors](double error) {
        errors.add(VESK_is_missing(error) ? error : std::abs(error));
    };
    for (std::size_t i = 0; i < 3; ++i) {
        const channel ts =
            compare({air.bsp[i], air.sampTS[i], air.den}, {co2.bsp[i], co2.sampTS[i], co2.den}, rayleigh[i]);
        const channel bs = compare({air.bbsp[i], air.sampBS[i], air.den},
                                   {co2.bbsp[i], co2.sampBS[i], co2.den}, rayleigh[i + 3]);
        r.bsgCO2[i] = ts.co2;
        r.bbsgCO2[i] = bs.co2;
        r.sensTS[i] = ts.sensitivity;
        r.sensBS[i] = bs.sensitivity;
        r.pcterrTS[i] = ts.error;
        r.pcterrBS[i] = bs.error;
        count_in(ts.error);
        count_in(bs.error);
    }
    r.avgErr = errors.mean();
    return r;
}

BOOL SIM_spancheck::begin(SIM_instrument& sim, const NET_COMMON_Neph_SpancheckIssue& order) {
    const FTIME real_now = UTIL_ftime();
    const five_times ends = ends_of(order);
    const char* const wrong = forbidden_ ? "bypassed or contaminated" : objection(ends, real_now);
    if (wrong != nullptr) {
        sim.refuse("span check", "%s", wrong);
        return FALSE;
    }
    ends_ = simulated(ends, sim.time(), real_now);
    air_.reset();
    co2_.reset();
    enter(sim, NET_COMMON_NEPH_SC_FLUSH_AIR_INIT);
    return TRUE;
}

BOOL SIM_spancheck::abort(SIM_instrument& sim) {
    if (!running()) return FALSE;
    sim.log("span check aborted");
    enter(sim, NET_COMMON_NEPH_SC_NONE);
    return TRUE;
}

void SIM_spancheck::enter(SIM_instrument& sim, int phase) {
    phase_ = phase;
    if (running())
        sim.log("span check: %s until %s", g_phases[phase_].name, SIM_utc_text(phase_end()).c_str());
    say(sim);
}

// After lost communications several phases may be over at once.
BOOL SIM_spancheck::advance(SIM_instrument& sim, const SIM_neph_six& rayleigh) {
    while (running() && sim.time() >= phase_end()) {
        if (phase_ == NET_COMMON_NEPH_SC_SAMPLE_AIR) return conclude(sim, rayleigh);
        enter(sim, phase_ + 1);
    }
    return FALSE;
}

BOOL SIM_spancheck::conclude(SIM_instrument& sim, const SIM_neph_six& rayleigh) {
    if (air_.count() > 0 && co2_.count() > 0) {
        const NET_COMMON_Neph_SpancheckResults r =
            SIM_spancheck_results(run_of(air_), run_of(co2_), rayleigh);
        sim.send(MSG_COMMON_NEPH_SPANCHECK_RESULTS, r);
        if (VESK_is_missing(r.avgErr)) {
            sim.log("span check finished: nothing measured");
        } else {
            sim.log("span check finished: average error %.2f %%", +r.avgErr);
        }
    } else {
        sim.log("span check finished without results: a gas was not sampled");
    }
    enter(sim, NET_COMMON_NEPH_SC_NONE);
    return TRUE;
}

void SIM_spancheck::measure(const NET_COMMON_Neph_SpancheckRun& second) {
    if (phase_ == NET_COMMON_NEPH_SC_SAMPLE_CO2) co2_.add(second);
    if (phase_ == NET_COMMON_NEPH_SC_SAMPLE_AIR) air_.add(second);
}

void SIM_spancheck::say(SIM_instrument& sim) const {
    sim.send_changed(MSG_COMMON_NEPH_SPANCHECK_PHASE, NET_COMMON_Neph_SpancheckPhase{phase_, phase_end()});
}

FTIME SIM_spancheck::end() const {
    return running() ? ends_.back() : VESK_NO_TIME;
}

FTIME SIM_spancheck::phase_end() const {
    return running() ? ends_[static_cast<std::size_t>(phase_) - 1] : VESK_NO_TIME;
}

SIM_neph_inlet SIM_spancheck::inlet() const {
    return g_phases[phase_].inlet;
}
