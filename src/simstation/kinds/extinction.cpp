// The extinction monitor and the photoacoustic extinctiometer: both measure the air's extinction against a
// zero that they renew from time to time.
#include <array>
#include <cmath>

#include "libvesk/messages/records/extinction.h"
#include "simstation/kinds.h"
#include "simstation/physics/average.h"
#include "simstation/physics/channels.h"

namespace {

// --- cavity attenuated phase shift

constexpr double CAPS_WAVELENGTH = 530;  // nm
constexpr double ZERO_INTERVAL = 3600;   // seconds between the starts of automatic zeros
constexpr int ZERO_SECONDS = 60;
constexpr double FLUSH_LAG = 6;  // seconds in which the cell fills with other air
constexpr WORD ZEROING = 0x0001;

constexpr SIM_channel CAPS_CHANNELS[] = {
    {.field = "temp", .target = 31, .noise = 0.02, .lag = 400, .start = 22},
    {.field = "press", .target = 984, .noise = 0.2},
    {.field = "signal", .target = 18200, .noise = 25}};

struct caps {
    static constexpr SIM_setting settings[] = {
        {.name = "baseline", .help = "of the cavity, 1/Mm: 300 to 900"}};

    void start(SIM_instrument& sim) {
        known_baseline = baseline;
        next_zero = sim.time() + ZERO_INTERVAL;
    }

    void tick(SIM_instrument& sim) {
        channels.step(sim.noise(), sim.dt());
        if (zeroing == 0 && sim.time() >= next_zero) begin(sim);
        const double ambient = sim.air().scattering(CAPS_WAVELENGTH) + sim.air().absorption(CAPS_WAVELENGTH);
        in_cell = SIM_approach(in_cell, zeroing > 0 ? 0 : ambient, FLUSH_LAG, sim.dt());
        baseline += drift.step(sim.noise(), sim.dt()) * sim.dt() / 3600;
        const NET_CAPS_Reading now = reading(sim);
        if (zeroing > 0 && zeroing <= ZERO_SECONDS / 2) zero_loss.add(now.loss);
        running.add(sim.time(), now);
        block.add(now);
        sim.send_instant(MSG_CAPS_INSTANT, NET_CAPS_Instant{sim.time(), now, running.mean()});
        if (sim.average_due()) say_average(sim);
        if (zeroing > 0 && --zeroing == 0) finish(sim);
    }

    void status(SIM_instrument& sim) {
        sim.send_changed(MSG_CAPS_ZEROSCHEDULE, NET_CAPS_ZeroSchedule{sim.not_past(next_zero)});
        sim.send_changed(MSG_CAPS_STATUS, NET_CAPS_Status{sim.have_comms()});
    }

    BOOL command(SIM_instrument& sim, const VESKMSG_proc_msg* pm) {
        if (pm->msg->msg != MSG_CAPS_ISSUE_ZERO) return FALSE;
        if (zeroing > 0) return sim.refuse("zero", "one runs already");
        begin(sim);
        return TRUE;
    }

    BOOL set(SIM_instrument&, std::string_view, const SIM_value& value) {
        if (!(value.number >= 300 && value.number <= 900)) return FALSE;
        baseline = value.number;
        return TRUE;
    }

    void begin(SIM_instrument& sim) {
        zeroing = ZERO_SECONDS;
        zero_loss.reset();
        zero_start = sim.time();
        next_zero = zero_start + ZERO_INTERVAL;
        sim.log("zero begins");
    }

    // The second half of the zero is the measurement, when the cell is free of the air before.
    void finish(SIM_instrument& sim) {
        const double measured = zero_loss.mean();
        sim.send_kept(MSG_CAPS_ZERO, NET_CAPS_Zero{zero_start, measured, measured - known_baseline});
        known_baseline = measured;
        sim.log("zero: baseline %.2f /Mm", measured);
    }

