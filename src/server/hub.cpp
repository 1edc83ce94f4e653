// Greeting, routing, keeping, departing. A frame that is in order is forwarded as the very bytes that came.
#include "server/hub.h"

#include <algorithm>

#include "libvesk/link/veskmsg.h"
#include "libvesk/support/util.h"

namespace {

constexpr std::string_view CLIENT_NAME = "CLIENT";

bool is_announcement(const MSGCHECK_found& found) {
    return found.msg->msg == MSG_SERVER_INSTRUMENTINFO;
}

bool is_for(const PEER& peer, DWORD flags, std::string_view dest) {
    return (flags & FRAME_TO_ALL) != 0 || peer.name == dest || peer.kind == FRAME_PEER_MONITOR;
}

MSGCHECK_fault check(const PEER& from, const FRAME_message& m, MSGCHECK_found* found) {
    const MSGCHECK_fault fault = MSGCHECK_from_peer(m, found);
    if (fault != MSGCHECK_OK || !is_announcement(*found)) return fault;
    return from.is_instrument() && found->dsd != nullptr ? MSGCHECK_OK : MSGCHECK_NOT_ANNOUNCING;
}

}  // namespace

HUB::HUB(HUB_params params)
    : params_(std::move(params)), keep_(params_.keep_bytes), next_heartbeat_(params_.heartbeat_seconds) {
    FRAME_encode_heartbeat(&heartbeat_);
}

HUB::~HUB() {
    close();
}

void HUB::close() {
    for (const auto& peer : std::exchange(peers_, {}))
        peer->close();
}

void HUB::adopt(STREAM::socket_type socket, std::string where) {
    if (peers_.size() >= params_.most_peers) {
        params_.log(where + ": refused: there are " + std::to_string(peers_.size()) + " connections already");
        scratch_.clear();
        FRAME_encode_refusal(&scratch_,
                             {FRAME_SERVER_FULL, FRAME_VERSION, FRAME_refusal_text(FRAME_SERVER_FULL)});
        asio::error_code ignored;
        socket.non_blocking(true, ignored);
        socket.write_some(asio::buffer(scratch_.data(), scratch_.size()), ignored);
        return;
    }
    peers_.push_back(std::make_shared<PEER>(std::move(socket), std::move(where), this));
    peers_.back()->start();
}

void HUB::flush() {
    for (const auto& peer : peers_)
        peer->flush();
}

void HUB::tick() {
    const double now = time_.look();
    for (const auto& peer : std::vector(peers_))
        watch(*peer);
    if (now >= next_heartbeat_) {
        next_heartbeat_ = now + params_.heartbeat_seconds;
        for (const auto& peer : peers_)
            if (peer->stands == PEER::OPEN && !peer->is_over()) peer->send(heartbeat_);
    }
    flush();
}

void HUB::watch(PEER& peer) {
    const bool greeting_over = peer.age() >= params_.greeting_seconds;
    switch (peer.stands) {
        case PEER::GREETING:
            if (greeting_over) on_violation(peer, "no complete hello in time");
            break;
        case PEER::WAITING_FOR_NAME:
            if (greeting_over) refuse(peer, FRAME_NAME_TAKEN, "");
            break;
        case PEER::REFUSED:
            if (peer.age() >= 2 * params_.greeting_seconds) on_gone(peer, "it does not close");
            break;
        case PEER::OPEN:
            if (const std::string why = peer.stalled(); !why.empty()) return on_violation(peer, why);
            if (peer.silence() >= params_.silence_seconds)
                on_violation(peer, "it has been silent for too long");
            break;
        case PEER::GONE:
            break;
    }
}

void HUB::on_frame(PEER& peer, const FRAME& frame) {
    if (peer.stands == PEER::GREETING) return greet(peer, frame);
    switch (frame.kind) {
        case FRAME_HEARTBEAT:
            return;
        case FRAME_MESSAGE:
            return route(peer, frame);
        default:
            return on_violation(peer, "a frame out of turn, of kind " + std::to_string(frame.kind));
    }
}

void HUB::greet(PEER& peer, const FRAME& frame) {
    const auto hello = frame.kind == FRAME_HELLO ? FRAME_decode_hello(frame) : std::nullopt;
    if (!hello) return on_violation(peer, "its first frame is no hello");
    peer.kind = hello->kind;
    peer.name = hello->name;
    if (hello->version != FRAME_VERSION)
        return refuse(peer, FRAME_WRONG_VERSION, "it speaks " + std::to_string(hello->version));
    if (!UTIL_valid_source_name(peer.name) || peer.is_instrument() == (peer.name == CLIENT_NAME))
        return refuse(peer, FRAME_BAD_NAME, "");
    claim_name(peer);
}

// The holder of a name may have ended without our having read so far: its successor then waits for that.
void HUB::claim_name(PEER& peer) {
    PEER* const holder = peer.is_instrument() ? holder_of(peer.name) : nullptr;
    if (holder == nullptr) return welcome(peer);
    if (!holder->hung_up()) return refuse(peer, FRAME_NAME_TAKEN, "");
    peer.stands = PEER::WAITING_FOR_NAME;
}

