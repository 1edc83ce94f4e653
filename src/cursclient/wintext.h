// Text inside managed windows: clipped to the inner side of the borders, never wrapped, and made of printable
// characters only, whatever came in. It is drawn into the window's picture (cursgrid.h).
#pragma once

#include <string_view>

#include "cursclient/wins.h"

// Writes `text` from (y, x) in the window's current attribute, as far as it lies within the borders. Bytes
// that are not printable ASCII are drawn as blanks.
void WINTEXT_put(WINS_window* win, int y, int x, std::string_view text);
// The same in another attribute.
void WINTEXT_put_attr(WINS_window* win, int y, int x, int attr, std::string_view text);
// Centred between the side borders.
void WINTEXT_put_centered(WINS_window* win, int y, int attr, std::string_view text);
// A line across the window on row y, joined to the border at both ends, with `title` centred on it ("" for
// none), in the window's current attribute.
void WINTEXT_rule(WINS_window* win, int y, std::string_view title);
