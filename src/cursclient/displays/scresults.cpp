// The results of one span check, of all nephelometers side by side: the window comes up with every result
// that arrives, until the operator closes it. It has no entry anywhere and sends nothing.
#include <cmath>
#include <cstring>
#include <type_traits>

#include "cursclient/displays_generated.h"
#include "cursclient/globals.h"
#include "cursclient/kit/spancheck.h"
#include "libvesk/support/util.h"
#include "libveskcurs/curskeys.h"

namespace {

constexpr int WIDTH = 77;
constexpr int HEIGHT = 16;
constexpr double SAME_CHECK = 30.0;  // seconds within which all results of one span check arrive

struct SCRESULTS_prv_data {
    WINS_window* win;
    SFMT_buffer sbfr;
    LL_TYPE results;  // of SCRESULTS_entry, by ascending name
};
static_assert(std::is_trivially_copyable_v<SCRESULTS_prv_data>);

struct SCRESULTS_entry {
    char name[32];  // source
    NET_COMMON_Neph_SpancheckResults results;
    FTIME time;  // of arrival
};

SCRESULTS_prv_data* record(void* prv_data) {
    return static_cast<SCRESULTS_prv_data*>(prv_data);
}

// `name` stands for the source's whole name: sources have no longer ones.
BOOL remove_dup(void* data, void* name) {
    return std::strcmp(static_cast<SCRESULTS_entry*>(data)->name, static_cast<const char*>(name)) == 0;
}

BOOL find_insert_point(void* data, void* name) {
    return std::strcmp(static_cast<SCRESULTS_entry*>(data)->name, static_cast<const char*>(name)) < 0;
}

void handle_results(SCRESULTS_prv_data* pd, FTIME tnow, const char* name,
                    const NET_COMMON_Neph_SpancheckResults& results) {
    SCRESULTS_entry entry{.name = {}, .results = results, .time = tnow};
    UTIL_strcpynt(entry.name, name);
    const auto* first = LL_data<SCRESULTS_entry>(pd->results.head);
    if (first != nullptr && std::fabs(first->time - tnow) >= SAME_CHECK)
        LL_clear(&pd->results);
    else
        LL_selective_delete(&pd->results, remove_dup, entry.name);
    LL_NODE* next = LL_transverse_until_forwards(&pd->results, find_insert_point, entry.name);
    static_cast<void>(LL_insert_before(&pd->results, next, &entry, sizeof entry));
}

BOOL SCRESULTS_init(void* prv_data, DISPLAY_common_params*, DISPLAY_match_params*, void*) {
    SCRESULTS_prv_data* pd = record(prv_data);
    SFMT_init_buffer(&pd->sbfr);
    LL_init(&pd->results);
    pd->win = WINS_create("SCRESULTS", WIDTH, HEIGHT);
    if (pd->win == nullptr) return FALSE;
    WINS_hide_window(pd->win);  // wherever it was when the layout was saved
    return TRUE;
}

void SCRESULTS_cleanup(void* prv_data) {
    SCRESULTS_prv_data* pd = record(prv_data);
    SFMT_destroy_buffer(&pd->sbfr);
    if (pd->win != nullptr) WINS_delete(pd->win);
    pd->win = nullptr;
    LL_clear(&pd->results);
}

void SCRESULTS_msg_proc(void* prv_data, DISPLAY_common_params* cps, DISPLAY_msg_params* mp, void*) {
    const VESKMSG_proc_msg* pm = mp->pm;
    if (pm->msg->msg != MSG_COMMON_NEPH_SPANCHECK_RESULTS) return;
    const auto* results = VESKMSG_payload<NET_COMMON_Neph_SpancheckResults>(pm);
    if (results == nullptr || pm->src_name == nullptr || pm->src_name[0] == '\0') return;
    handle_results(record(prv_data), cps->curtime, pm->src_name, *results);
    WINS_focus_window(record(prv_data)->win);
}

// What one redraw has come to.
struct SCRESULTS_display_trv_param {
    int cy;  // next row
    double err_sum, err_cnt;
};

void display_results(const CANVAS& d, const SCRESULTS_entry& entry, SCRESULTS_display_trv_param* at) {
    NET_SERVER_InstrumentInfo info;
    if (VESKMSG_instrument_info_by_name(&g_lnk.msg_lnk, entry.name, &info))
        d.put(at->cy++, 1, "%s:", static_cast<const char*>(info.display_name));
    SPANCHECK_draw_results(d, at->cy, entry.results);
    at->cy += 2;
    if (VESK_is_missing(entry.results.avgErr)) return;
    at->err_sum += entry.results.avgErr;
    at->err_cnt += 1;
}

void SCRESULTS_update(void* prv_data, DISPLAY_common_params*, void*) {
    SCRESULTS_prv_data* pd = record(prv_data);
    if (pd->win == nullptr || !pd->win->visible) return;
    WINS_draw_frame(pd->win, "Spancheck Results");
    if (pd->results.count == 0) return;
    const CANVAS d(pd->win, &pd->sbfr);
    SPANCHECK_draw_results_head(d, 1);
    SCRESULTS_display_trv_param at{.cy = 2, .err_sum = 0, .err_cnt = 0};
    for (const SCRESULTS_entry& entry : LL_each<SCRESULTS_entry>(pd->results))
        display_results(d, entry, &at);
    const double mean = at.err_cnt > 0 ? at.err_sum / at.err_cnt : VESK_MISSING;
    d.put(at.cy + 1, 1, "Average error of all nephs: *~2.2f", mean);
    d.text(at.cy + 3, 1, "Press enter to close this window.");
}

BOOL SCRESULTS_keypress(void* prv_data, DISPLAY_common_params*, DISPLAY_keypress* kp, void*) {
    WINS_window* win = record(prv_data)->win;
    if (win == nullptr || !win->focused) return FALSE;
    if (WINS_default_keyhandler(win, kp->key)) return TRUE;
    if (!CURSKEYS_is_enter(kp->key)) return FALSE;
    WINS_hide_window(win);
    return TRUE;
}

}  // namespace

const DISPLAY_DECL DDCL_PERSISTENT_SCRESULTS = {
    .sz_private = sizeof(SCRESULTS_prv_data),
    .cb_init = SCRESULTS_init,
    .cb_cleanup = SCRESULTS_cleanup,
    .cb_update = SCRESULTS_update,
    .cb_msg_proc = SCRESULTS_msg_proc,
    .cb_keypress = SCRESULTS_keypress,
    .cb_match = nullptr,
};
