// Wire records of the three-wavelength continuous light absorption photometer, which samples on eight spots
// of one filter.
#pragma once

#include "libvesk/messages/records/shared.h"

inline constexpr int NET_CLAP3W_SPOTS = 8;  // that take a sample, numbered from 1
inline constexpr int NET_CLAP3W_DETECTORS = 10;
inline constexpr const char* NET_CLAP3W_SPOT_NAMES = "spots 1 to 8";
inline constexpr const char* NET_CLAP3W_DETECTOR_NAMES = "odd reference, even reference, spots 1 to 8";

// The states of the instrument, as NET_CLAP3W_FilterStatus::status gives them.
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
inline constexpr NETDSD_meaning NET_CLAP3W_STATES[] = {
    {NET_CLAP3W_NORMAL, "", NETDSD_STATE},
    {NET_CLAP3W_WAIT_SPOT, "Waiting for spot stability...", NETDSD_NOTE},
    {NET_CLAP3W_CHANGING_FILTER, "Changing filter...", NETDSD_NOTE},
    {NET_CLAP3W_WHITE_CHECK, "White filter check...", NETDSD_NOTE},
    {NET_CLAP3W_WAIT_FILTER, "Waiting for filter stability...", NETDSD_NOTE},
    {NET_CLAP3W_WAIT_WHITE, "Waiting for white filter stability...", NETDSD_NOTE},
    {NET_CLAP3W_FLOW_OFF, "FLOW DISABLED ON SPOT", NETDSD_NOTE},
    {NET_CLAP3W_FLOW_OFF_PENDING, "FLOW DISABLED WITH PENDING SPOT", NETDSD_NOTE},
    {NET_CLAP3W_CHANGE_REQUIRED, "FILTER CHANGE REQUIRED", NETDSD_FAULT},
    {NET_CLAP3W_WHITE_REQUIRED, "WHITE FILTER CHECK REQUIRED", NETDSD_FAULT},
};

// NET_CLAP3W_Instant::flags
inline constexpr WORD NET_CLAP3W_FILTER_OR_LED = 0x0100;
inline constexpr NETDSD_meaning NET_CLAP3W_FLAGS[] = {
    {NET_CLAP3W_FILTER_OR_LED, "FILTER OR LED ERROR", NETDSD_FAULT}};

#pragma pack(push, 4)
struct NET_CLAP3W_Avg {
    FTIME start_time;
    double bap[3];
    double tr[3];
    double Q;
    double Qt;
    double T;
    double T_case;
    WORD flags;
};

struct NET_CLAP3W_Intensities {
    double IB[NET_CLAP3W_DETECTORS];
    double IG[NET_CLAP3W_DETECTORS];
    double IR[NET_CLAP3W_DETECTORS];
    double ID[NET_CLAP3W_DETECTORS];
    double InB[NET_CLAP3W_SPOTS];
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
    double VQ;
    WORD spot_index;
    WORD flags;
    NET_CLAP3W_Intensities in;
    double IrwB[NET_CLAP3W_SPOTS];
    double IrwG[NET_CLAP3W_SPOTS];
    double IrwR[NET_CLAP3W_SPOTS];
    double IrzB[NET_CLAP3W_SPOTS];
    double IrzG[NET_CLAP3W_SPOTS];
    double IrzR[NET_CLAP3W_SPOTS];
    double IngB[NET_CLAP3W_SPOTS];
    double IngG[NET_CLAP3W_SPOTS];
    double IngR[NET_CLAP3W_SPOTS];
    double IgB[NET_CLAP3W_DETECTORS];
    double IgG[NET_CLAP3W_DETECTORS];
    double IgR[NET_CLAP3W_DETECTORS];
    double IgD[NET_CLAP3W_DETECTORS];
};

struct NET_CLAP3W_FilterStatus {
    std::int32_t status;  // NET_CLAP3W_State
    WORD active_spot;
    std::int32_t paused;
    double pause_Qt;
    double Qt;
    FTIME real_time;
    DWORD clap_time;
    WORD clap_filter_number;
    STRING<16> serial_number;
    double In[3];
};

