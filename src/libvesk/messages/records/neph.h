// Wire records of the nephelometers. Arrays of three are blue, green, red; scattering coefficients in 1/m,
// temperatures in degrees Celsius, humidities in percent, pressures in hPa. What all kinds share, the span
// check above all, is in common_neph.h.
#pragma once

#include "libvesk/messages/netdsd.h"

#pragma pack(push, 4)
// ---- the three-wavelength nephelometer

struct NET_NEPH_Scattering {
    double bsp[3];   // total scatter
    double bbsp[3];  // backscatter
};

// Counts of total scatter (TS) and backscatter (BS).
struct NET_NEPH_PhotonCounts {
    double calTS[3], calBS[3];    // calibrator
    double darkTS[3], darkBS[3];  // dark
    double sampTS[3], sampBS[3];  // sample
};

struct NET_NEPH_Avg {
    FTIME start_time;
    NET_NEPH_Scattering s;
    NET_NEPH_PhotonCounts pc;
    double T_inlet, T_neph;
    double RH_inlet, RH_neph;
    double P_neph;
    double alphaGR, alphabGR;  // Angstrom exponents green/red of total scatter and backscatter
};

struct NET_NEPH_Instant {
    FTIME start_time;
    NET_NEPH_Scattering s;
    NET_NEPH_PhotonCounts pc;
    NET_NEPH_Avg running;  // average of the interval so far
    BOOL ambient;          // FALSE while it measures its own zero
    double sec_left;       // of the instrument's present state
    double T_inlet, T_neph;
    double RH_inlet, RH_neph;
    double P_neph;
    double alphaGR, alphabGR;
    double ref_green;       // counts of the green reference
    double lamp_V, lamp_I;  // V, A
    double aux_in;          // mV
};

struct NET_NEPH_Zero {
    double bspBK[3], bbspBK[3];            // background
    double bspBKshift[3], bbspBKshift[3];  // its shift against the previous one
};

struct NET_NEPH_ZeroSchedule {
    FTIME time_next;  // -1: none scheduled
};

struct NET_NEPH_Modes {
    WORD flags;
    STRING<5> mode;
};

// Both the instrument's present configuration and the order to take another.
struct NET_NEPH_Config {
    std::int16_t smz;            // zeros that the background is the mean of
    std::int16_t sta;            // averaging time, s
    std::int16_t stb;            // blanking time, s
    std::int16_t stp;            // time between automatic zeros, s
    std::int16_t stz;            // length of a zero, s
    BOOL smb;                    // TRUE: backscatter too; FALSE: total scatter only
    std::int16_t sp;             // lamp power, W
    BOOL l;                      // lamp on
    std::int16_t sx;             // analog output, mV
    std::int16_t b;              // blower, 0 to 255
    std::int16_t svb, svg, svr;  // voltages of the photomultipliers
};

struct NET_NEPH_OverrideParams {
    std::int16_t v;  // zero valve: 0 off, 1 on, -1 unchanged
};

struct NET_NEPH_Status {
    BOOL have_comms;
};

// ---- the single-wavelength (green) nephelometer

struct NET_NEPHM903_Avg {
    FTIME start_time;
    double bspg;      // total scatter
    double greenref;  // reference
    double T_neph, RH_neph;
    double T_inlet, RH_inlet;
    double P;
};

struct NET_NEPHM903_Instant {
    FTIME start_time;
    double bspg;
    double greenref;
    double T_neph, RH_neph;
    double T_inlet, RH_inlet;
    double P;
    NET_NEPHM903_Avg running;
};

struct NET_NEPHM903_Status {
    BOOL have_comms;
};

// ---- the Aurora 3000

struct NET_NEPHAURORA3000_Scattering {
    double bsp[3];
    double bbsp[3];
};

struct NET_NEPHAURORA3000_Counts {
    double total[3];
    double back[3];
    double ref[3];
    double dark;
};

struct NET_NEPHAURORA3000_Avg {
    FTIME start_time;
    NET_NEPHAURORA3000_Scattering s;
    NET_NEPHAURORA3000_Counts c;
    double T_sample, T_cell;
    double RH_sample;
    double P_sample;
    double aGR, abGR;  // Angstrom exponents green/red of total scatter and backscatter
};

