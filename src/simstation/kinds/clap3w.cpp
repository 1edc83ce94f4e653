// The photometer with eight sample spots on one filter: it moves on from spot to spot as each is used up,
// demands a new filter after the last, and leads the operator through changes, white-filter checks and
// switching the flow, saying at every step what state it is in.
#include <algorithm>
#include <cmath>
#include <iterator>

#include "libvesk/messages/records/clap3w.h"
#include "libvesk/support/util.h"
#include "simstation/kinds.h"
#include "simstation/physics/average.h"
#include "simstation/physics/channels.h"
#include "simstation/physics/filter.h"

namespace {

constexpr int SPOTS = NET_CLAP3W_SPOTS;
constexpr int DETECTORS = NET_CLAP3W_DETECTORS;
constexpr int REFERENCES = DETECTORS - SPOTS;
constexpr int GREEN = 1;

constexpr double WAVELENGTHS[] = {467, 528, 652};
constexpr SIM_filter_model MODEL{WAVELENGTHS, 19.9e-6, 0.83, 1e-6};
constexpr SIM_channel CHANNELS[] = {
    {.field = "T", .target = 31.5, .noise = 0.01, .lag = 600, .start = 24},
    {.field = "T_case", .target = 27.0, .noise = 0.02, .lag = 900, .start = 24}};

constexpr int SPOT_SECONDS = 60;     // until the readings of a new spot are trusted
constexpr int FILTER_SECONDS = 120;  // of a new filter
constexpr int FILTERS_PER_CHECK = 5;

struct state_row {
    NET_CLAP3W_State state;
    int seconds;  // until it passes by itself; 0: it stays
    BOOL pumping;
    const char* name;
};
constexpr state_row STATES[] = {
    {.state = NET_CLAP3W_NORMAL, .seconds = 0, .pumping = TRUE, .name = "sampling"},
    {.state = NET_CLAP3W_WAIT_SPOT, .seconds = SPOT_SECONDS, .pumping = TRUE, .name = "waiting for the spot"},
    {.state = NET_CLAP3W_CHANGING_FILTER, .seconds = 0, .pumping = FALSE, .name = "changing the filter"},
    {.state = NET_CLAP3W_WHITE_CHECK, .seconds = 0, .pumping = FALSE, .name = "white filter check"},
    {.state = NET_CLAP3W_WAIT_FILTER,
     .seconds = FILTER_SECONDS,
     .pumping = FALSE,
     .name = "waiting for the filter"},
    {.state = NET_CLAP3W_WAIT_WHITE,
     .seconds = FILTER_SECONDS,
     .pumping = FALSE,
     .name = "waiting for the white filter"},
    {.state = NET_CLAP3W_FLOW_OFF, .seconds = 0, .pumping = FALSE, .name = "flow off"},
    {.state = NET_CLAP3W_FLOW_OFF_PENDING,
     .seconds = 0,
     .pumping = FALSE,
     .name = "flow off, a spot pending"},
    {.state = NET_CLAP3W_CHANGE_REQUIRED, .seconds = 0, .pumping = FALSE, .name = "filter change required"},
    {.state = NET_CLAP3W_WHITE_REQUIRED,
     .seconds = 0,
     .pumping = FALSE,
     .name = "white filter check required"},
};
static_assert([] {
    for (std::size_t i = 0; i < std::size(STATES); ++i)
        if (STATES[i].state != static_cast<int>(i)) return false;
    return true;
}());

// Switching the flow: what leads where. Other states refuse it, and the locked ones unless overridden.
struct flow_row {
    BOOL on;
    NET_CLAP3W_State from, to;
    BOOL locked;
};
constexpr flow_row FLOW_RULES[] = {
    {.on = TRUE, .from = NET_CLAP3W_FLOW_OFF, .to = NET_CLAP3W_NORMAL, .locked = FALSE},
    {.on = TRUE, .from = NET_CLAP3W_FLOW_OFF_PENDING, .to = NET_CLAP3W_WAIT_SPOT, .locked = FALSE},
    {.on = TRUE, .from = NET_CLAP3W_WAIT_SPOT, .to = NET_CLAP3W_NORMAL, .locked = TRUE},
    {.on = TRUE, .from = NET_CLAP3W_CHANGE_REQUIRED, .to = NET_CLAP3W_NORMAL, .locked = TRUE},
    {.on = TRUE, .from = NET_CLAP3W_WHITE_REQUIRED, .to = NET_CLAP3W_NORMAL, .locked = TRUE},
    {.on = FALSE, .from = NET_CLAP3W_NORMAL, .to = NET_CLAP3W_FLOW_OFF, .locked = FALSE},
    {.on = FALSE, .from = NET_CLAP3W_WAIT_SPOT, .to = NET_CLAP3W_FLOW_OFF_PENDING, .locked = TRUE},
};

// Arrays of the instantaneous record, by colour.
#define AT(member) offsetof(NET_CLAP3W_Instant, member)
constexpr std::size_t RAW[] = {AT(in.IB), AT(in.IG), AT(in.IR), AT(in.ID)};
constexpr std::size_t RAW_RSD[] = {AT(IgB), AT(IgG), AT(IgR), AT(IgD)};
constexpr std::size_t NORMALIZED[] = {AT(in.InB), AT(in.InG), AT(in.InR)};
constexpr std::size_t NORMALIZED_RSD[] = {AT(IngB), AT(IngG), AT(IngR)};
constexpr std::size_t WHITE_RATIO[] = {AT(IrwB), AT(IrwG), AT(IrwR)};
constexpr std::size_t START_RATIO[] = {AT(IrzB), AT(IrzG), AT(IrzR)};
#undef AT

void put(NET_CLAP3W_Instant& r, std::size_t array, std::size_t i, double value) {
    NETDSD_store<double>(reinterpret_cast<char*>(&r) + array + i * sizeof(double), value);
}

struct clap3w {
    static constexpr SIM_setting settings[] = {
        SIM_FILTER_TRANSMITTANCE,
        SIM_FILTER_LOADING,
        {.name = "demand", .help = "8: a filter change is required; 9: a white filter check is"},
    };

