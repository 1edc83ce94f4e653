// The error strip: the last four error lines of the station's log, over the full width above the status line.
// It rises by itself for a while, and Ctrl-E pins or hides it. Once pinned, no deadline ever hides it again.
#include <algorithm>
#include <cstring>

#include "cursclient/globals.h"
#include "cursclient/kit/persistent.h"
#include "cursclient/wintext.h"
#include "libvesk/messages/records/log.h"
#include "libvesk/support/util.h"
#include "libveskcurs/curskeys.h"

namespace {

constexpr int LINES_KEPT = 4;
constexpr int LINE_SIZE = 120;
constexpr int HEIGHT = 6;
constexpr FTIME PINNED = -1.0;

struct ERRORDISP_prv_data {
    WINS_window* win;
    char buffer[LINES_KEPT][LINE_SIZE];  // ring of the last lines
    int buffer_next;                     // slot of the next line, which is also the oldest
    bool hidden;
    FTIME hide_time;  // when the strip hides itself, or PINNED
};

// Shown without taking the focus: the operator goes on with what the keys were for.
void set_hidden(ERRORDISP_prv_data* pd, bool hidden) {
    pd->hidden = hidden;
    if (pd->win == nullptr || pd->win->win == nullptr || pd->win->pan == nullptr) return;
    pd->win->visible = !hidden;
    if (hidden)
        hide_panel(pd->win->pan);
    else
        show_panel(pd->win->pan);
}

bool start(ERRORDISP_prv_data* pd) {
    pd->win->flags = WINS_ON_TOP | WINS_SKIP_IN_CYCLE;
    pd->hide_time = 0.0;
    set_hidden(pd, true);
    return true;
}

void take_error(ERRORDISP_prv_data* pd, const VESKMSG_proc_msg* pm, FTIME curtime) {
    if (pm->msg->msg != MSG_LOG_MONITOR) return;
    const auto* line = VESKMSG_payload<NET_LOG_MonitorMessage>(pm);
    if (line == nullptr || (line->flags & NET_LOG_MONITOR_ERROR) == 0) return;
    UTIL_strcpynt(pd->buffer[pd->buffer_next], line->msg);
    pd->buffer_next = (pd->buffer_next + 1) % LINES_KEPT;
    if (!(g_errordisp_show_time > 0)) return;
    if (pd->hide_time != PINNED) pd->hide_time = curtime + g_errordisp_show_time;
    set_hidden(pd, false);
}

// TRUE when the strip's time is over. A deadline further ahead than the show time comes from a clock that was
// set back: it counts from now.
bool is_over(ERRORDISP_prv_data* pd, FTIME curtime) {
    if (pd->hide_time == PINNED) return false;
    pd->hide_time = std::min(pd->hide_time, curtime + std::max(g_errordisp_show_time, 0.0));
    return curtime >= pd->hide_time;
}

void draw_strip(ERRORDISP_prv_data* pd) {
    WINS_set_size(pd->win, COLS, HEIGHT);
    WINS_absolute_move(pd->win, 0, LINES - HEIGHT);
    if (pd->win->win == nullptr) return;
    const int attr = COLOR_PAIR(CP_WHITE_RED);
    wattrset(pd->win->win, attr);
    WINS_blank_window(pd->win);
    WINS_window_border(pd->win, attr);
    WINS_center_string(pd->win, "Recent Errors", 0);
    const int usable = std::clamp(COLS - 2, 0, LINE_SIZE - 1);
    for (int i = 0; i < LINES_KEPT; ++i) {
        char* line = pd->buffer[(pd->buffer_next + i) % LINES_KEPT];
        line[usable] = '\0';
        WINTEXT_put(pd->win, 1 + i, 1, line);
    }
}

void draw(ERRORDISP_prv_data* pd, FTIME curtime) {
    if (is_over(pd, curtime))
        set_hidden(pd, true);
    else
        draw_strip(pd);
}

bool toggle(ERRORDISP_prv_data* pd, int key) {
    if (key != CURSKEYS_CTRL_E) return false;
    if (pd->hidden) pd->hide_time = PINNED;
    set_hidden(pd, !pd->hidden);
    return true;
}

constexpr PERSISTENT_kind<ERRORDISP_prv_data> KIND{.cols = 0,
                                                   .rows = HEIGHT,
                                                   .title = nullptr,
                                                   .draw = draw,
                                                   .start = start,
                                                   .message = take_error,
                                                   .any_key = toggle};

}  // namespace

PERSISTENT_BINDINGS(ERRORDISP, KIND)
