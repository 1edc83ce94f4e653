// Zeros, the span check and the common data of the nephelometers.
#include "simstation/kinds/neph_common.h"

#include <algorithm>
#include <cmath>

#include "libvesk/messages/records/log.h"

namespace {

constexpr double NORMAL_WATTS = 75;

NET_COMMON_Neph_Shared shared_of(const SIM_neph_cell& cell, const SIM_neph_six& scattering) {
    auto r = NETDSD_default<NET_COMMON_Neph_Shared>();
    SIM_neph_put(r, scattering);
    SIM_neph_put_climate(r, cell.climate());
    return r;
}

NET_COMMON_Neph_SpancheckRun run_second(const SIM_neph_cell& cell, double watts) {
    auto r = NETDSD_default<NET_COMMON_Neph_SpancheckRun>();
    SIM_neph_put(r, cell.scattering());
    SIM_neph_put_counts(r, cell);
    r.T = cell.climate().T_neph;
    r.RH = cell.climate().RH_neph;
    r.P = cell.climate().P;
    r.den = cell.density();
    r.power = watts;
    return r;
}

// The first byte of the two records that can forbid span checks.
BOOL says_forbidden(const VESKMSG_proc_msg* pm) {
    if (const auto* const r = VESKMSG_payload<NET_LOG_AVG_Bypass>(pm)) return r->bypassed;
    const auto* const r = VESKMSG_payload<NET_LOG_AVG_Contamination>(pm);
    return r != nullptr && r->contaminated;
}

}  // namespace

SIM_neph::SIM_neph(const SIM_neph_model& model, const SIM_neph_zeroing& zeroing)
    : cell(model), model_(model), zeroing_(zeroing) {}

void SIM_neph::start(SIM_instrument& sim) {
    cell.start(sim);
    check_.say(sim);
    if (zeroing_.every <= 0) return;
    last_zero_ = std::floor(sim.time() / zeroing_.every) * zeroing_.every;
    next_zero_ = last_zero_ + zeroing_.every;
    for (std::size_t i = 0; i < SIM_NEPH_SIX; ++i) {
        const double shift = sim.noise().normal(0, 1e-7);
        if (!VESK_is_missing(cell.background()[i])) shift_[i] = shift;
    }
}

SIM_neph_inlet SIM_neph::inlet() const {
    if (check_.running()) return check_.inlet();
    return state_ == ZERO || valve_ ? SIM_NEPH_FILTERED : SIM_NEPH_AMBIENT;
}

char SIM_neph::letter() const {
    if (check_.running()) return inlet() == SIM_NEPH_CO2 ? 'C' : 'Z';
    constexpr char letters[] = {'N', 'Z', 'B'};
    return letters[state_];
}

double SIM_neph::seconds_left(FTIME now) const {
    const FTIME end = check_.running() ? check_.phase_end() : state_ == NORMAL ? next_zero_ : until_;
    return end == VESK_NO_TIME ? VESK_MISSING : std::max(0.0, std::ceil(end - now));
}

void SIM_neph::tick(SIM_instrument& sim) {
    // After CO2 the cell is flushed and its background found anew.
    if (check_.advance(sim, cell.rayleigh())) begin_zero(sim);
    if (!check_.running()) advance(sim);
    cell.step(sim, inlet());
    collect(sim);
    send_common(sim);
}

void SIM_neph::advance(SIM_instrument& sim) {
    const FTIME now = sim.time();
    if (state_ == NORMAL) {
        if (next_zero_ != VESK_NO_TIME && now >= next_zero_) begin_zero(sim);
        return;
    }
    if (now < until_) return;
    if (state_ == ZERO) return finish_zero(sim);
    state_ = NORMAL;
}

void SIM_neph::begin_zero(SIM_instrument& sim) {
    state_ = ZERO;
    valve_ = FALSE;
    last_zero_ = sim.time();
    until_ = last_zero_ + zeroing_.length;
    plan_zero(sim);
    zero_sums_ = {};
    sim.log("zero until %s", SIM_utc_text(until_).c_str());
}

void SIM_neph::finish_zero(SIM_instrument& sim) {
    SIM_neph_six found;
    std::transform(zero_sums_.begin(), zero_sums_.end(), found.begin(),
                   [](const SIM_stats& s) { return s.mean(); });
    if (found == SIM_neph_nothing()) {
        sim.log("zero finished: nothing measured, the background stays");
    } else {
        take_background(found);
        sim.log("zero finished");
    }
    state_ = BLANK;
    until_ = sim.time() + zeroing_.blank;
}

// After the one that runs, if one does, and after a span check, which ends with one.
void SIM_neph::plan_zero(SIM_instrument& sim) {
    if (zeroing_.every <= 0) return;
    const FTIME free = state_ == NORMAL ? sim.time() : until_;
    next_zero_ = std::max(last_zero_ + zeroing_.every, free + zeroing_.blank);
    if (check_.running()) next_zero_ = check_.end();
}

