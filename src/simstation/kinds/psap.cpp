// The particle soot absorption photometers: one spot that darkens until the operator changes the filter.
#include <cmath>

#include "libvesk/messages/records/psap.h"
#include "simstation/kinds.h"
#include "simstation/physics/average.h"
#include "simstation/physics/filter.h"

namespace {

constexpr double SPOT_AREA = 17.8e-6;  // m2
constexpr double FLOW = 1.0;           // slpm
constexpr double NOISE = 2e-6;

// The behaviour of both kinds, for either one's records.
class photometer {
  public:
    explicit photometer(const SIM_filter_model& model) : cell(model) {}

    // The filter that it finds itself with is half used.
    void begin(SIM_noise& noise) {
        spot.renew(noise);
        spot.set_transmittance(noise.uniform(0.75, 0.98));
    }
    void step(SIM_instrument& sim) {
        cell.step(sim, spot, !changing, changing ? SIM_LID_OPEN : SIM_LID_CLOSED);
        for (std::size_t i = 0; i < cell.colors(); ++i) {
            sample[i].add(cell.sample[i]);
            reference[i].add(cell.reference[i]);
            smoothed[i].add(sim.time(), cell.absorption[i]);
        }
        remind(sim);
    }
    // Ends with a new filter in place.
    BOOL change(SIM_instrument& sim, BOOL begins) {
        if (changing == begins)
            return sim.refuse(begins ? "filter change" : "end of the filter change",
                              begins ? "one runs already" : "none runs");
        changing = begins;
        reminded = FALSE;
        cell.forget();
        for (SIM_running& s : smoothed)
            s.reset();
        if (!begins) spot.renew(sim.noise());
        sim.log("filter change %s", begins ? "begins" : "has ended");
        return TRUE;
    }

    SIM_filter_cell cell;
    SIM_filter_spot spot;
    BOOL changing = FALSE;
    std::array<SIM_ripple, 3> sample, reference;
    std::array<SIM_running, 3> smoothed;  // absorption, 1/m

  private:
    // Nobody but the operator changes it.
    void remind(SIM_instrument& sim) {
        if (reminded || changing || spot.transmittance(0) > SIM_FILTER_FULL) return;
        reminded = TRUE;
        sim.send_error_line("%s: the filter is used up", sim.name().c_str());
    }
    BOOL reminded = FALSE;
};

// K names the records and messages of a kind, and fills its readings.
template <class K>
struct psap_kind {
    static constexpr SIM_setting settings[] = {SIM_FILTER_TRANSMITTANCE, SIM_FILTER_LOADING};

    void start(SIM_instrument& sim) { model.begin(sim.noise()); }

    void tick(SIM_instrument& sim) {
        model.step(sim);
        sim.send_instant(K::INSTANT, kind.instant(model, sim.time()));
        if (!model.changing) kind.add(model, sim.time());
        if (!sim.average_due()) return;
        auto average = kind.take_average();
        average.start_time = sim.average_start();
        sim.send_kept(K::AVERAGE, average);
    }

    void status(SIM_instrument& sim) {
        sim.send_changed(K::FILTERSTATUS, typename K::FilterStatus{model.changing});
        sim.send_changed(K::STATUS, typename K::Status{sim.have_comms()});
    }

    BOOL command(SIM_instrument& sim, const VESKMSG_proc_msg* pm) {
        if (pm->msg->msg != K::SET) return FALSE;
        const auto* const wanted = VESKMSG_payload<typename K::FilterStatus>(pm);
        return wanted != nullptr && model.change(sim, wanted->changing_filter);
    }

    BOOL set(SIM_instrument&, std::string_view name, const SIM_value& value) {
        return SIM_filter_set(model.cell, model.spot, name, value);
    }