    NET_CAPS_Reading reading(SIM_instrument& sim) {
        auto r = NETDSD_default<NET_CAPS_Reading>();
        channels.fill(r);
        r.start_time = sim.time();
        r.loss = baseline + in_cell + sim.noise().normal(0, 0.4);
        r.ext = r.loss - known_baseline;
        r.flags = static_cast<WORD>((zeroing > 0 ? ZEROING : 0) | sim.alarm_flags());
        return r;
    }

    void say_average(SIM_instrument& sim) {
        NET_CAPS_Reading average = block.mean();
        average.start_time = sim.average_start();
        sim.send_kept(MSG_CAPS_AVERAGE, average);
        block.reset();
    }

    SIM_channels channels{CAPS_CHANNELS};
    SIM_drift drift{3, 7200};  // 1/Mm per hour
    SIM_record_running<NET_CAPS_Reading> running;
    SIM_record_block<NET_CAPS_Reading> block;
    SIM_stats zero_loss;
    double baseline = 480;        // as it is
    double known_baseline = 480;  // as the last zero found it
    double in_cell = 0;           // extinction of what is in the cell
    int zeroing = 0;              // seconds left
    FTIME zero_start = VESK_NO_TIME;
    FTIME next_zero = VESK_NO_TIME;
};

// --- photoacoustic extinctiometer

constexpr double PAX_WAVELENGTH = 870;  // nm

// One step of its cycle; after the last the first follows.
struct pax_step {
    NET_PAX_Mode mode;
    int seconds;
};
constexpr std::array<pax_step, 4> PAX_CYCLE{{
    {.mode = NET_PAX_MODE_MEASURE, .seconds = 480},
    {.mode = NET_PAX_MODE_FLUSH, .seconds = 30},
    {.mode = NET_PAX_MODE_ZERO, .seconds = 60},
    {.mode = NET_PAX_MODE_FLUSH, .seconds = 30},
}};

constexpr SIM_channel PAX_CHANNELS[] = {
    {.field = "baNoise", .target = 0.4, .noise = 0.02},
    {.field = "p", .target = 984, .noise = 0.2},
    {.field = "pInlet", .target = 986, .noise = 0.2},
    {.field = "pVacuum", .target = 410, .noise = 2},
    {.field = "tSample", .target = 28, .noise = 0.03, .lag = 300, .start = 22},
    {.field = "tLaser", .target = 25, .noise = 0.02, .lag = 120, .start = 22},
    {.field = "v33", .target = 3.3, .noise = 0.002},
    {.field = "v5", .target = 5.02, .noise = 0.003},
    {.field = "v12", .target = 12.05, .noise = 0.01},
    {.field = "vM5", .target = -5.01, .noise = 0.003},
    {.field = "vP5", .target = 5.01, .noise = 0.003},
    {.field = "aLaser", .target = 2.1, .noise = 0.004},
    {.field = "aPhotoDiode", .target = 0.62, .noise = 0.002},
    {.field = "pLaser", .target = 1.6, .noise = 0.005},
    {.field = "laserPhase", .target = 163, .noise = 0.2},
    {.field = "micPressure", .target = 0.8, .noise = 0.01},
    {.field = "qFactor", .target = 61, .noise = 0.2},
    {.field = "rh", .target = 32, .noise = 0.2},
    {.field = "frequency", .target = 1503, .noise = 0.5},
};

struct pax {
    static constexpr SIM_setting settings[] = {
        {.name = "mode", .help = "next: the present step of the cycle ends now", .is_text = TRUE}};

    void start(SIM_instrument& sim) { step_ends = sim.time() + PAX_CYCLE[step].seconds; }

