// The record of one I/O channel's report.
#pragma once

#include "libvesk/messages/netdsd.h"

#pragma pack(push, 4)
struct NET_IO_Value {
    STRING<32> channel;  // "Pd_P01"
    double value;        // latest reading, missing when the report carries none
    double running;      // running average, missing when the report carries none
};
#pragma pack(pop)

NETDSD_RECORD(NET_IO_Value, 48, NETDSD_MEMBER(channel), NETDSD_MEMBER(value), NETDSD_MEMBER(running));
