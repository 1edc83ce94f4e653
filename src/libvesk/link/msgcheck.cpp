// The checks of a message, cheapest first; no payload is read.
#include "libvesk/link/msgcheck.h"

#include <array>

#include "libvesk/support/util.h"

namespace {

constexpr DWORD KNOWN_FLAGS = FRAME_TO_ALL | FRAME_RESERVED | FRAME_KEEP;

BOOL is_servers_own(NETMSG_type type) {
    switch (type) {
        case MSG_NOTIFY_CLIENT_CONNECT:
        case MSG_NOTIFY_CLIENT_TERMINATE:
        case MSG_SERVER_CLIENTHANDSHAKE:
        case MSG_SERVER_HEARTBEAT:
        case MSG_SERVER_SERVERHANDSHAKE:
        case MSG_SERVER_TERMINATE:
        case NET_SERVER_ADDFILTER:
        case NET_SERVER_DELETFILTER:
            return TRUE;
        default:
            return FALSE;
    }
}

// The tied record is the usual one, so it is tried before the search by name.
const NETDSD_entry* find_record(const NETMSG_entry* msg, std::string_view name) {
    return msg->dsd != nullptr && name == msg->ds_tie ? msg->dsd : NETDSD_by_name(name);
}

}  // namespace

MSGCHECK_fault MSGCHECK_content(const FRAME_message& m, MSGCHECK_found* found) {
    found->msg = NETMSG_by_type(m.type);
    found->dsd = nullptr;
    if (found->msg == nullptr) return MSGCHECK_UNKNOWN_TYPE;
    if (m.record.empty()) return m.payload.empty() ? MSGCHECK_OK : MSGCHECK_UNKNOWN_RECORD;
    found->dsd = find_record(found->msg, m.record);
    if (found->dsd == nullptr) return MSGCHECK_UNKNOWN_RECORD;
    if (found->dsd->total_size != m.payload.size()) return MSGCHECK_WRONG_SIZE;
    return NETMSG_accepts(found->msg, found->dsd) ? MSGCHECK_OK : MSGCHECK_WRONG_RECORD;
}

MSGCHECK_fault MSGCHECK_from_peer(const FRAME_message& m, MSGCHECK_found* found) {
    const MSGCHECK_fault fault = MSGCHECK_content(m, found);
    if (fault != MSGCHECK_OK) return fault;
    if (is_servers_own(found->msg->msg)) return MSGCHECK_SERVERS_OWN;
    if ((m.flags & ~KNOWN_FLAGS) != 0) return MSGCHECK_FLAGS;
    if (m.dest.empty()) return (m.flags & FRAME_TO_ALL) != 0 ? MSGCHECK_OK : MSGCHECK_NO_DESTINATION;
    return UTIL_valid_source_name(m.dest) ? MSGCHECK_OK : MSGCHECK_BAD_DESTINATION;
}

const char* MSGCHECK_text(MSGCHECK_fault fault) {
    static constexpr std::array<const char*, MSGCHECK_COUNT> texts{
        "nothing",
        "an unknown type",
        "a type that only the server may send",
        "an unknown record",
        "a record that does not belong to the type",
        "a payload of another size than its record's",
        "flags without a meaning",
        "no destination",
        "a destination that cannot be a name",
        "an announcement that only an instrument may send, with its record",
        "another's name as its source",
    };
    return texts.at(fault);
}

std::string MSGCHECK_describe(const FRAME_message& m) {
    const NETMSG_entry* msg = NETMSG_by_type(m.type);
    std::string text = msg != nullptr ? msg->name : "type " + std::to_string(m.type);
    if (m.record.empty() && m.payload.empty()) return text;
    return text + " with " + std::to_string(m.payload.size()) + " bytes of \"" + UTIL_printable(m.record) +
           '"';
}
