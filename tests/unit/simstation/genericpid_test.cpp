// The simulated PID controller: its process and its control loop, the relay experiment and its rules, and the
// commands with what it answers.
#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <string>

#include "simstation/physics/pid.h"
#include "simstation/physics/pid_tune.h"
#include "support/sim_probe.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr double NONE = VESK_MISSING;
constexpr double NAN_VALUE = std::numeric_limits<double>::quiet_NaN();

// ---- process and controller

TEST(Pid, EachTermDoesItsPart) {
    SIM_pid pid(-100, 100);
    pid.params = {2, 0, 0};
    EXPECT_EQ(pid.step(10, 4, 1), 12);
    pid.params = {0, 0.5, 0};
    EXPECT_EQ(pid.step(10, 4, 2), 6);
    EXPECT_EQ(pid.step(10, 4, 2), 12);
    EXPECT_EQ(pid.i_val(), 12);
    pid.params = {NONE, NONE, NONE};
    EXPECT_EQ(pid.step(10, 4, 1), 12) << "the integral stays when parameters change";
    pid.reset();
    pid.params = {0, 0, 3};
    pid.step(10, 4, 1);
    EXPECT_EQ(pid.d_val(), 0) << "one value has no rate";
    EXPECT_LT(pid.step(10, 5, 1), 0) << "it brakes a rising value";
    const double braking = pid.d_val();
    EXPECT_LT(std::fabs(pid.step(1000, 5, 1)), std::fabs(braking)) << "a new set point is no rate";
}

TEST(Pid, DoesNotWindUpAtItsLimits) {
    SIM_pid pid(0, 10);
    pid.params = {1, 0.1, 0};
    for (int t = 0; t < 10000; ++t)
        EXPECT_EQ(pid.step(100, 0, 1), 10);
    EXPECT_EQ(pid.step(100, 100.5, 1), 0) << "back from the limit at once";
    pid.resume(4, 50, 48);
    EXPECT_NEAR(pid.step(50, 48, 1), 4.2, 1e-9) << "goes on from what others put out";
}

// ---- the rules

TEST(TuningRule, MakesParametersOfUltimateGainAndPeriod) {
    struct rule_case {
        std::uint32_t rule;
        double gain, integral_time, derivative_time;  // for Ku = 2 and Pu = 30 s; 0: none
    };
    for (const rule_case& c :
         {rule_case{GENERICPID_TUNE_TLC_PID, 0.90909, 66, 4.7619},
          rule_case{GENERICPID_TUNE_TLC_PI, 0.625, 66, 0}, rule_case{GENERICPID_TUNE_ZN_PID, 1.2, 15, 3.75},
          rule_case{GENERICPID_TUNE_ZN_PI, 0.9, 25, 0}, rule_case{GENERICPID_TUNE_ZN_P, 1.0, 0, 0}}) {
        const NET_GENERICPID_Params got = SIM_tuning_rule(c.rule, {2, 30});
        EXPECT_NEAR(+got.p, c.gain, 1e-5) << c.rule;
        EXPECT_NEAR(+got.i, c.integral_time > 0 ? c.gain / c.integral_time : 0, 1e-6) << c.rule;
        EXPECT_NEAR(+got.d, c.gain * c.derivative_time, 1e-4) << c.rule;
    }
}

// ---- the experiment

constexpr NET_GENERICPID_TuningRequest REQUEST{120, 0.0144, 8, 2, 2.875, 0.72, GENERICPID_TUNE_ZN_P};

// With these a proportional loop around the line heater would just oscillate: dead time (and half a second
// that steps of a second lose) and lag turn the phase by half a turn, atan(40 w) + 6.5 w = pi.
constexpr SIM_ultimate TRUTH{1.289, 24.49};

// Runs the experiment on the line heater; how many seconds it took, at most 5000.
int run_tuning(SIM_pid_tune& tune, double gain = 8, double noise = 0) {
    SIM_plant plant(gain, 6, 40, 22);
    SIM_noise random(1, "tuning");
    double out = tune.start_out();
    int t = 0;
    for (; t < 5000 && !tune.over(); ++t)
        out = tune.step(plant.step(out, 0, 1) + random.normal(0, noise), 1);
    return t;
}

TEST(PidTune, FindsTheUltimateGainAndPeriodOfTheProcess) {
    NET_GENERICPID_TuningRequest request = REQUEST;
    request.param_gen = GENERICPID_TUNE_TLC_PI;
    SIM_pid_tune tune(request);
    EXPECT_LT(run_tuning(tune, 8, 0.003), 1500);
    EXPECT_EQ(tune.failure(), nullptr);
    const auto found = tune.results();
    EXPECT_NEAR(found.params.p * 3.2, TRUTH.gain, 0.25 * TRUTH.gain) << "within the method's own error";
    EXPECT_NEAR(found.params.p / found.params.i / 2.2, TRUTH.period, 0.1 * TRUTH.period);
    EXPECT_LT(found.stddev.p / found.params.p, 0.02) << "the runs agree";
}

