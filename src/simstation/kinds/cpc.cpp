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

// What an instrument counts in one second.
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
        {"T_saturator", 39.0, 0.05, 60, ROOM},
        {"T_condenser", 22.0, 0.05, 25, ROOM},
    };
};

struct cpc_3022 : liquid_only {
    CPC_NAMES(3022, 3022);
    static constexpr counter_row row{.efficiency = 0.97, .flow = 0.3 * LPM, .unsettled = 1, .low_liquid = 2};
    static constexpr SIM_channel channels[] = {
        {"T_saturator", 35.0, 0.04, 60, ROOM},
        {"T_condenser", 10.0, 0.05, 90, ROOM},
        {"T_optics", 35.5, 0.05, 75, ROOM},
        {"Q", 0.3, 0.001},
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
        {"T_condenser", 14.0, 0.05, 80, ROOM},
        {"T_saturator", 39.0, 0.04, 60, ROOM},
        {"T_optics", 40.0, 0.05, 70, ROOM},
        {"T_cabinet", 30.0, 0.1},
        {"P_ambient", 985, 0.4},
        {"P_orifice", 420, 1.5},
        {"P_nozzle", 2.4, 0.03},
        {"I_laser", 51, 0.4},
        {"Q", 0.3, 0.001},
        {"Q_inlet", 1.5, 0.01},
    };
};

struct cpc_3781 : liquid_only {
    CPC_NAMES(3781, 3781);
    static constexpr counter_row row{
        .efficiency = 1.0, .flow = 0.12 * LPM, .unsettled = 0x0007, .low_liquid = 0x0020};
    static constexpr SIM_channel channels[] = {
        {"T_saturator", 20.0, 0.06, 40, ROOM},
        {"T_growth", 60.0, 0.08, 70, ROOM},
        {"T_optics", 60.0, 0.08, 75, ROOM},
        {"P", 982, 0.5},
        {"Q", 0.12, 0.0006},
    };
};

struct cpc_3783 : liquid_only {
    CPC_NAMES(3783, 3783);
    static constexpr counter_row row{
        .efficiency = 1.0, .flow = 0.12 * LPM, .unsettled = 0x0007, .low_liquid = 0, .liquid_full = 960};
    static constexpr SIM_channel channels[] = {
        {"T_inlet", 22.5, 0.1},
        {"T_growth", 60.0, 0.06, 70, ROOM},
        {"T_condenser", 20.0, 0.06, 40, ROOM},
        {"T_optics", 60.0, 0.08, 75, ROOM},
        {"T_water", 24.5, 0.05},
        {"T_cabinet", 29.0, 0.1},
        {"Q_inlet", 3.0, 0.02},
        {"P_absolute", 985, 0.5},
        {"P_vacuum", 390, 1.5},
        {"P_nozzle", 98, 0.5},
        {"I_laser", 68, 0.5},
        {"V_photo", 410, 2},
        {"V_pulse", 2100, 35},
    };
};

// --- the one that averages all it measures ---

constexpr counter_row BMI_ROW{.efficiency = 0.95, .flow = 0.36 * LPM, .unsettled = 0, .low_liquid = 0};
constexpr SIM_channel BMI_CHANNELS[] = {
    {"T1", 15.0, 0.05, 80, ROOM}, {"T2", 42.0, 0.05, 60, ROOM}, {"T3", 43.0, 0.05, 60, ROOM},
    {"T4", 47.0, 0.06, 70, ROOM}, {"Tu", 24.0, 0.08},           {"Q1", 0.36, 0.001},
    {"Q2", 0.30, 0.001},          {"PCT1", 48, 1.2, 120, 100},  {"PCT2", 31, 0.8, 80, 100},
    {"PCT3", 28, 0.8, 80, 100},   {"PCT4", 22, 0.6, 80, 100},   {"PCT5", 54, 0.4},
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
