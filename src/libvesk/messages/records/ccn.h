// Wire records of the cloud condensation nuclei counter.
#pragma once

#include "libvesk/messages/records/shared.h"

inline constexpr std::size_t NET_CCN_BINS = 21;

// Bits of stable_flag: what is not stable.
inline constexpr BYTE NET_CCN_UNSTABLE_REPORTED = 1;  // as the instrument says
inline constexpr BYTE NET_CCN_UNSTABLE_CALC = 2;      // as calculated from its temperatures
inline constexpr NETDSD_meaning NET_CCN_UNSTABLE[] = {
    {NET_CCN_UNSTABLE_REPORTED, "not stable as reported", NETDSD_NOTE},
    {NET_CCN_UNSTABLE_CALC, "not stable as calculated", NETDSD_NOTE},
};
inline constexpr NETDSD_meaning NET_CCN_CALIBRATION[] = {{TRUE, "RUNNING CALIBRATION", NETDSD_NOTE}};

#pragma pack(push, 4)
struct NET_CCN_Avg {
    FTIME start_time;
    double dN[NET_CCN_BINS];
    double cnc;
    double cnc_stable;
    std::int32_t bin_number;
    double ss_setting;
    BYTE stable_flag;
    WORD alarm_bits;
    double T1, T2, T3;
    double T_sample, T_inlet, T_OPC, T_nafion;
    double Q_sample, Q_sheath;
    double P_sample;
    double I_laser;
    double V_fsm;
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
    double last;
    FTIME time_last;
    double next;
    FTIME time_next;
    BOOL enabled;
};

struct NET_CCN_ScanningControl {
    double sp;
    BOOL enable;
    BOOL set_enable;
};

struct NET_CCN_StartCalibration {
    std::int32_t cycles;
};

// The results of the instrument's model of its column.
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

// Members that the averages and the readings have alike.
#define NET_CCN_ALARM_MEMBERS                                                                       \
    NETDSD_MEMBER(stable_flag, UNIT_bits, "where the column is not stable").bits(NET_CCN_UNSTABLE), \
        NETDSD_MEMBER(alarm_bits, UNIT_bits, "the instrument's alarms")
#define NET_CCN_HOUSEKEEPING_MEMBERS                                                                        \
    NETDSD_MEMBER(T1, UNIT_degC, "first stage of the column"),                                              \
        NETDSD_MEMBER(T2, UNIT_degC, "second stage of the column"),                                         \
        NETDSD_MEMBER(T3, UNIT_degC, "third stage of the column"),                                          \
        NETDSD_MEMBER(T_sample, UNIT_degC, "sample temperature"),                                           \
        NETDSD_MEMBER(T_inlet, UNIT_degC, "inlet temperature"),                                             \
        NETDSD_MEMBER(T_OPC, UNIT_degC, "temperature of the optical counter"),                              \
        NETDSD_MEMBER(T_nafion, UNIT_degC, "temperature of the humidifier"),                                \
        NETDSD_MEMBER(Q_sample, UNIT_ccm, "sample flow"), NETDSD_MEMBER(Q_sheath, UNIT_ccm, "sheath flow"), \
        NETDSD_MEMBER(P_sample, UNIT_hPa, "sample pressure"),                                               \
        NETDSD_MEMBER(I_laser, UNIT_mA, "laser current"),                                                   \
        NETDSD_MEMBER(V_fsm, UNIT_V, "first stage monitor"),                                                \
        NETDSD_MEMBER(T_gradient, UNIT_degC, "temperature gradient of the column"),                         \
        NETDSD_MEMBER(V_prop_valve, UNIT_V, "voltage of the proportional valve")

