// The vertical profile: an aircraft that flies to and fro between home and site, and the schedule of tasks
// that advances while it is enabled.
#include <array>
#include <cmath>
#include <numbers>

#include "libvesk/messages/records/verticalprofile.h"
#include "libvesk/support/util.h"
#include "simstation/kinds.h"

namespace {

struct position {
    double latitude;  // degrees
    double longitude;
};

constexpr double EARTH_RADIUS_KM = 6371.0;  // mean radius
constexpr double RADIANS = std::numbers::pi / 180;

// Great-circle distance, haversine formula.
double distance_km(position from, position to) {
    const double dlat = (to.latitude - from.latitude) * RADIANS;
    const double dlon = (to.longitude - from.longitude) * RADIANS;
    const double h = std::pow(std::sin(dlat / 2), 2) + std::cos(from.latitude * RADIANS) *
                                                           std::cos(to.latitude * RADIANS) *
                                                           std::pow(std::sin(dlon / 2), 2);
    return 2 * EARTH_RADIUS_KM * std::asin(std::sqrt(std::min(1.0, h)));
}

// Initial course of the great circle, 0 to below 360 degrees from north.
double bearing_degrees(position from, position to) {
    const double dlon = (to.longitude - from.longitude) * RADIANS;
    const double y = std::sin(dlon) * std::cos(to.latitude * RADIANS);
    const double x = std::cos(from.latitude * RADIANS) * std::sin(to.latitude * RADIANS) -
                     std::sin(from.latitude * RADIANS) * std::cos(to.latitude * RADIANS) * std::cos(dlon);
    return std::fmod(std::atan2(y, x) / RADIANS + 360, 360);
}

struct waypoint {
    const char* name;
    position at;
};
constexpr std::array<waypoint, 4> WAYPOINTS{{
    {.name = "HOME", .at = {40.05, -88.37}},
    {.name = "BONDVIL", .at = {40.13, -88.02}},
    {.name = "NORTH", .at = {40.45, -88.30}},
    {.name = "WEST", .at = {40.02, -88.80}},
}};

constexpr std::array<const char*, 6> TASKS{"TAKE OFF", "CLIMB", "TOP", "STEP DOWN", "LOW PASS", "RETURN"};
constexpr double TASK_SECONDS = 120;
constexpr double LEG_SECONDS = 900;

struct verticalprofile {
    static constexpr SIM_setting settings[] = {
        {.name = "gps", .help = "off: the position is lost"},
        {.name = "waypoints", .help = "how many entries the table of waypoints has, 0 to 4"},
    };

    void start(SIM_instrument& sim) { say_waypoints(sim); }

    void tick(SIM_instrument& sim) {
        if (enabled && sim.time() >= next_task) advance(sim);
        sway_north.step(sim.noise(), sim.dt());
        sway_east.step(sim.noise(), sim.dt());
        sim.send_instant(MSG_VERTICALPROFILE_ALL, schedule(sim.age(), gps));
    }

    // Its only sign of lost communications is a schedule without a position.
    void status(SIM_instrument& sim) {
        if (!sim.have_comms()) sim.send_kept(MSG_VERTICALPROFILE_ALL, schedule(sim.age(), FALSE));
    }

    BOOL command(SIM_instrument& sim, const VESKMSG_proc_msg* pm) {
        switch (pm->msg->msg) {
            case MSG_VERTICALPROFILE_SET_ENABLED: {
                const auto* wanted = VESKMSG_payload<NET_VERTICALPROFILE_SetEnabled>(pm);
                if (wanted == nullptr) return FALSE;
                enabled = wanted->enabled;
                next_task = sim.time() + TASK_SECONDS;
                sim.log("scheduled tasks %s", enabled ? "enabled" : "disabled");
                return TRUE;
            }
            case MSG_VERTICALPROFILE_SET_SITE:
                return choose_site(sim, VESKMSG_payload<NET_VERTICALPROFILE_SetWaypoint>(pm));
            case MSG_VERTICALPROFILE_RESETTASKS:
                task = -1;
                task_time = VESK_NO_TIME;
                sim.log("tasks reset to preflight state");
                return TRUE;
            default:
                return FALSE;
        }
    }

