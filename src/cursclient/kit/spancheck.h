// The span check of every nephelometer kind: the operator starts it for one or several instruments from any
// of them, the station runs it, and each display shows what its own instrument reports. A kind brings its
// record and its names; all else is here.
//
//   struct FOO_prv_data : SPANCHECK_head { NET_FOO_Avg avg; ... };
//   SPANCHECK_BINDINGS(FOO)
//   constexpr auto STORES = SPANCHECK_stores<FOO_prv_data>(store::into<&FOO_prv_data::avg>(MSG_FOO_AVERAGE));
//   constexpr auto KIND = SPANCHECK_kind<FOO_prv_data, MSG_LOG_AVG_BYPASS>({.cols = ..., .stores = STORES,
//   ...});
#pragma once

#include <array>

#include "cursclient/kit/instdisp.h"
#include "libvesk/messages/records/common_neph.h"

// The base of every nephelometer display's private record: a span check reaches the displays of
// other kinds through it.
struct SPANCHECK_head : INSTDISP_head {
    WINS_window* scwin;                           // phase, instructions and results
    NET_COMMON_Neph_SpancheckPhase sc_phase;      // as last reported
    NET_COMMON_Neph_SpancheckResults sc_results;  // of the last span check
    FTIME sc_last_time;                           // when they arrived, -1 for never
    BOOL is_bypassed;                             // the station would not measure what it samples: no start
    LL_NODE* list_node;                           // its own in g_running_nephs
};

// Uids (DWORD) of all living nephelometer displays, in order of their creation.
extern LL_TYPE g_running_nephs;
// Lengths of the phases, as the station last told them to the display of the common state.
extern NET_COMMON_Neph_SpancheckDuration g_spancheck_duration;

// ---- the display

// The second window and the place in g_running_nephs. FALSE: the caller closes.
[[nodiscard]] bool SPANCHECK_open(SPANCHECK_head* pd, DWORD uid);
void SPANCHECK_close(SPANCHECK_head* pd);
// Keeps the state that `blocked_by` (MSG_LOG_AVG_BYPASS or MSG_LOG_AVG_CONTAMINATION) tells: from any source
// but the instrument's own and nobody.
void SPANCHECK_take_bypass(SPANCHECK_head* pd, const VESKMSG_proc_msg* pm, NETMSG_type blocked_by);
[[nodiscard]] bool SPANCHECK_is_running(const SPANCHECK_head* pd);
// Enter closes the focused window of a span check that is over. TRUE when used.
[[nodiscard]] bool SPANCHECK_key(SPANCHECK_head* pd, int key);

// Name of a phase, "" for a number that is none.
[[nodiscard]] const char* SPANCHECK_phase_name(std::int32_t phase);
[[nodiscard]] const char* SPANCHECK_short_phase_name(std::int32_t phase);
// Redraws the second window.
void SPANCHECK_update(SPANCHECK_head* pd);
// The head line of a table of results, and the two lines of one instrument on `row` and the next.
void SPANCHECK_draw_results_head(const CANVAS& d, int row);
void SPANCHECK_draw_results(const CANVAS& d, int row, const NET_COMMON_Neph_SpancheckResults& results);

// ---- what the operator does, once the password was given

// Asks for durations and instruments and starts, unless the station is bypassed.
void SPANCHECK_begin(SPANCHECK_head* pd, DWORD uid);
// Ends the span check of all nephelometers.
void SPANCHECK_abort();

// ---- what a kind is made of

template <class R, class... Store>
[[nodiscard]] constexpr std::array<INSTDISP_store<R>, sizeof...(Store) + 2> SPANCHECK_stores(Store... own) {
    using store = INSTDISP_store<R>;
    return {own..., store::template into<&R::sc_phase>(MSG_COMMON_NEPH_SPANCHECK_PHASE),
            store::template into<&R::sc_results>(MSG_COMMON_NEPH_SPANCHECK_RESULTS,
                                                 [](R* pd, FTIME now) { pd->sc_last_time = now; })};
}

// The kind with everything that its span check needs.
template <class R, NETMSG_type BLOCKED_BY>
[[nodiscard]] constexpr INSTDISP_kind<R> SPANCHECK_kind(INSTDISP_kind<R> kind) {
    kind.start = [](R* pd, DWORD uid) { return SPANCHECK_open(pd, uid); };
    kind.stop = [](R* pd) { SPANCHECK_close(pd); };
    kind.message = [](R* pd, const VESKMSG_proc_msg* pm) { SPANCHECK_take_bypass(pd, pm, BLOCKED_BY); };
    kind.second_window = [](const R* pd) { return pd->scwin; };
    return kind;
}

// Labels of the menu's rows, "" at times when a row is not offered.
[[nodiscard]] std::string SPANCHECK_label(bool offered, char hot_key, const char* text);
template <class R, char KEY>
[[nodiscard]] std::string SPANCHECK_begin_label(const R* pd) {
    return SPANCHECK_label(!SPANCHECK_is_running(pd), KEY, " Begin spancheck");
}
template <class R, char KEY>
[[nodiscard]] std::string SPANCHECK_abort_label(const R* pd) {
    return SPANCHECK_label(SPANCHECK_is_running(pd), KEY, " Abort spancheck");
}
// While a span check runs, and afterwards.
template <class R, char KEY>
[[nodiscard]] std::string SPANCHECK_show_running_label(const R* pd) {
    return SPANCHECK_label(SPANCHECK_is_running(pd), KEY, " Show spancheck window");
}
template <class R, char KEY>
[[nodiscard]] std::string SPANCHECK_show_results_label(const R* pd) {
    return SPANCHECK_label(!SPANCHECK_is_running(pd) && pd->sc_last_time != VESK_NO_TIME, KEY,
                           " Show spancheck window");
}

// The names of a kind: the actions of its menu, and the redraw of its second window. Before its tables.
#define SPANCHECK_BINDINGS(PREFIX)                                                 \
    void PREFIX##_sc_button_begin_passwd(PREFIX##_prv_data* pd, DWORD uid) {       \
        SPANCHECK_begin(pd, uid);                                                  \
    }                                                                              \
    void PREFIX##_sc_button_abort_passwd(PREFIX##_prv_data* /*pd*/, DWORD) {       \
        SPANCHECK_abort();                                                         \
    }                                                                              \
    void PREFIX##_button_show_sc_win_close(PREFIX##_prv_data* pd, DWORD /*uid*/) { \
        WINS_focus_window(pd->scwin);                                              \
    }                                                                              \
    void PREFIX##_update_spancheck(PREFIX##_prv_data* pd) {                        \
        SPANCHECK_update(pd);                                                      \
    }
