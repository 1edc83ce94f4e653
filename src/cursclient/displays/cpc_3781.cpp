// The TSI 3781 counter, which grows its droplets in water.
#include "cursclient/kit/cpc_common.h"

namespace {

using CPC3781_prv_data = CPC_record<NET_CPC_3781_Avg, NET_CPC_3781_Instant, NET_CPC_3781_Status>;

void draw(CPC3781_prv_data* pd, const CANVAS& d) {
    CPC_draw_concentrations(pd, d);
    d.put(5, 1, "T Saturator:    *~3.1f", pd->instant.T_saturator);
    d.put(6, 1, "T Growth:       *~3.1f", pd->instant.T_growth);
    d.put(7, 1, "T Optics:       *~3.1f", pd->instant.T_optics);
    d.put(8, 1, "Q (lpm):        *~3.2f", pd->instant.Q);
    d.put(9, 1, "P (hPa):       *~4.0f", pd->instant.P);
    CPC_draw_flag_word(d, 10, pd->status.have_comms, pd->status.flags);
}

constexpr auto STORES =
    CPC_stores<CPC3781_prv_data>(MSG_CPC_3781_AVERAGE, MSG_CPC_3781_INSTANT, MSG_CPC_3781_STATUS);
constexpr INSTDISP_kind<CPC3781_prv_data> KIND{.cols = 31, .rows = 12, .stores = STORES, .draw = draw};

}  // namespace

INSTDISP_BINDINGS(CPC3781, cpc_3781, KIND)
