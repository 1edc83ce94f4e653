// The power supply of the racks. While the mains are there the battery charges; without them it carries the
// load until it is empty, and then the output goes.
#include "libvesk/messages/records/bestups.h"

#include <algorithm>

#include "simstation/kinds.h"
#include "simstation/readings.h"

namespace {

constexpr double NOMINAL = 230;                        // V
constexpr double FULL_MINUTES = 14;                    // that a full new battery carries the full load
constexpr double CHARGE_HOURS = 3;                     // from empty to full
constexpr double LOW_MINUTES = 3;                      // left when it warns of the end
constexpr double BOOST_BELOW = 207, TRIM_ABOVE = 253;  // V, 10 percent off (EN 50160)
constexpr double TRANSFORMED = 0.12;                   // by which it raises or lowers the mains
constexpr double NO_MAINS = 180;                       // V, below which the battery takes over
constexpr double WORN = 0.5;                           // health at which the battery is to be replaced
constexpr double RESTART_CHARGE = 5;                   // percent at which an empty supply gives power again

struct bestups {
    static constexpr SIM_setting settings[] = {
        {.name = "mains", .help = "voltage of the mains, 0 to 280 V: below 180 it runs on its battery"},
        {.name = "load", .help = "of the rated power, 0 to 150 %"},
        {.name = "charge", .help = "of the battery, 0 to 100 %"},
        {.name = "health", .help = "share of its capacity that the battery still has, 0.05 to 1"}};

    void tick(SIM_instrument& sim) {
        const BOOL was = on_battery;
        on_battery = mains < NO_MAINS;
        if (was != on_battery) say_change(sim);
        const double draw = off ? 0 : load;
        if (on_battery)
            charge -= draw / (FULL_MINUTES * 60 * health) * sim.dt();
        else
            charge += 100 / (CHARGE_HOURS * 3600) * sim.dt();
        charge = std::clamp(charge, 0.0, 100.0);
        if (on_battery && charge <= 0 && !off) {
            off = TRUE;
            sim.send_error_line("%s: battery empty, output off", sim.name().c_str());
        }
        if (!on_battery && charge >= RESTART_CHARGE) off = FALSE;
        readings.say(sim, reading(sim));
    }

    void status(SIM_instrument& sim) {
        unsigned flags = sim.alarm_flags();
        if (on_battery) flags |= NET_BESTUPS_ON_BATTERY;
        if (on_battery && time_left() < LOW_MINUTES) flags |= NET_BESTUPS_LOW_BATTERY;
        if (load > 100) flags |= NET_BESTUPS_OVERLOAD;
        if (health < WORN) flags |= NET_BESTUPS_REPLACE_BATTERY;
        if (off) flags |= NET_BESTUPS_OFF;
        if (!on_battery && mains < BOOST_BELOW) flags |= NET_BESTUPS_BOOST;
        if (!on_battery && mains > TRIM_ABOVE) flags |= NET_BESTUPS_TRIM;
        if (!on_battery && charge < 99.5) flags |= NET_BESTUPS_CHARGING;
        sim.send_changed(MSG_BESTUPS_STATUS, NET_BESTUPS_Status{sim.have_comms(), static_cast<WORD>(flags)});
    }

    BOOL set(SIM_instrument&, std::string_view name, const SIM_value& value) {
        struct limits {
            std::string_view name;
            double bestups::*member;
            double low, high;
        };
        static constexpr limits ALL[] = {{"mains", &bestups::mains, 0, 280},
                                         {"load", &bestups::load, 0, 150},
                                         {"charge", &bestups::charge, 0, 100},
                                         {"health", &bestups::health, 0.05, 1}};
        for (const limits& l : ALL) {
            if (l.name != name) continue;
            if (!(value.number >= l.low && value.number <= l.high)) return FALSE;
            this->*l.member = value.number;
        }
        return TRUE;
    }

    void say_change(SIM_instrument& sim) const {
        if (on_battery)
            sim.send_error_line("%s: mains lost, on battery", sim.name().c_str());
        else
            sim.log("mains are back");
    }

    [[nodiscard]] double time_left() const {  // minutes
        return charge / std::max(load, 1.0) * FULL_MINUTES * health;
    }

    NET_BESTUPS_Reading reading(SIM_instrument& sim) const {
        SIM_noise& noise = sim.noise();
        auto r = NETDSD_default<NET_BESTUPS_Reading>();
        r.V_mains = mains > 0 ? mains + noise.normal(0, 0.6) : 0;
        r.V_output = off ? 0 : output() + noise.normal(0, 0.3);
        r.f = off ? 0 : 50 + noise.normal(0, 0.02);
        // A lead battery of 24 V: 21 V empty, 25.4 V full, 27.3 V while it is charged.
        r.V_battery =
            (on_battery ? 21 + 0.044 * charge - 0.01 * load : 25.3 + 0.02 * charge) + noise.normal(0, 0.02);
        r.charge = charge;
        r.load = off ? 0 : std::max(0.0, load + noise.normal(0, 0.4));
        r.time_left = time_left();
        return r;
    }

    [[nodiscard]] double output() const {
        if (on_battery) return NOMINAL;
        if (mains < BOOST_BELOW) return mains * (1 + TRANSFORMED);
        return mains > TRIM_ABOVE ? mains * (1 - TRANSFORMED) : mains;
    }

    SIM_readings<NET_BESTUPS_Instant, NET_BESTUPS_Reading> readings{MSG_BESTUPS_INSTANT, MSG_BESTUPS_AVERAGE};
    double mains = NOMINAL;
    double load = 34;
    double charge = 100;
    double health = 1;
    BOOL on_battery = FALSE;
    BOOL off = FALSE;  // no output
};

}  // namespace

constinit const SIM_decl SIM_DCL_bestups = SIM_decl_of<bestups>();