    // It finds itself with a filter of which some spots are used.
    void start(SIM_instrument& sim) {
        new_filter(sim);
        take_white();
        active = 1 + sim.noise().pick(4);
        for (std::size_t i = 0; i + 1 < active; ++i)
            spots[i].set_transmittance(SIM_FILTER_FULL);
        spot().set_transmittance(sim.noise().uniform(0.75, 0.98));
        enter(sim, NET_CLAP3W_NORMAL);
    }

    void tick(SIM_instrument& sim) {
        if (wait > 0 && --wait == 0) settled(sim);
        channels.step(sim.noise(), sim.dt());
        const BOOL open = state == NET_CLAP3W_CHANGING_FILTER || state == NET_CLAP3W_WHITE_CHECK;
        cell.step(sim, spot(), STATES[state].pumping, open ? SIM_LID_OPEN : SIM_LID_CLOSED);
        const NET_CLAP3W_Instant now = instant(sim);
        sim.send_instant(MSG_CLAP3W_INSTANT, now);
        if (state == NET_CLAP3W_NORMAL) block.add(averaged(now));
        if (sim.average_due()) send_average(sim);
        if (state == NET_CLAP3W_NORMAL && spot_is_full()) advance(sim);
    }

    void status(SIM_instrument& sim) {
        sim.send_changed(MSG_CLAP3W_FILTERSTATUS, said);
        sim.send_changed(MSG_CLAP3W_STATUS, NET_CLAP3W_Status{sim.have_comms()});
    }

    BOOL command(SIM_instrument& sim, const VESKMSG_proc_msg* pm) {
        switch (pm->msg->msg) {
            case MSG_CLAP3W_FILTERCHANGE:
                change_filter(sim);
                return TRUE;
            case MSG_CLAP3W_WHITECHANGE:
                if (state == NET_CLAP3W_WHITE_CHECK)
                    return sim.refuse("white filter check", "one runs already");
                take_filter_out(sim, NET_CLAP3W_WHITE_CHECK);
                return TRUE;
            case MSG_CLAP3W_SPOTADVANCE:
                return advance(sim);
            case MSG_CLAP3W_FLOW:
            case MSG_CLAP3W_FLOWOVERRIDE:
                return switch_flow(sim, TRUE, pm->msg->msg == MSG_CLAP3W_FLOWOVERRIDE);
            case MSG_CLAP3W_NOFLOW:
            case MSG_CLAP3W_NOFLOWOVERRIDE:
                return switch_flow(sim, FALSE, pm->msg->msg == MSG_CLAP3W_NOFLOWOVERRIDE);
            default:
                return FALSE;
        }
    }

