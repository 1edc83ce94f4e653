// The black-carbon instruments and the extinction instruments: filters load and are renewed, zeros are
// renewed on time and on command.
#include <gtest/gtest.h>

#include "support/sim_probe.h"

namespace {

TEST(AethalometerSim, ReportsEachMinuteAndAdvancesItsTapeWhenTheSpotIsFull) {
    SimProbe probe("aethalometer");
    probe.run(600);
    const auto reports = probe.records<MSG_AETHALOMETER_REPORT>();
    ASSERT_EQ(reports.size(), 10u);
    const auto& r = reports.back();
    expect_between(r.conc[5], 50, 5000, "black carbon, ng/m3");
    EXPECT_GT(+r.attn[0], +r.attn[6]) << "short wavelengths are attenuated more";
    EXPECT_GT(+r.attn[0], +reports.front().attn[0]) << "the spot loads";

    EXPECT_FALSE(probe.set("attenuation", "500"));
    ASSERT_TRUE(probe.set("attenuation", "100"));
    probe.forget();
    probe.run(240);
    EXPECT_EQ(probe.count(MSG_AETHALOMETER_REPORT), 0u) << "the tape moves";
    probe.run(240);
    EXPECT_LT(+probe.last<MSG_AETHALOMETER_REPORT>().attn[0], 5);
}

TEST(MaapSim, TheTapeAdvancesOnCommandAndByItself) {
    SimProbe probe("maap");
    probe.run(3600);
    const auto loaded = probe.last<MSG_MAAP_REPORT>();
    EXPECT_LT(+loaded.tr, 1);
    EXPECT_NEAR(+loaded.C, loaded.abs / 6.6, 1e-9);
    EXPECT_TRUE(probe.command(MSG_MAAP_ADVANCE));
    probe.run(1);
    EXPECT_EQ(+probe.last<MSG_MAAP_STATUS>().global_errors, 0x10u) << "a state, no error";
    EXPECT_TRUE(VESK_is_missing(+probe.last<MSG_MAAP_REPORT>().abs));
    const std::size_t spots = probe.count(MSG_MAAP_FILTER);
    probe.run(120);
    EXPECT_EQ(probe.count(MSG_MAAP_FILTER), spots + 1);
    EXPECT_GT(+probe.last<MSG_MAAP_REPORT>().tr, 0.99);
    EXPECT_EQ(+probe.last<MSG_MAAP_STATUS>().global_errors, 0u);

    ASSERT_TRUE(probe.set("transmittance", "0.5"));
    probe.run(125);
    EXPECT_EQ(probe.count(MSG_MAAP_FILTER), spots + 2);
}

TEST(CapsSim, AZeroFindsTheBaselineAndPlansTheNext) {
    SimProbe probe("caps");
    probe.run(300);
    expect_between(probe.last<MSG_CAPS_INSTANT>().in.ext, 3, 110, "extinction");
    ASSERT_TRUE(probe.set("baseline", "500"));
    const FTIME begun = probe.world.now;
    EXPECT_TRUE(probe.command(MSG_CAPS_ISSUE_ZERO));
    probe.run(50);
    EXPECT_EQ(+probe.last<MSG_CAPS_ZEROSCHEDULE>().time_next, begun + 3600);
    const auto during = probe.last<MSG_CAPS_INSTANT>();
    EXPECT_EQ(during.in.flags & 1, 1);
    EXPECT_NEAR(+during.in.loss, 500, 3) << "filtered air leaves the empty cavity";
    probe.run(15);
    const auto zero = probe.last<MSG_CAPS_ZERO>();
    EXPECT_NEAR(+zero.baseline, 500, 2);
    EXPECT_NEAR(+zero.shift, 20, 3);
    probe.run(3700);
    EXPECT_EQ(probe.count(MSG_CAPS_ZERO), 2u) << "the next one by itself";
}

TEST(PaxSim, GoesThroughItsCycleAndSaysWhenTheNextStepComes) {
    SimProbe probe("pax");
    probe.run(1300);
    std::vector<int> modes;
    for (const auto& now : probe.records<MSG_PAX_INSTANT>()) {
        EXPECT_GE(+now.next_mode, +now.start_time);
        if (modes.empty() || modes.back() != now.mode) modes.push_back(now.mode);
    }
    modes.resize(5);
    EXPECT_EQ(modes, (std::vector<int>{NET_PAX_MODE_MEASURE, NET_PAX_MODE_FLUSH, NET_PAX_MODE_ZERO,
                                       NET_PAX_MODE_FLUSH, NET_PAX_MODE_MEASURE}));
    const auto zeros = probe.records<MSG_PAX_ZERO>();
    ASSERT_EQ(zeros.size(), 2u);
    EXPECT_TRUE(VESK_is_missing(+zeros[0].baShift)) << "nothing to compare the first with";
    EXPECT_NEAR(+zeros[1].baShift, zeros[1].ba - zeros[0].ba, 1e-9);
}

}  // namespace
