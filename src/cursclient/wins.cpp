// The window manager. One list owns the records; each record remembers the size and place that were wished
// for, and its curses window is that wish, cut and moved as far as the present screen demands.
#include "cursclient/wins.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "cursclient/globals.h"
#include "cursclient/winplace.h"
#include "cursclient/winscreen.h"
#include "libvesk/support/util.h"
#include "libveskcurs/cursdialog.h"
#include "libveskcurs/curskeys.h"

LL_TYPE g_window_list;
LL_NODE* g_window_focus = nullptr;
DWORD g_next_uid = 0;

namespace {

// ---- geometry

WINPLACE_box box_of(WINDOW* win) {
    return {getbegx(win), getbegy(win), getmaxx(win), getmaxy(win)};
}

// Cells that nothing was drawn into look like the screen behind. A new window may have the address of an old
// one.
WINDOW* new_curses_window(const WINPLACE_box& b) {
    CURSGRID::forget_shown();
    WINDOW* win = newwin(b.sy, b.sx, b.y, b.x);
    if (win != nullptr) wbkgd(win, ' ' | static_cast<chtype>(WINS_attr_normal()));
    return win;
}

// Moves the curses window to a place that lies on the screen; a window that stands there is left alone.
void place(WINS_window* win, int x, int y) {
    if (getbegx(win->win) != x || getbegy(win->win) != y) move_panel(win->pan, y, x);
}

// Wishes for a place and goes there as far as the screen allows.
void move_to_wish(WINS_window* win, int x, int y) {
    win->wish_x = std::max(x, 0);
    win->wish_y = std::max(y, 0);
    const WINPLACE_box at = WINPLACE_fit({x, y, getmaxx(win->win), getmaxy(win->win)});
    place(win, at.x, at.y);
}

// Gives the panel another curses window; its height in the stack and its visibility stay. FALSE, and nothing
// happens, when there is no memory for it.
bool rebuild_in_place(WINS_window* win, const WINPLACE_box& b) {
    WINDOW* fresh = new_curses_window(b);
    if (fresh == nullptr) return false;
    replace_panel(win->pan, fresh);
    delwin(win->win);
    win->win = fresh;
    return true;
}

void free_curses_parts(WINS_window* win) {
    if (win->pan != nullptr) del_panel(win->pan);
    if (win->win != nullptr) delwin(win->win);
    delete win->picture;
    win->pan = nullptr;
    win->win = nullptr;
    win->picture = nullptr;
}

// ---- arguments

// The window can be moved and drawn into; otherwise says on which line of this file it was not.
bool checked(const WINS_window* win, int line = __builtin_LINE()) {
    const char* broken = win == nullptr ? "win != NULL" : win->win == nullptr ? "win->win != NULL" : nullptr;
    if (broken != nullptr) UTIL_assertion_failed("wins", line, broken);
    return broken == nullptr;
}

bool has_curses_parts(const WINS_window* win) {
    return win != nullptr && win->win != nullptr && win->pan != nullptr;
}

bool same_identity(const WINS_window& win, const char* ident) {
    return std::strcmp(win.ident, ident) == 0;
}

LL_NODE* node_by_identity(const char* ident) {
    for (LL_NODE* node = g_window_list.head; node != nullptr; node = node->next)
        if (same_identity(*LL_data<WINS_window>(node), ident)) return node;
    return nullptr;
}

// ---- focus

bool eligible(LL_NODE* node, DWORD excluded_flags) {
    const WINS_window* win = LL_data<WINS_window>(node);
    return win->visible && has_curses_parts(win) && (win->flags & excluded_flags) == 0;
}

LL_NODE* next_in_ring(LL_NODE* node) {
    return node->next != nullptr ? node->next : g_window_list.head;
}

LL_NODE* previous_in_ring(LL_NODE* node) {
    return node->prev != nullptr ? node->prev : g_window_list.tail;
}

// The first eligible node on a walk round the ring from the focused one; null when there is no other.
LL_NODE* find_in_ring(LL_NODE* (*step)(LL_NODE*), DWORD excluded_flags) {
    if (g_window_focus == nullptr) return nullptr;
    LL_NODE* node = step(g_window_focus);
    while (node != g_window_focus && !eligible(node, excluded_flags))
        node = step(node);
    return node != g_window_focus ? node : nullptr;
}

void move_focus(LL_NODE* node) {
    if (node == nullptr) return;
    if (g_window_focus != nullptr) LL_data<WINS_window>(g_window_focus)->focused = false;
    g_window_focus = node;
    WINS_window* win = LL_data<WINS_window>(node);
    win->focused = true;
    top_panel(win->pan);
}

// ---- creation

// Fills in the identity: the caller's, or the next number that no living window has. Names of instruments are
// free, so that two windows may ask for the same identity: "neph:X.sc" is that of the nephelometer X.sc and
// that of the span check of X. The later one is a window all the same.
void set_identity(WINS_window* win, const char* ident) {
    UTIL_strcpynt(win->ident, ident);
    win->saveable = win->ident[0] != '\0' && node_by_identity(win->ident) == nullptr;
    if (win->saveable) return;
    do
        std::snprintf(win->ident, sizeof win->ident, "%lu", static_cast<unsigned long>(g_next_uid++));
    while (node_by_identity(win->ident) != nullptr);
}

bool make_curses_parts(WINS_window* win, int sx, int sy) {
    win->wish_sx = sx;
    win->wish_sy = sy;
    win->win = new_curses_window(WINPLACE_fit({0, 0, sx, sy}));
    if (win->win == nullptr) return false;
    win->pan = new_panel(win->win);
    if (win->pan == nullptr) return false;
    hide_panel(win->pan);
    return true;
}

// A number from the settings file; what does not fit an int is cut to it.
int setting_number(const char* text) {
    return static_cast<int>(std::clamp<long>(std::strtol(text, nullptr, 10), INT_MIN, INT_MAX));
}

const char* saved_value(const WINS_window* win, const char* key) {
    const char* value = CONF_lookup_va(g_conf, {"Windows", win->ident, key});
    return value != nullptr && *value != '\0' ? value : nullptr;
}

// Applies the saved layout; FALSE when there is none, or only a part of one.
bool restore_saved(WINS_window* win) {
    const char* x = saved_value(win, "XPos");
    const char* y = saved_value(win, "YPos");
    const char* visible = saved_value(win, "Visible");
    if (x == nullptr || y == nullptr || visible == nullptr) return false;
    WINS_absolute_move(win, setting_number(x), setting_number(y));
    if (UTIL_text_is_true(visible)) WINS_focus_window(win);
    return true;
}

// Marks the columns of every other visible window that has row `cy`, or ends just above it.
void occupy_row(WINPLACE_scan_line& line, const WINS_window* placed, int cy) {
    for (const WINS_window& other : LL_each<WINS_window>(g_window_list)) {
        if (!other.visible || other.win == nullptr || same_identity(other, placed->ident)) continue;
        const WINPLACE_box b = box_of(other.win);
        if (b.y <= cy && cy <= b.y + b.sy) line.occupy(b.x, b.sx);
    }
}

}  // namespace