    void tick(SIM_instrument& sim) {
        channels.step(sim.noise(), sim.dt());
        if (sim.time() >= step_ends) next_step(sim);
        const BOOL filtered = PAX_CYCLE[step].mode != NET_PAX_MODE_MEASURE;
        absorption =
            SIM_approach(absorption, filtered ? 0 : sim.air().absorption(PAX_WAVELENGTH), 5, sim.dt());
        scattering =
            SIM_approach(scattering, filtered ? 0 : sim.air().scattering(PAX_WAVELENGTH), 5, sim.dt());
        const NET_PAX_Reading now = reading(sim);
        if (PAX_CYCLE[step].mode == NET_PAX_MODE_ZERO) {
            zero_ba.add(absorption_background + sim.noise().normal(0, 0.2));
            zero_bs.add(scattering_background + sim.noise().normal(0, 0.2));
        }
        running.add(sim.time(), now);
        block.add(now);
        sim.send_instant(MSG_PAX_INSTANT,
                         NET_PAX_Instant{sim.time(), now, running.mean(), PAX_CYCLE[step].mode, step_ends});
        if (sim.average_due()) say_average(sim);
    }

    void status(SIM_instrument& sim) { sim.send_changed(MSG_PAX_STATUS, NET_PAX_Status{sim.have_comms()}); }

    BOOL set(SIM_instrument& sim, std::string_view, const SIM_value& value) {
        if (value.text != "next") return FALSE;
        step_ends = sim.time();
        return TRUE;
    }

    void next_step(SIM_instrument& sim) {
        if (PAX_CYCLE[step].mode == NET_PAX_MODE_ZERO) say_zero(sim);
        step = (step + 1) % PAX_CYCLE.size();
        step_ends = sim.time() + PAX_CYCLE[step].seconds;
    }

    void say_zero(SIM_instrument& sim) {
        NET_PAX_Zero z{};
        z.start_time = sim.time() - zero_ba.count() * sim.dt();
        z.ba = zero_ba.mean();
        z.bs = zero_bs.mean();
        z.baPhase = sim.noise().normal(118, 0.5);
        z.baShift = VESK_difference(z.ba, last_ba);
        z.bsShift = VESK_difference(z.bs, last_bs);
        last_ba = z.ba;
        last_bs = z.bs;
        zero_ba.reset();
        zero_bs.reset();
        absorption_background += sim.noise().normal(0, 0.3);
        scattering_background += sim.noise().normal(0, 0.3);
        sim.send_kept(MSG_PAX_ZERO, z);
    }

    NET_PAX_Reading reading(SIM_instrument& sim) {
        auto r = NETDSD_default<NET_PAX_Reading>();
        channels.fill(r);
        SIM_noise& noise = sim.noise();
        r.start_time = sim.time();
        r.ba = absorption + noise.normal(0, 0.4);
        r.bs = scattering + noise.normal(0, 0.4);
        r.baPhase = noise.normal(120, 4);
        r.iMic = 2.1e-6 * (std::abs(r.ba) + absorption_background);
        r.iScat = 3.4e-5 * (std::abs(r.bs) + scattering_background);
        r.flags = sim.alarm_flags();
        return r;
    }

    void say_average(SIM_instrument& sim) {
        NET_PAX_Reading average = block.mean();
        average.start_time = sim.average_start();
        sim.send_kept(MSG_PAX_AVERAGE, average);
        block.reset();
    }

    SIM_channels channels{PAX_CHANNELS};
    SIM_record_running<NET_PAX_Reading> running;
    SIM_record_block<NET_PAX_Reading> block;
    SIM_stats zero_ba, zero_bs;
    double absorption = 0, scattering = 0;  // of what is in the cell, 1/Mm
    double absorption_background = 21, scattering_background = 9;
    double last_ba = VESK_MISSING, last_bs = VESK_MISSING;  // of the zero before
    std::size_t step = 0;
    FTIME step_ends = VESK_NO_TIME;
};

}  // namespace

constinit const SIM_decl SIM_DCL_caps = SIM_decl_of<caps>();
constinit const SIM_decl SIM_DCL_pax = SIM_decl_of<pax>();
