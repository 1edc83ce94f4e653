// The private parts of a message link: the connection and its handshake, the queue of received messages, and
// what is known of the instruments. Private to the VESKMSG_ functions, which are thin over it.
#pragma once

#include "libvesk/link/asio_config.h"  // first

#include <asio/io_context.hpp>
#include <deque>
#include <map>
#include <string>
#include <vector>

#include "libvesk/link/address.h"
#include "libvesk/link/linktime.h"
#include "libvesk/link/msgcheck.h"
#include "libvesk/link/stream.h"
#include "libvesk/link/veskmsg_types.h"
#include "libvesk/messages/records/server.h"

struct VESKMSG_received {
    MSGCHECK_found what;
    DWORD flags;
    std::string source;
    std::string dest;
    std::vector<std::uint64_t> payload;  // of this type for its alignment

    VESKMSG_received(const FRAME_message& m, const MSGCHECK_found& found);
    [[nodiscard]] std::size_t size() const { return sizeof *this + payload.size() * sizeof payload[0]; }
};

class VESKMSG_state final : private STREAM::owner {
  public:
    // `stat` is kept up to date as long as this lives.
    explicit VESKMSG_state(VESKMSG_LINK_STATUS* stat) : stat_(stat) {}

    BOOL connect(const ADDRESS& address, const std::string& name, FRAME_peer_kind kind);
    void close(const std::string& why);
    // The same, but what was sent arrives first, though that may take `seconds`.
    void part(double seconds);
    // Moves bytes both ways as far as that goes without blocking; heartbeats, time-outs.
    void pump();
    // `dsd` describes the payload, null without one; its padding does not leave.
    BOOL send(const FRAME_message& message, const NETDSD_entry* dsd);
    [[nodiscard]] BOOL all_sent() const { return stream_ == nullptr || stream_->queue().empty(); }

    [[nodiscard]] std::size_t waiting() const { return inbox_.size(); }
    // So much waits that nothing more is read.
    [[nodiscard]] bool inbox_full() const;
    // The message at the head of the queue; there is one.
    [[nodiscard]] VESKMSG_received take();
    // Gives one message to the listeners and to the callback, and keeps the list of instruments.
    void deliver(VESKMSG_received* received, VESKMSG_cb cb, void* param);

    // For poll(2): the socket, -1 without one, and the events that the link waits for.
    [[nodiscard]] int fd();
    [[nodiscard]] short events() const;

    struct listener {
        VESKMSG_cb cb;
        void* param;
        bool operator==(const listener&) const = default;
    };
    std::vector<listener> listeners;
    std::map<std::string, NET_SERVER_InstrumentInfo, std::less<>> known;
    std::string error;

  private:
    void reset();
    BOOL connect_local(const ADDRESS& address);
    BOOL connect_host(const ADDRESS& address);
    void connected();
    void stream_received() override;
    void stream_sent() override {}
    void stream_ended(const std::string& why) override;
    void take_frames();
    void frame(const FRAME& f);
    void message(const FRAME& f);
    void complain_once(MSGCHECK_fault fault, const FRAME_message& m);
    void watch_time();
    void fail(const std::string& why);

    // The means of a connection. It takes descriptors of its own, so it is made when it is needed.
    struct base {
        asio::io_context context;
        STREAM::socket_type connecting{context};
    };

    VESKMSG_LINK_STATUS* stat_;
    std::unique_ptr<base> base_;  // before all that lives by it
    std::shared_ptr<STREAM> stream_;
    LINKTIME time_{LINKTIME_HEARTBEAT};
    std::string where_;
    FRAME_bytes hello_;
    FRAME_bytes scratch_;
    std::deque<VESKMSG_received> inbox_;
    std::size_t inbox_bytes_ = 0;
    std::string ended_;  // why nothing more comes, while frames are left to take
    double heard_ = 0;
    double next_heartbeat_ = 0;
    DWORD complained_ = 0;  // bit per MSGCHECK_fault
    bool queue_full_ = false;
};
