// The particle counters: what each kind sends, in the ranges that an operator expects.
#include <gtest/gtest.h>

#include <cmath>

#include "simstation/physics/average.h"
#include "support/sim_probe.h"

namespace {

constexpr int WARM = 900;  // seconds after which every counter is in order

// The average of a whole minute is that of the readings sent in it, and so is the running average; all
// counters tell the story of the same air.
template <NETMSG_type INSTANT, NETMSG_type AVERAGE>
void expect_averages_of_readings(const char* type) {
    SCOPED_TRACE(type);
    SimProbe probe(type);
    probe.run(WARM);
    while (std::fmod(probe.world.now + 1, 60) != 0)
        probe.run(1);
    probe.forget();
    probe.run(60);
    SIM_stats stats;
    for (const auto& r : probe.records<INSTANT>())
        stats.add(r.concentration);
    ASSERT_EQ(stats.count(), 60);
    expect_between(stats.mean() / probe.world.air.number(), 0.8, 1.1, "share of the air's particles");
    const auto avg = probe.last<AVERAGE>();
    EXPECT_EQ(+avg.start_time, probe.world.now - 59);
    EXPECT_DOUBLE_EQ(+avg.concentration, stats.mean());
    EXPECT_DOUBLE_EQ(+avg.stddev_concentration, stats.stddev());
    const auto running = probe.last<INSTANT>().running;
    EXPECT_DOUBLE_EQ(+running.concentration, stats.mean());
    EXPECT_EQ(+running.start_time, +avg.start_time);
}

TEST(Cpc, AveragesAreThoseOfTheReadingsSent) {
    expect_averages_of_readings<MSG_CPC_3010_INSTANT, MSG_CPC_3010_AVERAGE>("cpc_3010");
    expect_averages_of_readings<MSG_CPC_3022_INSTANT, MSG_CPC_3022_AVERAGE>("cpc_3022");
    expect_averages_of_readings<MSG_CPC_3703_INSTANT, MSG_CPC_3703_AVERAGE>("cpc_3703");
    expect_averages_of_readings<MSG_CPC_3775_INSTANT, MSG_CPC_3775_AVERAGE>("cpc_3775");
    expect_averages_of_readings<MSG_CPC_3781_INSTANT, MSG_CPC_3781_AVERAGE>("cpc_3781");
    expect_averages_of_readings<MSG_CPC_3783_INSTANT, MSG_CPC_3783_AVERAGE>("cpc_3783");
    expect_averages_of_readings<MSG_CPC_PULSE_INSTANT, MSG_CPC_PULSE_AVERAGE>("cpc_pulse");
}

TEST(Cpc, TheSettingsSeedIsAnotherDayAndItsBlocksHaveTheirLength) {
    SimProbe one("cpc_3703");
    SimProbe two("cpc_3703", {.settings = {.seed = 2, .average_seconds = 10}});
    one.run(60);
    two.run(60);
    EXPECT_NE(+one.last<MSG_CPC_3703_INSTANT>().running.concentration,
              +two.last<MSG_CPC_3703_INSTANT>().running.concentration);
    EXPECT_EQ(two.count(MSG_CPC_3703_AVERAGE), 6u);
}

TEST(Cpc, TheModel3010WarmsUpWithItsWarningAndShowsFaultsOfScenarios) {
    SimProbe probe("cpc_3010");
    probe.run(1);
    expect_between(probe.last<MSG_CPC_3010_INSTANT>().concentration, 0, 50, "a cold counter's concentration");
    EXPECT_EQ(probe.last<MSG_CPC_3010_STATUS>().flags & 1, 1);
    probe.run(WARM);
    const auto warm = probe.last<MSG_CPC_3010_INSTANT>();
    expect_between(warm.T_saturator - warm.T_condenser, 16.5, 17.5, "delta T");
    EXPECT_EQ(probe.last<MSG_CPC_3010_STATUS>().flags & 1, 0);
    ASSERT_TRUE(probe.set("dip", "on"));
    EXPECT_TRUE(probe.last<MSG_CPC_3010_STATUS>().dip_error);
    EXPECT_FALSE(probe.set("liquid", "1.5"));
}

// Butanol and water run low by themselves within a day, and are filled up again.
TEST(Cpc, LiquidRunsLowNowAndThen) {
    SimProbe probe("cpc_3783");
    probe.run(86400);
    int warnings = 0;
    for (const auto& status : probe.records<MSG_CPC_3783_STATUS>())
        warnings += !status.full;
    expect_between(warnings, 2, 6, "warnings of a day");
    SimProbe butanol("cpc_bmi1710");
    butanol.run(30000);
    EXPECT_GE(butanol.last<MSG_CPC_BMI1710_INSTANT>().fill_count, 2);
}

}  // namespace
