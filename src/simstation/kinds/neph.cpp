// The three-wavelength nephelometer, with the parameters that consoles change.
#include <algorithm>
#include <cmath>

#include "libvesk/messages/records/neph.h"
#include "libvesk/support/util.h"
#include "simstation/kinds.h"
#include "simstation/kinds/neph_common.h"

namespace {

constexpr SIM_neph_model MODEL{{450, 550, 700}, TRUE, MSG_LOG_AVG_BYPASS};

constexpr WORD LAMP_FAULT = 1;  // bits of the flag word
constexpr WORD VALVE_HELD = 2;

constexpr int VALVE_UNCHANGED = -1;  // where an order leaves the zero valve as it is
constexpr double NORMAL_WATTS = 75;
constexpr double NORMAL_VOLTS = 12;
constexpr double FULL_BLOWER = 255;
constexpr double PMT_EXPONENT = 7;  // of the amplification's rise with the voltage

constexpr NET_NEPH_Config INITIAL{
    .smz = 1,
    .sta = 1,
    .stb = 60,
    .stp = 3600,
    .stz = 300,
    .smb = TRUE,
    .sp = 75,
    .l = TRUE,
    .sx = 0,
    .b = 255,
    .svb = 1100,
    .svg = 1000,
    .svr = 1050,
};

SIM_neph_zeroing zeroing_of(const NET_NEPH_Config& c) {
    return {.every = static_cast<double>(c.stp),
            .length = static_cast<double>(c.stz),
            .blank = static_cast<double>(c.stb),
            .averaged = static_cast<std::size_t>(c.smz)};
}

double amplification(std::int16_t volts, std::int16_t normal) {
    return std::pow(static_cast<double>(volts) / normal, PMT_EXPONENT);
}

struct neph {
    static constexpr SIM_setting settings[] = {SIM_NEPH_BOTTLE, SIM_NEPH_LAMP};

    void start(SIM_instrument& sim) {
        model.start(sim);
        sim.send_kept(MSG_NEPH_CONFIG, config);
    }

    void tick(SIM_instrument& sim) {
        model.tick(sim);
        averages.add(sim.time(), reading(sim.time(), model.outer_air()));
        measure(sim);
        if (sim.average_due())
            sim.send_kept(MSG_NEPH_AVERAGE, with_exponents(averages.take_block(sim.average_start())));
    }

    void status(SIM_instrument& sim) {
        auto zero = NETDSD_default<NET_NEPH_Zero>();
        model.put_zero(zero);
        sim.send_changed(MSG_NEPH_ZERO, zero);
        sim.send_changed(MSG_NEPH_ZEROSCHEDULE, NET_NEPH_ZeroSchedule{model.next_zero(sim)});
        NET_NEPH_Modes modes{sim.alarm_flags(), {}};
        if (!model.lit()) modes.flags |= LAMP_FAULT;
        if (model.valve_held()) modes.flags |= VALVE_HELD;
        const char mode[] = {model.letter(), config.smb ? 'B' : 'T', 'X', 'X', '\0'};
        UTIL_strcpynt(modes.mode, mode);
        sim.send_changed(MSG_NEPH_MODES, modes);
        sim.send_changed(MSG_NEPH_STATUS, NET_NEPH_Status{sim.have_comms()});
    }

    BOOL hear(SIM_instrument& sim, const VESKMSG_proc_msg* pm) { return model.hear(sim, pm); }

    BOOL command(SIM_instrument& sim, const VESKMSG_proc_msg* pm) {
        if (pm->msg->msg == MSG_NEPH_ISSUE_ZERO) return model.order_zero(sim);
        if (const auto* const valve = VESKMSG_payload<NET_NEPH_OverrideParams>(pm)) {
            return valve->v == VALVE_UNCHANGED || model.set_valve(sim, valve->v == 1);
        }
        // The same message is how another instrument tells everybody its own parameters.
        const auto* const order = VESKMSG_payload<NET_NEPH_Config>(pm);
        if (order != nullptr && *pm->dest_name != '\0') return configure(sim, *order);
        return model.command(sim, pm);
    }

