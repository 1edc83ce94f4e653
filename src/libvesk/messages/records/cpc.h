// Wire records of the condensation particle counters.
#pragma once

#include "libvesk/messages/records/shared.h"

// Bits of the kinds whose bits are known.
inline constexpr NETDSD_meaning NET_CPC_3010_WARNINGS[] = {
    {1, "LASER/TEMP", NETDSD_FAULT}, {2, "LOW BUTANOL", NETDSD_NOTE}, {4, "VACUUM", NETDSD_FAULT}};
inline constexpr NETDSD_meaning NET_CPC_3022_WARNINGS[] = {{1, "LASER/TEMP", NETDSD_FAULT},
                                                           {2, "LOW BUTANOL", NETDSD_NOTE}};
// Of the others only that any of them is an error.
inline constexpr NETDSD_meaning NET_CPC_ANY_ERROR[] = {{0xFFFF, "Flags", NETDSD_FAULT}};
inline constexpr NETDSD_meaning NET_CPC_3010_DIP[] = {{TRUE, "INVALID DIP SWITCH", NETDSD_FAULT}};
inline constexpr NETDSD_meaning NET_CPC_3783_WATER[] = {{FALSE, "Water low", NETDSD_FAULT}};

// The average of one interval: every kind but the BMI 1710 has the same, under its own name.
#define NET_CPC_AVG_LIST(X) \
    X(NET_CPC_3010_Avg)     \
    X(NET_CPC_3022_Avg)     \
    X(NET_CPC_3703_Avg)     \
    X(NET_CPC_3775_Avg)     \
    X(NET_CPC_3781_Avg)     \
    X(NET_CPC_3783_Avg)     \
    X(NET_CPC_Pulse_Avg)

#pragma pack(push, 4)
#define NET_CPC_AVG(record)          \
    struct record {                  \
        FTIME start_time;            \
        double concentration;        \
        double stddev_concentration; \
    };
NET_CPC_AVG_LIST(NET_CPC_AVG)
#undef NET_CPC_AVG

struct NET_CPC_3010_Instant {
    FTIME start_time;
    double concentration;
    double display_concentration;
    double T_condenser, T_saturator;
    NET_CPC_3010_Avg running;
};

struct NET_CPC_3010_Status {
    BOOL have_comms;
    BOOL dip_error;
    WORD flags;
};

struct NET_CPC_3022_Instant {
    FTIME start_time;
    double concentration;
    double display_concentration;
    double T_condenser, T_saturator, T_optics;
    double Q;
    NET_CPC_3022_Avg running;
};

struct NET_CPC_3022_Status {
    BOOL have_comms;
    WORD flags;
};

struct NET_CPC_3703_Instant {
    FTIME start_time;
    double concentration;
    NET_CPC_3703_Avg running;
};

struct NET_CPC_3703_Status {
    BOOL have_comms;
};

struct NET_CPC_3775_Instant {
    FTIME start_time;
    double concentration;
    double display_concentration;
    double T_condenser, T_saturator, T_optics, T_cabinet;
    double P_ambient, P_orifice, P_nozzle;
    double I_laser;
    double Q;
    double Q_inlet;
    std::int32_t liquid;
    NET_CPC_3775_Avg running;
};

struct NET_CPC_3775_Status {
    BOOL have_comms;
    WORD flags;
};

struct NET_CPC_3781_Instant {
    FTIME start_time;
    double concentration;
    double display_concentration;
    double T_saturator, T_growth, T_optics;
    double P;
    double Q;
    NET_CPC_3781_Avg running;
};

struct NET_CPC_3781_Status {
    BOOL have_comms;
    WORD flags;
};

struct NET_CPC_3783_Instant {
    FTIME start_time;
    double concentration;
    double display_concentration;
    double T_inlet, T_growth, T_condenser, T_optics, T_water, T_cabinet;
    double Q_inlet;
    double P_absolute, P_vacuum, P_nozzle;
    double I_laser;
    double V_photo, V_pulse;
    std::int32_t liquid;
    NET_CPC_3783_Avg running;
};

struct NET_CPC_3783_Status {
    BOOL have_comms;
    WORD flags;
    BOOL full;
};

struct NET_CPC_BMI1710_Reading {
    FTIME start_time;
    double N;
    double Ng;
    double T1, T2, T3, T4, Tu;
    double Q1, Q2;
    double PCT1, PCT2, PCT3, PCT4, PCT5;
};

struct NET_CPC_BMI1710_Instant {
    FTIME start_time;
    NET_CPC_BMI1710_Reading in;
    NET_CPC_BMI1710_Reading ra;
    std::int32_t fill_count;
};

struct NET_CPC_BMI1710_Status {
    BOOL have_comms;
};

struct NET_CPC_Pulse_Instant {
    FTIME start_time;
    double concentration;
    NET_CPC_Pulse_Avg running;
};

struct NET_CPC_Pulse_Status {
    BOOL have_comms;
};
#pragma pack(pop)

