// Parts that the units of the PID controller's display share: its private record, and the dialogs that its
// menu opens. Each dialog sends its message only if the display is still there when the operator has
// answered.
#pragma once

#include "cursclient/kit/form.h"
#include "libvesk/messages/records/genericpid.h"

struct GENERICPID_prv_data : INSTDISP_head {
    NET_GENERICPID_Instant instant;
    NET_GENERICPID_Setpoint lastsp;
    NET_GENERICPID_Info info;
    NET_GENERICPID_TuningSatus t_status;
    NET_GENERICPID_TuningInstant t_instant;
    NET_GENERICPID_TuningResults t_results;
};

void GENERICPID_open_setpoint(GENERICPID_prv_data* pd, DWORD uid);
void GENERICPID_open_params(GENERICPID_prv_data* pd, DWORD uid);
void GENERICPID_open_tuning(GENERICPID_prv_data* pd, DWORD uid);

// An entry that takes any number and keeps it as it was typed.
inline constexpr FORM_number GENERICPID_VALUE{.format = "%e", .max_len = 16, .as_typed = true};
