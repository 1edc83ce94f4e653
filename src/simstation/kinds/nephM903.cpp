// The single-wavelength nephelometer: green total scatter only, no commands but the span check.
#include "libvesk/messages/records/neph.h"
#include "simstation/kinds.h"
#include "simstation/kinds/neph_common.h"

namespace {

constexpr SIM_neph_model MODEL{{0, 530, 0}, FALSE, MSG_LOG_AVG_CONTAMINATION};
constexpr SIM_neph_zeroing ZEROING{.every = 0};  // only after a span check
constexpr double REFERENCE = 12e-6;              // what its reference chopper shows, 1/m

struct nephM903 {
    static constexpr SIM_setting settings[] = {SIM_NEPH_BOTTLE, SIM_NEPH_LAMP};

    void start(SIM_instrument& sim) { model.start(sim); }

    void tick(SIM_instrument& sim) {
        model.tick(sim);
        auto now = NETDSD_default<NET_NEPHM903_Avg>();
        now.start_time = sim.time();
        now.bspg = model.outer_air()[1];
        if (model.lit()) now.greenref = REFERENCE * sim.noise().normal(1, 0.004);
        SIM_neph_put_climate(now, model.cell.climate());
        averages.add(sim.time(), now);
        sim.send_instant(
            MSG_NEPHM903_INSTANT,
            NET_NEPHM903_Instant{now.start_time, model.cell.scattering()[1], now.greenref, now.T_neph,
                                 now.RH_neph, now.T_inlet, now.RH_inlet, now.P, averages.running()});
        if (sim.average_due()) sim.send_kept(MSG_NEPHM903_AVERAGE, averages.take_block(sim.average_start()));
    }

    void status(SIM_instrument& sim) {
        sim.send_changed(MSG_NEPHM903_STATUS, NET_NEPHM903_Status{sim.have_comms()});
    }

    BOOL hear(SIM_instrument& sim, const VESKMSG_proc_msg* pm) { return model.hear(sim, pm); }
    BOOL command(SIM_instrument& sim, const VESKMSG_proc_msg* pm) { return model.command(sim, pm); }
    BOOL set(SIM_instrument&, std::string_view name, const SIM_value& value) {
        return model.set(name, value);
    }

    SIM_neph model{MODEL, ZEROING};
    SIM_neph_averages<NET_NEPHM903_Avg> averages;
};

}  // namespace

constinit const SIM_decl SIM_DCL_nephM903 = SIM_decl_of<nephM903>();
