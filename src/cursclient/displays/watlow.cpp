// The Watlow controller: set point, instantaneous and averaged value of its channels A and B.
#include "cursclient/displays/watlow.h"

#include "cursclient/kit/instdisp.h"
#include "libvesk/messages/records/loopctl.h"
#include "libvesk/support/util.h"

namespace {

struct WATLOW_prv_data : INSTDISP_head {
    NET_WATLOW_Avg avg;
    NET_WATLOW_Channels instant;
    NET_WATLOW_Channels sps;
    NET_WATLOW_Status status;
    NET_WATLOW_Channels new_sps;  // what the dialog was told
};

constexpr int MAX_ENTRY = 10;
constexpr int BUTTON_WIDTH = 18;

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

void reset(WATLOW_prv_data* pd) {
    pd->new_sps = NETDSD_default<NET_WATLOW_Channels>();
}

// ---- set points

// One entry of the dialog: the numeric limits, and whose channel it is.
struct channel_entry {
    CURSDIALOG_DEFAULT_entry_numeric_param limits;
    DWORD uid;
    char chan;
};

void value_accepted(CURSDIALOG_type*, void*, CURSDIALOG_widget*, void* wd_user_data, char* str,
                    CURSDIALOG_entry_action*) {
    const auto* entry = static_cast<const channel_entry*>(wd_user_data);
    auto* pd = COMMAND_display<WATLOW_prv_data>(entry->uid);
    if (pd == nullptr) return;
    (entry->chan == 'A' ? pd->new_sps.chA : pd->new_sps.chB) = UTIL_atofv(str);
}

void send_if_changed(const WATLOW_prv_data* pd, char chan, double wanted, double present) {
    if (wanted != present) COMMAND_send(pd, MSG_WATLOW_SET, NET_WATLOW_OneChannel{chan, wanted});
}

void apply(CURSDIALOG_type*, void* dlg_user_data, CURSDIALOG_widget*, void*, CURSDIALOG_button_action* act) {
    act->close_dialog = TRUE;
    const auto* pd = COMMAND_display<WATLOW_prv_data>(*static_cast<DWORD*>(dlg_user_data));
    if (pd == nullptr) return;
    send_if_changed(pd, 'A', pd->new_sps.chA, pd->sps.chA);
    send_if_changed(pd, 'B', pd->new_sps.chB, pd->sps.chB);
}

void add_entry(CURSDIALOG_type* dlg, WATLOW_prv_data* pd, int y, const char* label, double value,
               const channel_entry& entry) {
    SFMT_printf(&pd->sbfr, "%.1f", value);
    COMMAND_number_entry(dlg, y, label, SFMT_get_buffer(&pd->sbfr), MAX_ENTRY, &entry.limits, sizeof entry);
}

void open_setpoint_dialog(WATLOW_prv_data* pd, DWORD uid) {
    CURSDIALOG_type* dlg = COMMAND_dialog("Change setpoint", uid);
    if (dlg == nullptr) return;
    pd->new_sps = pd->sps;
    const CURSDIALOG_DEFAULT_entry_numeric_param limits{-99.9, 99.9, "%.1f", value_accepted};
    add_entry(dlg, pd, 1, "Setpoint A: ", pd->sps.chA, {limits, uid, 'A'});
    add_entry(dlg, pd, 2, "Setpoint B: ", pd->sps.chB, {limits, uid, 'B'});
    COMMAND_ending(dlg, 3, BUTTON_WIDTH, "Apply", apply);
}

using store = INSTDISP_store<WATLOW_prv_data>;
constexpr store STORES[] = {
    store::into<&WATLOW_prv_data::avg>(MSG_WATLOW_AVERAGE),
    store::into<&WATLOW_prv_data::instant>(MSG_WATLOW_INSTANT),
    store::into<&WATLOW_prv_data::sps>(MSG_WATLOW_SETPOINTS),
    store::into<&WATLOW_prv_data::status>(MSG_WATLOW_STATUS),
};
constexpr INSTDISP_kind<WATLOW_prv_data> KIND{
    .cols = 27, .rows = 6, .stores = STORES, .draw = draw, .reset = reset};

}  // namespace

void WATLOW_change_setpoint(DWORD uid) {
    COMMAND_run(uid, open_setpoint_dialog, COMMAND_PASSWORD);
}

INSTDISP_BINDINGS(WATLOW, watlow, KIND)
