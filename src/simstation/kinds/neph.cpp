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

constexpr double NORMAL_WATTS = 75;
constexpr double NORMAL_VOLTS = 12;
constexpr double FULL_BLOWER = 255;
constexpr double PMT_EXPONENT = 7;  // of the amplification's rise with the voltage

constexpr NET_NEPH_Config INITIAL{
    .smz = 1,
    .sta = 60,
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

std::int16_t within(std::int16_t value, std::int16_t low, std::int16_t high) {
    return std::clamp(value, low, high);
}

// What the instrument makes of an order: every number within its limits.
NET_NEPH_Config accepted(NET_NEPH_Config c) {
    c.smz = within(c.smz, 0, 24);
    c.sta = within(c.sta, 1, 9960);
    c.stb = within(c.stb, 5, 999);
    c.stp = within(c.stp, 10, INT16_MAX);
    c.stz = within(c.stz, 1, 9999);
    c.sp = within(c.sp, 0, 150);
    c.sx = within(c.sx, 0, 10000);
    c.b = within(c.b, 0, 255);
    c.svb = within(c.svb, 1, 1200);
    c.svg = within(c.svg, 1, 1200);
    c.svr = within(c.svr, 1, 1200);
    return c;
}

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
        sim.send_instant(MSG_NEPH_INSTANT, instant(sim));
        if (sim.average_due())
            sim.send_kept(MSG_NEPH_AVERAGE, with_exponents(averages.take_block(sim.average_start())));
    }

    void status(SIM_instrument& sim) {
        auto zero = NETDSD_default<NET_NEPH_Zero>();
        model.put_zero(zero);
        sim.send_changed(MSG_NEPH_ZERO, zero);
        sim.send_changed(MSG_NEPH_ZEROSCHEDULE, NET_NEPH_ZeroSchedule{model.next_zero()});
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
        if (pm->msg->msg == MSG_NEPH_ISSUE_ZERO) {
            model.order_zero(sim);
            return TRUE;
        }
        if (const auto* const valve = VESKMSG_payload<NET_NEPH_OverrideParams>(pm)) {
            if (valve->v == 0 || valve->v == 1) model.set_valve(sim, valve->v == 1);
            return TRUE;
        }
        // The same message is how another instrument tells everybody its own parameters.
        const auto* const order = VESKMSG_payload<NET_NEPH_Config>(pm);
        if (order != nullptr && *pm->dest_name != '\0') {
            configure(sim, *order);
            return TRUE;
        }
        return model.command(sim, pm);
    }

    BOOL set(SIM_instrument&, std::string_view name, const SIM_value& value) {
        return model.set(name, value);
    }

    void configure(SIM_instrument& sim, const NET_NEPH_Config& order) {
        config = accepted(order);
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
    }

    NET_NEPH_Avg reading(FTIME time, const SIM_neph_six& scattering) const {
        auto r = NETDSD_default<NET_NEPH_Avg>();
        r.start_time = time;
        SIM_neph_put(r.s, scattering);
        SIM_neph_put_counts(r.pc, model.cell);
        SIM_neph_put_climate(r, model.cell.climate());
        return with_exponents(r);
    }

    // Those of averages come from the averaged scattering: exponents of noise do not average.
    NET_NEPH_Avg with_exponents(NET_NEPH_Avg r) const {
        r.alphaGR = model.cell.angstrom(r.s.bsp[1], r.s.bsp[2]);
        r.alphabGR = model.cell.angstrom(r.s.bbsp[1], r.s.bbsp[2]);
        return r;
    }

    NET_NEPH_Instant instant(SIM_instrument& sim) const {
        const NET_NEPH_Avg now = reading(sim.time(), model.cell.scattering());
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
        r.aux_in = sim.noise().normal(4, 0.8);  // nothing is connected
        return r;
    }

    SIM_neph model{MODEL, zeroing_of(INITIAL)};
    NET_NEPH_Config config = INITIAL;
    SIM_neph_averages<NET_NEPH_Avg> averages;
};

}  // namespace

constinit const SIM_decl SIM_DCL_neph = SIM_decl_of<neph>();
constinit const SIM_decl SIM_DCL_neph_passive = SIM_decl_of<neph>();
