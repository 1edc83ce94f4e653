#include "cursclient/overview.h"

#include <curses.h>

#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>

#include "cursclient/overview_rows.h"
#include "cursclient/settings.h"
#include "cursclient/wins.h"
#include "cursclient/wintext.h"
#include "libvesk/support/util.h"
#include "libveskcurs/curskeys.h"

namespace {

constexpr int ROWS_FOR_BOTH = 30;  // inside rows from which on instruments and events show together
constexpr int MOST_INSTRUMENT_ROWS = 62;

struct overview {
    std::optional<WATCH> watch;
    WINS_window* win = nullptr;
    WATCH_order order = WATCH_WORST_FIRST;
    std::string selected;  // name of the instrument; its row moves with it
    std::size_t selected_row = 0;
    std::size_t first_row = 0;
    BOOL on_events = FALSE;
    std::size_t first_event = 0;  // counted from the newest
    int page_rows = 1;            // of the list that the keys move in
};
overview g_overview;

std::string ident_of(const WATCH_instrument& it) {
    return (std::string(it.info.type) + ":" + it.name).substr(0, sizeof(WINS_UID) - 1);
}

void open_instrument() {
    const WATCH_instrument* it = OVERVIEW_watch().find(g_overview.selected);
    if (it == nullptr) return;
    WINS_UID uid;
    UTIL_strcpynt(uid, ident_of(*it).c_str());
    WINS_focus_window(WINS_window_by_uid(&uid));
}

// Keeps the selection on its instrument, or on its place when that one is no longer there.
void select_row(const std::vector<const WATCH_instrument*>& rows, long row) {
    if (rows.empty()) return;
    g_overview.selected_row =
        static_cast<std::size_t>(std::clamp(row, 0L, static_cast<long>(rows.size()) - 1));
    g_overview.selected = rows[g_overview.selected_row]->name;
}

void find_selection(const std::vector<const WATCH_instrument*>& rows) {
    const auto at = std::ranges::find(rows, g_overview.selected, &WATCH_instrument::name);
    select_row(rows, at != rows.end() && !g_overview.selected.empty()
                         ? at - rows.begin()
                         : static_cast<long>(g_overview.selected_row));
}

void fit_to_screen() {
    const int rows = std::max(LINES - 1, 3);
    if (g_overview.win->wish_sx == COLS && g_overview.win->wish_sy == rows) return;
    WINS_set_size(g_overview.win, COLS, rows);
    WINS_absolute_move(g_overview.win, 0, 0);
}

void open_or_close() {
    if (g_overview.win != nullptr && g_overview.win->visible && g_overview.win->focused) {
        WINS_hide_window(g_overview.win);
        return;
    }
    if (g_overview.win == nullptr) g_overview.win = WINS_create(nullptr, COLS, std::max(LINES - 1, 3));
    if (g_overview.win == nullptr) return;
    fit_to_screen();
    WINS_focus_window(g_overview.win);
}

void draw_instruments(int first, int count) {
    const WATCH& watch = OVERVIEW_watch();
    const auto rows = watch.sorted(g_overview.order);
    find_selection(rows);
    const auto shown = static_cast<std::size_t>(std::max(count, 1));
    if (g_overview.selected_row < g_overview.first_row) g_overview.first_row = g_overview.selected_row;
    if (g_overview.selected_row >= g_overview.first_row + shown)
        g_overview.first_row = g_overview.selected_row - shown + 1;
    const FTIME now = UTIL_ftime();
    for (std::size_t i = g_overview.first_row; i < std::min(rows.size(), g_overview.first_row + shown); ++i) {
        const BOOL is_selected = !g_overview.on_events && i == g_overview.selected_row;
        ROWS_draw_instrument(g_overview.win, first + static_cast<int>(i - g_overview.first_row), *rows[i],
                             now, is_selected);
    }
    if (rows.empty()) WINTEXT_put(g_overview.win, first, 1, "No instrument has announced itself.");
}

void draw_events(int first, int count) {
    const auto& events = OVERVIEW_watch().events();
    const auto shown = static_cast<std::size_t>(std::max(count, 1));
    const std::size_t last_first = events.size() > shown ? events.size() - shown : 0;
    g_overview.first_event = std::min(g_overview.first_event, last_first);
    for (std::size_t i = g_overview.first_event; i < std::min(events.size(), g_overview.first_event + shown);
         ++i)
        ROWS_draw_event(g_overview.win, first + static_cast<int>(i - g_overview.first_event),
                        events[events.size() - 1 - i]);
    if (events.empty()) WINTEXT_put(g_overview.win, first, 1, "Nothing has happened.");
}

std::string title() {
    const WATCH& watch = OVERVIEW_watch();
    const auto ill = std::ranges::count_if(watch.instruments(),
                                           [](const auto& i) { return i.second.state != WATCH_RUNNING; });
    char text[120];
    std::snprintf(text, sizeof text, "Station: %zu instruments, %d not running, %zu new events",
                  watch.instruments().size(), static_cast<int>(ill), watch.unacknowledged());
    return text;
}

void draw() {
    WINS_window* win = g_overview.win;
    WINS_draw_frame(win, title().c_str());
    const int inside = getmaxy(win->win) - 2;
    const int list = inside - 2;  // headings above, keys below
    const auto instruments = static_cast<int>(OVERVIEW_watch().instruments().size());
    if (inside >= ROWS_FOR_BOTH) {
        const int upper = std::min({std::max(instruments, 1), list - 8, MOST_INSTRUMENT_ROWS});
        ROWS_draw_headings(win, 1);
        draw_instruments(2, upper);
        WINTEXT_rule(win, 2 + upper, "Events");
        draw_events(3 + upper, list - upper - 1);
        g_overview.page_rows = g_overview.on_events ? list - upper - 1 : upper;
    } else if (g_overview.on_events) {
        ROWS_draw_event_headings(win, 1);
        draw_events(2, list);
        g_overview.page_rows = list;
    } else {
        ROWS_draw_headings(win, 1);
        draw_instruments(2, list);
        g_overview.page_rows = list;
    }
    ROWS_draw_keys(win, inside, g_overview.on_events);
}

void move_by(long rows) {
    if (g_overview.on_events) {
        const long first = static_cast<long>(g_overview.first_event) + rows;
        g_overview.first_event = static_cast<std::size_t>(std::max(first, 0L));
    } else {
        select_row(OVERVIEW_watch().sorted(g_overview.order),
                   static_cast<long>(g_overview.selected_row) + rows);
    }
}

BOOL move_key(int key) {
    static constexpr long FAR = 1000000;
    switch (key) {
        case KEY_DOWN:
            move_by(1);
            return TRUE;
        case KEY_UP:
            move_by(-1);
            return TRUE;
        case KEY_NPAGE:
            move_by(g_overview.page_rows);
            return TRUE;
        case KEY_PPAGE:
            move_by(-g_overview.page_rows);
            return TRUE;
        case KEY_HOME:
            move_by(-FAR);
            return TRUE;
        case KEY_END:
            move_by(FAR);
            return TRUE;
        default:
            return FALSE;
    }
}

BOOL own_key(int key) {
    if (move_key(key)) return TRUE;
    switch (key) {
        case 'a':
        case 'A':
            OVERVIEW_watch().acknowledge();
            return TRUE;
        case 'e':
        case 'E':
            g_overview.on_events = !g_overview.on_events;
            return TRUE;
        case 's':
        case 'S':
            g_overview.order = g_overview.order == WATCH_BY_NAME ? WATCH_WORST_FIRST : WATCH_BY_NAME;
            return TRUE;
        default:
            break;
    }
    if (CURSKEYS_is_enter(key)) {
        if (!g_overview.on_events) open_instrument();
        return TRUE;
    }
    return key != KEY_LEFT && key != KEY_RIGHT && WINS_default_keyhandler(g_overview.win, key);
}

}  // namespace