void SIM_neph::take_background(const SIM_neph_six& found) {
    zeros_.push_back(found);
    while (zeros_.size() > std::max<std::size_t>(1, zeroing_.averaged))
        zeros_.pop_front();
    SIM_neph_six background = cell.background();
    for (std::size_t i = 0; i < SIM_NEPH_SIX; ++i) {
        SIM_stats stats;
        for (const SIM_neph_six& zero : zeros_)
            stats.add(zero[i]);
        shift_[i] = VESK_difference(stats.mean(), background[i]);
        if (stats.count() > 0) background[i] = stats.mean();
    }
    cell.set_background(background);
}

// Adds this second to the zero and to the span check. The first part of a zero is left to the flush.
void SIM_neph::collect(SIM_instrument& sim) {
    check_.measure(run_second(cell, watts_));
    const double settling = std::min(zeroing_.blank, zeroing_.length / 2);
    if (check_.running() || state_ != ZERO || sim.time() < last_zero_ + settling) return;
    const SIM_neph_six raw = cell.raw();
    for (std::size_t i = 0; i < SIM_NEPH_SIX; ++i)
        zero_sums_[i].add(raw[i]);
}

void SIM_neph::send_common(SIM_instrument& sim) {
    NET_COMMON_Neph_Instant r{sim.time(), shared_of(cell, cell.scattering()), {}};
    common_.add(sim.time(), shared_of(cell, outer_air()));
    r.ra = common_.mean();
    r.in.alphaGR = exponent(r.in.bsp[1], r.in.bsp[2], ambient());
    r.in.alphabGR = exponent(r.in.bbsp[1], r.in.bbsp[2], ambient());
    r.ra.alphaGR = exponent(r.ra.bsp[1], r.ra.bsp[2]);
    r.ra.alphabGR = exponent(r.ra.bbsp[1], r.ra.bbsp[2]);
    sim.send_instant(MSG_COMMON_NEPH_INSTANT, r);
}

// Messages to the whole station.
BOOL SIM_neph::hear(SIM_instrument& sim, const VESKMSG_proc_msg* pm) {
    if (pm->msg->msg == model_.forbids_spancheck && pm->pds != nullptr) {
        check_.forbid(says_forbidden(pm));
        return TRUE;
    }
    if (pm->msg->msg == MSG_COMMON_NEPH_SPANCHECK_ISSUE && !sim.have_comms())
        return sim.refuse("span check", SIM_NO_COMMS);
    if (pm->msg->msg != MSG_COMMON_NEPH_SPANCHECK_ABORT) return FALSE;
    if (check_.abort(sim)) begin_zero(sim);
    return TRUE;
}

BOOL SIM_neph::command(SIM_instrument& sim, const VESKMSG_proc_msg* pm) {
    const auto* const order = VESKMSG_payload<NET_COMMON_Neph_SpancheckIssue>(pm);
    if (pm->msg->msg != MSG_COMMON_NEPH_SPANCHECK_ISSUE || order == nullptr) return FALSE;
    if (!check_.begin(sim, *order)) return FALSE;
    state_ = NORMAL;
    valve_ = FALSE;
    plan_zero(sim);
    return TRUE;
}

BOOL SIM_neph::order_zero(SIM_instrument& sim) {
    if (check_.running()) return sim.refuse("zero", "a span check runs");
    begin_zero(sim);
    return TRUE;
}

void SIM_neph::set_zeroing(SIM_instrument& sim, const SIM_neph_zeroing& zeroing) {
    const BOOL reschedule = zeroing.every != zeroing_.every;
    zeroing_ = zeroing;
    if (reschedule) plan_zero(sim);
}

BOOL SIM_neph::set_valve(SIM_instrument& sim, BOOL filtered) {
    if (check_.running()) return sim.refuse("zero valve", "a span check runs");
    if (state_ == ZERO) return sim.refuse("zero valve", "a zero runs");
    valve_ = filtered;
    sim.log("zero valve %s", filtered ? "on" : "off");
    return TRUE;
}

void SIM_neph::set_lamp(double watts) {
    watts_ = watts;
    cell.light = lamp_good_ ? watts / NORMAL_WATTS : 0;
}

BOOL SIM_neph::set(std::string_view name, const SIM_value& value) {
    const BOOL on = value.number != 0;
    if (name == SIM_NEPH_BOTTLE.name) {
        cell.bottle_open = on;
    } else if (name == SIM_NEPH_LAMP.name) {
        lamp_good_ = on;
        set_lamp(watts_);
    } else {
        return FALSE;
    }
    return TRUE;
}