PEER* HUB::holder_of(const std::string& name) {
    const auto holds = [&](const auto& p) {
        return p->stands == PEER::OPEN && p->is_instrument() && p->name == name;
    };
    const auto found = std::find_if(peers_.begin(), peers_.end(), holds);
    return found != peers_.end() ? found->get() : nullptr;
}

void HUB::refuse(PEER& peer, FRAME_refusal_reason reason, const std::string& detail) {
    std::string text = FRAME_refusal_text(reason);
    params_.log(peer.text() + ": refused: " + text + (detail.empty() ? "" : ", " + detail));
    if (reason == FRAME_WRONG_VERSION) text += ", it speaks " + std::to_string(FRAME_VERSION);
    peer.refuse(reason, text);
}

void HUB::welcome(PEER& peer) {
    (peer.is_instrument() ? params_.log : params_.chat)(peer.text() + ": connected");
    scratch_.clear();
    FRAME_encode_welcome(&scratch_);
    peer.send(scratch_);
    replay(peer);
    peer.stands = PEER::OPEN;
}

void HUB::replay(PEER& to) {
    for (const KEEP::entry& e : keep_.announcements())
        to.send(e.frame);
    for (const KEEP::entry& e : keep_.messages())
        if (is_for(to, e.flags, e.dest)) to.send(e.frame);
}

void HUB::route(PEER& from, const FRAME& frame) {
    auto m = FRAME_decode_message(frame);
    if (!m) return on_violation(from, "a message whose texts are longer than itself");
    MSGCHECK_found found;
    const MSGCHECK_fault fault = check(from, *m, &found);
    if (fault != MSGCHECK_OK) return complain_once(from, fault, *m);

    FRAME_span bytes = frame.bytes;
    if (m->source != from.name) {
        if (!m->source.empty()) complain_once(from, MSGCHECK_WRONG_SOURCE, *m);
        m->source = from.name;
        scratch_.clear();
        if (!FRAME_encode_message(&scratch_, *m)) return;
        bytes = scratch_;
    }
    keep(from, *m, bytes);
    deliver(*m, bytes, &from);
}

void HUB::keep(PEER& from, const FRAME_message& m, FRAME_span bytes) {
    const bool announces = m.type == MSG_SERVER_INSTRUMENTINFO;
    if (!announces && (m.flags & FRAME_KEEP) == 0) return;
    KEEP::entry e{
        from.name, m.type, from.is_instrument(), m.flags, std::string(m.dest), {bytes.begin(), bytes.end()}};
    if (announces) return keep_.announce(std::move(e));
    switch (keep_.put(std::move(e))) {
        case KEEP::KEPT:
            break;
        case KEEP::KEPT_AND_DROPPED:
            params_.log("the room for kept messages is full: the oldest of consoles are forgotten");
            break;
        case KEEP::NO_ROOM:
            params_.log("no room to keep " + MSGCHECK_describe(m) + " of " + from.text());
            break;
    }
}

void HUB::deliver(const FRAME_message& m, FRAME_span bytes, PEER* from) {
    for (const auto& to : peers_) {
        if (to->stands != PEER::OPEN || !is_for(*to, m.flags, m.dest)) continue;
        to->send(bytes);
        if (from != nullptr && to->is_over()) to->hold_up(*from);
    }
}

void HUB::complain_once(PEER& peer, MSGCHECK_fault fault, const FRAME_message& m) {
    if (!peer.first_time(fault)) return;
    const char* what = fault == MSGCHECK_WRONG_SOURCE ? ": put right " : ": dropped ";
    params_.log(peer.text() + what + MSGCHECK_describe(m) + ": " + MSGCHECK_text(fault));
}

void HUB::on_violation(PEER& peer, const std::string& what) {
    if (peer.stands == PEER::GONE) return;
    params_.log(peer.text() + ": disconnected: " + what);
    remove(peer);
}

void HUB::on_gone(PEER& peer, const std::string& why) {
    if (peer.stands == PEER::GONE) return;
    const bool of_interest = peer.stands == PEER::OPEN && peer.is_instrument();
    (of_interest ? params_.log : params_.chat)(peer.text() + ": left: " + why);
    remove(peer);
}

void HUB::remove(PEER& peer) {
    const bool departs = peer.stands == PEER::OPEN && peer.is_instrument();
    const auto self = peer.shared_from_this();
    peer.close();
    std::erase(peers_, self);
    if (departs) announce_departure(peer);
    flush();
}

void HUB::announce_departure(const PEER& peer) {
    keep_.forget(peer.name);
    const FRAME_message m{MSG_NOTIFY_CLIENT_TERMINATE, FRAME_TO_ALL, peer.name, {}, {}, {}};
    FRAME_bytes bytes;
    FRAME_encode_message(&bytes, m);
    deliver(m, bytes, nullptr);
    retry_waiting();
}

void HUB::retry_waiting() {
    for (const auto& peer : std::vector(peers_)) {
        if (peer->stands != PEER::WAITING_FOR_NAME) continue;
        claim_name(*peer);
        if (peer->stands == PEER::OPEN) peer->go_on();
    }
}