    photometer model{K::model};
    K kind;
};

// The names of a kind's records (NET_<prefix>_*) and messages (MSG_<prefix>_*).
#define PSAP_NAMES(prefix)                                                   \
    using Avg = NET_##prefix##_Avg;                                          \
    using Instant = NET_##prefix##_Instant;                                  \
    using FilterStatus = NET_##prefix##_FilterStatus;                        \
    using Status = NET_##prefix##_Status;                                    \
    static constexpr NETMSG_type AVERAGE = MSG_##prefix##_AVERAGE;           \
    static constexpr NETMSG_type INSTANT = MSG_##prefix##_INSTANT;           \
    static constexpr NETMSG_type STATUS = MSG_##prefix##_STATUS;             \
    static constexpr NETMSG_type FILTERSTATUS = MSG_##prefix##_FILTERSTATUS; \
    static constexpr NETMSG_type SET = MSG_##prefix##_SETFILTERSATUS

struct psap {
    PSAP_NAMES(PSAP);
    static constexpr double nm[] = {565};
    static constexpr SIM_filter_model model{nm, SPOT_AREA, FLOW, NOISE};

    Instant instant(const photometer& p, FTIME time) const {
        const SIM_filter_cell& c = p.cell;
        auto r = NETDSD_default<Instant>();
        const SIM_stats minute = p.smoothed[0].stats();
        r.start_time = time;
        r.bap = minute.mean();
        r.bap_I = c.attenuation[0];
        r.tr = c.transmittance[0];
        r.trc = 1 / SIM_filter_enhancement(c.transmittance[0]);
        r.Q_slpm = c.flow;
        r.I_sample = static_cast<std::int32_t>(std::lround(c.sample[0]));
        r.I_reference = static_cast<std::int32_t>(std::lround(c.reference[0]));
        r.I = c.normalized[0];
        r.dI = c.change[0];
        r.bapG_avg_avg = minute.mean();
        r.bapG_avg_stddev = minute.stddev();
        r.smoothed_tr = p.spot.transmittance(0);
        r.smoothed_Q_slpm = c.flow;
        r.smoothed_I_sam = c.sample[0];
        r.smoothed_I_sam_rsd = p.sample[0].rsd();
        r.smoothed_I_ref = c.reference[0];
        r.smoothed_I_ref_rsd = p.reference[0].rsd();
        return r;
    }
    void add(const photometer& p, FTIME /*time*/) { block.add(p.cell.absorption[0]); }
    Avg take_average() {
        const Avg average{VESK_NO_TIME, block.mean(), block.stddev()};
        block.reset();
        return average;
    }

    SIM_stats block;
};

struct psap3 {
    PSAP_NAMES(PSAP3);
    static constexpr double nm[] = {467, 530, 660};
    static constexpr SIM_filter_model model{nm, SPOT_AREA, FLOW, NOISE};

    Instant instant(const photometer& p, FTIME time) const {
        const SIM_filter_cell& c = p.cell;
        auto r = NETDSD_default<Instant>();
        r.start_time = time;
        r.Q = c.flow;
        for (std::size_t i = 0; i < std::size(nm); ++i) {
            r.bap[i] = p.smoothed[i].mean();
            r.bap_I[i] = c.attenuation[i];
            r.tr[i] = c.transmittance[i];
            r.I_sample[i] = c.sample[i];
            r.I_reference[i] = c.reference[i];
            r.I_sam_rsd[i] = p.sample[i].rsd();
            r.I_ref_rsd[i] = p.reference[i].rsd();
            r.I[i] = c.normalized[i];
            r.dI[i] = c.change[i];
        }
        return r;
    }
    void add(const photometer& p, FTIME time) {
        auto r = NETDSD_default<Avg>();
        r.start_time = time;
        for (std::size_t i = 0; i < std::size(nm); ++i) {
            r.bap[i] = p.cell.absorption[i];
            r.tr[i] = p.cell.transmittance[i];
        }
        block.add(r);
    }
    Avg take_average() {
        const Avg average = block.mean();
        block.reset();
        return average;
    }

    SIM_record_block<Avg> block;
};

}  // namespace

constinit const SIM_decl SIM_DCL_psap = SIM_decl_of<psap_kind<psap>>();
constinit const SIM_decl SIM_DCL_psap3 = SIM_decl_of<psap_kind<psap3>>();
