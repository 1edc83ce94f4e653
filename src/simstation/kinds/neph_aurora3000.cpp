// The Aurora 3000: three wavelengths with backscatter, zeros, and no parameters to change.
#include "libvesk/messages/records/neph.h"
#include "simstation/kinds.h"
#include "simstation/kinds/neph_common.h"

namespace {

constexpr SIM_neph_model MODEL{{450, 525, 635}, TRUE, MSG_LOG_AVG_CONTAMINATION};
constexpr SIM_neph_zeroing ZEROING{.every = 3600};

constexpr WORD LAMP_FAULT = 1;        // bit of the flag word
constexpr double REFERENCE = 850000;  // counts of the reference shutter

struct neph_aurora3000 {
    static constexpr SIM_setting settings[] = {SIM_NEPH_BOTTLE, SIM_NEPH_LAMP};

    void start(SIM_instrument& sim) { model.start(sim); }

    void tick(SIM_instrument& sim) {
        model.tick(sim);
        NET_NEPHAURORA3000_Avg now = reading(sim);
        sim.send_instant(MSG_NEPHAURORA3000_INSTANT, instant(now));
        if (!sim.average_due()) return;
        sim.send_kept(MSG_NEPHAURORA3000_AVERAGE, with_exponents(averages.take_block(sim.average_start())));
    }

    void status(SIM_instrument& sim) {
        auto zero = NETDSD_default<NET_NEPHAURORA3000_Zero>();
        model.put_zero(zero);
        sim.send_changed(MSG_NEPHAURORA3000_ZERO, zero);
        sim.send_changed(MSG_NEPHAURORA3000_ZEROSCHEDULE,
                         NET_NEPHAURORA3000_ZeroSchedule{model.next_zero(sim)});
        const auto flags = static_cast<WORD>(sim.alarm_flags() | (model.lit() ? 0 : LAMP_FAULT));
        sim.send_changed(MSG_NEPHAURORA3000_MODES, NET_NEPHAURORA3000_Modes{flags});
        sim.send_changed(MSG_NEPHAURORA3000_STATUS, NET_NEPHAURORA3000_Status{sim.have_comms()});
    }

    BOOL hear(SIM_instrument& sim, const VESKMSG_proc_msg* pm) { return model.hear(sim, pm); }

    BOOL command(SIM_instrument& sim, const VESKMSG_proc_msg* pm) {
        if (pm->msg->msg != MSG_NEPHAURORA3000_ISSUE_ZERO) return model.command(sim, pm);
        return model.order_zero(sim);
    }

    BOOL set(SIM_instrument&, std::string_view name, const SIM_value& value) {
        return model.set(name, value);
    }

    // The present reading; the averages take only its outer air.
    NET_NEPHAURORA3000_Avg reading(SIM_instrument& sim) {
        auto r = NETDSD_default<NET_NEPHAURORA3000_Avg>();
        r.start_time = sim.time();
        for (std::size_t i = 0; i < 3; ++i) {
            r.c.total[i] = model.cell.sample_counts()[i];
            r.c.back[i] = model.cell.sample_counts()[i + 3];
            r.c.ref[i] = sim.noise().poisson(REFERENCE * model.cell.light);
        }
        r.c.dark = model.cell.dark_counts()[1];
        const SIM_neph_climate& c = model.cell.climate();
        r.T_sample = c.T_neph;
        r.T_cell = c.T_neph + 1.5 + sim.noise().normal(0, 0.02);  // the wall is nearer to the lamp
        r.RH_sample = c.RH_neph;
        r.P_sample = c.P;
        SIM_neph_put(r.s, model.outer_air());
        averages.add(sim.time(), r);
        SIM_neph_put(r.s, model.cell.scattering());
        return with_exponents(r, model.ambient());
    }

    NET_NEPHAURORA3000_Avg with_exponents(NET_NEPHAURORA3000_Avg r, BOOL outer = TRUE) const {
        r.aGR = model.exponent(r.s.bsp[1], r.s.bsp[2], outer);
        r.abGR = model.exponent(r.s.bbsp[1], r.s.bbsp[2], outer);
        return r;
    }

    NET_NEPHAURORA3000_Instant instant(const NET_NEPHAURORA3000_Avg& now) const {
        return {now.start_time,  now.s,        now.c,      with_exponents(averages.running()),
                model.ambient(), now.T_sample, now.T_cell, now.RH_sample,
                now.P_sample,    now.aGR,      now.abGR};
    }

    SIM_neph model{MODEL, ZEROING};
    SIM_neph_averages<NET_NEPHAURORA3000_Avg> averages;
};

}  // namespace

constinit const SIM_decl SIM_DCL_neph_aurora3000 = SIM_decl_of<neph_aurora3000>();
