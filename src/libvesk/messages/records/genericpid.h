// Wire records of the software PID controllers: what a loop reads and puts out, its parameters with their
// limits, and its automatic tuning. A missing value in any double means that there is none; limits that are
// both missing leave their term unlimited.
#pragma once

#include "libvesk/messages/netdsd.h"

// What a tuning sequence is doing.
enum NET_GENERICPID_TuningState : std::uint32_t {
    GENERICPID_NOTTUNING,
    GENERICPID_WAIT_BASE_STABLITY,
    GENERICPID_WAIT_HIGH_STABLITY,
    GENERICPID_DOWNWARD_PRIME,
    GENERICPID_UPWARD_PRIME,
    GENERICPID_DOWNWARD,
    GENERICPID_UPWARD,
};

// The rule that makes parameters from the measured oscillation.
enum NET_GENERICPID_TuningParamGenType : std::uint32_t {
    GENERICPID_TUNE_TLC_PID,
    GENERICPID_TUNE_TLC_PI,
    GENERICPID_TUNE_ZN_PID,
    GENERICPID_TUNE_ZN_PI,
    GENERICPID_TUNE_ZN_P,
    GENERICPID_TUNE_COUNT,
};

#pragma pack(push, 4)
struct NET_GENERICPID_Setpoint {
    double sp;
};

struct NET_GENERICPID_Params {
    double p;
    double i;
    double d;
};

struct NET_GENERICPID_Instant {
    FTIME start_time;
    double pv;     // process value
    double out;    // controller output
    double i_val;  // integral term
    double d_val;  // derivative term
};

struct NET_GENERICPID_ControllerParams {
    NET_GENERICPID_Params params;
    NET_GENERICPID_Params min;
    NET_GENERICPID_Params max;
};

struct NET_GENERICPID_Info {
    STRING<32> chan_pv;   // name of the process value's channel
    STRING<32> chan_out;  // name of the output's channel
    NET_GENERICPID_ControllerParams params;
};

struct NET_GENERICPID_TuningResults {
    NET_GENERICPID_Params params;
    NET_GENERICPID_Params stddev;
};

struct NET_GENERICPID_TuningInstant {
    double pv_stddev;
    NET_GENERICPID_TuningResults current;  // of the runs so far
    NET_GENERICPID_Params last;            // of the last run alone
};

struct NET_GENERICPID_TuningSatus {
    std::uint32_t state;  // NET_GENERICPID_TuningState; any number may come from the wire
    std::uint32_t run;    // from 0
    std::uint32_t run_max;
};

struct NET_GENERICPID_TuningRequest {
    std::uint32_t stablity_samples;
    double stablity_stddev;
    std::uint32_t num_runs;
    std::uint32_t num_prime;
    double start_out;
    double output_amp;
    std::uint32_t param_gen;  // NET_GENERICPID_TuningParamGenType
};
#pragma pack(pop)

NETDSD_RECORD(NET_GENERICPID_Setpoint, 8, NETDSD_MEMBER(sp));
NETDSD_RECORD(NET_GENERICPID_Params, 24, NETDSD_MEMBER(p), NETDSD_MEMBER(i), NETDSD_MEMBER(d));
NETDSD_RECORD(NET_GENERICPID_Instant, 40, NETDSD_TIME(start_time), NETDSD_MEMBER(pv), NETDSD_MEMBER(out),
              NETDSD_MEMBER(i_val), NETDSD_MEMBER(d_val));
NETDSD_RECORD(NET_GENERICPID_ControllerParams, 72, NETDSD_MEMBER(params), NETDSD_MEMBER(min),
              NETDSD_MEMBER(max));
NETDSD_RECORD(NET_GENERICPID_Info, 136, NETDSD_MEMBER(chan_pv), NETDSD_MEMBER(chan_out),
              NETDSD_MEMBER(params));
NETDSD_RECORD(NET_GENERICPID_TuningResults, 48, NETDSD_MEMBER(params), NETDSD_MEMBER(stddev));
NETDSD_RECORD(NET_GENERICPID_TuningInstant, 80, NETDSD_MEMBER(pv_stddev), NETDSD_MEMBER(current),
              NETDSD_MEMBER(last));
NETDSD_RECORD(NET_GENERICPID_TuningSatus, 12, NETDSD_MEMBER(state), NETDSD_MEMBER(run),
              NETDSD_MEMBER(run_max));
NETDSD_RECORD(NET_GENERICPID_TuningRequest, 40, NETDSD_MEMBER(stablity_samples),
              NETDSD_MEMBER(stablity_stddev), NETDSD_MEMBER(num_runs), NETDSD_MEMBER(num_prime),
              NETDSD_MEMBER(start_out), NETDSD_MEMBER(output_amp), NETDSD_MEMBER(param_gen));