BOOL WINS_init() {
    LL_init(&g_window_list);
    g_window_focus = nullptr;
    g_next_uid = 0;
    if (!WINSCREEN_start()) return FALSE;
    WINS_setup_screen();
    return TRUE;
}

void WINS_setup_screen() {
    start_color();
    intrflush(stdscr, FALSE);
    keypad(stdscr, TRUE);
    curs_set(0);
    WINS_setcolors(WINS_color_setting());
    wattrset(stdscr, WINS_attr_normal());
    wbkgd(stdscr, ' ' | static_cast<chtype>(WINS_attr_normal()));
    nodelay(stdscr, TRUE);
}

void WINS_cleanup() {
    for (WINS_window& win : LL_each<WINS_window>(g_window_list))
        free_curses_parts(&win);
    LL_clear(&g_window_list);
    g_window_focus = nullptr;
    g_next_uid = 0;
    WINSCREEN_end();
}

WINS_window* WINS_create(const char* ident, int sx, int sy) {
    if (sx < 1 || sy < 1) return nullptr;
    WINS_window record{};
    set_identity(&record, ident);
    LL_NODE* node = nullptr;
    if (make_curses_parts(&record, sx, sy)) node = LL_insert_tail(&g_window_list, &record, sizeof record);
    if (node == nullptr) {
        free_curses_parts(&record);
        return nullptr;
    }
    WINS_window* win = LL_data<WINS_window>(node);
    if (!win->saveable || !restore_saved(win)) WINS_center(win);
    return win;
}

