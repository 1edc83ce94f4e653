// The photoacoustic extinctiometer: absorption, scattering and the state of laser and resonator, as latest
// values, running average or last average.
#include <cmath>

#include "cursclient/kit/instdisp.h"
#include "libvesk/messages/records/extinction.h"

namespace {

struct PAX_prv_data : INSTDISP_head {
    NET_PAX_Reading avg;
    NET_PAX_Instant instant;
    NET_PAX_Status status;
    NET_PAX_Zero zero;
    int display_mode;  // INSTDISP_mode
};

// Columns of labels and values, left and right.
constexpr int L = 1, LV = 19, R = 32, RV = 52;

void draw_measurement(const NET_PAX_Reading& r, const NET_PAX_Zero& zero, const CANVAS& d) {
    d.field(1, L, "Scattering (Mm-1):", LV, "  *~4.2f", r.bs);
    d.field(2, L, "   Raw Signal:", LV, "     *~1.2.1E", r.iScat);
    d.field(3, L, "Absorption (Mm-1):", LV, "  *~4.2f", r.ba);
    d.field(4, L, "   Phase (deg):", LV, "  *~4.2f", r.baPhase);
    d.field(5, L, "   Raw Signal:", LV, "     *~1.2.1E", r.iMic);
    d.field(1, R, "Scat Zero (Mm-1):", RV, "*~4.2f", zero.bs);
    d.field(2, R, "   Shift (Mm-1):", RV, "*~4.2f", zero.bsShift);
    d.field(3, R, "Abs Zero (Mm-1):", RV, "*~4.2f", zero.ba);
    d.field(4, R, "   Shift (Mm-1):", RV, "*~4.2f", zero.baShift);
    d.field(5, R, "   Phase (deg):", RV, "*~4.2f", zero.baPhase);
}

void draw_housekeeping(const NET_PAX_Reading& r, const CANVAS& d) {
    d.field(7, L, "T Sample (C):", LV, "  *~4.2f", r.tSample);
    d.field(8, L, "RH Sample (%):", LV, "  *~4.2f", r.rh);
    d.field(9, L, "P Sample (hPa):", LV, "  *~4.2f", r.p);
    d.field(10, L, "P Inlet (hPa):", LV, "  *~4.2f", r.pInlet);
    d.field(11, L, "P Vacuum (hPa):", LV, "  *~4.2f", r.pVacuum);
    d.field(12, L, "Frequency (Hz):", LV, "*~6.0f", r.frequency);
    d.field(7, R, "T Laser (C):", RV, "*~4.2f", r.tLaser);
    d.field(8, R, "Laser Phase (deg):", RV, "*~4.2f", r.laserPhase);
    d.field(9, R, "Laser Pwr (watts):", RV, "*~4.2f", r.pLaser);
    d.field(10, R, "Laser Current (A):", RV, "*~4.2f", r.aLaser);
    d.field(11, R, "PD Current (A):", RV, "*~4.2f", r.aPhotoDiode);
    d.field(12, R, "Q Factor:", RV, "*~4.2f", r.qFactor);
}

// Without a time of the next mode the Q factor stands in its place once more: operators know the row so.
void draw_mode(const NET_PAX_Instant& instant, const NET_PAX_Reading& r, const CANVAS& d) {
    const NETDSD_meaning* mode = NETDSD_meaning_of(NET_PAX_MODES, instant.mode);
    if (mode == nullptr) return;
    d.field(13, L, "Mode:", 16, "%12s", mode->text);
    if (instant.next_mode != VESK_NO_TIME)
        d.put(13, R, "NEXT AT %s", INSTDISP_time(std::floor(instant.next_mode + 0.5)).c_str());
    else
        d.put(13, R, "*~4.2f", r.qFactor);
}

void draw(PAX_prv_data* pd, const CANVAS& d) {
    const NET_PAX_Reading& r = INSTDISP_by_mode(pd->display_mode, pd->instant.in, pd->instant.ra, pd->avg);
    draw_measurement(r, pd->zero, d);
    d.rule(6);
    draw_housekeeping(r, d);
    if (!d.no_comms(13, pd->status.have_comms)) draw_mode(pd->instant, r, d);
}

using store = INSTDISP_store<PAX_prv_data>;
constexpr store STORES[] = {
    store::into<&PAX_prv_data::avg>(MSG_PAX_AVERAGE),
    store::into<&PAX_prv_data::instant>(MSG_PAX_INSTANT),
    store::into<&PAX_prv_data::status>(MSG_PAX_STATUS),
    store::into<&PAX_prv_data::zero>(MSG_PAX_ZERO),
};
constexpr INSTDISP_menu_row<PAX_prv_data> MENU[] = {INSTDISP_MODE_ROW<PAX_prv_data, 'D'>};
constexpr INSTDISP_kind<PAX_prv_data> KIND{.cols = 60,
                                           .rows = 15,
                                           .stores = STORES,
                                           .draw = draw,
                                           .key = INSTDISP_mode_key<PAX_prv_data>,
                                           .menu = MENU};

}  // namespace

INSTDISP_BINDINGS(PAX, pax, KIND)
