// The multi-angle absorption photometer, with the command that advances its filter tape.
#include "cursclient/kit/instdisp.h"
#include "libvesk/messages/records/carbon.h"

namespace {

struct MAAP_prv_data : INSTDISP_head {
    NET_MAAP_Report report;
    NET_MAAP_Filter filter;
    NET_MAAP_Status status;
};

void draw_status(const NET_MAAP_Status& s, const CANVAS& d) {
    static constexpr int ROW = 16;
    if (d.no_comms(ROW, s.have_comms)) return;
    static constexpr const NETDSD_meaning &ERROR = NET_MAAP_GLOBAL[0], &STATUS = NET_MAAP_GLOBAL[1];
    const bool detailed = s.detailed_errors1 != 0 || s.detailed_errors2 != 0;
    if (detailed || (s.global_errors & ERROR.value) != 0)
        // The second word stands first, as on the instrument's own display.
        d.fault().put(ROW, 1, "%s: %06X %08X%08X", ERROR.text, s.global_errors, s.detailed_errors2,
                      s.detailed_errors1);
    else if (s.global_errors != 0)
        d.put(ROW, 1, "%s: %06X", STATUS.text, s.global_errors);
}

void draw(MAAP_prv_data* pd, const CANVAS& d) {
    const NET_MAAP_Report& r = pd->report;
    d.put(1, 1, "Bap (1/Mm):      *~4.2f", r.abs);
    d.put(2, 1, "Tr:                *~1.7f", r.tr);
    d.put(3, 1, "BC conc (ug/m3): *~4.3f", r.C);
    d.put(4, 1, "SSA:                *~1.5f", r.ssa);
    d.put(5, 1, "Flow (slpm):      *~3.3f", r.Q);
    d.put(6, 1, "P Orifice (hPa): *~4.2f", r.P_orifice);
    d.put(7, 1, "P Pump (hPa):    *~4.2f", r.P_pump);
    d.put(8, 1, "P Ambient (hPa): *~4.2f", r.P_amb);
    d.put(9, 1, "T Ambient (C):    *~3.2f", r.T_amb);
    d.put(10, 1, "T Measure (C):    *~3.2f", r.T_measure);
    d.put(11, 1, "T System (C):     *~3.2f", r.T_system);
    d.put(12, 1, "SRef/SZRef:      *~4.2f/*~4.2f", r.Sref, r.Szref);
    d.put(13, 1, "S0/SZ0:          *~4.2f/*~4.2f", r.S0, r.Sz0);
    d.put(14, 1, "S135/SZ135:      *~4.2f/*~4.2f", r.S135, r.Sz135);
    d.put(15, 1, "S165/SZ165:      *~4.2f/*~4.2f", r.S165, r.Sz165);
    draw_status(pd->status, d);
}

using store = INSTDISP_store<MAAP_prv_data>;
constexpr store STORES[] = {
    store::into<&MAAP_prv_data::report>(MSG_MAAP_REPORT),
    store::into<&MAAP_prv_data::filter>(MSG_MAAP_FILTER),
    store::into<&MAAP_prv_data::status>(MSG_MAAP_STATUS),
};
constexpr INSTDISP_menu_row<MAAP_prv_data> MENU[] = {{.hot_key = '2',
                                                      .label = "Advance filter tape",
                                                      .action = COMMAND_issue<MSG_MAAP_ADVANCE>,
                                                      .guard = COMMAND_CONFIRM}};
constexpr INSTDISP_kind<MAAP_prv_data> KIND{
    .cols = 34, .rows = 18, .stores = STORES, .draw = draw, .menu = MENU};

}  // namespace

INSTDISP_BINDINGS(MAAP, maap, KIND)