#define NET_CPC_AVG_DSD(record)                                                       \
    NETDSD_RECORD(record, 24, \
        NETDSD_TIME(start_time, "begin of the interval"), \
        NETDSD_MEMBER(concentration, UNIT_per_cm3, "particle number concentration"), \
        NETDSD_MEMBER(stddev_concentration, UNIT_per_cm3, "its standard deviation")); \
    NETDSD_OFFSET(record, concentration, 8);                                          \
    NETDSD_OFFSET(record, stddev_concentration, 16);
NET_CPC_AVG_LIST(NET_CPC_AVG_DSD)
#undef NET_CPC_AVG_DSD
#undef NET_CPC_AVG_LIST

// Members that several kinds have alike.
#define NET_CPC_CONCENTRATION                       \
    NETDSD_TIME(start_time, "time of the reading"), \
        NETDSD_MEMBER(concentration, UNIT_per_cm3, "particle number concentration")
#define NET_CPC_DISPLAYED \
    NETDSD_MEMBER(display_concentration, UNIT_per_cm3, "what the instrument's own display says")
#define NET_CPC_RUNNING NETDSD_MEMBER(running, "running average")
#define NET_CPC_ERROR_WORD \
    NETDSD_MEMBER(flags, UNIT_bits, "the instrument's error word").bits(NET_CPC_ANY_ERROR)

NETDSD_RECORD(NET_CPC_3010_Instant, 64,
    NET_CPC_CONCENTRATION,
    NET_CPC_DISPLAYED,
    NETDSD_MEMBER(T_condenser, UNIT_degC, "condenser temperature"),
    NETDSD_MEMBER(T_saturator, UNIT_degC, "saturator temperature"),
    NET_CPC_RUNNING);
NETDSD_OFFSET(NET_CPC_3010_Instant, concentration, 8);
NETDSD_OFFSET(NET_CPC_3010_Instant, display_concentration, 16);
NETDSD_OFFSET(NET_CPC_3010_Instant, T_condenser, 24);
NETDSD_OFFSET(NET_CPC_3010_Instant, T_saturator, 32);
NETDSD_OFFSET(NET_CPC_3010_Instant, running, 40);
NETDSD_RECORD(NET_CPC_3010_Status, 4,
    NET_HAVE_COMMS,
    NETDSD_MEMBER(dip_error, "the switches on the instrument forbid remote control").values(NET_CPC_3010_DIP),
    NETDSD_MEMBER(flags, UNIT_bits, "warnings").bits(NET_CPC_3010_WARNINGS));
NETDSD_OFFSET(NET_CPC_3010_Status, dip_error, 1);
NETDSD_OFFSET(NET_CPC_3010_Status, flags, 2);

NETDSD_RECORD(NET_CPC_3022_Instant, 80,
    NET_CPC_CONCENTRATION,
    NET_CPC_DISPLAYED,
    NETDSD_MEMBER(T_condenser, UNIT_degC, "condenser temperature"),
    NETDSD_MEMBER(T_saturator, UNIT_degC, "saturator temperature"),
    NETDSD_MEMBER(T_optics, UNIT_degC, "optics temperature"),
    NETDSD_MEMBER(Q, UNIT_lpm, "sample flow"),
    NET_CPC_RUNNING);
NETDSD_RECORD(NET_CPC_3022_Status, 4,
    NET_HAVE_COMMS,
    NETDSD_MEMBER(flags, UNIT_bits, "warnings").bits(NET_CPC_3022_WARNINGS));

NETDSD_RECORD(NET_CPC_3703_Instant, 40, NET_CPC_CONCENTRATION, NET_CPC_RUNNING);
NET_COMMS_RECORD(NET_CPC_3703_Status);

NETDSD_RECORD(NET_CPC_3775_Instant, 132,
    NET_CPC_CONCENTRATION,
    NET_CPC_DISPLAYED,
    NETDSD_MEMBER(T_condenser, UNIT_degC, "condenser temperature"),
    NETDSD_MEMBER(T_saturator, UNIT_degC, "saturator temperature"),
    NETDSD_MEMBER(T_optics, UNIT_degC, "optics temperature"),
    NETDSD_MEMBER(T_cabinet, UNIT_degC, "cabinet temperature"),
    NETDSD_MEMBER(P_ambient, UNIT_hPa, "ambient pressure"),
    NETDSD_MEMBER(P_orifice, UNIT_hPa, "pressure drop at the orifice"),
    NETDSD_MEMBER(P_nozzle, UNIT_hPa, "pressure drop at the nozzle"),
    NETDSD_MEMBER(I_laser, UNIT_mA, "laser current"),
    NETDSD_MEMBER(Q, UNIT_lpm, "sample flow"),
    NETDSD_MEMBER(Q_inlet, UNIT_lpm, "inlet flow"),
    NETDSD_MEMBER(liquid, UNIT_none, "raw reading of the level sensor"),
    NET_CPC_RUNNING);
NETDSD_RECORD(NET_CPC_3775_Status, 4, NET_HAVE_COMMS, NET_CPC_ERROR_WORD);

