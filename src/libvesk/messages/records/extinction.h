// Wire records of the extinction monitor and of the photoacoustic extinctiometer. Coefficients in 1/Mm,
// temperatures in degrees Celsius, pressures in hPa.
#pragma once

#include "libvesk/messages/netdsd.h"

// What the photoacoustic instrument is doing, as NET_PAX_Instant::mode says it.
enum NET_PAX_Mode : std::int32_t {
    NET_PAX_MODE_MEASURE,
    NET_PAX_MODE_ZERO,
    NET_PAX_MODE_FLUSH,
    NET_PAX_MODE_ACOUSTIC_CAL,
};

#pragma pack(push, 4)
struct NET_CAPS_Reading {
    FTIME start_time;
    double ext;   // extinction coefficient
    double loss;  // of the empty cavity
    double temp;
    double press;
    double signal;  // mV
    WORD flags;
};

struct NET_CAPS_Instant {
    FTIME start_time;
    NET_CAPS_Reading in;  // instantaneous
    NET_CAPS_Reading ra;  // running average
};

struct NET_CAPS_Zero {
    FTIME start_time;
    double baseline;
    double shift;  // against the zero before
};

struct NET_CAPS_ZeroSchedule {
    FTIME time_next;
};

struct NET_CAPS_Status {
    BOOL have_comms;
};

struct NET_PAX_Reading {
    FTIME start_time;
    double ba;  // absorption coefficient
    double baNoise;
    double baPhase;  // degrees
    double bs;       // scattering coefficient
    double p, pInlet, pVacuum;
    double tSample, tLaser;
    double v33, v5, v12, vM5, vP5;  // supply voltages
    double aLaser, aPhotoDiode;     // A
    double pLaser;                  // W
    double laserPhase;              // degrees
    double micPressure;
    double qFactor;      // of the resonator
    double rh;           // percent
    double frequency;    // of the resonance, Hz
    double iMic, iScat;  // raw signals
    DWORD flags;
};

struct NET_PAX_Instant {
    FTIME start_time;
    NET_PAX_Reading in;  // instantaneous
    NET_PAX_Reading ra;  // running average
    std::int32_t mode;   // NET_PAX_Mode; any number may come from the wire
    FTIME next_mode;     // when it changes
};

struct NET_PAX_Zero {
    FTIME start_time;
    double ba;
    double bs;
    double baPhase;
    double baShift;  // against the zero before
    double bsShift;
};

struct NET_PAX_Status {
    BOOL have_comms;
};
#pragma pack(pop)

NETDSD_RECORD(NET_CAPS_Reading, 52, NETDSD_TIME(start_time), NETDSD_MEMBER(ext), NETDSD_MEMBER(loss),
              NETDSD_MEMBER(temp), NETDSD_MEMBER(press), NETDSD_MEMBER(signal), NETDSD_MEMBER(flags));
NETDSD_RECORD(NET_CAPS_Instant, 112, NETDSD_TIME(start_time), NETDSD_MEMBER(in), NETDSD_MEMBER(ra));
NETDSD_OFFSET(NET_CAPS_Instant, ra, 60);
NETDSD_RECORD(NET_CAPS_Zero, 24, NETDSD_TIME(start_time), NETDSD_MEMBER(baseline), NETDSD_MEMBER(shift));
NETDSD_RECORD(NET_CAPS_ZeroSchedule, 8, NETDSD_TIME(time_next));
NETDSD_RECORD(NET_CAPS_Status, 1, NETDSD_MEMBER(have_comms));
NETDSD_RECORD(NET_PAX_Reading, 204, NETDSD_TIME(start_time), NETDSD_MEMBER(ba), NETDSD_MEMBER(baNoise),
              NETDSD_MEMBER(baPhase), NETDSD_MEMBER(bs), NETDSD_MEMBER(p), NETDSD_MEMBER(pInlet),
              NETDSD_MEMBER(pVacuum), NETDSD_MEMBER(tSample), NETDSD_MEMBER(tLaser), NETDSD_MEMBER(v33),
              NETDSD_MEMBER(v5), NETDSD_MEMBER(v12), NETDSD_MEMBER(vM5), NETDSD_MEMBER(vP5),
              NETDSD_MEMBER(aLaser), NETDSD_MEMBER(aPhotoDiode), NETDSD_MEMBER(pLaser),
              NETDSD_MEMBER(laserPhase), NETDSD_MEMBER(micPressure), NETDSD_MEMBER(qFactor),
              NETDSD_MEMBER(rh), NETDSD_MEMBER(frequency), NETDSD_MEMBER(iMic), NETDSD_MEMBER(iScat),
              NETDSD_MEMBER(flags));
NETDSD_OFFSET(NET_PAX_Reading, v33, 80);
NETDSD_OFFSET(NET_PAX_Reading, rh, 168);
NETDSD_OFFSET(NET_PAX_Reading, flags, 200);
NETDSD_RECORD(NET_PAX_Instant, 428, NETDSD_TIME(start_time), NETDSD_MEMBER(in), NETDSD_MEMBER(ra),
              NETDSD_MEMBER(mode), NETDSD_TIME(next_mode));
NETDSD_OFFSET(NET_PAX_Instant, ra, 212);
NETDSD_OFFSET(NET_PAX_Instant, next_mode, 420);
NETDSD_RECORD(NET_PAX_Zero, 48, NETDSD_TIME(start_time), NETDSD_MEMBER(ba), NETDSD_MEMBER(bs),
              NETDSD_MEMBER(baPhase), NETDSD_MEMBER(baShift), NETDSD_MEMBER(bsShift));
NETDSD_RECORD(NET_PAX_Status, 1, NETDSD_MEMBER(have_comms));
