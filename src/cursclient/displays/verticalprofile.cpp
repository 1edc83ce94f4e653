// The schedule of a vertical profile: where home and site lie, which task ran last, and the commands that
// enable, direct and reset the tasks. It snoops the waypoint table even while no such display exists.
#include <string>

#include "cursclient/kit/instdisp.h"
#include "libvesk/messages/records/verticalprofile.h"
#include "libvesk/support/util.h"

namespace {

struct VERTICALPROFILE_prv_data : INSTDISP_head {
    NET_VERTICALPROFILE_All vpa;
};

constexpr const char* TITLE = "Schedule";

NET_GPS_AllWaypointInfo g_verticalprofile_waypoints;
BOOL g_verticalprofile_waypoints_valid = FALSE;

void reset(VERTICALPROFILE_prv_data* pd) {
    UTIL_strcpynt(pd->vpa.last_task, "NONE");
}

// ---- screen

// A time of day, or as many blanks.
std::string VERTICALPROFILE_time(FTIME t) {
    return t == VESK_NO_TIME || VESK_is_missing(t) ? "        " : INSTDISP_time(t).c_str();
}

void draw_waypoint(const CANVAS& d, int row, const char* title, const NET_VERTICALPROFILE_Waypoint& wp) {
    d.put(row, 1, "%s  %8s *~3.0f/*~-4.0f", title, UTIL_field(wp.name), wp.bearing,
          UNIT_on_screen(UNIT_km, wp.distance));
}

bool position_invalid(const NET_VERTICALPROFILE_Waypoint& wp) {
    return VESK_is_missing(wp.distance) || VESK_is_missing(wp.bearing);
}

void draw(VERTICALPROFILE_prv_data* pd, const CANVAS& d) {
    const NET_VERTICALPROFILE_All& vpa = pd->vpa;
    draw_waypoint(d, 1, "Home:", vpa.wp_home);
    draw_waypoint(d, 2, "Site:", vpa.wp_site);
    d.put(3, 1, "Events:    %s", vpa.enabled ? "ENABLED" : "DISABLED");
    d.put(4, 1, "Last task: %-16s", UTIL_field(vpa.last_task));
    d.put(5, 1, "Task time: %s", VERTICALPROFILE_time(vpa.last_task_time).c_str());
    d.put(6, 1, "Sys time:  %s", VERTICALPROFILE_time(UTIL_ftime()).c_str());
    if (position_invalid(vpa.wp_home) || position_invalid(vpa.wp_site)) d.alarm().center(7, "GPS INVALID");
}

// ---- commands

std::string enable_label(const VERTICALPROFILE_prv_data* pd) {
    return pd->vpa.enabled ? "2 Disable scheduled tasks" : "2 Enable scheduled tasks";
}

void toggle_enabled(VERTICALPROFILE_prv_data* pd, DWORD /*uid*/) {
    COMMAND_send(pd, MSG_VERTICALPROFILE_SET_ENABLED, NET_VERTICALPROFILE_SetEnabled{!pd->vpa.enabled});
}

void waypoint_chosen(CURSDIALOG_type*, void* dlg_user_data, CURSDIALOG_widget*, void* wd_user_data,
                     CURSDIALOG_button_action* act) {
    act->close_dialog = TRUE;
    const auto* pd = COMMAND_display<VERTICALPROFILE_prv_data>(*static_cast<DWORD*>(dlg_user_data));
    if (pd == nullptr) return;
    NET_VERTICALPROFILE_SetWaypoint site{};
    UTIL_strcpynt(site.name, static_cast<const char*>(wd_user_data));
    COMMAND_send(pd, MSG_VERTICALPROFILE_SET_SITE, site);
}

// Opens only while the table is empty, and so never offers a waypoint: stations rely on the site not being
// changed from here.
void select_waypoint(VERTICALPROFILE_prv_data*, DWORD uid) {
    const NET_GPS_AllWaypointInfo& table = g_verticalprofile_waypoints;
    if (!g_verticalprofile_waypoints_valid || table.n_waypoints != 0) return;
    CURSDIALOG_type* dlg = COMMAND_dialog("Select waypoint", uid);
    int y = 1;
    for (std::size_t i = 1; i < table.n_waypoints && i < NET_GPS_WAYPOINTS; ++i) {
        const char* name = table.wp[i].name;
        CURSDIALOG_add_button(dlg, 1, y++, 0, CURSDIALOG_STYLE_LIST, 0, name, waypoint_chosen, name,
                              sizeof table.wp[i].name);
    }
    CURSDIALOG_force_widget_focus(dlg, CURSDIALOG_add_button(dlg, 1, y, 0, CURSDIALOG_STYLE_LIST, 0, "Cancel",
                                                             CURSDIALOG_DEFAULT_button_close, nullptr, 0));
}

void* VERTICALPROFILE_match(void* prv_data, DISPLAY_common_params*, DISPLAY_msg_params* mp, void*) {
    if (mp->pm->msg->msg != MSG_GPS_WAYPOINT_DEF) return prv_data;
    if (const auto* table = VESKMSG_payload<NET_GPS_AllWaypointInfo>(mp->pm)) {
        g_verticalprofile_waypoints = *table;
        g_verticalprofile_waypoints_valid = TRUE;
    }
    return prv_data;
}

using store = INSTDISP_store<VERTICALPROFILE_prv_data>;
constexpr store STORES[] = {store::into<&VERTICALPROFILE_prv_data::vpa>(MSG_VERTICALPROFILE_ALL)};
constexpr INSTDISP_menu_row<VERTICALPROFILE_prv_data> MENU[] = {
    {.hot_key = '2', .action = toggle_enabled, .guard = COMMAND_PASSWORD, .label_of = enable_label},
    {.hot_key = '3', .label = "3 Select site waypoint", .action = select_waypoint, .guard = COMMAND_PASSWORD},
    {.hot_key = '4',
     .label = "4 Reset tasks to preflight state",
     .action = COMMAND_issue<MSG_VERTICALPROFILE_RESETTASKS>,
     .guard = COMMAND_PASSWORD},
};
constexpr INSTDISP_kind<VERTICALPROFILE_prv_data> KIND{.cols = 29,
                                                       .rows = 9,
                                                       .stores = STORES,
                                                       .draw = draw,
                                                       .reset = reset,
                                                       .menu = MENU,
                                                       .title = TITLE,
                                                       .ignores_logging = true};

}  // namespace

INSTDISP_FUNCTIONS(VERTICALPROFILE, KIND)
INSTDISP_DECLARE(VERTICALPROFILE, verticalprofile, VERTICALPROFILE_keypress, VERTICALPROFILE_match)
