// The counters' common rows that need no record type.
#include "cursclient/kit/cpc_common.h"

void CPC_draw_flag_word(const CANVAS& d, int row, bool have_comms, WORD flags) {
    if (d.no_comms(row, have_comms) || flags == 0) return;
    d.fault().put(row, 1, "Flags:         %04X", flags);
}
