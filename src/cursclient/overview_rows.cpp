#include "cursclient/overview_rows.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <string>
#include <string_view>
#include <vector>

#include "cursclient/wintext.h"

namespace {

// Columns of the window, their widths by its inside width. Those of the values take what is left.
struct layout {
    int name, kind, state, age, values, trend;  // widths; hot key and age have the same on every screen
};

constexpr int HOT_KEY = 2;  // with the blank behind it
constexpr int AGE = 5;

layout layout_of(int inside) {
    layout l{.name = 10, .kind = 12, .state = 18, .age = AGE, .values = 0, .trend = 10};
    if (inside >= 110) l = {.name = 12, .kind = 16, .state = 28, .age = AGE, .values = 0, .trend = 20};
    if (inside >= 150) l = {.name = 14, .kind = 16, .state = 34, .age = AGE, .values = 0, .trend = 40};
    const int blanks = 5;
    l.values = std::max(inside - HOT_KEY - l.name - l.kind - l.state - l.age - l.trend - blanks, 0);
    return l;
}

int inside_width(const WINS_window* win) {
    return getmaxx(win->win) - 2;
}

std::string padded(std::string_view text, int width) {
    std::string cell(text.substr(0, static_cast<std::size_t>(std::max(width, 0))));
    cell.resize(static_cast<std::size_t>(std::max(width, 0)), ' ');
    return cell;
}

std::string time_of_day(FTIME time) {
    const auto seconds = static_cast<std::time_t>(std::floor(time));
    std::tm utc{};
    gmtime_r(&seconds, &utc);
    char text[16];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d", utc.tm_hour, utc.tm_min, utc.tm_sec);
    return text;
}

std::string age_text(const WATCH_instrument& it, FTIME now) {
    if (it.heard < 0) return "    -";
    const double age = std::max(now - it.heard, 0.0);
    char text[16];
    if (age < 120) {
        std::snprintf(text, sizeof text, "%4.0fs", std::floor(age));
    } else if (age < 7200) {
        std::snprintf(text, sizeof text, "%4.0fm", std::floor(age / 60));
    } else if (age < 172800) {
        std::snprintf(text, sizeof text, "%4.0fh", std::floor(age / 3600));
    } else {
        std::snprintf(text, sizeof text, "%4.0fd", std::min(std::floor(age / 86400), 9999.0));
    }
    return text;
}

std::string state_text(const WATCH_instrument& it) {
    std::string text = WATCH_state_text(it.state);
    if (it.state == WATCH_RUNNING) return text;
    text += " " + time_of_day(it.since);
    if (it.state == WATCH_FAULT) text += " " + it.fault;
    return text;
}

// As many of the key values as there is room for; one that does not fit wholly is left out.
std::string values_text(const WATCH_instrument& it, int width) {
    std::string text;
    for (std::size_t i = 0; i < it.values.size(); ++i) {
        const KEYVALUE& value = it.kind->values[i];
        std::string one = i > 0 ? "  " : "";
        one += std::string(value.label) + " " + KEYVALUE_text(value, it.values[i]);
        if (text.size() + one.size() > static_cast<std::size_t>(std::max(width, 0))) break;
        text += one;
    }
    return text;
}

int attr_of(WATCH_state state) {
    switch (state) {
        case WATCH_RUNNING:
            return WINS_attr_normal();
        case WATCH_SILENT:
            return static_cast<int>(COLOR_PAIR(CP_YELLOW_BLUE));
        default:
            return WINS_attr_fault();
    }
}

constexpr int LEVELS = 8;

// One cell of a trend: an eighth block as high as the level (1 to 8), or what comes nearest in ASCII.
void put_level(WINS_window* win, int y, int x, int attr, int level) {
    static constexpr char ASCII[] = "_.,-~=+*#";
    if (CURSGRID* const picture = WINS_picture(win))
        picture->put_special(picture->inside(), y, x, static_cast<chtype>(attr),
                             static_cast<wchar_t>(0x2580 + level), static_cast<chtype>(ASCII[level]));
}

// The last hour in `width` cells, each the mean of its share of it, scaled between the least and the
// greatest.
void draw_trend(WINS_window* win, int y, int x, int width, const WATCH_instrument& it, FTIME now, int attr) {
    if (width <= 0 || it.values.empty() || x + width > inside_width(win) + 1) return;
    constexpr auto MINUTES = static_cast<int>(WATCH_TREND_MINUTES);
    std::vector<double> cells(static_cast<std::size_t>(width), VESK_MISSING);
    double least = VESK_MISSING, greatest = VESK_MISSING;
    for (int c = 0; c < width; ++c) {
        double sum = 0;
        int count = 0;
        const int from = MINUTES * c / width, to = std::max(MINUTES * (c + 1) / width, from + 1);
        for (int m = from; m < to; ++m) {
            const double mean = it.trend.at(now, static_cast<std::size_t>(MINUTES - 1 - m));
            if (VESK_is_missing(mean)) continue;
            sum += mean;
            ++count;
        }
        if (count == 0) continue;
        const double mean = sum / count;
        cells[static_cast<std::size_t>(c)] = mean;
        least = VESK_is_missing(least) ? mean : std::min(least, mean);
        greatest = VESK_is_missing(greatest) ? mean : std::max(greatest, mean);
    }
    for (int c = 0; c < width; ++c) {
        const double mean = cells[static_cast<std::size_t>(c)];
        if (VESK_is_missing(mean)) continue;
        const double share = greatest > least ? (mean - least) / (greatest - least) : 0.5;
        put_level(win, y, x + c, attr, 1 + static_cast<int>(std::lround(share * (LEVELS - 1))));
    }
}

}  // namespace

