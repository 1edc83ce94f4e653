// The vertical profile's schedule: its screen and the waypoint table that it snoops.
#include "libvesk/messages/records/verticalprofile.h"
#include "support/display_rig.h"

namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

class VerticalProfile : public DisplayRig {
  protected:
    static constexpr const char* WINDOW = "verticalprofile:V1";

    VerticalProfile() { announce("V1", "verticalprofile", "Profiler", 'v'); }

    static void waypoints(BYTE n) {
        NET_GPS_AllWaypointInfo table{};
        table.n_waypoints = n;
        for (NET_GPS_WaypointDef& wp : table.wp)
            UTIL_strcpynt(wp.name, "WP");
        receive("GPS", MSG_GPS_WAYPOINT_DEF, table);
    }
};

TEST_F(VerticalProfile, ShowsTheSchedule) {
    EXPECT_EQ(inside(WINDOW), R"(
Home:           ---/----
Site:           ---/----
Events:    DISABLED
Last task: NONE
Task time:
Sys time:  22:13:20
        GPS INVALID
)");
    EXPECT_EQ(color(WINDOW, 7, 10), -CP_RED_BLUE);
    report("V1", MSG_VERTICALPROFILE_ALL, R"({
        "wp_home": {"name": "HOME", "distance": 18.52, "bearing": 271.6},
        "wp_site": {"name": "SITE07A", "distance": 10, "bearing": 5}, "enabled": true,
        "last_task": "CLIMB TO THE VERY TOP", "last_task_time": 1700003661.9})");
    EXPECT_EQ(inside(WINDOW), R"(
Home:      HOME 272/10
Site:   SITE07A   5/5
Events:    ENABLED
Last task: CLIMB TO THE VER
Task time: 23:14:21
Sys time:  22:13:20
)");
    EXPECT_THAT(TestScreen::row(window(WINDOW)->win, 0), HasSubstr("Schedule"));
}

TEST_F(VerticalProfile, TheWaypointDialogOpensOnAnEmptyTableOnly) {
    focus(WINDOW);
    type("m3");
    EXPECT_FALSE(CURSDIALOG_active()) << "no table has arrived yet";
    waypoints(3);
    type("m3");
    EXPECT_FALSE(CURSDIALOG_active());
    waypoints(0);
    type("m3");
    EXPECT_THAT(screen_text(), HasSubstr("Select waypoint"));
    press(ENTER);
    EXPECT_FALSE(CURSDIALOG_active());
    EXPECT_THAT(take_sent(), IsEmpty());
}

}  // namespace
