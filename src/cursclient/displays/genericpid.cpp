// A software PID controller: process value, output, set point and terms, and, while it is tuned or has been,
// the parameters that tuning found. The window grows and shrinks with what there is to show.
#include "cursclient/displays/genericpid.h"

#include <algorithm>
#include <iterator>

#include "cursclient/kit/instdisp.h"

namespace {

constexpr std::size_t CHANNEL_WIDTH = 16;  // of the label before a value

// ---- what arrives

void reset(GENERICPID_prv_data* pd) {
    pd->instant.start_time = VESK_MISSING;
}

void cut_channel_names(GENERICPID_prv_data* pd, FTIME /*curtime*/) {
    pd->info.chan_pv[CHANNEL_WIDTH] = '\0';
    pd->info.chan_out[CHANNEL_WIDTH] = '\0';
}

// ---- screen

enum window_mode { PLAIN, RESULTS, TUNING };

bool is_tuning(const GENERICPID_prv_data* pd) {
    return pd->t_status.state != GENERICPID_NOTTUNING;
}

window_mode mode_of(const GENERICPID_prv_data* pd) {
    if (is_tuning(pd)) return TUNING;
    const NET_GENERICPID_Params& found = pd->t_results.params;
    const bool none = VESK_is_missing(found.p) && VESK_is_missing(found.i) && VESK_is_missing(found.d);
    return none ? PLAIN : RESULTS;
}

struct window_size {
    int cols, rows;
};
constexpr window_size SIZES[] = {{31, 6}, {55, 9}, {55, 11}};
static_assert(std::size(SIZES) == TUNING + 1);

void layout(GENERICPID_prv_data* pd) {
    const window_size size = SIZES[mode_of(pd)];
    WINS_set_size(pd->win, size.cols, size.rows);
}

void draw_params(const CANVAS& d, int row, const char* label, const NET_GENERICPID_Params& v) {
    d.put(row, 1, "%-9sP: *~ 01.4.02e I: *~ 01.4.02e D: *~ 01.4.02e", label, v.p, v.i, v.d);
}

const char* status_text(std::uint32_t state) {
    return g_genericpidstatuscodes[std::min<std::size_t>(state, std::size(g_genericpidstatuscodes) - 1)].text;
}

void draw_progress(const GENERICPID_prv_data* pd, const CANVAS& d, int row) {
    draw_params(d, row, "LastRun", pd->t_instant.last);
    d.put(row + 1, 1, "Run       %4u/%-4u            PV StdDev:  *~01.4.02e", pd->t_status.run + 1,
          pd->t_status.run_max, pd->t_instant.pv_stddev);
    d.put(row + 2, 1, "Status:      %s", status_text(pd->t_status.state));
}

void draw(GENERICPID_prv_data* pd, const CANVAS& d) {
    const window_mode mode = mode_of(pd);
    d.put(1, 1, "%16s: *~ 01.4.02e", pd->info.chan_pv, pd->instant.pv);
    d.put(2, 1, "%16s: *~ 01.4.02e", pd->info.chan_out, pd->instant.out);
    d.put(3, 1, "              SP: *~ 01.4.02e", pd->lastsp.sp);
    int row = 4;
    if (mode != TUNING)
        d.put(row++, 1, "I: *~ 01.4.02e D: *~ 01.4.02e", pd->instant.i_val, pd->instant.d_val);
    if (mode == PLAIN) return;
    const NET_GENERICPID_TuningResults& found = mode == TUNING ? pd->t_instant.current : pd->t_results;
    d.rule(row);
    draw_params(d, row + 1, "Params", found.params);
    draw_params(d, row + 2, "StdDev", found.stddev);
    if (mode == TUNING) draw_progress(pd, d, row + 3);
}

// ---- commands

void confirm_reset(GENERICPID_prv_data*, DWORD uid) {
    CURSDIALOG_type* dlg = COMMAND_dialog("Confirm PID Reset", uid);
    COMMAND_button(dlg, {1, 1, 0, CURSDIALOG_STYLE_CLOSE}, 0, "Reset PID control", uid,
                   COMMAND_do<COMMAND_issue<MSG_GENERICPID_RESET, GENERICPID_prv_data>>, COMMAND_PASSWORD);
    CURSDIALOG_force_widget_focus(dlg,
                                  CURSDIALOG_add_button(dlg, 1, 2, 0, CURSDIALOG_STYLE_CLOSE, 0, "Cancel",
                                                        CURSDIALOG_DEFAULT_button_close, nullptr, 0));
}

// Starting and stopping are two rows of which the menu shows one, so that a button does what it said when the
// menu opened, whatever the controller has come to meanwhile.
std::string start_label(const GENERICPID_prv_data* pd) {
    return is_tuning(pd) ? "" : "5 Start tuning sequence";
}
std::string stop_label(const GENERICPID_prv_data* pd) {
    return is_tuning(pd) ? "5 Stop tuning sequence" : "";
}

using store = INSTDISP_store<GENERICPID_prv_data>;
constexpr store STORES[] = {
    store::into<&GENERICPID_prv_data::info>(MSG_GENERICPID_INFO, cut_channel_names),
    store::into<&GENERICPID_prv_data::instant>(MSG_GENERICPID_INSTANT),
    store::into<&GENERICPID_prv_data::lastsp>(MSG_GENERICPID_SETPOINT),
    store::into<&GENERICPID_prv_data::t_instant>(MSG_GENERICPID_TUNING_INSTANT),
    store::into<&GENERICPID_prv_data::t_results>(MSG_GENERICPID_TUNING_RESULTS),
    store::into<&GENERICPID_prv_data::t_status>(MSG_GENERICPID_TUNING_STATUS),
};
constexpr INSTDISP_menu_row<GENERICPID_prv_data> MENU[] = {
    {.hot_key = '2',
     .label = "2 Change setpoint",
     .action = GENERICPID_open_setpoint,
     .guard = COMMAND_PASSWORD},
    {.hot_key = '3', .label = "3 Reset PID control", .action = confirm_reset},
    {.hot_key = '4',
     .label = "4 Change PID parameters",
     .action = GENERICPID_open_params,
     .guard = COMMAND_PASSWORD},
    {.hot_key = '5', .action = GENERICPID_open_tuning, .guard = COMMAND_PASSWORD, .label_of = start_label},
    {.hot_key = '5',
     .action = COMMAND_issue<MSG_GENERICPID_TUNING_STOP>,
     .guard = COMMAND_PASSWORD,
     .label_of = stop_label},
};
constexpr INSTDISP_kind<GENERICPID_prv_data> KIND{.cols = SIZES[PLAIN].cols,
                                                  .rows = SIZES[PLAIN].rows,
                                                  .stores = STORES,
                                                  .draw = draw,
                                                  .reset = reset,
                                                  .menu = MENU,
                                                  .layout = layout};

}  // namespace

INSTDISP_BINDINGS(GENERICPID, genericpid, KIND)
