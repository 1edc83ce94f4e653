// The photoacoustic extinctiometer: absorption, scattering and the state of laser and resonator, as latest
// values, running average or last average.
#include <array>
#include <cmath>

#include "cursclient/kit/instdisp.h"
#include "libvesk/messages/records/extinction.h"

namespace {

struct PAX_prv_data : INSTDISP_head {
    NET_PAX_Reading avg;
    NET_PAX_Instant instant;
    NET_PAX_Status status;
    NET_PAX_Zero zero;
    int display_mode;  // see INSTDISP_next_mode
};

// Columns of labels and values, left and right.
constexpr int L = 1, LV = 19, R = 32, RV = 52;

const NET_PAX_Reading& shown(const PAX_prv_data* pd) {
    if (pd->display_mode == 1) return pd->instant.ra;
    return pd->display_mode == 2 ? pd->avg : pd->instant.in;
}

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

// Without a time of the next mode the buffer still holds the Q factor of the row above, and that text is what
// operators see here.
void draw_mode(PAX_prv_data* pd, const CANVAS& d) {
    static constexpr std::array NAMES{"     Measure", "        Zero", "       Flush", "Acoustic Cal"};
    const std::int32_t mode = pd->instant.mode;
    if (mode < 0 || mode >= static_cast<std::int32_t>(NAMES.size())) return;
    d.text(13, L, "Mode:");
    d.text(13, 16, NAMES[static_cast<std::size_t>(mode)]);
    const FTIME next = pd->instant.next_mode;
    if (next != VESK_NO_TIME)
        SFMT_printf(&pd->sbfr, "NEXT AT %s", INSTDISP_time(std::floor(next + 0.5)).c_str());
    d.text(13, R, SFMT_get_buffer(&pd->sbfr));
}

void draw(PAX_prv_data* pd, const CANVAS& d) {
    const NET_PAX_Reading& r = shown(pd);
    draw_measurement(r, pd->zero, d);
    d.rule(6);
    draw_housekeeping(r, d);
    if (!d.no_comms(13, pd->status.have_comms)) draw_mode(pd, d);
}

void next_display(PAX_prv_data* pd, DWORD /*uid*/) {
    pd->display_mode = INSTDISP_next_mode(pd->display_mode);
}

BOOL key_pressed(PAX_prv_data* pd, DWORD uid, int key) {
    if (key != 'D' && key != 'd') return FALSE;
    next_display(pd, uid);
    return TRUE;
}

std::string mode_label(const PAX_prv_data* pd) {
    return INSTDISP_mode_label('D', pd->display_mode);
}

using store = INSTDISP_store<PAX_prv_data>;
constexpr store STORES[] = {
    store::into<&PAX_prv_data::avg>(MSG_PAX_AVERAGE),
    store::into<&PAX_prv_data::instant>(MSG_PAX_INSTANT),
    store::into<&PAX_prv_data::status>(MSG_PAX_STATUS),
    store::into<&PAX_prv_data::zero>(MSG_PAX_ZERO),
};
constexpr INSTDISP_menu_row<PAX_prv_data> MENU[] = {
    {.hot_key = 'D', .label = nullptr, .action = next_display, .label_of = mode_label}};
constexpr INSTDISP_kind<PAX_prv_data> KIND{
    .cols = 60, .rows = 15, .stores = STORES, .draw = draw, .key = key_pressed, .menu = MENU};

}  // namespace

INSTDISP_BINDINGS(PAX, pax, KIND)
