// The TSI 3775 counter: concentrations and the housekeeping of its optics, flows and pressures.
#include "cursclient/kit/cpc_common.h"

namespace {

using CPC3775_prv_data = CPC_record<NET_CPC_3775_Avg, NET_CPC_3775_Instant, NET_CPC_3775_Status>;

void draw(CPC3775_prv_data* pd, const CANVAS& d) {
    const NET_CPC_3775_Instant& in = pd->instant;
    CPC_draw_concentrations(pd, d);
    d.put(5, 1, "T Condenser:    *~3.1f", in.T_condenser);
    d.put(6, 1, "T Saturator:    *~3.1f", in.T_saturator);
    d.put(7, 1, "T Optics:       *~3.1f", in.T_optics);
    d.put(8, 1, "T Cabinet:      *~3.1f", in.T_cabinet);
    d.put(9, 1, "Q inlet (lpm):  *~3.2f", in.Q_inlet);
    d.put(10, 1, "Q (lpm):        *~3.2f", in.Q);
    d.put(11, 1, "P ambient (hPa):*~4.0f", in.P_ambient);
    d.put(12, 1, "P orifice (hPa):*~4.0f", in.P_orifice);
    d.put(13, 1, "P nozzle (hPa): *~4.1f", in.P_nozzle);
    d.put(14, 1, "I laser (mA):  *~5.0f", in.I_laser);
    d.put(15, 1, "Liquid:        %5d", in.liquid);
    CPC_draw_flag_word(d, 16, pd->status.have_comms, pd->status.flags);
}

constexpr auto STORES =
    CPC_stores<CPC3775_prv_data>(MSG_CPC_3775_AVERAGE, MSG_CPC_3775_INSTANT, MSG_CPC_3775_STATUS);
constexpr INSTDISP_kind<CPC3775_prv_data> KIND{.cols = 31, .rows = 18, .stores = STORES, .draw = draw};

}  // namespace

INSTDISP_BINDINGS(CPC3775, cpc_3775, KIND)
