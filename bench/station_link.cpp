// Connecting and sending.
#include "station_link.h"

#include <cstdio>
#include <cstdlib>

#include "libvesk/messages/records/cpc.h"
#include "libvesk/support/util.h"

namespace {

void check(BOOL ok, const char* what, const VESKMSG_link& link) {
    if (ok) return;
    std::fprintf(stderr, "%s: %s\n", what, VESKMSG_error(&link).c_str());
    std::exit(1);
}

STATION_message announcement(const char* source, const char* type, const char* display_name, char id_ch) {
    NET_SERVER_InstrumentInfo info{};
    UTIL_strcpynt(info.type, type);
    UTIL_strcpynt(info.display_name, display_name);
    info.id_ch = id_ch;
    const char* const bytes = reinterpret_cast<const char*>(&info);
    return {source,
            MSG_SERVER_INSTRUMENTINFO,
            NETDSD_of<NET_SERVER_InstrumentInfo>(),
            {bytes, bytes + sizeof info}};
}

}  // namespace

STATION_link::STATION_link(STATION_feed& feed, const std::string& socket) {
    for (const SIM_kind& kind : SIM_kinds())
        connect(kind.name, socket);
    connect(MARK_NAME, socket);
    for (const STATION_message& m : feed.join())
        queue(m, FRAME_TO_ALL | FRAME_KEEP, nullptr);
    queue(announcement(MARK_NAME, MARK_TYPE, "Mark", MARK_KEY), FRAME_TO_ALL | FRAME_KEEP, nullptr);
    flush();
}

void STATION_link::connect(const std::string& name, const std::string& socket) {
    auto& link = *(links_[name] = std::make_unique<INST_link>());
    VESKMSG_connect_params params;
    VESKMSG_init_params(&params);
    params.id_str = name.c_str();
    params.host_override = socket.c_str();
    check(INST_connect(&link, &params) && INST_wait_connected(&link), "cannot connect", link.msg_lnk);
}

void STATION_link::send(const STATION_message& m) {
    queue(m, 0, "CLIENT");
}

void STATION_link::queue(const STATION_message& m, DWORD flags, const char* dest) {
    VESKMSG_link& link = links_.at(m.source)->msg_lnk;
    const BOOL ok = VESKMSG_queue_message(&link, m.msg, flags, dest, m.payload.data(), m.payload.size(),
                                          m.dsd != nullptr ? m.dsd->name : nullptr);
    check(ok, "cannot send", link);
}

void STATION_link::show(double number) {
    VESKMSG_queue(&links_.at(MARK_NAME)->msg_lnk, MSG_CPC_3010_AVERAGE, 0, "CLIENT",
                  NET_CPC_3010_Avg{0, number, 0});
}

BOOL STATION_link::pump() {
    BOOL all_sent = TRUE;
    for (auto& [name, link] : links_)
        all_sent = VESKMSG_flush(&link->msg_lnk, 0) && all_sent;
    return all_sent;
}

void STATION_link::flush() {
    static constexpr double PATIENCE_SECONDS = 60;
    for (auto& [name, link] : links_)
        check(VESKMSG_flush(&link->msg_lnk, PATIENCE_SECONDS), "cannot send", link->msg_lnk);
}
