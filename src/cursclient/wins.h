// The window manager: every managed curses window, its place, visibility and focus, the colours and the
// saved layout. Windows stay within rows 0 to LINES - 2; the bottom line is the status bar's.
#pragma once

#include <curses.h>
#include <panel.h>

#include "cursclient/wincolor.h"
#include "libvesk/support/ll.h"
#include "libvesk/support/types.h"
#include "libveskcurs/cursgrid.h"

using WINS_UID = char[65];  // a window's identity: at most 64 characters, terminated

// Bits of WINS_window::flags, set by the owner.
inline constexpr DWORD WINS_ON_TOP = 1;         // raised on every update
inline constexpr DWORD WINS_AT_BOTTOM = 2;      // lowered on every update while not focused
inline constexpr DWORD WINS_SKIP_IN_CYCLE = 4;  // Tab passes it by
inline constexpr DWORD WINS_EDITS_TEXT = 8;     // while it has the focus, Backspace is the text's

struct WINS_window {
    BOOL visible;
    BOOL focused;
    WINDOW* win;  // its size and origin are the window's
    PANEL* pan;
    DWORD flags;
    WINS_UID ident;  // also the key of its section in the settings
    BOOL saveable;   // the identity came from the caller and was free
    // The place and size that the owner and the operator asked for; the curses window is this, cut and moved
    // only as far as the present screen demands.
    int wish_x, wish_y, wish_sx, wish_sy;
    CURSGRID* picture;  // owned; null until something is drawn
};

extern LL_TYPE g_window_list;    // of WINS_window, in order of creation; owns the records
extern LL_NODE* g_window_focus;  // node of the focused window, or null
extern DWORD g_next_uid;         // number of the next generated identity

// Starts curses and sets the terminal up. FALSE, with the reason on standard error, when the terminal is no
// good (an unknown TERM); the process goes on.
[[nodiscard]] BOOL WINS_init();
void WINS_cleanup();
// Sets keypad, colours, background and no-delay on the present curses screen: the part of WINS_init that does
// not start curses, so that tests bring a screen of their own.
void WINS_setup_screen();

// A hidden window of sx columns and sy rows, or null. `ident` null, empty or that of a living window: a
// generated identity, never saved. A saved place is applied (see the settings document), otherwise the window
// is centred.
[[nodiscard]] WINS_window* WINS_create(const char* ident, int sx, int sy);
void WINS_delete(WINS_window* win);

void WINS_show_window(WINS_window* win);
void WINS_hide_window(WINS_window* win);
void WINS_focus_window(WINS_window* win);
void WINS_advance_focus();
void WINS_backwards_focus();
void WINS_focus_hide();

void WINS_relative_move(WINS_window* win, int dx, int dy);
void WINS_absolute_move(WINS_window* win, int px, int py);
void WINS_center(WINS_window* win);
// The window keeps its height in the stack and its visibility; what it showed is lost.
void WINS_set_size(WINS_window* win, int sx, int sy);
void WINS_autoposition(WINS_window* win);
// Moves all visible windows so that they overlap least; those that stay on top stay where they are.
void WINS_arrange();
// The screen has a new size: every window goes back to what was wished for as far as it fits.
void WINS_screen_resized();

// The window's identity (null for null); also copied to dst unless that is null.
const WINS_UID* WINS_uid_of_window(const WINS_window* win, WINS_UID* dst);
[[nodiscard]] WINS_window* WINS_window_by_uid(const WINS_UID* uid);
[[nodiscard]] LL_NODE* WINS_node_by_window(const WINS_window* win);

// The focused window edits text.
[[nodiscard]] BOOL WINS_focus_edits_text();
// Once per pass, before the panels are drawn: stacks them.
void WINS_update();
[[nodiscard]] BOOL WINS_keypress(int key);
[[nodiscard]] BOOL WINS_default_keyhandler(WINS_window* win, int key);

// The picture that the window shall show; null for a null window and one without a curses window.
[[nodiscard]] CURSGRID* WINS_picture(WINS_window* win);
// Once per pass, when everything is drawn: brings the windows in view up to date with their pictures.
void WINS_show_pictures();
// Text centred on row y, cut to the columns between the side borders.
void WINS_center_string(WINS_window* win, const char* str, int y);
void WINS_window_border(WINS_window* win, int attr);
void WINS_blank_window(WINS_window* win);
void WINS_save_window_setup();

// The attribute of a frame: highlighted while the window has the focus and no dialog is open.
[[nodiscard]] int WINS_frame_attr(const WINS_window* win);
// The frame every window has: blanked, border and title in the frame attribute; leaves CP_WHITE_BLUE set.
void WINS_draw_frame(WINS_window* win, const char* title);
