// Wire records of the nephelometers. What all kinds share, the span check above all, is in common_neph.h.
#pragma once

#include "libvesk/messages/records/common_neph.h"

#pragma pack(push, 4)
// ---- the three-wavelength nephelometer

struct NET_NEPH_Scattering {
    double bsp[3];
    double bbsp[3];
};

// Counts of total scatter (TS) and backscatter (BS).
struct NET_NEPH_PhotonCounts {
    double calTS[3], calBS[3];
    double darkTS[3], darkBS[3];
    double sampTS[3], sampBS[3];
};

struct NET_NEPH_Avg {
    FTIME start_time;
    NET_NEPH_Scattering s;
    NET_NEPH_PhotonCounts pc;
    double T_inlet, T_neph;
    double RH_inlet, RH_neph;
    double P_neph;
    double alphaGR, alphabGR;
};

struct NET_NEPH_Instant {
    FTIME start_time;
    NET_NEPH_Scattering s;
    NET_NEPH_PhotonCounts pc;
    NET_NEPH_Avg running;
    BOOL ambient;
    double sec_left;
    double T_inlet, T_neph;
    double RH_inlet, RH_neph;
    double P_neph;
    double alphaGR, alphabGR;
    double ref_green;
    double lamp_V, lamp_I;
    double aux_in;
};

struct NET_NEPH_Zero {
    double bspBK[3], bbspBK[3];
    double bspBKshift[3], bbspBKshift[3];
};

struct NET_NEPH_ZeroSchedule {
    FTIME time_next;
};

struct NET_NEPH_Modes {
    WORD flags;
    STRING<5> mode;
};

// Both the instrument's present configuration and the order to take another.
struct NET_NEPH_Config {
    std::int16_t smz;
    std::int16_t sta, stb, stp, stz;
    BOOL smb;
    std::int16_t sp;
    BOOL l;
    std::int16_t sx;
    std::int16_t b;
    std::int16_t svb, svg, svr;
};

struct NET_NEPH_OverrideParams {
    std::int16_t v;
};

struct NET_NEPH_Status {
    BOOL have_comms;
};

// ---- the single-wavelength (green) nephelometer

