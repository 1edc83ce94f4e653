// One connection to the server: its frames are handed to the hub one by one, what the hub sends it waits in a
// bounded queue. A connection whose queue is over the bound holds up those who fill it until it has drained.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "libvesk/link/msgcheck.h"
#include "libvesk/link/stream.h"
#include "server/keep.h"

// Where a connection comes from.
struct CONNECTION_origin {
    std::string text;  // for the log: "pid 712, uid 1000", or the address with its port
    std::string who;   // the same for connections of one origin: the process, or the host
};

struct CONNECTION_limits {
    std::size_t queue_bytes = 8 * 1024 * 1024;  // bound of the output queue
    double stall_seconds = 1.0;                 // over the bound and taking nothing for so long: dropped
};

class CONNECTION final : public std::enable_shared_from_this<CONNECTION>, private STREAM::owner {
  public:
    enum standing { GREETING, WAITING_FOR_NAME, OPEN, REFUSED, GONE };

    // The hub, as its connections see it.
    class owner {
      public:
        virtual void on_frame(CONNECTION& connection, const FRAME& frame) = 0;
        virtual void on_taken() = 0;                       // the frames that had come were all handed over
        virtual void on_sent(CONNECTION& connection) = 0;  // the queue became shorter after a wait
        virtual void on_gone(CONNECTION& connection, const std::string& why) = 0;
        virtual void on_violation(CONNECTION& connection, const std::string& what) = 0;
        [[nodiscard]] virtual double now() const = 0;  // seconds of link time
      protected:
        ~owner() = default;
    };

    // The queue takes its memory from `memory`.
    CONNECTION(STREAM::socket_type socket, CONNECTION_origin origin, owner* hub, CONNECTION_limits limits,
               const std::shared_ptr<std::pmr::memory_resource>& memory);
    void start();

    // The peer's kind and name, from its hello on.
    standing stands = GREETING;
    FRAME_peer_kind kind = FRAME_PEER_CLIENT;
    std::string name;
    [[nodiscard]] bool is_instrument() const { return kind == FRAME_PEER_INSTRUMENT; }
    // For the log: "N11 (pid 712, uid 1000)".
    [[nodiscard]] std::string text() const;
    // The name of an instrument, else the origin.
    [[nodiscard]] const std::string& who() const { return is_instrument() ? name : origin_.who; }

    // It is welcome: all kinds of frames may come now. What it is sent waits until it has been told what is
    // kept, as far as `told` says, by tell() up to end_telling().
    void open(KEEP::reading from);
    [[nodiscard]] bool is_being_told() const { return being_told_; }
    void tell(FRAME_span frame) { stream_->queue().append(frame); }
    void end_telling();
    KEEP::reading told;

    // Puts bytes into the queue, copied or shared; flush() starts them on their way.
    void send(FRAME_span bytes) { live().append(bytes), note_size(); }
    void send(const BLOCKS_piece& piece) { live().append(piece), note_size(); }
    void flush();
    // Bytes that the socket has not taken.
    [[nodiscard]] std::size_t unsent() { return stream_->queue().size(); }
    // Bytes of memory that wait for it, or for the rest of a frame that it began.
    [[nodiscard]] std::size_t memory();
    // Blocks for what goes to it alone.
    [[nodiscard]] BLOCKS& blocks() { return blocks_; }
    // Refuses the greeting; the connection ends when the peer has heard so.
    void refuse(FRAME_refusal_reason reason, const std::string& text);
    void close();
    [[nodiscard]] bool hung_up() { return stream_->hung_up(); }

    // Over the bound: `sender`, who has just sent to it, is not read until this one has drained or is gone.
    [[nodiscard]] bool is_over() const { return over_; }
    void hold_up(CONNECTION& sender);
    // Why it should be dropped now for not reading, or ""; asked at every tick.
    [[nodiscard]] std::string stalled();
    // Takes up frames again, soon, after a wait for a name or for others.
    void go_on();

    // Seconds since a byte came, not counting the time in which it was not read.
    [[nodiscard]] double silence() const;
    [[nodiscard]] double age() const;
    // TRUE once per connection and fault.
    [[nodiscard]] bool first_time(MSGCHECK_fault fault);

  private:
    void stream_received() override;
    void stream_sent() override;
    void stream_ended(const std::string& why) override;
    void take_frames();
    [[nodiscard]] bool takes_frames() const { return stands == GREETING || stands == OPEN; }
    [[nodiscard]] OUTQUEUE& live() { return being_told_ ? behind_ : stream_->queue(); }
    void note_size();
    void release();
    void let_go();

    owner* hub_;
    std::shared_ptr<std::pmr::memory_resource> memory_;
    std::shared_ptr<STREAM> stream_;
    CONNECTION_origin origin_;
    CONNECTION_limits limits_;
    bool being_told_ = false;
    OUTQUEUE behind_;  // what waits until it has been told
    BLOCKS blocks_;
    std::string ended_;  // why nothing more comes
    double born_;
    double heard_;
    bool over_ = false;
    double over_since_ = 0;
    double took_ = 0;  // when it last took bytes
    std::size_t on_the_way_ = 0;
    std::size_t held_by_ = 0;
    std::vector<std::weak_ptr<CONNECTION>> held_up_;
    DWORD complained_ = 0;
};

using CONNECTION_list = std::vector<std::shared_ptr<CONNECTION>>;
