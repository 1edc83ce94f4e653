// Text inside managed windows: clipped to the inner side of the borders, never wrapped, and made of printable
// characters only, whatever came in.
#pragma once

#include <string_view>

#include "cursclient/wins.h"

// Writes `text` from (y, x) in the window's current attribute. What lies on or beyond the inner right border
// is cut; rows outside the inside (the border rows included) draw nothing. Bytes that are not printable ASCII
// are drawn as blanks.
void WINTEXT_put(WINS_window* win, int y, int x, std::string_view text);
// The same in another attribute; the window's current attribute stays.
void WINTEXT_put_attr(WINS_window* win, int y, int x, int attr, std::string_view text);
// Centred between the side borders.
void WINTEXT_put_centered(WINS_window* win, int y, int attr, std::string_view text);
// A line across the window on row y, joined to the border at both ends, with `title` centred on it ("" for
// none), in the window's current attribute.
void WINTEXT_rule(WINS_window* win, int y, std::string_view title);
