// A software PID controller that keeps a sample line warm: a heater with dead time and lag, a controller
// whose gain somebody has turned up too far, and the automatic tuning that finds better parameters.
#include <cmath>
#include <iterator>
#include <optional>

#include "libvesk/support/util.h"
#include "simstation/kinds.h"
#include "simstation/physics/pid.h"
#include "simstation/physics/pid_tune.h"

namespace {

// The line: degC per V, and seconds.
constexpr double HEATER_GAIN = 8;
constexpr double HEATER_DEAD_TIME = 6;
constexpr double HEATER_LAG = 40;
constexpr double AMBIENT = 22;          // degC
constexpr double SENSOR_NOISE = 0.003;  // degC
constexpr double OUT_MAX = 10;          // V

// Too much gain for this line: it swings for long after every change, and tuning has something to mend.
constexpr NET_GENERICPID_Params START_PARAMS{1, 0.05, 0};
constexpr double START_SETPOINT = 45;

BOOL is_value(double v) {
    return std::isfinite(v) && !VESK_is_missing(v);
}

// One term within its limits; a bound that is missing is none. Missing when limits or value are no good.
double limited(double value, double min, double max) {
    if (!is_value(value) || std::isnan(min) || std::isnan(max)) return VESK_MISSING;
    if (!VESK_is_missing(min) && !VESK_is_missing(max) && min > max) return VESK_MISSING;
    if (!VESK_is_missing(min) && value < min) return min;
    return !VESK_is_missing(max) && value > max ? max : value;
}

struct genericpid {
    static constexpr SIM_setting settings[] = {
        {.name = "load", .help = "degC by which what flows through the line cools it or warms it"},
    };

    genericpid() {
        UTIL_strcpynt(info.chan_pv, "T_line");
        UTIL_strcpynt(info.chan_out, "V_line_heater");
        info.params = NETDSD_default<NET_GENERICPID_ControllerParams>();
        info.params.params = START_PARAMS;
        pid.params = START_PARAMS;
    }

    void start(SIM_instrument& sim) {
        sim.send_kept(MSG_GENERICPID_INFO, info);
        sim.send_kept(MSG_GENERICPID_SETPOINT, NET_GENERICPID_Setpoint{sp});
        say_status(sim);
    }

    void tick(SIM_instrument& sim) {
        plant.step(out, load + wander.step(sim.noise(), sim.dt()), sim.dt());
        pv = plant.value() + sim.noise().normal(0, SENSOR_NOISE);
        if (tune)
            step_tuning(sim);
        else
            out = pid.step(sp, pv, sim.dt());
        sim.send_instant(MSG_GENERICPID_INSTANT,
                         NET_GENERICPID_Instant{sim.time(), pv, out, pid.i_val(), pid.d_val()});
    }

    BOOL command(SIM_instrument& sim, const VESKMSG_proc_msg* pm) {
        switch (pm->msg->msg) {
            case MSG_GENERICPID_SET:
                return take(sim, VESKMSG_payload<NET_GENERICPID_Setpoint>(pm));
            case MSG_GENERICPID_SET_PARMS:
                return take(sim, VESKMSG_payload<NET_GENERICPID_ControllerParams>(pm));
            case MSG_GENERICPID_RESET:
                return reset(sim);
            case MSG_GENERICPID_TUNING_START:
                return take(sim, VESKMSG_payload<NET_GENERICPID_TuningRequest>(pm));
            case MSG_GENERICPID_TUNING_STOP:
                if (!tune) return sim.refuse("end of the tuning", "none runs");
                stop_tuning(sim, "stopped");
                return TRUE;
            default:
                return FALSE;
        }
    }

    BOOL set(SIM_instrument&, std::string_view, const SIM_value& value) {
        if (!std::isfinite(value.number)) return FALSE;
        load = value.number;
        return TRUE;
    }

    // ---- commands

