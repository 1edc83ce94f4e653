// Wire records of the software PID controllers: what a loop reads and puts out, its parameters with their
// limits, and its automatic tuning. A missing value in any double means that there is none; limits that are
// both missing leave their term unlimited.
#pragma once

#include <iterator>

#include "libvesk/messages/netdsd.h"

// The phases of a tuning sequence.
enum NET_GENERICPID_TuningState : std::uint32_t {
    GENERICPID_NOTTUNING,
    GENERICPID_WAIT_BASE_STABLITY,
    GENERICPID_WAIT_HIGH_STABLITY,
    GENERICPID_DOWNWARD_PRIME,
    GENERICPID_UPWARD_PRIME,
    GENERICPID_DOWNWARD,
    GENERICPID_UPWARD,
};
inline constexpr NETDSD_meaning g_genericpidstatuscodes[] = {
    {GENERICPID_NOTTUNING, "Not Tuning", NETDSD_STATE},
    {GENERICPID_WAIT_BASE_STABLITY, "Waiting baseline stablity", NETDSD_NOTE},
    {GENERICPID_WAIT_HIGH_STABLITY, "Waiting high value stablity", NETDSD_NOTE},
    {GENERICPID_DOWNWARD_PRIME, "Priming downward sweep", NETDSD_NOTE},
    {GENERICPID_UPWARD_PRIME, "Priming upward sweep", NETDSD_NOTE},
    {GENERICPID_DOWNWARD, "Downward sweep", NETDSD_NOTE},
    {GENERICPID_UPWARD, "Upward sweep", NETDSD_NOTE},
};
static_assert(std::size(g_genericpidstatuscodes) == GENERICPID_UPWARD + 1);

// The rule that makes parameters from the measured oscillation.
enum NET_GENERICPID_TuningParamGenType : std::uint32_t {
    GENERICPID_TUNE_TLC_PID,
    GENERICPID_TUNE_TLC_PI,
    GENERICPID_TUNE_ZN_PID,
    GENERICPID_TUNE_ZN_PI,
    GENERICPID_TUNE_ZN_P,
    GENERICPID_TUNE_COUNT,
};
inline constexpr NETDSD_meaning g_genericpidtuningtypes[] = {
    {GENERICPID_TUNE_TLC_PID, "Tyreus-Luyben PID", NETDSD_STATE},
    {GENERICPID_TUNE_TLC_PI, "Tyreus-Luyben PI", NETDSD_STATE},
    {GENERICPID_TUNE_ZN_PID, "Ziegler-Nichols PID", NETDSD_STATE},
    {GENERICPID_TUNE_ZN_PI, "Ziegler-Nichols PI", NETDSD_STATE},
    {GENERICPID_TUNE_ZN_P, "Ziegler-Nichols P", NETDSD_STATE},
};
static_assert(std::size(g_genericpidtuningtypes) == GENERICPID_TUNE_COUNT);

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
    double pv;
    double out;
    double i_val;
    double d_val;
};

struct NET_GENERICPID_ControllerParams {
    NET_GENERICPID_Params params;
    NET_GENERICPID_Params min;
    NET_GENERICPID_Params max;
};

struct NET_GENERICPID_Info {
    STRING<32> chan_pv;
    STRING<32> chan_out;
    NET_GENERICPID_ControllerParams params;
};

struct NET_GENERICPID_TuningResults {
    NET_GENERICPID_Params params;
    NET_GENERICPID_Params stddev;
};

struct NET_GENERICPID_TuningInstant {
    double pv_stddev;
    NET_GENERICPID_TuningResults current;
    NET_GENERICPID_Params last;
};

struct NET_GENERICPID_TuningSatus {
    std::uint32_t state;  // NET_GENERICPID_TuningState; any number may come from the wire
    std::uint32_t run;
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

NETDSD_RECORD(NET_GENERICPID_Setpoint, 8, NETDSD_MEMBER(sp, UNIT_varies, "set point"));
NETDSD_RECORD(NET_GENERICPID_Params, 24,
    NETDSD_MEMBER(p, UNIT_varies, "proportional term"),
    NETDSD_MEMBER(i, UNIT_varies, "integral term"),
    NETDSD_MEMBER(d, UNIT_varies, "derivative term"));
NETDSD_RECORD(NET_GENERICPID_Instant, 40,
    NETDSD_TIME(start_time, "time of the reading"),
    NETDSD_MEMBER(pv, UNIT_varies, "process value"),
    NETDSD_MEMBER(out, UNIT_varies, "controller output"),
    NETDSD_MEMBER(i_val, UNIT_varies, "value of the integral term"),
    NETDSD_MEMBER(d_val, UNIT_varies, "value of the derivative term"));
NETDSD_RECORD(NET_GENERICPID_ControllerParams, 72,
    NETDSD_MEMBER(params, "parameters"),
    NETDSD_MEMBER(min, "lower limits of the terms, missing for none"),
    NETDSD_MEMBER(max, "upper limits of the terms, missing for none"));
NETDSD_RECORD(NET_GENERICPID_Info, 136,
    NETDSD_MEMBER(chan_pv, "name of the process value's channel"),
    NETDSD_MEMBER(chan_out, "name of the output's channel"),
    NETDSD_MEMBER(params, "parameters and their limits"));
NETDSD_RECORD(NET_GENERICPID_TuningResults, 48,
    NETDSD_MEMBER(params, "parameters found"),
    NETDSD_MEMBER(stddev, "their standard deviations"));
NETDSD_RECORD(NET_GENERICPID_TuningInstant, 80,
    NETDSD_MEMBER(pv_stddev, UNIT_varies, "standard deviation of the process value"),
    NETDSD_MEMBER(current, "results of the runs so far"),
    NETDSD_MEMBER(last, "parameters of the last run alone"));
NETDSD_RECORD(NET_GENERICPID_TuningSatus, 12,
    NETDSD_MEMBER(state, UNIT_none, "what the tuning sequence is doing").values(g_genericpidstatuscodes),
    NETDSD_MEMBER(run, UNIT_none, "run, from 0"),
    NETDSD_MEMBER(run_max, UNIT_none, "number of runs"));
NETDSD_RECORD(NET_GENERICPID_TuningRequest, 40,
    NETDSD_MEMBER(stablity_samples, UNIT_none, "samples of the process value for stability").range(1, 999999),
    NETDSD_MEMBER(stablity_stddev, UNIT_varies, "standard deviation below which it is stable"),
    NETDSD_MEMBER(num_runs, UNIT_none, "number of runs").range(1, 9999),
    NETDSD_MEMBER(num_prime, UNIT_none, "number of priming cycles").range(1, 9999),
    NETDSD_MEMBER(start_out, UNIT_varies, "output to begin from"),
    NETDSD_MEMBER(output_amp, UNIT_varies, "amplitude of the output's oscillation"),
    NETDSD_MEMBER(param_gen, UNIT_none, "rule that makes parameters of it").values(g_genericpidtuningtypes));
