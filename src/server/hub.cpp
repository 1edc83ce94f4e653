// Greeting, routing, keeping, departing. A frame that is in order is forwarded as the very bytes that came.
#include "server/hub.h"

#include <malloc.h>

#include <algorithm>
#include <utility>

#include "libvesk/support/util.h"

namespace {

constexpr std::string_view CLIENT_NAME = "CLIENT";
// So much of what is kept is put into a newcomer's queue at a time: its line decides how fast the rest
// follows.
constexpr std::size_t TELL_BYTES = 64 * 1024;
// A storm is what took so much memory; when a quarter of it is left, the allocator gives back what it can.
constexpr std::size_t STORM_BYTES = 4 * 1024 * 1024;

MSGCHECK_fault check(const CONNECTION& from, const FRAME_message& m, MSGCHECK_found* found) {
    const MSGCHECK_fault fault = MSGCHECK_from_peer(m, found);
    if (fault != MSGCHECK_OK || m.type != MSG_SERVER_INSTRUMENTINFO) return fault;
    return from.is_instrument() && found->dsd != nullptr ? MSGCHECK_OK : MSGCHECK_NOT_ANNOUNCING;
}

}  // namespace

HUB::HUB(HUB_params params)
    : params_(std::move(params)),
      log_(params_.log, params_.log_window_seconds),
      chat_(params_.chat, params_.log_window_seconds),
      fanout_(connections_, memory_.get()),
      keep_(params_.keep_bytes),
      next_heartbeat_(params_.heartbeat_seconds) {
    FRAME_encode_heartbeat(&heartbeat_);
}

HUB::~HUB() {
    close();
}

void HUB::close() {
    fanout_.forget_audience();
    for (const auto& c : std::exchange(connections_, {}))
        c->close();
}

void HUB::adopt(STREAM::socket_type socket, CONNECTION_origin origin) {
    if (connections_.size() >= params_.most_connections) {
        log_.say("full", origin.who,
                 origin.text + ": refused: there are " + std::to_string(connections_.size()) +
                     " connections already");
        scratch_.clear();
        FRAME_encode_refusal(&scratch_,
                             {FRAME_SERVER_FULL, FRAME_VERSION, FRAME_refusal_text(FRAME_SERVER_FULL)});
        asio::error_code ignored;
        socket.non_blocking(true, ignored);
        socket.write_some(asio::buffer(scratch_.data(), scratch_.size()), ignored);
        return;
    }
    connections_.push_back(std::make_shared<CONNECTION>(std::move(socket), std::move(origin),
                                                        static_cast<CONNECTION::owner*>(this),
                                                        params_.connection, memory_));
    connections_.back()->start();
}

void HUB::tick() {
    const double now = time_.look();
    for (const auto& c : std::vector(connections_))
        watch(*c);
    if (now >= next_heartbeat_) {
        next_heartbeat_ = now + params_.heartbeat_seconds;
        for (const auto& c : connections_)
            if (c->stands == CONNECTION::OPEN && !c->is_over()) c->send(heartbeat_);
    }
    flush();
    hand_memory_back();
    log_.tick(now);
    chat_.tick(now);
}

void HUB::watch(CONNECTION& c) {
    const bool greeting_over = c.age() >= params_.greeting_seconds;
    switch (c.stands) {
        case CONNECTION::GREETING:
            if (greeting_over) on_violation(c, "no complete hello in time");
            break;
        case CONNECTION::WAITING_FOR_NAME:
            if (greeting_over) refuse(c, FRAME_NAME_TAKEN, "");
            break;
        case CONNECTION::REFUSED:
            if (c.age() >= 2 * params_.greeting_seconds) on_gone(c, "it does not close");
            break;
        case CONNECTION::OPEN:
            if (const std::string why = c.stalled(); !why.empty()) return on_violation(c, why);
            if (c.silence() >= params_.silence_seconds) on_violation(c, "it has been silent for too long");
            break;
        case CONNECTION::GONE:
            break;
    }
}

void HUB::on_frame(CONNECTION& c, const FRAME& frame) {
    if (c.stands == CONNECTION::GREETING) return greet(c, frame);
    switch (frame.kind) {
        case FRAME_HEARTBEAT:
            return;
        case FRAME_MESSAGE:
            return route(c, frame);
        default:
            return on_violation(c, "a frame out of turn, of kind " + std::to_string(frame.kind));
    }
}

