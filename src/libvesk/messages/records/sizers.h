// Wire records of the optical and mobility sizers, and the concentration of a condensation counter that
// stands beside another instrument.
#pragma once

#include "libvesk/messages/records/shared.h"

inline constexpr std::size_t NET_GRIMM_BINS = 31;
inline constexpr std::size_t NET_LASAIR_BINS = 8;
inline constexpr std::size_t NET_SEMS_BINS = 60;

#pragma pack(push, 4)
struct NET_COMMON_CNC_Instant {
    FTIME start_time;
    double in;
    double ra;
};

struct NET_GRIMM_Avg {
    FTIME start_time;
    double dN[NET_GRIMM_BINS];
    double N;
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
    WORD flags;
};

struct NET_GRIMM_Info {
    double D[NET_GRIMM_BINS];
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
    std::int32_t manifold;
    BOOL searching;
    double analog[4];
};

struct NET_LASAIR_Info {
    double D[NET_LASAIR_BINS];
};

struct NET_LASAIR_Status {
    BOOL have_comms;
};

struct NET_SEMS_Bins {
    FTIME start_time;
    double v[NET_SEMS_BINS];
};

struct NET_SEMS_Info {
    double T;
    double rh;
    double P_impactor;
    double HV_out;
    double P_dma;
    double Q_sheath, Q_excess, Q_mono;
    double T_CPC_condenser, T_CPC_saturator;
};

struct NET_SEMS_Status {
    BOOL have_comms;
};
#pragma pack(pop)

NETDSD_RECORD(NET_COMMON_CNC_Instant, 24,
    NETDSD_TIME(start_time, "time of the reading"),
    NETDSD_MEMBER(in, UNIT_per_cm3, "particle number concentration"),
    NETDSD_MEMBER(ra, UNIT_per_cm3, "its running average"));

#define NET_SIZER_BIN_MEMBER NETDSD_MEMBER(dN, UNIT_per_cm3, "number concentration by bin")
NETDSD_RECORD(NET_GRIMM_Avg, 272,
    NETDSD_TIME(start_time, "begin of the interval"),
    NET_SIZER_BIN_MEMBER,
    NETDSD_MEMBER(N, UNIT_per_cm3, "total number concentration"),
    NETDSD_MEMBER(Q, UNIT_lpm, "sample flow"));
NETDSD_RECORD(NET_GRIMM_Instant, 584,
    NETDSD_TIME(start_time, "time of the reading"),
    NETDSD_MEMBER(running, "running averages"),
    NET_SIZER_BIN_MEMBER,
    NETDSD_MEMBER(N, UNIT_per_cm3, "total number concentration"),
    NETDSD_MEMBER(loc, UNIT_none, "location number"),
    NETDSD_MEMBER(gf, UNIT_none, "gravimetric factor as the instrument writes it"),
    NETDSD_MEMBER(batt, UNIT_none, "battery as the instrument writes it"),
    NETDSD_MEMBER(I_motor, UNIT_none, "motor current as the instrument writes it"),
    NETDSD_MEMBER(zero_filter, UNIT_none, "zero filter as the instrument writes it"),
    NETDSD_MEMBER(cal, UNIT_none, "calibration as the instrument writes it"),
    NETDSD_MEMBER(Q, UNIT_lpm, "sample flow"),
    NETDSD_MEMBER(sens, UNIT_none, "sensors as the instrument writes them"),
    NETDSD_MEMBER(flags, UNIT_none, "the instrument's error code, 0 for none"));
NETDSD_OFFSET(NET_GRIMM_Instant, Q, 560);
NETDSD_OFFSET(NET_GRIMM_Instant, sens, 568);
NETDSD_OFFSET(NET_GRIMM_Instant, flags, 580);
NETDSD_RECORD(NET_GRIMM_Info, 248, NETDSD_MEMBER(D, UNIT_um, "lower diameter of the bin"));
NET_COMMS_RECORD(NET_GRIMM_Status);

NETDSD_RECORD(NET_LASAIR_Avg, 88,
    NETDSD_TIME(start_time, "begin of the interval"),
    NETDSD_MEMBER(N, UNIT_per_cm3, "total number concentration"),
    NET_SIZER_BIN_MEMBER,
    NETDSD_MEMBER(Q, UNIT_lpm, "sample flow"));
NETDSD_RECORD(NET_LASAIR_Instant, 224,
    NETDSD_TIME(start_time, "time of the reading"),
    NETDSD_MEMBER(running, "running averages"),
    NETDSD_MEMBER(N, UNIT_per_cm3, "total number concentration"),
    NETDSD_MEMBER(Q, UNIT_lpm, "sample flow"),
    NET_SIZER_BIN_MEMBER,
    NETDSD_MEMBER(V_laser, UNIT_V, "laser voltage"),
    NETDSD_MEMBER(manifold, UNIT_none, "port of the inlet manifold"),
    NETDSD_MEMBER(searching, "it searches for that port"),
    NETDSD_MEMBER(analog, UNIT_V, "analog inputs 1 to 4"));
NETDSD_RECORD(NET_LASAIR_Info, 64, NETDSD_MEMBER(D, UNIT_um, "lower diameter of the bin"));
NET_COMMS_RECORD(NET_LASAIR_Status);
#undef NET_SIZER_BIN_MEMBER

// Its unit depends on the message.
NETDSD_RECORD(NET_SEMS_Bins, 488,
    NETDSD_TIME(start_time, "begin of the sweep"),
    NETDSD_MEMBER(v, UNIT_varies, "by bin: diameter (nm), width in log10 of it, or counts (cm-3)"));
NETDSD_RECORD(NET_SEMS_Info, 80,
    NETDSD_MEMBER(T, UNIT_degC, "sample temperature"),
    NETDSD_MEMBER(rh, UNIT_percent, "relative humidity of the sample").range(0, 100),
    NETDSD_MEMBER(P_impactor, UNIT_hPa, "pressure at the impactor"),
    NETDSD_MEMBER(HV_out, UNIT_V, "high voltage"),
    NETDSD_MEMBER(P_dma, UNIT_hPa, "pressure in the mobility analyser"),
    NETDSD_MEMBER(Q_sheath, UNIT_lpm, "sheath flow"),
    NETDSD_MEMBER(Q_excess, UNIT_lpm, "excess flow"),
    NETDSD_MEMBER(Q_mono, UNIT_lpm, "monodisperse flow"),
    NETDSD_MEMBER(T_CPC_condenser, UNIT_degC, "condenser temperature of the counter"),
    NETDSD_MEMBER(T_CPC_saturator, UNIT_degC, "saturator temperature of the counter"));
NET_COMMS_RECORD(NET_SEMS_Status);
