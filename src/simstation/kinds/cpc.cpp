// The condensation particle counters. They all count the particles of the same air, each with its own lower
// size limit and flow; what differs otherwise is a table of housekeeping values and the bits of its status.
#include <algorithm>
#include <cmath>

#include "libvesk/messages/records/cpc.h"
#include "simstation/kinds.h"
#include "simstation/physics/average.h"
#include "simstation/physics/channels.h"

namespace {

// The working liquid (butanol or water) is used up slowly; the operator is warned, and somebody fills it up.
constexpr double HOURS_PER_FILLING = 8;
constexpr double LOW_LEVEL = 0.15;
constexpr double DRY_LEVEL = 0.01;      // below, particles do not grow any more
constexpr double DRYING_LAG = 240;      // seconds until the wick is dry
constexpr double SETTLED_WITHIN = 1.5;  // degrees from the set points that the instrument calls in order

struct counter_row {
    double efficiency;       // share of the air's particles that this model sees
    double flow;             // through the optics, cm3 per second: sets the counting noise
    WORD unsettled;          // status bit while temperatures are off
    WORD low_liquid;         // status bit of the warning
    double liquid_full = 0;  // reading of the level sensor, where it is reported
};

class reservoir {
  public:
    void step(SIM_noise& noise, double dt) {
        if (level_ < 0) fill_up(noise);
        level_ = std::max(0.0, level_ - dt / (HOURS_PER_FILLING * 3600));
        if (!held_ && level_ < patience_) fill_up(noise);
        wetness_ = SIM_approach(wetness_, level_ > DRY_LEVEL ? 1 : 0, DRYING_LAG, dt);
    }
    // A scenario decides: nobody refills what it set low.
    void set(double level) {
        level_ = std::clamp(level, 0.0, 1.0);
        held_ = level_ < LOW_LEVEL;
    }
    [[nodiscard]] BOOL low() const { return level_ >= 0 && level_ < LOW_LEVEL; }
    [[nodiscard]] double level() const { return level_; }
    [[nodiscard]] double wetness() const { return wetness_; }
    [[nodiscard]] int fillings() const { return fillings_; }

  private:
    void fill_up(SIM_noise& noise) {
        level_ = level_ < 0 ? noise.uniform(0.2, 1) : 1;
        ++fillings_;
        patience_ = noise.uniform(0.03, 0.12);
    }
    double level_ = -1;  // share of full; below 0 before the first step
    double patience_ = 0;
    double wetness_ = 1;
    BOOL held_ = FALSE;
    int fillings_ = 0;
};

// Particles that an instrument counts in one second.
class counter {
  public:
    counter(const counter_row& row, std::span<const SIM_channel> rows) : channels(rows), row_(row) {}

    void step(SIM_instrument& sim) {
        channels.step(sim.noise(), sim.dt());
        liquid.step(sim.noise(), sim.dt());
        const double warm = channels.progress();
        const double seen = sim.air().number() * row_.efficiency * warm * warm * liquid.wetness();
        concentration = sim.noise().poisson(seen * row_.flow * sim.dt()) / (row_.flow * sim.dt());
        displayed_ = SIM_approach(displayed_, concentration, 6, sim.dt());  // its display is smoothed
    }
    [[nodiscard]] double displayed() const { return displayed_; }
    // The spread that counting alone gives.
    [[nodiscard]] double counting_error() const { return std::sqrt(concentration / row_.flow); }
    [[nodiscard]] WORD flags(const SIM_instrument& sim) const {
        unsigned flags = sim.alarm_flags();
        if (!channels.settled(SETTLED_WITHIN)) flags |= row_.unsettled;
        if (liquid.low()) flags |= row_.low_liquid;
        return static_cast<WORD>(flags);
    }

    SIM_channels channels;
    reservoir liquid;
    double concentration = 0;

  private:
    const counter_row& row_;
    double displayed_ = 0;
};

constexpr SIM_setting LIQUID_SETTING = {"liquid", "level of butanol or water, 0 (dry) to 1 (full)"};
constexpr SIM_setting DIP_SETTING = {"dip", "on: the DIP switches forbid remote control"};

BOOL set_liquid(reservoir& liquid, const SIM_value& value) {
    if (!(value.number >= 0 && value.number <= 1)) return FALSE;
    liquid.set(value.number);
    return TRUE;
}

// --- the seven that report a concentration and its deviation ---
// K names the records and messages of a kind, its row and its channels; fields that a kind's records do not
// have are not written.
template <class K>
struct simple_counter {
    using Avg = typename K::Avg;
    using Instant = typename K::Instant;
    static constexpr std::span<const SIM_setting> settings{K::settings};