struct NET_NEPHM903_Avg {
    FTIME start_time;
    double bspg;
    double greenref;
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
    double aGR, abGR;
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

NETDSD_RECORD(NET_NEPH_Scattering, 48, NET_NEPH_SCATTERING_MEMBERS(bsp, bbsp));
NETDSD_RECORD(NET_NEPH_PhotonCounts, 144,
    NETDSD_MEMBER(calTS, UNIT_counts, "calibrator, total scatter").each(NET_COLOURS),
    NETDSD_MEMBER(calBS, UNIT_counts, "calibrator, backscatter").each(NET_COLOURS),
    NETDSD_MEMBER(darkTS, UNIT_counts, "dark, total scatter").each(NET_COLOURS),
    NETDSD_MEMBER(darkBS, UNIT_counts, "dark, backscatter").each(NET_COLOURS),
    NETDSD_MEMBER(sampTS, UNIT_counts, "sample, total scatter").each(NET_COLOURS),
    NETDSD_MEMBER(sampBS, UNIT_counts, "sample, backscatter").each(NET_COLOURS));
NETDSD_RECORD(NET_NEPH_Avg, 256,
    NETDSD_TIME(start_time, "begin of the interval"),
    NETDSD_MEMBER(s, "scattering"),
    NETDSD_MEMBER(pc, "photon counts"),
    NET_NEPH_AMBIENT_MEMBERS);
NETDSD_OFFSET(NET_NEPH_Avg, s, 8);
NETDSD_OFFSET(NET_NEPH_Avg, pc, 56);
NETDSD_OFFSET(NET_NEPH_Avg, T_inlet, 200);
NETDSD_OFFSET(NET_NEPH_Avg, P_neph, 232);
NETDSD_OFFSET(NET_NEPH_Avg, alphabGR, 248);
NETDSD_RECORD(NET_NEPH_Instant, 556,
    NETDSD_TIME(start_time, "time of the reading"),
    NETDSD_MEMBER(s, "scattering"),
    NETDSD_MEMBER(pc, "photon counts"),
    NETDSD_MEMBER(running, "average of the interval so far"),
    NETDSD_MEMBER(ambient, "it measures the sample, not its own zero"),
    NETDSD_MEMBER(sec_left, UNIT_s, "what is left of the instrument's present state"),
    NET_NEPH_AMBIENT_MEMBERS,
    NETDSD_MEMBER(ref_green, UNIT_counts, "green reference"),
    NETDSD_MEMBER(lamp_V, UNIT_V, "lamp voltage"),
    NETDSD_MEMBER(lamp_I, UNIT_A, "lamp current"),
    NETDSD_MEMBER(aux_in, UNIT_mV, "auxiliary input"));
NETDSD_OFFSET(NET_NEPH_Instant, running, 200);
NETDSD_OFFSET(NET_NEPH_Instant, ambient, 456);
NETDSD_OFFSET(NET_NEPH_Instant, sec_left, 460);
NETDSD_OFFSET(NET_NEPH_Instant, P_neph, 500);
NETDSD_OFFSET(NET_NEPH_Instant, ref_green, 524);
NETDSD_OFFSET(NET_NEPH_Instant, aux_in, 548);
#define NET_NEPH_ZERO_MEMBERS                                                                      \
    NETDSD_MEMBER(bspBK, UNIT_per_m, "background of total scatter").each(NET_COLOURS),             \
        NETDSD_MEMBER(bbspBK, UNIT_per_m, "background of backscatter").each(NET_COLOURS),          \
        NETDSD_MEMBER(bspBKshift, UNIT_per_m, "shift of that of total scatter").each(NET_COLOURS), \
        NETDSD_MEMBER(bbspBKshift, UNIT_per_m, "shift of that of backscatter").each(NET_COLOURS)
NETDSD_RECORD(NET_NEPH_Zero, 96, NET_NEPH_ZERO_MEMBERS);
NETDSD_RECORD(NET_NEPH_ZeroSchedule, 8, NETDSD_TIME(time_next, "when the next zero begins, -1 for none"));
NETDSD_RECORD(NET_NEPH_Modes, 8,
    NETDSD_MEMBER(flags, UNIT_bits, "the instrument's own flags"),
    NETDSD_MEMBER(mode, "the instrument's mode"));
NETDSD_OFFSET(NET_NEPH_Modes, mode, 2);
NETDSD_RECORD(NET_NEPH_Config, 26,
    NETDSD_MEMBER(smz, UNIT_none, "zeros that the background is the mean of").range(0, 24),
    NETDSD_MEMBER(sta, UNIT_s, "averaging time").range(1, 9960),
    NETDSD_MEMBER(stb, UNIT_s, "blanking time").range(5, 999),
    NETDSD_MEMBER(stp, UNIT_s, "time between automatic zeros").range(10, 32767),
    NETDSD_MEMBER(stz, UNIT_s, "length of a zero").range(1, 9999),
    NETDSD_MEMBER(smb, "backscatter too, not total scatter only"),
    NETDSD_MEMBER(sp, UNIT_W, "lamp power").range(0, 150),
    NETDSD_MEMBER(l, "the lamp is on"),
    NETDSD_MEMBER(sx, UNIT_mV, "analog output").range(0, 10000),
    NETDSD_MEMBER(b, UNIT_none, "blower").range(0, 255),
    NETDSD_MEMBER(svb, UNIT_V, "voltage of the blue photomultiplier").range(1, 1200),
    NETDSD_MEMBER(svg, UNIT_V, "voltage of the green photomultiplier").range(1, 1200),
    NETDSD_MEMBER(svr, UNIT_V, "voltage of the red photomultiplier").range(1, 1200));
NETDSD_OFFSET(NET_NEPH_Config, smb, 10);
NETDSD_OFFSET(NET_NEPH_Config, sp, 12);
NETDSD_OFFSET(NET_NEPH_Config, l, 14);
NETDSD_OFFSET(NET_NEPH_Config, sx, 16);
NETDSD_RECORD(NET_NEPH_OverrideParams, 2,
    NETDSD_MEMBER(v, UNIT_none, "zero valve: 0 off, 1 on, -1 unchanged").range(-1, 1));
NET_COMMS_RECORD(NET_NEPH_Status);

#define NET_NEPHM903_MEMBERS                                                                   \
    NETDSD_MEMBER(bspg, UNIT_per_m, "total scatter, green"),                                   \
        NETDSD_MEMBER(greenref, UNIT_per_m, "green reference, scaled as the scattering is"),   \
        NETDSD_MEMBER(T_neph, UNIT_degC, "sample temperature"),                                \
        NETDSD_MEMBER(RH_neph, UNIT_percent, "relative humidity of the sample").range(0, 100), \
        NETDSD_MEMBER(T_inlet, UNIT_degC, "inlet temperature"),                                \
        NETDSD_MEMBER(RH_inlet, UNIT_percent, "relative humidity of the inlet").range(0, 100), \
        NETDSD_MEMBER(P, UNIT_hPa, "sample pressure")
NETDSD_RECORD(NET_NEPHM903_Avg, 64,
    NETDSD_TIME(start_time, "begin of the interval"),
    NET_NEPHM903_MEMBERS);
NETDSD_RECORD(NET_NEPHM903_Instant, 128,
    NETDSD_TIME(start_time, "time of the reading"),
    NET_NEPHM903_MEMBERS,
    NETDSD_MEMBER(running, "running averages"));
NETDSD_OFFSET(NET_NEPHM903_Instant, running, 64);
#undef NET_NEPHM903_MEMBERS
NET_COMMS_RECORD(NET_NEPHM903_Status);

NETDSD_RECORD(NET_NEPHAURORA3000_Scattering, 48, NET_NEPH_SCATTERING_MEMBERS(bsp, bbsp));
NETDSD_RECORD(NET_NEPHAURORA3000_Counts, 80,
    NETDSD_MEMBER(total, UNIT_counts, "total scatter").each(NET_COLOURS),
    NETDSD_MEMBER(back, UNIT_counts, "backscatter").each(NET_COLOURS),
    NETDSD_MEMBER(ref, UNIT_counts, "reference shutter").each(NET_COLOURS),
    NETDSD_MEMBER(dark, UNIT_counts, "dark"));
#define NET_NEPHAURORA3000_AMBIENT_MEMBERS                                                       \
    NETDSD_MEMBER(T_sample, UNIT_degC, "sample temperature"),                                    \
        NETDSD_MEMBER(T_cell, UNIT_degC, "cell temperature"),                                    \
        NETDSD_MEMBER(RH_sample, UNIT_percent, "relative humidity of the sample").range(0, 100), \
        NETDSD_MEMBER(P_sample, UNIT_hPa, "sample pressure"),                                    \
        NETDSD_MEMBER(aGR, UNIT_none, "Angstrom exponent green/red of total scatter"),           \
        NETDSD_MEMBER(abGR, UNIT_none, "Angstrom exponent green/red of backscatter")
NETDSD_RECORD(NET_NEPHAURORA3000_Avg, 184,
    NETDSD_TIME(start_time, "begin of the interval"),
    NETDSD_MEMBER(s, "scattering"),
    NETDSD_MEMBER(c, "counts"),
    NET_NEPHAURORA3000_AMBIENT_MEMBERS);
NETDSD_OFFSET(NET_NEPHAURORA3000_Avg, T_sample, 136);
NETDSD_OFFSET(NET_NEPHAURORA3000_Avg, abGR, 176);
NETDSD_RECORD(NET_NEPHAURORA3000_Instant, 372,
    NETDSD_TIME(start_time, "time of the reading"),
    NETDSD_MEMBER(s, "scattering"),
    NETDSD_MEMBER(c, "counts"),
    NETDSD_MEMBER(running, "running averages"),
    NETDSD_MEMBER(ambient, "it measures the sample, not its own zero"),
    NET_NEPHAURORA3000_AMBIENT_MEMBERS);
NETDSD_OFFSET(NET_NEPHAURORA3000_Instant, running, 136);
NETDSD_OFFSET(NET_NEPHAURORA3000_Instant, ambient, 320);
NETDSD_OFFSET(NET_NEPHAURORA3000_Instant, T_sample, 324);
NETDSD_OFFSET(NET_NEPHAURORA3000_Instant, abGR, 364);
#undef NET_NEPHAURORA3000_AMBIENT_MEMBERS
NETDSD_RECORD(NET_NEPHAURORA3000_Zero, 96, NET_NEPH_ZERO_MEMBERS);
#undef NET_NEPH_ZERO_MEMBERS
NETDSD_RECORD(NET_NEPHAURORA3000_ZeroSchedule, 8,
    NETDSD_TIME(time_next, "when the next zero begins, -1 for none"));
NETDSD_RECORD(NET_NEPHAURORA3000_Modes, 2, NETDSD_MEMBER(flags, UNIT_bits, "the instrument's own flags"));
NET_COMMS_RECORD(NET_NEPHAURORA3000_Status);
