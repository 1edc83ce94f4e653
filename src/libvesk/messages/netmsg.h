// Message types and their table. The enumeration needs no record; the table (netmsg.cpp) knows them all.
#pragma once

#include <span>
#include <string_view>

#include "libvesk/messages/netdsd.h"
#include "libvesk/messages/netmsg_list.h"

enum NETMSG_type : int {
#define NETMSG_ENUM(name, record) name,
    NETMSG_LIST(NETMSG_ENUM)
#undef NETMSG_ENUM
        NETMSG_COUNT
};
static_assert(NETMSG_COUNT == 270);
static_assert(MSG_AETHALOMETER_REPORT == 0 && NET_SERVER_DELETFILTER == 269);

struct NETMSG_entry {
    NETMSG_type msg;
    const char* name;         // "MSG_CPC_3010_INSTANT"
    const char* meta_types;   // reserved, ""
    const char* ds_tie;       // name of the payload's record type, "" for none
    const NETDSD_entry* dsd;  // its descriptor, null for none
};

// The entry of a type, or null when the number is none of ours (it may come from the wire).
[[nodiscard]] const NETMSG_entry* NETMSG_by_type(int type);
// By the printable name, exactly; null when there is none.
[[nodiscard]] const NETMSG_entry* NETMSG_by_name(std::string_view name);
// TRUE when a message of that type may carry that record (null: no payload). A tied type carries its record
// or nothing; an untied one anything registered.
[[nodiscard]] BOOL NETMSG_accepts(const NETMSG_entry* msg, const NETDSD_entry* dsd);

// All message types by their numbers; the descriptors of all records, in the order of the first message that
// carries each, what a record nests right behind it.
[[nodiscard]] std::span<const NETMSG_entry> NETMSG_all();
[[nodiscard]] std::span<const NETDSD_entry* const> NETDSD_all();

// The descriptor of a record type by its name, or null: every record tied to a message, and what those nest.
[[nodiscard]] const NETDSD_entry* NETDSD_by_name(std::string_view name);