    void tick(SIM_instrument& sim) {
        model.step(sim);
        running.add(sim.time(), model.concentration);
        block.add(model.concentration);
        sim.send_instant(K::INSTANT, instant(sim.time()));
        if (!sim.average_due()) return;
        sim.send_kept(K::AVERAGE, Avg{sim.average_start(), block.mean(), block.stddev()});
        block.reset();
    }

    void status(SIM_instrument& sim) {
        auto record = NETDSD_default<typename K::Status>();
        record.have_comms = sim.have_comms();
        if constexpr (requires { record.flags; }) record.flags = model.flags(sim);
        if constexpr (requires { record.full; }) record.full = !model.liquid.low();
        if constexpr (requires { record.dip_error; }) record.dip_error = dip_error;
        sim.send_changed(K::STATUS, record);
    }

    BOOL set(SIM_instrument&, std::string_view name, const SIM_value& value) {
        if (name == LIQUID_SETTING.name) return set_liquid(model.liquid, value);
        dip_error = value.number != 0;
        return TRUE;
    }

    Instant instant(FTIME time) const {
        auto record = NETDSD_default<Instant>();
        record.start_time = time;
        record.concentration = model.concentration;
        const SIM_stats minute = running.stats();
        record.running = {running.start(), minute.mean(), minute.stddev()};
        if constexpr (requires { record.display_concentration; })
            record.display_concentration = model.displayed();
        if constexpr (requires { record.liquid; })
            record.liquid = static_cast<std::int32_t>(std::lround(model.liquid.level() * K::row.liquid_full));
        model.channels.fill(record);
        return record;
    }

