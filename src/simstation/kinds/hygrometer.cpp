// The chilled-mirror hygrometer in the outdoor air: the mirror follows the point at which dew or frost forms
// on it; every few hours it is heated to see whether it is clean.
#include "libvesk/messages/records/hygrometer.h"

#include <algorithm>

#include "simstation/kinds.h"
#include "simstation/physics/humidity.h"
#include "simstation/readings.h"

namespace {

constexpr double MIRROR_LAG = 8;          // seconds
constexpr double CHECK_INTERVAL = 21600;  // seconds between the checks of the mirror
constexpr int CHECK_SECONDS = 120;
constexpr double CHECK_HEATING = 15;  // degrees above the air
constexpr double FALLING_BEHIND = 2;  // degrees between mirror and condensation without control
constexpr double DIRTY = 0.5;         // share of the mirror's reflection that deposits took
constexpr WORD MIRROR_CHECK = 0x0001, CLEAN_MIRROR = 0x0002, NO_CONTROL = 0x0004, ICE = 0x0008;

struct hygrometer {
    static constexpr SIM_setting settings[] = {
        {.name = "dirt", .help = "on the mirror, 0 (clean) to 1; from 0.5 on it asks to be cleaned"},
        {.name = "vapour", .help = "share of the air's water that reaches the mirror, 0.001 to 1"}};

    void start(SIM_instrument& sim) {
        mirror = sim.air().temperature();
        next_check = sim.time() + CHECK_INTERVAL;
    }

    void tick(SIM_instrument& sim) {
        if (checking > 0) --checking;
        if (sim.time() >= next_check) {
            checking = CHECK_SECONDS;
            next_check = sim.time() + CHECK_INTERVAL;
            sim.log("mirror check");
        }
        const double T = sim.air().temperature();
        const double e = std::max(0.1, sim.air().humidity()) / 100 * SIM_OVER_WATER.pressure(T) * vapour;
        const double dew = SIM_OVER_WATER.temperature(e);
        condensation = dew < 0 ? SIM_OVER_ICE.temperature(e) : dew;
        mirror = SIM_approach(mirror, checking > 0 ? T + CHECK_HEATING : condensation + dirt, MIRROR_LAG,
                              sim.dt());
        readings.say(sim, reading(sim, T));
    }

    void status(SIM_instrument& sim) {
        unsigned flags = sim.alarm_flags();
        if (checking > 0) flags |= MIRROR_CHECK;
        if (dirt >= DIRTY) flags |= CLEAN_MIRROR;
        if (checking == 0 && mirror > condensation + dirt + FALLING_BEHIND) flags |= NO_CONTROL;
        if (mirror < 0) flags |= ICE;
        sim.send_changed(MSG_HYGROMETER_STATUS,
                         NET_HYGROMETER_Status{sim.have_comms(), static_cast<WORD>(flags)});
    }

    BOOL set(SIM_instrument&, std::string_view name, const SIM_value& value) {
        const BOOL is_dirt = name == "dirt";
        if (!(value.number >= (is_dirt ? 0 : 0.001) && value.number <= 1)) return FALSE;
        (is_dirt ? dirt : vapour) = value.number;
        return TRUE;
    }

    // The instrument knows the vapour from its mirror alone, and nothing of it while the mirror is heated.
    NET_HYGROMETER_Reading reading(SIM_instrument& sim, double T) {
        auto r = NETDSD_default<NET_HYGROMETER_Reading>();
        r.T = T + sim.noise().normal(0, 0.02);
        r.T_mirror = mirror + sim.noise().normal(0, 0.02);
        if (checking > 0) return r;
        const double e = (mirror < 0 ? SIM_OVER_ICE : SIM_OVER_WATER).pressure(r.T_mirror);
        r.T_dew = SIM_OVER_WATER.temperature(e);
        if (r.T_dew < 0) r.T_frost = std::min(0.0, SIM_OVER_ICE.temperature(e));
        r.RH = std::clamp(100 * e / SIM_OVER_WATER.pressure(r.T), 0.0, 100.0);
        return r;
    }

    SIM_readings<NET_HYGROMETER_Instant, NET_HYGROMETER_Reading> readings{MSG_HYGROMETER_INSTANT,
                                                                          MSG_HYGROMETER_AVERAGE};
    double mirror = 0;        // temperature, Celsius
    double condensation = 0;  // at which dew or frost forms
    double dirt = 0;          // also raises the mirror's temperature by so many degrees
    double vapour = 1;
    int checking = 0;  // seconds left
    FTIME next_check = VESK_NO_TIME;
};

}  // namespace

constinit const SIM_decl SIM_DCL_hygrometer = SIM_decl_of<hygrometer>();
