// Wire records of the extinction monitor and of the photoacoustic extinctiometer.
#pragma once

#include "libvesk/messages/records/shared.h"

// The modes of the photoacoustic instrument, as NET_PAX_Instant::mode states them.
enum NET_PAX_Mode : std::int32_t {
    NET_PAX_MODE_MEASURE,
    NET_PAX_MODE_ZERO,
    NET_PAX_MODE_FLUSH,
    NET_PAX_MODE_ACOUSTIC_CAL,
};
inline constexpr NETDSD_meaning NET_PAX_MODES[] = {
    {NET_PAX_MODE_MEASURE, "Measure", NETDSD_STATE},
    {NET_PAX_MODE_ZERO, "Zero", NETDSD_NOTE},
    {NET_PAX_MODE_FLUSH, "Flush", NETDSD_NOTE},
    {NET_PAX_MODE_ACOUSTIC_CAL, "Acoustic Cal", NETDSD_NOTE},
};

#pragma pack(push, 4)
struct NET_CAPS_Reading {
    FTIME start_time;
    double ext;
    double loss;
    double temp;
    double press;
    double signal;
    WORD flags;
};

struct NET_CAPS_Instant {
    FTIME start_time;
    NET_CAPS_Reading in;
    NET_CAPS_Reading ra;
};

struct NET_CAPS_Zero {
    FTIME start_time;
    double baseline;
    double shift;
};

struct NET_CAPS_ZeroSchedule {
    FTIME time_next;
};

struct NET_CAPS_Status {
    BOOL have_comms;
};

struct NET_PAX_Reading {
    FTIME start_time;
    double ba;
    double baNoise;
    double baPhase;
    double bs;
    double p, pInlet, pVacuum;
    double tSample, tLaser;
    double v33, v5, v12, vM5, vP5;
    double aLaser, aPhotoDiode;
    double pLaser;
    double laserPhase;
    double micPressure;
    double qFactor;
    double rh;
    double frequency;
    double iMic, iScat;
    DWORD flags;
};

struct NET_PAX_Instant {
    FTIME start_time;
    NET_PAX_Reading in;
    NET_PAX_Reading ra;
    std::int32_t mode;  // NET_PAX_Mode; any number may come from the wire
    FTIME next_mode;
};

struct NET_PAX_Zero {
    FTIME start_time;
    double ba;
    double bs;
    double baPhase;
    double baShift;
    double bsShift;
};

struct NET_PAX_Status {
    BOOL have_comms;
};
#pragma pack(pop)

NETDSD_RECORD(NET_CAPS_Reading, 52,
    NETDSD_TIME(start_time, "begin of the interval, or time of the reading"),
    NETDSD_MEMBER(ext, UNIT_per_Mm, "extinction coefficient"),
    NETDSD_MEMBER(loss, UNIT_per_Mm, "loss of the cavity"),
    NETDSD_MEMBER(temp, UNIT_degC, "sample temperature"),
    NETDSD_MEMBER(press, UNIT_hPa, "sample pressure"),
    NETDSD_MEMBER(signal, UNIT_mV, "signal of the detector"),
    NETDSD_MEMBER(flags, UNIT_bits, "the instrument's own flags"));
NETDSD_RECORD(NET_CAPS_Instant, 112,
    NETDSD_TIME(start_time, "time of the reading"),
    NETDSD_MEMBER(in, "latest values"),
    NETDSD_MEMBER(ra, "running averages"));
NETDSD_OFFSET(NET_CAPS_Instant, ra, 60);
NETDSD_RECORD(NET_CAPS_Zero, 24,
    NETDSD_TIME(start_time, "when the zero began"),
    NETDSD_MEMBER(baseline, UNIT_per_Mm, "baseline"),
    NETDSD_MEMBER(shift, UNIT_per_Mm, "its shift against the zero before"));
