// Rows of the three-wavelength nephelometers that depend on no record of theirs.
#include "cursclient/kit/neph_common.h"

void NEPH_draw_headings(const CANVAS& d) {
    static constexpr const char* NAMES[] = {"   BLUE", "  GREEN", "    RED"};
    for (int i = 0; const int col : NEPH_COLUMNS)
        d.text(1, col, NAMES[i++]);
}

void NEPH_draw_status(const CANVAS& d, int row, const SPANCHECK_head* pd, bool have_comms, FTIME next_zero) {
    if (d.no_comms(row, have_comms)) return;
    if (SPANCHECK_is_running(pd)) {
        d.put(row, 1, "SPANCHECK: %s UNTIL %s", SPANCHECK_phase_name(pd->sc_phase.phase),
              INSTDISP_time(pd->sc_phase.next_time).c_str());
        return;
    }
    if (next_zero != VESK_NO_TIME) d.put(row, 1, "Next zero:      %s", INSTDISP_time(next_zero).c_str());
}
