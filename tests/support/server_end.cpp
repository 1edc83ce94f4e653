// One thread plays both ends: the console's link only moves inside its own calls, and this end only reads
// what those calls have already put into the socket.
#include "support/server_end.h"

#include <gtest/gtest.h>

#include "cursclient/globals.h"
#include "libvesk/json/json_record.h"

namespace {

std::string text_of(const wire::Seen& message) {
    const NETMSG_entry* entry = NETMSG_by_type(message.value);
    std::string text = entry->name;
    if (message.flags != 0) text += " flags " + std::to_string(message.flags);
    if (!message.dest.empty()) text += " to " + message.dest;
    if (message.record.empty()) return text;
    EXPECT_EQ(entry->dsd, NETDSD_by_name(message.record)) << text << " travels with " << message.record;
    JSONREC_append_record(&(text += ' '), entry->dsd, message.payload.data());
    return text;
}

}  // namespace

ServerEnd::ServerEnd() {
    const std::string path = folder_ / "server.sock";
    const wire::Listener listener(path);
    const VESKMSG_connect_params params{"CLIENT", path.c_str(), FALSE};
    EXPECT_TRUE(INST_connect(&g_lnk, &params));
    peer_.emplace(listener.next());
    peer_->send(wire::welcome());
    peer_->write();
    EXPECT_TRUE(wire::until([] { VESKMSG_process_messages(&g_lnk.msg_lnk, nullptr, nullptr); },
                            [] { return g_lnk.msg_lnk.stat == VESKMSG_S_OPEN; }));
}

ServerEnd::~ServerEnd() {
    INST_disconnect(&g_lnk);
}

std::vector<std::string> ServerEnd::received() {
    EXPECT_TRUE(VESKMSG_flush(&g_lnk.msg_lnk, 10));
    while (peer_->look()) {
    }
    std::vector<std::string> all;
    for (const wire::Seen& frame : peer_->frames())
        if (frame.kind == FRAME_MESSAGE) all.push_back(text_of(frame));
    peer_->frames().clear();
    return all;
}
