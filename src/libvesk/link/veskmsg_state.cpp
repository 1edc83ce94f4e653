// The peer's end of a link: connecting, the handshake, frames in, heartbeats. Everything runs inside pump(),
// on the caller's thread, as handlers of an io_context that is only polled.
#include "libvesk/link/veskmsg_state.h"

#include <poll.h>
#include <sys/socket.h>

#include <asio/connect.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/local/stream_protocol.hpp>
#include <cstring>

namespace {

// A caller that is slow to process stops the reading, not the machine: what waits then waits in the server.
constexpr std::size_t INBOX_LIMIT = 4 * 1024 * 1024;
constexpr std::size_t OUTPUT_LIMIT = 8 * 1024 * 1024;
constexpr double HANDSHAKE_SECONDS = 10.0;

using endpoint = asio::generic::stream_protocol::endpoint;

}  // namespace

VESKMSG_received::VESKMSG_received(const FRAME_message& m, const MSGCHECK_found& found)
    : what(found),
      flags(m.flags),
      source(UTIL_printable(m.source)),
      dest(UTIL_printable(m.dest)),
      payload((m.payload.size() + sizeof payload[0] - 1) / sizeof payload[0]) {
    if (what.dsd == nullptr) return;
    std::memcpy(payload.data(), m.payload.data(), m.payload.size());
    NETDSD_sanitize(what.dsd, payload.data());
}

void VESKMSG_state::reset() {
    stream_.reset();
    base_.reset();
    inbox_.clear();
    inbox_bytes_ = 0;
    known.clear();
    error.clear();
    ended_.clear();
    complained_ = 0;
    queue_full_ = false;
    heard_ = time_.look();
}

BOOL VESKMSG_state::connect(const ADDRESS& address, const std::string& name, FRAME_peer_kind kind) {
    close("");
    reset();
    try {
        base_ = std::make_unique<base>();
    } catch (const std::system_error& e) {
        fail("cannot make a link: " + e.code().message());
        return FALSE;
    }
    where_ = ADDRESS_text(address);
    hello_.clear();
    FRAME_encode_hello(&hello_, {FRAME_VERSION, kind, name});
    *stat_ = VESKMSG_S_AWAITING_HANDSHAKE;
    if (!(address.is_local() ? connect_local(address) : connect_host(address))) return FALSE;
    pump();
    return *stat_ != VESKMSG_S_UNLINKED;
}

// Done here and not by the io_context, which takes "the server is not accepting" for "under way".
BOOL VESKMSG_state::connect_local(const ADDRESS& address) {
    std::string why;
    if (!ADDRESS_may_connect(address.path, &why)) {
        fail("cannot connect to " + where_ + ": " + why);
        return FALSE;
    }
    const endpoint to = asio::local::stream_protocol::endpoint(address.path);
    asio::error_code error_code;
    base_->connecting.open(to.protocol(), error_code);
    const timeval patience{1, 0};
    const int fd = base_->connecting.native_handle();
    if (!error_code) setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
    if (error_code || ::connect(fd, to.data(), static_cast<socklen_t>(to.size())) != 0) {
        fail("cannot connect to " + where_ + ": " +
             (error_code ? error_code.message() : std::strerror(errno)));
        return FALSE;
    }
    connected();
    return TRUE;
}

BOOL VESKMSG_state::connect_host(const ADDRESS& address) {
    asio::error_code error_code;
    asio::ip::tcp::resolver resolver(base_->context);
    const auto found = resolver.resolve(address.host, std::to_string(address.port), error_code);
    if (error_code) {
        fail("cannot find " + address.host + ": " + error_code.message());
        return FALSE;
    }
    std::vector<endpoint> endpoints;
    for (const auto& entry : found)
        endpoints.emplace_back(entry.endpoint());
    asio::async_connect(base_->connecting, endpoints,
                        [this](const asio::error_code& failed, const endpoint&) {
                            if (failed == asio::error::operation_aborted) return;
                            if (failed) {
                                fail("cannot connect to " + where_ + ": " + failed.message());
                            } else {
                                connected();
                            }
                        });
    return TRUE;
}

void VESKMSG_state::connected() {
    stream_ = std::make_shared<STREAM>(std::move(base_->connecting), static_cast<STREAM::owner*>(this));
    base_->connecting = STREAM::socket_type(base_->context);
    stream_->queue().append(hello_);
    stream_->flush();
    stream_->read();
}

void VESKMSG_state::close(const std::string& why) {
    if (stream_) stream_->close();
    asio::error_code ignored;
    if (base_) base_->connecting.close(ignored);
    if (error.empty()) error = UTIL_printable(why);
    if (*stat_ != VESKMSG_S_UNINITIALIZED) *stat_ = VESKMSG_S_UNLINKED;
}

void VESKMSG_state::part(double seconds) {
    if (stream_ && *stat_ == VESKMSG_S_OPEN) stream_->part(seconds);
    close("disconnected");
}

void VESKMSG_state::fail(const std::string& why) {
    close(why);
}

void VESKMSG_state::pump() {
    time_.look();
    if (!base_) return;
    if (stream_ && *stat_ != VESKMSG_S_UNLINKED) {
        stream_->flush();
        take_frames();
    }
    base_->context.restart();
    base_->context.poll();
    watch_time();
}

