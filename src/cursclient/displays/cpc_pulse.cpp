// A counter that is nothing but pulses on a line: concentrations and nothing else.
#include "cursclient/kit/cpc_common.h"

namespace {

using CPCPULSE_prv_data = CPC_record<NET_CPC_Pulse_Avg, NET_CPC_Pulse_Instant, NET_CPC_Pulse_Status>;

constexpr auto STORES =
    CPC_stores<CPCPULSE_prv_data>(MSG_CPC_PULSE_AVERAGE, MSG_CPC_PULSE_INSTANT, MSG_CPC_PULSE_STATUS);
constexpr INSTDISP_kind<CPCPULSE_prv_data> KIND = CPC_plain_kind(STORES);

}  // namespace

INSTDISP_BINDINGS(CPCPULSE, cpc_pulse, KIND)