NETDSD_RECORD(NET_CCN_Avg, 328,
    NETDSD_TIME(start_time, "begin of the interval"),
    NETDSD_MEMBER(dN, UNIT_per_cm3, "number concentration by bin"),
    NETDSD_MEMBER(cnc, UNIT_per_cm3, "number concentration of activated particles"),
    NETDSD_MEMBER(cnc_stable, UNIT_per_cm3, "the same while the column was stable"),
    NETDSD_MEMBER(bin_number, UNIT_none, "bin from which particles count"),
    NETDSD_MEMBER(ss_setting, UNIT_percent, "supersaturation that is set"),
    NET_CCN_ALARM_MEMBERS,
    NET_CCN_HOUSEKEEPING_MEMBERS,
    NETDSD_MEMBER(dT_T3_T1_stddev, UNIT_degC, "standard deviation of T3 - T1"));
NETDSD_OFFSET(NET_CCN_Avg, alarm_bits, 206);
NETDSD_OFFSET(NET_CCN_Avg, T1, 208);
NETDSD_RECORD(NET_CCN_Instant, 640,
    NETDSD_TIME(start_time, "time of the reading"),
    NETDSD_MEMBER(running, "running averages"),
    NETDSD_MEMBER(dN, UNIT_per_cm3, "number concentration by bin"),
    NETDSD_MEMBER(cnc, UNIT_per_cm3, "number concentration of activated particles"),
    NETDSD_MEMBER(bin_number, UNIT_none, "bin from which particles count"),
    NET_CCN_ALARM_MEMBERS,
    NETDSD_MEMBER(ss_setting, UNIT_percent, "supersaturation that is set"),
    NET_CCN_HOUSEKEEPING_MEMBERS);
NETDSD_OFFSET(NET_CCN_Instant, alarm_bits, 518);
NETDSD_OFFSET(NET_CCN_Instant, ss_setting, 520);
#undef NET_CCN_ALARM_MEMBERS
#undef NET_CCN_HOUSEKEEPING_MEMBERS
NETDSD_RECORD(NET_CCN_Scanning, 36,
    NETDSD_MEMBER(last, UNIT_degC, "temperature difference in force"),
    NETDSD_TIME(time_last, "since when"),
    NETDSD_MEMBER(next, UNIT_degC, "next temperature difference"),
    NETDSD_TIME(time_next, "from when"),
    NETDSD_MEMBER(enabled, "the set point moves on by itself"));
NETDSD_RECORD(NET_CCN_ScanningControl, 12,
    NETDSD_MEMBER(sp, UNIT_degC, "new temperature difference, missing for unchanged").range(0, 99.99),
    NETDSD_MEMBER(enable, "whether the set point moves on by itself"),
    NETDSD_MEMBER(set_enable, "whether `enable` counts"));
NETDSD_RECORD(NET_CCN_StartCalibration, 4,
    NETDSD_MEMBER(cycles, UNIT_none, "cycles of the calibration scan").range(1, 999));
NETDSD_RECORD(NET_CCN_DMTModelResults, 80,
    NETDSD_TIME(start_time, "time of the calculation"),
    NETDSD_MEMBER(ss_calc, UNIT_percent, "supersaturation by the instrument's model of its column"),
    NETDSD_MEMBER(Q_sample, UNIT_ccm, "sample flow"),
    NETDSD_MEMBER(Q_sheath, UNIT_ccm, "sheath flow"),
    NETDSD_MEMBER(P, UNIT_hPa, "sample pressure"),
    NETDSD_MEMBER(T_inlet, UNIT_degC, "inlet temperature"),
    NETDSD_MEMBER(T_cold, UNIT_degC, "temperature of the cold end"),
    NETDSD_MEMBER(T_hot, UNIT_degC, "temperature of the hot end"),
    NETDSD_MEMBER(Q_tot, UNIT_ccm, "total flow"),
    NETDSD_MEMBER(Q_sh_aer, UNIT_none, "ratio of sheath to sample flow"));
NETDSD_RECORD(NET_CCN_Status, 2,
    NET_HAVE_COMMS,
    NETDSD_MEMBER(in_calibration, "a calibration scan runs").values(NET_CCN_CALIBRATION));
