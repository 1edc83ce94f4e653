// The Brechtel 1710 counter: latest values, running average or last average, as the operator chooses.
#include "cursclient/kit/cpc_common.h"

namespace {

struct CPC_BMI1710_prv_data
    : CPC_record<NET_CPC_BMI1710_Reading, NET_CPC_BMI1710_Instant, NET_CPC_BMI1710_Status> {
    int display_mode;  // INSTDISP_mode
};

// Columns of labels and values, left and right.
constexpr int L = 1, LV = 22, R = 33, RV = 48;

void draw(CPC_BMI1710_prv_data* pd, const CANVAS& d) {
    const NET_CPC_BMI1710_Reading& r =
        INSTDISP_by_mode(pd->display_mode, pd->instant.in, pd->instant.ra, pd->avg);
    d.field(1, L, "Concentration (cm-3):", LV, "*~5.1f", r.N);
    d.field(2, L, "T Inlet (C):", LV, "*~5.1f", r.Tu);
    d.field(3, L, "T Saturator Top (C):", LV, "*~5.1f", r.T2);
    d.field(4, L, "T Saturator Bot (C):", LV, "*~5.1f", r.T3);
    d.field(5, L, "T Condenser (C):", LV, "*~5.1f", r.T1);
    d.field(6, L, "T Optics (C):", LV, "*~5.1f", r.T4);
    d.field(7, L, "Q Saturator (lpm):", LV, "*~5.3f", r.Q2);
    d.field(8, L, "Q Sample (lpm):", LV, "*~5.3f", r.Q1);
    d.field(1, R, "StdDev (cm-3):", RV, "*~4.2f", r.Ng);
    d.field(3, R, "Power (%):", RV, "*~4.2f", r.PCT2);
    d.field(4, R, "Power (%):", RV, "*~4.2f", r.PCT3);
    d.field(5, R, "Power (%):", RV, "*~4.2f", r.PCT1);
    d.field(6, R, "Power (%):", RV, "*~4.2f", r.PCT4);
    d.field(7, R, "Pump (%):", RV, "*~4.2f", r.PCT5);
    d.field(8, R, "Fill Count:", RV, "*~4.0f", static_cast<double>(pd->instant.fill_count));
    d.no_comms(9, pd->status.have_comms);
}

constexpr auto STORES = CPC_stores<CPC_BMI1710_prv_data>(MSG_CPC_BMI1710_AVERAGE, MSG_CPC_BMI1710_INSTANT,
                                                         MSG_CPC_BMI1710_STATUS);
constexpr INSTDISP_menu_row<CPC_BMI1710_prv_data> MENU[] = {INSTDISP_MODE_ROW<CPC_BMI1710_prv_data, 'D'>};
constexpr INSTDISP_kind<CPC_BMI1710_prv_data> KIND{.cols = 56,
                                                   .rows = 11,
                                                   .stores = STORES,
                                                   .draw = draw,
                                                   .key = INSTDISP_mode_key<CPC_BMI1710_prv_data>,
                                                   .menu = MENU};

}  // namespace

INSTDISP_BINDINGS(CPC_BMI1710, cpc_bmi1710, KIND)
