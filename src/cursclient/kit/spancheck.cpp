// Shows an instrument's span check on its display, and keeps the list of the nephelometers that can take
// part.
#include "cursclient/kit/spancheck.h"

#include <cstdio>
#include <iterator>
#include <span>

#include "libveskcurs/curskeys.h"

LL_TYPE g_running_nephs;
NET_COMMON_Neph_SpancheckDuration g_spancheck_duration;

namespace {

constexpr int WIDTH = 77;
constexpr int HEIGHT = 10;
constexpr std::size_t IDENT_SIZE = 72;  // of the window's "type:source.sc", terminator included

constexpr const char* AIR_INIT[] = {
    "The nephelometer is now being flushed with filtered air.  If you haven't",
    "already opened the CO2 tank valve, please do so NOW. Please make a log",
    "entry with the tank pressure.",
    "",
};
constexpr const char* CO2[] = {
    "CO2 is now flowing through the nephelometer.  Please set the regulator",
    "output to 25 psi, and verify the flow is 4-5 lpm (8-10 lpm for two neph",
    "systems).  Please make a log entry with the CO2 flowrate and pressure.",
    "",
    "CO2 flush finished",  // not while it still goes on
};
constexpr const char* AIR_AFTER[] = {
    "The CO2 span check is finished.  Please turn off the main valve on the CO2",
    "tank.  The nephelometer is now flushing with filtered air.", "",
    "Air flush finished.",  // not while it still goes on
};

struct phase_row {
    std::int32_t phase;
    const char* short_name;
    std::span<const char* const> instructions;  // from row 1
    const char* until;                          // below them, with the end of the phase
};
constexpr phase_row PHASES[] = {
    {NET_COMMON_NEPH_SC_NONE, "NONE", {}, ""},
    {NET_COMMON_NEPH_SC_FLUSH_AIR_INIT, "F. AIR (INIT)", AIR_INIT, "The CO2 span check will begin at"},
    {NET_COMMON_NEPH_SC_FLUSH_CO2, "F. CO2", std::span(CO2).first<4>(), "CO2 will be flushed until"},
    {NET_COMMON_NEPH_SC_SAMPLE_CO2, "S. CO2", CO2, "CO2 will be sampled until"},
    {NET_COMMON_NEPH_SC_FLUSH_AIR_SAMPLE, "F. AIR (SMPL)", std::span(AIR_AFTER).first<3>(),
     "Air will be flushed until"},
    {NET_COMMON_NEPH_SC_SAMPLE_AIR, "S. AIR", AIR_AFTER, "Air will be sampled until"},
};
static_assert(std::size(PHASES) == NET_COMMON_NEPH_SC_COUNT);
static_assert([] {
    for (std::size_t i = 0; i < std::size(PHASES); ++i)
        if (PHASES[i].phase != static_cast<std::int32_t>(i)) return false;
    return true;
}());

// Null for a number from the wire that is no phase.
const phase_row* row_of(std::int32_t phase) {
    return phase >= 0 && phase < NET_COMMON_NEPH_SC_COUNT ? &PHASES[phase] : nullptr;
}

void draw_running(const SPANCHECK_head* pd, const CANVAS& d) {
    const phase_row* phase = row_of(pd->sc_phase.phase);
    if (phase == nullptr) return;
    int row = 1;
    for (const char* line : phase->instructions)
        d.text(row++, 1, line);
    d.put(row, 1, "%s %s", phase->until, INSTDISP_time(pd->sc_phase.next_time).c_str());
}

void draw_finished(const SPANCHECK_head* pd, const CANVAS& d) {
    d.put(1, 1, "The air check finished at %s.  The nephelometer will return to normal",
          INSTDISP_time(pd->sc_last_time).c_str());
    d.text(2, 1, "sampling after a zero check.");
    d.text(4, 1, "Results:");
    SPANCHECK_draw_results_head(d, 5);
    SPANCHECK_draw_results(d, 6, pd->sc_results);
    d.put(8, 1, "Average error: *~2.2f", pd->sc_results.avgErr);
    d.text(10, 1, "Press enter to close this window.");  // shows only where the window is taller
}

template <class Total, class Back>
void draw_values(const CANVAS& d, int row, const char* label, Total total, Back back) {
    d.put(row, 1, "%s*~+01.03.02e *~+01.03.02e *~+01.03.02e *~+01.03.02e *~+01.03.02e *~+01.03.02e", label,
          total(0), total(1), total(2), back(0), back(1), back(2));
}

}  // namespace

