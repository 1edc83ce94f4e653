// Wire records of the condensation particle counters. Concentrations in cm-3, temperatures in degrees
// Celsius, flows in lpm, pressures in hPa, laser currents in mA, voltages in mV, heater powers in percent.
#pragma once

#include "libvesk/messages/netdsd.h"

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
    double display_concentration;  // what the instrument's own display says
    double T_condenser;
    double T_saturator;
    NET_CPC_3010_Avg running;
};

struct NET_CPC_3010_Status {
    BOOL have_comms;
    BOOL dip_error;  // the switches on the instrument forbid remote control
    WORD flags;      // 1 laser or temperature, 2 butanol low, 4 vacuum
};

struct NET_CPC_3022_Instant {
    FTIME start_time;
    double concentration;
    double display_concentration;
    double T_condenser;
    double T_saturator;
    double T_optics;
    double Q;
    NET_CPC_3022_Avg running;
};

struct NET_CPC_3022_Status {
    BOOL have_comms;
    WORD flags;  // 1 laser or temperature, 2 butanol low
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
    double T_condenser;
    double T_saturator;
    double T_optics;
    double T_cabinet;
    double P_ambient;
    double P_orifice;
    double P_nozzle;
    double I_laser;
    double Q;
    double Q_inlet;
    std::int32_t liquid;  // raw reading of the level sensor
    NET_CPC_3775_Avg running;
};

struct NET_CPC_3775_Status {
    BOOL have_comms;
    WORD flags;  // the instrument's own error word
};

struct NET_CPC_3781_Instant {
    FTIME start_time;
    double concentration;
    double display_concentration;
    double T_saturator;
    double T_growth;
    double T_optics;
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
    double T_inlet;
    double T_growth;
    double T_condenser;
    double T_optics;
    double T_water;
    double T_cabinet;
    double Q_inlet;
    double P_absolute;
    double P_vacuum;
    double P_nozzle;  // percent
    double I_laser;
    double V_photo;
    double V_pulse;
    std::int32_t liquid;
    NET_CPC_3783_Avg running;
};

struct NET_CPC_3783_Status {
    BOOL have_comms;
    WORD flags;
    BOOL full;  // the water reservoir is full
};

struct NET_CPC_BMI1710_Reading {
    FTIME start_time;
    double N;   // concentration
    double Ng;  // its spread
    double T1;  // condenser
    double T2;  // saturator, top
    double T3;  // saturator, bottom
    double T4;  // optics
    double Tu;  // inlet
    double Q1;  // sample
    double Q2;  // saturator
    double PCT1;
    double PCT2;
    double PCT3;
    double PCT4;
    double PCT5;  // pump
};

