// The rows of the overview as they are drawn: how the columns share the width of the window, and the little
// trends. Private to the overview.
#pragma once

#include "cursclient/wins.h"
#include "libvesk/watch/watch.h"

// Each draws row y of the window, from border to border.
void ROWS_draw_headings(WINS_window* win, int y);
void ROWS_draw_instrument(WINS_window* win, int y, const WATCH_instrument& it, FTIME now, BOOL is_selected);
void ROWS_draw_event_headings(WINS_window* win, int y);
void ROWS_draw_event(WINS_window* win, int y, const WATCH_event& event);
void ROWS_draw_keys(WINS_window* win, int y, BOOL on_events);
