// The skeleton: an instrument display with nothing of its own. Copy it to begin a new kind.
#include "cursclient/kit/instdisp.h"

namespace {

struct SKEL_prv_data : INSTDISP_head {};

constexpr INSTDISP_kind<SKEL_prv_data> KIND{.cols = 30, .rows = 6, .stores = {}, .draw = nullptr};

}  // namespace

INSTDISP_BINDINGS(SKEL, inst_skel, KIND)
