// What the records of several families have alike.
#pragma once

#include "libvesk/messages/netdsd.h"

// The elements of every array of three.
inline constexpr const char* NET_COLOURS = "blue, green, red";

inline constexpr NETDSD_meaning NET_COMMS[] = {{FALSE, "NO COMMS", NETDSD_FAULT}};

// The member that nearly every instrument's status begins with, and the records that hold nothing else.
#define NET_HAVE_COMMS NETDSD_MEMBER(have_comms, "the instrument answers").values(NET_COMMS)
#define NET_COMMS_RECORD(record) NETDSD_RECORD(record, 1, NET_HAVE_COMMS)
