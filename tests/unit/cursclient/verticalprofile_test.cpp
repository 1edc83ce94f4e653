// The vertical profile's schedule: its screen, its guarded commands and the waypoint table that it snoops.
#include <gmock/gmock.h>

#include "cursclient/passwd.h"
#include "display_rig.h"
#include "libvesk/records/verticalprofile.h"
#include "libvesk/util.h"
#include "libveskcurs/cursdialog.h"

namespace {

using ::testing::HasSubstr;

constexpr int ENTER = 13;

class VerticalProfile : public DisplayRig {
  protected:
    static constexpr const char* WINDOW = "verticalprofile:V1";

    VerticalProfile() { announce("V1", "verticalprofile", "Profiler", 'v'); }

    static NET_VERTICALPROFILE_All schedule() {
        NET_VERTICALPROFILE_All all{};
        UTIL_strcpynt(all.wp_home.name, "HOME");
        UTIL_strcpynt(all.wp_site.name, "SITE07A");
        all.wp_home.distance = 18.52;
        all.wp_home.bearing = 271.6;
        all.wp_site.distance = 10.0;
        all.wp_site.bearing = 5.0;
        all.enabled = TRUE;
        UTIL_strcpynt(all.last_task, "CLIMB TO THE VERY TOP");
        all.last_task_time = START + 3661.9;
        return all;
    }
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
    receive("V1", MSG_VERTICALPROFILE_ALL, schedule());
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

TEST_F(VerticalProfile, CommandsAreGuardedAndSentToTheInstrument) {
    receive("V1", MSG_VERTICALPROFILE_ALL, schedule());
    UTIL_strcpynt(g_passwd, "abc");
    focus(WINDOW);
    for (const char* keys : {"m2no", "m4no"}) {
        type(keys);
        press(ENTER);
    }
    EXPECT_TRUE(sent.empty());
    type("m2abc");
    press(ENTER);
    type("m4abc");
    press(ENTER);
    ASSERT_EQ(sent.size(), 2u);
    EXPECT_EQ(sent[0].msg, MSG_VERTICALPROFILE_SET_ENABLED);
    EXPECT_EQ(sent[0].dest, "V1");
    EXPECT_FALSE(sent[0].as<NET_VERTICALPROFILE_SetEnabled>().enabled);
    EXPECT_EQ(sent[1].msg, MSG_VERTICALPROFILE_RESETTASKS);
    EXPECT_EQ(sent[1].record, "");
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
    EXPECT_TRUE(sent.empty());
}

TEST_F(VerticalProfile, ACommandWhoseDisplayIsGoneSendsNothing) {
    focus(WINDOW);
    type("m");
    EXPECT_THAT(screen_text(), HasSubstr("2 Enable scheduled tasks"));
    leave("V1");
    type("2");
    EXPECT_TRUE(sent.empty()) << "the display is gone";
}

}  // namespace
