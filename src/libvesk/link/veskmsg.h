// The message link of one peer: connects to a server, queues outgoing messages, delivers incoming ones on
// the caller's thread. There is no thread and no lock: everything moves inside VESKMSG_process_messages,
// VESKMSG_wait and VESKMSG_flush, and one of them must be called every few seconds, since heartbeats move
// there too. They go by UTIL_ftime: who replaces its source with a faster clock makes the link's silence
// shorter. docs/protocol.md describes the bytes.
#pragma once

#include <memory>
#include <span>
#include <string>

#include "libvesk/link/frame.h"
#include "libvesk/link/veskmsg_types.h"
#include "libvesk/messages/records/server.h"

// The payload as a record of type R, or null when there is none or it is another record.
template <class R>
[[nodiscard]] const R* VESKMSG_payload(const VESKMSG_proc_msg* pm) {
    return pm->pds != nullptr && pm->dsd == NETDSD_of<R>() ? static_cast<const R*>(pm->pds) : nullptr;
}

struct VESKMSG_connect_params {
    const char* id_str;         // "CLIENT" for a console, else the instrument's source name
    const char* host_override;  // NAME, NAME:PORT, [V6]:PORT, a socket path (has a slash); null: the default
    BOOL monitor;               // a CLIENT that also sees what is addressed to others
};

class VESKMSG_state;  // private to the unit

struct VESKMSG_link {
    VESKMSG_link();
    ~VESKMSG_link();
    VESKMSG_link(const VESKMSG_link&) = delete;
    VESKMSG_link& operator=(const VESKMSG_link&) = delete;

    VESKMSG_LINK_STATUS stat = VESKMSG_S_UNINITIALIZED;
    std::unique_ptr<VESKMSG_state> state;
};

void VESKMSG_init_params(VESKMSG_connect_params* params);

// Starts connecting; FALSE when the parameters or the address are no good or the connection fails at once.
// Looking up a host's name may block for as long as the resolver takes, and a local server that does not
// accept for a second; all else goes on while the link is processed.
[[nodiscard]] BOOL VESKMSG_connect(VESKMSG_link* link, const VESKMSG_connect_params* params);
// Messages that VESKMSG_flush has sent still arrive; over TCP that may take up to a second here.
void VESKMSG_disconnect(VESKMSG_link* link);
// Why the link is not (or no longer) open: "cannot connect to /run/vesk/server.sock: No such file or
// directory", "the server refused: name taken", "30 s of silence". "" while all is well.
[[nodiscard]] std::string VESKMSG_error(const VESKMSG_link* link);

// Reads and writes what can be without blocking, then calls `cb` once per message received since the last
// call, in order of arrival. The callback may queue messages; it must not disconnect the link.
void VESKMSG_process_messages(VESKMSG_link* link, VESKMSG_cb cb, void* param);

// Queues a message; payload and texts are copied. `record` is the payload's type name ("NET_LOG_SetState"),
// null with a null payload and size 0. FALSE (with a line on standard error) when the link is not open, the
// record is unknown, the size is not its own, nobody is meant (no destination and not to all), the type is
// the server's own, or 8 MiB already wait because the server does not take them.
BOOL VESKMSG_queue_message(VESKMSG_link* link, NETMSG_type msg, DWORD flags, const char* dest,
                           const void* payload, std::size_t size, const char* record);

// The same for a record known at compile time; `record` by value, since its doubles may be unaligned.
template <class R>
BOOL VESKMSG_queue(VESKMSG_link* link, NETMSG_type msg, DWORD flags, const char* dest, R record) {
    return VESKMSG_queue_message(link, msg, flags, dest, &record, sizeof record, NETDSD_of<R>()->name);
}

// Announces this peer, an instrument, to all who are connected and all who come later.
BOOL VESKMSG_announce(VESKMSG_link* link, const NET_SERVER_InstrumentInfo& info);

// An announcement of that source name is known; copies it to `info`.
[[nodiscard]] BOOL VESKMSG_instrument_info_by_name(VESKMSG_link* link, const char* name,
                                                   NET_SERVER_InstrumentInfo* info);
// The source matches the selector: by instrument name or by one of its announced tags (shell patterns).
// An empty selector matches everything.
[[nodiscard]] BOOL VESKMSG_filter_name_and_tag(VESKMSG_link* link, const char* source, const char* selector);

// Library listeners see every message before the caller's callback does.
void VESKMSG_add_listener(VESKMSG_link* link, VESKMSG_cb cb, void* param);
void VESKMSG_remove_listener(VESKMSG_link* link, VESKMSG_cb cb, void* param);

// Waits until one of the links has something to do, `extra_fd` (if not -1) is readable, or `seconds` passed.
// TRUE when there is something to do; an exit request ends the wait. For programs whose loop is not a screen.
BOOL VESKMSG_wait(std::span<VESKMSG_link* const> links, double seconds, int extra_fd = -1);
// Writes what is queued, waiting at most `seconds`; TRUE when everything has left.
BOOL VESKMSG_flush(VESKMSG_link* link, double seconds);
