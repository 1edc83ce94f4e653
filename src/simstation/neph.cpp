// Zeros, the span check and the common data of the nephelometers.
#include "simstation/neph.h"

#include <algorithm>
#include <cmath>

#include "libvesk/records/log.h"

namespace {

constexpr double NORMAL_WATTS = 75;

NET_COMMON_Neph_Shared shared_of(const SIM_nephcell& cell, const SIM_neph_six& scattering) {
    auto r = NETDSD_default<NET_COMMON_Neph_Shared>();
    SIM_neph_put(r, scattering);
    SIM_neph_put_climate(r, cell.climate());
    return r;
}

void put_exponents(NET_COMMON_Neph_Shared& r, const SIM_nephcell& cell) {
    r.alphaGR = cell.angstrom(r.bsp[1], r.bsp[2]);
    r.alphabGR = cell.angstrom(r.bbsp[1], r.bbsp[2]);
}

NET_COMMON_Neph_SpancheckRun run_second(const SIM_nephcell& cell, double watts) {
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
    : cell(model), m_model(model), m_zeroing(zeroing) {}

void SIM_neph::start(SIM_instrument& sim) {
    cell.start(sim);
    m_check.say(sim);
    if (m_zeroing.every <= 0) return;
    m_last_zero = std::floor(sim.time() / m_zeroing.every) * m_zeroing.every;
    m_next_zero = m_last_zero + m_zeroing.every;
    for (std::size_t i = 0; i < SIM_NEPH_SIX; ++i) {
        const double shift = sim.noise().normal(0, 1e-7);
        if (!VESK_is_missing(cell.background()[i])) m_shift[i] = shift;
    }
}

SIM_neph_inlet SIM_neph::inlet() const {
    if (m_check.running()) return m_check.inlet();
    return m_state == ZERO || m_valve ? SIM_NEPH_FILTERED : SIM_NEPH_AMBIENT;
}

char SIM_neph::letter() const {
    if (m_check.running()) return inlet() == SIM_NEPH_CO2 ? 'C' : 'Z';
    constexpr char letters[] = {'N', 'Z', 'B'};
    return letters[m_state];
}

double SIM_neph::seconds_left(FTIME now) const {
    const FTIME end = m_check.running() ? m_check.phase_end() : m_state == NORMAL ? m_next_zero : m_until;
    return end == VESK_NO_TIME ? VESK_MISSING : std::max(0.0, std::ceil(end - now));
}

void SIM_neph::tick(SIM_instrument& sim) {
    // After CO2 the cell is flushed and its background found anew.
    if (m_check.advance(sim, cell.rayleigh())) begin_zero(sim);
    if (!m_check.running()) advance(sim);
    cell.step(sim, inlet());
    collect(sim);
    send_common(sim);
}

void SIM_neph::advance(SIM_instrument& sim) {
    const FTIME now = sim.time();
    if (m_state == NORMAL) {
        if (m_next_zero != VESK_NO_TIME && now >= m_next_zero) begin_zero(sim);
        return;
    }
    if (now < m_until) return;
    if (m_state == ZERO) return finish_zero(sim);
    m_state = NORMAL;
}

void SIM_neph::begin_zero(SIM_instrument& sim) {
    m_state = ZERO;
    m_valve = FALSE;
    m_last_zero = sim.time();
    m_until = m_last_zero + m_zeroing.length;
    m_zero_sums = {};
    sim.log("zero until %s", SIM_utc_text(m_until).c_str());
}

void SIM_neph::finish_zero(SIM_instrument& sim) {
    SIM_neph_six found;
    std::transform(m_zero_sums.begin(), m_zero_sums.end(), found.begin(),
                   [](const SIM_stats& s) { return s.mean(); });
    if (found == SIM_neph_nothing()) {
        sim.log("zero finished: nothing measured, the background stays");
    } else {
        take_background(found);
        sim.log("zero finished");
    }
    m_state = BLANK;
    m_until = sim.time() + m_zeroing.blank;
    if (m_zeroing.every > 0) m_next_zero = std::max(m_last_zero + m_zeroing.every, m_until);
}

void SIM_neph::take_background(const SIM_neph_six& found) {
    m_zeros.push_back(found);
    while (m_zeros.size() > std::max<std::size_t>(1, m_zeroing.averaged))
        m_zeros.pop_front();
    SIM_neph_six background = cell.background();
    for (std::size_t i = 0; i < SIM_NEPH_SIX; ++i) {
        SIM_stats stats;
        for (const SIM_neph_six& zero : m_zeros)
            stats.add(zero[i]);
        m_shift[i] = VESK_difference(stats.mean(), background[i]);
        if (stats.count() > 0) background[i] = stats.mean();
    }
    cell.set_background(background);
}

// What the zero and the span check make of this second. The first part of a zero is left to the flush.
void SIM_neph::collect(SIM_instrument& sim) {
    m_check.measure(run_second(cell, m_watts));
    const double settling = std::min(m_zeroing.blank, m_zeroing.length / 2);
    if (m_check.running() || m_state != ZERO || sim.time() < m_last_zero + settling) return;
    const SIM_neph_six raw = cell.raw();
    for (std::size_t i = 0; i < SIM_NEPH_SIX; ++i)
        m_zero_sums[i].add(raw[i]);
}

void SIM_neph::send_common(SIM_instrument& sim) {
    NET_COMMON_Neph_Instant r{sim.time(), shared_of(cell, cell.scattering()), {}};
    m_common.add(sim.time(), shared_of(cell, outer_air()));
    r.ra = m_common.mean();
    put_exponents(r.in, cell);
    put_exponents(r.ra, cell);
    sim.send_instant(MSG_COMMON_NEPH_INSTANT, r);
}

// What is said to the station as a whole.
BOOL SIM_neph::hear(SIM_instrument& sim, const VESKMSG_proc_msg* pm) {
    if (pm->msg->msg == m_model.forbids_spancheck && pm->pds != nullptr) {
        m_check.forbid(says_forbidden(pm));
        return TRUE;
    }
    if (pm->msg->msg != MSG_COMMON_NEPH_SPANCHECK_ABORT) return FALSE;
    if (m_check.abort(sim)) begin_zero(sim);
    return TRUE;
}

BOOL SIM_neph::command(SIM_instrument& sim, const VESKMSG_proc_msg* pm) {
    const auto* const order = VESKMSG_payload<NET_COMMON_Neph_SpancheckIssue>(pm);
    if (pm->msg->msg != MSG_COMMON_NEPH_SPANCHECK_ISSUE || order == nullptr) return FALSE;
    if (!m_check.begin(sim, *order)) return TRUE;
    m_state = NORMAL;
    m_valve = FALSE;
    return TRUE;
}

void SIM_neph::order_zero(SIM_instrument& sim) {
    if (m_check.running()) return sim.log("no zero during a span check");
    begin_zero(sim);
}

void SIM_neph::set_zeroing(SIM_instrument& sim, const SIM_neph_zeroing& zeroing) {
    const BOOL reschedule = zeroing.every != m_zeroing.every;
    m_zeroing = zeroing;
    if (reschedule) m_next_zero = std::max(m_last_zero + m_zeroing.every, sim.time() + m_zeroing.blank);
}

void SIM_neph::set_valve(SIM_instrument& sim, BOOL filtered) {
    if (m_check.running() || m_state == ZERO) return sim.log("the zero valve is in use");
    m_valve = filtered;
    sim.log("zero valve %s", filtered ? "on" : "off");
}

void SIM_neph::set_lamp(double watts) {
    m_watts = watts;
    cell.light = m_lamp_good ? watts / NORMAL_WATTS : 0;
}

BOOL SIM_neph::set(std::string_view name, const SIM_value& value) {
    const BOOL on = value.number != 0;
    if (name == SIM_NEPH_BOTTLE.name) {
        cell.bottle_open = on;
    } else if (name == SIM_NEPH_LAMP.name) {
        m_lamp_good = on;
        set_lamp(m_watts);
    } else {
        return FALSE;
    }
    return TRUE;
}
