// One thread plays both ends: the console's link only moves inside its own calls, and this end only reads
// what those calls have already put into the socket.
#include "support/server_end.h"

#include <ostream>
#include <stdexcept>

#include "cursclient/cursclient.h"
#include "libvesk/messages/netmsg.h"

namespace {

void expect(bool holds, const char* what) {
    if (!holds) throw std::runtime_error(what);
}

}  // namespace

ServerEnd::ServerEnd() {
    const std::string path = folder_ / "server.sock";
    const wire::Listener listener(path);
    VESKMSG_connect_params params;
    VESKMSG_init_params(&params);
    params.id_str = "CLIENT";
    params.host_override = path.c_str();
    expect(INST_connect(&g_lnk, &params), "the console does not connect");

    peer_.emplace(listener.next());
    send(wire::welcome());
    const auto take = [] {
        VESKMSG_process_messages(
            &g_lnk.msg_lnk, [](VESKMSG_proc_msg*, void*) {}, nullptr);
    };
    expect(wire::until(take, [] { return g_lnk.msg_lnk.stat == VESKMSG_S_OPEN; }),
           "the console's link did not open");
}

ServerEnd::~ServerEnd() {
    INST_disconnect(&g_lnk);
}

void ServerEnd::send(FRAME_span frames) {
    peer_->send(frames);
    peer_->write();
    expect(peer_->unsent() == 0, "more than the socket holds");
}

std::vector<ServerEnd::Sent> ServerEnd::received() {
    expect(VESKMSG_flush(&g_lnk.msg_lnk, 10), "the console's messages do not leave");
    while (peer_->look()) {
    }
    std::vector<Sent> all;
    for (const wire::Seen& f : peer_->frames()) {
        if (f.kind != FRAME_MESSAGE) continue;
        const auto* payload = reinterpret_cast<const std::uint8_t*>(f.payload.data());
        all.push_back({f.value, f.flags, f.dest, f.record, {payload, payload + f.payload.size()}});
    }
    peer_->frames().clear();
    return all;
}

std::ostream& operator<<(std::ostream& out, const ServerEnd::Sent& s) {
    const NETMSG_entry* entry = NETMSG_by_type(s.type);
    out << (entry != nullptr ? entry->name : "?") << " flags " << s.flags << " to \"" << s.dest << "\" "
        << s.record;
    for (const std::uint8_t byte : s.payload)
        out << ' ' << static_cast<int>(byte);
    return out;
}
