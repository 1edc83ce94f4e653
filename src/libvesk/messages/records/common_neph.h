// Wire records that every nephelometer kind shares: the span check, and the kind-independent data.
#pragma once

#include "libvesk/messages/records/shared.h"

// Phase of a span check, as the wire carries it in 32 bits.
enum NET_COMMON_Neph_SpancheckPhaseID : std::int32_t {
    NET_COMMON_NEPH_SC_NONE,
    NET_COMMON_NEPH_SC_FLUSH_AIR_INIT,
    NET_COMMON_NEPH_SC_FLUSH_CO2,
    NET_COMMON_NEPH_SC_SAMPLE_CO2,
    NET_COMMON_NEPH_SC_FLUSH_AIR_SAMPLE,
    NET_COMMON_NEPH_SC_SAMPLE_AIR,
};
inline constexpr NETDSD_meaning NET_COMMON_NEPH_SC_PHASES[] = {
    {NET_COMMON_NEPH_SC_NONE, "NONE", NETDSD_STATE},
    {NET_COMMON_NEPH_SC_FLUSH_AIR_INIT, "FLUSH AIR (INIT)", NETDSD_NOTE},
    {NET_COMMON_NEPH_SC_FLUSH_CO2, "FLUSH CO2", NETDSD_NOTE},
    {NET_COMMON_NEPH_SC_SAMPLE_CO2, "SAMPLE CO2", NETDSD_NOTE},
    {NET_COMMON_NEPH_SC_FLUSH_AIR_SAMPLE, "FLUSH AIR (SAMPLE)", NETDSD_NOTE},
    {NET_COMMON_NEPH_SC_SAMPLE_AIR, "SAMPLE AIR", NETDSD_NOTE},
};
inline constexpr int NET_COMMON_NEPH_SC_COUNT = 6;

#pragma pack(push, 4)
struct NET_COMMON_Neph_SpancheckPhase {
    std::int32_t phase;  // NET_COMMON_Neph_SpancheckPhaseID; any number may come from the wire
    FTIME next_time;
};

// Absolute ends of the five phases.
struct NET_COMMON_Neph_SpancheckIssue {
    FTIME end_init_air_flush;
    FTIME end_init_co2_flush;
    FTIME end_co2_sample;
    FTIME end_sample_air_flush;
    FTIME end_air_sample;
};

struct NET_COMMON_Neph_SpancheckDuration {
    double air_flush, air_sample;
    double co2_flush;
    double co2_sample;
};

// The measurement of one gas.
struct NET_COMMON_Neph_SpancheckRun {
    double bsp[3], bbsp[3];
    double revsTS[3], revsBS[3];
    double calTS[3], calBS[3];
    double darkTS[3], darkBS[3];
    double sampTS[3], sampBS[3];
    double T, RH, P;
    double den;
    double power;
};

struct NET_COMMON_Neph_SpancheckResults {
    NET_COMMON_Neph_SpancheckRun air;
    NET_COMMON_Neph_SpancheckRun co2;
    double bsgCO2[3], bbsgCO2[3];
    double sensTS[3], sensBS[3];
    double pcterrTS[3], pcterrBS[3];
    double avgErr;
};

struct NET_COMMON_Neph_Shared {
    double bsp[3], bbsp[3];
    double T_inlet, T_neph, RH_inlet, RH_neph, P_neph;
    double alphaGR, alphabGR;
};

struct NET_COMMON_Neph_Instant {
    FTIME start_time;
    NET_COMMON_Neph_Shared in;
    NET_COMMON_Neph_Shared ra;
};
#pragma pack(pop)

// Members that the averages and readings of the three-wavelength nephelometers have alike.
#define NET_NEPH_SCATTERING_MEMBERS(bsp, bbsp)                         \
    NETDSD_MEMBER(bsp, UNIT_per_m, "total scatter").each(NET_COLOURS), \
        NETDSD_MEMBER(bbsp, UNIT_per_m, "backscatter").each(NET_COLOURS)
#define NET_NEPH_AMBIENT_MEMBERS                                                               \
    NETDSD_MEMBER(T_inlet, UNIT_degC, "inlet temperature"),                                    \
        NETDSD_MEMBER(T_neph, UNIT_degC, "sample temperature"),                                \
        NETDSD_MEMBER(RH_inlet, UNIT_percent, "relative humidity of the inlet").range(0, 100), \
        NETDSD_MEMBER(RH_neph, UNIT_percent, "relative humidity of the sample").range(0, 100), \
        NETDSD_MEMBER(P_neph, UNIT_hPa, "sample pressure"),                                    \
        NETDSD_MEMBER(alphaGR, UNIT_none, "Angstrom exponent green/red of total scatter"),     \
        NETDSD_MEMBER(alphabGR, UNIT_none, "Angstrom exponent green/red of backscatter")

