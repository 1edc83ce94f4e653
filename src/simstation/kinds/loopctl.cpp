// The hardware loop controllers: each channel is a heated or cooled body that follows its set point with a
// lag of its own.
#include <array>

#include "libvesk/messages/records/loopctl.h"
#include "libvesk/support/util.h"
#include "simstation/kinds.h"
#include "simstation/physics/average.h"

namespace {

// A controlled body with its measurements.
class loop {
  public:
    loop(double setpoint, double lag) : sp(setpoint), lag_(lag) {}

    void step(SIM_instrument& sim) {
        if (!begun_) actual_ = sim.air().room_temperature();
        begun_ = TRUE;
        actual_ = SIM_approach(actual_, sp, lag_, sim.dt());
        pv = actual_ + sim.noise().normal(0, 0.05);
        running.add(sim.time(), pv);
        block.add(pv);
    }
    double take_average() {
        const double mean = block.mean();
        block.reset();
        return mean;
    }

    double sp;
    double pv = VESK_MISSING;
    SIM_running running;
    SIM_stats block;

  private:
    double lag_;  // seconds
    double actual_ = 0;
    BOOL begun_ = FALSE;
};

struct lovepid {
    static constexpr SIM_setting settings[] = {
        {.name = "silent", .help = "number of the slot that does not answer, 1 to 3; 0: all answer"},
        {.name = "error", .help = "what the silent slot's controller says", .is_text = TRUE},
    };
    static constexpr int SLOTS = 3;  // the fourth slot of the line is empty
    static constexpr WORD ADDRS[NET_LOVEPID_SLOTS] = {0x10, 0x11, 0x2A, 0};

    void start(SIM_instrument& sim) { say_setpoints(sim); }

    void tick(SIM_instrument& sim) {
        auto instant = NETDSD_default<NET_LOVEPID_Instant>();
        instant.start_time = sim.time();
        for (int i = 0; i < SLOTS; ++i) {
            if (i == silent) continue;
            loop& l = loops[static_cast<std::size_t>(i)];
            l.step(sim);
            instant.pv[i] = l.pv;
            instant.ra[i] = l.running.mean();
        }
        sim.send_instant(MSG_LOVEPID_INSTANT, instant);
        if (sim.average_due()) say_average(sim);
    }

    void status(SIM_instrument& sim) {
        NET_LOVEPID_Status s{};
        for (int i = 0; i < SLOTS; ++i) {
            s.addrs[i] = ADDRS[i];
            s.have_comms[i] = sim.have_comms() && i != silent;
        }
        if (silent >= 0) UTIL_strcpynt(s.error[silent].error, error.c_str());
        sim.send_changed(MSG_LOVEPID_STATUS, s);
    }

    BOOL command(SIM_instrument& sim, const VESKMSG_proc_msg* pm) {
        if (pm->msg->msg != MSG_LOVEPID_SET) return FALSE;
        const auto* set = VESKMSG_payload<NET_LOVEPID_Setpoint>(pm);
        if (set == nullptr) return FALSE;
        for (std::size_t i = 0; i < SLOTS; ++i) {
            if (ADDRS[i] != set->addr) continue;
            if (VESK_is_missing(set->sp)) return sim.refuse("set point", "no number");
            loops[i].sp = set->sp;
            sim.log("controller %x: set point %.2f", static_cast<unsigned>(set->addr), loops[i].sp);
            say_setpoints(sim);
            return TRUE;
        }
        return sim.refuse("set point", "no controller %X", static_cast<unsigned>(set->addr));
    }

    BOOL set(SIM_instrument&, std::string_view name, const SIM_value& value) {
        if (name == "error") {
            error = value.text;
            return TRUE;
        }
        if (!(value.number >= 0 && value.number <= SLOTS)) return FALSE;
        silent = static_cast<int>(value.number) - 1;
        return TRUE;
    }

    void say_setpoints(SIM_instrument& sim) const {
        auto sps = NETDSD_default<NET_LOVEPID_Setpoints>();
        for (std::size_t i = 0; i < SLOTS; ++i)
            sps.sp[i] = loops[i].sp;
        sim.send_kept(MSG_LOVEPID_SETPOINTS, sps);
    }

    void say_average(SIM_instrument& sim) {
        auto avg = NETDSD_default<NET_LOVEPID_Avg>();
        avg.start_time = sim.average_start();
        for (std::size_t i = 0; i < SLOTS; ++i)
            avg.pv[i] = loops[i].take_average();
        sim.send_kept(MSG_LOVEPID_AVERAGE, avg);
    }

    std::array<loop, SLOTS> loops{loop{40, 180}, loop{35, 120}, loop{18, 240}};
    int silent = -1;  // slot, or -1
    std::string error;
};

struct watlow {
    static constexpr SIM_setting settings[] = {
        {.name = "error", .help = "number of the controller's error; 0: none"}};

    void start(SIM_instrument& sim) { say_setpoints(sim); }

    void tick(SIM_instrument& sim) {
        a.step(sim);
        b.step(sim);
        sim.send_instant(MSG_WATLOW_INSTANT, NET_WATLOW_Channels{a.pv, b.pv});
        if (!sim.average_due()) return;
        const double mean_a = a.take_average();
        sim.send_kept(MSG_WATLOW_AVERAGE, NET_WATLOW_Avg{sim.average_start(), mean_a, b.take_average()});
    }

    void status(SIM_instrument& sim) {
        sim.send_changed(MSG_WATLOW_STATUS, NET_WATLOW_Status{error, sim.have_comms()});
    }

    BOOL command(SIM_instrument& sim, const VESKMSG_proc_msg* pm) {
        if (pm->msg->msg != MSG_WATLOW_SET) return FALSE;
        const auto* set = VESKMSG_payload<NET_WATLOW_OneChannel>(pm);
        if (set == nullptr) return FALSE;
        if (set->chan != 'A' && set->chan != 'B') return sim.refuse("set point", "the channels are A and B");
        loop& l = set->chan == 'A' ? a : b;
        if (VESK_is_missing(set->val)) return sim.refuse("set point", "no number");
        l.sp = set->val;
        sim.log("channel %c: set point %.1f", set->chan, l.sp);
        say_setpoints(sim);
        return TRUE;
    }

    BOOL set(SIM_instrument&, std::string_view, const SIM_value& value) {
        if (!(value.number >= 0 && value.number <= 9999)) return FALSE;
        error = static_cast<std::int32_t>(value.number);
        return TRUE;
    }

    void say_setpoints(SIM_instrument& sim) const {
        sim.send_kept(MSG_WATLOW_SETPOINTS, NET_WATLOW_Channels{a.sp, b.sp});
    }

    loop a{25, 150};
    loop b{40, 300};
    std::int32_t error = 0;
};

}  // namespace

constinit const SIM_decl SIM_DCL_lovepid = SIM_decl_of<lovepid>();
constinit const SIM_decl SIM_DCL_watlow = SIM_decl_of<watlow>();
