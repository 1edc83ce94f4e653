// The calls on a message link: they check what they are given and hand it to the link's state.
#include "libvesk/link/veskmsg.h"

#include <poll.h>

#include <chrono>

#include "libvesk/link/veskmsg_state.h"

namespace {

constexpr const char* CLIENT_NAME = "CLIENT";
// A burst is read and delivered in portions of a full inbox, so that it needs no memory of its own; one that
// does not end leaves the caller some time for other things.
constexpr std::size_t MOST_PORTIONS = 4;
constexpr double LOOK_SECONDS = 1.0;  // a waiting link is looked at that often, for its heartbeats
constexpr double PARTING_SECONDS = 1.0;

using steady = std::chrono::steady_clock;

std::string_view text(const char* t) {
    return t != nullptr ? t : "";
}

VESKMSG_state* state_of(VESKMSG_link* link) {
    if (!link->state) {
        link->state = std::make_unique<VESKMSG_state>(&link->stat);
        link->stat = VESKMSG_S_UNLINKED;
    }
    return link->state.get();
}

BOOL refuse(VESKMSG_link* link, const std::string& why) {
    state_of(link)->close("");
    link->state->error = UTIL_printable(why);
    return FALSE;
}

// Blocking is bounded by a clock that nobody sets and no test replaces.
steady::time_point deadline_after(double seconds) {
    return steady::now() +
           std::chrono::duration_cast<steady::duration>(std::chrono::duration<double>(seconds));
}

int milliseconds_until(steady::time_point deadline) {
    const std::chrono::duration<double> left = deadline - steady::now();
    const double bounded = std::clamp(left.count(), 0.0, LOOK_SECONDS);
    return static_cast<int>(bounded * 1000 + 0.999);
}

// Sleeps until one of the links or the descriptor wants attention, or `ms` passed. TRUE for the descriptor.
BOOL wait_for_events(std::span<VESKMSG_link* const> links, int extra_fd, int ms) {
    std::vector<pollfd> fds{{extra_fd, POLLIN, 0}};
    for (VESKMSG_link* link : links) {
        const int fd = link->state ? link->state->fd() : -1;
        if (fd >= 0) fds.push_back({fd, link->state->events(), 0});
    }
    return poll(fds.data(), fds.size(), ms) > 0 && fds[0].revents != 0;
}

// Something to do: messages, or a link that is down.
BOOL wants_attention(VESKMSG_link* link) {
    if (!link->state) return TRUE;
    const VESKMSG_LINK_STATUS before = link->stat;
    link->state->pump();
    return link->stat != before || link->stat == VESKMSG_S_UNLINKED || link->state->waiting() > 0;
}

BOOL selector_matches(VESKMSG_state* state, const char* source, const char* selector) {
    if (UTIL_wildcard_match(source, selector)) return TRUE;
    const auto found = state->known.find(text(source));
    if (found == state->known.end()) return FALSE;
    for (const NET_SERVER_InstrumentTag& t : found->second.tags)
        if (t.tag[0] != '\0' && UTIL_wildcard_match(t.tag, selector)) return TRUE;
    return FALSE;
}

// Null when the message may be queued, else what is wrong with it.
const char* fault_of(VESKMSG_link* link, const FRAME_message& m, std::size_t payload_size,
                     MSGCHECK_found* found) {
    if (!link->state || link->stat != VESKMSG_S_OPEN) return "the link is not open";
    if (payload_size != m.payload.size()) return "a payload without bytes";
    const MSGCHECK_fault fault = MSGCHECK_from_peer(m, found);
    return fault != MSGCHECK_OK ? MSGCHECK_text(fault) : nullptr;
}

}  // namespace

VESKMSG_link::VESKMSG_link() = default;
VESKMSG_link::~VESKMSG_link() = default;

void VESKMSG_init_params(VESKMSG_connect_params* params) {
    *params = {CLIENT_NAME, nullptr, FALSE};
}