NETDSD_RECORD(NET_COMMON_Neph_SpancheckPhase, 12,
    NETDSD_MEMBER(phase, UNIT_none, "phase of the span check").values(NET_COMMON_NEPH_SC_PHASES),
    NETDSD_TIME(next_time, "when the phase ends"));
NETDSD_RECORD(NET_COMMON_Neph_SpancheckIssue, 40,
    NETDSD_TIME(end_init_air_flush, "end of flushing with filtered air"),
    NETDSD_TIME(end_init_co2_flush, "end of flushing with CO2"),
    NETDSD_TIME(end_co2_sample, "end of sampling CO2"),
    NETDSD_TIME(end_sample_air_flush, "end of flushing with filtered air after it"),
    NETDSD_TIME(end_air_sample, "end of sampling filtered air"));
NETDSD_RECORD(NET_COMMON_Neph_SpancheckDuration, 32,
    NETDSD_MEMBER(air_flush, UNIT_s, "length of each flush with filtered air").range(1, 9999),
    NETDSD_MEMBER(air_sample, UNIT_s, "length of sampling filtered air").range(1, 9999),
    NETDSD_MEMBER(co2_flush, UNIT_s, "length of the flush with CO2").range(1, 9999),
    NETDSD_MEMBER(co2_sample, UNIT_s, "length of sampling CO2").range(1, 9999));
NETDSD_RECORD(NET_COMMON_Neph_SpancheckRun, 280,
    NET_NEPH_SCATTERING_MEMBERS(bsp, bbsp),
    NETDSD_MEMBER(revsTS, UNIT_counts, "chopper revolutions, total scatter").each(NET_COLOURS),
    NETDSD_MEMBER(revsBS, UNIT_counts, "chopper revolutions, backscatter").each(NET_COLOURS),
    NETDSD_MEMBER(calTS, UNIT_counts, "calibrator, total scatter").each(NET_COLOURS),
    NETDSD_MEMBER(calBS, UNIT_counts, "calibrator, backscatter").each(NET_COLOURS),
    NETDSD_MEMBER(darkTS, UNIT_counts, "dark, total scatter").each(NET_COLOURS),
    NETDSD_MEMBER(darkBS, UNIT_counts, "dark, backscatter").each(NET_COLOURS),
    NETDSD_MEMBER(sampTS, UNIT_counts, "sample, total scatter").each(NET_COLOURS),
    NETDSD_MEMBER(sampBS, UNIT_counts, "sample, backscatter").each(NET_COLOURS),
    NETDSD_MEMBER(T, UNIT_degC, "sample temperature"),
    NETDSD_MEMBER(RH, UNIT_percent, "relative humidity of the sample").range(0, 100),
    NETDSD_MEMBER(P, UNIT_hPa, "sample pressure"),
    NETDSD_MEMBER(den, UNIT_none, "gas density relative to standard conditions"),
    NETDSD_MEMBER(power, UNIT_W, "lamp power"));
NETDSD_RECORD(NET_COMMON_Neph_SpancheckResults, 712,
    NETDSD_MEMBER(air, "measured with filtered air"),
    NETDSD_MEMBER(co2, "measured with CO2"),
    NETDSD_MEMBER(bsgCO2, UNIT_per_m, "total scatter of CO2 as measured").each(NET_COLOURS),
    NETDSD_MEMBER(bbsgCO2, UNIT_per_m, "backscatter of CO2 as measured").each(NET_COLOURS),
    NETDSD_MEMBER(sensTS, UNIT_none, "sensitivity, total scatter").each(NET_COLOURS),
    NETDSD_MEMBER(sensBS, UNIT_none, "sensitivity, backscatter").each(NET_COLOURS),
    NETDSD_MEMBER(pcterrTS, UNIT_percent, "error of the total scatter").each(NET_COLOURS),
    NETDSD_MEMBER(pcterrBS, UNIT_percent, "error of the backscatter").each(NET_COLOURS),
    NETDSD_MEMBER(avgErr, UNIT_percent, "mean of the absolute errors"));
static_assert(offsetof(NET_COMMON_Neph_SpancheckResults, co2) == 280);
static_assert(offsetof(NET_COMMON_Neph_SpancheckResults, bsgCO2) == 560);
static_assert(offsetof(NET_COMMON_Neph_SpancheckResults, avgErr) == 704);
NETDSD_RECORD(NET_COMMON_Neph_Shared, 104,
    NET_NEPH_SCATTERING_MEMBERS(bsp, bbsp),
    NET_NEPH_AMBIENT_MEMBERS);
NETDSD_RECORD(NET_COMMON_Neph_Instant, 216,
    NETDSD_TIME(start_time, "time of the reading"),
    NETDSD_MEMBER(in, "latest values"),
    NETDSD_MEMBER(ra, "running averages"));
