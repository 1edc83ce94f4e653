// The cloud condensation nuclei counter: a wetted column whose temperature difference sets the
// supersaturation. It steps through its set points, needs a while to settle at each, and sees the more of the
// air's particles the higher the supersaturation is.
#include <array>
#include <cmath>

#include "libvesk/messages/records/ccn.h"
#include "simstation/kinds.h"
#include "simstation/physics/average.h"
#include "simstation/physics/channels.h"

namespace {

constexpr std::array SET_POINTS{2.5, 4.0, 6.0, 8.5, 11.0};  // temperature difference, degrees
constexpr int STEP_SECONDS = 300;
constexpr int CALIBRATION_STEP_SECONDS = 60;
constexpr int MODEL_SECONDS = 10;  // between results of the model
constexpr double COLUMN_LAG = 25;  // seconds
constexpr double CALC_TOLERANCE = 0.1, REPORTED_TOLERANCE = 0.3;
constexpr int FIRST_BIN = 2;  // of the droplets that count as activated

constexpr SIM_channel CHANNELS[] = {{.field = "T_sample", .target = 24.2, .noise = 0.03},
                                    {.field = "T_inlet", .target = 24.6, .noise = 0.03},
                                    {.field = "T_nafion", .target = 24.9, .noise = 0.03},
                                    {.field = "Q_sample", .target = 45, .noise = 0.2},
                                    {.field = "Q_sheath", .target = 452, .noise = 0.8},
                                    {.field = "P_sample", .target = 982, .noise = 0.3},
                                    {.field = "I_laser", .target = 92, .noise = 0.4},
                                    {.field = "V_fsm", .target = 2.41, .noise = 0.01},
                                    {.field = "V_prop_valve", .target = 1.82, .noise = 0.005}};

// Percent, of a temperature difference.
double supersaturation(double dT) {
    return std::max(0.0, 0.09 * dT - 0.03);
}

// Where scanning and calibration lead the set point, and when.
class schedule {
  public:
    // TRUE when the set point, or what comes next, has changed.
    BOOL step(FTIME now) {
        if (!moving() || now < next_at_) return FALSE;
        index_ = (index_ + 1) % SET_POINTS.size();
        if (calibrations_ > 0 && index_ == 0) --calibrations_;
        set(SET_POINTS[index_], now);
        return TRUE;
    }
    // A set point by hand holds until the next step is due.
    void set(double dT, FTIME now) {
        set_point_ = dT;
        since_ = now;
        next_at_ = now + (calibrations_ > 0 ? CALIBRATION_STEP_SECONDS : step_seconds_);
    }
    void scan(BOOL on, FTIME now) {
        if (on && !scanning_) next_at_ = now + step_seconds_;
        scanning_ = on;
    }
    // A cycle is once through all set points; 0 stops.
    void calibrate(int cycles, FTIME now) {
        calibrations_ = cycles;
        if (cycles > 0) index_ = 0;
        set(SET_POINTS[index_], now);
    }
    void set_step_seconds(double seconds, FTIME now) {
        step_seconds_ = seconds;
        if (calibrations_ == 0) next_at_ = now + seconds;
    }

    [[nodiscard]] double set_point() const { return set_point_; }
    [[nodiscard]] BOOL calibrating() const { return calibrations_ > 0; }
    [[nodiscard]] BOOL scanning() const { return scanning_; }
    [[nodiscard]] NET_CCN_Scanning record() const {
        auto r = NETDSD_default<NET_CCN_Scanning>();
        r.last = set_point_;
        r.time_last = since_;
        r.enabled = scanning_;
        if (!moving()) return r;
        r.next = SET_POINTS[(index_ + 1) % SET_POINTS.size()];
        r.time_next = next_at_;
        return r;
    }

  private:
    [[nodiscard]] BOOL moving() const { return scanning_ || calibrations_ > 0; }

