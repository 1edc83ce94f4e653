// The body of the displays that a message brings up instead of an announcement: at most one of its kind. A
// kind is a private record (MATCHDISP_head and what it shows), an INSTDISP_kind for window, messages, screen,
// keys and menu, and what makes and ends it:
//
//   constexpr NETMSG_type MADE_BY[] = {MSG_FOO_STATUS, MSG_FOO_SCANNING};
//   constexpr MATCHDISP_kind<FOO_prv_data> KIND{
//       .body = {.cols = 31, .rows = 4, .stores = STORES, .draw = draw},
//       .display_name = "Foo",
//       .made_by = MADE_BY,
//       .is_over = MATCHDISP_source_left<FOO_prv_data>};
//   const DISPLAY_DECL DDCL_FOO = MATCHDISP_decl<KIND>();
//
// The head's `name` is the source of the message that made it: stores take that source's messages only, and
// commands go to it. A kind that listens to several sources says `.any_source` in its body. `start` is called
// with uid 0: the display has none yet.
#pragma once

#include <algorithm>
#include <cstdlib>

#include "cursclient/kit/instdisp.h"

struct MATCHDISP_head : INSTDISP_head {
    DWORD uid;  // 0 before its first message
};

template <class R>
struct MATCHDISP_kind {
    INSTDISP_kind<R> body;         // cols 0: no window; the entry in the main menu opens the display's menu
    const char* display_name;      // title and text in the main menu
    const char* ident = nullptr;   // of the window, to save its place; null: never saved
    char id_ch = 0;                // hot key, 0 for none
    char (*id_ch_of)() = nullptr;  // takes the place of `id_ch`: by the settings
    std::span<const NETMSG_type> made_by;
    // Asked after the display has seen the message; TRUE removes it. Null: never removed.
    bool (*is_over)(R* pd, const VESKMSG_proc_msg* pm) = nullptr;
};

// The end of what one source feeds.
template <class R>
[[nodiscard]] bool MATCHDISP_source_left(R* pd, const VESKMSG_proc_msg* pm) {
    return pm->msg->msg == MSG_NOTIFY_CLIENT_TERMINATE && INSTDISP_is_own(pd, pm);
}

// ---- the steps that need no kind

struct MATCHDISP_parts {
    const char* ident;
    int cols, rows;  // of the window; cols 0: none
    char id_ch;
    MAINMENU_selected_callback chosen;  // without a window; gets the private record
};
// Fills the head and makes window and menu entry. FALSE: the caller closes.
[[nodiscard]] bool MATCHDISP_open(MATCHDISP_head* pd, const char* source, const char* display_name,
                                  const MATCHDISP_parts& parts);
// FALSE for the record of a display that an instrument of that type announced: such a kind shows nothing.
[[nodiscard]] bool MATCHDISP_is_made(const MATCHDISP_head* pd);

// ---- the callbacks; `kind` is a static MATCHDISP_kind<R>

// The one display of a kind, or null.
template <const auto& kind>
inline void* MATCHDISP_active = nullptr;

template <const auto& kind, class R>
void MATCHDISP_cleanup(void* prv_data) {
    if (!MATCHDISP_is_made(static_cast<R*>(prv_data))) return;
    INSTDISP_cleanup(static_cast<R*>(prv_data), kind.body);
    MATCHDISP_active<kind> = nullptr;
}

template <const auto& kind, class R>
void MATCHDISP_update(void* prv_data, DISPLAY_common_params*, void*) {
    INSTDISP_update(static_cast<R*>(prv_data), kind.body);
}

template <const auto& kind, class R>
void MATCHDISP_msg_proc(void* prv_data, DISPLAY_common_params* cps, DISPLAY_msg_params* mp, void*) {
    R* pd = static_cast<R*>(prv_data);
    if (!MATCHDISP_is_made(pd)) return;
    pd->uid = cps->uid;
    INSTDISP_msg_proc(pd, kind.body, cps, mp->pm);
}

template <const auto& kind, class R>
BOOL MATCHDISP_keypress(void* prv_data, DISPLAY_common_params* cps, DISPLAY_keypress* kp, void*) {
    return INSTDISP_keypress(static_cast<R*>(prv_data), kind.body, cps->uid, kp->key);
}

// A new record, or null. The registry frees it.
template <const auto& kind, class R>
[[nodiscard]] R* MATCHDISP_make(const VESKMSG_proc_msg* pm) {
    R* pd = static_cast<R*>(std::calloc(1, sizeof(R)));
    if (pd == nullptr) return nullptr;
    const auto open_menu = [](void* p) {
        INSTDISP_open_menu(static_cast<R*>(p), kind.body, static_cast<R*>(p)->uid);
    };
    INSTDISP_set_defaults(pd, kind.body);
    const MATCHDISP_parts parts{kind.ident, kind.body.cols, kind.body.rows,
                                kind.id_ch_of != nullptr ? kind.id_ch_of() : kind.id_ch, open_menu};
    const bool works = MATCHDISP_open(pd, pm->src_name, kind.display_name, parts) &&
                       (kind.body.start == nullptr || kind.body.start(pd, 0));
    if (works) return pd;
    INSTDISP_cleanup(pd, kind.body);
    std::free(pd);
    return nullptr;
}

// Without a record: makes one when none lives and the message is one that does. With one: null removes it.
template <const auto& kind, class R>
void* MATCHDISP_match(void* prv_data, DISPLAY_common_params*, DISPLAY_msg_params* mp, void*) {
    if (prv_data == nullptr) {
        const bool makes = std::ranges::count(kind.made_by, mp->pm->msg->msg) != 0;
        if (!makes || MATCHDISP_active<kind> != nullptr) return nullptr;
        return MATCHDISP_active<kind> = MATCHDISP_make<kind, R>(mp->pm);
    }
    R* pd = static_cast<R*>(prv_data);
    const bool is_over = MATCHDISP_is_made(pd) && kind.is_over != nullptr && kind.is_over(pd, mp->pm);
    return is_over ? nullptr : prv_data;
}

template <const auto& kind, class R>
[[nodiscard]] constexpr DISPLAY_DECL MATCHDISP_decl_of(const MATCHDISP_kind<R>& /*its type*/) {
    static_assert(std::is_trivially_copyable_v<R>);
    const bool has_keys = kind.body.cols != 0 && (kind.body.key != nullptr || !kind.body.menu.empty());
    return {.sz_private = sizeof(R),
            .cb_init = nullptr,
            .cb_cleanup = MATCHDISP_cleanup<kind, R>,
            .cb_update = kind.body.draw != nullptr ? MATCHDISP_update<kind, R> : nullptr,
            .cb_msg_proc = MATCHDISP_msg_proc<kind, R>,
            .cb_keypress = has_keys ? MATCHDISP_keypress<kind, R> : nullptr,
            .cb_match = MATCHDISP_match<kind, R>};
}
// The declaration of such a kind.
template <const auto& kind>
[[nodiscard]] constexpr DISPLAY_DECL MATCHDISP_decl() {
    return MATCHDISP_decl_of<kind>(kind);
}
