// Wire records of the cloud condensation nuclei counter. Numbers in cm-3, supersaturations in percent,
// temperatures in degrees Celsius, flows in cm3 per minute, pressures in hPa, laser current in mA.
#pragma once

#include "libvesk/messages/netdsd.h"

inline constexpr std::size_t NET_CCN_BINS = 21;

// Bits of stable_flag: what is not stable.
inline constexpr BYTE NET_CCN_UNSTABLE_REPORTED = 1;  // as the instrument says
inline constexpr BYTE NET_CCN_UNSTABLE_CALC = 2;      // as calculated from its temperatures

#pragma pack(push, 4)
struct NET_CCN_Avg {
    FTIME start_time;
    double dN[NET_CCN_BINS];
    double cnc;         // activated particles
    double cnc_stable;  // those counted while the column was stable
    std::int32_t bin_number;
    double ss_setting;
    BYTE stable_flag;
    WORD alarm_bits;
    double T1, T2, T3;  // stages of the column, top to bottom
    double T_sample, T_inlet, T_OPC, T_nafion;
    double Q_sample, Q_sheath;
    double P_sample;
    double I_laser;
    double V_fsm;  // first stage monitor
    double T_gradient;
    double V_prop_valve;
    double dT_T3_T1_stddev;
};

struct NET_CCN_Instant {
    FTIME start_time;
    NET_CCN_Avg running;
    double dN[NET_CCN_BINS];
    double cnc;
    std::int32_t bin_number;
    BYTE stable_flag;
    WORD alarm_bits;
    double ss_setting;
    double T1, T2, T3;
    double T_sample, T_inlet, T_OPC, T_nafion;
    double Q_sample, Q_sheath;
    double P_sample;
    double I_laser;
    double V_fsm;
    double T_gradient;
    double V_prop_valve;
};

// Set points of the temperature difference along the column.
struct NET_CCN_Scanning {
    double last;  // in force
    FTIME time_last;
    double next;
    FTIME time_next;
    BOOL enabled;  // the set point moves on by itself
};

struct NET_CCN_ScanningControl {
    double sp;        // new set point; missing: unchanged
    BOOL enable;      // scanning
    BOOL set_enable;  // whether `enable` counts
};

struct NET_CCN_StartCalibration {
    std::int32_t cycles;
};

// What the instrument's model of its column says.
struct NET_CCN_DMTModelResults {
    FTIME start_time;
    double ss_calc;
    double Q_sample, Q_sheath;
    double P;
    double T_inlet, T_cold, T_hot;
    double Q_tot, Q_sh_aer;
};

struct NET_CCN_Status {
    BOOL have_comms;
    BOOL in_calibration;
};
#pragma pack(pop)

NETDSD_RECORD(NET_CCN_Avg, 328, NETDSD_TIME(start_time), NETDSD_MEMBER(dN), NETDSD_MEMBER(cnc),
              NETDSD_MEMBER(cnc_stable), NETDSD_MEMBER(bin_number), NETDSD_MEMBER(ss_setting),
              NETDSD_MEMBER(stable_flag), NETDSD_MEMBER(alarm_bits), NETDSD_MEMBER(T1), NETDSD_MEMBER(T2),
              NETDSD_MEMBER(T3), NETDSD_MEMBER(T_sample), NETDSD_MEMBER(T_inlet), NETDSD_MEMBER(T_OPC),
              NETDSD_MEMBER(T_nafion), NETDSD_MEMBER(Q_sample), NETDSD_MEMBER(Q_sheath),
              NETDSD_MEMBER(P_sample), NETDSD_MEMBER(I_laser), NETDSD_MEMBER(V_fsm),
              NETDSD_MEMBER(T_gradient), NETDSD_MEMBER(V_prop_valve), NETDSD_MEMBER(dT_T3_T1_stddev));
NETDSD_OFFSET(NET_CCN_Avg, alarm_bits, 206);
NETDSD_OFFSET(NET_CCN_Avg, T1, 208);
NETDSD_RECORD(NET_CCN_Instant, 640, NETDSD_TIME(start_time), NETDSD_MEMBER(running), NETDSD_MEMBER(dN),
              NETDSD_MEMBER(cnc), NETDSD_MEMBER(bin_number), NETDSD_MEMBER(stable_flag),
              NETDSD_MEMBER(alarm_bits), NETDSD_MEMBER(ss_setting), NETDSD_MEMBER(T1), NETDSD_MEMBER(T2),
              NETDSD_MEMBER(T3), NETDSD_MEMBER(T_sample), NETDSD_MEMBER(T_inlet), NETDSD_MEMBER(T_OPC),
              NETDSD_MEMBER(T_nafion), NETDSD_MEMBER(Q_sample), NETDSD_MEMBER(Q_sheath),
              NETDSD_MEMBER(P_sample), NETDSD_MEMBER(I_laser), NETDSD_MEMBER(V_fsm),
              NETDSD_MEMBER(T_gradient), NETDSD_MEMBER(V_prop_valve));
NETDSD_OFFSET(NET_CCN_Instant, alarm_bits, 518);
NETDSD_OFFSET(NET_CCN_Instant, ss_setting, 520);
NETDSD_RECORD(NET_CCN_Scanning, 36, NETDSD_MEMBER(last), NETDSD_TIME(time_last), NETDSD_MEMBER(next),
              NETDSD_TIME(time_next), NETDSD_MEMBER(enabled));
NETDSD_RECORD(NET_CCN_ScanningControl, 12, NETDSD_MEMBER(sp), NETDSD_MEMBER(enable),
              NETDSD_MEMBER(set_enable));
NETDSD_RECORD(NET_CCN_StartCalibration, 4, NETDSD_MEMBER(cycles));
NETDSD_RECORD(NET_CCN_DMTModelResults, 80, NETDSD_TIME(start_time), NETDSD_MEMBER(ss_calc),
              NETDSD_MEMBER(Q_sample), NETDSD_MEMBER(Q_sheath), NETDSD_MEMBER(P), NETDSD_MEMBER(T_inlet),
              NETDSD_MEMBER(T_cold), NETDSD_MEMBER(T_hot), NETDSD_MEMBER(Q_tot), NETDSD_MEMBER(Q_sh_aer));
NETDSD_RECORD(NET_CCN_Status, 2, NETDSD_MEMBER(have_comms), NETDSD_MEMBER(in_calibration));
