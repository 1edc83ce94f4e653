// Wire records of the hardware loop controllers: up to four Love controllers on one line, and the two-channel
// Watlow. Values are in the unit that the controller is set up for.
#pragma once

#include "libvesk/messages/netdsd.h"

inline constexpr int NET_LOVEPID_SLOTS = 4;

#pragma pack(push, 4)
struct NET_LOVEPID_Avg {
    FTIME start_time;
    double pv[NET_LOVEPID_SLOTS];  // last completed average
};

struct NET_LOVEPID_Instant {
    FTIME start_time;
    double pv[NET_LOVEPID_SLOTS];  // process values
    double ra[NET_LOVEPID_SLOTS];  // running averages
};

struct NET_LOVEPID_Setpoint {
    double sp;
    WORD addr;  // bus address of the controller
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
    WORD addrs[NET_LOVEPID_SLOTS];  // 0: no controller in this slot
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
    char chan;  // 'A' or 'B'
    double val;
};

struct NET_WATLOW_Status {
    std::int32_t err;  // 0: none
    BOOL have_comms;
};
#pragma pack(pop)

NETDSD_RECORD(NET_LOVEPID_Avg, 40, NETDSD_TIME(start_time), NETDSD_MEMBER(pv));
NETDSD_RECORD(NET_LOVEPID_Instant, 72, NETDSD_TIME(start_time), NETDSD_MEMBER(pv), NETDSD_MEMBER(ra));
NETDSD_RECORD(NET_LOVEPID_Setpoint, 12, NETDSD_MEMBER(sp), NETDSD_MEMBER(addr));
NETDSD_RECORD(NET_LOVEPID_Setpoints, 32, NETDSD_MEMBER(sp));
NETDSD_RECORD(NET_LOVEPID_Error, 128, NETDSD_MEMBER(error));
NETDSD_RECORD(NET_LOVEPID_Status, 524, NETDSD_MEMBER(have_comms), NETDSD_MEMBER(error), NETDSD_MEMBER(addrs));
NETDSD_RECORD(NET_WATLOW_Avg, 24, NETDSD_TIME(start_time), NETDSD_MEMBER(chA), NETDSD_MEMBER(chB));
NETDSD_RECORD(NET_WATLOW_Channels, 16, NETDSD_MEMBER(chA), NETDSD_MEMBER(chB));
NETDSD_RECORD(NET_WATLOW_OneChannel, 12, NETDSD_MEMBER(chan), NETDSD_MEMBER(val));
NETDSD_RECORD(NET_WATLOW_Status, 8, NETDSD_MEMBER(err), NETDSD_MEMBER(have_comms));
