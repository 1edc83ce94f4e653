// The thermal mass flow meter in the sample line: the pump draws a constant volume, so that the mass flow
// follows the pressure and the temperature of the air in the line.
#include "libvesk/messages/records/tsitmf.h"

#include "simstation/kinds.h"
#include "simstation/readings.h"

namespace {

// Of the meter's litres at standard conditions: 21.1 degrees Celsius and 1013.25 hPa, those of this class of
// flow meters.
constexpr double STANDARD_T = 294.25;  // K
constexpr double STANDARD_P = 1013.25;
constexpr double KELVIN = 273.15;
constexpr double PUMP_LAG = 3;       // seconds
constexpr double LINE_LOSS = 0.012;  // hPa per lpm squared

struct tsitmf {
    static constexpr SIM_setting settings[] = {
        {.name = "pump", .help = "volume that the pump draws, 0 to 30 lpm"}};

    void tick(SIM_instrument& sim) {
        volume = SIM_approach(volume, pump, PUMP_LAG, sim.dt());
        auto r = NETDSD_default<NET_TSITMF_Reading>();
        r.T = sim.air().room_temperature() + sim.noise().normal(0, 0.03);
        r.P = sim.air().pressure() - LINE_LOSS * volume * volume + sim.noise().normal(0, 0.1);
        const double density = r.P / STANDARD_P * STANDARD_T / (r.T + KELVIN);
        r.Q = volume * density + sim.noise().normal(0, 0.004);
        readings.say(sim, r);
    }

    void status(SIM_instrument& sim) {
        sim.send_changed(MSG_TSITMF_STATUS, NET_TSITMF_Status{sim.have_comms()});
    }

    BOOL set(SIM_instrument&, std::string_view, const SIM_value& value) {
        if (!(value.number >= 0 && value.number <= 30)) return FALSE;
        pump = value.number;
        return TRUE;
    }

    SIM_readings<NET_TSITMF_Instant, NET_TSITMF_Reading> readings{MSG_TSITMF_INSTANT, MSG_TSITMF_AVERAGE};
    double pump = 16.67;    // lpm, as set
    double volume = 16.67;  // lpm, as it runs
};

}  // namespace

constinit const SIM_decl SIM_DCL_tsitmf = SIM_decl_of<tsitmf>();
