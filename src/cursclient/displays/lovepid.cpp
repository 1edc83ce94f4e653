// Up to four Love loop controllers on one line: set point, process value and averages of each, and the dialog
// that changes the set point of one of them.
#include <algorithm>
#include <cstdio>

#include "cursclient/kit/instdisp.h"
#include "libvesk/messages/records/loopctl.h"
#include "libvesk/support/util.h"

namespace {

struct LOVEPID_prv_data : INSTDISP_head {
    NET_LOVEPID_Avg avg;
    NET_LOVEPID_Instant instant;
    NET_LOVEPID_Setpoints sp;
    NET_LOVEPID_Status status;
    WORD last_addr;  // the address set last, preferred by the set-point dialog; 0: none yet
};

constexpr int MAX_ENTRY = 10;
constexpr int BUTTON_WIDTH = 10;

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

struct LOVEPID_setpoint_dlg_prv {
    CURSDIALOG_widget* wd_val;
    CURSDIALOG_widget* wd_addr;
    CURSDIALOG_type* dlg_addr_select;  // the open list of addresses, or null
    WORD addr;                         // chosen
    DWORD uid;
};
using form = LOVEPID_setpoint_dlg_prv;

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

std::string address_label(WORD addr) {
    char label[32];
    std::snprintf(label, sizeof label, "Address: %3hX", addr);
    return label;
}

void address_chosen(CURSDIALOG_type*, void* dlg_user_data, CURSDIALOG_widget*, void* wd_user_data,
                    CURSDIALOG_button_action* act) {
    act->close_dialog = TRUE;
    form* f = COMMAND_param<form>(dlg_user_data);
    std::memcpy(&f->addr, wd_user_data, sizeof f->addr);
    CURSDIALOG_setlabel(f->wd_addr, address_label(f->addr).c_str());
}

void address_list_closed(CURSDIALOG_type*, void* dlg_user_data) {
    COMMAND_param<form>(dlg_user_data)->dlg_addr_select = nullptr;
}

void open_address_list(CURSDIALOG_type*, void* dlg_user_data, CURSDIALOG_widget*, void*,
                       CURSDIALOG_button_action*) {
    form* f = COMMAND_param<form>(dlg_user_data);
    const auto* pd = COMMAND_display<LOVEPID_prv_data>(f->uid);
    if (pd == nullptr || f->dlg_addr_select != nullptr) return;
    CURSDIALOG_type* dlg = DIALOG_create("Address", 0, &f, sizeof f, address_list_closed);
    f->dlg_addr_select = dlg;
    int y = 1;
    for (const WORD addr : pd->status.addrs) {
        if (addr == 0) continue;
        char label[16];
        std::snprintf(label, sizeof label, " %3hx", addr);
        CURSDIALOG_widget* button = CURSDIALOG_add_button(dlg, 1, y++, 0, CURSDIALOG_STYLE_LIST, 0, label,
                                                          address_chosen, &addr, sizeof addr);
        if (addr == f->addr) CURSDIALOG_force_widget_focus(dlg, button);
    }
}

void setpoint_closed(CURSDIALOG_type*, void* dlg_user_data) {
    CURSDIALOG_close(COMMAND_param<form>(dlg_user_data)->dlg_addr_select);
}

void apply(CURSDIALOG_type*, void* dlg_user_data, CURSDIALOG_widget*, void*, CURSDIALOG_button_action* act) {
    act->close_dialog = TRUE;
    const form* f = COMMAND_param<form>(dlg_user_data);
    auto* pd = COMMAND_display<LOVEPID_prv_data>(f->uid);
    if (pd == nullptr) return;
    pd->last_addr = f->addr;
    COMMAND_send(pd, MSG_LOVEPID_SET, NET_LOVEPID_Setpoint{COMMAND_entry_value(f->wd_val), f->addr});
}

void change_setpoint(LOVEPID_prv_data* pd, DWORD uid) {
    const int slot = preferred_slot(pd);
    if (slot < 0) return;
    const auto [dlg, f] = COMMAND_create_form<form>("Change setpoint", setpoint_closed);
    if (dlg == nullptr) return;
    f->uid = uid;
    f->addr = pd->status.addrs[slot];
    static constexpr CURSDIALOG_DEFAULT_entry_numeric_param LIMITS{-999.99, 999.99, "%.2f", nullptr};
    SFMT_printf(&pd->sbfr, "%.2f", static_cast<double>(pd->sp.sp[slot]));
    f->wd_val = COMMAND_number_entry(dlg, 1, "Setpoint: ", SFMT_get_buffer(&pd->sbfr), MAX_ENTRY, &LIMITS);
    f->wd_addr = CURSDIALOG_add_button(dlg, 1, 2, 0, CURSDIALOG_STYLE_LIST, 0, address_label(f->addr).c_str(),
                                       open_address_list, nullptr, 0);
    COMMAND_ending(dlg, 3, BUTTON_WIDTH, "Apply", apply);
}

using store = INSTDISP_store<LOVEPID_prv_data>;
constexpr store STORES[] = {
    store::into<&LOVEPID_prv_data::avg>(MSG_LOVEPID_AVERAGE),
    store::into<&LOVEPID_prv_data::instant>(MSG_LOVEPID_INSTANT),
    store::into<&LOVEPID_prv_data::sp>(MSG_LOVEPID_SETPOINTS),
    store::into<&LOVEPID_prv_data::status>(MSG_LOVEPID_STATUS),
};
constexpr INSTDISP_menu_row<LOVEPID_prv_data> MENU[] = {
    {.hot_key = '2', .label = "2 Change setpoint", .action = change_setpoint, .guard = COMMAND_PASSWORD}};
constexpr INSTDISP_kind<LOVEPID_prv_data> KIND{
    .cols = 43, .rows = 7, .stores = STORES, .draw = draw, .menu = MENU};

}  // namespace

INSTDISP_BINDINGS(LOVEPID, lovepid, KIND)
