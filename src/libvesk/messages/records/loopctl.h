// Wire records of the hardware loop controllers: up to four Love controllers on one line, and the two-channel
// Watlow.
#pragma once

#include "libvesk/messages/records/shared.h"

inline constexpr int NET_LOVEPID_SLOTS = 4;

#pragma pack(push, 4)
struct NET_LOVEPID_Avg {
    FTIME start_time;
    double pv[NET_LOVEPID_SLOTS];
};

struct NET_LOVEPID_Instant {
    FTIME start_time;
    double pv[NET_LOVEPID_SLOTS];
    double ra[NET_LOVEPID_SLOTS];
};

struct NET_LOVEPID_Setpoint {
    double sp;
    WORD addr;
};

struct NET_LOVEPID_Setpoints {
    double sp[NET_LOVEPID_SLOTS];
};

struct NET_LOVEPID_Error {
    STRING<128> error;
};

struct NET_LOVEPID_Status {
    BOOL have_comms[NET_LOVEPID_SLOTS];
    NET_LOVEPID_Error error[NET_LOVEPID_SLOTS];
    WORD addrs[NET_LOVEPID_SLOTS];
};

struct NET_WATLOW_Avg {
    FTIME start_time;
    double chA;
    double chB;
};

struct NET_WATLOW_Channels {
    double chA;
    double chB;
};

struct NET_WATLOW_OneChannel {
    char chan;
    double val;
};

struct NET_WATLOW_Status {
    std::int32_t err;
    BOOL have_comms;
};
#pragma pack(pop)

NETDSD_RECORD(NET_LOVEPID_Avg, 40,
    NETDSD_TIME(start_time, "begin of the interval"),
    NETDSD_MEMBER(pv, UNIT_varies, "average of the process value, by slot"));
NETDSD_RECORD(NET_LOVEPID_Instant, 72,
    NETDSD_TIME(start_time, "time of the reading"),
    NETDSD_MEMBER(pv, UNIT_varies, "process value, by slot"),
    NETDSD_MEMBER(ra, UNIT_varies, "running average of the process value, by slot"));
NETDSD_RECORD(NET_LOVEPID_Setpoint, 12,
    NETDSD_MEMBER(sp, UNIT_varies, "new set point").range(-999.99, 999.99),
    NETDSD_MEMBER(addr, UNIT_none, "bus address of the controller"));
NETDSD_RECORD(NET_LOVEPID_Setpoints, 32, NETDSD_MEMBER(sp, UNIT_varies, "set point, by slot"));
NETDSD_RECORD(NET_LOVEPID_Error, 128, NETDSD_MEMBER(error, "why it does not answer, may be empty"));
NETDSD_RECORD(NET_LOVEPID_Status, 524,
    NETDSD_MEMBER(have_comms, "the controller answers, by slot").values(NET_COMMS),
    NETDSD_MEMBER(error, "error, by slot"),
    NETDSD_MEMBER(addrs, UNIT_none, "bus address, by slot; 0 for a slot without controller"));
NETDSD_RECORD(NET_WATLOW_Avg, 24,
    NETDSD_TIME(start_time, "begin of the interval"),
    NETDSD_MEMBER(chA, UNIT_varies, "average of the process value, channel A"),
    NETDSD_MEMBER(chB, UNIT_varies, "average of the process value, channel B"));
NETDSD_RECORD(NET_WATLOW_Channels, 16,
    NETDSD_MEMBER(chA, UNIT_varies, "process value or set point, channel A"),
    NETDSD_MEMBER(chB, UNIT_varies, "process value or set point, channel B"));
NETDSD_RECORD(NET_WATLOW_OneChannel, 12,
    NETDSD_MEMBER(chan, "channel: A or B"),
    NETDSD_MEMBER(val, UNIT_varies, "new set point").range(-99.9, 99.9));
NETDSD_RECORD(NET_WATLOW_Status, 8,
    NETDSD_MEMBER(err, UNIT_none, "the controller's error number, 0 for none"),
    NET_HAVE_COMMS);
