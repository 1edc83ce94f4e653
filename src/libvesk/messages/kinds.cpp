// Looking up a kind in the list.
#include "libvesk/messages/kinds.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr std::string_view OWN_WINDOW = "PERSISTENT_";

struct kind_row {
    std::string_view name;
    KINDS_known known;
};

#define KINDS_SHOWN(kind) {#kind, KINDS_WITH_DISPLAY},
#define KINDS_NOT_SHOWN(kind) {#kind, KINDS_WITHOUT_DISPLAY},
constexpr kind_row ROWS[] = {KINDS_LIST(KINDS_SHOWN, KINDS_NOT_SHOWN)};
#undef KINDS_SHOWN
#undef KINDS_NOT_SHOWN

}  // namespace

KINDS_known KINDS_find(std::string_view kind) {
    const auto* const row =
        std::find_if(std::begin(ROWS), std::end(ROWS), [=](const kind_row& r) { return r.name == kind; });
    const bool found = row != std::end(ROWS) && !kind.starts_with(OWN_WINDOW);
    return found ? row->known : KINDS_UNKNOWN;
}
