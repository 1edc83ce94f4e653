// The single-wavelength nephelometer M903: latest reading beside running average, and the span check.
#include "cursclient/kit/neph_common.h"

struct NEPHM903_prv_data : SPANCHECK_head {
    NET_NEPHM903_Avg avg;
    NET_NEPHM903_Instant instant;
    NET_NEPHM903_Status status;
};
SPANCHECK_BINDINGS(NEPHM903)

namespace {

using store = INSTDISP_store<NEPHM903_prv_data>;

constexpr int INSTANT = 13;
constexpr int AVERAGE = 22;

// One value of the reading and the same of the average: value(record).
template <class Value>
void row(const CANVAS& d, int y, const NEPHM903_prv_data* pd, const char* label,
         SFMT_altformat<double> format, Value value) {
    d.field(y, 1, label, INSTANT, format, static_cast<double>(value(pd->instant)));
    d.put(y, AVERAGE, format, static_cast<double>(value(pd->instant.running)));
}

void draw_status(NEPHM903_prv_data* pd, const CANVAS& d) {
    if (d.no_comms(9, pd->status.have_comms) || !SPANCHECK_is_running(pd)) return;
    d.put(9, 1, "%s UNTIL %s", SPANCHECK_short_phase_name(pd->sc_phase.phase),
          INSTDISP_time(pd->sc_phase.next_time).c_str());
}

void draw(NEPHM903_prv_data* pd, const CANVAS& d) {
    d.text(1, INSTANT, " Instant");
    d.text(1, AVERAGE, " Average");
    row(d, 2, pd, "Bs (1/Mm):", " *~5.1f", [](const auto& r) { return UNIT_on_screen(UNIT_per_m, r.bspg); });
    // The reference is shown on the scale of the scattering.
    row(d, 3, pd, "Green ref:", " *~5.1f",
        [](const auto& r) { return UNIT_on_screen(UNIT_per_m, r.greenref); });
    row(d, 4, pd, "T inlet (C):", "    *~2.1f", [](const auto& r) { return r.T_inlet; });
    row(d, 5, pd, "RH inlet (%):", "    *~2.1f", [](const auto& r) { return r.RH_inlet; });
    row(d, 6, pd, "T neph (C):", "    *~2.1f", [](const auto& r) { return r.T_neph; });
    row(d, 7, pd, "RH neph (%):", "    *~2.1f", [](const auto& r) { return r.RH_neph; });
    row(d, 8, pd, "P (hPa):", "  *~4.1f", [](const auto& r) { return r.P; });
    draw_status(pd, d);
    NEPHM903_update_spancheck(pd);
}

constexpr auto STORES =
    SPANCHECK_stores<NEPHM903_prv_data>(store::into<&NEPHM903_prv_data::avg>(MSG_NEPHM903_AVERAGE),
                                        store::into<&NEPHM903_prv_data::instant>(MSG_NEPHM903_INSTANT),
                                        store::into<&NEPHM903_prv_data::status>(MSG_NEPHM903_STATUS));

constexpr INSTDISP_menu_row<NEPHM903_prv_data> MENU[] = {
    {.hot_key = '2',
     .action = NEPHM903_sc_button_begin_passwd,
     .guard = COMMAND_PASSWORD,
     .label_of = SPANCHECK_begin_label<NEPHM903_prv_data, '2'>},
    {.hot_key = '2',
     .action = NEPHM903_sc_button_abort_passwd,
     .guard = COMMAND_PASSWORD,
     .label_of = SPANCHECK_abort_label<NEPHM903_prv_data, '2'>},
    {.hot_key = '3',
     .action = NEPHM903_button_show_sc_win_close,
     .label_of = SPANCHECK_show_running_label<NEPHM903_prv_data, '3'>},
    {.hot_key = '3',
     .action = NEPHM903_button_show_sc_win_close,
     .label_of = SPANCHECK_show_results_label<NEPHM903_prv_data, '3'>},
};

constexpr auto KIND = SPANCHECK_kind<NEPHM903_prv_data, MSG_LOG_AVG_CONTAMINATION>(
    {.cols = 31,
     .rows = 11,
     .stores = STORES,
     .draw = draw,
     .key = [](NEPHM903_prv_data* pd, DWORD, int key) { return SPANCHECK_key(pd, key); },
     .menu = MENU});

}  // namespace

INSTDISP_BINDINGS(NEPHM903, nephM903, KIND)
