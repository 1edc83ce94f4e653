// The three-wavelength photometer with eight sample spots: its seven views, what state it is in, and the
// commands that change the filter, check it against a white one, advance the spot and switch the flow.
#include "libvesk/messages/records/clap3w.h"

#include <iterator>

#include "cursclient/kit/form.h"
#include "cursclient/kit/instdisp.h"

namespace {

enum CLAP3W_DISPLAY_MODE {
    CLAP3W_DM_DEFAULT,
    CLAP3W_DM_I,
    CLAP3W_DM_Ig,
    CLAP3W_DM_In,
    CLAP3W_DM_Ing,
    CLAP3W_DM_Irw,
    CLAP3W_DM_Irz,
    CLAP3W_DM_COUNT,
};

struct CLAP3W_prv_data : INSTDISP_head {
    NET_CLAP3W_Avg avg;
    NET_CLAP3W_Instant instant;
    NET_CLAP3W_FilterStatus filter_status;
    NET_CLAP3W_Status status;
    CLAP3W_DISPLAY_MODE display_mode;
    std::int32_t seen_status;  // of the filter status before the present one
};

// ---- the status line

// A state that tells of the spot, or one that demands something of the operator.
void draw_halted(const NETDSD_meaning& state, WORD active_spot, const CANVAS& d, int row) {
    if (state.severity == NETDSD_FAULT)
        d.alarm().text(row, 1, state.text);
    else
        d.put(row, 1, "%s %d", state.text, active_spot);
}

// FALSE when there is nothing to say, so that the row is free.
bool CLAP3W_draw_status(const CLAP3W_prv_data* pd, const CANVAS& d, int row) {
    static constexpr const NETDSD_meaning& FILTER_OR_LED = NET_CLAP3W_FLAGS[0];
    const std::int32_t status = pd->filter_status.status;
    const NETDSD_meaning* state = NETDSD_meaning_of(NET_CLAP3W_STATES, status);
    if (d.no_comms(row, pd->status.have_comms)) return true;
    if (status == NET_CLAP3W_NORMAL) return false;
    if (state != nullptr && status <= NET_CLAP3W_WAIT_WHITE)
        d.text(row, 1, state->text);
    else if (pd->instant.flags & FILTER_OR_LED.value)
        d.fault().text_centered(row, FILTER_OR_LED.text);
    else if (state != nullptr)
        draw_halted(*state, pd->filter_status.active_spot, d, row);
    return true;
}

// ---- the views

struct view {
    CLAP3W_DISPLAY_MODE mode;
    void (*draw)(const CLAP3W_prv_data* pd, const CANVAS& d, const view& v);
    const char* menu_label;  // of the button that goes on to this view
    const char* title = "";
    const char* row_name = "";
    SFMT_altformat<double> format = "*~2.7f";
    std::size_t arrays[4] = {};  // where blue, green, red and dark begin in the instantaneous record
};

void draw_headings(const CANVAS& d, int row, std::span<const int> cols, const char* const* headings) {
    for (const int col : cols)
        d.text(row, col, *headings++);
}

void CLAP3W_display_default(const CLAP3W_prv_data* pd, const CANVAS& d, const view& /*v*/) {
    static constexpr int COLS[] = {15, 27, 39};
    static constexpr const char* HEADINGS[] = {"   Blue", "  Green", "    Red"};
    const NET_CLAP3W_Instant& in = pd->instant;
    draw_headings(d, 1, COLS, HEADINGS);
    d.across(2, "Bap (1/Mm,1Hz):", COLS, "*~4.2f",
             [&](int i) { return UNIT_on_screen(UNIT_per_m, in.bap[i]); });
    d.across(3, "Bap (1/Mm,avg):", COLS, "*~4.2f",
             [&](int i) { return UNIT_on_screen(UNIT_per_m, pd->avg.bap[i]); });
    d.across(4, "Transmittance:", COLS, "*~4.7f", [&](int i) { return in.tr[i]; });
    d.across(5, "I reference:", COLS, "   *~-9.0f", [&](int i) { return in.Iref[i]; });
    d.across(6, "I sample:", COLS, "   *~-9.0f", [&](int i) { return in.Isam[i]; });
    d.across(7, "I norm RSD:", COLS, "*~4.7f", [&](int i) { return in.Inormrsd[i]; });
    d.field(8, 1, "Flow (slpm):", COLS[0], "*~4.2f", in.Q);
    d.field(8, COLS[1], "   Volts:", COLS[2], "*~4.4f", in.VQ);
    d.field(9, 1, "T (C):", COLS[0], "*~4.2f", in.T);
    d.field(10, 1, "Tcase (C):", COLS[0], "*~4.2f", in.T_case);
    d.field(11, 1, "Spot:", COLS[0], "%4d", in.spot_index);
    d.field(12, 1, "Flags:", COLS[0], "%04X", in.flags);
    CLAP3W_draw_status(pd, d, 13);
}

// One row of a view by spots: element `i` of each array.
void draw_elements(const CLAP3W_prv_data* pd, const CANVAS& d, int row, std::string_view label,
                   std::span<const int> cols, const view& v, int i) {
    const char* const record = reinterpret_cast<const char*>(&pd->instant);
    d.across(row, label, cols, v.format, [&](int color) {
        return NETDSD_load<double>(record + v.arrays[color] + static_cast<std::size_t>(i) * sizeof(double));
    });
}

// The rows of the sample spots from row `y` on, whose elements begin at `first`, and the last line below.
void draw_spots(const CLAP3W_prv_data* pd, const CANVAS& d, int y, std::span<const int> cols, const view& v,
                int first) {
    for (int spot = 0; spot < NET_CLAP3W_SPOTS; ++spot) {
        const std::string label = std::string(v.row_name) + " spot " + std::to_string(spot + 1) + ":";
        draw_elements(pd, d, y + spot, label, cols, v, first + spot);
    }
    const int last = y + NET_CLAP3W_SPOTS;
    if (!CLAP3W_draw_status(pd, d, last)) d.put(last, 1, "Spot: %1d", pd->instant.spot_index);
}

// All ten detectors, the two of the references first. The dark column shows as far as the window goes.
void CLAP3W_display_I10(const CLAP3W_prv_data* pd, const CANVAS& d, const view& v) {
    static constexpr int COLS[] = {13, 25, 37, 49};
    static constexpr const char* HEADINGS[] = {"      Blue", "     Green", "       Red", "      Dark"};
    d.rule(1, v.title);
    draw_headings(d, 2, COLS, HEADINGS);
    draw_elements(pd, d, 3, std::string(v.row_name) + " odd ref:", COLS, v, 0);
    draw_elements(pd, d, 4, std::string(v.row_name) + " even ref:", COLS, v, 1);
    draw_spots(pd, d, 5, COLS, v, 2);
}

void CLAP3W_display_In8(const CLAP3W_prv_data* pd, const CANVAS& d, const view& v) {
    static constexpr int COLS[] = {15, 28, 41};
    static constexpr const char* HEADINGS[] = {" Blue", " Green", " Red"};
    d.rule(1, v.title);
    draw_headings(d, 2, COLS, HEADINGS);
    draw_spots(pd, d, 3, COLS, v, 0);
}

#define AT(member) offsetof(NET_CLAP3W_Instant, member)
constexpr view VIEWS[] = {
    {.mode = CLAP3W_DM_DEFAULT, .draw = CLAP3W_display_default, .menu_label = "D Standard display"},
    {.mode = CLAP3W_DM_I,
     .draw = CLAP3W_display_I10,
     .menu_label = "D Display intensities",
     .title = "Raw Intensities",
     .row_name = "I",
     .format = "*~10.0f",
     .arrays = {AT(in.IB), AT(in.IG), AT(in.IR), AT(in.ID)}},
    {.mode = CLAP3W_DM_Ig,
     .draw = CLAP3W_display_I10,
     .menu_label = "D Display intensity RSD",
     .title = "Raw Intensity RSD",
     .row_name = "Ig",
     .format = "*~2.7f",
     .arrays = {AT(IgB), AT(IgG), AT(IgR), AT(IgD)}},
    {.mode = CLAP3W_DM_In,
     .draw = CLAP3W_display_In8,
     .menu_label = "D Display normalized intensities",
     .title = "Normalized Intensities",
     .row_name = "In",
     .format = "*~2.7f",
     .arrays = {AT(in.InB), AT(in.InG), AT(in.InR)}},
    {.mode = CLAP3W_DM_Ing,
     .draw = CLAP3W_display_In8,
     .menu_label = "D Display normalized intensity RSD",
     .title = "Normalized Intensity RSD",
     .row_name = "Ing",
     .format = "*~2.7f",
     .arrays = {AT(IngB), AT(IngG), AT(IngR)}},
    {.mode = CLAP3W_DM_Irw,
     .draw = CLAP3W_display_In8,
     .menu_label = "D Display white filter ratio",
     .title = "Intensity White Filter Ratio",
     .row_name = "Irw",
     .format = "*~2.7f",
     .arrays = {AT(IrwB), AT(IrwG), AT(IrwR)}},
    {.mode = CLAP3W_DM_Irz,
     .draw = CLAP3W_display_In8,
     .menu_label = "D Display filter start ratio",
     .title = "Intensity Filter Start Ratio",
     .row_name = "Irz",
     .format = "*~2.7f",
     .arrays = {AT(IrzB), AT(IrzG), AT(IrzR)}},
};
#undef AT
static_assert(std::size(VIEWS) == CLAP3W_DM_COUNT);
static_assert([] {
    for (std::size_t i = 0; i < std::size(VIEWS); ++i)
        if (VIEWS[i].mode != static_cast<int>(i)) return false;
    return true;
}());

CLAP3W_DISPLAY_MODE mode_after(CLAP3W_DISPLAY_MODE mode) {
    return static_cast<CLAP3W_DISPLAY_MODE>((mode + 1) % CLAP3W_DM_COUNT);
}

void draw(CLAP3W_prv_data* pd, const CANVAS& d) {
    const view& v = VIEWS[pd->display_mode];
    v.draw(pd, d, v);
}

// ---- the commands

// The filter is out of the instrument's hands: being changed, or replaced by a white one.
bool filter_is_out(const CLAP3W_prv_data* pd) {
    const std::int32_t state = pd->filter_status.status;
    return state == NET_CLAP3W_CHANGING_FILTER || state == NET_CLAP3W_WHITE_CHECK;
}

// One message starts and ends a change, of whichever filter: the server keeps the state.
void send_filter_change(CLAP3W_prv_data* pd, DWORD /*uid*/) {
    COMMAND_send(pd, MSG_CLAP3W_FILTERCHANGE);
}

void confirm_end(DWORD uid) {
    COMMAND_confirm("Have you finished changing the filter?", uid, COMMAND_do<send_filter_change>);
}

void change_filter(CLAP3W_prv_data* pd, DWORD uid) {
    if (filter_is_out(pd)) return confirm_end(uid);
    send_filter_change(pd, uid);
}

// A check that began while the operator typed the password can only be ended.
void check_white_filter(CLAP3W_prv_data* pd, DWORD uid) {
    if (pd->filter_status.status == NET_CLAP3W_WHITE_CHECK) return confirm_end(uid);
    COMMAND_send(pd, MSG_CLAP3W_WHITECHANGE);
}

struct CLAP3W_flow {
    bool override_locks;
};

void enable_flow(CLAP3W_prv_data* pd, const CLAP3W_flow& flow) {
    COMMAND_send(pd, flow.override_locks ? MSG_CLAP3W_FLOWOVERRIDE : MSG_CLAP3W_FLOW);
}

void disable_flow(CLAP3W_prv_data* pd, const CLAP3W_flow& flow) {
    COMMAND_send(pd, flow.override_locks ? MSG_CLAP3W_NOFLOWOVERRIDE : MSG_CLAP3W_NOFLOW);
}

using form = FORM<CLAP3W_prv_data, CLAP3W_flow>;
constexpr form::row FLOW_ROWS[] = {
    form::check<&CLAP3W_flow::override_locks>("Override locks"),
    form::button("Enable Flow", 1, 18, enable_flow),
    form::button("Disable Flow", 19, 18, disable_flow),
    form::button("Cancel", 19, 18, nullptr),
};
constexpr form FLOW{.title = "Set Flow Status", .rows = FLOW_ROWS};

void next_mode(CLAP3W_prv_data* pd, DWORD /*uid*/) {
    pd->display_mode = mode_after(pd->display_mode);
}

bool key_pressed(CLAP3W_prv_data* pd, DWORD uid, int key) {
    if (key != 'D' && key != 'd') return false;
    next_mode(pd, uid);
    return true;
}

// ---- the menu

std::string filter_label(const CLAP3W_prv_data* pd) {
    if (pd->filter_status.status == NET_CLAP3W_CHANGING_FILTER) return "2 Stop filter change";
    return filter_is_out(pd) ? "2 Stop white filter change" : "2 Start filter change";
}

std::string white_label(const CLAP3W_prv_data* pd) {
    if (pd->filter_status.status == NET_CLAP3W_CHANGING_FILTER) return "3 Switch to white filter check";
    return filter_is_out(pd) ? "" : "3 Start white filter check";
}

std::string advance_label(const CLAP3W_prv_data* pd) {
    return filter_is_out(pd) ? "" : "4 Advance Spot";
}

std::string mode_label(const CLAP3W_prv_data* pd) {
    return VIEWS[mode_after(pd->display_mode)].menu_label;
}

constexpr INSTDISP_menu_row<CLAP3W_prv_data> MENU[] = {
    {.hot_key = '2', .action = change_filter, .guard = COMMAND_CONFIRM, .label_of = filter_label},
    {.hot_key = '3', .action = check_white_filter, .guard = COMMAND_CONFIRM, .label_of = white_label},
    {.hot_key = '4',
     .action = COMMAND_issue<MSG_CLAP3W_SPOTADVANCE>,
     .guard = COMMAND_CONFIRM,
     .label_of = advance_label},
    {.hot_key = '5', .label = "5 Set flow override", .action = FORM_open<FLOW>, .guard = COMMAND_PASSWORD},
    {.hot_key = 'D', .action = next_mode, .label_of = mode_label},
};

// ---- the messages

// Brings the window up once when the instrument demands the operator.
void filter_status_stored(CLAP3W_prv_data* pd, FTIME /*curtime*/) {
    const std::int32_t state = pd->filter_status.status;
    const bool demands = state == NET_CLAP3W_CHANGE_REQUIRED || state == NET_CLAP3W_WHITE_REQUIRED;
    if (demands && state != pd->seen_status) WINS_focus_window(pd->win);
    pd->seen_status = state;
}

using store = INSTDISP_store<CLAP3W_prv_data>;
constexpr store STORES[] = {
    store::into<&CLAP3W_prv_data::avg>(MSG_CLAP3W_AVERAGE),
    store::into<&CLAP3W_prv_data::instant>(MSG_CLAP3W_INSTANT),
    store::into<&CLAP3W_prv_data::filter_status>(MSG_CLAP3W_FILTERSTATUS, filter_status_stored),
    store::into<&CLAP3W_prv_data::status>(MSG_CLAP3W_STATUS),
};
constexpr INSTDISP_kind<CLAP3W_prv_data> KIND{
    .cols = 52, .rows = 15, .stores = STORES, .draw = draw, .key = key_pressed, .menu = MENU};

}  // namespace

INSTDISP_BINDINGS(CLAP3W, clap3w, KIND)
