// The TSI 3783 counter, which grows its droplets in water: two columns of housekeeping, and a reservoir to
// be refilled.
#include "cursclient/kit/cpc_common.h"

namespace {

using CPC3783_prv_data = CPC_record<NET_CPC_3783_Avg, NET_CPC_3783_Instant, NET_CPC_3783_Status>;

// Columns of labels and values, left and right; the averages' second value stands at the right label's.
constexpr int L = 1, LV = 20, R = 30, RV = 50;

// No warning of low water before the instrument has said so.
void reset(CPC3783_prv_data* pd) {
    pd->status.full = TRUE;
}

void draw_averages(const CPC3783_prv_data* pd, const CANVAS& d) {
    d.put(1, LV, "  Value");
    d.put(1, R, " StdDev");
    d.field(2, L, "Last Average:", LV, "*~5.1f", pd->avg.concentration);
    d.put(2, R, "*~5.1f", pd->avg.stddev_concentration);
    d.field(3, L, "Running Avg:", LV, "*~5.1f", pd->instant.running.concentration);
    d.put(3, R, "*~5.1f", pd->instant.running.stddev_concentration);
}

void draw_left(const NET_CPC_3783_Instant& in, const CANVAS& d) {
    d.field(4, L, "Last reading:", LV, "*~5.1f", in.concentration);
    d.field(5, L, "T Inlet (C):", LV, "*~5.1f", in.T_inlet);
    d.field(6, L, "T Growth (C):", LV, "*~5.1f", in.T_growth);
    d.field(7, L, "T Condenser (C):", LV, "*~5.1f", in.T_condenser);
    d.field(8, L, "T Optics (C):", LV, "*~5.1f", in.T_optics);
    d.field(9, L, "T Water (C):", LV, "*~5.1f", in.T_water);
    d.field(10, L, "T Cabinet (C):", LV, "*~5.1f", in.T_cabinet);
    d.field(11, L, "V Photo (mV):", LV, "*~5.0f", in.V_photo);
}

void draw_right(const NET_CPC_3783_Instant& in, const CANVAS& d) {
    d.field(4, R, "Display:", RV, "*~5.1f", in.display_concentration);
    d.field(5, R, "Q inlet (lpm):", RV, "*~5.1f", in.Q_inlet);
    d.field(6, R, "P Nozzle (%):", RV, "*~5.0f", in.P_nozzle);
    d.field(7, R, "P Vacuum (hPa):", RV, "*~5.0f", in.P_vacuum);
    d.field(8, R, "P Absolute (hPa):", RV, "*~5.0f", in.P_absolute);
    d.field(9, R, "Liquid:", RV, "%5d", in.liquid);
    d.field(10, R, "V Pulse (mV):", RV, "*~5.0f", in.V_pulse);
    d.field(11, R, "I Laser (mA):", RV, "*~5.0f", in.I_laser);
}

void draw_status(const NET_CPC_3783_Status& status, const CANVAS& d) {
    if (d.no_comms(12, status.have_comms)) return;
    if (status.flags != 0) d.fault().field(12, L, "Flags:", LV, " %04X", status.flags);
    if (const NETDSD_meaning* water = NETDSD_meaning_of(NET_CPC_3783_WATER, status.full))
        d.meaning(12, status.flags != 0 ? R : L, *water);
}

void draw(CPC3783_prv_data* pd, const CANVAS& d) {
    draw_averages(pd, d);
    draw_left(pd->instant, d);
    draw_right(pd->instant, d);
    draw_status(pd->status, d);
}

constexpr auto STORES =
    CPC_stores<CPC3783_prv_data>(MSG_CPC_3783_AVERAGE, MSG_CPC_3783_INSTANT, MSG_CPC_3783_STATUS);
constexpr INSTDISP_kind<CPC3783_prv_data> KIND{
    .cols = 61, .rows = 14, .stores = STORES, .draw = draw, .reset = reset};

}  // namespace

INSTDISP_BINDINGS(CPC3783, cpc_3783, KIND)
