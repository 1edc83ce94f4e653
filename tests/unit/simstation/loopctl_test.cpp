// The loop controllers and the vertical profile: plants that follow their set points, and a schedule that
// advances.
#include <gtest/gtest.h>

#include "libvesk/support/util.h"
#include "support/sim_probe.h"

namespace {

TEST(LovePid, FollowsTheSetPointOfTheAddressedControllerOnly) {
    SimProbe probe("lovepid");
    probe.run(1500);
    EXPECT_TRUE(VESK_is_missing(+probe.last<MSG_LOVEPID_INSTANT>().pv[3])) << "nobody is in the fourth slot";
    EXPECT_TRUE(probe.command(MSG_LOVEPID_SET, NET_LOVEPID_Setpoint{60, 0x10}));
    EXPECT_FALSE(probe.command(MSG_LOVEPID_SET));
    const auto echoed = probe.last<MSG_LOVEPID_SETPOINTS>();
    EXPECT_EQ(+echoed.sp[0], 60);
    EXPECT_EQ(+echoed.sp[1], 35);
    probe.run(180);
    EXPECT_NEAR(+probe.last<MSG_LOVEPID_INSTANT>().pv[0], 40 + 20 * 0.632, 1) << "one time constant later";
    probe.run(1200);
    const auto after = probe.last<MSG_LOVEPID_INSTANT>();
    EXPECT_NEAR(+after.pv[0], 60, 0.5);
    EXPECT_NEAR(+after.pv[1], 35, 0.5);
}

TEST(LovePid, OneSlotCanFallSilentWithAnError) {
    SimProbe probe("lovepid");
    EXPECT_TRUE(probe.set("error", "checksum"));
    EXPECT_TRUE(probe.set("silent", "2"));
    EXPECT_FALSE(probe.set("silent", "9"));
    probe.run(5);
    const auto status = probe.last<MSG_LOVEPID_STATUS>();
    EXPECT_TRUE(status.have_comms[0]);
    EXPECT_FALSE(status.have_comms[1]);
    EXPECT_STREQ(status.error[1].error, "checksum");
}

TEST(Watlow, TakesSetPointsForItsTwoChannels) {
    SimProbe probe("watlow");
    EXPECT_TRUE(probe.command(MSG_WATLOW_SET, NET_WATLOW_OneChannel{'B', 55}));
    probe.run(2000);
    const auto now = probe.last<MSG_WATLOW_INSTANT>();
    EXPECT_NEAR(+now.chA, 25, 0.5);
    EXPECT_NEAR(+now.chB, 55, 0.5);
    EXPECT_TRUE(probe.set("error", "17"));
    probe.run(1);
    EXPECT_EQ(+probe.last<MSG_WATLOW_STATUS>().err, 17);
}

NET_VERTICALPROFILE_All profile(SimProbe& probe) {
    probe.run(1);
    return probe.last<MSG_VERTICALPROFILE_ALL>();
}

TEST(VerticalProfile, TasksAdvanceOnlyWhileEnabled) {
    SimProbe probe("verticalprofile");
    probe.run(130);
    EXPECT_EQ(UTIL_field(profile(probe).last_task), "CLIMB");
    EXPECT_TRUE(probe.command(MSG_VERTICALPROFILE_SET_ENABLED, NET_VERTICALPROFILE_SetEnabled{FALSE}));
    probe.run(600);
    EXPECT_FALSE(profile(probe).enabled);
    EXPECT_EQ(UTIL_field(profile(probe).last_task), "CLIMB");
    EXPECT_TRUE(probe.command(MSG_VERTICALPROFILE_RESETTASKS));
    EXPECT_EQ(UTIL_field(profile(probe).last_task), "NONE");
    EXPECT_EQ(+profile(probe).last_task_time, VESK_NO_TIME);
}

TEST(VerticalProfile, DistancesAreThoseOfTheGreatCircle) {
    SimProbe probe("verticalprofile");
    const auto at_home = profile(probe);
    EXPECT_LT(+at_home.wp_home.distance, 1.0);
    EXPECT_NEAR(+at_home.wp_site.distance, 31.1, 1.0) << "0.08 degrees north and 0.35 east at 40 N";
    EXPECT_NEAR(+at_home.wp_site.bearing, 73, 2);
    NET_VERTICALPROFILE_SetWaypoint north{};
    UTIL_strcpynt(north.name, "NOWHERE");
    EXPECT_FALSE(probe.command(MSG_VERTICALPROFILE_SET_SITE, north));
    UTIL_strcpynt(north.name, "NORTH");
    EXPECT_TRUE(probe.command(MSG_VERTICALPROFILE_SET_SITE, north));
    EXPECT_EQ(UTIL_field(profile(probe).wp_site.name), "NORTH");
    EXPECT_TRUE(probe.set("gps", "off"));
    EXPECT_TRUE(VESK_is_missing(+profile(probe).wp_site.bearing));
    EXPECT_TRUE(probe.set("waypoints", "0"));
    EXPECT_EQ(probe.last<MSG_GPS_WAYPOINT_DEF>().n_waypoints, 0);
}

}  // namespace
