// Drawing inside windows for displays.
#include "cursclient/kit/canvas.h"

#include "cursclient/wintext.h"
#include "libvesk/messages/records/shared.h"

CANVAS::CANVAS(WINS_window* win, SFMT_buffer* sbfr) : win_(win), sbfr_(sbfr), attr_(WINS_attr_normal()) {}

CANVAS CANVAS::in(int attr) const {
    CANVAS other = *this;
    other.attr_ = attr;
    return other;
}

void CANVAS::text(int row, int col, std::string_view text) const {
    WINTEXT_put_attr(win_, row, col, attr_, text);
}

void CANVAS::text_centered(int row, std::string_view text) const {
    WINTEXT_put_centered(win_, row, attr_, text);
}

void CANVAS::rule(int row, std::string_view title) const {
    if (win_ == nullptr || win_->win == nullptr) return;
    wattrset(win_->win, WINS_frame_attr(win_));
    WINTEXT_rule(win_, row, title);
    wattrset(win_->win, WINS_attr_normal());
}

void CANVAS::block(int row, int col) const {
    static constexpr wchar_t FULL_BLOCK = L'\u2588';
    if (CURSGRID* const picture = WINS_picture(win_))
        picture->put_special(picture->inside(), row, col, static_cast<chtype>(attr_), FULL_BLOCK, ACS_BLOCK);
}

void CANVAS::meaning(int row, int col, const NETDSD_meaning& m) const {
    (m.severity == NETDSD_FAULT ? fault() : *this).text(row, col, m.text);
}

bool CANVAS::no_comms(int row, bool have_comms) const {
    const NETDSD_meaning* silent = NETDSD_meaning_of(NET_COMMS, have_comms);
    if (silent == nullptr) return false;
    alarm().text_centered(row, silent->text);
    return true;
}
