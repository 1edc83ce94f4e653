// The PMS Lasair optical particle counter: eight sizes, laser, manifold and analog inputs.
#include "cursclient/kit/sizer.h"
#include "libvesk/messages/records/sizers.h"

namespace {

constexpr SIZER_graph GRAPHS[] = {{.caption = "cum N(D)", .y_format = "*~6.1f"},
                                  {.caption = "dN", .y_format = "*~6.1f"}};
constexpr SIZER_column COLUMNS[] = {
    {.col = 1, .title = "     D", .units = "  (um)", .format = "*~3.2f"},
    {.col = 9, .title = "        dN", .units = "   (cm^-3)", .format = " *~7.1f"},
    {.col = 19, .title = "  cum N(D)", .units = "   (cm^-3)", .format = " *~7.1f"},
};

struct LASAIR_prv_data
    : SIZER_optical<NET_LASAIR_BINS, NET_LASAIR_Avg, NET_LASAIR_Instant, NET_LASAIR_Status> {
    NET_LASAIR_Info info;

    // All bins stand on the first page of the table; the second one is there, and empty.
    static constexpr SIZER_row ROW{.cols = 34,
                                   .rows = 22,
                                   .bar_col = 11,
                                   .bar_width = 2,
                                   .labels = 3,
                                   .x_format = "*~.2f",
                                   .graphs = GRAPHS,
                                   .columns = COLUMNS};

    void housekeeping(const CANVAS& d) const {
        d.text_centered(1, "Housekeeping");
        d.put(2, 1, "Total counts (cm-3): *7.1f", instant.N);
        d.put(3, 1, "Flow (lpm):              *3.3f", instant.Q);
        d.put(4, 1, "Laser voltage:            *2.3f", instant.V_laser);
        d.put(5, 1, "Manifold:            %7d", instant.manifold);
        d.put(6, 1, "Searching:             %s", instant.searching ? " TRUE" : "FALSE");
        for (int i = 0; i < 4; ++i)
            d.put(7 + i, 1, "Analog %d:                 *2.3f", i + 1, instant.analog[i]);
    }
};

void reset(LASAIR_prv_data* pd) {
    pd->clear();
    pd->instant.manifold = -1;
}

using store = INSTDISP_store<LASAIR_prv_data>;
constexpr store STORES[] = {
    store::into<&LASAIR_prv_data::info>(MSG_LASAIR_INFO, SIZER_info_stored),
    store::into<&LASAIR_prv_data::instant>(MSG_LASAIR_INSTANT, SIZER_instant_stored),
    store::into<&LASAIR_prv_data::avg>(MSG_LASAIR_AVERAGE, SIZER_average_stored),
    store::into<&LASAIR_prv_data::status>(MSG_LASAIR_STATUS),
};
constexpr auto KIND =
    SIZER_kind(STORES, reset, SIZER_optical_key<LASAIR_prv_data>, SIZER_OPTICAL_MENU<LASAIR_prv_data>);

}  // namespace

INSTDISP_BINDINGS(LASAIR, lasair, KIND)
