// The three-wavelength absorption photometer with one spot: a column for each colour, and the change of its
// filter.
#include "cursclient/kit/psap_common.h"

namespace {

using PSAP3_prv_data =
    PSAP_record<NET_PSAP3_Avg, NET_PSAP3_Instant, NET_PSAP3_FilterStatus, NET_PSAP3_Status>;

constexpr int COLORS[] = {18, 31, 46};  // columns of blue, green and red

void draw(PSAP3_prv_data* pd, const CANVAS& d) {
    static constexpr const char* HEADINGS[] = {" Blue", "Green", "  Red"};
    const NET_PSAP3_Instant& in = pd->instant;
    for (int i = 0; i < 3; ++i)
        d.text(1, COLORS[i], HEADINGS[i]);
    const auto row = [&](int y, const char* label, SFMT_altformat<double> format, auto value) {
        d.across(y, label, COLORS, format, value);
    };
    row(2, "Bap (1/Mm):", "*~4.2f", [&](int i) { return UNIT_on_screen(UNIT_per_m, in.bap[i]); });
    row(3, "Bap(I) (1/Mm):", "*~4.2f", [&](int i) { return UNIT_on_screen(UNIT_per_m, in.bap_I[i]); });
    row(4, "Transmittance:", "   *~1.3f", [&](int i) { return in.tr[i]; });
    row(5, "I_sample:", " *~10.0f", [&](int i) { return in.I_sample[i]; });
    row(6, "I_reference:", " *~10.0f", [&](int i) { return in.I_reference[i]; });
    row(7, "I_sam rsd:", "   *~1.6f", [&](int i) { return in.I_sam_rsd[i]; });
    row(8, "I_ref rsd:", "   *~1.6f", [&](int i) { return in.I_ref_rsd[i]; });
    row(9, "I_normalized:", "  *~2.6f", [&](int i) { return in.I[i]; });
    row(10, "dI:", "  *~2.6f", [&](int i) { return in.dI[i]; });
    d.field(11, 1, "Flow (slpm):", COLORS[0], "  *~2.2f", in.Q);
    PSAP_draw_status(pd, d);
}

constexpr auto STORES = PSAP_stores<PSAP3_prv_data>(MSG_PSAP3_AVERAGE, MSG_PSAP3_INSTANT,
                                                    MSG_PSAP3_FILTERSTATUS, MSG_PSAP3_STATUS);
constexpr INSTDISP_kind<PSAP3_prv_data> KIND{.cols = 58,
                                             .rows = 14,
                                             .stores = STORES,
                                             .draw = draw,
                                             .menu = PSAP_MENU<PSAP3_prv_data, MSG_PSAP3_SETFILTERSATUS>};

}  // namespace

INSTDISP_BINDINGS(PSAP3, psap3, KIND)
