// The body of every instrument display. A kind is a private record (INSTDISP_head and what the instrument
// sends), one INSTDISP_kind that says what is its own, and one line INSTDISP_BINDINGS that gives its
// callbacks their names:
//
//   struct FOO_prv_data : INSTDISP_head { NET_FOO_Avg avg; NET_FOO_Status status; };
//   using store = INSTDISP_store<FOO_prv_data>;
//   constexpr store STORES[] = {store::into<&FOO_prv_data::avg>(MSG_FOO_AVERAGE),
//                               store::into<&FOO_prv_data::status>(MSG_FOO_STATUS)};
//   void draw(FOO_prv_data* pd, const CANVAS& d) {
//       d.put(1, 1, "Last Average: *~5.1f", pd->avg.N);
//       d.no_comms(2, pd->status.have_comms);
//   }
//   constexpr INSTDISP_kind<FOO_prv_data> KIND{.cols = 31, .rows = 4, .stores = STORES, .draw = draw};
//   ...
//   INSTDISP_BINDINGS(FOO, foo, KIND)
//
// plus the kind's word in kinds.h. The private record is zero-filled; then every stored record
// starts with doubles missing, times -1 and the rest zero; then `reset` may say otherwise.
#pragma once

#include <cstring>
#include <span>
#include <string>
#include <type_traits>
#include <utility>

#include "cursclient/displays_generated.h"
#include "cursclient/kit/canvas.h"
#include "cursclient/kit/command.h"
#include "cursclient/kit/insthead.h"

// One message of the instrument and the member of the private record that keeps its payload.
template <class R>
struct INSTDISP_store {
    NETMSG_type msg;
    const NETDSD_entry* dsd;  // of the member; another record is never copied
    void* (*member)(R* pd);
    void (*stored)(R* pd, FTIME curtime);  // called after a payload was copied, or null

    template <auto Member>
    [[nodiscard]] static constexpr INSTDISP_store into(NETMSG_type msg,
                                                       void (*stored)(R* pd, FTIME curtime) = nullptr) {
        using record = std::remove_cvref_t<decltype(std::declval<R&>().*Member)>;
        return {msg, NETDSD_of<record>(), [](R* pd) -> void* { return &(pd->*Member); }, stored};
    }
};

// One button of the menu, below "1 Hide window".
template <class R>
struct INSTDISP_menu_row {
    int hot_key;
    const char* label = nullptr;       // null: label_of says it
    void (*action)(R* pd, DWORD uid);  // the menu is closed, the display still there
    COMMAND_guard guard = COMMAND_FREE;
    std::string (*label_of)(const R* pd) = nullptr;  // by the present state; "" leaves the button out
};

// The action of a row that is static, as the rows of menus are.
template <class R>
[[nodiscard]] COMMAND_action INSTDISP_action_of(const INSTDISP_menu_row<R>& row) {
    const auto call = [](void* pd, DWORD uid, const void* context) {
        static_cast<const INSTDISP_menu_row<R>*>(context)->action(static_cast<R*>(pd), uid);
    };
    return {call, &row};
}

template <class R>
struct INSTDISP_kind {
    int cols, rows;                             // of the window
    std::span<const INSTDISP_store<R>> stores;  // each payload, copied whole when it is the instrument's own
    void (*draw)(R* pd, const CANVAS& d);       // what is inside the frame

    void (*reset)(R* pd) = nullptr;                    // start values other than the usual ones
    bool (*key)(R* pd, DWORD uid, int key) = nullptr;  // TRUE when used; after the standard keys and "M"
    std::span<const INSTDISP_menu_row<R>> menu = {};
    bool (*start)(R* pd, DWORD uid) = nullptr;  // makes what the kind has besides; FALSE: no display
    void (*stop)(R* pd) = nullptr;              // releases it, also after a start that failed half way
    void (*message)(R* pd, const VESKMSG_proc_msg* pm) = nullptr;  // every message, whoever sent it
    void (*layout)(R* pd) = nullptr;                       // sets the window's size before it is drawn
    WINS_window* (*second_window)(const R* pd) = nullptr;  // another window whose keys are the display's
    const char* title = nullptr;                           // in place of the display name
    bool ignores_logging = false;                          // MSG_LOG_INFO means nothing to it
    bool any_source = false;                               // stores what anybody sends
};

// ---- the steps that need no more than the head