    BOOL take(SIM_instrument& sim, const NET_GENERICPID_Setpoint* wanted) {
        if (wanted == nullptr) return FALSE;
        if (!is_value(wanted->sp)) return sim.refuse("set point", "no number");
        sp = wanted->sp;
        sim.log("set point %g", sp);
        sim.send_kept(MSG_GENERICPID_SETPOINT, NET_GENERICPID_Setpoint{sp});
        return TRUE;
    }

    BOOL take(SIM_instrument& sim, const NET_GENERICPID_ControllerParams* wanted) {
        if (wanted == nullptr) return FALSE;
        const NET_GENERICPID_Params &v = wanted->params, &min = wanted->min, &max = wanted->max;
        const NET_GENERICPID_Params params{limited(v.p, min.p, max.p), limited(v.i, min.i, max.i),
                                           limited(v.d, min.d, max.d)};
        if (!is_value(params.p) || !is_value(params.i) || !is_value(params.d))
            return sim.refuse("PID parameters", "no number, or limits that exclude each other");
        info.params = {params, min, max};
        pid.params = params;
        sim.log("parameters %g %g %g", params.p, params.i, params.d);
        sim.send_kept(MSG_GENERICPID_INFO, info);
        return TRUE;
    }

    // A fresh start: no tuning, no results, the terms at zero.
    BOOL reset(SIM_instrument& sim) {
        tune.reset();
        pid.reset();
        forget_results(sim);
        say_status(sim);
        sim.log("reset");
        return TRUE;
    }

    BOOL take(SIM_instrument& sim, const NET_GENERICPID_TuningRequest* request) {
        if (request == nullptr) return FALSE;
        const char* fault =
            tune ? "it is being tuned already" : SIM_pid_tune::fault(*request, pid.out_min(), pid.out_max());
        if (fault != nullptr) return sim.refuse("tuning", "%s", fault);
        tune.emplace(*request);
        forget_results(sim);
        sim.send_kept(MSG_GENERICPID_TUNING_INSTANT, tune->instant());
        say_status(sim);
        sim.log("tuning begins");
        return TRUE;
    }

    // ---- tuning

    // After everything that can have changed it.
    void say_status(SIM_instrument& sim) {
        sim.send_changed(MSG_GENERICPID_TUNING_STATUS,
                         tune ? tune->status() : NET_GENERICPID_TuningSatus{GENERICPID_NOTTUNING, 0, 0});
    }

    void step_tuning(SIM_instrument& sim) {
        out = tune->step(pv, sim.dt());
        sim.send_instant(MSG_GENERICPID_TUNING_INSTANT, tune->instant());
        if (!tune->over()) return say_status(sim);
        if (tune->failure() != nullptr) {
            sim.send_error_line("%s: tuning failed: %s", sim.name().c_str(), tune->failure());
            return stop_tuning(sim, "failed");
        }
        sim.send_changed(MSG_GENERICPID_TUNING_RESULTS, tune->results());
        stop_tuning(sim, "complete");
    }

    // The controller goes on from the start output with the parameters that it had: results are the
    // operator's to apply.
    void stop_tuning(SIM_instrument& sim, const char* how) {
        out = tune->start_out();
        tune.reset();
        pid.resume(out, sp, pv);
        say_status(sim);
        sim.log("tuning %s", how);
    }

    static void forget_results(SIM_instrument& sim) {
        sim.send_changed(MSG_GENERICPID_TUNING_RESULTS, NETDSD_default<NET_GENERICPID_TuningResults>());
    }

    SIM_plant plant{HEATER_GAIN, HEATER_DEAD_TIME, HEATER_LAG, AMBIENT};
    SIM_pid pid{0, OUT_MAX};
    SIM_drift wander{0.05, 3600};  // of the ambient temperature, degC
    std::optional<SIM_pid_tune> tune;
    NET_GENERICPID_Info info{};
    double sp = START_SETPOINT;
    double pv = AMBIENT;
    double out = 0;
    double load = 0;
};

}  // namespace

constinit const SIM_decl SIM_DCL_genericpid = SIM_decl_of<genericpid>();
