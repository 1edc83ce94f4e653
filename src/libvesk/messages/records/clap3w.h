// Wire records of the three-wavelength continuous light absorption photometer, which samples on eight spots
// of one filter. Absorption in 1/m, flows in slpm, temperatures in degrees Celsius; arrays of three are blue,
// green, red.
#pragma once

#include "libvesk/messages/netdsd.h"

inline constexpr int NET_CLAP3W_SPOTS = 8;       // that take a sample, numbered from 1
inline constexpr int NET_CLAP3W_DETECTORS = 10;  // odd reference, even reference, spots 1 to 8

// What the instrument is doing, as NET_CLAP3W_FilterStatus::status says it.
enum NET_CLAP3W_State : std::int32_t {
    NET_CLAP3W_NORMAL,
    NET_CLAP3W_WAIT_SPOT,  // until the readings of a new spot are stable
    NET_CLAP3W_CHANGING_FILTER,
    NET_CLAP3W_WHITE_CHECK,
    NET_CLAP3W_WAIT_FILTER,
    NET_CLAP3W_WAIT_WHITE,
    NET_CLAP3W_FLOW_OFF,
    NET_CLAP3W_FLOW_OFF_PENDING,  // and a spot advance waits for the flow
    NET_CLAP3W_CHANGE_REQUIRED,
    NET_CLAP3W_WHITE_REQUIRED,
};

// NET_CLAP3W_Instant::flags
inline constexpr WORD NET_CLAP3W_FILTER_OR_LED = 0x0100;

#pragma pack(push, 4)
struct NET_CLAP3W_Avg {
    FTIME start_time;
    double bap[3];
    double tr[3];
    double Q;
    double Qt;  // m3 through the spot
    double T;
    double T_case;
    WORD flags;
};

struct NET_CLAP3W_Intensities {
    double IB[NET_CLAP3W_DETECTORS];  // detector readings, lamp by lamp
    double IG[NET_CLAP3W_DETECTORS];
    double IR[NET_CLAP3W_DETECTORS];
    double ID[NET_CLAP3W_DETECTORS];  // dark
    double InB[NET_CLAP3W_SPOTS];     // normalised by the reference
    double InG[NET_CLAP3W_SPOTS];
    double InR[NET_CLAP3W_SPOTS];
};

struct NET_CLAP3W_Instant {
    FTIME start_time;
    double bap[3];
    double tr[3];
    double Isam[3];
    double Iref[3];
    double Inormrsd[3];
    double Q;
    double T;
    double T_case;
    double VQ;  // of the flow sensor, volts
    WORD spot_index;
    WORD flags;
    NET_CLAP3W_Intensities in;
    double IrwB[NET_CLAP3W_SPOTS];  // normalised intensities, relative to the white filter
    double IrwG[NET_CLAP3W_SPOTS];
    double IrwR[NET_CLAP3W_SPOTS];
    double IrzB[NET_CLAP3W_SPOTS];  // relative to the filter's start
    double IrzG[NET_CLAP3W_SPOTS];
    double IrzR[NET_CLAP3W_SPOTS];
    double IngB[NET_CLAP3W_SPOTS];  // relative deviation of the normalised intensities
    double IngG[NET_CLAP3W_SPOTS];
    double IngR[NET_CLAP3W_SPOTS];
    double IgB[NET_CLAP3W_DETECTORS];  // relative deviation of the detector readings
    double IgG[NET_CLAP3W_DETECTORS];
    double IgR[NET_CLAP3W_DETECTORS];
    double IgD[NET_CLAP3W_DETECTORS];
};

struct NET_CLAP3W_FilterStatus {
    std::int32_t status;  // NET_CLAP3W_State
    WORD active_spot;
    std::int32_t paused;
    double pause_Qt;
    double Qt;  // m3 through the active spot
    FTIME real_time;
    DWORD clap_time;  // the instrument's own clock, seconds
    WORD clap_filter_number;
    STRING<16> serial_number;
    double In[3];  // of the active spot
};