// Makes window, status entry and menu entry from the announcement. FALSE: the caller closes.
[[nodiscard]] bool INSTDISP_open(INSTDISP_head* pd, const DISPLAY_match_params* mps, int cols, int rows);
// Releases whatever exists of them.
void INSTDISP_close(INSTDISP_head* pd);
[[nodiscard]] bool INSTDISP_is_own(const INSTDISP_head* pd, const VESKMSG_proc_msg* pm);
void INSTDISP_take_log_info(INSTDISP_head* pd, const VESKMSG_proc_msg* pm);
// The menu with its title and, if there is a window, "1 Hide window".
[[nodiscard]] CURSDIALOG_type* INSTDISP_menu(const INSTDISP_head* pd, const char* title, DWORD uid);

// ---- what displays share beyond that

// Time of day, UTC, as "12:34:56": whole seconds rounded down, "--:--:--" for a time that is none.
struct INSTDISP_clock {
    char text[9];
    [[nodiscard]] const char* c_str() const { return text; }
};
[[nodiscard]] INSTDISP_clock INSTDISP_time(FTIME t);

// The data set that a kind with a member `int display_mode` shows.
enum INSTDISP_mode { INSTDISP_INSTANTANEOUS, INSTDISP_RUNNING_AVERAGE, INSTDISP_LAST_AVERAGE };
[[nodiscard]] int INSTDISP_next_mode(int mode);  // 0, 1, 2, 0; any other number becomes 0
// "D Displaying instantanous data" and so on, for the key 'D'.
[[nodiscard]] std::string INSTDISP_mode_label(char hot_key, int mode);
// The one of three like values that the mode says: latest ones, running average, last average.
template <class T>
[[nodiscard]] const T& INSTDISP_by_mode(int mode, const T& latest, const T& running, const T& average) {
    if (mode <= INSTDISP_INSTANTANEOUS) return latest;
    return mode == INSTDISP_RUNNING_AVERAGE ? running : average;
}
template <class R>
void INSTDISP_go_to_next_mode(R* pd, DWORD /*uid*/) {
    pd->display_mode = INSTDISP_next_mode(pd->display_mode);
}
// The menu's row of the mode, and the key "D" of the kinds that have one.
template <class R, char KEY>
inline constexpr INSTDISP_menu_row<R> INSTDISP_MODE_ROW{
    .hot_key = KEY, .action = INSTDISP_go_to_next_mode<R>, .label_of = [](const R* pd) {
        return INSTDISP_mode_label(KEY, pd->display_mode);
    }};
template <class R>
[[nodiscard]] bool INSTDISP_mode_key(R* pd, DWORD uid, int key) {
    if (key != 'D' && key != 'd') return false;
    INSTDISP_go_to_next_mode(pd, uid);
    return true;
}

// ---- the callbacks

template <class R>
void INSTDISP_cleanup(R* pd, const INSTDISP_kind<R>& kind) {
    if (kind.stop != nullptr) kind.stop(pd);
    INSTDISP_close(pd);
}

template <class R>
void INSTDISP_set_defaults(R* pd, const INSTDISP_kind<R>& kind) {
    for (const INSTDISP_store<R>& s : kind.stores)
        NETDSD_set_defaults(s.dsd, s.member(pd));
    if (kind.reset != nullptr) kind.reset(pd);
}

// A display that cannot be made whole is taken down again: its identity must not stay taken.
template <class R>
[[nodiscard]] bool INSTDISP_init(R* pd, const INSTDISP_kind<R>& kind, const DISPLAY_common_params* cps,
                                 const DISPLAY_match_params* mps) {
    INSTDISP_set_defaults(pd, kind);
    if (!INSTDISP_open(pd, mps, kind.cols, kind.rows)) {
        INSTDISP_close(pd);
        return false;
    }
    if (kind.start == nullptr || kind.start(pd, cps->uid)) return true;
    INSTDISP_cleanup(pd, kind);
    return false;
}

template <class R>
[[nodiscard]] WINS_window* INSTDISP_second_window(const R* pd, const INSTDISP_kind<R>& kind) {
    return kind.second_window != nullptr ? kind.second_window(pd) : nullptr;
}

// Most windows of a station are hidden most of the time: what nobody sees is not drawn.
template <class R>
void INSTDISP_update(R* pd, const INSTDISP_kind<R>& kind) {
    if (pd->win == nullptr) return;
    const WINS_window* second = INSTDISP_second_window(pd, kind);
    if (!pd->win->visible && (second == nullptr || !second->visible)) return;
    if (kind.layout != nullptr) kind.layout(pd);
    WINS_draw_frame(pd->win, kind.title != nullptr ? kind.title : pd->display_name);
    if (kind.draw != nullptr) kind.draw(pd, CANVAS(pd->win, &pd->sbfr));
}

