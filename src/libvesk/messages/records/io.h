// The record of one I/O channel's report.
#pragma once

#include "libvesk/messages/netdsd.h"

#pragma pack(push, 4)
struct NET_IO_Value {
    STRING<32> channel;
    double value;
    double running;
};
#pragma pack(pop)

NETDSD_RECORD(NET_IO_Value, 48,
    NETDSD_MEMBER(channel, "name of the channel, such as Pd_P01"),
    NETDSD_MEMBER(value, UNIT_varies, "latest reading, missing when the report carries none"),
    NETDSD_MEMBER(running, UNIT_varies, "running average, missing when the report carries none"));