struct NET_CLAP3W_Status {
    alignas(4) BOOL have_comms;  // the rest is padding
};
#pragma pack(pop)

NETDSD_RECORD(NET_CLAP3W_Avg, 92, NETDSD_TIME(start_time), NETDSD_MEMBER(bap), NETDSD_MEMBER(tr),
              NETDSD_MEMBER(Q), NETDSD_MEMBER(Qt), NETDSD_MEMBER(T), NETDSD_MEMBER(T_case),
              NETDSD_MEMBER(flags));
NETDSD_OFFSET(NET_CLAP3W_Avg, flags, 88);
NETDSD_RECORD(NET_CLAP3W_Intensities, 512, NETDSD_MEMBER(IB), NETDSD_MEMBER(IG), NETDSD_MEMBER(IR),
              NETDSD_MEMBER(ID), NETDSD_MEMBER(InB), NETDSD_MEMBER(InG), NETDSD_MEMBER(InR));
NETDSD_OFFSET(NET_CLAP3W_Intensities, ID, 240);
NETDSD_OFFSET(NET_CLAP3W_Intensities, InR, 448);
NETDSD_RECORD(NET_CLAP3W_Instant, 1572, NETDSD_TIME(start_time), NETDSD_MEMBER(bap), NETDSD_MEMBER(tr),
              NETDSD_MEMBER(Isam), NETDSD_MEMBER(Iref), NETDSD_MEMBER(Inormrsd), NETDSD_MEMBER(Q),
              NETDSD_MEMBER(T), NETDSD_MEMBER(T_case), NETDSD_MEMBER(VQ), NETDSD_MEMBER(spot_index),
              NETDSD_MEMBER(flags), NETDSD_MEMBER(in), NETDSD_MEMBER(IrwB), NETDSD_MEMBER(IrwG),
              NETDSD_MEMBER(IrwR), NETDSD_MEMBER(IrzB), NETDSD_MEMBER(IrzG), NETDSD_MEMBER(IrzR),
              NETDSD_MEMBER(IngB), NETDSD_MEMBER(IngG), NETDSD_MEMBER(IngR), NETDSD_MEMBER(IgB),
              NETDSD_MEMBER(IgG), NETDSD_MEMBER(IgR), NETDSD_MEMBER(IgD));
NETDSD_OFFSET(NET_CLAP3W_Instant, Q, 128);
NETDSD_OFFSET(NET_CLAP3W_Instant, flags, 162);
NETDSD_OFFSET(NET_CLAP3W_Instant, in, 164);
NETDSD_OFFSET(NET_CLAP3W_Instant, IrwB, 676);
NETDSD_OFFSET(NET_CLAP3W_Instant, IrzB, 868);
NETDSD_OFFSET(NET_CLAP3W_Instant, IngB, 1060);
NETDSD_OFFSET(NET_CLAP3W_Instant, IgD, 1492);
NETDSD_RECORD(NET_CLAP3W_FilterStatus, 84, NETDSD_MEMBER(status), NETDSD_MEMBER(active_spot),
              NETDSD_MEMBER(paused), NETDSD_MEMBER(pause_Qt), NETDSD_MEMBER(Qt), NETDSD_TIME(real_time),
              NETDSD_MEMBER(clap_time), NETDSD_MEMBER(clap_filter_number), NETDSD_MEMBER(serial_number),
              NETDSD_MEMBER(In));
NETDSD_OFFSET(NET_CLAP3W_FilterStatus, paused, 8);
NETDSD_OFFSET(NET_CLAP3W_FilterStatus, clap_time, 36);
NETDSD_OFFSET(NET_CLAP3W_FilterStatus, serial_number, 42);
NETDSD_OFFSET(NET_CLAP3W_FilterStatus, In, 60);
NETDSD_RECORD(NET_CLAP3W_Status, 4, NETDSD_MEMBER(have_comms));
