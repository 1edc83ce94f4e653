// The table itself, made from the list.
#include "simstation/kinds.h"

#include <algorithm>

namespace {

constexpr SIM_kind g_kinds[] = {
#define SIM_KIND_ROW(type, name, display_name, id_ch, tags, on_demand) \
    {#type, name, display_name, id_ch, tags, on_demand, &SIM_DCL_##type},
    SIM_KIND_LIST(SIM_KIND_ROW)
#undef SIM_KIND_ROW
};

}  // namespace

std::span<const SIM_kind> SIM_kinds() {
    return g_kinds;
}

const SIM_kind* SIM_kind_by_type(std::string_view type) {
    const auto found = std::find_if(std::begin(g_kinds), std::end(g_kinds),
                                    [&](const SIM_kind& kind) { return type == kind.type; });
    return found != std::end(g_kinds) ? &*found : nullptr;
}
