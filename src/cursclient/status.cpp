// The status bar on the bottom line of the standard screen, which shows nothing else.
#include "cursclient/status.h"

#include <curses.h>

#include <cstdio>
#include <ctime>
#include <optional>

#include "cursclient/wincolor.h"
#include "libvesk/support/util.h"
#include "libveskcurs/cursgrid.h"

LL_TYPE g_status_entrys;
DWORD g_status_last_uid = 0;

namespace {

constexpr int TIME_COLUMNS = 34;

std::optional<CURSGRID> g_picture;  // of the standard screen, of which the rest is background

// Characters order as signed ones, whatever the platform's char is.
BOOL sorts_before(char a, char b) {
    return static_cast<signed char>(a) < static_cast<signed char>(b);
}

CURSGRID_box bottom_line() {
    return {LINES - 1, 0, 1, COLS};
}

void draw_entries(CURSGRID& picture) {
    int x = 0;
    for (const STATUS_entry& entry : LL_each<STATUS_entry>(g_status_entrys)) {
        if (entry.log_char == 0) continue;
        const chtype attr = entry.is_logging ? A_BOLD | COLOR_PAIR(CP_YELLOW_BLACK)
                                             : static_cast<chtype>(COLOR_PAIR(CP_WHITE_BLACK));
        picture.put(bottom_line(), LINES - 1, x++, attr, {&entry.log_char, 1});
    }
}

// Date, time of day and fractional day of the year, all UTC; 1 January 00:00:00 is day 1.00000.
void draw_time(CURSGRID& picture, FTIME now) {
    const auto whole = static_cast<std::time_t>(now);
    std::tm utc{};
    if (gmtime_r(&whole, &utc) == nullptr) return;
    const double second = utc.tm_sec + (now - static_cast<double>(whole));
    const double day = utc.tm_yday + 1 + utc.tm_hour / 24.0 + utc.tm_min / 1440.0 + second / 86400.0;
    char text[96];
    std::snprintf(text, sizeof text, "UTC: %04d-%02d-%02d %02d:%02d:%02d %9.5f", utc.tm_year + 1900,
                  utc.tm_mon + 1, utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec, day);
    if (COLS >= TIME_COLUMNS)
        picture.put(bottom_line(), LINES - 1, COLS - TIME_COLUMNS, COLOR_PAIR(CP_WHITE_BLACK),
                    std::string_view(text).substr(0, TIME_COLUMNS));
}

}  // namespace

BOOL STATUS_init() {
    g_picture.reset();
    LL_init(&g_status_entrys);
    g_status_last_uid = 0;
    return TRUE;
}

void STATUS_cleanup() {
    g_picture.reset();
    LL_clear(&g_status_entrys);
}

STATUS_entry* STATUS_addentry(char log_char, BOOL is_logging) {
    const STATUS_entry entry{.log_char = log_char, .is_logging = is_logging, .uid = g_status_last_uid++};
    LL_NODE* at = g_status_entrys.head;
    while (at != nullptr && sorts_before(LL_data<STATUS_entry>(at)->log_char, log_char))
        at = at->next;
    return LL_data<STATUS_entry>(LL_insert_before(&g_status_entrys, at, &entry, sizeof entry));
}

void STATUS_deleteentry(STATUS_entry* se) {
    if (se == nullptr) return;
    DWORD uid = se->uid;  // the entry itself goes
    const auto same = [](void* data, void* param) -> BOOL {
        return static_cast<STATUS_entry*>(data)->uid == *static_cast<DWORD*>(param);
    };
    LL_selective_delete(&g_status_entrys, same, &uid);
}

void STATUS_setlogging(STATUS_entry* se, BOOL logging) {
    if (se == nullptr) {
        UTIL_assertion_failed("status", __LINE__, "se != NULL");
        return;
    }
    se->is_logging = logging;
}

void STATUS_update() {
    const FTIME now = UTIL_ftime();
    if (!g_picture) g_picture.emplace(stdscr);
    g_picture->fill(A_NORMAL);
    draw_entries(*g_picture);
    draw_time(*g_picture, now);
    g_picture->show();
}
