// One connection to the server: its frames are handed to the hub one by one, what the hub sends it waits in a
// bounded queue. A peer whose queue is over the bound holds up those who fill it until it has drained.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "libvesk/link/msgcheck.h"
#include "libvesk/link/stream.h"

class HUB;

class PEER final : public std::enable_shared_from_this<PEER>, public STREAM::owner {
  public:
    enum standing { GREETING, WAITING_FOR_NAME, OPEN, REFUSED, GONE };

    PEER(STREAM::socket_type socket, std::string where, HUB* hub);
    void start();

    // Who it is, from its hello on.
    standing stands = GREETING;
    FRAME_peer_kind kind = FRAME_PEER_CLIENT;
    std::string name;
    [[nodiscard]] bool is_instrument() const { return kind == FRAME_PEER_INSTRUMENT; }
    // For the log: "N11 (pid 712, uid 1000)".
    [[nodiscard]] std::string text() const;

    // Appends a frame to the queue; flush() starts it on its way.
    void send(FRAME_span frame);
    void flush() { stream_->flush(); }
    [[nodiscard]] std::size_t queued() const { return stream_->queued(); }
    // Refuses the greeting; the connection ends when the peer has heard so.
    void refuse(FRAME_refusal_reason reason, const std::string& text);
    void close();
    [[nodiscard]] bool hung_up() { return stream_->hung_up(); }

    // Over the bound: `sender`, who has just sent to it, is not read until this one has drained or is gone.
    [[nodiscard]] bool is_over() const { return over_; }
    void hold_up(PEER& sender);
    // Why it should be dropped now for not reading, or ""; asked at every tick.
    [[nodiscard]] std::string stalled();
    // Takes up frames again, soon, after a wait for a name or for others.
    void go_on();

    // Seconds since a byte came, not counting the time in which it was not read.
    [[nodiscard]] double silence() const;
    [[nodiscard]] double age() const;
    // TRUE once per peer and fault.
    [[nodiscard]] bool first_time(MSGCHECK_fault fault);

  private:
    void stream_received() override;
    void stream_sent() override;
    void stream_ended(const std::string& why) override;
    void take_frames();
    [[nodiscard]] bool is_readable() const;
    void release();
    void let_go();

    HUB* hub_;
    std::shared_ptr<STREAM> stream_;
    std::string where_;
    std::string ended_;  // why nothing more comes, while frames are left to take
    double born_;
    double heard_;
    bool over_ = false;
    double over_since_ = 0;
    double took_ = 0;  // when it last took bytes
    std::size_t on_the_way_ = 0;
    std::size_t held_by_ = 0;
    std::vector<std::weak_ptr<PEER>> held_up_;
    DWORD complained_ = 0;
};