struct NET_CPC_BMI1710_Instant {
    FTIME start_time;
    NET_CPC_BMI1710_Reading in;  // latest values
    NET_CPC_BMI1710_Reading ra;  // running averages
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

#define NET_CPC_AVG_DSD(record)                                                      \
    NETDSD_RECORD(record, 24, NETDSD_TIME(start_time), NETDSD_MEMBER(concentration), \
                  NETDSD_MEMBER(stddev_concentration));                              \
    NETDSD_OFFSET(record, concentration, 8);                                         \
    NETDSD_OFFSET(record, stddev_concentration, 16);
NET_CPC_AVG_LIST(NET_CPC_AVG_DSD)
#undef NET_CPC_AVG_DSD
#undef NET_CPC_AVG_LIST

NETDSD_RECORD(NET_CPC_3010_Instant, 64, NETDSD_TIME(start_time), NETDSD_MEMBER(concentration),
              NETDSD_MEMBER(display_concentration), NETDSD_MEMBER(T_condenser), NETDSD_MEMBER(T_saturator),
              NETDSD_MEMBER(running));
NETDSD_OFFSET(NET_CPC_3010_Instant, concentration, 8);
NETDSD_OFFSET(NET_CPC_3010_Instant, display_concentration, 16);
NETDSD_OFFSET(NET_CPC_3010_Instant, T_condenser, 24);
NETDSD_OFFSET(NET_CPC_3010_Instant, T_saturator, 32);
NETDSD_OFFSET(NET_CPC_3010_Instant, running, 40);
NETDSD_RECORD(NET_CPC_3010_Status, 4, NETDSD_MEMBER(have_comms), NETDSD_MEMBER(dip_error),
              NETDSD_MEMBER(flags));
NETDSD_OFFSET(NET_CPC_3010_Status, dip_error, 1);
NETDSD_OFFSET(NET_CPC_3010_Status, flags, 2);

NETDSD_RECORD(NET_CPC_3022_Instant, 80, NETDSD_TIME(start_time), NETDSD_MEMBER(concentration),
              NETDSD_MEMBER(display_concentration), NETDSD_MEMBER(T_condenser), NETDSD_MEMBER(T_saturator),
              NETDSD_MEMBER(T_optics), NETDSD_MEMBER(Q), NETDSD_MEMBER(running));
NETDSD_RECORD(NET_CPC_3022_Status, 4, NETDSD_MEMBER(have_comms), NETDSD_MEMBER(flags));

NETDSD_RECORD(NET_CPC_3703_Instant, 40, NETDSD_TIME(start_time), NETDSD_MEMBER(concentration),
              NETDSD_MEMBER(running));
NETDSD_RECORD(NET_CPC_3703_Status, 1, NETDSD_MEMBER(have_comms));

NETDSD_RECORD(NET_CPC_3775_Instant, 132, NETDSD_TIME(start_time), NETDSD_MEMBER(concentration),
              NETDSD_MEMBER(display_concentration), NETDSD_MEMBER(T_condenser), NETDSD_MEMBER(T_saturator),
              NETDSD_MEMBER(T_optics), NETDSD_MEMBER(T_cabinet), NETDSD_MEMBER(P_ambient),
              NETDSD_MEMBER(P_orifice), NETDSD_MEMBER(P_nozzle), NETDSD_MEMBER(I_laser), NETDSD_MEMBER(Q),
              NETDSD_MEMBER(Q_inlet), NETDSD_MEMBER(liquid), NETDSD_MEMBER(running));
NETDSD_RECORD(NET_CPC_3775_Status, 4, NETDSD_MEMBER(have_comms), NETDSD_MEMBER(flags));

NETDSD_RECORD(NET_CPC_3781_Instant, 88, NETDSD_TIME(start_time), NETDSD_MEMBER(concentration),
              NETDSD_MEMBER(display_concentration), NETDSD_MEMBER(T_saturator), NETDSD_MEMBER(T_growth),
              NETDSD_MEMBER(T_optics), NETDSD_MEMBER(P), NETDSD_MEMBER(Q), NETDSD_MEMBER(running));
NETDSD_RECORD(NET_CPC_3781_Status, 4, NETDSD_MEMBER(have_comms), NETDSD_MEMBER(flags));

NETDSD_RECORD(NET_CPC_3783_Instant, 156, NETDSD_TIME(start_time), NETDSD_MEMBER(concentration),
              NETDSD_MEMBER(display_concentration), NETDSD_MEMBER(T_inlet), NETDSD_MEMBER(T_growth),
              NETDSD_MEMBER(T_condenser), NETDSD_MEMBER(T_optics), NETDSD_MEMBER(T_water),
              NETDSD_MEMBER(T_cabinet), NETDSD_MEMBER(Q_inlet), NETDSD_MEMBER(P_absolute),
              NETDSD_MEMBER(P_vacuum), NETDSD_MEMBER(P_nozzle), NETDSD_MEMBER(I_laser),
              NETDSD_MEMBER(V_photo), NETDSD_MEMBER(V_pulse), NETDSD_MEMBER(liquid), NETDSD_MEMBER(running));
NETDSD_RECORD(NET_CPC_3783_Status, 6, NETDSD_MEMBER(have_comms), NETDSD_MEMBER(flags), NETDSD_MEMBER(full));
NETDSD_OFFSET(NET_CPC_3783_Status, flags, 2);
NETDSD_OFFSET(NET_CPC_3783_Status, full, 4);

NETDSD_RECORD(NET_CPC_BMI1710_Reading, 120, NETDSD_TIME(start_time), NETDSD_MEMBER(N), NETDSD_MEMBER(Ng),
              NETDSD_MEMBER(T1), NETDSD_MEMBER(T2), NETDSD_MEMBER(T3), NETDSD_MEMBER(T4), NETDSD_MEMBER(Tu),
              NETDSD_MEMBER(Q1), NETDSD_MEMBER(Q2), NETDSD_MEMBER(PCT1), NETDSD_MEMBER(PCT2),
              NETDSD_MEMBER(PCT3), NETDSD_MEMBER(PCT4), NETDSD_MEMBER(PCT5));
NETDSD_RECORD(NET_CPC_BMI1710_Instant, 252, NETDSD_TIME(start_time), NETDSD_MEMBER(in), NETDSD_MEMBER(ra),
              NETDSD_MEMBER(fill_count));
NETDSD_RECORD(NET_CPC_BMI1710_Status, 1, NETDSD_MEMBER(have_comms));

NETDSD_RECORD(NET_CPC_Pulse_Instant, 40, NETDSD_TIME(start_time), NETDSD_MEMBER(concentration),
              NETDSD_MEMBER(running));
NETDSD_RECORD(NET_CPC_Pulse_Status, 1, NETDSD_MEMBER(have_comms));
