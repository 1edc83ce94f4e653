// The scanning electrical mobility spectrometer: sixty sizes, counted on an upward and on a downward sweep of
// its voltage. Cumulative number, dN/dlogD and dV/dlogD of each sweep are derived here.
#include "cursclient/kit/sizer.h"
#include "libvesk/messages/records/sizers.h"

namespace {

using series = SIZER_series<NET_SEMS_BINS>;

// The even ones are of the upward sweep.
enum SEMS_GRAPH_MODE {
    SEMS_GM_dNdlogD_UP,
    SEMS_GM_dNdlogD_DOWN,
    SEMS_GM_dVdlogD_UP,
    SEMS_GM_dVdlogD_DOWN,
    SEMS_GM_N_UP,
    SEMS_GM_N_DOWN
};
constexpr SIZER_graph GRAPHS[] = {
    {.caption = "dN/dlogD, upward sweep", .y_format = "*~.1e"},
    {.caption = "dN/dlogD, downward sweep", .y_format = "*~.1e"},
    {.caption = "dV/dlogD, upward sweep", .y_format = "*~.1e"},
    {.caption = "dV/dlogD, downward sweep", .y_format = "*~.1e"},
    {.caption = "cum N(D), upward sweep", .y_format = "*~7.0f"},
    {.caption = "cum N(D), downward sweep", .y_format = "*~7.0f"},
};
constexpr SIZER_column COLUMNS[] = {
    {.col = 1, .title = "    D", .units = " (nm)", .format = "*~5.0f"},
    {.col = 9, .title = "        dN", .units = "   (cm^-3)", .format = "*~1.3.02e"},
    {.col = 19, .title = "  cum N(D)", .units = "   (cm^-3)", .format = "*~4.1f"},
    {.col = 31, .title = "  dN/dlogD", .units = "   (cm^-3)", .format = "*~1.3.02e"},
    {.col = 45, .title = "   dV/dlogD", .units = "(um^3/cm^3)", .format = "*~1.3.02e"},
};

struct SEMS_sweep {
    series dN;
    series N;  // cumulative
    series dNdLogD;
    series dVdLogD;

    void clear() {
        for (series* s : {&dN, &N, &dNdLogD, &dVdLogD})
            s->clear();
    }
};

struct SEMS_prv_data : SIZER_head {
    NET_SEMS_Bins D, dLogD, dN_up, dN_down;  // as received
    NET_SEMS_Info info;
    NET_SEMS_Status stat;
    series diameter;
    SEMS_sweep up, down;
    bool tabular_up;  // the table shows the upward sweep

    static constexpr SIZER_row ROW{.cols = 69,
                                   .rows = 22,
                                   .bar_col = 8,
                                   .labels = 9,
                                   .x_format = "*~.0f",
                                   .graphs = GRAPHS,
                                   .graph_keys = "NVC",
                                   .table_row = 1,
                                   .bins_per_page = 17,
                                   .last_page = 3,
                                   .columns = COLUMNS};

    [[nodiscard]] bool have_comms() const { return stat.have_comms; }
    [[nodiscard]] const char* data_set() const { return nullptr; }
    [[nodiscard]] SIZER_view graph_x() const { return diameter.view(); }
    [[nodiscard]] SIZER_view graph_y() const {
        const SEMS_sweep& sweep = gm % 2 == 0 ? up : down;
        if (gm >= SEMS_GM_N_UP) return sweep.N.view();
        return gm >= SEMS_GM_dVdlogD_UP ? sweep.dVdLogD.view() : sweep.dNdLogD.view();
    }
    [[nodiscard]] std::array<SIZER_view, 5> table() const {
        const SEMS_sweep& s = tabular_up ? up : down;
        return {diameter.view(), s.dN.view(), s.N.view(), s.dNdLogD.view(), s.dVdLogD.view()};
    }