NETDSD_RECORD(NET_CAPS_ZeroSchedule, 8, NETDSD_TIME(time_next, "when the next zero begins, -1 for none"));
NET_COMMS_RECORD(NET_CAPS_Status);
NETDSD_RECORD(NET_PAX_Reading, 204,
    NETDSD_TIME(start_time, "begin of the interval, or time of the reading"),
    NETDSD_MEMBER(ba, UNIT_per_Mm, "absorption coefficient"),
    NETDSD_MEMBER(baNoise, UNIT_per_Mm, "its noise"),
    NETDSD_MEMBER(baPhase, UNIT_deg, "phase of the microphone's signal"),
    NETDSD_MEMBER(bs, UNIT_per_Mm, "scattering coefficient"),
    NETDSD_MEMBER(p, UNIT_hPa, "sample pressure"),
    NETDSD_MEMBER(pInlet, UNIT_hPa, "inlet pressure"),
    NETDSD_MEMBER(pVacuum, UNIT_hPa, "vacuum pressure"),
    NETDSD_MEMBER(tSample, UNIT_degC, "sample temperature"),
    NETDSD_MEMBER(tLaser, UNIT_degC, "laser temperature"),
    NETDSD_MEMBER(v33, UNIT_V, "supply of 3.3 V"),
    NETDSD_MEMBER(v5, UNIT_V, "supply of 5 V"),
    NETDSD_MEMBER(v12, UNIT_V, "supply of 12 V"),
    NETDSD_MEMBER(vM5, UNIT_V, "analog supply of -5 V"),
    NETDSD_MEMBER(vP5, UNIT_V, "analog supply of +5 V"),
    NETDSD_MEMBER(aLaser, UNIT_A, "laser current"),
    NETDSD_MEMBER(aPhotoDiode, UNIT_A, "photodiode current"),
    NETDSD_MEMBER(pLaser, UNIT_W, "laser power"),
    NETDSD_MEMBER(laserPhase, UNIT_deg, "laser phase"),
    NETDSD_MEMBER(micPressure, UNIT_none, "microphone pressure"),
    NETDSD_MEMBER(qFactor, UNIT_none, "quality factor of the resonator"),
    NETDSD_MEMBER(rh, UNIT_percent, "relative humidity of the sample").range(0, 100),
    NETDSD_MEMBER(frequency, UNIT_Hz, "frequency of the resonance"),
    NETDSD_MEMBER(iMic, UNIT_none, "raw signal of the microphone"),
    NETDSD_MEMBER(iScat, UNIT_none, "raw signal of the scattering detector"),
    NETDSD_MEMBER(flags, UNIT_bits, "the instrument's own flags"));
NETDSD_OFFSET(NET_PAX_Reading, v33, 80);
NETDSD_OFFSET(NET_PAX_Reading, rh, 168);
NETDSD_OFFSET(NET_PAX_Reading, flags, 200);
NETDSD_RECORD(NET_PAX_Instant, 428,
    NETDSD_TIME(start_time, "time of the reading"),
    NETDSD_MEMBER(in, "latest values"),
    NETDSD_MEMBER(ra, "running averages"),
    NETDSD_MEMBER(mode, UNIT_none, "what the instrument is doing").values(NET_PAX_MODES),
    NETDSD_TIME(next_mode, "when that changes"));
NETDSD_OFFSET(NET_PAX_Instant, ra, 212);
NETDSD_OFFSET(NET_PAX_Instant, next_mode, 420);
NETDSD_RECORD(NET_PAX_Zero, 48,
    NETDSD_TIME(start_time, "when the zero began"),
    NETDSD_MEMBER(ba, UNIT_per_Mm, "background of absorption"),
    NETDSD_MEMBER(bs, UNIT_per_Mm, "background of scattering"),
    NETDSD_MEMBER(baPhase, UNIT_deg, "phase of the background of absorption"),
    NETDSD_MEMBER(baShift, UNIT_per_Mm, "shift of absorption against the zero before"),
    NETDSD_MEMBER(bsShift, UNIT_per_Mm, "shift of scattering against the zero before"));
NET_COMMS_RECORD(NET_PAX_Status);
