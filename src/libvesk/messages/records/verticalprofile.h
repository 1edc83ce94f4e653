// Wire records of the vertical profile's task schedule, and of the position receiver's waypoints that it
// chooses its site from. Distances in km, bearings and positions in degrees.
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
    BOOL enabled;  // scheduled tasks run
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

NETDSD_RECORD(NET_VERTICALPROFILE_Waypoint, 24, NETDSD_CHARS(name), NETDSD_MEMBER(distance),
              NETDSD_MEMBER(bearing));
NETDSD_RECORD(NET_VERTICALPROFILE_All, 92, NETDSD_MEMBER(wp_home), NETDSD_MEMBER(wp_site),
              NETDSD_MEMBER(enabled), NETDSD_CHARS(last_task), NETDSD_TIME(last_task_time));
NETDSD_RECORD(NET_VERTICALPROFILE_SetWaypoint, 8, NETDSD_CHARS(name));
NETDSD_RECORD(NET_VERTICALPROFILE_SetEnabled, 1, NETDSD_MEMBER(enabled));
NETDSD_RECORD(NET_GPS_WaypointDef, 32, NETDSD_MEMBER(name), NETDSD_MEMBER(latitude),
              NETDSD_MEMBER(longitude));
NETDSD_RECORD(NET_GPS_AllWaypointInfo, 260, NETDSD_MEMBER(wp), NETDSD_MEMBER(n_waypoints));
