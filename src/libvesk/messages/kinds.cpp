// Looking up kinds in the list.
#include "libvesk/messages/kinds.h"

#include <algorithm>
#include <iterator>

namespace {

#define KINDS_SHOWN(kind, origin, families, purpose) {#kind, true, KINDS_##origin, families, purpose},
#define KINDS_NOT_SHOWN(kind, origin, families, purpose) {#kind, false, KINDS_##origin, families, purpose},
constexpr KINDS_row ROWS[] = {KINDS_LIST(KINDS_SHOWN, KINDS_NOT_SHOWN)};
#undef KINDS_SHOWN
#undef KINDS_NOT_SHOWN

}  // namespace

std::span<const KINDS_row> KINDS_all() {
    return ROWS;
}

const KINDS_row* KINDS_by_name(std::string_view name) {
    const auto* const row =
        std::find_if(std::begin(ROWS), std::end(ROWS), [=](const KINDS_row& r) { return r.name == name; });
    return row != std::end(ROWS) ? row : nullptr;
}

bool KINDS_has_message(const KINDS_row& kind, std::string_view message) {
    constexpr std::string_view PREFIX = "MSG_";
    if (!message.starts_with(PREFIX)) return false;
    message.remove_prefix(PREFIX.size());
    bool found = false;
    KINDS_for_each_family(kind, [&](std::string_view family) {
        found |= message.starts_with(family) && message.substr(family.size()).starts_with('_');
    });
    return found;
}

KINDS_known KINDS_find(std::string_view kind) {
    const KINDS_row* const row = KINDS_by_name(kind);
    if (row == nullptr || row->origin == KINDS_AT_START) return KINDS_UNKNOWN;
    return row->has_display ? KINDS_WITH_DISPLAY : KINDS_WITHOUT_DISPLAY;
}