void WINS_delete(WINS_window* win) {
    if (win == nullptr) return;
    WINS_hide_window(win);
    WINS_UID ident;  // the record goes, and its identity with it
    std::memcpy(ident, win->ident, sizeof ident);
    const auto release = [](void* data, void* param) -> BOOL {
        auto* record = static_cast<WINS_window*>(data);
        if (!same_identity(*record, static_cast<const char*>(param))) return FALSE;
        if (LL_data<WINS_window>(g_window_focus) == record) g_window_focus = nullptr;
        free_curses_parts(record);
        return TRUE;
    };
    LL_selective_delete(&g_window_list, release, ident);
}

void WINS_show_window(WINS_window* win) {
    if (!has_curses_parts(win)) return;
    LL_NODE* node = WINS_node_by_window(win);
    if (node == nullptr) return;
    win->visible = TRUE;
    show_panel(win->pan);
    if (g_window_focus == nullptr) move_focus(node);
}

void WINS_hide_window(WINS_window* win) {
    if (!has_curses_parts(win)) return;
    hide_panel(win->pan);
    win->visible = FALSE;
    if (!win->focused) return;
    WINS_focus_hide();
    win->focused = FALSE;
    if (g_window_focus == WINS_node_by_window(win)) g_window_focus = nullptr;
}

void WINS_focus_window(WINS_window* win) {
    if (!has_curses_parts(win)) return;
    LL_NODE* node = WINS_node_by_window(win);
    if (node == nullptr) return;
    win->visible = TRUE;
    show_panel(win->pan);
    move_focus(node);
}

void WINS_advance_focus() {
    move_focus(find_in_ring(next_in_ring, WINS_SKIP_IN_CYCLE));
}

void WINS_backwards_focus() {
    move_focus(find_in_ring(previous_in_ring, WINS_SKIP_IN_CYCLE));
}

void WINS_focus_hide() {
    LL_NODE* node = find_in_ring(previous_in_ring, WINS_AT_BOTTOM | WINS_SKIP_IN_CYCLE);
    if (node == nullptr) node = find_in_ring(previous_in_ring, WINS_SKIP_IN_CYCLE);
    move_focus(node);
}

void WINS_relative_move(WINS_window* win, int dx, int dy) {
    if (!checked(win)) return;
    const WINPLACE_box now = box_of(win->win);
    const long x = std::max(0L, static_cast<long>(now.x) + dx);
    const long y = std::max(0L, static_cast<long>(now.y) + dy);
    // A step that would leave the screen is refused whole: the window stops at the edge instead of sliding
    // along it.
    if (x + now.sx > COLS || y + now.sy > WINPLACE_rows()) return;
    move_to_wish(win, static_cast<int>(x), static_cast<int>(y));
}

void WINS_absolute_move(WINS_window* win, int px, int py) {
    if (checked(win)) move_to_wish(win, px, py);
}

void WINS_center(WINS_window* win) {
    if (!checked(win)) return;
    const WINPLACE_box at = WINPLACE_fit(WINPLACE_centered(getmaxx(win->win), getmaxy(win->win)));
    move_to_wish(win, at.x, at.y);
}

