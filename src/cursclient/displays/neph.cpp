// The three-wavelength nephelometer: total scatter and backscatter in blue, green and red, or the counts
// behind them. A second kind of the same look is for an instrument that this station only watches: it sends
// nothing.
#include "cursclient/displays/neph.h"

SPANCHECK_BINDINGS(NEPH)

namespace {

using store = INSTDISP_store<NEPH_prv_data>;

constexpr NET_NEPH_Config USUAL_CONFIG = {.smz = 1,
                                          .sta = 1,
                                          .stb = 60,
                                          .stp = 3600,
                                          .stz = 300,
                                          .smb = TRUE,
                                          .sp = 75,
                                          .l = TRUE,
                                          .sx = 0,
                                          .b = 255,
                                          .svb = 0,
                                          .svg = 0,
                                          .svr = 0};

void reset(NEPH_prv_data* pd) {
    pd->modes = {.flags = 0xFFFF, .mode = "9999"};
    pd->config = USUAL_CONFIG;
}

void draw_counts(const CANVAS& d, const NET_NEPH_PhotonCounts& pc) {
    const auto row = [&d](int y, const char* label, auto value) {
        d.across(y, label, NEPH_COLUMNS, " *~1.2.02e", value);
    };
    row(2, "SampTS:", [&](int i) { return pc.sampTS[i]; });
    row(3, "SampBS:", [&](int i) { return pc.sampBS[i]; });
    row(4, "DarkTS:", [&](int i) { return pc.darkTS[i]; });
    row(5, "DarkBS:", [&](int i) { return pc.darkBS[i]; });
    row(6, "CalTS:", [&](int i) { return pc.calTS[i]; });
    row(7, "CalBS:", [&](int i) { return pc.calBS[i]; });
}

// Left pairs, then right ones.
template <class View>
void draw_lower_block(const CANVAS& d, const NEPH_prv_data* pd, const View& v) {
    static constexpr int LEFT = NEPH_LEFT_VALUE;
    static constexpr int LABEL = NEPH_RIGHT_LABEL;
    static constexpr int RIGHT = NEPH_RIGHT_VALUE;
    d.field(8, 1, "Mode:", LEFT, "   %4s", static_cast<const char*>(pd->modes.mode));
    d.field(9, 1, "Flags:", LEFT, "   %04X", pd->modes.flags);
    d.field(10, 1, "P hPa:", LEFT, " *~4.1f", v.P_neph);
    d.field(11, 1, "Alpha GR:", LEFT, "*~4.2f", v.alphaGR);
    d.field(12, 1, "AlphaB GR:", LEFT, "*~4.2f", v.alphabGR);
    d.field(13, 1, "Lamp V:", LEFT, "  *~2.2f", pd->instant.lamp_V);
    d.field(14, 1, "Green Ref:", LEFT, "*~7.0f", pd->instant.ref_green);
    d.field(8, LABEL, "Sample T:", RIGHT, "  *~3.1f", v.T_neph);
    d.field(9, LABEL, "Inlet T:", RIGHT, "  *~3.1f", v.T_inlet);
    d.field(10, LABEL, "Sample RH:", RIGHT, "   *~2.1f", v.RH_neph);
    d.field(11, LABEL, "Inlet RH:", RIGHT, "   *~2.1f", v.RH_inlet);
    d.field(12, LABEL, "Sec rem:", RIGHT, "*~7.0f", pd->instant.sec_left);
    d.field(13, LABEL, "Lamp I:", RIGHT, "  *~2.2f", pd->instant.lamp_I);
    d.field(14, LABEL, "BNC in mV:", RIGHT, "  *~5.0f", pd->instant.aux_in);
}

void draw(NEPH_prv_data* pd, const CANVAS& d) {
    NEPH_draw_headings(d);
    NEPH_with_view(pd, [&](const auto& view) {
        if (pd->display_counts)
            draw_counts(d, view.pc);
        else
            NEPH_draw_scattering(d, view.s, pd->zero);
        draw_lower_block(d, pd, view);
    });
    NEPH_draw_status(d, 15, pd, pd->status.have_comms, pd->zero_schedule.time_next);
    NEPH_update_spancheck(pd);
}

constexpr auto STORES = SPANCHECK_stores<NEPH_prv_data>(
    store::into<&NEPH_prv_data::avg>(MSG_NEPH_AVERAGE),
    store::into<&NEPH_prv_data::instant>(MSG_NEPH_INSTANT), store::into<&NEPH_prv_data::zero>(MSG_NEPH_ZERO),
    store::into<&NEPH_prv_data::zero_schedule>(MSG_NEPH_ZEROSCHEDULE),
    store::into<&NEPH_prv_data::modes>(MSG_NEPH_MODES), store::into<&NEPH_prv_data::config>(MSG_NEPH_CONFIG),
    store::into<&NEPH_prv_data::status>(MSG_NEPH_STATUS));

constexpr INSTDISP_menu_row<NEPH_prv_data> MENU[] = {
    INSTDISP_MODE_ROW<NEPH_prv_data, '2'>,
    NEPH_ZERO_ROW<NEPH_prv_data, MSG_NEPH_ISSUE_ZERO>,
    {.hot_key = '4',
     .label = "4 Change parameters",
     .action = NEPH_open_parameters,
     .guard = COMMAND_PASSWORD},
    {.hot_key = '5',
     .action = NEPH_sc_button_begin_passwd,
     .guard = COMMAND_PASSWORD,
     .label_of = SPANCHECK_begin_label<NEPH_prv_data, '5'>},
    {.hot_key = '5',
     .action = NEPH_sc_button_abort_passwd,
     .guard = COMMAND_PASSWORD,
     .label_of = SPANCHECK_abort_label<NEPH_prv_data, '5'>},
    {.hot_key = '6',
     .action = NEPH_button_show_sc_win_close,
     .label_of = SPANCHECK_show_running_label<NEPH_prv_data, '6'>},
    {.hot_key = '6',
     .action = NEPH_button_show_sc_win_close,
     .label_of = SPANCHECK_show_results_label<NEPH_prv_data, '6'>},
    NEPH_COUNTS_ROW<NEPH_prv_data>,
};
constexpr INSTDISP_menu_row<NEPH_prv_data> PASSIVE_MENU[] = {INSTDISP_MODE_ROW<NEPH_prv_data, '2'>,
                                                             NEPH_COUNTS_ROW<NEPH_prv_data>};

constexpr auto KIND = SPANCHECK_kind<NEPH_prv_data, MSG_LOG_AVG_BYPASS>(
    {.cols = 55, .rows = 18, .stores = STORES, .draw = draw, .reset = reset, .key = NEPH_key, .menu = MENU});

// Its keys count in the main window only.
constexpr INSTDISP_kind<NEPH_prv_data> PASSIVE = [] {
    INSTDISP_kind<NEPH_prv_data> kind = KIND;
    kind.menu = PASSIVE_MENU;
    kind.second_window = nullptr;
    return kind;
}();

}  // namespace

INSTDISP_BINDINGS(NEPH, neph, KIND)
INSTDISP_KEYS(NEPH_prv_data, PASSIVE, NEPH_keypress_passive, NEPH_open_menu_passive)
INSTDISP_DECLARE(NEPH, neph_passive, NEPH_keypress_passive, nullptr)
