// Wire records of the vertical profile's task schedule, and of the position receiver's waypoints that it
// chooses its site from.
#pragma once

#include "libvesk/messages/netdsd.h"

inline constexpr std::size_t NET_GPS_WAYPOINTS = 8;

#pragma pack(push, 4)
struct NET_VERTICALPROFILE_Waypoint {
    char name[8];
    double distance;
    double bearing;
};

struct NET_VERTICALPROFILE_All {
    NET_VERTICALPROFILE_Waypoint wp_home;
    NET_VERTICALPROFILE_Waypoint wp_site;
    BOOL enabled;
    char last_task[32];
    FTIME last_task_time;
};

struct NET_VERTICALPROFILE_SetWaypoint {
    char name[8];
};

struct NET_VERTICALPROFILE_SetEnabled {
    BOOL enabled;
};

struct NET_GPS_WaypointDef {
    STRING<16> name;
    double latitude;
    double longitude;
};

struct NET_GPS_AllWaypointInfo {
    NET_GPS_WaypointDef wp[NET_GPS_WAYPOINTS];
    BYTE n_waypoints;
};
#pragma pack(pop)

NETDSD_RECORD(NET_VERTICALPROFILE_Waypoint, 24,
    NETDSD_CHARS(name, "name of the waypoint"),
    NETDSD_MEMBER(distance, UNIT_km, "distance to it"),
    NETDSD_MEMBER(bearing, UNIT_deg, "bearing from north").range(0, 360));
NETDSD_RECORD(NET_VERTICALPROFILE_All, 92,
    NETDSD_MEMBER(wp_home, "where home lies"),
    NETDSD_MEMBER(wp_site, "where the site lies"),
    NETDSD_MEMBER(enabled, "scheduled tasks run"),
    NETDSD_CHARS(last_task, "the task that ran last"),
    NETDSD_TIME(last_task_time, "when it ran"));
NETDSD_RECORD(NET_VERTICALPROFILE_SetWaypoint, 8, NETDSD_CHARS(name, "name of the waypoint"));
NETDSD_RECORD(NET_VERTICALPROFILE_SetEnabled, 1, NETDSD_MEMBER(enabled, "whether scheduled tasks run"));
NETDSD_RECORD(NET_GPS_WaypointDef, 32,
    NETDSD_MEMBER(name, "name of the waypoint"),
    NETDSD_MEMBER(latitude, UNIT_deg, "latitude, north positive").range(-90, 90),
    NETDSD_MEMBER(longitude, UNIT_deg, "longitude, east positive").range(-180, 180));
NETDSD_RECORD(NET_GPS_AllWaypointInfo, 260,
    NETDSD_MEMBER(wp, "the table of waypoints"),
    NETDSD_MEMBER(n_waypoints, UNIT_none, "entries that are in use").range(0, NET_GPS_WAYPOINTS));
