// Parts that the three-wavelength nephelometers share: the view of one record, its modes, the rows of three
// colours, the status row, the keys and the command that starts a zero.
#pragma once

#include "cursclient/kit/spancheck.h"
#include "libvesk/messages/records/neph.h"

inline constexpr int NEPH_COLUMNS[] = {18, 30, 44};  // of blue, green and red
// In the lower block: of the left values, the right labels and the right values.
inline constexpr int NEPH_LEFT_VALUE = 18;
inline constexpr int NEPH_RIGHT_LABEL = 30;
inline constexpr int NEPH_RIGHT_VALUE = 44;

// Row 1.
void NEPH_draw_headings(const CANVAS& d);
// Fault, span check or the next zero.
void NEPH_draw_status(const CANVAS& d, int row, const SPANCHECK_head* pd, bool have_comms, FTIME next_zero);

// Rows 2 to 7: the scattering of a view and the last zero.
template <class Scattering, class Zero>
void NEPH_draw_scattering(const CANVAS& d, const Scattering& s, const Zero& zero) {
    const auto row = [&d](int y, const char* label, auto value) {
        d.across(y, label, NEPH_COLUMNS, "*~5.1f",
                 [&](int i) { return UNIT_on_screen(UNIT_per_m, value(i)); });
    };
    row(2, "Bsp:", [&](int i) { return s.bsp[i]; });
    row(3, "Bbsp:", [&](int i) { return s.bbsp[i]; });
    row(4, "BspBK:", [&](int i) { return zero.bspBK[i]; });
    row(5, "BbspBK:", [&](int i) { return zero.bbspBK[i]; });
    row(6, "BspBKShift:", [&](int i) { return zero.bspBKshift[i]; });
    row(7, "BbspBKShift:", [&](int i) { return zero.bbspBKshift[i]; });
}

// Calls draw(view) with the record that the display mode says; the three have the same names for all that is
// shown of them.
template <class R, class Draw>
void NEPH_with_view(const R* pd, Draw draw) {
    if (pd->display_mode <= INSTDISP_INSTANTANEOUS) return draw(pd->instant);
    if (pd->display_mode == INSTDISP_RUNNING_AVERAGE) return draw(pd->instant.running);
    draw(pd->avg);
}

template <class R>
void NEPH_toggle_counts(R* pd, DWORD /*uid*/) {
    pd->display_counts = !pd->display_counts;
}

// Keys besides the standard ones.
template <class R>
[[nodiscard]] bool NEPH_key(R* pd, DWORD uid, int key) {
    if (key != 'S' && key != 's') return SPANCHECK_key(pd, key);
    NEPH_toggle_counts(pd, uid);
    return true;
}

// ---- rows of the menu

template <class R>
inline constexpr INSTDISP_menu_row<R> NEPH_COUNTS_ROW{
    .hot_key = 'S', .action = NEPH_toggle_counts<R>, .label_of = [](const R* pd) -> std::string {
        return pd->display_counts ? "S Display scattering" : "S Display counts";
    }};

template <class R, NETMSG_type ISSUE_ZERO>
inline constexpr INSTDISP_menu_row<R> NEPH_ZERO_ROW{.hot_key = '3',
                                                    .label = "3 Start zero now",
                                                    .action = COMMAND_issue<ISSUE_ZERO>,
                                                    .guard = COMMAND_CONFIRM};
