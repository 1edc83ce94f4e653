// Up to four Love loop controllers on one line: set point, process value and averages of each, and the dialog
// that changes the set point of one of them.
#include <algorithm>
#include <cstdio>

#include "cursclient/kit/form.h"
#include "cursclient/kit/instdisp.h"
#include "libvesk/messages/records/loopctl.h"

namespace {

struct LOVEPID_prv_data : INSTDISP_head {
    NET_LOVEPID_Avg avg;
    NET_LOVEPID_Instant instant;
    NET_LOVEPID_Setpoints sp;
    NET_LOVEPID_Status status;
    WORD last_addr;  // the address set last, preferred by the set-point dialog; 0: none yet
};

// ---- screen

// An error text has its own place in the line: it is formatted apart so that a long one is only clipped.
void draw_silence(const CANVAS& d, int row, const char* error) {
    if (error[0] == '\0')
        d.alarm().put(row, 6, "NO COMMS");
    else
        d.alarm().put(row, 6, "NO COMMS: %s", error);
}

void draw_slot(const LOVEPID_prv_data* pd, const CANVAS& d, int row, int slot) {
    d.put(row, 1, " %3hx", pd->status.addrs[slot]);
    if (!pd->status.have_comms[slot]) return draw_silence(d, row, pd->status.error[slot].error);
    d.put(row, 6, "*~4.2f", pd->sp.sp[slot]);
    d.put(row, 15, "*~4.2f", pd->instant.pv[slot]);
    d.put(row, 24, "*~4.2f", pd->instant.ra[slot]);
    d.put(row, 33, "*~4.2f", pd->avg.pv[slot]);
}

void draw(LOVEPID_prv_data* pd, const CANVAS& d) {
    d.text(1, 1, "Addr");
    d.text(1, 6, "     SP");
    d.text(1, 15, "     PV");
    d.text(1, 24, "    Avg");
    d.text(1, 33, "Last Avg");
    int row = 2;
    for (int slot = 0; slot < NET_LOVEPID_SLOTS; ++slot)
        if (pd->status.addrs[slot] != 0) draw_slot(pd, d, row++, slot);
}

// ---- set point

// The slot of an address, or -1.
int slot_of(const LOVEPID_prv_data* pd, WORD addr) {
    for (int slot = 0; slot < NET_LOVEPID_SLOTS; ++slot)
        if (addr != 0 && pd->status.addrs[slot] == addr) return slot;
    return -1;
}

// The controller set last if it is still there, else the first one; -1 without any.
int preferred_slot(const LOVEPID_prv_data* pd) {
    if (const int last = slot_of(pd, pd->last_addr); last >= 0) return last;
    for (int slot = 0; slot < NET_LOVEPID_SLOTS; ++slot)
        if (pd->status.addrs[slot] != 0) return slot;
    return -1;
}

// Addresses are hexadecimal: on the button in capitals.
std::string address_label(double addr) {
    char label[32];
    std::snprintf(label, sizeof label, "Address: %3hX", static_cast<WORD>(addr));
    return label;
}

std::vector<FORM_listed> addresses(const LOVEPID_prv_data* pd) {
    std::vector<FORM_listed> all;
    for (const WORD addr : pd->status.addrs) {
        if (addr == 0) continue;
        char label[16];
        std::snprintf(label, sizeof label, " %3hx", addr);
        all.push_back({static_cast<double>(addr), label});
    }
    return all;
}

bool read_setpoint(const LOVEPID_prv_data* pd, NET_LOVEPID_Setpoint* start) {
    const int slot = preferred_slot(pd);
    if (slot < 0) return false;
    *start = {pd->sp.sp[slot], pd->status.addrs[slot]};
    return true;
}

void send_setpoint(LOVEPID_prv_data* pd, const NET_LOVEPID_Setpoint& wanted) {
    pd->last_addr = wanted.addr;
    COMMAND_send(pd, MSG_LOVEPID_SET, wanted);
}

using form = FORM<LOVEPID_prv_data, NET_LOVEPID_Setpoint>;
constexpr form::row SETPOINT_ROWS[] = {
    form::number<&NET_LOVEPID_Setpoint::sp>("Setpoint: ", {.min = -999.99, .max = 999.99, .format = "%.2f"}),
    form::pick<&NET_LOVEPID_Setpoint::addr>("Address", "", addresses, {.button_of = address_label}),
};
constexpr form SETPOINT{.title = "Change setpoint",
                        .rows = SETPOINT_ROWS,
                        .read = read_setpoint,
                        .send = send_setpoint,
                        .ok_width = 10,
                        .no_memory =
                            "(dlgparam=(LOVEPID_setpoint_dlg_prv *)malloc(sizeof("
                            "LOVEPID_setpoint_dlg_prv))) != NULL",
                        .trusts_start_values = true};

using store = INSTDISP_store<LOVEPID_prv_data>;
constexpr store STORES[] = {
    store::into<&LOVEPID_prv_data::avg>(MSG_LOVEPID_AVERAGE),
    store::into<&LOVEPID_prv_data::instant>(MSG_LOVEPID_INSTANT),
    store::into<&LOVEPID_prv_data::sp>(MSG_LOVEPID_SETPOINTS),
    store::into<&LOVEPID_prv_data::status>(MSG_LOVEPID_STATUS),
};
constexpr INSTDISP_menu_row<LOVEPID_prv_data> MENU[] = {
    {.hot_key = '2', .label = "2 Change setpoint", .action = FORM_open<SETPOINT>, .guard = COMMAND_PASSWORD}};
constexpr INSTDISP_kind<LOVEPID_prv_data> KIND{
    .cols = 43, .rows = 7, .stores = STORES, .draw = draw, .menu = MENU};

}  // namespace

INSTDISP_BINDINGS(LOVEPID, lovepid, KIND)
