// The simulated hygrometer and power supply: what of their physics no screen tells.
#include "libvesk/messages/records/bestups.h"
#include "libvesk/messages/records/hygrometer.h"
#include "support/sim_probe.h"

namespace {

TEST(Hygrometer, FindsTheVapourThatTheAirHoldsAndFrostBelowZero) {
    SimProbe probe("hygrometer");
    probe.run(120);
    const auto wet = probe.last<MSG_HYGROMETER_INSTANT>().in;
    EXPECT_NEAR(+wet.RH, probe.world.air.humidity(), 2);
    EXPECT_EQ(+wet.T_frost, VESK_MISSING);
    EXPECT_TRUE(probe.set("vapour", "0.1"));
    probe.run(120);
    const auto dry = probe.last<MSG_HYGROMETER_INSTANT>().in;
    EXPECT_NEAR(+dry.RH, wet.RH / 10, 1);
    EXPECT_LT(+dry.T_dew, +dry.T_frost) << "ice holds its vapour more tightly than water";
    EXPECT_NEAR(+dry.T_frost, +dry.T_mirror, 0.01);
    EXPECT_EQ(probe.last<MSG_HYGROMETER_STATUS>().flags, 0x0008);
}

TEST(PowerSupply, CarriesTheLoadUntilItsBatteryIsEmptyAndComesBackWithTheMains) {
    SimProbe probe("bestups");
    const auto flags = [&probe] { return probe.last<MSG_BESTUPS_STATUS>().flags; };
    const auto now = [&probe] { return probe.last<MSG_BESTUPS_INSTANT>().in; };
    probe.set("load", "70");
    probe.set("mains", "0");
    probe.run(1);
    EXPECT_EQ(flags(), NET_BESTUPS_ON_BATTERY);
    EXPECT_STREQ(probe.last<MSG_LOG_MONITOR>().msg, "U11: mains lost, on battery");
    const double promised = now().time_left;
    probe.run(static_cast<int>(promised * 60) - 60);
    EXPECT_EQ(flags(), NET_BESTUPS_ON_BATTERY | NET_BESTUPS_LOW_BATTERY);
    EXPECT_GT(+now().V_output, 200);
    probe.run(120);
    EXPECT_EQ(flags(), NET_BESTUPS_ON_BATTERY | NET_BESTUPS_LOW_BATTERY | NET_BESTUPS_OFF);
    EXPECT_EQ(+now().V_output, 0);
    probe.set("mains", "200");
    probe.run(900);
    EXPECT_EQ(flags(), NET_BESTUPS_BOOST | NET_BESTUPS_CHARGING);
    EXPECT_NEAR(+now().V_output, 224, 3);
}

}  // namespace
