// The screens that all sizers share, drawn from views of whatever record.
#include "cursclient/kit/sizer.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace {

constexpr int TOP = 2;      // row of the highest bar's upper end
constexpr int HEIGHT = 18;  // rows of the highest bar
constexpr int Y_LABELS = 7;

constexpr const char* AVG_MODE_NAMES[] = {"Instantanous", "Running average", "Last average"};

// Without two different bounds there is no scale to draw on.
bool has_range(const SIZER_view& s) {
    return s.min != s.max && s.min != VESK_BOUND_MIN_START && s.max != VESK_BOUND_MAX_START &&
           std::isfinite(s.max - s.min);
}

// Rows of a bar, 0 for none.
int bar_height(double value, const SIZER_view& y) {
    if (!SIZER_is_number(value)) return 0;
    const double share = (value - y.min) / (y.max - y.min);
    return static_cast<int>(std::round(std::clamp(share, 0.0, 1.0) * HEIGHT));
}

void draw_bars(const SIZER_row& row, const CANVAS& d, const SIZER_view& y) {
    for (int i = 0; const double value : y.v) {
        const int left = row.bar_col + row.bar_width * i++;
        for (int h = bar_height(value, y); h > 0; --h)
            for (int col = left; col < left + row.bar_width; ++col)
                d.block(TOP + HEIGHT - h, col);
    }
}

// The last labels move left as far as they must to stay inside.
void draw_x_labels(const SIZER_row& row, const CANVAS& d, const SIZER_view& x) {
    const int last_bin = static_cast<int>(x.v.size()) - 1;
    for (int k = 0; k < row.labels; ++k) {
        const int bin = last_bin * k / (row.labels - 1);
        const int col = row.bar_col + row.bar_width * bin;
        const std::string_view label = d.formatted(row.x_format, x.v[static_cast<std::size_t>(bin)]);
        const int length = static_cast<int>(label.size());
        d.text(row.label_row, col - 1 + length < row.cols ? col : row.cols - 1 - length, label);
    }
}

void draw_y_labels(const CANVAS& d, const SIZER_view& y, SFMT_altformat<double> format) {
    static constexpr int STEPS = Y_LABELS - 1;
    for (int k = 0; k <= STEPS; ++k) {
        const double value = (STEPS - k) / static_cast<double>(STEPS) * (y.max - y.min) + y.min;
        d.put(TOP + (HEIGHT - 1) * k / STEPS, 1, format, value);
    }
}

// The next graph of a key: its first one, or its second one while the first is on the screen.
int graph_after(const SIZER_head* pd, int first) {
    return pd->gm == first && pd->dm == SIZER_DM_GRAPH ? first + 1 : first;
}

bool graph_key(const SIZER_row& row, SIZER_head* pd, int key) {
    const char* found = std::strchr(row.graph_keys, key);
    if (found == nullptr) return false;
    pd->gm = graph_after(pd, static_cast<int>(found - row.graph_keys) * 2);
    pd->dm = SIZER_DM_GRAPH;
    return true;
}

bool turn_page(const SIZER_row& row, SIZER_head* pd, int by) {
    if (pd->dm != SIZER_DM_TABULAR) return false;
    pd->tabular_page = std::clamp(pd->tabular_page + by, 0, row.last_page);
    return true;
}

}  // namespace

void SIZER_draw_graph(const SIZER_row& row, const CANVAS& d, int gm, const char* data_set,
                      const SIZER_view& x, const SIZER_view& y) {
    const SIZER_graph& graph = row.graphs[static_cast<std::size_t>(gm)];
    if (data_set != nullptr)
        d.center(1, "%s - %s", graph.caption, data_set);
    else
        d.text_centered(1, graph.caption);
    if (!has_range(x) || !has_range(y)) return;
    draw_bars(row, d, y);
    draw_x_labels(row, d, x);
    draw_y_labels(d, y, graph.y_format);
}

void SIZER_draw_table(const SIZER_row& row, const CANVAS& d, int page, const char* data_set,
                      std::span<const SIZER_view> columns) {
    if (data_set != nullptr) d.center(1, "Tabular - %s", data_set);
    const auto first = static_cast<std::size_t>(row.bins_per_page * page);
    for (std::size_t c = 0; c < row.columns.size(); ++c) {
        const SIZER_column& column = row.columns[c];
        const std::span<const double> v = columns[c].v;
        d.text(row.table_row, column.col, column.title);
        d.text(row.table_row + 1, column.col, column.units);
        for (int line = 0; line < row.bins_per_page; ++line) {
            const std::size_t bin = first + static_cast<std::size_t>(line);
            if (bin < v.size()) d.put(row.table_row + 2 + line, column.col, column.format, v[bin]);
        }
    }
}

bool SIZER_mode_key(const SIZER_row& row, SIZER_head* pd, int key) {
    if (key == KEY_NPAGE) return turn_page(row, pd, +1);
    if (key == KEY_PPAGE) return turn_page(row, pd, -1);
    if (key <= 0 || key > 0x7F) return false;
    key = std::toupper(key);
    if (graph_key(row, pd, key)) return true;
    switch (key) {
        case 'T':
            if (pd->dm != SIZER_DM_TABULAR) pd->tabular_page = 0;
            pd->dm = SIZER_DM_TABULAR;
            return true;
        case 'H':
        case 'S':
            pd->dm = SIZER_DM_STATUS;
            return true;
        default:
            return false;
    }
}

const char* SIZER_optical_head::data_set() const {
    return AVG_MODE_NAMES[am];
}

std::string SIZER_average_label(int am) {
    return std::string("A ") + AVG_MODE_NAMES[INSTDISP_next_mode(am)] + " display";
}