    BOOL set(SIM_instrument&, std::string_view name, const SIM_value& value) {
        return model.set(name, value);
    }

    BOOL configure(SIM_instrument& sim, const NET_NEPH_Config& order) {
        config = order;
        model.set_zeroing(sim, zeroing_of(config));
        model.set_lamp(config.l ? config.sp : 0);
        model.cell.backscatter = config.smb;
        model.cell.flow = config.b / FULL_BLOWER;
        model.cell.amplification = {amplification(config.svb, INITIAL.svb),
                                    amplification(config.svg, INITIAL.svg),
                                    amplification(config.svr, INITIAL.svr)};
        sim.log("parameters set: zero of %d s every %d s, lamp %s, %s", int{config.stz}, int{config.stp},
                config.l ? "on" : "off", config.smb ? "backscatter" : "total scatter only");
        sim.send_kept(MSG_NEPH_CONFIG, config);
        return TRUE;
    }

    // The instrument itself averages over STA seconds before it reports.
    void measure(SIM_instrument& sim) {
        measured.add(reading(sim.time(), model.cell.scattering()));
        measured_outer = measured_outer && model.ambient();
        if (measured.count() < config.sta) return;
        sim.send_instant(MSG_NEPH_INSTANT, instant(sim));
        measured.reset();
        measured_outer = TRUE;
    }

    NET_NEPH_Avg reading(FTIME time, const SIM_neph_six& scattering) const {
        auto r = NETDSD_default<NET_NEPH_Avg>();
        r.start_time = time;
        SIM_neph_put(r.s, scattering);
        SIM_neph_put_counts(r.pc, model.cell);
        SIM_neph_put_climate(r, model.cell.climate());
        return r;
    }

    // Those of averages come from the averaged scattering: exponents of noise do not average.
    NET_NEPH_Avg with_exponents(NET_NEPH_Avg r, BOOL outer = TRUE) const {
        r.alphaGR = model.exponent(r.s.bsp[1], r.s.bsp[2], outer);
        r.alphabGR = model.exponent(r.s.bbsp[1], r.s.bbsp[2], outer);
        return r;
    }

    NET_NEPH_Instant instant(SIM_instrument& sim) const {
        const NET_NEPH_Avg now = with_exponents(measured.mean(), measured_outer);
        const double share = std::sqrt(config.sp / NORMAL_WATTS);  // volts and amperes rise alike
        const double lamp = model.lit() ? sim.noise().normal(share, 0.001) : 0;
        NET_NEPH_Instant r{};
        r.start_time = now.start_time;
        r.s = now.s;
        r.pc = now.pc;
        r.running = with_exponents(averages.running());
        r.ambient = model.ambient();
        r.sec_left = model.seconds_left(sim.time());
        r.T_inlet = now.T_inlet;
        r.T_neph = now.T_neph;
        r.RH_inlet = now.RH_inlet;
        r.RH_neph = now.RH_neph;
        r.P_neph = now.P_neph;
        r.alphaGR = now.alphaGR;
        r.alphabGR = now.alphabGR;
        r.ref_green = std::round(118000 * model.cell.light * sim.noise().normal(1, 0.002));
        r.lamp_V = NORMAL_VOLTS * lamp;
        r.lamp_I = NORMAL_WATTS / NORMAL_VOLTS * lamp;
        r.aux_in = sim.noise().normal(config.sx, 0.8);  // mV: a cable leads the analog output back
        return r;
    }

    SIM_neph model{MODEL, zeroing_of(INITIAL)};
    NET_NEPH_Config config = INITIAL;
    SIM_neph_averages<NET_NEPH_Avg> averages;
    SIM_record_block<NET_NEPH_Avg> measured;  // since the last report
    BOOL measured_outer = TRUE;               // all of that is outer air
};

}  // namespace

constinit const SIM_decl SIM_DCL_neph = SIM_decl_of<neph>();
constinit const SIM_decl SIM_DCL_neph_passive = SIM_decl_of<neph>();
