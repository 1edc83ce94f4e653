// The messages that a link delivers, and the states of a link.
#pragma once

#include "libvesk/messages/netmsg.h"
#include "libvesk/support/types.h"

// One received message; everything it points to belongs to the link and lives for the callback only.
struct VESKMSG_proc_msg {
    const NETMSG_entry* msg;
    const NETDSD_entry* dsd;  // of the payload, or null without one
    DWORD flags;
    const char* src_name;   // never null from the link; "" when the server itself speaks
    const char* dest_name;  // "" when there is none
    const void* pds;        // the payload, dsd->total_size bytes aligned on 8, already cleaned; or null
};
using VESKMSG_cb = void (*)(VESKMSG_proc_msg* pm, void* param);

enum VESKMSG_LINK_STATUS {
    VESKMSG_S_UNINITIALIZED,
    VESKMSG_S_UNLINKED,
    VESKMSG_S_AWAITING_HANDSHAKE,
    VESKMSG_S_OPEN,
};
