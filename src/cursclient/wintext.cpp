// Where in a window its text may stand.
#include "cursclient/wintext.h"

namespace {

chtype current_attr(const WINS_window* win) {
    return static_cast<chtype>(getattrs(win->win));
}

}  // namespace

void WINTEXT_put(WINS_window* win, int y, int x, std::string_view text) {
    if (CURSGRID* const picture = WINS_picture(win))
        picture->put(picture->inside(), y, x, current_attr(win), text);
}

void WINTEXT_put_attr(WINS_window* win, int y, int x, int attr, std::string_view text) {
    if (CURSGRID* const picture = WINS_picture(win))
        picture->put(picture->inside(), y, x, static_cast<chtype>(attr), text);
}

void WINTEXT_put_centered(WINS_window* win, int y, int attr, std::string_view text) {
    if (CURSGRID* const picture = WINS_picture(win))
        picture->put_centered(picture->inside(), y, static_cast<chtype>(attr), text);
}

void WINTEXT_rule(WINS_window* win, int y, std::string_view title) {
    CURSGRID* const picture = WINS_picture(win);
    if (picture == nullptr || y < 1 || y > picture->whole().rows - 2) return;
    picture->put_rule(y, current_attr(win));
    picture->put_centered(picture->inside(), y, current_attr(win), title);
}
