// What the units of the PID controller's display share: its private record, and the dialogs that its menu
// opens. Each dialog sends its message only if the display is still there when the operator has answered.
#pragma once

#include "cursclient/dialog.h"
#include "cursclient/kit/insthead.h"
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

// An entry at column 1 with `value` in it as "%e" shows it; null limits: any number will do.
CURSDIALOG_widget* GENERICPID_value_entry(CURSDIALOG_type* dlg, int y, const char* label, double value,
                                          const CURSDIALOG_DEFAULT_entry_numeric_param* limits = nullptr);
