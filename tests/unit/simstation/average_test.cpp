// Averages against values worked out by hand.
#include "simstation/physics/average.h"

#include <gtest/gtest.h>

#include <cmath>

#include "libvesk/messages/records/cpc.h"

namespace {

TEST(Stats, MeanAndSampleDeviationOfKnownValues) {
    SIM_stats stats;
    EXPECT_EQ(stats.mean(), VESK_MISSING);
    for (const double v : {2.0, 4.0, VESK_MISSING, 4.0, 4.0, 5.0, 5.0, 7.0, 9.0})
        stats.add(v);
    EXPECT_EQ(stats.count(), 8);
    EXPECT_DOUBLE_EQ(stats.mean(), 5);
    EXPECT_DOUBLE_EQ(stats.stddev(), std::sqrt(32.0 / 7));
    stats.reset();
    stats.add(3);
    EXPECT_EQ(stats.stddev(), VESK_MISSING);
    stats.reset();
    for (const double v : {1e9 + 4, 1e9 + 7, 1e9 + 13, 1e9 + 16})
        stats.add(v);
    EXPECT_DOUBLE_EQ(stats.stddev(), std::sqrt(30.0)) << "small deviations of large values";
}

TEST(Running, ForgetsWhatIsOlderThanItsWindow) {
    SIM_running running(3);
    EXPECT_EQ(running.start(), VESK_NO_TIME);
    running.add(100, 1);
    running.add(101, 2);
    running.add(102, 6);
    EXPECT_DOUBLE_EQ(running.mean(), 3);
    running.add(103, 10);
    EXPECT_EQ(running.start(), 101);
    EXPECT_DOUBLE_EQ(running.mean(), 6);
    EXPECT_DOUBLE_EQ(running.stddev(), 4);
    running.add(200, 5);  // after a loss of communications
    EXPECT_DOUBLE_EQ(running.mean(), 5);
    EXPECT_EQ(running.start(), 200);
}

// A record with times, doubles, a nested record twice over and an integer.
NET_CPC_BMI1710_Instant record(FTIME time, double n, double n_running, std::int32_t fills) {
    auto r = NETDSD_default<NET_CPC_BMI1710_Instant>();
    r.start_time = time;
    r.in.start_time = time;
    r.in.N = n;
    r.ra.N = n_running;
    r.fill_count = fills;
    return r;
}

TEST(RecordBlock, AveragesEveryDoubleWhereverItStands) {
    SIM_record_block<NET_CPC_BMI1710_Instant> block;
    block.add(record(100, 10, 1, 3));
    block.add(record(101, 20, VESK_MISSING, 4));
    block.add(record(102, 60, 2, 5));
    const NET_CPC_BMI1710_Instant mean = block.mean();
    EXPECT_EQ(+mean.start_time, 100);
    EXPECT_EQ(+mean.in.start_time, 100);
    EXPECT_DOUBLE_EQ(+mean.in.N, 30);
    EXPECT_DOUBLE_EQ(+mean.ra.N, 1.5) << "the missing one does not count";
    EXPECT_EQ(+mean.in.T1, VESK_MISSING) << "nothing to average";
    EXPECT_EQ(mean.fill_count, 5);

    block.reset();
    EXPECT_EQ(block.count(), 0);
    const NET_CPC_BMI1710_Instant none = block.mean();
    EXPECT_EQ(+none.in.N, VESK_MISSING);
    EXPECT_EQ(+none.start_time, VESK_NO_TIME);
}

}  // namespace
