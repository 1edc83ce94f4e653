// The Watlow controller: set point, instantaneous and averaged value of its channels A and B.
#include "cursclient/displays/watlow.h"

#include "cursclient/kit/form.h"
#include "cursclient/kit/instdisp.h"
#include "libvesk/messages/records/loopctl.h"

namespace {

struct WATLOW_prv_data : INSTDISP_head {
    NET_WATLOW_Avg avg;
    NET_WATLOW_Channels instant;
    NET_WATLOW_Channels sps;
    NET_WATLOW_Status status;
};

void draw_status(const NET_WATLOW_Status& status, const CANVAS& d) {
    if (!status.have_comms && status.err == 0)
        d.alarm().center(4, "NO COMMS");
    else if (!status.have_comms)
        d.alarm().center(4, "NO COMMS: ERROR %d", status.err);
    else if (status.err != 0)
        d.center(4, "ERROR %d", status.err);
}

void draw(WATLOW_prv_data* pd, const CANVAS& d) {
    d.put(1, 1, "     Setpoint  Instant  Average");
    d.put(2, 1, "A:   *~2.1f      *~2.1f     *~2.1f", pd->sps.chA, pd->instant.chA, pd->avg.chA);
    d.put(3, 1, "B:   *~2.1f      *~2.1f     *~2.1f", pd->sps.chB, pd->instant.chB, pd->avg.chB);
    draw_status(pd->status, d);
}

// ---- set points

// One message for each channel whose set point is another than the instrument has by now.
void send_setpoints(WATLOW_prv_data* pd, const NET_WATLOW_Channels& wanted) {
    if (wanted.chA != pd->sps.chA) COMMAND_send(pd, MSG_WATLOW_SET, NET_WATLOW_OneChannel{'A', wanted.chA});
    if (wanted.chB != pd->sps.chB) COMMAND_send(pd, MSG_WATLOW_SET, NET_WATLOW_OneChannel{'B', wanted.chB});
}

using form = FORM<WATLOW_prv_data, NET_WATLOW_Channels>;
constexpr FORM_number TEMPERATURE{.min = -99.9, .max = 99.9, .format = "%.1f", .exact_until_edited = true};
constexpr form::row SETPOINT_ROWS[] = {
    form::number<&NET_WATLOW_Channels::chA>("Setpoint A: ", TEMPERATURE),
    form::number<&NET_WATLOW_Channels::chB>("Setpoint B: ", TEMPERATURE),
};
constexpr form SETPOINTS{.title = "Change setpoint",
                         .rows = SETPOINT_ROWS,
                         .read = FORM_read<&WATLOW_prv_data::sps>,
                         .send = send_setpoints,
                         .trusts_start_values = true};

using store = INSTDISP_store<WATLOW_prv_data>;
constexpr store STORES[] = {
    store::into<&WATLOW_prv_data::avg>(MSG_WATLOW_AVERAGE),
    store::into<&WATLOW_prv_data::instant>(MSG_WATLOW_INSTANT),
    store::into<&WATLOW_prv_data::sps>(MSG_WATLOW_SETPOINTS),
    store::into<&WATLOW_prv_data::status>(MSG_WATLOW_STATUS),
};
constexpr INSTDISP_kind<WATLOW_prv_data> KIND{.cols = 27, .rows = 6, .stores = STORES, .draw = draw};

}  // namespace

void WATLOW_change_setpoint(DWORD uid) {
    COMMAND_run(uid, COMMAND_do<FORM_open<SETPOINTS, WATLOW_prv_data>>, COMMAND_PASSWORD);
}

INSTDISP_BINDINGS(WATLOW, watlow, KIND)
