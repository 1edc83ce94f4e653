// The one way out of the console: every message that it sends goes through here, where a console that only
// watches stops it, and where the station's events learn of it.
#pragma once

#include "libvesk/link/veskmsg.h"

// As VESKMSG_queue_message on the console's link. FALSE, and a dialog says so, when this console is read
// only.
BOOL SEND_message(NETMSG_type msg, DWORD flags, const char* dest, const void* payload, std::size_t size,
                  const char* record);

// The same for a record known at compile time.
template <class R>
BOOL SEND_record(NETMSG_type msg, DWORD flags, const char* dest, R record) {
    return SEND_message(msg, flags, dest, &record, sizeof record, NETDSD_of<R>()->name);
}
