// Wire records of the thermal mass flow meter.
#pragma once

#include "libvesk/messages/records/shared.h"

#pragma pack(push, 4)
struct NET_TSITMF_Reading {
    FTIME start_time;
    double Q;
    double T;
    double P;
};

struct NET_TSITMF_Instant {
    NET_TSITMF_Reading in;
    NET_TSITMF_Reading ra;
};

struct NET_TSITMF_Status {
    BOOL have_comms;
};
#pragma pack(pop)

NETDSD_RECORD(NET_TSITMF_Reading, 32,
    NETDSD_TIME(start_time, "begin of the interval, or time of the reading"),
    NETDSD_MEMBER(Q, UNIT_slpm, "mass flow"),
    NETDSD_MEMBER(T, UNIT_degC, "gas temperature"),
    NETDSD_MEMBER(P, UNIT_hPa, "absolute pressure"));
NET_INSTANT_RECORD(NET_TSITMF_Instant, 64);
NET_COMMS_RECORD(NET_TSITMF_Status);
