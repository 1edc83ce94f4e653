// Wire records of the black-carbon instruments: the seven-channel aethalometer and the multi-angle absorption
// photometer.
#pragma once

#include "libvesk/messages/netdsd.h"

inline constexpr int NET_AETHALOMETER_CHANNELS = 7;

#pragma pack(push, 4)
struct NET_AETHALOMETER_Report {
    FTIME start_time;
    // One element per channel.
    double wavelengths[NET_AETHALOMETER_CHANNELS];  // nm
    double conc[NET_AETHALOMETER_CHANNELS];         // black carbon, ng/m3
    double attn[NET_AETHALOMETER_CHANNELS];         // attenuation
    double sz[NET_AETHALOMETER_CHANNELS];           // sensing detector, lamp off
    double sb[NET_AETHALOMETER_CHANNELS];           // sensing detector, lamp on
    double rz[NET_AETHALOMETER_CHANNELS];           // reference detector, lamp off
    double rb[NET_AETHALOMETER_CHANNELS];           // reference detector, lamp on
    double Q;                                       // lpm
    double fraction;                                // of the report's time that was measured
};

struct NET_AETHALOMETER_Status {
    BOOL have_comms;
};

struct NET_MAAP_Report {
    FTIME start_time;
    double abs;                         // absorption coefficient, 1/Mm
    double tr;                          // transmittance
    double C;                           // black carbon, ug/m3
    double ssa;                         // single-scattering albedo of the filter
    double Sref, S135, S165, S0;        // detector signals
    double Szref, Sz135, Sz165, Sz0;    // the same at the filter's start
    double P_orifice, P_pump, P_amb;    // hPa
    double T_amb, T_measure, T_system;  // Celsius
    double Q;                           // slpm
};

struct NET_MAAP_Filter {
    FTIME filter_time;  // when the present spot began
    double length;      // of tape left, m
    double volume;      // through the spot, m3
};

struct NET_MAAP_Status {
    BOOL have_comms;
    DWORD detailed_errors1;
    DWORD detailed_errors2;
    DWORD global_errors;
};
#pragma pack(pop)

NETDSD_RECORD(NET_AETHALOMETER_Report, 416, NETDSD_TIME(start_time), NETDSD_MEMBER(wavelengths),
              NETDSD_MEMBER(conc), NETDSD_MEMBER(attn), NETDSD_MEMBER(sz), NETDSD_MEMBER(sb),
              NETDSD_MEMBER(rz), NETDSD_MEMBER(rb), NETDSD_MEMBER(Q), NETDSD_MEMBER(fraction));
NETDSD_OFFSET(NET_AETHALOMETER_Report, attn, 120);
NETDSD_OFFSET(NET_AETHALOMETER_Report, rb, 344);
NETDSD_OFFSET(NET_AETHALOMETER_Report, fraction, 408);
NETDSD_RECORD(NET_AETHALOMETER_Status, 1, NETDSD_MEMBER(have_comms));
NETDSD_RECORD(NET_MAAP_Report, 160, NETDSD_TIME(start_time), NETDSD_MEMBER(abs), NETDSD_MEMBER(tr),
              NETDSD_MEMBER(C), NETDSD_MEMBER(ssa), NETDSD_MEMBER(Sref), NETDSD_MEMBER(S135),
              NETDSD_MEMBER(S165), NETDSD_MEMBER(S0), NETDSD_MEMBER(Szref), NETDSD_MEMBER(Sz135),
              NETDSD_MEMBER(Sz165), NETDSD_MEMBER(Sz0), NETDSD_MEMBER(P_orifice), NETDSD_MEMBER(P_pump),
              NETDSD_MEMBER(P_amb), NETDSD_MEMBER(T_amb), NETDSD_MEMBER(T_measure), NETDSD_MEMBER(T_system),
              NETDSD_MEMBER(Q));
NETDSD_OFFSET(NET_MAAP_Report, S0, 64);
NETDSD_OFFSET(NET_MAAP_Report, P_amb, 120);
NETDSD_OFFSET(NET_MAAP_Report, Q, 152);
NETDSD_RECORD(NET_MAAP_Filter, 24, NETDSD_TIME(filter_time), NETDSD_MEMBER(length), NETDSD_MEMBER(volume));
NETDSD_RECORD(NET_MAAP_Status, 16, NETDSD_MEMBER(have_comms), NETDSD_MEMBER(detailed_errors1),
              NETDSD_MEMBER(detailed_errors2), NETDSD_MEMBER(global_errors));
NETDSD_OFFSET(NET_MAAP_Status, global_errors, 12);
