// Reading frames, queueing them, and the accounting of who holds up whom.
#include "server/connection.h"

#include <asio/post.hpp>
#include <utility>

#include "libvesk/support/util.h"

namespace {

// Over the bound for this many stalls, however little it takes now and then: dropped, so that a peer which
// reads a trickle cannot slow the station down to it.
constexpr double PATIENCE = 5.0;

std::string megabytes(std::size_t n) {
    return std::to_string((n + 512 * 1024) / (1024 * 1024)) + " MiB";
}

}  // namespace

CONNECTION::CONNECTION(STREAM::socket_type socket, CONNECTION_origin origin, owner* hub,
                       CONNECTION_limits limits, const std::shared_ptr<std::pmr::memory_resource>& memory)
    : hub_(hub),
      memory_(memory),
      stream_(std::make_shared<STREAM>(std::move(socket), static_cast<STREAM::owner*>(this), memory)),
      origin_(std::move(origin)),
      limits_(limits),
      behind_(memory.get()),
      blocks_(memory.get()),
      born_(hub->now()),
      heard_(hub->now()) {
    stream_->reader().limit(FRAME_HELLO_MAX);
}

void CONNECTION::start() {
    stream_->read();
}

std::string CONNECTION::text() const {
    return name.empty() ? origin_.text : UTIL_printable(name) + " (" + origin_.text + ")";
}

void CONNECTION::open(KEEP::reading from) {
    stands = OPEN;
    stream_->reader().limit(FRAME_MAX);
    told = from;
    being_told_ = true;
}

void CONNECTION::end_telling() {
    being_told_ = false;
    stream_->queue().append(&behind_);
}

void CONNECTION::note_size() {
    if (over_ || live().size() <= limits_.queue_bytes) return;
    over_ = true;
    over_since_ = took_ = hub_->now();
}

void CONNECTION::flush() {
    if (const std::size_t before = unsent(); before > 0) {
        stream_->flush();
        if (unsent() < before) took_ = hub_->now();
    }
    if (over_ && live().size() <= limits_.queue_bytes / 2) release();
}

std::size_t CONNECTION::memory() {
    return stream_->queue().memory() + behind_.memory() + stream_->reader().parked();
}

void CONNECTION::refuse(FRAME_refusal_reason reason, const std::string& detail) {
    stands = REFUSED;
    FRAME_bytes frame;
    FRAME_encode_refusal(&frame, {reason, FRAME_VERSION, detail});
    send(frame);
    stream_->finish();
    stream_->reader().discard();
    stream_->read();
}

void CONNECTION::close() {
    stands = GONE;
    stream_->close();
    behind_.clear();
    release();
}

void CONNECTION::hold_up(CONNECTION& sender) {
    ++sender.held_by_;
    held_up_.push_back(sender.weak_from_this());
}

void CONNECTION::release() {
    over_ = false;
    for (const auto& waiting : std::exchange(held_up_, {}))
        if (const auto sender = waiting.lock()) sender->let_go();
}

void CONNECTION::let_go() {
    if (--held_by_ == 0) go_on();
}

void CONNECTION::go_on() {
    heard_ = hub_->now();
    asio::post(stream_->executor(), [self = shared_from_this()] { self->take_frames(); });
}

// A socket takes more only when much of what it holds has been read, so what it holds is looked at too.
std::string CONNECTION::stalled() {
    const double now = hub_->now();
    const double stall = limits_.stall_seconds;
    if (!over_) return "";
    const std::size_t held_before = std::exchange(on_the_way_, stream_->on_the_way());
    if (on_the_way_ < held_before) took_ = now;
    if (now - took_ >= stall) return "it does not read: " + megabytes(live().size()) + " wait for it";
    if (now - over_since_ >= PATIENCE * stall)
        return "it reads too slowly: " + megabytes(live().size()) + " wait for it";
    return "";
}

double CONNECTION::silence() const {
    return takes_frames() && held_by_ == 0 ? hub_->now() - heard_ : 0.0;
}

double CONNECTION::age() const {
    return hub_->now() - born_;
}

bool CONNECTION::first_time(MSGCHECK_fault fault) {
    const DWORD bit = 1U << fault;
    return (std::exchange(complained_, complained_ | bit) & bit) == 0;
}

void CONNECTION::stream_received() {
    heard_ = hub_->now();
    if (stands == REFUSED) {
        stream_->reader().discard();
        stream_->read();
        return;
    }
    take_frames();
}

void CONNECTION::stream_sent() {
    took_ = hub_->now();
    hub_->on_sent(*this);
}

void CONNECTION::stream_ended(const std::string& why) {
    ended_ = why;
    const auto self = shared_from_this();
    if (stands == REFUSED || stands == WAITING_FOR_NAME) {
        hub_->on_gone(*this, ended_);
    } else {
        take_frames();
    }
}

// All that one read has brought is taken, though somebody may be over the bound by then: so a sender that is
// held up keeps nothing here but a part of a frame.
void CONNECTION::take_frames() {
    const auto self = shared_from_this();
    if (!takes_frames()) return;
    FRAME_reader& reader = stream_->reader();
    FRAME frame;
    FRAME_status status = FRAME_READY;
    while (takes_frames() && (status = reader.next(&frame)) == FRAME_READY)
        hub_->on_frame(*this, frame);
    if (stands == GONE) return;
    hub_->on_taken();
    reader.park();
    if (!takes_frames()) return;
    if (status == FRAME_BROKEN) return hub_->on_violation(*this, reader.error());
    if (!ended_.empty()) return hub_->on_gone(*this, ended_);
    if (held_by_ == 0) stream_->read();
}
