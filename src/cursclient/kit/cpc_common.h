// Parts that the condensation particle counters share: the shape of their records, the messages that fill
// them and the rows that several of them show.
#pragma once

#include <array>
#include <span>

#include "cursclient/kit/instdisp.h"
#include "libvesk/messages/records/cpc.h"

template <class Avg, class Instant, class Status>
struct CPC_record : INSTDISP_head {
    Avg avg;          // last average
    Instant instant;  // latest reading, with the running average
    Status status;
};

template <class R>
[[nodiscard]] constexpr std::array<INSTDISP_store<R>, 3> CPC_stores(NETMSG_type average, NETMSG_type instant,
                                                                    NETMSG_type status) {
    using store = INSTDISP_store<R>;
    return {store::template into<&R::avg>(average), store::template into<&R::instant>(instant),
            store::template into<&R::status>(status)};
}

// Rows 1 to 4: the concentrations.
template <class R>
void CPC_draw_concentrations(const R* pd, const CANVAS& d) {
    d.put(1, 1, "                Value  StdDev");
    d.put(2, 1, "Last Average: *~5.1f  *~3.2f", pd->avg.concentration, pd->avg.stddev_concentration);
    d.put(3, 1, "Running Avg:  *~5.1f  *~3.2f", pd->instant.running.concentration,
          pd->instant.running.stddev_concentration);
    d.put(4, 1, "Last reading: *~5.1f", pd->instant.concentration);
}

// Rows 5 to 8 of the kinds that grow their droplets in butanol.
template <class R>
void CPC_draw_butanol_temperatures(const R* pd, const CANVAS& d) {
    d.put(5, 1, "Display Conc: *~5.1f", pd->instant.display_concentration);
    d.put(6, 1, "T Saturator:    *~3.1f", pd->instant.T_saturator);
    d.put(7, 1, "T Condenser:    *~3.1f", pd->instant.T_condenser);
    d.put(8, 1, "Delta T:        *~3.1f", VESK_difference(pd->instant.T_saturator, pd->instant.T_condenser));
}

// Where the text of a warning stands.
struct CPC_warning_place {
    int row, col;
};
// The texts of the bits that are set, the i-th warning at the i-th place.
void CPC_draw_warnings(const CANVAS& d, WORD flags, NETDSD_meanings warnings,
                       std::span<const CPC_warning_place> places);

// The status row of kinds that show their instrument's error word as it is.
void CPC_draw_flag_word(const CANVAS& d, int row, bool have_comms, WORD flags);

// The whole kind that knows nothing but concentrations.
template <class R>
void CPC_draw_plain(R* pd, const CANVAS& d) {
    CPC_draw_concentrations(pd, d);
    d.no_comms(5, pd->status.have_comms);
}
template <class R>
[[nodiscard]] constexpr INSTDISP_kind<R> CPC_plain_kind(const std::array<INSTDISP_store<R>, 3>& stores) {
    return {.cols = 31, .rows = 7, .stores = stores, .draw = CPC_draw_plain<R>};
}