    counter model{K::row, K::channels};
    SIM_running running;
    SIM_stats block;
    BOOL dip_error = FALSE;
};

// The names of a kind's records (NET_CPC_<record>_*) and messages (MSG_CPC_<msg>_*).
#define CPC_NAMES(record, msg)                                      \
    using Avg = NET_CPC_##record##_Avg;                             \
    using Instant = NET_CPC_##record##_Instant;                     \
    using Status = NET_CPC_##record##_Status;                       \
    static constexpr NETMSG_type AVERAGE = MSG_CPC_##msg##_AVERAGE; \
    static constexpr NETMSG_type INSTANT = MSG_CPC_##msg##_INSTANT; \
    static constexpr NETMSG_type STATUS = MSG_CPC_##msg##_STATUS

struct liquid_only {
    static constexpr SIM_setting settings[] = {LIQUID_SETTING};
};

constexpr double ROOM = 23.5;        // Celsius, where cold instruments start
constexpr double LPM = 1000 / 60.0;  // cm3 per second

struct cpc_3010 {
    CPC_NAMES(3010, 3010);
    static constexpr SIM_setting settings[] = {LIQUID_SETTING, DIP_SETTING};
    static constexpr counter_row row{.efficiency = 0.92, .flow = 1.0 * LPM, .unsettled = 1, .low_liquid = 2};
    static constexpr SIM_channel channels[] = {
        {.field = "T_saturator", .target = 39.0, .noise = 0.05, .lag = 60, .start = ROOM},
        {.field = "T_condenser", .target = 22.0, .noise = 0.05, .lag = 25, .start = ROOM},
    };
};

struct cpc_3022 : liquid_only {
    CPC_NAMES(3022, 3022);
    static constexpr counter_row row{.efficiency = 0.97, .flow = 0.3 * LPM, .unsettled = 1, .low_liquid = 2};
    static constexpr SIM_channel channels[] = {
        {.field = "T_saturator", .target = 35.0, .noise = 0.04, .lag = 60, .start = ROOM},
        {.field = "T_condenser", .target = 10.0, .noise = 0.05, .lag = 90, .start = ROOM},
        {.field = "T_optics", .target = 35.5, .noise = 0.05, .lag = 75, .start = ROOM},
        {.field = "Q", .target = 0.3, .noise = 0.001},
    };
};

struct cpc_3703 : liquid_only {
    CPC_NAMES(3703, 3703);
    static constexpr counter_row row{.efficiency = 0.9, .flow = 1.4 * LPM, .unsettled = 0, .low_liquid = 0};
    static constexpr std::span<const SIM_channel> channels{};
};

struct cpc_pulse : liquid_only {
    CPC_NAMES(Pulse, PULSE);
    static constexpr counter_row row{.efficiency = 0.88, .flow = 1.0 * LPM, .unsettled = 0, .low_liquid = 0};
    static constexpr std::span<const SIM_channel> channels{};
};

struct cpc_3775 : liquid_only {
    CPC_NAMES(3775, 3775);
    static constexpr counter_row row{.efficiency = 0.99,
                                     .flow = 0.3 * LPM,
                                     .unsettled = 0x0007,
                                     .low_liquid = 0x0100,
                                     .liquid_full = 2471};
    static constexpr SIM_channel channels[] = {
        {.field = "T_condenser", .target = 14.0, .noise = 0.05, .lag = 80, .start = ROOM},
        {.field = "T_saturator", .target = 39.0, .noise = 0.04, .lag = 60, .start = ROOM},
        {.field = "T_optics", .target = 40.0, .noise = 0.05, .lag = 70, .start = ROOM},
        {.field = "T_cabinet", .target = 30.0, .noise = 0.1},
        {.field = "P_ambient", .target = 985, .noise = 0.4},
        {.field = "P_orifice", .target = 420, .noise = 1.5},
        {.field = "P_nozzle", .target = 2.4, .noise = 0.03},
        {.field = "I_laser", .target = 51, .noise = 0.4},
        {.field = "Q", .target = 0.3, .noise = 0.001},
        {.field = "Q_inlet", .target = 1.5, .noise = 0.01},
    };
};

struct cpc_3781 : liquid_only {
    CPC_NAMES(3781, 3781);
    static constexpr counter_row row{
        .efficiency = 1.0, .flow = 0.12 * LPM, .unsettled = 0x0007, .low_liquid = 0x0020};
    static constexpr SIM_channel channels[] = {
        {.field = "T_saturator", .target = 20.0, .noise = 0.06, .lag = 40, .start = ROOM},
        {.field = "T_growth", .target = 60.0, .noise = 0.08, .lag = 70, .start = ROOM},
        {.field = "T_optics", .target = 60.0, .noise = 0.08, .lag = 75, .start = ROOM},
        {.field = "P", .target = 982, .noise = 0.5},
        {.field = "Q", .target = 0.12, .noise = 0.0006},
    };
};

struct cpc_3783 : liquid_only {
    CPC_NAMES(3783, 3783);
    static constexpr counter_row row{
        .efficiency = 1.0, .flow = 0.12 * LPM, .unsettled = 0x0007, .low_liquid = 0, .liquid_full = 960};
    static constexpr SIM_channel channels[] = {
        {.field = "T_inlet", .target = 22.5, .noise = 0.1},
        {.field = "T_growth", .target = 60.0, .noise = 0.06, .lag = 70, .start = ROOM},
        {.field = "T_condenser", .target = 20.0, .noise = 0.06, .lag = 40, .start = ROOM},
        {.field = "T_optics", .target = 60.0, .noise = 0.08, .lag = 75, .start = ROOM},
        {.field = "T_water", .target = 24.5, .noise = 0.05},
        {.field = "T_cabinet", .target = 29.0, .noise = 0.1},
        {.field = "Q_inlet", .target = 3.0, .noise = 0.02},
        {.field = "P_absolute", .target = 985, .noise = 0.5},
        {.field = "P_vacuum", .target = 390, .noise = 1.5},
        {.field = "P_nozzle", .target = 98, .noise = 0.5},
        {.field = "I_laser", .target = 68, .noise = 0.5},
        {.field = "V_photo", .target = 410, .noise = 2},
        {.field = "V_pulse", .target = 2100, .noise = 35},
    };
};

// --- the one that averages all it measures ---

constexpr counter_row BMI_ROW{.efficiency = 0.95, .flow = 0.36 * LPM, .unsettled = 0, .low_liquid = 0};
constexpr SIM_channel BMI_CHANNELS[] = {
    {.field = "T1", .target = 15.0, .noise = 0.05, .lag = 80, .start = ROOM},
    {.field = "T2", .target = 42.0, .noise = 0.05, .lag = 60, .start = ROOM},
    {.field = "T3", .target = 43.0, .noise = 0.05, .lag = 60, .start = ROOM},
    {.field = "T4", .target = 47.0, .noise = 0.06, .lag = 70, .start = ROOM},
    {.field = "Tu", .target = 24.0, .noise = 0.08},
    {.field = "Q1", .target = 0.36, .noise = 0.001},
    {.field = "Q2", .target = 0.30, .noise = 0.001},
    {.field = "PCT1", .target = 48, .noise = 1.2, .lag = 120, .start = 100},
    {.field = "PCT2", .target = 31, .noise = 0.8, .lag = 80, .start = 100},
    {.field = "PCT3", .target = 28, .noise = 0.8, .lag = 80, .start = 100},
    {.field = "PCT4", .target = 22, .noise = 0.6, .lag = 80, .start = 100},
    {.field = "PCT5", .target = 54, .noise = 0.4},
};

struct bmi1710 {
    static constexpr SIM_setting settings[] = {LIQUID_SETTING};

