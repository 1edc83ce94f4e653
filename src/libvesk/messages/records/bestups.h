// Wire records of the uninterruptible power supply.
#pragma once

#include "libvesk/messages/records/shared.h"

// Status of power supplies as RFC 9271 knows it (OB, LB, OVER, RB, BYPASS, OFF, BOOST, TRIM, CHRG, TEST), in
// words.
inline constexpr WORD NET_BESTUPS_ON_BATTERY = 0x0001;
inline constexpr WORD NET_BESTUPS_LOW_BATTERY = 0x0002;
inline constexpr WORD NET_BESTUPS_OVERLOAD = 0x0004;
inline constexpr WORD NET_BESTUPS_REPLACE_BATTERY = 0x0008;
inline constexpr WORD NET_BESTUPS_BYPASS = 0x0010;
inline constexpr WORD NET_BESTUPS_OFF = 0x0020;
inline constexpr WORD NET_BESTUPS_BOOST = 0x0040;
inline constexpr WORD NET_BESTUPS_TRIM = 0x0080;
inline constexpr WORD NET_BESTUPS_CHARGING = 0x0100;
inline constexpr WORD NET_BESTUPS_TEST = 0x0200;
inline constexpr NETDSD_meaning NET_BESTUPS_FLAGS[] = {
    {NET_BESTUPS_ON_BATTERY, "ON BATTERY", NETDSD_FAULT},
    {NET_BESTUPS_LOW_BATTERY, "LOW BATTERY", NETDSD_FAULT},
    {NET_BESTUPS_OVERLOAD, "OVERLOAD", NETDSD_FAULT},
    {NET_BESTUPS_REPLACE_BATTERY, "REPLACE BATTERY", NETDSD_FAULT},
    {NET_BESTUPS_BYPASS, "BYPASS", NETDSD_FAULT},
    {NET_BESTUPS_OFF, "OUTPUT OFF", NETDSD_FAULT},
    {NET_BESTUPS_BOOST, "Raising the mains", NETDSD_NOTE},
    {NET_BESTUPS_TRIM, "Lowering the mains", NETDSD_NOTE},
    {NET_BESTUPS_CHARGING, "Charging", NETDSD_STATE},
    {NET_BESTUPS_TEST, "Battery test", NETDSD_NOTE},
};

#pragma pack(push, 4)
struct NET_BESTUPS_Reading {
    FTIME start_time;
    double V_mains;
    double V_output;
    double f;
    double V_battery;
    double charge;
    double load;
    double time_left;
};

struct NET_BESTUPS_Instant {
    NET_BESTUPS_Reading in;
    NET_BESTUPS_Reading ra;
};

struct NET_BESTUPS_Status {
    BOOL have_comms;
    WORD flags;
};
#pragma pack(pop)

NETDSD_RECORD(NET_BESTUPS_Reading, 64,
    NETDSD_TIME(start_time, "begin of the interval, or time of the reading"),
    NETDSD_MEMBER(V_mains, UNIT_V, "mains voltage"),
    NETDSD_MEMBER(V_output, UNIT_V, "output voltage"),
    NETDSD_MEMBER(f, UNIT_Hz, "output frequency"),
    NETDSD_MEMBER(V_battery, UNIT_V, "battery voltage"),
    NETDSD_MEMBER(charge, UNIT_percent, "battery charge").range(0, 100),
    NETDSD_MEMBER(load, UNIT_percent, "load, of the rated power"),
    NETDSD_MEMBER(time_left, UNIT_min, "run time left on the battery"));
NET_INSTANT_RECORD(NET_BESTUPS_Instant, 128);
NETDSD_RECORD(NET_BESTUPS_Status, 4,
    NET_HAVE_COMMS,
    NETDSD_MEMBER(flags, UNIT_bits, "status words").bits(NET_BESTUPS_FLAGS));
