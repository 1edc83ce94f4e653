// The three-wavelength nephelometer Aurora 3000: as its elder sister, with the values that this model has.
#include "cursclient/kit/neph_common.h"

struct NEPHAURORA3000_prv_data : SPANCHECK_head {
    NET_NEPHAURORA3000_Avg avg;
    NET_NEPHAURORA3000_Instant instant;
    NET_NEPHAURORA3000_Zero zero;
    NET_NEPHAURORA3000_ZeroSchedule zero_schedule;
    NET_NEPHAURORA3000_Modes modes;
    NET_NEPHAURORA3000_Status status;
    int display_mode;  // INSTDISP_mode
    BOOL display_counts;
};
SPANCHECK_BINDINGS(NEPHAURORA3000)

namespace {

using R = NEPHAURORA3000_prv_data;
using store = INSTDISP_store<R>;

void draw_counts(const CANVAS& d, const NET_NEPHAURORA3000_Counts& c) {
    const auto row = [&d](int y, const char* label, auto value) {
        d.across(y, label, NEPH_COLUMNS, "*~1.4.02e", value);
    };
    row(2, "NTotal:", [&](int i) { return c.total[i]; });
    row(3, "NBack:", [&](int i) { return c.back[i]; });
    row(4, "NRef:", [&](int i) { return c.ref[i]; });
    d.field(5, 1, "NDark:", NEPH_COLUMNS[0], "*~1.4.02e", c.dark);
}

template <class View>
void draw_lower_block(const CANVAS& d, const R* pd, const View& v) {
    static constexpr int LEFT = NEPH_LEFT_VALUE;
    static constexpr int LABEL = NEPH_RIGHT_LABEL;
    static constexpr int RIGHT = NEPH_RIGHT_VALUE;
    d.field(8, 1, "Flags:", LEFT, "   %04X", pd->modes.flags);
    d.field(9, 1, "P hPa:", LEFT, " *~4.1f", v.P_sample);
    d.field(10, 1, "Ang GR:", LEFT, "*~4.2f", v.aGR);
    d.field(11, 1, "AnbB GR:", LEFT, "*~4.2f", v.abGR);
    d.field(8, LABEL, "Sample T:", RIGHT, "  *~3.1f", v.T_sample);
    d.field(9, LABEL, "Sample RH:", RIGHT, "   *~2.1f", v.RH_sample);
    d.field(10, LABEL, "Cell T:", RIGHT, "  *~3.1f", v.T_cell);
}

void draw(R* pd, const CANVAS& d) {
    NEPH_draw_headings(d);
    NEPH_with_view(pd, [&](const auto& view) {
        if (pd->display_counts)
            draw_counts(d, view.c);
        else
            NEPH_draw_scattering(d, view.s, pd->zero);
        draw_lower_block(d, pd, view);
    });
    NEPH_draw_status(d, 12, pd, pd->status.have_comms, pd->zero_schedule.time_next);
    NEPHAURORA3000_update_spancheck(pd);
}

constexpr auto STORES = SPANCHECK_stores<R>(
    store::into<&R::avg>(MSG_NEPHAURORA3000_AVERAGE), store::into<&R::instant>(MSG_NEPHAURORA3000_INSTANT),
    store::into<&R::zero>(MSG_NEPHAURORA3000_ZERO),
    store::into<&R::zero_schedule>(MSG_NEPHAURORA3000_ZEROSCHEDULE),
    store::into<&R::modes>(MSG_NEPHAURORA3000_MODES), store::into<&R::status>(MSG_NEPHAURORA3000_STATUS));

constexpr INSTDISP_menu_row<R> MENU[] = {
    INSTDISP_MODE_ROW<R, '2'>,
    NEPH_ZERO_ROW<R, MSG_NEPHAURORA3000_ISSUE_ZERO>,
    {.hot_key = '4',
     .action = NEPHAURORA3000_sc_button_begin_passwd,
     .guard = COMMAND_PASSWORD,
     .label_of = SPANCHECK_begin_label<R, '4'>},
    {.hot_key = '4',
     .action = NEPHAURORA3000_sc_button_abort_passwd,
     .guard = COMMAND_PASSWORD,
     .label_of = SPANCHECK_abort_label<R, '4'>},
    // Two keys for one window: one while a span check runs, the other afterwards.
    {.hot_key = '6',
     .action = NEPHAURORA3000_button_show_sc_win_close,
     .label_of = SPANCHECK_show_running_label<R, '6'>},
    {.hot_key = '5',
     .action = NEPHAURORA3000_button_show_sc_win_close,
     .label_of = SPANCHECK_show_results_label<R, '5'>},
    NEPH_COUNTS_ROW<R>,
};

constexpr auto KIND =
    SPANCHECK_kind<R, MSG_LOG_AVG_CONTAMINATION>({.cols = 55,
                                                  .rows = 15,
                                                  .stores = STORES,
                                                  .draw = draw,
                                                  .reset = [](R* pd) { pd->modes.flags = 0xFFFF; },
                                                  .key = NEPH_key,
                                                  .menu = MENU});

}  // namespace

INSTDISP_BINDINGS(NEPHAURORA3000, neph_aurora3000, KIND)