    void tick(SIM_instrument& sim) {
        model.step(sim);
        const NET_CPC_BMI1710_Reading now = reading(sim.time());
        running.add(sim.time(), now);
        spread.add(sim.time(), model.concentration);
        block.add(now);
        block_spread.add(model.concentration);
        sim.send_instant(MSG_CPC_BMI1710_INSTANT, instant(now));
        if (sim.average_due()) send_average(sim);
    }

    void status(SIM_instrument& sim) {
        sim.send_changed(MSG_CPC_BMI1710_STATUS, NET_CPC_BMI1710_Status{sim.have_comms()});
    }

    BOOL set(SIM_instrument&, std::string_view, const SIM_value& value) {
        return set_liquid(model.liquid, value);
    }

    NET_CPC_BMI1710_Reading reading(FTIME time) const {
        auto r = NETDSD_default<NET_CPC_BMI1710_Reading>();
        r.start_time = time;
        r.N = model.concentration;
        r.Ng = model.counting_error();
        model.channels.fill(r);
        return r;
    }

    NET_CPC_BMI1710_Instant instant(const NET_CPC_BMI1710_Reading& now) const {
        NET_CPC_BMI1710_Instant record{now.start_time, now, running.mean(), model.liquid.fillings()};
        record.ra.Ng = spread.stddev();
        return record;
    }

    void send_average(SIM_instrument& sim) {
        NET_CPC_BMI1710_Reading average = block.mean();
        average.start_time = sim.average_start();
        average.Ng = block_spread.stddev();
        sim.send_kept(MSG_CPC_BMI1710_AVERAGE, average);
        block.reset();
        block_spread.reset();
    }

    counter model{BMI_ROW, BMI_CHANNELS};
    SIM_record_running<NET_CPC_BMI1710_Reading> running;
    SIM_running spread;
    SIM_record_block<NET_CPC_BMI1710_Reading> block;
    SIM_stats block_spread;
};

}  // namespace

constinit const SIM_decl SIM_DCL_cpc_3010 = SIM_decl_of<simple_counter<cpc_3010>>();
constinit const SIM_decl SIM_DCL_cpc_3022 = SIM_decl_of<simple_counter<cpc_3022>>();
constinit const SIM_decl SIM_DCL_cpc_3703 = SIM_decl_of<simple_counter<cpc_3703>>();
constinit const SIM_decl SIM_DCL_cpc_3775 = SIM_decl_of<simple_counter<cpc_3775>>();
constinit const SIM_decl SIM_DCL_cpc_3781 = SIM_decl_of<simple_counter<cpc_3781>>();
constinit const SIM_decl SIM_DCL_cpc_3783 = SIM_decl_of<simple_counter<cpc_3783>>();
constinit const SIM_decl SIM_DCL_cpc_bmi1710 = SIM_decl_of<bmi1710>();
constinit const SIM_decl SIM_DCL_cpc_pulse = SIM_decl_of<simple_counter<cpc_pulse>>();
