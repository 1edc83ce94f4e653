// Parts that the two particle soot absorption photometers share: the shape of their records, the status line
// and the filter change, which the instrument must confirm before the screen shows it.
#pragma once

#include <array>

#include "cursclient/kit/instdisp.h"
#include "libvesk/messages/records/psap.h"

template <class Avg, class Instant, class FilterStatus, class Status>
struct PSAP_record : INSTDISP_head {
    Avg avg;
    Instant instant;
    FilterStatus filter_status;
    Status status;
};

template <class R>
[[nodiscard]] constexpr std::array<INSTDISP_store<R>, 4> PSAP_stores(NETMSG_type average, NETMSG_type instant,
                                                                     NETMSG_type filter_status,
                                                                     NETMSG_type status) {
    using store = INSTDISP_store<R>;
    return {store::template into<&R::avg>(average), store::template into<&R::instant>(instant),
            store::template into<&R::filter_status>(filter_status), store::template into<&R::status>(status)};
}

// The last row.
template <class R>
void PSAP_draw_status(const R* pd, const CANVAS& d) {
    static constexpr int ROW = 12;
    if (d.no_comms(ROW, pd->status.have_comms)) return;
    if (const NETDSD_meaning* change = NETDSD_meaning_of(NET_PSAP_FILTER, pd->filter_status.changing_filter))
        d.meaning(ROW, 1, *change);
}

// ---- the menu; SET is the message that starts and ends a filter change

template <class R, NETMSG_type SET>
void PSAP_end_filter_change(R* pd, DWORD /*uid*/) {
    COMMAND_send(pd, SET, decltype(pd->filter_status){FALSE});
}

// By what the instrument says now, not by what it said when the menu was opened.
template <class R, NETMSG_type SET>
void PSAP_change_filter(R* pd, DWORD uid) {
    if (pd->filter_status.changing_filter)
        COMMAND_confirm("Have you pressed 'RESET Transmitance'?", uid,
                        COMMAND_do<PSAP_end_filter_change<R, SET>>);
    else
        COMMAND_send(pd, SET, decltype(pd->filter_status){TRUE});
}

template <class R>
[[nodiscard]] std::string PSAP_filter_label(const R* pd) {
    return pd->filter_status.changing_filter ? "2 Stop filter change" : "2 Start filter change";
}

template <class R, NETMSG_type SET>
inline constexpr INSTDISP_menu_row<R> PSAP_MENU[] = {{.hot_key = '2',
                                                      .action = PSAP_change_filter<R, SET>,
                                                      .guard = COMMAND_CONFIRM,
                                                      .label_of = PSAP_filter_label<R>}};