BOOL VESKMSG_connect(VESKMSG_link* link, const VESKMSG_connect_params* params) {
    const std::string_view name = text(params->id_str);
    const bool client = name == CLIENT_NAME;
    if (!UTIL_valid_source_name(name))
        return refuse(link, "\"" + UTIL_printable(name) + "\" cannot be a name");
    if (params->monitor && !client) return refuse(link, "only a CLIENT can be a monitor");

    ADDRESS address;
    std::string why;
    if (params->host_override == nullptr) {
        address = ADDRESS_default();
    } else if (!ADDRESS_parse(params->host_override, &address, &why)) {
        return refuse(link, why);
    }
    const FRAME_peer_kind kind = params->monitor ? FRAME_PEER_MONITOR
                                 : client        ? FRAME_PEER_CLIENT
                                                 : FRAME_PEER_INSTRUMENT;
    return state_of(link)->connect(address, std::string(name), kind);
}

void VESKMSG_disconnect(VESKMSG_link* link) {
    if (link->state) link->state->part(PARTING_SECONDS);
}

std::string VESKMSG_error(const VESKMSG_link* link) {
    return link->state ? link->state->error : "not connected";
}

void VESKMSG_process_messages(VESKMSG_link* link, VESKMSG_cb cb, void* param) {
    VESKMSG_state* const state = state_of(link);
    std::size_t portions = 0;
    BOOL more = TRUE;  // the reading stopped for lack of room
    while (more && portions++ < MOST_PORTIONS) {
        state->pump();
        more = state->inbox_full();
        for (std::size_t n = state->waiting(); n > 0 && state->waiting() > 0; --n) {
            VESKMSG_received received = state->take();
            state->deliver(&received, cb, param);
        }
    }
    state->pump();  // what the callbacks queued leaves now
}

BOOL VESKMSG_queue_message(VESKMSG_link* link, NETMSG_type msg, DWORD flags, const char* dest,
                           const void* payload, std::size_t size, const char* record) {
    const FRAME_span bytes(static_cast<const std::byte*>(payload), payload != nullptr ? size : 0);
    const FRAME_message m{msg, flags, {}, text(dest), text(record), bytes};
    MSGCHECK_found found;
    if (const char* fault = fault_of(link, m, size, &found)) {
        UTIL_complain("cannot send %s: %s", MSGCHECK_describe(m).c_str(), fault);
        return FALSE;
    }
    return link->state->send(m, found.dsd);
}

BOOL VESKMSG_announce(VESKMSG_link* link, const NET_SERVER_InstrumentInfo& info) {
    return VESKMSG_queue(link, MSG_SERVER_INSTRUMENTINFO, FRAME_TO_ALL | FRAME_KEEP, nullptr, info);
}

BOOL VESKMSG_instrument_info_by_name(VESKMSG_link* link, const char* name, NET_SERVER_InstrumentInfo* info) {
    VESKMSG_state* const state = state_of(link);
    const auto found = state->known.find(text(name));
    if (found == state->known.end()) return FALSE;
    *info = found->second;
    return TRUE;
}

BOOL VESKMSG_filter_name_and_tag(VESKMSG_link* link, const char* source, const char* selector) {
    if (text(selector).empty()) return TRUE;
    return source != nullptr && selector_matches(state_of(link), source, selector);
}

void VESKMSG_add_listener(VESKMSG_link* link, VESKMSG_cb cb, void* param) {
    state_of(link)->listeners.push_back({cb, param});
}

void VESKMSG_remove_listener(VESKMSG_link* link, VESKMSG_cb cb, void* param) {
    if (link->state) std::erase(link->state->listeners, VESKMSG_state::listener{cb, param});
}

BOOL VESKMSG_wait(std::span<VESKMSG_link* const> links, double seconds, int extra_fd) {
    const auto deadline = deadline_after(seconds);
    for (;;) {
        BOOL attention = FALSE;
        for (VESKMSG_link* link : links)
            attention |= wants_attention(link);
        if (attention) return TRUE;
        if (UTIL_exit_poll()) return FALSE;
        const int ms = milliseconds_until(deadline);
        if (wait_for_events(links, extra_fd, ms)) return TRUE;
        if (ms == 0) return FALSE;
    }
}

BOOL VESKMSG_flush(VESKMSG_link* link, double seconds) {
    if (!link->state) return FALSE;
    const auto deadline = deadline_after(seconds);
    for (;;) {
        link->state->pump();
        if (link->stat != VESKMSG_S_OPEN) return FALSE;
        if (link->state->all_sent()) return TRUE;
        const int ms = milliseconds_until(deadline);
        if (ms == 0) return FALSE;
        wait_for_events({&link, 1}, -1, ms);
    }
}
