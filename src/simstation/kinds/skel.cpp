// The instrument that does nothing: the pattern of all others, and the far side of the skeleton display. It
// is announced, its logging can be switched, and that is all.
#include "simstation/kinds.h"

namespace {

struct skel {
    void tick(SIM_instrument&) {}
};

}  // namespace

constinit const SIM_decl SIM_DCL_inst_skel = SIM_decl_of<skel>();
