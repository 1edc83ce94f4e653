// The TSI 3010 counter: concentrations, temperatures, and warnings from its status flags.
#include <iterator>

#include "cursclient/kit/cpc_common.h"

namespace {

using CPC3010_prv_data = CPC_record<NET_CPC_3010_Avg, NET_CPC_3010_Instant, NET_CPC_3010_Status>;

constexpr CPC_warning_place PLACES[] = {{9, 1}, {10, 1}, {9, 24}};
static_assert(std::size(PLACES) == std::size(NET_CPC_3010_WARNINGS));

// This kind alone shows 0.0 until the first reading.
void reset(CPC3010_prv_data* pd) {
    pd->instant.start_time = 0;
    pd->instant.concentration = 0;
}

void draw_status(const NET_CPC_3010_Status& status, const CANVAS& d) {
    if (const NETDSD_meaning* wrong = NETDSD_meaning_of(NET_CPC_3010_DIP, status.dip_error))
        return d.alarm().text_centered(10, wrong->text);
    if (d.no_comms(10, status.have_comms)) return;
    CPC_draw_warnings(d, status.flags, NET_CPC_3010_WARNINGS, PLACES);
}

void draw(CPC3010_prv_data* pd, const CANVAS& d) {
    CPC_draw_concentrations(pd, d);
    CPC_draw_butanol_temperatures(pd, d);
    draw_status(pd->status, d);
}

constexpr auto STORES =
    CPC_stores<CPC3010_prv_data>(MSG_CPC_3010_AVERAGE, MSG_CPC_3010_INSTANT, MSG_CPC_3010_STATUS);
constexpr INSTDISP_kind<CPC3010_prv_data> KIND{
    .cols = 31, .rows = 12, .stores = STORES, .draw = draw, .reset = reset};

}  // namespace

INSTDISP_BINDINGS(CPC3010, cpc_3010, KIND)
