// Parts that the displays of instruments with one set of values share: the latest ones, running averages and
// the last averages stand in three columns, and what the bits of the status mean stands below.
#pragma once

#include <array>

#include "cursclient/kit/instdisp.h"
#include "libvesk/messages/records/shared.h"

template <class Reading, class Instant, class Status>
struct READINGS_record : INSTDISP_head {
    Reading avg;      // last average
    Instant instant;  // latest values, with the running averages
    Status status;
};

template <class R>
[[nodiscard]] constexpr std::array<INSTDISP_store<R>, 3> READINGS_stores(NETMSG_type average,
                                                                         NETMSG_type instant,
                                                                         NETMSG_type status) {
    using store = INSTDISP_store<R>;
    return {store::template into<&R::avg>(average), store::template into<&R::instant>(instant),
            store::template into<&R::status>(status)};
}

// Columns of the values, each 7 wide: formats have that width. Labels have up to 17 characters.
inline constexpr int READINGS_COLUMNS[] = {19, 28, 37};
inline constexpr int READINGS_WIDTH = 46;  // of the window

// Row 1: what the columns hold.
void READINGS_headings(const CANVAS& d);
// A row of one member of the readings.
template <auto Member, class R>
void READINGS_row(const R* pd, const CANVAS& d, int row, std::string_view label,
                  SFMT_altformat<double> format = "*~4.2f") {
    const double values[] = {pd->instant.in.*Member, pd->instant.ra.*Member, pd->avg.*Member};
    d.across(row, label, READINGS_COLUMNS, format, [&values](int i) { return values[i]; });
}

// The texts of the bits that are set, one after the other from that row on, faults as `faults` draws them; as
// many rows as they need. Blanks stand between two of them.
void READINGS_words(const CANVAS& d, const CANVAS& faults, int row, int width, DWORD flags,
                    NETDSD_meanings meanings);