TEST(PidTune, GoesThroughItsStatesInOrder) {
    NET_GENERICPID_TuningRequest request = REQUEST;
    request.num_runs = 2;
    request.num_prime = 1;
    SIM_pid_tune tune(request);
    SIM_plant plant(8, 6, 40, 22);
    std::vector<std::string> seen;
    double out = request.start_out;
    while (!tune.over() && seen.size() < 20) {
        const auto s = tune.status();
        const std::string now = std::to_string(+s.state) + " at " + std::to_string(+out) + " run " +
                                std::to_string(s.run + 1) + "/" + std::to_string(+s.run_max);
        if (seen.empty() || seen.back() != now) seen.push_back(now);
        out = tune.step(plant.step(out, 0, 1), 1);
    }
    EXPECT_THAT(seen, ElementsAre("1 at 2.875000 run 1/2", "2 at 3.595000 run 1/2", "3 at 2.155000 run 1/1",
                                  "4 at 3.595000 run 1/1", "5 at 2.155000 run 1/2", "6 at 3.595000 run 1/2",
                                  "5 at 2.155000 run 2/2", "6 at 3.595000 run 2/2"));
    EXPECT_EQ(out, +request.start_out);
}

TEST(PidTune, WaitsForARestlessValueAndGivesUpWhenItDoesNotFollow) {
    SIM_pid_tune restless(REQUEST);
    EXPECT_EQ(run_tuning(restless, 8, 0.5), 5000);
    EXPECT_EQ(restless.status().state, GENERICPID_WAIT_BASE_STABLITY);
    SIM_pid_tune stuck(REQUEST);
    run_tuning(stuck, 0, 0.003);
    EXPECT_STREQ(stuck.failure(), "the process value does not follow the output");
    EXPECT_TRUE(VESK_is_missing(stuck.results().params.p + 0));
}

TEST(PidTune, RefusesWhatCannotBeDone) {
    EXPECT_EQ(SIM_pid_tune::fault(REQUEST, 0, 10), nullptr);
    const auto wrong = [](auto change) {
        NET_GENERICPID_TuningRequest r = REQUEST;
        change(r);
        return SIM_pid_tune::fault(r, 0, 10) != nullptr;
    };
    EXPECT_TRUE(wrong([](auto& r) { r.num_runs = 0; }));
    EXPECT_TRUE(wrong([](auto& r) { r.stablity_samples = 0; }));
    EXPECT_TRUE(wrong([](auto& r) { r.stablity_stddev = 0; }));
    EXPECT_TRUE(wrong([](auto& r) { r.output_amp = 0; }));
    EXPECT_TRUE(wrong([](auto& r) { r.start_out = NAN_VALUE; }));
    EXPECT_TRUE(wrong([](auto& r) { r.output_amp = 2.9; })) << "would go below 0";
    EXPECT_TRUE(wrong([](auto& r) { r.start_out = 9.5; })) << "would go above 10";
    EXPECT_TRUE(wrong([](auto& r) { r.param_gen = 5; }));
}

// ---- the instrument

NET_GENERICPID_Instant now(const SimProbe& probe) {
    return probe.last<MSG_GENERICPID_INSTANT>();
}

std::uint32_t state(const SimProbe& probe) {
    return probe.last<MSG_GENERICPID_TUNING_STATUS>().state;
}

TEST(GenericPid, FollowsItsSetPointAgainstALoadAndTunesWithoutAJump) {
    SimProbe probe("genericpid");
    EXPECT_TRUE(probe.command(MSG_GENERICPID_SET, NET_GENERICPID_Setpoint{40}));
    EXPECT_FALSE(probe.set("load", "heavy"));
    EXPECT_TRUE(probe.set("load", "-5"));
    probe.run(2400);
    EXPECT_NEAR(+now(probe).pv, 40, 1);
    EXPECT_GT(+now(probe).i_val, 1);
    const double out = now(probe).out;
    EXPECT_TRUE(probe.command(
        MSG_GENERICPID_TUNING_START,
        NET_GENERICPID_TuningRequest{120, 0.05, 8, 2, out, 0.25 * out, GENERICPID_TUNE_TLC_PID}));
    probe.run(3000);
    ASSERT_EQ(state(probe), GENERICPID_NOTTUNING);
    EXPECT_GT(+probe.last<MSG_GENERICPID_TUNING_RESULTS>().params.p, 0);
    EXPECT_EQ(+probe.last<MSG_GENERICPID_INFO>().params.params.p, 1) << "applied by the operator only";
    EXPECT_NEAR(+now(probe).out, out, 1);
    EXPECT_TRUE(probe.command(MSG_GENERICPID_RESET));
    probe.run(1);
    EXPECT_LT(std::fabs(now(probe).i_val), 0.2) << "its terms are forgotten";
}

