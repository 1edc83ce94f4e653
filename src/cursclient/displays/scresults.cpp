// The results of one span check, of all nephelometers side by side: the window comes up with every result
// that arrives, until the operator closes it. It has no entry anywhere and sends nothing.
#include <cmath>
#include <cstring>

#include "cursclient/globals.h"
#include "cursclient/kit/persistent.h"
#include "cursclient/kit/spancheck.h"
#include "libvesk/support/util.h"
#include "libveskcurs/curskeys.h"

namespace {

constexpr double SAME_CHECK = 30.0;  // seconds within which all results of one span check arrive

struct SCRESULTS_prv_data {
    WINS_window* win;
    SFMT_buffer sbfr;
    LL_TYPE results;  // of SCRESULTS_entry, by ascending name
};

struct SCRESULTS_entry {
    char name[32];  // source
    NET_COMMON_Neph_SpancheckResults results;
    FTIME time;  // of arrival
};

// `name` stands for the source's whole name: sources have no longer ones.
bool remove_dup(void* data, void* name) {
    return std::strcmp(static_cast<SCRESULTS_entry*>(data)->name, static_cast<const char*>(name)) == 0;
}

bool find_insert_point(void* data, void* name) {
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

bool start(SCRESULTS_prv_data* pd) {
    SFMT_init_buffer(&pd->sbfr);
    LL_init(&pd->results);
    WINS_hide_window(pd->win);  // wherever it was when the layout was saved
    return true;
}

void stop(SCRESULTS_prv_data* pd) {
    SFMT_destroy_buffer(&pd->sbfr);
    LL_clear(&pd->results);
}

void take_results(SCRESULTS_prv_data* pd, const VESKMSG_proc_msg* pm, FTIME curtime) {
    if (pm->src_name == nullptr || pm->src_name[0] == '\0') return;
    if (pm->msg->msg == MSG_NOTIFY_CLIENT_TERMINATE)
        LL_selective_delete(&pd->results, remove_dup, const_cast<char*>(pm->src_name));
    if (pm->msg->msg != MSG_COMMON_NEPH_SPANCHECK_RESULTS) return;
    const auto* results = VESKMSG_payload<NET_COMMON_Neph_SpancheckResults>(pm);
    if (results == nullptr) return;
    handle_results(pd, curtime, pm->src_name, *results);
    WINS_focus_window(pd->win);
}

// The state of one redraw.
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

void draw(SCRESULTS_prv_data* pd, FTIME /*curtime*/) {
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

bool close(SCRESULTS_prv_data* pd, int key) {
    if (!CURSKEYS_is_enter(key)) return false;
    WINS_hide_window(pd->win);
    return true;
}

constexpr PERSISTENT_kind<SCRESULTS_prv_data> KIND{.cols = 77,
                                                   .rows = 16,
                                                   .title = "Spancheck Results",
                                                   .draw = draw,
                                                   .ident = "SCRESULTS",
                                                   .start = start,
                                                   .stop = stop,
                                                   .message = take_results,
                                                   .key = close};

}  // namespace

PERSISTENT_BINDINGS(SCRESULTS, KIND)
