// Parts that the displays of particle sizers share: values over bins, a bar graph, a table, a
// housekeeping screen, and the keys and buttons that lead from one to the other. A kind is a row of
// parameters and a record: SIZER_head (or SIZER_optical) and what the instrument sends, with these members:
//
//   static const SIZER_row ROW;
//   bool have_comms() const;
//   const char* data_set() const;              // what the captions name after the screen, or null
//   SIZER_view graph_x() const;
//   SIZER_view graph_y() const;                // of the present graph mode
//   auto table() const;                        // array of the views that are the table's columns
//   void housekeeping(const CANVAS& d) const;  // draws the third screen
#pragma once

#include <array>
#include <cmath>

#include "cursclient/kit/instdisp.h"

enum SIZER_DISPLAY_MODE { SIZER_DM_GRAPH, SIZER_DM_TABULAR, SIZER_DM_STATUS };
enum SIZER_AVERAGE_MODE { SIZER_AM_INSTANT, SIZER_AM_RUNNING, SIZER_AM_AVG };

// Values over the bins, with the bounds of those that are numbers.
struct SIZER_view {
    std::span<const double> v;
    double min, max;
};

// Neither missing nor NaN nor infinite: what counts in sums, bounds and graphs.
[[nodiscard]] inline bool SIZER_is_number(double v) {
    return std::isfinite(v) && !VESK_is_missing(v);
}

template <std::size_t N>
struct SIZER_series {
    double v[N];
    double max, min;  // at their sentinels while no bin is a number
    double total;     // of the bins that are numbers; missing until they were filled

    // Sets every bin i, in ascending order, to value(i).
    template <class F>
    void fill(F value) {
        max = VESK_BOUND_MAX_START;
        min = VESK_BOUND_MIN_START;
        total = 0;
        for (std::size_t i = 0; i < N; ++i) {
            v[i] = value(i);
            if (!SIZER_is_number(v[i])) continue;
            total += v[i];
            if (v[i] > max) max = v[i];
            if (v[i] < min) min = v[i];
        }
    }
    // Sets every bin to the sum of the values up to it. One that is no number stands as it is and adds
    // nothing; the total is that of the values.
    template <class F>
    void fill_cumulative(F value) {
        double sum = 0;
        fill([&](std::size_t i) {
            const double one = value(i);
            return SIZER_is_number(one) ? sum += one : one;
        });
        total = sum;
    }
    void clear() {
        fill([](std::size_t) { return VESK_MISSING; });
        total = VESK_MISSING;
    }
    [[nodiscard]] SIZER_view view() const { return {v, min, max}; }
};

// ---- parameters of a kind

struct SIZER_graph {
    const char* caption;
    SFMT_altformat<double> y_format;
};

struct SIZER_column {
    int col;
    const char* title;
    const char* units;
    SFMT_altformat<double> format;
};

struct SIZER_row {
    int cols, rows;      // of the window
    int bar_col;         // of the first bin's bar
    int bar_width = 1;   // columns of each bar
    int label_row = 20;  // where the diameters stand
    int labels;          // how many of them, first and last bin included
    SFMT_altformat<double> x_format;
    std::span<const SIZER_graph> graphs;  // by graph mode; each key leads to two of them
    const char* graph_keys = "N";         // upper case
    int table_row = 2;                    // of the titles
    int bins_per_page = 16;
    int last_page = 1;
    std::span<const SIZER_column> columns;
};

// The state that the modes' keys change.
struct SIZER_head : INSTDISP_head {
    int dm;            // SIZER_DISPLAY_MODE
    int gm;            // index into the graphs
    int tabular_page;  // from 0
};

// ---- screens and keys, whatever the record

void SIZER_draw_graph(const SIZER_row& row, const CANVAS& d, int gm, const char* data_set,
                      const SIZER_view& x, const SIZER_view& y);
void SIZER_draw_table(const SIZER_row& row, const CANVAS& d, int page, const char* data_set,
                      std::span<const SIZER_view> columns);
// The keys of graphs, table, pages and housekeeping. TRUE when it was one of them.
[[nodiscard]] bool SIZER_mode_key(const SIZER_row& row, SIZER_head* pd, int key);

template <class R>
void SIZER_draw(R* pd, const CANVAS& d) {
    static constexpr int NO_COMMS_ROW = 11;
    if (d.no_comms(NO_COMMS_ROW, pd->have_comms())) return;
    if (pd->dm == SIZER_DM_GRAPH)
        SIZER_draw_graph(R::ROW, d, pd->gm, pd->data_set(), pd->graph_x(), pd->graph_y());
    else if (pd->dm == SIZER_DM_TABULAR)
        SIZER_draw_table(R::ROW, d, pd->tabular_page, pd->data_set(), pd->table());
    else
        pd->housekeeping(d);
}

