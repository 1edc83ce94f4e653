// The chilled-mirror hygrometer: dew point, frost point when it is below 0, humidity and temperatures.
#include "libvesk/messages/records/hygrometer.h"

#include "cursclient/kit/readings.h"

namespace {

using reading = NET_HYGROMETER_Reading;
using HYGROMETER_prv_data = READINGS_record<reading, NET_HYGROMETER_Instant, NET_HYGROMETER_Status>;

bool is_frost(const HYGROMETER_prv_data* pd) {
    return pd->instant.in.T_frost != VESK_MISSING;
}

void draw(HYGROMETER_prv_data* pd, const CANVAS& d) {
    static constexpr int STATUS_ROW = 7;
    READINGS_headings(d);
    READINGS_row<&reading::T_dew>(pd, d, 2, "Dew point (C):");
    READINGS_row<&reading::RH>(pd, d, 3, "RH (%):");
    READINGS_row<&reading::T>(pd, d, 4, "T air (C):");
    READINGS_row<&reading::T_mirror>(pd, d, 5, "T mirror (C):");
    if (is_frost(pd)) READINGS_row<&reading::T_frost>(pd, d, 6, "Frost point (C):");
    if (d.no_comms(STATUS_ROW, pd->status.have_comms)) return;
    READINGS_words(d, d.fault(), STATUS_ROW, READINGS_WIDTH, pd->status.flags, NET_HYGROMETER_FLAGS);
}

constexpr auto STORES = READINGS_stores<HYGROMETER_prv_data>(MSG_HYGROMETER_AVERAGE, MSG_HYGROMETER_INSTANT,
                                                             MSG_HYGROMETER_STATUS);
constexpr INSTDISP_kind<HYGROMETER_prv_data> KIND{
    .cols = READINGS_WIDTH, .rows = 9, .stores = STORES, .draw = draw};

}  // namespace

INSTDISP_BINDINGS(HYGROMETER, hygrometer, KIND)