struct NET_CLAP3W_Status {
    alignas(4) BOOL have_comms;  // the rest is padding
};
#pragma pack(pop)

NETDSD_RECORD(NET_CLAP3W_Avg, 92,
    NETDSD_TIME(start_time, "begin of the interval"),
    NETDSD_MEMBER(bap, UNIT_per_m, "absorption coefficient").each(NET_COLOURS),
    NETDSD_MEMBER(tr, UNIT_none, "filter transmittance").each(NET_COLOURS),
    NETDSD_MEMBER(Q, UNIT_slpm, "sample flow"),
    NETDSD_MEMBER(Qt, UNIT_m3, "air through the spot"),
    NETDSD_MEMBER(T, UNIT_degC, "sample temperature"),
    NETDSD_MEMBER(T_case, UNIT_degC, "case temperature"),
    NETDSD_MEMBER(flags, UNIT_bits, "the instrument's own flags").bits(NET_CLAP3W_FLAGS));
NETDSD_OFFSET(NET_CLAP3W_Avg, flags, 88);
NETDSD_RECORD(NET_CLAP3W_Intensities, 512,
    NETDSD_MEMBER(IB, UNIT_counts, "detectors, blue lamp").each(NET_CLAP3W_DETECTOR_NAMES),
    NETDSD_MEMBER(IG, UNIT_counts, "detectors, green lamp").each(NET_CLAP3W_DETECTOR_NAMES),
    NETDSD_MEMBER(IR, UNIT_counts, "detectors, red lamp").each(NET_CLAP3W_DETECTOR_NAMES),
    NETDSD_MEMBER(ID, UNIT_counts, "detectors, dark").each(NET_CLAP3W_DETECTOR_NAMES),
    NETDSD_MEMBER(InB, UNIT_none, "intensity normalised by the reference, blue").each(NET_CLAP3W_SPOT_NAMES),
    NETDSD_MEMBER(InG, UNIT_none, "intensity normalised by the reference, green").each(NET_CLAP3W_SPOT_NAMES),
    NETDSD_MEMBER(InR, UNIT_none, "intensity normalised by the reference, red").each(NET_CLAP3W_SPOT_NAMES));