NETDSD_RECORD(NET_CPC_3781_Instant, 88,
    NET_CPC_CONCENTRATION,
    NET_CPC_DISPLAYED,
    NETDSD_MEMBER(T_saturator, UNIT_degC, "saturator temperature"),
    NETDSD_MEMBER(T_growth, UNIT_degC, "temperature of the growth tube"),
    NETDSD_MEMBER(T_optics, UNIT_degC, "optics temperature"),
    NETDSD_MEMBER(P, UNIT_hPa, "sample pressure"),
    NETDSD_MEMBER(Q, UNIT_lpm, "sample flow"),
    NET_CPC_RUNNING);
NETDSD_RECORD(NET_CPC_3781_Status, 4, NET_HAVE_COMMS, NET_CPC_ERROR_WORD);

NETDSD_RECORD(NET_CPC_3783_Instant, 156,
    NET_CPC_CONCENTRATION,
    NET_CPC_DISPLAYED,
    NETDSD_MEMBER(T_inlet, UNIT_degC, "inlet temperature"),
    NETDSD_MEMBER(T_growth, UNIT_degC, "temperature of the growth tube"),
    NETDSD_MEMBER(T_condenser, UNIT_degC, "condenser temperature"),
    NETDSD_MEMBER(T_optics, UNIT_degC, "optics temperature"),
    NETDSD_MEMBER(T_water, UNIT_degC, "water temperature"),
    NETDSD_MEMBER(T_cabinet, UNIT_degC, "cabinet temperature"),
    NETDSD_MEMBER(Q_inlet, UNIT_lpm, "inlet flow"),
    NETDSD_MEMBER(P_absolute, UNIT_hPa, "absolute pressure"),
    NETDSD_MEMBER(P_vacuum, UNIT_hPa, "vacuum pressure"),
    NETDSD_MEMBER(P_nozzle, UNIT_percent, "pressure drop at the nozzle"),
    NETDSD_MEMBER(I_laser, UNIT_mA, "laser current"),
    NETDSD_MEMBER(V_photo, UNIT_mV, "photodetector voltage"),
    NETDSD_MEMBER(V_pulse, UNIT_mV, "height of the pulses"),
    NETDSD_MEMBER(liquid, UNIT_none, "raw reading of the level sensor"),
    NET_CPC_RUNNING);
NETDSD_RECORD(NET_CPC_3783_Status, 6,
    NET_HAVE_COMMS,
    NET_CPC_ERROR_WORD,
    NETDSD_MEMBER(full, "the water reservoir is full").values(NET_CPC_3783_WATER));
NETDSD_OFFSET(NET_CPC_3783_Status, flags, 2);
NETDSD_OFFSET(NET_CPC_3783_Status, full, 4);

NETDSD_RECORD(NET_CPC_BMI1710_Reading, 120,
    NETDSD_TIME(start_time, "begin of the interval, or time of the reading"),
    NETDSD_MEMBER(N, UNIT_per_cm3, "particle number concentration"),
    NETDSD_MEMBER(Ng, UNIT_per_cm3, "its standard deviation"),
    NETDSD_MEMBER(T1, UNIT_degC, "condenser temperature"),
    NETDSD_MEMBER(T2, UNIT_degC, "temperature of the saturator's top"),
    NETDSD_MEMBER(T3, UNIT_degC, "temperature of the saturator's bottom"),
    NETDSD_MEMBER(T4, UNIT_degC, "optics temperature"),
    NETDSD_MEMBER(Tu, UNIT_degC, "inlet temperature"),
    NETDSD_MEMBER(Q1, UNIT_lpm, "sample flow"),
    NETDSD_MEMBER(Q2, UNIT_lpm, "saturator flow"),
    NETDSD_MEMBER(PCT1, UNIT_percent, "power of the condenser").range(0, 100),
    NETDSD_MEMBER(PCT2, UNIT_percent, "power of the saturator's top").range(0, 100),
    NETDSD_MEMBER(PCT3, UNIT_percent, "power of the saturator's bottom").range(0, 100),
    NETDSD_MEMBER(PCT4, UNIT_percent, "power of the optics").range(0, 100),
    NETDSD_MEMBER(PCT5, UNIT_percent, "power of the pump").range(0, 100));
NETDSD_RECORD(NET_CPC_BMI1710_Instant, 252,
    NETDSD_TIME(start_time, "time of the reading"),
    NETDSD_MEMBER(in, "latest values"),
    NETDSD_MEMBER(ra, "running averages"),
    NETDSD_MEMBER(fill_count, UNIT_none, "how often butanol was filled"));
NET_COMMS_RECORD(NET_CPC_BMI1710_Status);

NETDSD_RECORD(NET_CPC_Pulse_Instant, 40, NET_CPC_CONCENTRATION, NET_CPC_RUNNING);
NET_COMMS_RECORD(NET_CPC_Pulse_Status);
#undef NET_CPC_CONCENTRATION
#undef NET_CPC_DISPLAYED
#undef NET_CPC_RUNNING
#undef NET_CPC_ERROR_WORD
