// Wire records of the condensation particle counters. Concentrations in cm-3, temperatures in degrees
// Celsius, flows in lpm, pressures in hPa, laser currents in mA, voltages in mV.
#pragma once

#include "libvesk/netdsd.h"

#pragma pack(push, 4)

// The average of one interval; every kind but the BMI 1710 has the same, under its own name.
#define NET_CPC_AVG(record)          \
    struct record {                  \
        FTIME start_time;            \
        double concentration;        \
        double stddev_concentration; \
    };
NET_CPC_AVG(NET_CPC_3010_Avg)
NET_CPC_AVG(NET_CPC_3022_Avg)
NET_CPC_AVG(NET_CPC_3703_Avg)
NET_CPC_AVG(NET_CPC_3775_Avg)
NET_CPC_AVG(NET_CPC_3781_Avg)
NET_CPC_AVG(NET_CPC_3783_Avg)
NET_CPC_AVG(NET_CPC_Pulse_Avg)
#undef NET_CPC_AVG
#pragma pack(pop)