template <class R>
void INSTDISP_msg_proc(R* pd, const INSTDISP_kind<R>& kind, const DISPLAY_common_params* cps,
                       const VESKMSG_proc_msg* pm) {
    if (kind.message != nullptr) kind.message(pd, pm);
    if (!kind.any_source && !INSTDISP_is_own(pd, pm)) return;
    if (!kind.ignores_logging) INSTDISP_take_log_info(pd, pm);
    for (const INSTDISP_store<R>& s : kind.stores) {
        if (s.msg != pm->msg->msg || s.dsd != pm->dsd || pm->pds == nullptr) continue;
        std::memcpy(s.member(pd), pm->pds, s.dsd->total_size);
        if (s.stored != nullptr) s.stored(pd, cps->curtime);
    }
}

template <class R>
void INSTDISP_open_menu(R* pd, const INSTDISP_kind<R>& kind, DWORD uid) {
    if (pd == nullptr || (pd->win == nullptr && kind.cols != 0)) return;
    CURSDIALOG_type* dlg = INSTDISP_menu(pd, kind.title != nullptr ? kind.title : pd->display_name, uid);
    int y = pd->win != nullptr ? 2 : 1;
    for (const INSTDISP_menu_row<R>& row : kind.menu) {
        const std::string label = row.label_of != nullptr ? row.label_of(pd) : row.label;
        if (label.empty()) continue;
        COMMAND_button(dlg, {1, y++, 0, CURSDIALOG_STYLE_LIST}, row.hot_key, label.c_str(), uid,
                       INSTDISP_action_of(row), row.guard);
    }
}

template <class R>
[[nodiscard]] bool INSTDISP_keypress(R* pd, const INSTDISP_kind<R>& kind, DWORD uid, int key) {
    if (pd->win == nullptr) return false;
    WINS_window* second = INSTDISP_second_window(pd, kind);
    if (!pd->win->focused && (second == nullptr || !second->focused)) return false;
    if (WINS_default_keyhandler(pd->win, key)) return true;
    if (second != nullptr && WINS_default_keyhandler(second, key)) return true;
    if (key == 'M' || key == 'm') {
        INSTDISP_open_menu(pd, kind, uid);
        return true;
    }
    return kind.key != nullptr && kind.key(pd, uid, key);
}

// The callbacks of one body under their names, for records named PREFIX_prv_data.
#define INSTDISP_FUNCTIONS(PREFIX, kind)                                                          \
    static_assert(std::is_trivially_copyable_v<PREFIX##_prv_data>);                               \
    BOOL PREFIX##_init(void* pd, DISPLAY_common_params* cps, DISPLAY_match_params* mps, void*) {  \
        return INSTDISP_init(static_cast<PREFIX##_prv_data*>(pd), kind, cps, mps);                \
    }                                                                                             \
    void PREFIX##_cleanup(void* pd) {                                                             \
        INSTDISP_cleanup(static_cast<PREFIX##_prv_data*>(pd), kind);                              \
    }                                                                                             \
    void PREFIX##_update(void* pd, DISPLAY_common_params*, void*) {                               \
        INSTDISP_update(static_cast<PREFIX##_prv_data*>(pd), kind);                               \
    }                                                                                             \
    void PREFIX##_msg_proc(void* pd, DISPLAY_common_params* cps, DISPLAY_msg_params* mp, void*) { \
        INSTDISP_msg_proc(static_cast<PREFIX##_prv_data*>(pd), kind, cps, mp->pm);                \
    }                                                                                             \
    INSTDISP_KEYS(PREFIX##_prv_data, kind, PREFIX##_keypress, PREFIX##_open_menu)

// The keys and the menu alone, for a kind that shares the rest with another.
#define INSTDISP_KEYS(record, kind, keypress, open_menu)                               \
    void open_menu(void* pd, DWORD uid) {                                              \
        INSTDISP_open_menu(static_cast<record*>(pd), kind, uid);                       \
    }                                                                                  \
    BOOL keypress(void* pd, DISPLAY_common_params* cps, DISPLAY_keypress* kp, void*) { \
        return INSTDISP_keypress(static_cast<record*>(pd), kind, cps->uid, kp->key);   \
    }

// The declaration of a match type from such callbacks.
#define INSTDISP_DECLARE(PREFIX, match_type, keypress, match)          \
    extern const DISPLAY_DECL DDCL_##match_type;                       \
    const DISPLAY_DECL DDCL_##match_type = {sizeof(PREFIX##_prv_data), \
                                            PREFIX##_init,             \
                                            PREFIX##_cleanup,          \
                                            PREFIX##_update,           \
                                            PREFIX##_msg_proc,         \
                                            keypress,                  \
                                            match};

// Both, for the ordinary kind.
#define INSTDISP_BINDINGS(PREFIX, match_type, kind) \
    INSTDISP_FUNCTIONS(PREFIX, kind)                \
    INSTDISP_DECLARE(PREFIX, match_type, PREFIX##_keypress, nullptr)