    BOOL set(SIM_instrument& sim, std::string_view name, const SIM_value& value) {
        if (name != "demand") return SIM_filter_set(cell, spot(), name, value);
        for (const NET_CLAP3W_State demand : {NET_CLAP3W_CHANGE_REQUIRED, NET_CLAP3W_WHITE_REQUIRED}) {
            if (value.number != static_cast<double>(demand)) continue;
            enter(sim, demand);
            return TRUE;
        }
        return FALSE;
    }

    // ---- what it does

    void enter(SIM_instrument& sim, NET_CLAP3W_State next) {
        state = next;
        wait = STATES[state].seconds;
        say_filter_status(sim);
        sim.log("%s, spot %zu", STATES[state].name, active);
    }

    void settled(SIM_instrument& sim) {
        if (state == NET_CLAP3W_WAIT_SPOT) return enter(sim, NET_CLAP3W_NORMAL);
        if (state == NET_CLAP3W_WAIT_WHITE) take_white();
        go_to_spot(1);
        enter(sim, NET_CLAP3W_WAIT_SPOT);
    }

    void take_white() {
        for (std::size_t i = 0; i < SPOTS; ++i)
            white[i] = {spots[i].clean(0), spots[i].clean(1), spots[i].clean(2)};
        filters_since_check = 0;
    }

    void change_filter(SIM_instrument& sim) {
        const BOOL white_check = state == NET_CLAP3W_WHITE_CHECK;
        if (!white_check && state != NET_CLAP3W_CHANGING_FILTER)
            return take_filter_out(sim, NET_CLAP3W_CHANGING_FILTER);
        new_filter(sim);
        enter(sim, white_check ? NET_CLAP3W_WAIT_WHITE : NET_CLAP3W_WAIT_FILTER);
    }

    void take_filter_out(SIM_instrument& sim, NET_CLAP3W_State why) {
        go_to_spot(0);
        enter(sim, why);
    }

    void new_filter(SIM_instrument& sim) {
        for (SIM_filter_spot& s : spots)
            s.renew(sim.noise());
        ++filter_number;
        ++filters_since_check;
        overridden = FALSE;
        cell.forget();
    }

    void go_to_spot(std::size_t next) {
        active = next;
        cell.forget();
    }

    BOOL advance(SIM_instrument& sim) {
        const BOOL flowing = STATES[state].pumping;
        if (!flowing && state != NET_CLAP3W_FLOW_OFF && state != NET_CLAP3W_FLOW_OFF_PENDING)
            return sim.refuse("spot advance", "%s", STATES[state].name);
        if (active < SPOTS) {
            go_to_spot(active + 1);
            enter(sim, flowing ? NET_CLAP3W_WAIT_SPOT : NET_CLAP3W_FLOW_OFF_PENDING);
        } else {
            const BOOL check_due = filters_since_check >= FILTERS_PER_CHECK;
            enter(sim, check_due ? NET_CLAP3W_WHITE_REQUIRED : NET_CLAP3W_CHANGE_REQUIRED);
        }
        return TRUE;
    }

    BOOL switch_flow(SIM_instrument& sim, BOOL on, BOOL override_locks) {
        for (const flow_row& rule : FLOW_RULES) {
            if (rule.on != on || rule.from != state || (rule.locked && !override_locks)) continue;
            // A used-up spot that the operator insists on.
            if (state == NET_CLAP3W_CHANGE_REQUIRED || state == NET_CLAP3W_WHITE_REQUIRED) overridden = TRUE;
            pause_volume = spot().volume();
            enter(sim, rule.to);
            return TRUE;
        }
        return sim.refuse(on ? "flow on" : "flow off", "%s", STATES[state].name);
    }

    // ---- what it says

    void say_filter_status(SIM_instrument& sim) {
        said.status = state;
        said.active_spot = static_cast<WORD>(active);
        said.paused = state == NET_CLAP3W_FLOW_OFF || state == NET_CLAP3W_FLOW_OFF_PENDING;
        said.pause_Qt = said.paused ? pause_volume : 0;
        said.Qt = spot().volume();
        said.real_time = sim.time();
        said.clap_time = static_cast<DWORD>(sim.age());
        said.clap_filter_number = static_cast<WORD>(filter_number);
        UTIL_strcpynt(said.serial_number, "SIM 004");
        for (std::size_t c = 0; c < 3; ++c)
            said.In[c] = spot().light(c);
    }