struct NET_NEPHAURORA3000_Instant {
    FTIME start_time;
    NET_NEPHAURORA3000_Scattering s;
    NET_NEPHAURORA3000_Counts c;
    NET_NEPHAURORA3000_Avg running;
    BOOL ambient;
    double T_sample, T_cell;
    double RH_sample;
    double P_sample;
    double aGR, abGR;
};

struct NET_NEPHAURORA3000_Zero {
    double bspBK[3], bbspBK[3];
    double bspBKshift[3], bbspBKshift[3];
};

struct NET_NEPHAURORA3000_ZeroSchedule {
    FTIME time_next;
};

struct NET_NEPHAURORA3000_Modes {
    WORD flags;
};

struct NET_NEPHAURORA3000_Status {
    BOOL have_comms;
};
#pragma pack(pop)

NETDSD_RECORD(NET_NEPH_Scattering, 48, NETDSD_MEMBER(bsp), NETDSD_MEMBER(bbsp));
NETDSD_RECORD(NET_NEPH_PhotonCounts, 144, NETDSD_MEMBER(calTS), NETDSD_MEMBER(calBS), NETDSD_MEMBER(darkTS),
              NETDSD_MEMBER(darkBS), NETDSD_MEMBER(sampTS), NETDSD_MEMBER(sampBS));
NETDSD_RECORD(NET_NEPH_Avg, 256, NETDSD_TIME(start_time), NETDSD_MEMBER(s), NETDSD_MEMBER(pc),
              NETDSD_MEMBER(T_inlet), NETDSD_MEMBER(T_neph), NETDSD_MEMBER(RH_inlet), NETDSD_MEMBER(RH_neph),
              NETDSD_MEMBER(P_neph), NETDSD_MEMBER(alphaGR), NETDSD_MEMBER(alphabGR));
NETDSD_OFFSET(NET_NEPH_Avg, s, 8);
NETDSD_OFFSET(NET_NEPH_Avg, pc, 56);
NETDSD_OFFSET(NET_NEPH_Avg, T_inlet, 200);
NETDSD_OFFSET(NET_NEPH_Avg, P_neph, 232);
NETDSD_OFFSET(NET_NEPH_Avg, alphabGR, 248);
NETDSD_RECORD(NET_NEPH_Instant, 556, NETDSD_TIME(start_time), NETDSD_MEMBER(s), NETDSD_MEMBER(pc),
              NETDSD_MEMBER(running), NETDSD_MEMBER(ambient), NETDSD_MEMBER(sec_left), NETDSD_MEMBER(T_inlet),
              NETDSD_MEMBER(T_neph), NETDSD_MEMBER(RH_inlet), NETDSD_MEMBER(RH_neph), NETDSD_MEMBER(P_neph),
              NETDSD_MEMBER(alphaGR), NETDSD_MEMBER(alphabGR), NETDSD_MEMBER(ref_green),
              NETDSD_MEMBER(lamp_V), NETDSD_MEMBER(lamp_I), NETDSD_MEMBER(aux_in));
NETDSD_OFFSET(NET_NEPH_Instant, running, 200);
NETDSD_OFFSET(NET_NEPH_Instant, ambient, 456);
NETDSD_OFFSET(NET_NEPH_Instant, sec_left, 460);
NETDSD_OFFSET(NET_NEPH_Instant, P_neph, 500);
NETDSD_OFFSET(NET_NEPH_Instant, ref_green, 524);
NETDSD_OFFSET(NET_NEPH_Instant, aux_in, 548);
NETDSD_RECORD(NET_NEPH_Zero, 96, NETDSD_MEMBER(bspBK), NETDSD_MEMBER(bbspBK), NETDSD_MEMBER(bspBKshift),
              NETDSD_MEMBER(bbspBKshift));
NETDSD_RECORD(NET_NEPH_ZeroSchedule, 8, NETDSD_TIME(time_next));
NETDSD_RECORD(NET_NEPH_Modes, 8, NETDSD_MEMBER(flags), NETDSD_MEMBER(mode));
NETDSD_OFFSET(NET_NEPH_Modes, mode, 2);
NETDSD_RECORD(NET_NEPH_Config, 26, NETDSD_MEMBER(smz), NETDSD_MEMBER(sta), NETDSD_MEMBER(stb),
              NETDSD_MEMBER(stp), NETDSD_MEMBER(stz), NETDSD_MEMBER(smb), NETDSD_MEMBER(sp), NETDSD_MEMBER(l),
              NETDSD_MEMBER(sx), NETDSD_MEMBER(b), NETDSD_MEMBER(svb), NETDSD_MEMBER(svg),
              NETDSD_MEMBER(svr));
