// The Grimm optical particle counter: 31 sizes, and the concentration of the condensation counter beside it.
#include "cursclient/kit/sizer.h"
#include "libvesk/messages/records/sizers.h"

namespace {

constexpr SIZER_graph GRAPHS[] = {{.caption = "cum N(D)", .y_format = "*~5.1f"},
                                  {.caption = "dN", .y_format = "*~5.1f"}};
constexpr SIZER_column COLUMNS[] = {
    {.col = 1, .title = "    D", .units = " (um)", .format = "*~2.2f"},
    {.col = 9, .title = "        dN", .units = "   (cm^-3)", .format = "   *~5.1f"},
    {.col = 19, .title = "  cum N(D)", .units = "   (cm^-3)", .format = "   *~5.1f"},
};

struct GRIMM_prv_data : SIZER_optical<NET_GRIMM_BINS, NET_GRIMM_Avg, NET_GRIMM_Instant, NET_GRIMM_Status> {
    NET_GRIMM_Info info;
    NET_COMMON_CNC_Instant cin;  // of the companion counter

    static constexpr SIZER_row ROW{.cols = 54,
                                   .rows = 22,
                                   .bar_col = 8,
                                   .labels = 4,
                                   .x_format = "*~.1f",
                                   .graphs = GRAPHS,
                                   .columns = COLUMNS};

    void housekeeping(const CANVAS& d) const {
        d.text_centered(1, "Housekeeping");
        d.put(2, 1, "Conc (cm-3):  *~5.1f", cin.in);
        d.put(3, 1, "Flow (lpm):      *~2.3f", instant.Q);
        d.put(4, 1, "Error code:    %4d", instant.flags);
        d.put(5, 1, "Location:      %4d", instant.loc);
        d.put(6, 1, "GF:            %4d", instant.gf);
        d.put(7, 1, "Battery:       %4d", instant.batt);
        d.put(8, 1, "Motor current: %4d", instant.I_motor);
        d.put(9, 1, "Zero filter:   %4d", instant.zero_filter);
        d.put(10, 1, "Calibration:   %4d", instant.cal);
        for (int i = 0; i < 3; ++i)
            d.put(11 + i, 1, "Sens %d:        %4d", i + 1, instant.sens[i]);
    }
};

void reset(GRIMM_prv_data* pd) {
    pd->clear();
    NET_GRIMM_Instant& in = pd->instant;
    in.loc = in.gf = in.batt = in.I_motor = in.zero_filter = in.cal = -1;
    in.sens[0] = in.sens[1] = in.sens[2] = -1;
}

using store = INSTDISP_store<GRIMM_prv_data>;
constexpr store STORES[] = {
    store::into<&GRIMM_prv_data::info>(MSG_GRIMM_INFO, SIZER_info_stored),
    store::into<&GRIMM_prv_data::instant>(MSG_GRIMM_INSTANT, SIZER_instant_stored),
    store::into<&GRIMM_prv_data::avg>(MSG_GRIMM_AVERAGE, SIZER_average_stored),
    store::into<&GRIMM_prv_data::status>(MSG_GRIMM_STATUS),
    store::into<&GRIMM_prv_data::cin>(MSG_COMMON_CNC_INSTANT),
};
constexpr auto KIND =
    SIZER_kind(STORES, reset, SIZER_optical_key<GRIMM_prv_data>, SIZER_OPTICAL_MENU<GRIMM_prv_data>);

}  // namespace

INSTDISP_BINDINGS(GRIMM, grimm, KIND)
