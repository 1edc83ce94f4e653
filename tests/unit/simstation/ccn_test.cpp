// The simulated CCN counter: it steps through supersaturations, settles, and does what it is told.
#include <gtest/gtest.h>

#include <cmath>

#include "libvesk/records/ccn.h"
#include "support/sim_probe.h"

namespace {

class SimCcn : public testing::Test {
  protected:
    [[nodiscard]] NET_CCN_Instant instant() const { return probe.last<NET_CCN_Instant>(MSG_CCN_INSTANT); }
    [[nodiscard]] NET_CCN_Scanning scanning() const { return probe.last<NET_CCN_Scanning>(MSG_CCN_SCANNING); }
    [[nodiscard]] BOOL calibrating() const {
        return probe.last<NET_CCN_Status>(MSG_CCN_STATUS).in_calibration;
    }
    BOOL set_point(double sp) {
        return probe.command(MSG_CCN_SET_SCANNING, NET_CCN_ScanningControl{sp, TRUE, FALSE});
    }
    BOOL scan(BOOL enable) {
        return probe.command(MSG_CCN_SET_SCANNING, NET_CCN_ScanningControl{VESK_MISSING, enable, TRUE});
    }
    [[nodiscard]] double mean_count(int seconds) {
        probe.forget();
        probe.run(seconds);
        double sum = 0;
        for (const auto& in : probe.records<NET_CCN_Instant>(MSG_CCN_INSTANT))
            sum += in.cnc;
        return sum / seconds / probe.world.air.number();
    }

    SimProbe probe{"ccn"};
};

TEST_F(SimCcn, TheColumnFollowsItsSetPointAndSaysWhenItIsThere) {
    probe.run(5);
    EXPECT_EQ(instant().stable_flag, NET_CCN_UNSTABLE_REPORTED | NET_CCN_UNSTABLE_CALC);
    EXPECT_TRUE(VESK_is_missing(probe.last<NET_CCN_Instant>(MSG_CCN_INSTANT).running.cnc_stable));
    probe.run(200);
    EXPECT_EQ(instant().stable_flag, 0);
    EXPECT_NEAR(instant().T3 - instant().T1, +scanning().last, 0.1);
    EXPECT_NEAR(+probe.last<NET_CCN_DMTModelResults>(MSG_CCN_DMTMODELRESULTS).ss_calc, +instant().ss_setting,
                0.02);
    EXPECT_LT(+instant().running.dT_T3_T1_stddev, 0.1);
}

TEST_F(SimCcn, EachStepIsAnnouncedWithTheNextOne) {
    probe.run(5 * 300 + 10);
    const auto steps = probe.records<NET_CCN_Scanning>(MSG_CCN_SCANNING);
    ASSERT_EQ(steps.size(), 6u);
    for (std::size_t i = 1; i < steps.size(); ++i) {
        EXPECT_EQ(+steps[i].last, +steps[i - 1].next);
        EXPECT_EQ(+steps[i].time_last, +steps[i - 1].time_next);
        EXPECT_TRUE(steps[i].enabled);
    }
    EXPECT_EQ(+steps[5].last, +steps[0].last) << "and round again";
}

TEST_F(SimCcn, MoreSupersaturationActivatesMoreParticles) {
    scan(FALSE);
    double before = 0;
    for (const double dT : {2.5, 5.0, 11.0}) {
        set_point(dT);
        probe.run(150);
        const double share = mean_count(60);
        EXPECT_GT(share, 1.2 * before) << dT;
        before = share;
    }
    EXPECT_LT(before, 0.7);
}

TEST_F(SimCcn, SetPointAndScanningAreSetAndEchoed) {
    EXPECT_TRUE(set_point(7.25));
    EXPECT_EQ(+scanning().last, 7.25);
    EXPECT_TRUE(scanning().enabled) << "as it was";
    EXPECT_TRUE(scan(FALSE));
    EXPECT_FALSE(scanning().enabled);
    EXPECT_EQ(+scanning().last, 7.25);
    probe.run(400);
    EXPECT_EQ(+scanning().last, 7.25) << "nothing moves it";
    EXPECT_NEAR(instant().T3 - instant().T1, 7.25, 0.1);
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
    EXPECT_TRUE(calibrating());
    EXPECT_TRUE(probe.command(MSG_CCN_STOP_CALIBRATION));
    EXPECT_FALSE(calibrating());
}

TEST_F(SimCcn, TheStepLengthIsAScenariosToSet) {
    EXPECT_FALSE(probe.set("step", "10"));
    EXPECT_FALSE(probe.set("step", "often"));
    EXPECT_TRUE(probe.set("step", "20"));
    probe.forget();
    probe.run(100);
    EXPECT_EQ(probe.count(MSG_CCN_SCANNING), 5u);
}

TEST_F(SimCcn, TheAverageKnowsItsSpread) {
    probe.run(60);
    const auto avg = probe.last<NET_CCN_Avg>(MSG_CCN_AVERAGE);
    EXPECT_GT(+avg.dT_T3_T1_stddev, 0.3) << "the column settled in this minute";
    probe.run(180);
    EXPECT_LT(+probe.last<NET_CCN_Avg>(MSG_CCN_AVERAGE).dT_T3_T1_stddev, 0.05);
}

}  // namespace
