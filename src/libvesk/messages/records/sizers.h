// Wire records of the optical and mobility sizers, and the concentration of a condensation counter that
// stands beside another instrument. Numbers per bin and totals in cm-3, flows in lpm.
#pragma once

#include "libvesk/messages/netdsd.h"

inline constexpr std::size_t NET_GRIMM_BINS = 31;
inline constexpr std::size_t NET_LASAIR_BINS = 8;
inline constexpr std::size_t NET_SEMS_BINS = 60;

#pragma pack(push, 4)
struct NET_COMMON_CNC_Instant {
    FTIME start_time;
    double in;  // instantaneous
    double ra;  // running average
};

struct NET_GRIMM_Avg {
    FTIME start_time;
    double dN[NET_GRIMM_BINS];
    double N;  // total
    double Q;
};

struct NET_GRIMM_Instant {
    FTIME start_time;
    NET_GRIMM_Avg running;
    double dN[NET_GRIMM_BINS];
    double N;
    std::int32_t loc;
    std::int32_t gf;
    std::int32_t batt;
    std::int32_t I_motor;
    std::int32_t zero_filter;
    std::int32_t cal;
    double Q;
    std::int32_t sens[3];
    WORD flags;  // the instrument's error code
};

struct NET_GRIMM_Info {
    double D[NET_GRIMM_BINS];  // um
};

struct NET_GRIMM_Status {
    BOOL have_comms;
};

struct NET_LASAIR_Avg {
    FTIME start_time;
    double N;
    double dN[NET_LASAIR_BINS];
    double Q;
};

struct NET_LASAIR_Instant {
    FTIME start_time;
    NET_LASAIR_Avg running;
    double N;
    double Q;
    double dN[NET_LASAIR_BINS];
    double V_laser;
    std::int32_t manifold;  // port of the inlet manifold
    BOOL searching;         // for that port
    double analog[4];
};

struct NET_LASAIR_Info {
    double D[NET_LASAIR_BINS];  // um
};

struct NET_LASAIR_Status {
    BOOL have_comms;
};

// One value per bin: diameters (nm), widths (log10 of the diameter) or the counts of one sweep.
struct NET_SEMS_Bins {
    FTIME start_time;
    double v[NET_SEMS_BINS];
};

// Temperatures in degrees Celsius, humidity in percent, pressures in hPa, voltage in V.
struct NET_SEMS_Info {
    double T;
    double rh;
    double P_impactor;
    double HV_out;
    double P_dma;
    double Q_sheath;
    double Q_excess;
    double Q_mono;
    double T_CPC_condenser;
    double T_CPC_saturator;
};

struct NET_SEMS_Status {
    BOOL have_comms;
};
#pragma pack(pop)

NETDSD_RECORD(NET_COMMON_CNC_Instant, 24, NETDSD_TIME(start_time), NETDSD_MEMBER(in), NETDSD_MEMBER(ra));

NETDSD_RECORD(NET_GRIMM_Avg, 272, NETDSD_TIME(start_time), NETDSD_MEMBER(dN), NETDSD_MEMBER(N),
              NETDSD_MEMBER(Q));
NETDSD_RECORD(NET_GRIMM_Instant, 584, NETDSD_TIME(start_time), NETDSD_MEMBER(running), NETDSD_MEMBER(dN),
              NETDSD_MEMBER(N), NETDSD_MEMBER(loc), NETDSD_MEMBER(gf), NETDSD_MEMBER(batt),
              NETDSD_MEMBER(I_motor), NETDSD_MEMBER(zero_filter), NETDSD_MEMBER(cal), NETDSD_MEMBER(Q),
              NETDSD_MEMBER(sens), NETDSD_MEMBER(flags));
NETDSD_OFFSET(NET_GRIMM_Instant, Q, 560);
NETDSD_OFFSET(NET_GRIMM_Instant, sens, 568);
NETDSD_OFFSET(NET_GRIMM_Instant, flags, 580);
NETDSD_RECORD(NET_GRIMM_Info, 248, NETDSD_MEMBER(D));
NETDSD_RECORD(NET_GRIMM_Status, 1, NETDSD_MEMBER(have_comms));

NETDSD_RECORD(NET_LASAIR_Avg, 88, NETDSD_TIME(start_time), NETDSD_MEMBER(N), NETDSD_MEMBER(dN),
              NETDSD_MEMBER(Q));
NETDSD_RECORD(NET_LASAIR_Instant, 224, NETDSD_TIME(start_time), NETDSD_MEMBER(running), NETDSD_MEMBER(N),
              NETDSD_MEMBER(Q), NETDSD_MEMBER(dN), NETDSD_MEMBER(V_laser), NETDSD_MEMBER(manifold),
              NETDSD_MEMBER(searching), NETDSD_MEMBER(analog));
NETDSD_RECORD(NET_LASAIR_Info, 64, NETDSD_MEMBER(D));
NETDSD_RECORD(NET_LASAIR_Status, 1, NETDSD_MEMBER(have_comms));

NETDSD_RECORD(NET_SEMS_Bins, 488, NETDSD_TIME(start_time), NETDSD_MEMBER(v));
NETDSD_RECORD(NET_SEMS_Info, 80, NETDSD_MEMBER(T), NETDSD_MEMBER(rh), NETDSD_MEMBER(P_impactor),
              NETDSD_MEMBER(HV_out), NETDSD_MEMBER(P_dma), NETDSD_MEMBER(Q_sheath), NETDSD_MEMBER(Q_excess),
              NETDSD_MEMBER(Q_mono), NETDSD_MEMBER(T_CPC_condenser), NETDSD_MEMBER(T_CPC_saturator));
NETDSD_RECORD(NET_SEMS_Status, 1, NETDSD_MEMBER(have_comms));