void HUB::greet(CONNECTION& c, const FRAME& frame) {
    const auto hello = frame.kind == FRAME_HELLO ? FRAME_decode_hello(frame) : std::nullopt;
    if (!hello) return on_violation(c, "its first frame is no hello");
    c.kind = hello->kind;
    c.name = hello->name;
    if (hello->version != FRAME_VERSION)
        return refuse(c, FRAME_WRONG_VERSION, "it speaks " + std::to_string(hello->version));
    if (!UTIL_valid_source_name(c.name) || c.is_instrument() == (c.name == CLIENT_NAME))
        return refuse(c, FRAME_BAD_NAME, "");
    claim_name(c);
}

// The holder of a name may have ended without our having read so far: its successor then waits for that.
void HUB::claim_name(CONNECTION& c) {
    CONNECTION* const holder = c.is_instrument() ? holder_of(c.name) : nullptr;
    if (holder == nullptr) return welcome(c);
    if (!holder->hung_up()) return refuse(c, FRAME_NAME_TAKEN, "");
    c.stands = CONNECTION::WAITING_FOR_NAME;
}

CONNECTION* HUB::holder_of(const std::string& name) {
    const auto holds = [&](const auto& c) {
        return c->stands == CONNECTION::OPEN && c->is_instrument() && c->name == name;
    };
    const auto found = std::find_if(connections_.begin(), connections_.end(), holds);
    return found != connections_.end() ? found->get() : nullptr;
}

void HUB::refuse(CONNECTION& c, FRAME_refusal_reason reason, const std::string& detail) {
    std::string text = FRAME_refusal_text(reason);
    log_.say("refused: " + text, c.who(),
             c.text() + ": refused: " + text + (detail.empty() ? "" : ", " + detail));
    if (reason == FRAME_WRONG_VERSION) text += ", it speaks " + std::to_string(FRAME_VERSION);
    c.refuse(reason, text);
}

void HUB::welcome(CONNECTION& c) {
    (c.is_instrument() ? log_ : chat_).say("connected", c.who(), c.text() + ": connected");
    fanout_.hand_out();
    fanout_.forget_audience();
    scratch_.clear();
    FRAME_encode_welcome(&scratch_);
    c.send(scratch_);
    c.open(keep_.begin_reading());
}

void HUB::route(CONNECTION& from, const FRAME& frame) {
    auto m = FRAME_decode_message(frame);
    if (!m) return on_violation(from, "a message whose texts are longer than itself");
    MSGCHECK_found found;
    const MSGCHECK_fault fault = check(from, *m, &found);
    if (fault != MSGCHECK_OK) return complain_once(from, fault, *m);
    if (m->source == from.name) {
        fanout_.add(m->flags, m->dest, frame.bytes, &from);
        return keep(from, *m, frame.bytes);
    }
    if (!m->source.empty()) complain_once(from, MSGCHECK_WRONG_SOURCE, *m);
    m->source = from.name;
    fanout_.hand_out();
    scratch_.clear();
    if (!FRAME_encode_message(&scratch_, *m)) return;
    fanout_.add(m->flags, m->dest, scratch_, &from);
    fanout_.hand_out();
    keep(from, *m, scratch_);
}

void HUB::keep(CONNECTION& from, const FRAME_message& m, FRAME_span bytes) {
    const bool announces = m.type == MSG_SERVER_INSTRUMENTINFO;
    if (!announces && (m.flags & FRAME_KEEP) == 0) return;
    KEEP::entry e{
        from.name, m.type, from.is_instrument(), m.flags, std::string(m.dest), {bytes.begin(), bytes.end()}};
    if (announces) return announce(from, std::move(e));
    switch (keep_.put(std::move(e))) {
        case KEEP::KEPT:
            break;
        case KEEP::KEPT_AND_DROPPED:
            log_.say("kept are dropped", from.who(),
                     "the room for kept messages is full: the oldest of consoles are forgotten");
            break;
        case KEEP::NO_ROOM:
            log_.say("not kept", from.who(),
                     "no room to keep " + MSGCHECK_describe(m) + " of " + from.text());
            break;
    }
}

