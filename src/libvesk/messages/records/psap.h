// Wire records of the particle soot absorption photometers with one wavelength and with three. Absorption in
// 1/m, flows in slpm.
#pragma once

#include "libvesk/messages/netdsd.h"

#pragma pack(push, 4)
struct NET_PSAP_Avg {
    FTIME start_time;
    double bapG;
    double stddev_bapG;
};

struct NET_PSAP_Instant {
    FTIME start_time;
    double bap;    // as the instrument reports it
    double bap_I;  // from the change of the intensities
    double tr;     // transmittance since the filter was new
    double trc;    // correction for it
    double Q_slpm;
    std::int32_t I_sample;  // detector readings
    std::int32_t I_reference;
    double I;   // normalised intensity
    double dI;  // its change since the last reading
    double bapG_avg_avg;
    double bapG_avg_stddev;
    double smoothed_tr;
    double smoothed_Q_slpm;
    double smoothed_I_sam;
    double smoothed_I_sam_rsd;  // relative standard deviation
    double smoothed_I_ref;
    double smoothed_I_ref_rsd;
};

struct NET_PSAP_FilterStatus {
    BOOL changing_filter;
};

struct NET_PSAP_Status {
    BOOL have_comms;
};

// Arrays are blue, green, red.
struct NET_PSAP3_Avg {
    FTIME start_time;
    double bap[3];
    double tr[3];
};

struct NET_PSAP3_Instant {
    FTIME start_time;
    double bap[3];
    double bap_I[3];
    double tr[3];
    double Q;
    double I_sample[3];
    double I_reference[3];
    double I_sam_rsd[3];
    double I_ref_rsd[3];
    double I[3];
    double dI[3];
};

struct NET_PSAP3_FilterStatus {
    BOOL changing_filter;
};

struct NET_PSAP3_Status {
    BOOL have_comms;
};
#pragma pack(pop)

NETDSD_RECORD(NET_PSAP_Avg, 24, NETDSD_TIME(start_time), NETDSD_MEMBER(bapG), NETDSD_MEMBER(stddev_bapG));
NETDSD_RECORD(NET_PSAP_Instant, 136, NETDSD_TIME(start_time), NETDSD_MEMBER(bap), NETDSD_MEMBER(bap_I),
              NETDSD_MEMBER(tr), NETDSD_MEMBER(trc), NETDSD_MEMBER(Q_slpm), NETDSD_MEMBER(I_sample),
              NETDSD_MEMBER(I_reference), NETDSD_MEMBER(I), NETDSD_MEMBER(dI), NETDSD_MEMBER(bapG_avg_avg),
              NETDSD_MEMBER(bapG_avg_stddev), NETDSD_MEMBER(smoothed_tr), NETDSD_MEMBER(smoothed_Q_slpm),
              NETDSD_MEMBER(smoothed_I_sam), NETDSD_MEMBER(smoothed_I_sam_rsd), NETDSD_MEMBER(smoothed_I_ref),
              NETDSD_MEMBER(smoothed_I_ref_rsd));
NETDSD_OFFSET(NET_PSAP_Instant, I_reference, 52);
NETDSD_OFFSET(NET_PSAP_Instant, bapG_avg_avg, 72);
NETDSD_OFFSET(NET_PSAP_Instant, smoothed_I_ref_rsd, 128);
NETDSD_RECORD(NET_PSAP_FilterStatus, 1, NETDSD_MEMBER(changing_filter));
NETDSD_RECORD(NET_PSAP_Status, 1, NETDSD_MEMBER(have_comms));
NETDSD_RECORD(NET_PSAP3_Avg, 56, NETDSD_TIME(start_time), NETDSD_MEMBER(bap), NETDSD_MEMBER(tr));
NETDSD_OFFSET(NET_PSAP3_Avg, tr, 32);
NETDSD_RECORD(NET_PSAP3_Instant, 232, NETDSD_TIME(start_time), NETDSD_MEMBER(bap), NETDSD_MEMBER(bap_I),
              NETDSD_MEMBER(tr), NETDSD_MEMBER(Q), NETDSD_MEMBER(I_sample), NETDSD_MEMBER(I_reference),
              NETDSD_MEMBER(I_sam_rsd), NETDSD_MEMBER(I_ref_rsd), NETDSD_MEMBER(I), NETDSD_MEMBER(dI));
NETDSD_OFFSET(NET_PSAP3_Instant, Q, 80);
NETDSD_OFFSET(NET_PSAP3_Instant, I_sam_rsd, 136);
NETDSD_OFFSET(NET_PSAP3_Instant, dI, 208);
NETDSD_RECORD(NET_PSAP3_FilterStatus, 1, NETDSD_MEMBER(changing_filter));
NETDSD_RECORD(NET_PSAP3_Status, 1, NETDSD_MEMBER(have_comms));