    double step_seconds_ = STEP_SECONDS;
    double set_point_ = SET_POINTS[0];
    FTIME since_ = 0;
    FTIME next_at_ = 0;
    std::size_t index_ = 0;
    int calibrations_ = 0;  // cycles to go
    BOOL scanning_ = TRUE;
};

struct ccn {
    static constexpr SIM_setting settings[] = {
        {.name = "step", .help = "seconds at each set point, 20 to 3600"}};

    void start(SIM_instrument& sim) {
        plan.set(SET_POINTS[0], sim.time());
        say_scanning(sim);
    }

    void tick(SIM_instrument& sim) {
        channels.step(sim.noise(), sim.dt());
        if (plan.step(sim.time())) say_scanning(sim);
        dT = SIM_approach(dT, plan.set_point(), COLUMN_LAG, sim.dt());
        const NET_CCN_Avg now = reading(sim);
        running.add(sim.time(), now);
        block.add(now);
        const double measured = now.T3 - now.T1;
        difference.add(sim.time(), measured);
        block_difference.add(measured);
        sim.send_instant(MSG_CCN_INSTANT, instant(now));
        if (++seconds % MODEL_SECONDS == 1) sim.send_instant(MSG_CCN_DMTMODELRESULTS, model(now));
        if (sim.average_due()) say_average(sim);
    }

    void status(SIM_instrument& sim) {
        sim.send_changed(MSG_CCN_STATUS, NET_CCN_Status{sim.have_comms(), plan.calibrating()});
    }

    BOOL command(SIM_instrument& sim, const VESKMSG_proc_msg* pm) {
        switch (pm->msg->msg) {
            case MSG_CCN_SET_SCANNING:
                return set_scanning(sim, VESKMSG_payload<NET_CCN_ScanningControl>(pm));
            case MSG_CCN_START_CALIBRATION:
                return calibrate(sim, VESKMSG_payload<NET_CCN_StartCalibration>(pm));
            case MSG_CCN_STOP_CALIBRATION:
                if (!plan.calibrating()) return sim.refuse("end of the calibration", "none runs");
                plan.calibrate(0, sim.time());
                sim.log("calibration stopped");
                say_scanning(sim);
                return TRUE;
            default:
                return FALSE;
        }
    }

    BOOL set(SIM_instrument& sim, std::string_view, const SIM_value& value) {
        if (!(value.number >= 20 && value.number <= 3600)) return FALSE;
        plan.set_step_seconds(value.number, sim.time());
        say_scanning(sim);
        return TRUE;
    }

    // --- commands

    BOOL set_scanning(SIM_instrument& sim, const NET_CCN_ScanningControl* control) {
        if (control == nullptr) return FALSE;
        const double sp = control->sp;
        const BOOL new_set_point = !VESK_is_missing(sp);
        if (new_set_point) plan.set(sp, sim.time());
        if (control->set_enable) plan.scan(control->enable, sim.time());
        sim.log("set point %.2f, scanning %s", plan.set_point(), plan.scanning() ? "on" : "off");
        say_scanning(sim);
        return TRUE;
    }

    BOOL calibrate(SIM_instrument& sim, const NET_CCN_StartCalibration* order) {
        if (order == nullptr) return FALSE;
        plan.calibrate(order->cycles, sim.time());
        sim.log("calibration: %d cycles", order->cycles);
        say_scanning(sim);
        return TRUE;
    }

    void say_scanning(SIM_instrument& sim) const { sim.send_kept(MSG_CCN_SCANNING, plan.record()); }

    // --- measuring

    [[nodiscard]] BYTE stable_flag() const {
        const double off = std::abs(dT - plan.set_point());
        return static_cast<BYTE>((off > CALC_TOLERANCE ? NET_CCN_UNSTABLE_CALC : 0) |
                                 (off > REPORTED_TOLERANCE ? NET_CCN_UNSTABLE_REPORTED : 0));
    }