WATCH& OVERVIEW_watch() {
    if (!g_overview.watch.has_value()) g_overview.watch.emplace(UTIL_ftime());
    return *g_overview.watch;
}

void OVERVIEW_message(const VESKMSG_proc_msg* pm) {
    OVERVIEW_watch().message(pm, UTIL_ftime());
}

void OVERVIEW_note(const char* dest, const char* text) {
    OVERVIEW_watch().note(UTIL_ftime(), dest, text);
}

void OVERVIEW_update() {
    OVERVIEW_watch().tick(UTIL_ftime());
    if (g_overview.win == nullptr || !g_overview.win->visible || g_overview.win->win == nullptr) return;
    fit_to_screen();
    draw();
}

std::string OVERVIEW_title() {
    std::string title = SETTINGS_station_name();
    if (title.empty()) title = "vesk";
    const std::size_t news = OVERVIEW_watch().unacknowledged();
    if (news > 0) title += " (" + std::to_string(news) + " new)";
    return title;
}

BOOL OVERVIEW_keypress(int key) {
    if (key == KEY_F(2)) {
        open_or_close();
        return TRUE;
    }
    return g_overview.win != nullptr && g_overview.win->focused && own_key(key);
}

void OVERVIEW_cleanup() {
    if (g_overview.win != nullptr) WINS_delete(g_overview.win);
    g_overview = {};
}