    NET_CLAP3W_Instant instant(SIM_instrument& sim) {
        auto r = NETDSD_default<NET_CLAP3W_Instant>();
        r.start_time = sim.time();
        r.Q = cell.flow;
        r.VQ = 1 + 2.5 * cell.flow;  // of a sensor that gives 1 V without flow
        r.spot_index = static_cast<WORD>(active);
        r.flags = sim.alarm_flags();
        channels.fill(r);
        for (std::size_t c = 0; c < 3; ++c)
            fill_color(sim.noise(), r, c);
        for (std::size_t i = 0; i < DETECTORS; ++i)
            put_raw(r, 3, i, cell.dark(sim.noise()));
        return r;
    }

    void fill_color(SIM_noise& noise, NET_CLAP3W_Instant& r, std::size_t c) {
        // The cell has measured these already: the active spot and the reference of its side.
        const std::size_t own = index_of(spot());
        for (std::size_t i = 0; i < REFERENCES; ++i)
            put_raw(r, c, i, i == own % 2 ? cell.reference[c] : cell.detect(noise, c, 1));
        for (std::size_t i = 0; i < SPOTS; ++i) {
            const double reading = i == own ? cell.sample[c] : cell.detect(noise, c, spots[i].light(c));
            put_raw(r, c, REFERENCES + i, reading);
            put_spot(r, c, i, cell.relative(c, reading));
        }
        r.bap[c] = cell.absorption[c];
        r.tr[c] = cell.transmittance[c];
        r.Iref[c] = cell.reference[c];
        r.Isam[c] = cell.sample[c];
        r.Inormrsd[c] = normalized_ripple[c][own].rsd();
    }

    void put_raw(NET_CLAP3W_Instant& r, std::size_t c, std::size_t i, double value) {
        raw_ripple[c][i].add(value);
        put(r, RAW[c], i, value);
        put(r, RAW_RSD[c], i, raw_ripple[c][i].rsd());
    }

    void put_spot(NET_CLAP3W_Instant& r, std::size_t c, std::size_t i, double value) {
        normalized_ripple[c][i].add(value);
        put(r, NORMALIZED[c], i, value);
        put(r, NORMALIZED_RSD[c], i, normalized_ripple[c][i].rsd());
        put(r, WHITE_RATIO[c], i, value / white[i][c]);
        put(r, START_RATIO[c], i, value / spots[i].clean(c));
    }

    static NET_CLAP3W_Avg averaged(const NET_CLAP3W_Instant& now) {
        auto r = NETDSD_default<NET_CLAP3W_Avg>();
        r.start_time = now.start_time;
        for (std::size_t c = 0; c < 3; ++c) {
            r.bap[c] = now.bap[c];
            r.tr[c] = now.tr[c];
        }
        r.Q = now.Q;
        r.T = now.T;
        r.T_case = now.T_case;
        return r;
    }

    void send_average(SIM_instrument& sim) {
        NET_CLAP3W_Avg average = block.mean();
        average.start_time = sim.average_start();
        average.Qt = spot().volume();
        average.flags = sim.alarm_flags();
        sim.send_kept(MSG_CLAP3W_AVERAGE, average);
        block.reset();
        say_filter_status(sim);  // the volume goes on
    }

    // ---- the filter

    [[nodiscard]] SIM_filter_spot& spot() { return spots[active > 0 ? active - 1 : 0]; }
    [[nodiscard]] std::size_t index_of(const SIM_filter_spot& s) const {
        return static_cast<std::size_t>(&s - spots.data());
    }
    [[nodiscard]] BOOL spot_is_full() {
        return spot().transmittance(GREEN) < SIM_FILTER_FULL && !(overridden && active == SPOTS);
    }

    SIM_filter_cell cell{MODEL};
    SIM_channels channels{CHANNELS};
    std::array<SIM_filter_spot, SPOTS> spots;
    std::array<SIM_colors, SPOTS> white{};  // what the white filter let through, spot by spot
    std::size_t active = 1;                 // from 1; 0: none
    NET_CLAP3W_State state = NET_CLAP3W_NORMAL;
    int wait = 0;             // seconds that the state still lasts; 0: until something happens
    BOOL overridden = FALSE;  // the last spot is used on
    int filter_number = 40;
    int filters_since_check = 0;
    double pause_volume = 0;  // m3 through the spot when the flow was switched
    NET_CLAP3W_FilterStatus said = NETDSD_default<NET_CLAP3W_FilterStatus>();
    std::array<std::array<SIM_ripple, DETECTORS>, 4> raw_ripple;
    std::array<std::array<SIM_ripple, SPOTS>, 3> normalized_ripple;
    SIM_record_block<NET_CLAP3W_Avg> block;
};

}  // namespace

constinit const SIM_decl SIM_DCL_clap3w = SIM_decl_of<clap3w>();
