#include "cursclient/keyhelp.h"

#include <curses.h>

#include <cstdio>
#include <string>

#include "cursclient/dialog.h"
#include "cursclient/display.h"
#include "cursclient/wins.h"

namespace {

constexpr KEYHELP_row EVERYWHERE[] = {
    {.key = "Tab, Shift-Tab", .text = "the next or previous window"},
    {.key = "Enter", .text = "the main menu"},
    {.key = "F2", .text = "the station at a glance"},
    {.key = "F3", .text = "arrange the windows"},
    {.key = "F6", .text = "write the screen to files"},
};
constexpr KEYHELP_row WINDOW[] = {
    {.key = "M", .text = "its menu"},
    {.key = "Arrow keys", .text = "move it; with Shift by eight cells"},
    {.key = "Esc, Ctrl-W", .text = "close it"},
};

constexpr KEYHELP_row NEXT_VIEW[] = {{.key = "D", .text = "the next view"}};
constexpr KEYHELP_row SCATTERING_OR_COUNTS[] = {{.key = "S", .text = "scattering or photon counts"}};
constexpr KEYHELP_row PARTICLE_SIZER[] = {
    {.key = "N", .text = "graph of cum N(D), again: of dN"},
    {.key = "T", .text = "table"},
    {.key = "Page Down", .text = "the table's next page"},
    {.key = "Page Up", .text = "the table's previous page"},
    {.key = "H", .text = "housekeeping"},
    {.key = "S", .text = "housekeeping"},
    {.key = "A", .text = "the next data set"},
};
constexpr KEYHELP_row MOBILITY_SIZER[] = {
    {.key = "N", .text = "graph of dN/dlogD, again: the downward sweep"},
    {.key = "V", .text = "graph of dV/dlogD, likewise"},
    {.key = "C", .text = "graph of cum N(D), likewise"},
    {.key = "T", .text = "table, again: the other sweep"},
    {.key = "Page Down", .text = "the table's next page"},
    {.key = "Page Up", .text = "the table's previous page"},
    {.key = "H", .text = "housekeeping"},
    {.key = "S", .text = "housekeeping"},
};

struct kind_keys {
    std::string_view kind;
    std::span<const KEYHELP_row> keys;
};
constexpr kind_keys KINDS[] = {
    {.kind = "ccn", .keys = PARTICLE_SIZER},
    {.kind = "clap3w", .keys = NEXT_VIEW},
    {.kind = "cpc_bmi1710", .keys = NEXT_VIEW},
    {.kind = "grimm", .keys = PARTICLE_SIZER},
    {.kind = "lasair", .keys = PARTICLE_SIZER},
    {.kind = "neph", .keys = SCATTERING_OR_COUNTS},
    {.kind = "neph_passive", .keys = SCATTERING_OR_COUNTS},
    {.kind = "neph_aurora3000", .keys = SCATTERING_OR_COUNTS},
    {.kind = "pax", .keys = NEXT_VIEW},
    {.kind = "sems", .keys = MOBILITY_SIZER},
};

void add(CURSDIALOG_type* dlg, int* y, std::span<const KEYHELP_row> rows) {
    for (const KEYHELP_row& row : rows) {
        char line[80];
        std::snprintf(line, sizeof line, "%-15s %s", row.key, row.text);
        CURSDIALOG_add_label(dlg, 1, (*y)++, 0, 0, line);
    }
}

const WINS_window* focused_window() {
    return g_window_focus != nullptr ? static_cast<const WINS_window*>(g_window_focus->data) : nullptr;
}

void open_menu(CURSDIALOG_type* /*dlg*/, void* /*dlg_user_data*/, CURSDIALOG_widget* /*wd*/,
               void* /*wd_user_data*/, CURSDIALOG_button_action* act) {
    act->close_dialog = TRUE;
    DISPLAY_distribute_keypress('M');
}

void show() {
    const WINS_window* win = focused_window();
    const std::string ident = win != nullptr ? win->ident : "";
    CURSDIALOG_type* dlg = DIALOG_create(win != nullptr ? "Keys of this window" : "Keys", 0);
    if (dlg == nullptr) return;
    int y = 1;
    add(dlg, &y, EVERYWHERE);
    if (win != nullptr) {
        add(dlg, &y, WINDOW);
        add(dlg, &y, KEYHELP_of_kind(std::string_view(ident).substr(0, ident.find(':'))));
        CURSDIALOG_add_button(dlg, 1, y++, 0, CURSDIALOG_STYLE_LIST, 'M', "M Its menu", open_menu, nullptr,
                              0);
    }
    CURSDIALOG_widget* close = CURSDIALOG_add_button(dlg, 1, y, 0, CURSDIALOG_STYLE_CLOSE, 0, "Close",
                                                     CURSDIALOG_DEFAULT_button_close, nullptr, 0);
    CURSDIALOG_force_widget_focus(dlg, close);
}

}  // namespace

std::span<const KEYHELP_row> KEYHELP_of_kind(std::string_view kind) {
    for (const kind_keys& k : KINDS)
        if (k.kind == kind) return k.keys;
    return {};
}

BOOL KEYHELP_keypress(int key) {
    if (key != KEY_F(4)) return FALSE;
    show();
    return TRUE;
}
