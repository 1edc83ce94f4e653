// Wire records of the black-carbon instruments: the seven-channel aethalometer and the multi-angle absorption
// photometer.
#pragma once

#include "libvesk/messages/records/shared.h"

inline constexpr int NET_AETHALOMETER_CHANNELS = 7;

// Bits of NET_MAAP_Status: the global ones below 0x100 only tell a state.
inline constexpr NETDSD_meaning NET_MAAP_GLOBAL[] = {{0xFFFFFF00, "Error", NETDSD_FAULT},
                                                     {0xFF, "Status", NETDSD_STATE}};
inline constexpr NETDSD_meaning NET_MAAP_DETAILED[] = {{0xFFFFFFFF, "Error", NETDSD_FAULT}};

#pragma pack(push, 4)
struct NET_AETHALOMETER_Report {
    FTIME start_time;
    double wavelengths[NET_AETHALOMETER_CHANNELS];
    double conc[NET_AETHALOMETER_CHANNELS];
    double attn[NET_AETHALOMETER_CHANNELS];
    double sz[NET_AETHALOMETER_CHANNELS];
    double sb[NET_AETHALOMETER_CHANNELS];
    double rz[NET_AETHALOMETER_CHANNELS];
    double rb[NET_AETHALOMETER_CHANNELS];
    double Q;
    double fraction;
};

struct NET_AETHALOMETER_Status {
    BOOL have_comms;
};

struct NET_MAAP_Report {
    FTIME start_time;
    double abs;
    double tr;
    double C;
    double ssa;
    double Sref, S135, S165, S0;
    double Szref, Sz135, Sz165, Sz0;
    double P_orifice, P_pump, P_amb;
    double T_amb, T_measure, T_system;
    double Q;
};

struct NET_MAAP_Filter {
    FTIME filter_time;
    double length;
    double volume;
};

struct NET_MAAP_Status {
    BOOL have_comms;
    DWORD detailed_errors1;
    DWORD detailed_errors2;
    DWORD global_errors;
};
#pragma pack(pop)

NETDSD_RECORD(NET_AETHALOMETER_Report, 416,
    NETDSD_TIME(start_time, "begin of the report's interval"),
    NETDSD_MEMBER(wavelengths, UNIT_nm, "wavelength of the channel"),
    NETDSD_MEMBER(conc, UNIT_ng_per_m3, "black carbon"),
    NETDSD_MEMBER(attn, UNIT_none, "attenuation"),
    NETDSD_MEMBER(sz, UNIT_V, "sensing detector, lamp off"),
    NETDSD_MEMBER(sb, UNIT_V, "sensing detector, lamp on"),
    NETDSD_MEMBER(rz, UNIT_V, "reference detector, lamp off"),
    NETDSD_MEMBER(rb, UNIT_V, "reference detector, lamp on"),
    NETDSD_MEMBER(Q, UNIT_lpm, "sample flow"),
    NETDSD_MEMBER(fraction, UNIT_none, "fraction of the interval that was measured").range(0, 1));
NETDSD_OFFSET(NET_AETHALOMETER_Report, attn, 120);
NETDSD_OFFSET(NET_AETHALOMETER_Report, rb, 344);
NETDSD_OFFSET(NET_AETHALOMETER_Report, fraction, 408);
NET_COMMS_RECORD(NET_AETHALOMETER_Status);
NETDSD_RECORD(NET_MAAP_Report, 160,
    NETDSD_TIME(start_time, "begin of the report's interval"),
    NETDSD_MEMBER(abs, UNIT_per_Mm, "absorption coefficient"),
    NETDSD_MEMBER(tr, UNIT_none, "filter transmittance").range(0, 1),
    NETDSD_MEMBER(C, UNIT_ug_per_m3, "black carbon"),
    NETDSD_MEMBER(ssa, UNIT_none, "single-scattering albedo of the filter").range(0, 1),
    NETDSD_MEMBER(Sref, UNIT_none, "reference detector"),
    NETDSD_MEMBER(S135, UNIT_none, "detector at 135 degrees"),
    NETDSD_MEMBER(S165, UNIT_none, "detector at 165 degrees"),
    NETDSD_MEMBER(S0, UNIT_none, "detector behind the filter"),
    NETDSD_MEMBER(Szref, UNIT_none, "reference detector at the filter's start"),
    NETDSD_MEMBER(Sz135, UNIT_none, "detector at 135 degrees at the filter's start"),
    NETDSD_MEMBER(Sz165, UNIT_none, "detector at 165 degrees at the filter's start"),
    NETDSD_MEMBER(Sz0, UNIT_none, "detector behind the filter at its start"),
    NETDSD_MEMBER(P_orifice, UNIT_hPa, "pressure drop at the orifice"),
    NETDSD_MEMBER(P_pump, UNIT_hPa, "pump pressure"),
    NETDSD_MEMBER(P_amb, UNIT_hPa, "ambient pressure"),
    NETDSD_MEMBER(T_amb, UNIT_degC, "ambient temperature"),
    NETDSD_MEMBER(T_measure, UNIT_degC, "temperature of the measuring head"),
    NETDSD_MEMBER(T_system, UNIT_degC, "temperature of the electronics"),
    NETDSD_MEMBER(Q, UNIT_slpm, "sample flow"));
NETDSD_OFFSET(NET_MAAP_Report, S0, 64);
NETDSD_OFFSET(NET_MAAP_Report, P_amb, 120);
NETDSD_OFFSET(NET_MAAP_Report, Q, 152);
NETDSD_RECORD(NET_MAAP_Filter, 24,
    NETDSD_TIME(filter_time, "when the present spot began"),
    NETDSD_MEMBER(length, UNIT_m, "tape that is left"),
    NETDSD_MEMBER(volume, UNIT_m3, "air through the spot"));
NETDSD_RECORD(NET_MAAP_Status, 16,
    NET_HAVE_COMMS,
    NETDSD_MEMBER(detailed_errors1, UNIT_bits, "detailed errors, first word").bits(NET_MAAP_DETAILED),
    NETDSD_MEMBER(detailed_errors2, UNIT_bits, "detailed errors, second word").bits(NET_MAAP_DETAILED),
    NETDSD_MEMBER(global_errors, UNIT_bits, "global errors and states").bits(NET_MAAP_GLOBAL));
NETDSD_OFFSET(NET_MAAP_Status, global_errors, 12);
