// The TSI 3022 counter: as the 3010, with optics temperature and flow, without its dip switches and vacuum.
#include <iterator>

#include "cursclient/kit/cpc_common.h"

namespace {

using CPC3022_prv_data = CPC_record<NET_CPC_3022_Avg, NET_CPC_3022_Instant, NET_CPC_3022_Status>;

constexpr CPC_warning_place PLACES[] = {{11, 1}, {12, 1}};
static_assert(std::size(PLACES) == std::size(NET_CPC_3022_WARNINGS));

void draw(CPC3022_prv_data* pd, const CANVAS& d) {
    CPC_draw_concentrations(pd, d);
    CPC_draw_butanol_temperatures(pd, d);
    d.put(9, 1, "T Optics:       *~3.1f", pd->instant.T_optics);
    d.put(10, 1, "Q (lpm):        *~3.3f", pd->instant.Q);
    if (d.no_comms(12, pd->status.have_comms)) return;
    CPC_draw_warnings(d, pd->status.flags, NET_CPC_3022_WARNINGS, PLACES);
}

constexpr auto STORES =
    CPC_stores<CPC3022_prv_data>(MSG_CPC_3022_AVERAGE, MSG_CPC_3022_INSTANT, MSG_CPC_3022_STATUS);
constexpr INSTDISP_kind<CPC3022_prv_data> KIND{.cols = 31, .rows = 14, .stores = STORES, .draw = draw};

}  // namespace

INSTDISP_BINDINGS(CPC3022, cpc_3022, KIND)
