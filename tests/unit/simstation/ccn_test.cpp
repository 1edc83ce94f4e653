// The simulated CCN counter: it steps through supersaturations, settles, and does what it is told.
#include <gtest/gtest.h>

#include <cmath>

#include "support/sim_probe.h"

namespace {

class SimCcn : public testing::Test {
  protected:
    [[nodiscard]] NET_CCN_Instant instant() const { return probe.last<MSG_CCN_INSTANT>(); }
    [[nodiscard]] NET_CCN_Scanning scanning() const { return probe.last<MSG_CCN_SCANNING>(); }
    [[nodiscard]] BOOL calibrating() const { return probe.last<MSG_CCN_STATUS>().in_calibration; }
    BOOL set_point(double sp) {
        return probe.command(MSG_CCN_SET_SCANNING, NET_CCN_ScanningControl{sp, TRUE, FALSE});
    }
    BOOL scan(BOOL enable) {
        return probe.command(MSG_CCN_SET_SCANNING, NET_CCN_ScanningControl{VESK_MISSING, enable, TRUE});
    }

    SimProbe probe{"ccn"};
};

TEST_F(SimCcn, TheColumnFollowsItsSetPointAndSaysWhenItIsThere) {
    probe.run(5);
    EXPECT_EQ(instant().stable_flag, NET_CCN_UNSTABLE_REPORTED | NET_CCN_UNSTABLE_CALC);
    EXPECT_TRUE(VESK_is_missing(instant().running.cnc_stable));
    probe.run(200);
    EXPECT_EQ(instant().stable_flag, 0);
    EXPECT_NEAR(instant().T3 - instant().T1, +scanning().last, 0.1);
    EXPECT_NEAR(+probe.last<MSG_CCN_DMTMODELRESULTS>().ss_calc, +instant().ss_setting, 0.02);
    const auto averages = probe.records<MSG_CCN_AVERAGE>();
    EXPECT_GT(+averages.front().dT_T3_T1_stddev, 0.3) << "the column settled in this minute";
    EXPECT_LT(+averages.back().dT_T3_T1_stddev, 0.05);
}

TEST_F(SimCcn, EachStepIsAnnouncedWithTheNextOneAndLastsAsLongAsAScenarioSays) {
    probe.run(5 * 300 + 10);
    const auto steps = probe.records<MSG_CCN_SCANNING>();
    ASSERT_EQ(steps.size(), 6u);
    for (std::size_t i = 1; i < steps.size(); ++i) {
        EXPECT_EQ(+steps[i].last, +steps[i - 1].next);
        EXPECT_EQ(+steps[i].time_last, +steps[i - 1].time_next);
    }
    EXPECT_EQ(+steps[5].last, +steps[0].last) << "and round again";
    EXPECT_FALSE(probe.set("step", "10"));
    EXPECT_TRUE(probe.set("step", "20"));
    probe.forget();
    probe.run(100);
    EXPECT_EQ(probe.count(MSG_CCN_SCANNING), 5u);
}

TEST_F(SimCcn, SetPointAndScanningAreSetAndEchoed) {
    EXPECT_TRUE(set_point(7.25));
    EXPECT_EQ(+scanning().last, 7.25);
    EXPECT_TRUE(scanning().enabled) << "as it was";
    EXPECT_TRUE(scan(FALSE));
    EXPECT_FALSE(scanning().enabled);
    probe.run(400);
    EXPECT_EQ(+scanning().last, 7.25) << "nothing moves it";
    EXPECT_TRUE(scan(TRUE));
    EXPECT_EQ(+scanning().time_next, probe.world.now + 300);
    probe.run(301);
    EXPECT_NE(+scanning().last, 7.25);
    probe.forget();
    EXPECT_FALSE(set_point(100));
    EXPECT_FALSE(set_point(std::nan("")));
    EXPECT_FALSE(probe.command(MSG_CCN_SET_SCANNING));
    EXPECT_EQ(probe.count(MSG_CCN_SCANNING), 0u);
}

TEST_F(SimCcn, CalibrationRunsItsCyclesOrIsStopped) {
    scan(FALSE);
    EXPECT_FALSE(probe.command(MSG_CCN_START_CALIBRATION, NET_CCN_StartCalibration{0}));
    EXPECT_TRUE(probe.command(MSG_CCN_START_CALIBRATION, NET_CCN_StartCalibration{2}));
    EXPECT_TRUE(calibrating());
    probe.forget();
    probe.run(2 * 5 * 60 - 1);
    EXPECT_EQ(probe.count(MSG_CCN_STATUS), 0u);
    probe.run(2);
    EXPECT_FALSE(calibrating());
    EXPECT_EQ(probe.count(MSG_CCN_SCANNING), 10u) << "two rounds of five set points";
    EXPECT_FALSE(scanning().enabled) << "as it was before";

    EXPECT_TRUE(probe.command(MSG_CCN_START_CALIBRATION, NET_CCN_StartCalibration{1}));
    EXPECT_TRUE(probe.command(MSG_CCN_STOP_CALIBRATION));
    EXPECT_FALSE(calibrating());
}

}  // namespace