    NET_CCN_Avg reading(SIM_instrument& sim) {
        auto r = NETDSD_default<NET_CCN_Avg>();
        channels.fill(r);
        r.start_time = sim.time();
        count_droplets(sim, r);
        r.bin_number = FIRST_BIN;
        r.ss_setting = supersaturation(plan.set_point());
        r.stable_flag = stable_flag();
        r.cnc_stable = r.stable_flag == 0 ? static_cast<double>(r.cnc) : VESK_MISSING;
        r.alarm_bits = sim.alarm_flags();
        r.T1 = sim.air().room_temperature() + sim.noise().normal(0, 0.01);
        r.T3 = r.T1 + dT + sim.noise().normal(0, 0.01);
        r.T2 = (r.T1 + r.T3) / 2 + sim.noise().normal(0, 0.01);
        r.T_OPC = r.T3 + 2 + sim.noise().normal(0, 0.02);
        r.T_gradient = r.T3 - r.T1;
        return r;
    }

    // Higher supersaturation activates more particles and grows them larger.
    void count_droplets(SIM_instrument& sim, NET_CCN_Avg& r) {
        static constexpr double HALF_ACTIVATED = 0.35, STEEPNESS = 1.8, ACTIVATABLE = 0.6, SPREAD = 2.2;
        const double ss = supersaturation(dT);
        const double power = std::pow(ss / HALF_ACTIVATED, STEEPNESS);
        const double n = ACTIVATABLE * sim.air().number() * power / (1 + power);
        const double cm3 = r.Q_sample / 60 * sim.dt();
        const double center = 4 + 8 * std::min(ss, 1.2);
        r.cnc = 0;
        for (std::size_t i = 0; i < NET_CCN_BINS; ++i) {
            const double x = (static_cast<double>(i) - center) / SPREAD;
            const double share = std::exp(-x * x / 2) / (SPREAD * 2.5066282746310002);
            r.dN[i] = sim.noise().poisson(n * share * cm3) / cm3;
            if (i >= FIRST_BIN) r.cnc += r.dN[i];
        }
    }

    NET_CCN_Instant instant(const NET_CCN_Avg& now) const {
        auto r = NETDSD_default<NET_CCN_Instant>();
        channels.fill(r);
        r.start_time = now.start_time;
        r.running = running.mean();
        r.running.dT_T3_T1_stddev = difference.stddev();
        std::memcpy(r.dN, now.dN, sizeof r.dN);
        r.cnc = now.cnc;
        r.bin_number = now.bin_number;
        r.stable_flag = now.stable_flag;
        r.alarm_bits = now.alarm_bits;
        r.ss_setting = now.ss_setting;
        r.T1 = now.T1;
        r.T2 = now.T2;
        r.T3 = now.T3;
        r.T_OPC = now.T_OPC;
        r.T_gradient = now.T_gradient;
        return r;
    }

    NET_CCN_DMTModelResults model(const NET_CCN_Avg& now) {
        return {.start_time = now.start_time,
                .ss_calc = supersaturation(now.T3 - now.T1),
                .Q_sample = now.Q_sample,
                .Q_sheath = now.Q_sheath,
                .P = now.P_sample,
                .T_inlet = now.T_inlet,
                .T_cold = now.T1,
                .T_hot = now.T3,
                .Q_tot = now.Q_sample + now.Q_sheath,
                .Q_sh_aer = now.Q_sheath / now.Q_sample};
    }

    void say_average(SIM_instrument& sim) {
        NET_CCN_Avg average = block.mean();
        average.start_time = sim.average_start();
        average.dT_T3_T1_stddev = block_difference.stddev();
        sim.send_kept(MSG_CCN_AVERAGE, average);
        block.reset();
        block_difference.reset();
    }

    SIM_channels channels{CHANNELS};
    schedule plan;
    double dT = 0;
    int seconds = 0;
    SIM_record_running<NET_CCN_Avg> running;
    SIM_record_block<NET_CCN_Avg> block;
    SIM_running difference;
    SIM_stats block_difference;
};

}  // namespace

constinit const SIM_decl SIM_DCL_ccn = SIM_decl_of<ccn>();
