// The cavity extinction monitor: extinction with its running average, the baseline of the last zero and the
// command that starts one.
#include "cursclient/kit/instdisp.h"
#include "libvesk/messages/records/extinction.h"

namespace {

struct CAPS_prv_data : INSTDISP_head {
    NET_CAPS_Reading avg;
    NET_CAPS_Instant instant;
    NET_CAPS_Zero zero;
    NET_CAPS_ZeroSchedule zero_schedule;
    NET_CAPS_Status status;
};

void draw(CAPS_prv_data* pd, const CANVAS& d) {
    const NET_CAPS_Reading& in = pd->instant.in;
    const NET_CAPS_Reading& ra = pd->instant.ra;
    d.put(1, 1, "                   Instant  Average");
    d.put(2, 1, "Extinction (1/Mm): *~4.2f  *~4.2f", in.ext, ra.ext);
    d.put(3, 1, "Loss (1/Mm):       *~4.2f  *~4.2f", in.loss, ra.loss);
    d.put(4, 1, "Temperature (C):   *~4.2f  *~4.2f", in.temp, ra.temp);
    d.put(5, 1, "Pressure (hPa):    *~4.2f  *~4.2f", in.press, ra.press);
    d.put(6, 1, "Signal (mV):      *~5.2f *~5.2f", in.signal, ra.signal);
    d.rule(7);
    d.put(8, 1, "Baseline (1/Mm):            *~4.2f", pd->zero.baseline);
    d.put(9, 1, "Baseline Shift (1/Mm):      *~4.2f", pd->zero.shift);
    d.put(10, 1, "Flags:                      %04X", in.flags);
    if (d.no_comms(11, pd->status.have_comms)) return;
    if (pd->zero_schedule.time_next != VESK_NO_TIME)
        d.put(11, 1, "Next zero:                 %s", INSTDISP_time(pd->zero_schedule.time_next).c_str());
}

using store = INSTDISP_store<CAPS_prv_data>;
constexpr store STORES[] = {
    store::into<&CAPS_prv_data::avg>(MSG_CAPS_AVERAGE),
    store::into<&CAPS_prv_data::instant>(MSG_CAPS_INSTANT),
    store::into<&CAPS_prv_data::zero>(MSG_CAPS_ZERO),
    store::into<&CAPS_prv_data::zero_schedule>(MSG_CAPS_ZEROSCHEDULE),
    store::into<&CAPS_prv_data::status>(MSG_CAPS_STATUS),
};
constexpr INSTDISP_menu_row<CAPS_prv_data> MENU[] = {{.hot_key = '2',
                                                      .label = "2 Start zero now",
                                                      .action = COMMAND_issue<MSG_CAPS_ISSUE_ZERO>,
                                                      .guard = COMMAND_CONFIRM}};
constexpr INSTDISP_kind<CAPS_prv_data> KIND{
    .cols = 37, .rows = 13, .stores = STORES, .draw = draw, .menu = MENU};

}  // namespace

INSTDISP_BINDINGS(CAPS, caps, KIND)
