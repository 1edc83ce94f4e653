// The counters' common rows that need no record type.
#include "cursclient/kit/cpc_common.h"

void CPC_draw_warnings(const CANVAS& d, WORD flags, NETDSD_meanings warnings,
                       std::span<const CPC_warning_place> places) {
    for (std::size_t i = 0; i < warnings.size(); ++i)
        if (flags & warnings[i].value) d.meaning(places[i].row, places[i].col, warnings[i]);
}

void CPC_draw_flag_word(const CANVAS& d, int row, bool have_comms, WORD flags) {
    if (d.no_comms(row, have_comms) || flags == 0) return;
    d.fault().put(row, 1, "Flags:         %04X", flags);
}
