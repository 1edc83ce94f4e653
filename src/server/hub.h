// The hub: it knows who is connected, greets newcomers, routes messages, keeps what a late joiner must know
// and announces departures. It reads no payload. Sockets come from elsewhere, and so does time: tick().
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "libvesk/link/linktime.h"
#include "libvesk/link/stream.h"
#include "server/keep.h"
#include "server/peer.h"

struct HUB_params {
    std::size_t queue_bytes = 8 * 1024 * 1024;  // bound of a peer's output queue
    std::size_t keep_bytes = 32 * 1024 * 1024;  // bound of all that is kept
    std::size_t most_peers = 1000;
    double stall_seconds = 1.0;  // over the bound and taking nothing for so long: dropped
    double heartbeat_seconds = LINKTIME_HEARTBEAT;
    double silence_seconds = LINKTIME_SILENCE;
    double greeting_seconds = 10.0;  // a connection that has not said hello by then is closed
    std::function<void(const std::string&)> log = [](const std::string&) {};
    std::function<void(const std::string&)> chat = [](const std::string&) {};  // what only --verbose shows
};

class HUB {
  public:
    static constexpr double TICK_SECONDS = 0.25;

    explicit HUB(HUB_params params);
    ~HUB();
    HUB(const HUB&) = delete;
    HUB& operator=(const HUB&) = delete;

    // Takes over an accepted connection; `where` says in the log where it comes from.
    void adopt(STREAM::socket_type socket, std::string where);
    // Heartbeats and everything that happens because nothing else did; every TICK_SECONDS.
    void tick();
    void close();
    [[nodiscard]] std::size_t count() const { return peers_.size(); }

    // What peers report.
    void on_frame(PEER& peer, const FRAME& frame);
    void on_gone(PEER& peer, const std::string& why);
    void on_violation(PEER& peer, const std::string& what);
    void flush();  // starts all that was sent since the last time
    [[nodiscard]] const HUB_params& params() const { return params_; }
    [[nodiscard]] double now() const { return time_.now(); }

  private:
    void greet(PEER& peer, const FRAME& frame);
    void claim_name(PEER& peer);
    void refuse(PEER& peer, FRAME_refusal_reason reason, const std::string& detail);
    void welcome(PEER& peer);
    void replay(PEER& to);
    void route(PEER& from, const FRAME& frame);
    void keep(PEER& from, const FRAME_message& message, FRAME_span bytes);
    void deliver(const FRAME_message& message, FRAME_span bytes, PEER* from);
    void watch(PEER& peer);
    void remove(PEER& peer);
    void announce_departure(const PEER& peer);
    void retry_waiting();
    void complain_once(PEER& peer, MSGCHECK_fault fault, const FRAME_message& message);
    [[nodiscard]] PEER* holder_of(const std::string& name);

    HUB_params params_;
    LINKTIME time_{2 * TICK_SECONDS};
    std::vector<std::shared_ptr<PEER>> peers_;  // in order of arrival
    KEEP keep_;
    FRAME_bytes scratch_;
    FRAME_bytes heartbeat_;
    double next_heartbeat_;
};