void VESKMSG_state::watch_time() {
    const double now = time_.now();
    if (*stat_ == VESKMSG_S_AWAITING_HANDSHAKE && now - heard_ >= HANDSHAKE_SECONDS)
        return fail("no answer from " + where_ + " for 10 s");
    if (*stat_ != VESKMSG_S_OPEN) return;
    if (inbox_full()) heard_ = now;  // it is we who do not listen
    if (now - heard_ >= LINKTIME_SILENCE) return fail("30 s of silence from the server");
    if (now < next_heartbeat_) return;
    next_heartbeat_ = now + LINKTIME_HEARTBEAT;
    scratch_.clear();
    FRAME_encode_heartbeat(&scratch_);
    stream_->queue().append(scratch_);
    stream_->flush();
    base_->context.poll();
}

void VESKMSG_state::stream_received() {
    heard_ = time_.now();
    take_frames();
}

void VESKMSG_state::stream_ended(const std::string& why) {
    ended_ = *stat_ == VESKMSG_S_OPEN ? "the connection to the server ended: " + why
                                      : "no handshake with " + where_ + ": " + why;
    take_frames();
}

bool VESKMSG_state::inbox_full() const {
    return inbox_bytes_ > INBOX_LIMIT;
}

void VESKMSG_state::take_frames() {
    FRAME f;
    while (*stat_ != VESKMSG_S_UNLINKED && !inbox_full()) {
        switch (stream_->reader().next(&f)) {
            case FRAME_READY:
                frame(f);
                break;
            case FRAME_BROKEN:
                return fail("the server broke the protocol: " + stream_->reader().error());
            case FRAME_MORE:
                if (!ended_.empty()) return fail(ended_);
                return stream_->read();
        }
    }
}

void VESKMSG_state::frame(const FRAME& f) {
    const bool open = *stat_ == VESKMSG_S_OPEN;
    if (f.kind == FRAME_HEARTBEAT) return;
    if (f.kind == FRAME_MESSAGE && open) return message(f);
    if (f.kind == FRAME_WELCOME && !open) {
        *stat_ = VESKMSG_S_OPEN;
        next_heartbeat_ = time_.now() + LINKTIME_HEARTBEAT;
        return;
    }
    const auto refusal = FRAME_decode_refusal(f);
    if (f.kind != FRAME_REFUSAL || open || !refusal)
        return fail("the server broke the protocol: a frame out of turn");
    fail("the server refused: " +
         (refusal->text.empty() ? FRAME_refusal_text(refusal->reason) : UTIL_printable(refusal->text)));
}

void VESKMSG_state::message(const FRAME& f) {
    const auto m = FRAME_decode_message(f);
    if (!m) return fail("the server broke the protocol: a message whose texts are longer than itself");
    MSGCHECK_found found;
    const MSGCHECK_fault fault = MSGCHECK_content(*m, &found);
    if (fault != MSGCHECK_OK) return complain_once(fault, *m);
    inbox_.emplace_back(*m, found);
    inbox_bytes_ += inbox_.back().size();
}

void VESKMSG_state::complain_once(MSGCHECK_fault fault, const FRAME_message& m) {
    if ((complained_ & (1U << fault)) != 0) return;
    complained_ |= 1U << fault;
    UTIL_complain("received and ignored: %s (%s)", MSGCHECK_describe(m).c_str(), MSGCHECK_text(fault));
}

BOOL VESKMSG_state::send(const FRAME_message& m, const NETDSD_entry* dsd) {
    if (stream_->queue().size() > OUTPUT_LIMIT) {
        if (!queue_full_)
            UTIL_complain("the server does not take messages: %s is lost", MSGCHECK_describe(m).c_str());
        queue_full_ = true;
        return FALSE;
    }
    queue_full_ = false;
    scratch_.clear();
    if (!FRAME_encode_message(&scratch_, m)) return FALSE;
    if (dsd != nullptr) NETDSD_clear_padding(dsd, scratch_.data() + scratch_.size() - m.payload.size());
    stream_->queue().append(scratch_);
    return TRUE;
}

VESKMSG_received VESKMSG_state::take() {
    VESKMSG_received received = std::move(inbox_.front());
    inbox_bytes_ -= received.size();
    inbox_.pop_front();
    return received;
}

void VESKMSG_state::deliver(VESKMSG_received* received, VESKMSG_cb cb, void* param) {
    const auto [msg, dsd] = received->what;
    VESKMSG_proc_msg pm{msg,
                        dsd,
                        received->flags,
                        received->source.c_str(),
                        received->dest.c_str(),
                        dsd != nullptr ? received->payload.data() : nullptr};
    if (msg->msg == MSG_SERVER_INSTRUMENTINFO && dsd != nullptr)
        std::memcpy(&known[received->source], pm.pds, sizeof(NET_SERVER_InstrumentInfo));
    for (const listener& l : std::vector(listeners))
        l.cb(&pm, l.param);
    if (cb != nullptr) cb(&pm, param);
    if (msg->msg == MSG_NOTIFY_CLIENT_TERMINATE) known.erase(received->source);
}

int VESKMSG_state::fd() {
    if (*stat_ != VESKMSG_S_OPEN && *stat_ != VESKMSG_S_AWAITING_HANDSHAKE) return -1;
    return stream_ ? stream_->fd() : base_->connecting.native_handle();
}

short VESKMSG_state::events() const {
    if (!stream_) return POLLOUT;  // connecting
    const int in = inbox_full() ? 0 : POLLIN;
    return static_cast<short>(in | (stream_->queue().size() > 0 ? POLLOUT : 0));
}
