// How a link over TCP parts: what was sent arrives, though the other side is slow and has said things that
// nobody will read.
#include <netinet/in.h>

#include <thread>

#include "link_rig.h"

namespace {

constexpr int MESSAGES = 100;  // of 8 KiB: more than a small buffer holds, less than what the sender's takes

// A server on a port of its own that takes little ahead of what it reads.
class SlowServer {
  public:
    SlowServer() {
        const int little = 4096;
        setsockopt(listener_, SOL_SOCKET, SO_RCVBUF, &little, sizeof little);
        sockaddr_in at{};
        at.sin_family = AF_INET;
        at.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof at;
        EXPECT_EQ(bind(listener_, reinterpret_cast<const sockaddr*>(&at), sizeof at), 0);
        EXPECT_EQ(listen(listener_, 1), 0);
        getsockname(listener_, reinterpret_cast<sockaddr*>(&at), &size);
        port_ = ntohs(at.sin_port);
    }
    ~SlowServer() { close(listener_); }
    [[nodiscard]] std::string host() const { return "127.0.0.1:" + std::to_string(port_); }
    [[nodiscard]] int take() const { return accept(listener_, nullptr, nullptr); }

  private:
    int listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    int port_ = 0;
};

TEST(Disconnect, WhatWasSentArrivesThoughSomethingIsUnread) {
    const SlowServer server;
    INST_link link;
    VESKMSG_connect_params params;
    VESKMSG_init_params(&params);
    const std::string host = server.host();
    params.host_override = host.c_str();
    ASSERT_TRUE(INST_connect(&link, &params));
    wire::End end(server.take());
    FRAME_bytes welcome;
    FRAME_encode_welcome(&welcome);
    end.send(welcome);
    ASSERT_TRUE(wire::until([&] { end.look(), VESKMSG_process_messages(&link.msg_lnk, nullptr, nullptr); },
                            [&] { return link.msg_lnk.stat == VESKMSG_S_OPEN; }));

    const NETMSG_entry* entry = NETMSG_by_type(MSG_LOG_MONITOR);
    const std::vector<char> record(entry->dsd->total_size);
    for (int i = 0; i < MESSAGES; ++i)
        ASSERT_TRUE(VESKMSG_queue_message(&link.msg_lnk, entry->msg, 1, nullptr, record.data(), record.size(),
                                          entry->dsd->name));
    ASSERT_TRUE(VESKMSG_flush(&link.msg_lnk, 10));
    end.send(wire::message(MSG_TEST_ONE, 1));
    end.write();
    end.frames().clear();
    std::thread reading([&] { EXPECT_TRUE(wire::until([&] { end.look(); }, [&] { return end.ended(); })); });
    VESKMSG_disconnect(&link.msg_lnk);
    reading.join();
    EXPECT_EQ(end.frames().size(), std::size_t{MESSAGES});
}

}  // namespace
