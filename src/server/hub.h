// The hub: it knows who is connected, greets newcomers, routes messages, keeps what a late joiner must know
// and announces departures. It reads no payload. Sockets come from elsewhere, and so does time: tick().
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "libvesk/link/linktime.h"
#include "server/connection.h"
#include "server/fanout.h"
#include "server/keep.h"
#include "server/log.h"
#include "server/memory.h"

struct HUB_params {
    CONNECTION_limits connection;
    std::size_t memory_bytes = 32 * 1024 * 1024;  // bound of all that waits for all of them
    std::size_t keep_bytes = 32 * 1024 * 1024;    // bound of all that is kept
    std::size_t most_connections = 1000;
    double heartbeat_seconds = LINKTIME_HEARTBEAT;
    double silence_seconds = LINKTIME_SILENCE;
    double greeting_seconds = 10.0;    // a connection that has not said hello by then is closed
    double log_window_seconds = 60.0;  // lines of one cause are counted for so long, not written
    LOG::sink log = [](const std::string&) {};
    LOG::sink chat = [](const std::string&) {};  // what only --verbose shows
};

class HUB final : private CONNECTION::owner {
  public:
    static constexpr double TICK_SECONDS = 0.25;

    explicit HUB(HUB_params params);
    ~HUB();
    HUB(const HUB&) = delete;
    HUB& operator=(const HUB&) = delete;

    // Takes over an accepted connection.
    void adopt(STREAM::socket_type socket, CONNECTION_origin origin);
    // Heartbeats and everything that happens because nothing else did; every TICK_SECONDS.
    void tick();
    void close();
    [[nodiscard]] std::size_t count() const { return connections_.size(); }
    // Bytes of memory for what waits.
    [[nodiscard]] std::size_t memory() const { return memory_->bytes(); }
    [[nodiscard]] LOG& log() { return log_; }

  private:
    void on_frame(CONNECTION& connection, const FRAME& frame) override;
    void on_taken() override { flush(); }
    void on_sent(CONNECTION& connection) override { push(connection); }
    void on_gone(CONNECTION& connection, const std::string& why) override;
    void on_violation(CONNECTION& connection, const std::string& what) override;
    [[nodiscard]] double now() const override { return time_.now(); }

    void greet(CONNECTION& connection, const FRAME& frame);
    void claim_name(CONNECTION& connection);
    void refuse(CONNECTION& connection, FRAME_refusal_reason reason, const std::string& detail);
    void welcome(CONNECTION& connection);
    void route(CONNECTION& from, const FRAME& frame);
    void keep(CONNECTION& from, const FRAME_message& message, FRAME_span bytes);
    void announce(CONNECTION& from, KEEP::entry announcement);
    void tell_more(CONNECTION& to);
    void push(CONNECTION& to);
    void flush();
    void make_room();
    void hand_memory_back();
    void watch(CONNECTION& connection);
    void remove(CONNECTION& connection);
    void announce_departure(const CONNECTION& connection);
    void retry_waiting();
    void complain_once(CONNECTION& connection, MSGCHECK_fault fault, const FRAME_message& message);
    [[nodiscard]] CONNECTION* holder_of(const std::string& name);

    HUB_params params_;
    std::shared_ptr<MEMORY> memory_ = std::make_shared<MEMORY>();
    LOG log_;
    LOG chat_;
    LINKTIME time_{2 * TICK_SECONDS};
    CONNECTION_list connections_;  // in order of arrival
    FANOUT fanout_;
    KEEP keep_;
    FRAME_bytes scratch_;
    FRAME_bytes heartbeat_;
    double next_heartbeat_;
    bool making_room_ = false;
};
