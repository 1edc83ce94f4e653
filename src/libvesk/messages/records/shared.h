// Members and meanings that several families of records share.
#pragma once

#include "libvesk/messages/netdsd.h"

// The elements of every array of three.
inline constexpr const char* NET_COLOURS = "blue, green, red";

inline constexpr NETDSD_meaning NET_COMMS[] = {{FALSE, "NO COMMS", NETDSD_FAULT}};

// The member that nearly every instrument's status begins with, and the records that hold nothing else.
#define NET_HAVE_COMMS NETDSD_MEMBER(have_comms, "the instrument answers").values(NET_COMMS)
#define NET_COMMS_RECORD(record) NETDSD_RECORD(record, 1, NET_HAVE_COMMS)

// The instantaneous record of instruments that report one set of values: the latest ones and their running
// averages. The record is a struct { Reading in, ra; }.
#define NET_INSTANT_RECORD(record, size_in_bytes) \
    NETDSD_RECORD(record, size_in_bytes,             \
        NETDSD_MEMBER(in, "latest values"),          \
        NETDSD_MEMBER(ra, "running averages"))