template <class R>
[[nodiscard]] constexpr INSTDISP_kind<R> SIZER_kind(
    std::type_identity_t<std::span<const INSTDISP_store<R>>> stores, void (*reset)(R*),
    bool (*key)(R*, DWORD, int), std::type_identity_t<std::span<const INSTDISP_menu_row<R>>> menu) {
    return {.cols = R::ROW.cols,
            .rows = R::ROW.rows,
            .stores = stores,
            .draw = SIZER_draw<R>,
            .reset = reset,
            .key = key,
            .menu = menu};
}

// A menu row that does what its key does: key_of is the kind's own key function.
template <class R, int Key, bool (*key_of)(R*, DWORD, int)>
[[nodiscard]] constexpr INSTDISP_menu_row<R> SIZER_menu_key(const char* label) {
    return {.hot_key = Key, .label = label, .action = +[](R* pd, DWORD uid) { key_of(pd, uid, Key); }};
}

// ---- kinds with instantaneous data, running average and last average

struct SIZER_optical_head : SIZER_head {
    int am;  // SIZER_AVERAGE_MODE
    [[nodiscard]] const char* data_set() const;
};
// "A Running average display": the data set after the present one.
[[nodiscard]] std::string SIZER_average_label(int am);

template <std::size_t N, class Avg, class Instant, class Status>
struct SIZER_optical : SIZER_optical_head {
    SIZER_series<N> D;   // diameters
    SIZER_series<N> dN;  // numbers of the chosen data set
    SIZER_series<N> ND;  // their cumulative sums
    Avg avg;
    Instant instant;
    Status status;

    [[nodiscard]] bool have_comms() const { return status.have_comms; }
    [[nodiscard]] SIZER_view graph_x() const { return D.view(); }
    [[nodiscard]] SIZER_view graph_y() const { return gm == 0 ? ND.view() : dN.view(); }
    [[nodiscard]] std::array<SIZER_view, 3> table() const { return {D.view(), dN.view(), ND.view()}; }

    void clear() {
        D.clear();
        dN.clear();
        ND.clear();
    }
    void update_bins() {
        dN.fill([this](std::size_t i) -> double {
            if (am == SIZER_AM_AVG) return avg.dN[i];
            return am == SIZER_AM_RUNNING ? instant.running.dN[i] : instant.dN[i];
        });
        ND.fill_cumulative([this](std::size_t i) { return dN.v[i]; });
    }
};

template <class R>
void SIZER_info_stored(R* pd, FTIME /*curtime*/) {
    pd->D.fill([pd](std::size_t i) { return pd->info.D[i]; });
}
template <class R>
void SIZER_instant_stored(R* pd, FTIME /*curtime*/) {
    if (pd->am != SIZER_AM_AVG) pd->update_bins();
}
template <class R>
void SIZER_average_stored(R* pd, FTIME /*curtime*/) {
    if (pd->am == SIZER_AM_AVG) pd->update_bins();
}

template <class R>
bool SIZER_optical_key(R* pd, DWORD /*uid*/, int key) {
    if (SIZER_mode_key(R::ROW, pd, key)) return true;
    if (key != 'A' && key != 'a') return false;
    // The screen changes with the next message.
    pd->am = INSTDISP_next_mode(pd->am);
    return true;
}
// The averaging button only brings the bins up to date: the data set is the key's to change.
template <class R>
void SIZER_average_pressed(R* pd, DWORD /*uid*/) {
    pd->update_bins();
}

// The menu: the kind's own rows, then the buttons of the modes.
template <class R, class... Rows>
[[nodiscard]] constexpr std::array<INSTDISP_menu_row<R>, sizeof...(Rows) + 4> SIZER_optical_menu(
    const Rows&... rows) {
    return {{rows...,
             SIZER_menu_key<R, 'N', SIZER_optical_key<R>>("N Display cum N(D)/dN"),
             SIZER_menu_key<R, 'T', SIZER_optical_key<R>>("T Display tabular mode"),
             SIZER_menu_key<R, 'H', SIZER_optical_key<R>>("H Display housekeeping information"),
             {.hot_key = 'A', .action = SIZER_average_pressed<R>, .label_of = [](const R* pd) {
                  return SIZER_average_label(pd->am);
              }}}};
}
template <class R>
inline constexpr auto SIZER_OPTICAL_MENU = SIZER_optical_menu<R>();