NETDSD_OFFSET(NET_NEPH_Config, smb, 10);
NETDSD_OFFSET(NET_NEPH_Config, sp, 12);
NETDSD_OFFSET(NET_NEPH_Config, l, 14);
NETDSD_OFFSET(NET_NEPH_Config, sx, 16);
NETDSD_RECORD(NET_NEPH_OverrideParams, 2, NETDSD_MEMBER(v));
NETDSD_RECORD(NET_NEPH_Status, 1, NETDSD_MEMBER(have_comms));

NETDSD_RECORD(NET_NEPHM903_Avg, 64, NETDSD_TIME(start_time), NETDSD_MEMBER(bspg), NETDSD_MEMBER(greenref),
              NETDSD_MEMBER(T_neph), NETDSD_MEMBER(RH_neph), NETDSD_MEMBER(T_inlet), NETDSD_MEMBER(RH_inlet),
              NETDSD_MEMBER(P));
NETDSD_RECORD(NET_NEPHM903_Instant, 128, NETDSD_TIME(start_time), NETDSD_MEMBER(bspg),
              NETDSD_MEMBER(greenref), NETDSD_MEMBER(T_neph), NETDSD_MEMBER(RH_neph), NETDSD_MEMBER(T_inlet),
              NETDSD_MEMBER(RH_inlet), NETDSD_MEMBER(P), NETDSD_MEMBER(running));
NETDSD_OFFSET(NET_NEPHM903_Instant, running, 64);
NETDSD_RECORD(NET_NEPHM903_Status, 1, NETDSD_MEMBER(have_comms));

NETDSD_RECORD(NET_NEPHAURORA3000_Scattering, 48, NETDSD_MEMBER(bsp), NETDSD_MEMBER(bbsp));
NETDSD_RECORD(NET_NEPHAURORA3000_Counts, 80, NETDSD_MEMBER(total), NETDSD_MEMBER(back), NETDSD_MEMBER(ref),
              NETDSD_MEMBER(dark));
NETDSD_RECORD(NET_NEPHAURORA3000_Avg, 184, NETDSD_TIME(start_time), NETDSD_MEMBER(s), NETDSD_MEMBER(c),
              NETDSD_MEMBER(T_sample), NETDSD_MEMBER(T_cell), NETDSD_MEMBER(RH_sample),
              NETDSD_MEMBER(P_sample), NETDSD_MEMBER(aGR), NETDSD_MEMBER(abGR));
NETDSD_OFFSET(NET_NEPHAURORA3000_Avg, T_sample, 136);
NETDSD_OFFSET(NET_NEPHAURORA3000_Avg, abGR, 176);
NETDSD_RECORD(NET_NEPHAURORA3000_Instant, 372, NETDSD_TIME(start_time), NETDSD_MEMBER(s), NETDSD_MEMBER(c),
              NETDSD_MEMBER(running), NETDSD_MEMBER(ambient), NETDSD_MEMBER(T_sample), NETDSD_MEMBER(T_cell),
              NETDSD_MEMBER(RH_sample), NETDSD_MEMBER(P_sample), NETDSD_MEMBER(aGR), NETDSD_MEMBER(abGR));
NETDSD_OFFSET(NET_NEPHAURORA3000_Instant, running, 136);
NETDSD_OFFSET(NET_NEPHAURORA3000_Instant, ambient, 320);
NETDSD_OFFSET(NET_NEPHAURORA3000_Instant, T_sample, 324);
NETDSD_OFFSET(NET_NEPHAURORA3000_Instant, abGR, 364);
NETDSD_RECORD(NET_NEPHAURORA3000_Zero, 96, NETDSD_MEMBER(bspBK), NETDSD_MEMBER(bbspBK),
              NETDSD_MEMBER(bspBKshift), NETDSD_MEMBER(bbspBKshift));
NETDSD_RECORD(NET_NEPHAURORA3000_ZeroSchedule, 8, NETDSD_TIME(time_next));
NETDSD_RECORD(NET_NEPHAURORA3000_Modes, 2, NETDSD_MEMBER(flags));
NETDSD_RECORD(NET_NEPHAURORA3000_Status, 1, NETDSD_MEMBER(have_comms));