void WINS_set_size(WINS_window* win, int sx, int sy) {
    if (!checked(win)) return;
    // Owners set the size on every update: the wish is compared, so that a small screen costs nothing. No
    // window can be smaller than a cell.
    if (sx < 1 || sy < 1 || (sx == win->wish_sx && sy == win->wish_sy)) return;
    win->wish_sx = sx;
    win->wish_sy = sy;
    const WINPLACE_box old = box_of(win->win);
    const WINPLACE_box now = WINPLACE_fit({old.x, old.y, sx, sy});
    if (now == old) return;
    // A window that stands where it was wished to stand has its new place as the wish; one that the screen
    // pushed aside goes on wishing for the old one.
    if (old.x == win->wish_x) win->wish_x = now.x;
    if (old.y == win->wish_y) win->wish_y = now.y;
    if (!rebuild_in_place(win, now)) free_curses_parts(win);
}

void WINS_autoposition(WINS_window* win) {
    if (!checked(win)) return;
    WINPLACE_scan_line line;
    if (!line.ok()) {
        UTIL_assertion_failed_errno("wins", __LINE__, "(scan_line=(BYTE *)calloc(BITS_SIZE(COLS),1)) != NULL",
                                    errno);
        return;
    }
    // The line is not cleared from row to row: it gathers the columns of every window met so far.
    for (int cy = 0; cy < LINES - 1; ++cy) {
        occupy_row(line, win, cy);
        if (const int cx = line.find_free(getmaxx(win->win)); cx >= 0) {
            move_to_wish(win, cx, cy);
            return;
        }
    }
    move_to_wish(win, 0, 0);
}

void WINS_arrange() {
    std::vector<WINS_window*> windows;
    std::vector<WINPLACE_box> boxes;
    for (WINS_window& win : LL_each<WINS_window>(g_window_list)) {
        if (!win.visible || !has_curses_parts(&win) || (win.flags & WINS_ON_TOP) != 0) continue;
        windows.push_back(&win);
        boxes.push_back(box_of(win.win));
    }
    WINPLACE_arrange(boxes);
    for (std::size_t i = 0; i < windows.size(); ++i)
        move_to_wish(windows[i], boxes[i].x, boxes[i].y);
}

void WINS_screen_resized() {
    CURSGRID::forget_shown();
    for (WINS_window& win : LL_each<WINS_window>(g_window_list)) {
        if (!has_curses_parts(&win)) continue;
        const WINPLACE_box wanted = WINPLACE_fit({win.wish_x, win.wish_y, win.wish_sx, win.wish_sy});
        const WINPLACE_box now = box_of(win.win);
        if (wanted.sx != now.sx || wanted.sy != now.sy)
            rebuild_in_place(&win, wanted);
        else
            place(&win, wanted.x, wanted.y);
    }
}

const WINS_UID* WINS_uid_of_window(const WINS_window* win, WINS_UID* dst) {
    if (win == nullptr) return nullptr;
    if (dst != nullptr) std::memcpy(*dst, win->ident, sizeof *dst);
    return &win->ident;
}

WINS_window* WINS_window_by_uid(const WINS_UID* uid) {
    return uid == nullptr ? nullptr : LL_data<WINS_window>(node_by_identity(*uid));
}

LL_NODE* WINS_node_by_window(const WINS_window* win) {
    return win == nullptr ? nullptr : node_by_identity(win->ident);
}

BOOL WINS_focus_edits_text() {
    return g_window_focus != nullptr && (LL_data<WINS_window>(g_window_focus)->flags & WINS_EDITS_TEXT) != 0;
}

void WINS_update() {
    if (WINSCREEN_size_signalled()) WINSCREEN_repaint();
    for (const WINS_window& win : LL_each<WINS_window>(g_window_list)) {
        if (!has_curses_parts(&win)) continue;
        if (!win.visible)
            hide_panel(win.pan);
        else if ((win.flags & WINS_ON_TOP) != 0)
            top_panel(win.pan);
        else if ((win.flags & WINS_AT_BOTTOM) != 0 && !win.focused)
            bottom_panel(win.pan);
    }
}