void ROWS_draw_headings(WINS_window* win, int y) {
    const layout l = layout_of(inside_width(win));
    WINTEXT_put_attr(win, y, 1, WINS_attr_highlight(),
                     "  " + padded("Name", l.name + 1) + padded("Kind", l.kind + 1) +
                         padded("State", l.state + 1) + padded("  Age", l.age + 1) +
                         padded("Values", l.values + 1) + padded("Last hour", l.trend));
}

void ROWS_draw_instrument(WINS_window* win, int y, const WATCH_instrument& it, FTIME now, BOOL is_selected) {
    const layout l = layout_of(inside_width(win));
    const int reverse = is_selected ? static_cast<int>(A_REVERSE) : 0;
    const int normal = WINS_attr_normal() | reverse;
    const auto id = static_cast<unsigned char>(it.info.id_ch);
    std::string line(1, std::isprint(id) != 0 ? it.info.id_ch : ' ');
    line += " " + padded(it.name, l.name) + " " + padded(it.info.type, l.kind) + " ";
    const int state_col = 1 + static_cast<int>(line.size());
    line += padded(state_text(it), l.state) + " " + padded(age_text(it, now), l.age) + " " +
            padded(values_text(it, l.values), l.values) + " ";
    const int trend_col = 1 + static_cast<int>(line.size());
    WINTEXT_put_attr(win, y, 1, normal, padded(line, inside_width(win)));
    WINTEXT_put_attr(win, y, state_col, attr_of(it.state) | reverse, padded(state_text(it), l.state));
    draw_trend(win, y, trend_col, l.trend, it, now, normal);
}

void ROWS_draw_event_headings(WINS_window* win, int y) {
    WINTEXT_put_attr(win, y, 1, WINS_attr_highlight(), "  UTC      Source     Event");
}

void ROWS_draw_event(WINS_window* win, int y, const WATCH_event& event) {
    const layout l = layout_of(inside_width(win));
    const std::string line = std::string(event.acknowledged ? "  " : "* ") + time_of_day(event.time) + " " +
                             padded(event.source, l.name) + " " + event.text;
    WINTEXT_put_attr(win, y, 1, event.acknowledged ? WINS_attr_normal() : attr_of(event.severity),
                     padded(line, inside_width(win)));
}

void ROWS_draw_keys(WINS_window* win, int y, BOOL on_events) {
    WINTEXT_put_attr(win, y, 1, WINS_attr_highlight(),
                     on_events ? "E: instruments  A: acknowledge  arrows, pages: move  F2: close"
                               : "Enter: its window  E: events  A: acknowledge  S: order  F2: close");
}