    BOOL set(SIM_instrument& sim, std::string_view name, const SIM_value& value) {
        if (name == "gps") {
            gps = value.number != 0;
            return TRUE;
        }
        if (!(value.number >= 0 && value.number <= static_cast<double>(WAYPOINTS.size()))) return FALSE;
        n_waypoints = static_cast<BYTE>(value.number);
        say_waypoints(sim);
        return TRUE;
    }

    void advance(SIM_instrument& sim) {
        task = (task + 1) % static_cast<int>(TASKS.size());
        task_time = sim.time();
        next_task = sim.time() + TASK_SECONDS;
        sim.log("task %s", TASKS[static_cast<std::size_t>(task)]);
    }

    BOOL choose_site(SIM_instrument& sim, const NET_VERTICALPROFILE_SetWaypoint* wanted) {
        if (wanted == nullptr) return FALSE;
        for (std::size_t i = 0; i < WAYPOINTS.size(); ++i) {
            if (UTIL_field(wanted->name) != WAYPOINTS[i].name) continue;
            site = i;
            sim.log("site %s", WAYPOINTS[i].name);
            return TRUE;
        }
        const std::string_view name = UTIL_field(wanted->name);
        return sim.refuse("site", "no waypoint \"%.*s\"", static_cast<int>(name.size()), name.data());
    }

    // Where the aircraft is: to and fro between home and site.
    position aircraft(double age) const {
        const double share = (1 - std::cos(age / LEG_SECONDS * std::numbers::pi)) / 2;
        const position home = WAYPOINTS[0].at;
        const position there = WAYPOINTS[site].at;
        return {home.latitude + share * (there.latitude - home.latitude) + sway_north.value(),
                home.longitude + share * (there.longitude - home.longitude) + sway_east.value()};
    }

    static NET_VERTICALPROFILE_Waypoint seen(const waypoint& wp, position from, BOOL position_known) {
        auto w = NETDSD_default<NET_VERTICALPROFILE_Waypoint>();
        UTIL_strcpynt(w.name, wp.name);
        if (!position_known) return w;
        w.distance = distance_km(from, wp.at);
        w.bearing = bearing_degrees(from, wp.at);
        return w;
    }

    NET_VERTICALPROFILE_All schedule(double age, BOOL position_known) const {
        NET_VERTICALPROFILE_All all{};
        all.wp_home = seen(WAYPOINTS[0], aircraft(age), position_known);
        all.wp_site = seen(WAYPOINTS[site], aircraft(age), position_known);
        all.enabled = enabled;
        UTIL_strcpynt(all.last_task, task >= 0 ? TASKS[static_cast<std::size_t>(task)] : "NONE");
        all.last_task_time = task_time;
        return all;
    }

    void say_waypoints(SIM_instrument& sim) const {
        auto table = NETDSD_default<NET_GPS_AllWaypointInfo>();
        for (std::size_t i = 0; i < n_waypoints; ++i) {
            UTIL_strcpynt(table.wp[i].name, WAYPOINTS[i].name);
            table.wp[i].latitude = WAYPOINTS[i].at.latitude;
            table.wp[i].longitude = WAYPOINTS[i].at.longitude;
        }
        table.n_waypoints = n_waypoints;
        sim.send_kept(MSG_GPS_WAYPOINT_DEF, table);
    }

    SIM_drift sway_north{0.002, 60};  // degrees that the aircraft is off its line
    SIM_drift sway_east{0.002, 60};
    BOOL gps = TRUE;
    BOOL enabled = TRUE;
    BYTE n_waypoints = static_cast<BYTE>(WAYPOINTS.size());
    std::size_t site = 1;
    int task = -1;  // index of the last task, -1 before the first
    FTIME task_time = VESK_NO_TIME;
    FTIME next_task = 0;
};

}  // namespace

constinit const SIM_decl SIM_DCL_verticalprofile = SIM_decl_of<verticalprofile>();