    void housekeeping(const CANVAS& d) const {
        d.put(1, 1, "Integrals:      dN     dN/dlogD     dV/dlogD");
        d.put(2, 1, "           (cm^-3)      (cm^-3)  (um^3/cm^3)");
        d.put(3, 1, "   Upward:  *~4.1f     *~1.3.02e     *~1.3.02e", up.N.total, up.dNdLogD.total,
              up.dVdLogD.total);
        d.put(4, 1, " Downward:  *~4.1f     *~1.3.02e     *~1.3.02e", down.N.total, down.dNdLogD.total,
              down.dVdLogD.total);
        d.put(6, 1, "T:               *~3.2f", info.T);
        d.put(7, 1, "RH:              *~3.2f", info.rh);
        d.put(8, 1, "P impactor:     *~4.2f", info.P_impactor);
        d.put(9, 1, "HV out:            *~1.3.02ef", info.HV_out);
        d.put(10, 1, "P dma:          *~4.2f", info.P_dma);
        d.put(11, 1, "Q sheath:        *~3.2f", info.Q_sheath);
        d.put(12, 1, "Q excess:        *~3.2f", info.Q_excess);
        d.put(13, 1, "Q mono:          *~3.2f", info.Q_mono);
        d.put(14, 1, "T CPC condenser: *~3.2f", info.T_CPC_condenser);
        d.put(15, 1, "T CPC saturator: *~3.2f", info.T_CPC_saturator);
    }
};

void reset(SEMS_prv_data* pd) {
    pd->diameter.clear();
    pd->up.clear();
    pd->down.clear();
}

// ---- derived values

// A count of 0 is treated as no value, as zero diameters and widths are.
double usable(double v) {
    return SIZER_is_number(v) && v != 0 ? v : VESK_MISSING;
}

double quotient(double a, double b) {
    return VESK_is_missing(usable(a)) || VESK_is_missing(usable(b)) ? VESK_MISSING : a / b;
}

// Volume of a sphere of that diameter (nm), in um3.
double sphere_volume(double diameter) {
    static constexpr double SIXTH_OF_PI = 0.5235987755982988;
    const double d = VESK_scaled(usable(diameter), 0.001);
    return VESK_is_missing(d) ? VESK_MISSING : SIXTH_OF_PI * d * d * d;
}

void derive_number(const SEMS_prv_data* pd, SEMS_sweep* s) {
    s->dNdLogD.fill([&](std::size_t i) { return quotient(s->dN.v[i], pd->dLogD.v[i]); });
}

void derive_volume(const SEMS_prv_data* pd, SEMS_sweep* s) {
    s->dVdLogD.fill([&](std::size_t i) {
        const double volume = sphere_volume(pd->D.v[i]);
        if (VESK_is_missing(volume)) return VESK_MISSING;
        return quotient(VESK_scaled(usable(s->dN.v[i]), volume), pd->dLogD.v[i]);
    });
}

void derive_sweep(const SEMS_prv_data* pd, SEMS_sweep* s, const NET_SEMS_Bins& counts) {
    s->dN.fill([&](std::size_t i) { return counts.v[i]; });
    s->N.fill_cumulative([&](std::size_t i) { return usable(s->dN.v[i]); });
    derive_number(pd, s);
    derive_volume(pd, s);
}

void D_stored(SEMS_prv_data* pd, FTIME /*curtime*/) {
    pd->diameter.fill([pd](std::size_t i) { return pd->D.v[i]; });
    derive_volume(pd, &pd->up);
    derive_volume(pd, &pd->down);
}

void dLogD_stored(SEMS_prv_data* pd, FTIME /*curtime*/) {
    for (SEMS_sweep* s : {&pd->up, &pd->down}) {
        derive_number(pd, s);
        derive_volume(pd, s);
    }
}

void dN_up_stored(SEMS_prv_data* pd, FTIME /*curtime*/) {
    derive_sweep(pd, &pd->up, pd->dN_up);
}

void dN_down_stored(SEMS_prv_data* pd, FTIME /*curtime*/) {
    derive_sweep(pd, &pd->down, pd->dN_down);
}

// ---- keys

// "T" shows the upward sweep first, and the other one when the table is there already.
bool key_pressed(SEMS_prv_data* pd, DWORD /*uid*/, int key) {
    if (key == 'T' || key == 't') pd->tabular_up = pd->dm != SIZER_DM_TABULAR || !pd->tabular_up;
    return SIZER_mode_key(SEMS_prv_data::ROW, pd, key);
}

using store = INSTDISP_store<SEMS_prv_data>;
constexpr store STORES[] = {
    store::into<&SEMS_prv_data::D>(MSG_SEMS_D, D_stored),
    store::into<&SEMS_prv_data::dLogD>(MSG_SEMS_DLOGD, dLogD_stored),
    store::into<&SEMS_prv_data::dN_up>(MSG_SEMS_DN_UP, dN_up_stored),
    store::into<&SEMS_prv_data::dN_down>(MSG_SEMS_DN_DOWN, dN_down_stored),
    store::into<&SEMS_prv_data::info>(MSG_SEMS_INFO),
    store::into<&SEMS_prv_data::stat>(MSG_SEMS_STATUS),
};
constexpr INSTDISP_menu_row<SEMS_prv_data> MENU[] = {
    SIZER_menu_key<SEMS_prv_data, 'N', key_pressed>("N Display dN/dlogD"),
    SIZER_menu_key<SEMS_prv_data, 'V', key_pressed>("V Display dV/dlogD"),
    SIZER_menu_key<SEMS_prv_data, 'C', key_pressed>("C Display cum N(D)"),
    SIZER_menu_key<SEMS_prv_data, 'T', key_pressed>("T Display tabular mode"),
    SIZER_menu_key<SEMS_prv_data, 'H', key_pressed>("H Display housekeeping information"),
};
constexpr auto KIND = SIZER_kind(STORES, reset, key_pressed, MENU);

}  // namespace

INSTDISP_BINDINGS(SEMS, sems, KIND)
