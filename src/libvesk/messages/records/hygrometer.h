// Wire records of the chilled-mirror hygrometer.
#pragma once

#include "libvesk/messages/records/shared.h"

// The states of the mirror that such instruments report: whether the cooler holds the dew on it, and the
// automatic check of the dry mirror by which they find it dirty.
inline constexpr NETDSD_meaning NET_HYGROMETER_FLAGS[] = {
    {0x0001, "MIRROR CHECK", NETDSD_NOTE},
    {0x0002, "CLEAN MIRROR", NETDSD_FAULT},
    {0x0004, "NO CONTROL", NETDSD_FAULT},
    {0x0008, "ICE", NETDSD_STATE},
};

#pragma pack(push, 4)
struct NET_HYGROMETER_Reading {
    FTIME start_time;
    double T_dew;
    double T_frost;
    double RH;
    double T;
    double T_mirror;
};

struct NET_HYGROMETER_Instant {
    NET_HYGROMETER_Reading in;
    NET_HYGROMETER_Reading ra;
};

struct NET_HYGROMETER_Status {
    BOOL have_comms;
    WORD flags;
};
#pragma pack(pop)

NETDSD_RECORD(NET_HYGROMETER_Reading, 48,
    NETDSD_TIME(start_time, "begin of the interval, or time of the reading"),
    NETDSD_MEMBER(T_dew, UNIT_degC, "dew point over water"),
    NETDSD_MEMBER(T_frost, UNIT_degC, "frost point, missing above 0 degrees").range(-100, 0),
    NETDSD_MEMBER(RH, UNIT_percent, "relative humidity over water").range(0, 100),
    NETDSD_MEMBER(T, UNIT_degC, "air temperature at the sensor"),
    NETDSD_MEMBER(T_mirror, UNIT_degC, "mirror temperature"));
NET_INSTANT_RECORD(NET_HYGROMETER_Instant, 96);
NETDSD_RECORD(NET_HYGROMETER_Status, 4,
    NET_HAVE_COMMS,
    NETDSD_MEMBER(flags, UNIT_bits, "state of the mirror").bits(NET_HYGROMETER_FLAGS));
