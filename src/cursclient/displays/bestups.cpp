// The uninterruptible power supply: mains, battery, load, run time left, and its status in words.
#include "libvesk/messages/records/bestups.h"

#include "cursclient/kit/readings.h"

namespace {

using reading = NET_BESTUPS_Reading;
using BESTUPS_prv_data = READINGS_record<reading, NET_BESTUPS_Instant, NET_BESTUPS_Status>;

void draw(BESTUPS_prv_data* pd, const CANVAS& d) {
    static constexpr int STATUS_ROW = 9;
    READINGS_headings(d);
    READINGS_row<&reading::V_mains>(pd, d, 2, "Mains (V):", "*~5.1f");
    READINGS_row<&reading::V_output>(pd, d, 3, "Output (V):", "*~5.1f");
    READINGS_row<&reading::f>(pd, d, 4, "Frequency (Hz):", "*~5.1f");
    READINGS_row<&reading::V_battery>(pd, d, 5, "Battery (V):", "*~5.1f");
    READINGS_row<&reading::charge>(pd, d, 6, "Charge (%):", "*~5.1f");
    READINGS_row<&reading::load>(pd, d, 7, "Load (%):", "*~5.1f");
    READINGS_row<&reading::time_left>(pd, d, 8, "Time left (min):", "*~5.1f");
    if (d.no_comms(STATUS_ROW, pd->status.have_comms)) return;
    READINGS_words(d, d.alarm(), STATUS_ROW, READINGS_WIDTH, pd->status.flags, NET_BESTUPS_FLAGS);
}

constexpr auto STORES =
    READINGS_stores<BESTUPS_prv_data>(MSG_BESTUPS_AVERAGE, MSG_BESTUPS_INSTANT, MSG_BESTUPS_STATUS);
constexpr INSTDISP_kind<BESTUPS_prv_data> KIND{
    .cols = READINGS_WIDTH, .rows = 13, .stores = STORES, .draw = draw};

}  // namespace

INSTDISP_BINDINGS(BESTUPS, bestups, KIND)