TEST(GenericPid, WhatTuningFoundMakesTheLoopBetter) {
    SimProbe probe("genericpid");
    probe.run(1200);
    const auto overshoot = [&](double from, double to) {
        probe.command(MSG_GENERICPID_SET, NET_GENERICPID_Setpoint{to});
        probe.forget();
        probe.run(400);
        double beyond = 0;
        for (const auto& r : probe.records<MSG_GENERICPID_INSTANT>())
            beyond = std::max(beyond, to > from ? r.pv - to : to - r.pv);
        return beyond;
    };
    const double before = overshoot(45, 50);
    const double out = now(probe).out;
    probe.command(MSG_GENERICPID_TUNING_START,
                  NET_GENERICPID_TuningRequest{120, 0.05, 8, 2, out, 0.25 * out, GENERICPID_TUNE_TLC_PID});
    probe.run(3000);
    const auto found = probe.last<MSG_GENERICPID_TUNING_RESULTS>().params;
    const NET_GENERICPID_Params none{NONE, NONE, NONE};
    EXPECT_TRUE(probe.command(MSG_GENERICPID_SET_PARMS, NET_GENERICPID_ControllerParams{found, none, none}));
    probe.run(400);
    EXPECT_GT(before, 1);
    EXPECT_LT(overshoot(50, 45), before / 4) << "beyond the set point, C";
}

TEST(GenericPid, TuningIsStoppedAtAnyTime) {
    SimProbe probe("genericpid");
    probe.run(1200);
    const NET_GENERICPID_TuningRequest request{60, 0.05, 8, 2, 3, 0.5, GENERICPID_TUNE_ZN_PI};
    for (const std::uint32_t stage : {1u, 2u, 3u, 4u, 5u, 6u}) {
        EXPECT_TRUE(probe.command(MSG_GENERICPID_TUNING_START, request));
        EXPECT_FALSE(probe.command(MSG_GENERICPID_TUNING_START, request)) << "one at a time";
        for (int t = 0; t < 2000 && state(probe) != stage; ++t)
            probe.run(1);
        EXPECT_EQ(state(probe), stage);
        EXPECT_TRUE(probe.command(stage % 2 == 1 ? MSG_GENERICPID_TUNING_STOP : MSG_GENERICPID_RESET));
        EXPECT_EQ(state(probe), GENERICPID_NOTTUNING);
    }
    EXPECT_TRUE(VESK_is_missing(+probe.last<MSG_GENERICPID_TUNING_RESULTS>().params.p));

    NET_GENERICPID_TuningRequest wrong = request;
    wrong.output_amp = 5;
    EXPECT_FALSE(probe.command(MSG_GENERICPID_TUNING_START, wrong));
    EXPECT_THAT(std::string(probe.last<MSG_LOG_MONITOR>().msg), HasSubstr("output beyond its range"));
    EXPECT_EQ(state(probe), GENERICPID_NOTTUNING);
}

TEST(GenericPid, ParametersStayWithinTheirLimits) {
    SimProbe probe("genericpid");
    const auto set = [&](NET_GENERICPID_Params v, NET_GENERICPID_Params min, NET_GENERICPID_Params max) {
        return probe.command(MSG_GENERICPID_SET_PARMS, NET_GENERICPID_ControllerParams{v, min, max});
    };
    EXPECT_TRUE(set({5, 0.001, 0.3}, {0.1, 0.01, NONE}, {2, NONE, NONE}));
    const auto info = probe.last<MSG_GENERICPID_INFO>();
    EXPECT_EQ(+info.params.params.p, 2);
    EXPECT_EQ(+info.params.params.i, 0.01);
    EXPECT_EQ(+info.params.params.d, 0.3);
    probe.forget();
    EXPECT_FALSE(set({NAN_VALUE, 0, 0}, {NONE, NONE, NONE}, {NONE, NONE, NONE}));
    EXPECT_FALSE(set({1, NONE, 0}, {NONE, NONE, NONE}, {NONE, NONE, NONE}));
    EXPECT_FALSE(set({1, 0, 0}, {2, NONE, NONE}, {1, NONE, NONE}));
    EXPECT_FALSE(probe.command(MSG_GENERICPID_SET));
    EXPECT_EQ(probe.count(MSG_GENERICPID_INFO) + probe.count(MSG_GENERICPID_SETPOINT), 0u);
}

}  // namespace
