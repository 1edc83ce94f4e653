// The TSI 3703 counter: concentrations and nothing else.
#include "cursclient/kit/cpc_common.h"

namespace {

using CPC3703_prv_data = CPC_record<NET_CPC_3703_Avg, NET_CPC_3703_Instant, NET_CPC_3703_Status>;

constexpr auto STORES =
    CPC_stores<CPC3703_prv_data>(MSG_CPC_3703_AVERAGE, MSG_CPC_3703_INSTANT, MSG_CPC_3703_STATUS);
constexpr INSTDISP_kind<CPC3703_prv_data> KIND = CPC_plain_kind(STORES);

}  // namespace

INSTDISP_BINDINGS(CPC3703, cpc_3703, KIND)
