// The one-wavelength absorption photometer: one column of values, and the change of its filter.
#include "cursclient/kit/psap_common.h"

namespace {

using PSAP_prv_data = PSAP_record<NET_PSAP_Avg, NET_PSAP_Instant, NET_PSAP_FilterStatus, NET_PSAP_Status>;

void draw(PSAP_prv_data* pd, const CANVAS& d) {
    const NET_PSAP_Instant& in = pd->instant;
    d.put(1, 1, "Bap (1/Mm):    *~3.1f", UNIT_on_screen(UNIT_per_m, in.bap));
    d.put(2, 1, "Flow (slpm):    *~2.2f", in.Q_slpm);
    d.put(3, 1, "Transmittance:  *~2.3f", in.tr);
    d.put(4, 1, "Tr correction:  *~2.3f", in.trc);
    d.put(5, 1, "I Sample:    %10d", in.I_sample);
    d.put(6, 1, "I Reference: %10d", in.I_reference);
    d.put(7, 1, "I sam rsd:       *~1.6f", in.smoothed_I_sam_rsd);
    d.put(8, 1, "I ref rsd:       *~1.6f", in.smoothed_I_ref_rsd);
    d.put(9, 1, "I Normalized:   *~2.5f", in.I);
    d.put(10, 1, "dI:             *~2.5f", in.dI);
    d.put(11, 1, "Bap(I) (1/Mm): *~3.2f", UNIT_on_screen(UNIT_per_m, in.bap_I));
    PSAP_draw_status(pd, d);
}

constexpr auto STORES =
    PSAP_stores<PSAP_prv_data>(MSG_PSAP_AVERAGE, MSG_PSAP_INSTANT, MSG_PSAP_FILTERSTATUS, MSG_PSAP_STATUS);
constexpr INSTDISP_kind<PSAP_prv_data> KIND{.cols = 28,
                                            .rows = 14,
                                            .stores = STORES,
                                            .draw = draw,
                                            .menu = PSAP_MENU<PSAP_prv_data, MSG_PSAP_SETFILTERSATUS>};

}  // namespace

INSTDISP_BINDINGS(PSAP, psap, KIND)
