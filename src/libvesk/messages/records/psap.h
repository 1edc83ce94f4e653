// Wire records of the particle soot absorption photometers with one wavelength and with three.
#pragma once

#include "libvesk/messages/records/shared.h"

inline constexpr NETDSD_meaning NET_PSAP_FILTER[] = {{TRUE, "Changing filter...", NETDSD_NOTE}};

#pragma pack(push, 4)
struct NET_PSAP_Avg {
    FTIME start_time;
    double bapG;
    double stddev_bapG;
};

struct NET_PSAP_Instant {
    FTIME start_time;
    double bap;
    double bap_I;
    double tr;
    double trc;
    double Q_slpm;
    std::int32_t I_sample, I_reference;
    double I;
    double dI;
    double bapG_avg_avg, bapG_avg_stddev;
    double smoothed_tr, smoothed_Q_slpm, smoothed_I_sam, smoothed_I_sam_rsd, smoothed_I_ref;
    double smoothed_I_ref_rsd;
};

struct NET_PSAP_FilterStatus {
    BOOL changing_filter;
};

struct NET_PSAP_Status {
    BOOL have_comms;
};

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
    double I_sample[3], I_reference[3], I_sam_rsd[3], I_ref_rsd[3];
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

NETDSD_RECORD(NET_PSAP_Avg, 24,
    NETDSD_TIME(start_time, "begin of the interval"),
    NETDSD_MEMBER(bapG, UNIT_per_m, "absorption coefficient, green"),
    NETDSD_MEMBER(stddev_bapG, UNIT_per_m, "its standard deviation"));
NETDSD_RECORD(NET_PSAP_Instant, 136,
    NETDSD_TIME(start_time, "time of the reading"),
    NETDSD_MEMBER(bap, UNIT_per_m, "absorption coefficient as the instrument reports it"),
    NETDSD_MEMBER(bap_I, UNIT_per_m, "absorption coefficient from the change of the intensities"),
    NETDSD_MEMBER(tr, UNIT_none, "filter transmittance since the filter was new"),
    NETDSD_MEMBER(trc, UNIT_none, "correction for the transmittance"),
    NETDSD_MEMBER(Q_slpm, UNIT_slpm, "sample flow"),
    NETDSD_MEMBER(I_sample, UNIT_counts, "sample detector"),
    NETDSD_MEMBER(I_reference, UNIT_counts, "reference detector"),
    NETDSD_MEMBER(I, UNIT_none, "normalised intensity"),
    NETDSD_MEMBER(dI, UNIT_none, "its change since the last reading"),
    NETDSD_MEMBER(bapG_avg_avg, UNIT_per_m, "mean of the averages of the absorption coefficient"),
    NETDSD_MEMBER(bapG_avg_stddev, UNIT_per_m, "its standard deviation"),
    NETDSD_MEMBER(smoothed_tr, UNIT_none, "smoothed transmittance"),
    NETDSD_MEMBER(smoothed_Q_slpm, UNIT_slpm, "smoothed sample flow"),
    NETDSD_MEMBER(smoothed_I_sam, UNIT_counts, "smoothed sample detector"),
    NETDSD_MEMBER(smoothed_I_sam_rsd, UNIT_none, "its relative standard deviation"),
    NETDSD_MEMBER(smoothed_I_ref, UNIT_counts, "smoothed reference detector"),
    NETDSD_MEMBER(smoothed_I_ref_rsd, UNIT_none, "its relative standard deviation"));
NETDSD_OFFSET(NET_PSAP_Instant, I_reference, 52);
NETDSD_OFFSET(NET_PSAP_Instant, bapG_avg_avg, 72);
NETDSD_OFFSET(NET_PSAP_Instant, smoothed_I_ref_rsd, 128);
#define NET_CHANGING_FILTER \
    NETDSD_MEMBER(changing_filter, "the filter is being changed").values(NET_PSAP_FILTER)
NETDSD_RECORD(NET_PSAP_FilterStatus, 1, NET_CHANGING_FILTER);
NET_COMMS_RECORD(NET_PSAP_Status);
NETDSD_RECORD(NET_PSAP3_Avg, 56,
    NETDSD_TIME(start_time, "begin of the interval"),
    NETDSD_MEMBER(bap, UNIT_per_m, "absorption coefficient").each(NET_COLOURS),
    NETDSD_MEMBER(tr, UNIT_none, "filter transmittance").each(NET_COLOURS));
NETDSD_OFFSET(NET_PSAP3_Avg, tr, 32);
NETDSD_RECORD(NET_PSAP3_Instant, 232,
    NETDSD_TIME(start_time, "time of the reading"),
    NETDSD_MEMBER(bap, UNIT_per_m, "absorption coefficient as the instrument reports it").each(NET_COLOURS),
    NETDSD_MEMBER(bap_I, UNIT_per_m, "absorption coefficient from the intensities").each(NET_COLOURS),
    NETDSD_MEMBER(tr, UNIT_none, "filter transmittance since the filter was new").each(NET_COLOURS),
    NETDSD_MEMBER(Q, UNIT_slpm, "sample flow"),
    NETDSD_MEMBER(I_sample, UNIT_counts, "sample detector").each(NET_COLOURS),
    NETDSD_MEMBER(I_reference, UNIT_counts, "reference detector").each(NET_COLOURS),
    NETDSD_MEMBER(I_sam_rsd, UNIT_none, "relative standard deviation of I_sample").each(NET_COLOURS),
    NETDSD_MEMBER(I_ref_rsd, UNIT_none, "relative standard deviation of I_reference").each(NET_COLOURS),
    NETDSD_MEMBER(I, UNIT_none, "normalised intensity").each(NET_COLOURS),
    NETDSD_MEMBER(dI, UNIT_none, "its change since the last reading").each(NET_COLOURS));
NETDSD_OFFSET(NET_PSAP3_Instant, Q, 80);
NETDSD_OFFSET(NET_PSAP3_Instant, I_sam_rsd, 136);
NETDSD_OFFSET(NET_PSAP3_Instant, dI, 208);
NETDSD_RECORD(NET_PSAP3_FilterStatus, 1, NET_CHANGING_FILTER);
#undef NET_CHANGING_FILTER
NET_COMMS_RECORD(NET_PSAP3_Status);
