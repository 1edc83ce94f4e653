// The thermal mass flow meter: flow, temperature and pressure.
#include "libvesk/messages/records/tsitmf.h"

#include "cursclient/kit/readings.h"

namespace {

using reading = NET_TSITMF_Reading;
using TSITMF_prv_data = READINGS_record<reading, NET_TSITMF_Instant, NET_TSITMF_Status>;

void draw(TSITMF_prv_data* pd, const CANVAS& d) {
    READINGS_headings(d);
    READINGS_row<&reading::Q>(pd, d, 2, "Flow (slpm):", "*~3.3f");
    READINGS_row<&reading::T>(pd, d, 3, "T (C):");
    READINGS_row<&reading::P>(pd, d, 4, "P (hPa):");
    d.no_comms(5, pd->status.have_comms);
}

constexpr auto STORES =
    READINGS_stores<TSITMF_prv_data>(MSG_TSITMF_AVERAGE, MSG_TSITMF_INSTANT, MSG_TSITMF_STATUS);
constexpr INSTDISP_kind<TSITMF_prv_data> KIND{
    .cols = READINGS_WIDTH, .rows = 7, .stores = STORES, .draw = draw};

}  // namespace

INSTDISP_BINDINGS(TSITMF, tsitmf, KIND)
