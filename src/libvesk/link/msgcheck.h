// Is a message one that may travel? The same question for the server about what arrives, for a peer about
// what it is asked to send and about what it receives; so it is answered once.
#pragma once

#include "libvesk/link/frame.h"
#include "libvesk/messages/netmsg.h"

enum MSGCHECK_fault {
    MSGCHECK_OK,
    MSGCHECK_UNKNOWN_TYPE,
    MSGCHECK_SERVERS_OWN,  // a type that only the server sends, or nobody
    MSGCHECK_UNKNOWN_RECORD,
    MSGCHECK_WRONG_RECORD,     // a record that the type is not tied to
    MSGCHECK_WRONG_SIZE,       // the payload is not as long as its record
    MSGCHECK_FLAGS,            // bits without a meaning
    MSGCHECK_NO_DESTINATION,   // neither to all nor to anybody
    MSGCHECK_BAD_DESTINATION,  // not a name that a peer can have
    MSGCHECK_NOT_ANNOUNCING,   // an announcement without its record, or from a peer that is no instrument
    MSGCHECK_WRONG_SOURCE,     // another's name as the source: put right, not dropped
    MSGCHECK_COUNT,
};

struct MSGCHECK_found {
    const NETMSG_entry* msg = nullptr;
    const NETDSD_entry* dsd = nullptr;  // null without a payload
};

// Looks up type and record and checks what holds for every message on the wire.
[[nodiscard]] MSGCHECK_fault MSGCHECK_content(const FRAME_message& m, MSGCHECK_found* found);
// The same, and what holds for one that a peer sends: types, flags, destination.
[[nodiscard]] MSGCHECK_fault MSGCHECK_from_peer(const FRAME_message& m, MSGCHECK_found* found);
// "a payload of another size than its record's": what is wrong, for a log line.
[[nodiscard]] const char* MSGCHECK_text(MSGCHECK_fault fault);
// The message in a few printable words, for the same line: "MSG_LOG_INFO with 3 bytes of NET_LOG_Info".
[[nodiscard]] std::string MSGCHECK_describe(const FRAME_message& m);