// Consoles that are connected already cannot use messages that an instrument kept before its announcement.
void HUB::announce(CONNECTION& from, KEEP::entry announcement) {
    if (!keep_.announce(std::move(announcement))) return;
    keep_.for_messages_of(from.name, [&](const KEEP::entry& e) {
        fanout_.add(e.flags, e.dest, e.frame, &from);
        fanout_.hand_out();
    });
}

// A newcomer is told what is kept at the pace of its line, from the list itself.
void HUB::tell_more(CONNECTION& to) {
    while (to.is_being_told() && to.unsent() < TELL_BYTES) {
        const KEEP::entry* const e = keep_.next(&to.told);
        if (e == nullptr) return to.end_telling();
        const bool announces = e->type == MSG_SERVER_INSTRUMENTINFO;
        if (announces || FANOUT::is_for(to, e->flags, e->dest)) to.tell(e->frame);
    }
}

void HUB::push(CONNECTION& to) {
    do {
        if (to.is_being_told()) tell_more(to);
        to.flush();
    } while (to.is_being_told() && to.unsent() == 0);
}

void HUB::flush() {
    fanout_.hand_out();
    for (const auto& c : connections_)
        push(*c);
    if (memory_->bytes() > params_.memory_bytes && !making_room_) make_room();
}

// The slowest goes first: whoever has most waiting for it.
void HUB::make_room() {
    making_room_ = true;
    fanout_.release_idle();
    const auto less = [](const auto& a, const auto& b) { return a->memory() < b->memory(); };
    while (memory_->bytes() > params_.memory_bytes && !connections_.empty()) {
        const auto slowest = *std::max_element(connections_.begin(), connections_.end(), less);
        on_violation(*slowest, "no memory is left, and most of it waits for this one: " +
                                   std::to_string(slowest->memory() / 1024) + " KiB");
    }
    making_room_ = false;
}

void HUB::hand_memory_back() {
    fanout_.release_idle();
    const std::size_t left = memory_->bytes();
    if (memory_->peak() < STORM_BYTES || left > memory_->peak() / 4) return;
    memory_->forget_peak();
    malloc_trim(0);
}

void HUB::complain_once(CONNECTION& c, MSGCHECK_fault fault, const FRAME_message& m) {
    if (!c.first_time(fault)) return;
    const std::string cause = MSGCHECK_text(fault);
    const char* what = fault == MSGCHECK_WRONG_SOURCE ? ": put right " : ": dropped ";
    log_.say(cause, c.who(), c.text() + what + MSGCHECK_describe(m) + ": " + cause);
}

void HUB::on_violation(CONNECTION& c, const std::string& what) {
    if (c.stands == CONNECTION::GONE) return;
    log_.say("disconnected", c.who(), c.text() + ": disconnected: " + what);
    remove(c);
}

void HUB::on_gone(CONNECTION& c, const std::string& why) {
    if (c.stands == CONNECTION::GONE) return;
    const bool of_interest = c.stands == CONNECTION::OPEN && c.is_instrument();
    (of_interest ? log_ : chat_).say("left", c.who(), c.text() + ": left: " + why);
    remove(c);
}

void HUB::remove(CONNECTION& c) {
    const bool departs = c.stands == CONNECTION::OPEN && c.is_instrument();
    const auto self = c.shared_from_this();
    fanout_.hand_out();
    fanout_.forget_audience();
    c.close();
    std::erase(connections_, self);
    if (departs) announce_departure(c);
    flush();
}

void HUB::announce_departure(const CONNECTION& c) {
    keep_.forget(c.name);
    scratch_.clear();
    FRAME_encode_message(&scratch_, {MSG_NOTIFY_CLIENT_TERMINATE, FRAME_TO_ALL, c.name, {}, {}, {}});
    fanout_.add(FRAME_TO_ALL, "", scratch_, nullptr);
    fanout_.hand_out();
    retry_waiting();
}

void HUB::retry_waiting() {
    for (const auto& c : std::vector(connections_)) {
        if (c->stands != CONNECTION::WAITING_FOR_NAME) continue;
        claim_name(*c);
        if (c->stands == CONNECTION::OPEN) c->go_on();
    }
}
