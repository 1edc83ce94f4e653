// Reading frames, queueing them, and the accounting of who holds up whom.
#include "server/peer.h"

#include <asio/post.hpp>

#include "libvesk/support/util.h"
#include "server/hub.h"

namespace {

// Over the bound for this many stalls, however little it takes now and then: dropped, so that a peer which
// reads a trickle cannot slow the station down to it.
constexpr double PATIENCE = 5.0;

std::string megabytes(std::size_t n) {
    return std::to_string((n + 512 * 1024) / (1024 * 1024)) + " MiB";
}

}  // namespace

PEER::PEER(STREAM::socket_type socket, std::string where, HUB* hub)
    : hub_(hub),
      stream_(std::make_shared<STREAM>(std::move(socket), static_cast<STREAM::owner*>(this))),
      where_(std::move(where)),
      born_(hub->now()),
      heard_(hub->now()) {}

void PEER::start() {
    stream_->read();
}

std::string PEER::text() const {
    return name.empty() ? where_ : UTIL_printable(name) + " (" + where_ + ")";
}

void PEER::send(FRAME_span frame) {
    stream_->append(frame);
    if (over_ || queued() <= hub_->params().queue_bytes) return;
    over_ = true;
    over_since_ = took_ = hub_->now();
}

void PEER::refuse(FRAME_refusal_reason reason, const std::string& detail) {
    stands = REFUSED;
    FRAME_bytes frame;
    FRAME_encode_refusal(&frame, {reason, FRAME_VERSION, detail});
    send(frame);
    stream_->finish();
    stream_->reader().discard();
    stream_->read();
}

void PEER::close() {
    stands = GONE;
    stream_->close();
    release();
}

void PEER::hold_up(PEER& sender) {
    ++sender.held_by_;
    held_up_.push_back(sender.weak_from_this());
}

void PEER::release() {
    over_ = false;
    for (const auto& waiting : std::exchange(held_up_, {}))
        if (const auto sender = waiting.lock()) sender->let_go();
}

void PEER::let_go() {
    if (--held_by_ == 0) go_on();
}

void PEER::go_on() {
    heard_ = hub_->now();
    asio::post(stream_->executor(), [self = shared_from_this()] { self->take_frames(); });
}

// A socket takes more only when much of what it holds has been read, so what it holds is looked at too.
std::string PEER::stalled() {
    const double now = hub_->now();
    const double stall = hub_->params().stall_seconds;
    if (!over_) return "";
    const std::size_t held_before = std::exchange(on_the_way_, stream_->on_the_way());
    if (on_the_way_ < held_before) took_ = now;
    if (now - took_ >= stall) return "it does not read: " + megabytes(queued()) + " wait for it";
    if (now - over_since_ >= PATIENCE * stall)
        return "it reads too slowly: " + megabytes(queued()) + " wait for it";
    return "";
}

double PEER::silence() const {
    return is_readable() ? hub_->now() - heard_ : 0.0;
}

double PEER::age() const {
    return hub_->now() - born_;
}

bool PEER::first_time(MSGCHECK_fault fault) {
    const DWORD bit = 1U << fault;
    return (std::exchange(complained_, complained_ | bit) & bit) == 0;
}

bool PEER::is_readable() const {
    return (stands == GREETING || stands == OPEN) && held_by_ == 0;
}

void PEER::stream_received() {
    heard_ = hub_->now();
    if (stands == REFUSED) {
        stream_->reader().discard();
        stream_->read();
        return;
    }
    take_frames();
}

void PEER::stream_sent() {
    took_ = hub_->now();
    if (over_ && queued() <= hub_->params().queue_bytes / 2) release();
}

void PEER::stream_ended(const std::string& why) {
    ended_ = why;
    if (stands == REFUSED || stands == WAITING_FOR_NAME) {
        const auto self = shared_from_this();
        hub_->on_gone(*this, ended_);
    } else {
        take_frames();
    }
}

void PEER::take_frames() {
    const auto self = shared_from_this();
    FRAME frame;
    while (is_readable()) {
        const FRAME_status status = stream_->reader().next(&frame);
        if (status == FRAME_READY) {
            hub_->on_frame(*this, frame);
        } else if (status == FRAME_BROKEN) {
            hub_->on_violation(*this, stream_->reader().error());
        } else if (!ended_.empty()) {
            hub_->on_gone(*this, ended_);
        } else {
            stream_->read();
            break;
        }
    }
    hub_->flush();
}