bool SPANCHECK_open(SPANCHECK_head* pd, DWORD uid) {
    pd->sc_last_time = VESK_NO_TIME;
    pd->is_bypassed = false;
    char ident[IDENT_SIZE];
    std::snprintf(ident, sizeof ident, "%s:%s.sc", pd->type, pd->name);
    pd->scwin = WINS_create(ident, WIDTH, HEIGHT);
    if (pd->scwin == nullptr) return false;
    pd->list_node = LL_insert_tail(&g_running_nephs, &uid, sizeof uid);
    return pd->list_node != nullptr;
}

void SPANCHECK_close(SPANCHECK_head* pd) {
    if (pd->scwin != nullptr) WINS_delete(pd->scwin);
    pd->scwin = nullptr;
    LL_delete_specfic(&g_running_nephs, pd->list_node);
    pd->list_node = nullptr;
}

void SPANCHECK_take_bypass(SPANCHECK_head* pd, const VESKMSG_proc_msg* pm, NETMSG_type blocked_by) {
    if (pm->msg->msg != blocked_by || pm->pds == nullptr) return;
    if (pm->src_name == nullptr || pm->src_name[0] == '\0' || INSTDISP_is_own(pd, pm)) return;
    pd->is_bypassed = NETDSD_load<BOOL>(pm->pds);  // what both messages begin with
}

bool SPANCHECK_is_running(const SPANCHECK_head* pd) {
    return pd->sc_phase.phase != NET_COMMON_NEPH_SC_NONE;
}

bool SPANCHECK_key(SPANCHECK_head* pd, int key) {
    if (!CURSKEYS_is_enter(key) || !pd->scwin->focused || SPANCHECK_is_running(pd)) return false;
    WINS_hide_window(pd->scwin);
    return true;
}

const char* SPANCHECK_phase_name(std::int32_t phase) {
    const NETDSD_meaning* named = NETDSD_meaning_of(NET_COMMON_NEPH_SC_PHASES, phase);
    return named != nullptr ? named->text : "";
}

const char* SPANCHECK_short_phase_name(std::int32_t phase) {
    const phase_row* row = row_of(phase);
    return row != nullptr ? row->short_name : "";
}

void SPANCHECK_update(SPANCHECK_head* pd) {
    if (pd->scwin == nullptr) return;
    SFMT_printf(&pd->sbfr, "%s spancheck", static_cast<const char*>(pd->display_name));
    WINS_draw_frame(pd->scwin, SFMT_get_buffer(&pd->sbfr));
    const CANVAS d(pd->scwin, &pd->sbfr);
    if (SPANCHECK_is_running(pd)) return draw_running(pd, d);
    if (pd->sc_last_time != VESK_NO_TIME) return draw_finished(pd, d);
    d.text(1, 1, "No spancheck done or in progress.");
}

void SPANCHECK_draw_results_head(const CANVAS& d, int row) {
    d.text(row, 1, "            TS_blue   TS_green     TS_red    BS_blue   BS_green     BS_red");
}

void SPANCHECK_draw_results(const CANVAS& d, int row, const NET_COMMON_Neph_SpancheckResults& results) {
    const auto& r = results;
    draw_values(
        d, row, "  BsgCO2:", [&](int i) { return r.bsgCO2[i]; }, [&](int i) { return r.bbsgCO2[i]; });
    draw_values(
        d, row + 1, "PctError:", [&](int i) { return r.pcterrTS[i]; }, [&](int i) { return r.pcterrBS[i]; });
}

std::string SPANCHECK_label(bool offered, char hot_key, const char* text) {
    return offered ? hot_key + std::string(text) : std::string();
}
