// The body of every window that exists without an instrument, from the start of the console to its end. A
// kind is a private record that begins with its window, one PERSISTENT_kind that says what is its own, and
// one line PERSISTENT_BINDINGS that gives its callbacks their names:
//
//   struct FOO_prv_data { WINS_window* win; ... };
//   constexpr PERSISTENT_kind<FOO_prv_data> KIND{.cols = 60, .rows = 12, .title = "Foo", .draw = draw};
//   ...
//   PERSISTENT_BINDINGS(FOO, KIND)
//
// plus the kind's word in displays_generated.h. The private record is zero-filled at first.
#pragma once

#include <type_traits>

#include "cursclient/displays_generated.h"
#include "cursclient/wins.h"

template <class R>
struct PERSISTENT_kind {
    int cols, rows;                      // of the window; 0 columns: as wide as the screen
    const char* title;                   // in its frame; null: `draw` draws the frame too
    void (*draw)(R* pd, FTIME curtime);  // what is inside the frame, while the window shows

    const char* ident = nullptr;     // of the window; null: its place is not saved
    bool (*start)(R* pd) = nullptr;  // makes what the kind has besides the window; FALSE: no display
    void (*stop)(R* pd) = nullptr;   // releases it, also after a start that failed half way
    void (*message)(R* pd, const VESKMSG_proc_msg* pm, FTIME curtime) = nullptr;
    bool (*any_key)(R* pd, int key) = nullptr;  // whatever has the focus, before all else; TRUE when used up
    bool (*key)(R* pd, int key) = nullptr;      // with the focus, after the window's own keys; TRUE when used
};

template <class R>
void PERSISTENT_cleanup(R* pd, const PERSISTENT_kind<R>& kind) {
    if (kind.stop != nullptr) kind.stop(pd);
    WINS_delete(pd->win);
    pd->win = nullptr;
}

template <class R>
[[nodiscard]] bool PERSISTENT_init(R* pd, const PERSISTENT_kind<R>& kind) {
    pd->win = WINS_create(kind.ident, kind.cols > 0 ? kind.cols : COLS, kind.rows);
    if (pd->win == nullptr) return false;
    if (kind.start == nullptr || kind.start(pd)) return true;
    PERSISTENT_cleanup(pd, kind);
    return false;
}

template <class R>
void PERSISTENT_update(R* pd, const PERSISTENT_kind<R>& kind, FTIME curtime) {
    if (!pd->win->visible || pd->win->win == nullptr) return;
    if (kind.title != nullptr) WINS_draw_frame(pd->win, kind.title);
    kind.draw(pd, curtime);
}

template <class R>
[[nodiscard]] bool PERSISTENT_keypress(R* pd, const PERSISTENT_kind<R>& kind, int key) {
    if (kind.any_key != nullptr && kind.any_key(pd, key)) return true;
    if (WINS_default_keyhandler(pd->win, key)) return true;
    return pd->win->focused && kind.key != nullptr && kind.key(pd, key);
}

// The callbacks under their names, for a record named PREFIX_prv_data, and the declaration of the kind.
#define PERSISTENT_BINDINGS(PREFIX, kind)                                                                 \
    static_assert(std::is_trivially_copyable_v<PREFIX##_prv_data>);                                       \
    BOOL PREFIX##_init(void* pd, DISPLAY_common_params*, DISPLAY_match_params*, void*) {                  \
        return PERSISTENT_init(static_cast<PREFIX##_prv_data*>(pd), kind);                                \
    }                                                                                                     \
    void PREFIX##_cleanup(void* pd) {                                                                     \
        PERSISTENT_cleanup(static_cast<PREFIX##_prv_data*>(pd), kind);                                    \
    }                                                                                                     \
    void PREFIX##_update(void* pd, DISPLAY_common_params* cps, void*) {                                   \
        PERSISTENT_update(static_cast<PREFIX##_prv_data*>(pd), kind, cps->curtime);                       \
    }                                                                                                     \
    void PREFIX##_msg_proc(void* pd, DISPLAY_common_params* cps, DISPLAY_msg_params* mp, void*) {         \
        kind.message(static_cast<PREFIX##_prv_data*>(pd), mp->pm, cps->curtime);                          \
    }                                                                                                     \
    BOOL PREFIX##_keypress(void* pd, DISPLAY_common_params*, DISPLAY_keypress* kp, void*) {               \
        return PERSISTENT_keypress(static_cast<PREFIX##_prv_data*>(pd), kind, kp->key);                   \
    }                                                                                                     \
    const DISPLAY_DECL DDCL_PERSISTENT_##PREFIX = {sizeof(PREFIX##_prv_data),                             \
                                                   PREFIX##_init,                                         \
                                                   PREFIX##_cleanup,                                      \
                                                   PREFIX##_update,                                       \
                                                   kind.message != nullptr ? PREFIX##_msg_proc : nullptr, \
                                                   PREFIX##_keypress,                                     \
                                                   nullptr};