BOOL WINS_keypress(int key) {
    if (key == CURSKEYS_TAB)
        WINS_advance_focus();
    else if (key == CURSKEYS_BTAB)
        WINS_backwards_focus();
    else if (key == KEY_F(3))
        WINS_arrange();
    else
        return FALSE;
    return TRUE;
}

namespace {

constexpr int LEAP = 8;  // cells that Shift with an arrow key moves a window

// As far as that, or to the edge of the screen.
void leap(WINS_window* win, int dx, int dy) {
    if (!checked(win)) return;
    const WINPLACE_box now = box_of(win->win);
    const WINPLACE_box at = WINPLACE_fit({now.x + dx, now.y + dy, now.sx, now.sy});
    move_to_wish(win, at.x, at.y);
}

}  // namespace

BOOL WINS_default_keyhandler(WINS_window* win, int key) {
    if (win == nullptr || !win->focused) return FALSE;
    switch (key) {
        case CURSKEYS_CTRL_W:
        case CURSKEYS_ESCAPE:
            WINS_hide_window(win);
            break;
        case KEY_SF:
            leap(win, 0, LEAP);
            break;
        case KEY_SR:
            leap(win, 0, -LEAP);
            break;
        case KEY_SLEFT:
            leap(win, -LEAP, 0);
            break;
        case KEY_SRIGHT:
            leap(win, LEAP, 0);
            break;
        case KEY_DOWN:
            WINS_relative_move(win, 0, 1);
            break;
        case KEY_UP:
            WINS_relative_move(win, 0, -1);
            break;
        case KEY_LEFT:
            WINS_relative_move(win, -1, 0);
            break;
        case KEY_RIGHT:
            WINS_relative_move(win, 1, 0);
            break;
        default:
            return FALSE;
    }
    return TRUE;
}

CURSGRID* WINS_picture(WINS_window* win) {
    if (win == nullptr || win->win == nullptr) return nullptr;
    if (win->picture == nullptr) win->picture = new CURSGRID(win->win);
    win->picture->attach(win->win);
    return win->picture;
}

void WINS_show_pictures() {
    for (WINS_window& win : LL_each<WINS_window>(g_window_list))
        if (win.visible && win.picture != nullptr) WINS_picture(&win)->show();
}

void WINS_center_string(WINS_window* win, const char* str, int y) {
    if (!checked(win) || str == nullptr) return;
    CURSGRID* const picture = WINS_picture(win);
    const CURSGRID_box place{0, 1, picture->whole().rows, picture->whole().cols - 2};
    picture->put_centered(place, y, static_cast<chtype>(getattrs(win->win)), str);
}

void WINS_window_border(WINS_window* win, int attr) {
    if (checked(win)) WINS_picture(win)->put_border(static_cast<chtype>(attr));
}

void WINS_blank_window(WINS_window* win) {
    if (checked(win)) WINS_picture(win)->fill(static_cast<chtype>(getattrs(win->win)));
}

void WINS_save_window_setup() {
    if (g_conf == nullptr) return;
    for (const WINS_window& win : LL_each<WINS_window>(g_window_list)) {
        if (!win.saveable || win.win == nullptr) continue;
        const auto save = [&win](const char* key, const std::string& value) {
            CONF_set_va(g_conf, value, {"Windows", win.ident, key});
        };
        save("XPos", std::to_string(getbegx(win.win)));
        save("YPos", std::to_string(getbegy(win.win)));
        save("Visible", win.visible ? "TRUE" : "FALSE");
    }
}

int WINS_frame_attr(const WINS_window* win) {
    return win != nullptr && win->focused && !CURSDIALOG_active() ? WINS_attr_highlight()
                                                                  : WINS_attr_normal();
}

void WINS_draw_frame(WINS_window* win, const char* title) {
    if (!checked(win)) return;
    const int attr = WINS_frame_attr(win);
    wattrset(win->win, attr);
    WINS_blank_window(win);
    WINS_window_border(win, attr);
    WINS_center_string(win, title, 0);
    wattrset(win->win, WINS_attr_normal());
}
