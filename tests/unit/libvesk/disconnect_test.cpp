// How a link over TCP parts: what was sent arrives, though the other side is slow and has said things that
// nobody will read.
#include <netinet/in.h>

#include <thread>

#include "link_rig.h"

namespace {

constexpr int MESSAGES = 100;  // of 8 KiB: more than a small buffer holds, less than what the sender's takes

// Listens on a port of its own, as a server does that takes little ahead of what it reads.
int listen_slowly(std::string* host) {
    const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const int little = 4096;
    setsockopt(fd, SOL_SOCKET, SO_RCVBUF, &little, sizeof little);
    sockaddr_in at{};
    at.sin_family = AF_INET;
    at.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof at;
    EXPECT_EQ(bind(fd, reinterpret_cast<const sockaddr*>(&at), sizeof at), 0);
    EXPECT_EQ(listen(fd, 1), 0);
    getsockname(fd, reinterpret_cast<sockaddr*>(&at), &size);
    *host = "127.0.0.1:" + std::to_string(ntohs(at.sin_port));
    return fd;
}

TEST(Disconnect, WhatWasSentArrivesThoughSomethingIsUnread) {
    std::string host;
    const int listener = listen_slowly(&host);
    INST_link link;
    const VESKMSG_connect_params params{"CLIENT", host.c_str(), FALSE};
    ASSERT_TRUE(INST_connect(&link, &params));
    wire::End end(accept(listener, nullptr, nullptr));
    end.send(wire::welcome());
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
    close(listener);
}

}  // namespace
