// The drawing surface of displays: a window with a formatting buffer and an attribute. A row of the screen is
// one call; every call is clipped to the inside of the window, so that a display does no arithmetic of
// widths.
#pragma once

#include <span>
#include <string_view>
#include <type_traits>

#include "cursclient/wins.h"
#include "libvesk/messages/netdsd_field.h"
#include "libvesk/support/sfmt.h"

class CANVAS {
  public:
    // Draws in CP_WHITE_BLUE. The window and the buffer (which keeps the last formatted text) stay their
    // owner's; a null window draws nothing.
    CANVAS(WINS_window* win, SFMT_buffer* sbfr);

    // The same canvas in another attribute: any, a fault's, the blinking alarm's of this tick.
    [[nodiscard]] CANVAS in(int attr) const;
    [[nodiscard]] CANVAS fault() const { return in(WINS_attr_fault()); }
    [[nodiscard]] CANVAS alarm() const { return in(WINS_attr_alarm()); }

    // Formatted text at (row, col); formats are those of SFMT_altprintf, checked when compiled.
    template <class... Args>
    void put(int row, int col, SFMT_altformat<std::type_identity_t<Args>...> format, Args... args) const {
        SFMT_altprintf(sbfr_, format, args...);
        text(row, col, SFMT_get_buffer(sbfr_));
    }
    // The same, centred between the side borders.
    template <class... Args>
    void center(int row, SFMT_altformat<std::type_identity_t<Args>...> format, Args... args) const {
        SFMT_altprintf(sbfr_, format, args...);
        text_centered(row, SFMT_get_buffer(sbfr_));
    }
    // A label and, at a column of its own, a value.
    template <class... Args>
    void field(int row, int col, std::string_view label, int value_col,
               SFMT_altformat<std::type_identity_t<Args>...> format, Args... args) const {
        text(row, col, label);
        put(row, value_col, format, args...);
    }
    // A label at column 1 and one number in each of the columns: value(i) is the i-th. (A callable, because
    // the doubles of records must be passed by value.)
    template <class Value>
    void across(int row, std::string_view label, std::span<const int> cols, SFMT_altformat<double> format,
                Value value) const {
        text(row, 1, label);
        for (int i = 0; const int col : cols)
            put(row, col, format, static_cast<double>(value(i++)));
    }

    // The text that put would write, for a place that depends on its length; lives until the next of these.
    template <class... Args>
    [[nodiscard]] std::string_view formatted(SFMT_altformat<std::type_identity_t<Args>...> format,
                                             Args... args) const {
        SFMT_altprintf(sbfr_, format, args...);
        return SFMT_get_buffer(sbfr_);
    }

    // Text as it stands; the buffer keeps what it holds.
    void text(int row, int col, std::string_view text) const;
    void text_centered(int row, std::string_view text) const;
    // A line from border to border in the frame's attribute, with a title centred on it.
    void rule(int row, std::string_view title = "") const;
    // One solid cell of a bar.
    void block(int row, int col) const;
    // The text of a record's value or flag: a fault in the fault's attribute.
    void meaning(int row, int col, const NETDSD_meaning& m) const;
    // The centred alarm of an instrument that does not answer. TRUE when it was drawn.
    bool no_comms(int row, bool have_comms) const;

  private:
    WINS_window* win_;
    SFMT_buffer* sbfr_;
    int attr_;
};