NETDSD_OFFSET(NET_CLAP3W_Intensities, ID, 240);
NETDSD_OFFSET(NET_CLAP3W_Intensities, InR, 448);
NETDSD_RECORD(NET_CLAP3W_Instant, 1572,
    NETDSD_TIME(start_time, "time of the reading"),
    NETDSD_MEMBER(bap, UNIT_per_m, "absorption coefficient").each(NET_COLOURS),
    NETDSD_MEMBER(tr, UNIT_none, "filter transmittance").each(NET_COLOURS),
    NETDSD_MEMBER(Isam, UNIT_counts, "sample detector of the active spot").each(NET_COLOURS),
    NETDSD_MEMBER(Iref, UNIT_counts, "its reference detector").each(NET_COLOURS),
    NETDSD_MEMBER(Inormrsd, UNIT_none, "relative deviation of the normalised intensity").each(NET_COLOURS),
    NETDSD_MEMBER(Q, UNIT_slpm, "sample flow"),
    NETDSD_MEMBER(T, UNIT_degC, "sample temperature"),
    NETDSD_MEMBER(T_case, UNIT_degC, "case temperature"),
    NETDSD_MEMBER(VQ, UNIT_V, "voltage of the flow sensor"),
    NETDSD_MEMBER(spot_index, UNIT_none, "active spot").range(0, NET_CLAP3W_SPOTS),
    NETDSD_MEMBER(flags, UNIT_bits, "the instrument's own flags").bits(NET_CLAP3W_FLAGS),
    NETDSD_MEMBER(in, "intensities"),
    NETDSD_MEMBER(IrwB, UNIT_none, "ratio to the white filter, blue").each(NET_CLAP3W_SPOT_NAMES),
    NETDSD_MEMBER(IrwG, UNIT_none, "ratio to the white filter, green").each(NET_CLAP3W_SPOT_NAMES),
    NETDSD_MEMBER(IrwR, UNIT_none, "ratio to the white filter, red").each(NET_CLAP3W_SPOT_NAMES),
    NETDSD_MEMBER(IrzB, UNIT_none, "ratio to the filter's start, blue").each(NET_CLAP3W_SPOT_NAMES),
    NETDSD_MEMBER(IrzG, UNIT_none, "ratio to the filter's start, green").each(NET_CLAP3W_SPOT_NAMES),
    NETDSD_MEMBER(IrzR, UNIT_none, "ratio to the filter's start, red").each(NET_CLAP3W_SPOT_NAMES),
    NETDSD_MEMBER(IngB, UNIT_none, "relative deviation of InB").each(NET_CLAP3W_SPOT_NAMES),
    NETDSD_MEMBER(IngG, UNIT_none, "relative deviation of InG").each(NET_CLAP3W_SPOT_NAMES),
    NETDSD_MEMBER(IngR, UNIT_none, "relative deviation of InR").each(NET_CLAP3W_SPOT_NAMES),
    NETDSD_MEMBER(IgB, UNIT_none, "relative deviation of IB").each(NET_CLAP3W_DETECTOR_NAMES),
    NETDSD_MEMBER(IgG, UNIT_none, "relative deviation of IG").each(NET_CLAP3W_DETECTOR_NAMES),
    NETDSD_MEMBER(IgR, UNIT_none, "relative deviation of IR").each(NET_CLAP3W_DETECTOR_NAMES),
    NETDSD_MEMBER(IgD, UNIT_none, "relative deviation of ID").each(NET_CLAP3W_DETECTOR_NAMES));
NETDSD_OFFSET(NET_CLAP3W_Instant, Q, 128);
NETDSD_OFFSET(NET_CLAP3W_Instant, flags, 162);
NETDSD_OFFSET(NET_CLAP3W_Instant, in, 164);
NETDSD_OFFSET(NET_CLAP3W_Instant, IrwB, 676);
NETDSD_OFFSET(NET_CLAP3W_Instant, IrzB, 868);
NETDSD_OFFSET(NET_CLAP3W_Instant, IngB, 1060);
NETDSD_OFFSET(NET_CLAP3W_Instant, IgD, 1492);
NETDSD_RECORD(NET_CLAP3W_FilterStatus, 84,
    NETDSD_MEMBER(status, UNIT_none, "what the instrument is doing").values(NET_CLAP3W_STATES),
    NETDSD_MEMBER(active_spot, UNIT_none, "active spot").range(0, NET_CLAP3W_SPOTS),
    NETDSD_MEMBER(paused, UNIT_none, "not 0 while sampling pauses"),
    NETDSD_MEMBER(pause_Qt, UNIT_m3, "air through the spot when it paused"),
    NETDSD_MEMBER(Qt, UNIT_m3, "air through the active spot"),
    NETDSD_TIME(real_time, "time of the status"),
    NETDSD_MEMBER(clap_time, UNIT_s, "the instrument's own clock"),
    NETDSD_MEMBER(clap_filter_number, UNIT_none, "number of the filter"),
    NETDSD_MEMBER(serial_number, "serial number"),
    NETDSD_MEMBER(In, UNIT_none, "normalised intensity of the active spot").each(NET_COLOURS));
NETDSD_OFFSET(NET_CLAP3W_FilterStatus, paused, 8);
NETDSD_OFFSET(NET_CLAP3W_FilterStatus, clap_time, 36);
NETDSD_OFFSET(NET_CLAP3W_FilterStatus, serial_number, 42);
NETDSD_OFFSET(NET_CLAP3W_FilterStatus, In, 60);
NETDSD_RECORD(NET_CLAP3W_Status, 4, NET_HAVE_COMMS);
