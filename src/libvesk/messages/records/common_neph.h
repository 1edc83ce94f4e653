// Wire records that every nephelometer kind shares: the span check, and the kind-independent data. Arrays of
// three are blue, green, red; scattering coefficients in 1/m, temperatures in degrees Celsius, humidities in
// percent, pressures in hPa.
#pragma once

#include "libvesk/messages/netdsd.h"

// Phase of a span check, as the wire carries it in 32 bits.
enum NET_COMMON_Neph_SpancheckPhaseID : std::int32_t {
    NET_COMMON_NEPH_SC_NONE,
    NET_COMMON_NEPH_SC_FLUSH_AIR_INIT,
    NET_COMMON_NEPH_SC_FLUSH_CO2,
    NET_COMMON_NEPH_SC_SAMPLE_CO2,
    NET_COMMON_NEPH_SC_FLUSH_AIR_SAMPLE,
    NET_COMMON_NEPH_SC_SAMPLE_AIR,
};
inline constexpr int NET_COMMON_NEPH_SC_COUNT = 6;

#pragma pack(push, 4)
struct NET_COMMON_Neph_SpancheckPhase {
    std::int32_t phase;  // NET_COMMON_Neph_SpancheckPhaseID; any number may come from the wire
    FTIME next_time;     // when the phase ends
};

// Absolute ends of the five phases.
struct NET_COMMON_Neph_SpancheckIssue {
    FTIME end_init_air_flush;
    FTIME end_init_co2_flush;
    FTIME end_co2_sample;
    FTIME end_sample_air_flush;
    FTIME end_air_sample;
};

// Lengths in seconds.
struct NET_COMMON_Neph_SpancheckDuration {
    double air_flush;
    double air_sample;
    double co2_flush;
    double co2_sample;
};

// What was measured with one gas.
struct NET_COMMON_Neph_SpancheckRun {
    double bsp[3], bbsp[3];       // total scatter and backscatter, 1/m
    double revsTS[3], revsBS[3];  // chopper revolutions
    double calTS[3], calBS[3];    // calibrator counts
    double darkTS[3], darkBS[3];  // dark counts
    double sampTS[3], sampBS[3];  // sample counts
    double T, RH, P;
    double den;    // gas density relative to standard conditions
    double power;  // lamp power, W
};

struct NET_COMMON_Neph_SpancheckResults {
    NET_COMMON_Neph_SpancheckRun air;
    NET_COMMON_Neph_SpancheckRun co2;
    double bsgCO2[3], bbsgCO2[3];     // scattering of CO2 as measured, 1/m
    double sensTS[3], sensBS[3];      // sensitivity
    double pcterrTS[3], pcterrBS[3];  // error against the known scattering, percent
    double avgErr;                    // mean of the absolute errors, percent
};

struct NET_COMMON_Neph_Shared {
    double bsp[3], bbsp[3];
    double T_inlet, T_neph, RH_inlet, RH_neph, P_neph;
    double alphaGR, alphabGR;  // Angstrom exponents green/red of total scatter and backscatter
};

struct NET_COMMON_Neph_Instant {
    FTIME start_time;
    NET_COMMON_Neph_Shared in;  // instantaneous
    NET_COMMON_Neph_Shared ra;  // running average
};
#pragma pack(pop)

NETDSD_RECORD(NET_COMMON_Neph_SpancheckPhase, 12, NETDSD_MEMBER(phase), NETDSD_TIME(next_time));
NETDSD_RECORD(NET_COMMON_Neph_SpancheckIssue, 40, NETDSD_TIME(end_init_air_flush),
              NETDSD_TIME(end_init_co2_flush), NETDSD_TIME(end_co2_sample), NETDSD_TIME(end_sample_air_flush),
              NETDSD_TIME(end_air_sample));
NETDSD_RECORD(NET_COMMON_Neph_SpancheckDuration, 32, NETDSD_MEMBER(air_flush), NETDSD_MEMBER(air_sample),
              NETDSD_MEMBER(co2_flush), NETDSD_MEMBER(co2_sample));
NETDSD_RECORD(NET_COMMON_Neph_SpancheckRun, 280, NETDSD_MEMBER(bsp), NETDSD_MEMBER(bbsp),
              NETDSD_MEMBER(revsTS), NETDSD_MEMBER(revsBS), NETDSD_MEMBER(calTS), NETDSD_MEMBER(calBS),
              NETDSD_MEMBER(darkTS), NETDSD_MEMBER(darkBS), NETDSD_MEMBER(sampTS), NETDSD_MEMBER(sampBS),
              NETDSD_MEMBER(T), NETDSD_MEMBER(RH), NETDSD_MEMBER(P), NETDSD_MEMBER(den),
              NETDSD_MEMBER(power));
NETDSD_RECORD(NET_COMMON_Neph_SpancheckResults, 712, NETDSD_MEMBER(air), NETDSD_MEMBER(co2),
              NETDSD_MEMBER(bsgCO2), NETDSD_MEMBER(bbsgCO2), NETDSD_MEMBER(sensTS), NETDSD_MEMBER(sensBS),
              NETDSD_MEMBER(pcterrTS), NETDSD_MEMBER(pcterrBS), NETDSD_MEMBER(avgErr));
NETDSD_RECORD(NET_COMMON_Neph_Shared, 104, NETDSD_MEMBER(bsp), NETDSD_MEMBER(bbsp), NETDSD_MEMBER(T_inlet),
              NETDSD_MEMBER(T_neph), NETDSD_MEMBER(RH_inlet), NETDSD_MEMBER(RH_neph), NETDSD_MEMBER(P_neph),
              NETDSD_MEMBER(alphaGR), NETDSD_MEMBER(alphabGR));
NETDSD_RECORD(NET_COMMON_Neph_Instant, 216, NETDSD_TIME(start_time), NETDSD_MEMBER(in), NETDSD_MEMBER(ra));
static_assert(offsetof(NET_COMMON_Neph_SpancheckResults, co2) == 280);
static_assert(offsetof(NET_COMMON_Neph_SpancheckResults, bsgCO2) == 560);
static_assert(offsetof(NET_COMMON_Neph_SpancheckResults, avgErr) == 704);
