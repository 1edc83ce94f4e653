// The table of display kinds, made from the one list of kinds.
#include "cursclient/displays_generated.h"

#include <iterator>

namespace {

constexpr DISPLAY_DECL NO_UNIT{};

}  // namespace

#define DISPLAYS_ROW(kind, ...) {#kind, &DDCL_##kind},
#define DISPLAYS_EMPTY_ROW(kind, ...) {#kind, &NO_UNIT},
const DISPLAY_DEFN g_display_decls[] = {KINDS_LIST(DISPLAYS_ROW, DISPLAYS_EMPTY_ROW)};
const std::size_t g_n_display_decls = std::size(g_display_decls);
static_assert(std::size(g_display_decls) == 53);
