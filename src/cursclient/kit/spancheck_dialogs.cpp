// The dialogs that start a span check, and the messages that start and end it. The start dialog owns the
// operator's choice of instruments; the selection dialog works on that and never outlives it.
#include <cstdio>

#include "cursclient/kit/spancheck.h"
#include "libvesk/support/util.h"

namespace {

constexpr int MAX_DIGITS = 8;
constexpr int ENDING_WIDTH = 20;
constexpr CURSDIALOG_DEFAULT_entry_numeric_param SECONDS = {1, 9999, "%.0f", nullptr};

struct spancheck_begin_dlg_param {
    CURSDIALOG_widget* wd_air_flush_time = nullptr;
    CURSDIALOG_widget* wd_air_measure_time = nullptr;
    CURSDIALOG_widget* wd_co2_flush_time = nullptr;
    CURSDIALOG_widget* wd_co2_measure_time = nullptr;
    CURSDIALOG_type* dlg_neph_select = nullptr;  // while it is open
    LL_TYPE nephs_for{};                         // uids of the chosen displays; empty: all
    DWORD uid = 0;                               // the display whose menu started it

    spancheck_begin_dlg_param() = default;
    ~spancheck_begin_dlg_param() { LL_clear(&nephs_for); }
    spancheck_begin_dlg_param(const spancheck_begin_dlg_param&) = delete;
    spancheck_begin_dlg_param& operator=(const spancheck_begin_dlg_param&) = delete;
};

bool has_uid(LL_TYPE* list, DWORD uid) {
    const auto is_another = [](void* data, void* param) -> bool {
        return *static_cast<DWORD*>(data) != *static_cast<DWORD*>(param);
    };
    return LL_transverse_until_forwards(list, is_another, &uid) != nullptr;
}

bool add_uid(LL_TYPE* list, DWORD uid) {
    return LL_insert_tail(list, &uid, sizeof uid) != nullptr;
}

void remove_uid(LL_TYPE* list, DWORD uid) {
    const auto is_it = [](void* data, void* param) -> bool {
        return *static_cast<DWORD*>(data) == *static_cast<DWORD*>(param);
    };
    LL_selective_delete(list, is_it, &uid);
}

// ---- the selection

void sc_button_toggleneph(CURSDIALOG_type* /*dlg*/, void* dlg_user_data, CURSDIALOG_widget* wd,
                          void* wd_user_data, CURSDIALOG_button_action* /*act*/) {
    LL_TYPE* chosen = &COMMAND_param<spancheck_begin_dlg_param>(dlg_user_data)->nephs_for;
    const DWORD uid = *static_cast<DWORD*>(wd_user_data);
    const auto* neph = COMMAND_display<SPANCHECK_head>(uid);
    if (neph == nullptr) return;
    bool on = has_uid(chosen, uid);
    if (on) remove_uid(chosen, uid);
    on = !on && add_uid(chosen, uid);
    CURSDIALOG_setlabel(wd, COMMAND_check_label(on, neph->display_name).c_str());
}

void sc_begin_setnephs_close(CURSDIALOG_type* /*dlg*/, void* dlg_user_data) {
    COMMAND_param<spancheck_begin_dlg_param>(dlg_user_data)->dlg_neph_select = nullptr;
}

// One button for each running nephelometer; the row below them.
int add_nephs(CURSDIALOG_type* dlg, LL_TYPE* chosen) {
    const bool all = chosen->count == 0;
    int y = 1;
    for (const DWORD uid : LL_each<DWORD>(g_running_nephs)) {
        const auto* neph = COMMAND_display<SPANCHECK_head>(uid);
        if (neph == nullptr) continue;
        const bool on = all ? add_uid(chosen, uid) : has_uid(chosen, uid);
        CURSDIALOG_add_button(dlg, 1, y++, 0, CURSDIALOG_STYLE_LIST, 0,
                              COMMAND_check_label(on, neph->display_name).c_str(), sc_button_toggleneph, &uid,
                              sizeof uid);
    }
    return y;
}

void sc_button_setnephs(CURSDIALOG_type* /*dlg*/, void* dlg_user_data, CURSDIALOG_widget* /*wd*/,
                        void* /*wd_user_data*/, CURSDIALOG_button_action* /*act*/) {
    auto* begin = COMMAND_param<spancheck_begin_dlg_param>(dlg_user_data);
    if (begin->dlg_neph_select != nullptr || g_running_nephs.count < 2) return;
    CURSDIALOG_type* dlg =
        DIALOG_create("Select nephelometers", 0, &begin, sizeof begin, sc_begin_setnephs_close);
    if (dlg == nullptr) return;
    begin->dlg_neph_select = dlg;
    const int y = add_nephs(dlg, &begin->nephs_for);
    CURSDIALOG_widget* close = CURSDIALOG_add_button(dlg, 1, y, 0, CURSDIALOG_STYLE_CLOSE, 0, "Close",
                                                     CURSDIALOG_DEFAULT_button_close, nullptr, 0);
    CURSDIALOG_force_widget_focus(dlg, close);
}

// ---- the start

// As the entries stand: what nobody typed is what the station last shared, whatever that was.
[[nodiscard]] NET_COMMON_Neph_SpancheckDuration entered(const spancheck_begin_dlg_param& begin) {
    return {.air_flush = COMMAND_entry_value(begin.wd_air_flush_time),
            .air_sample = COMMAND_entry_value(begin.wd_air_measure_time),
            .co2_flush = COMMAND_entry_value(begin.wd_co2_flush_time),
            .co2_sample = COMMAND_entry_value(begin.wd_co2_measure_time)};
}

// Air, CO2, air again: the air is flushed for the same time on both sides of the CO2.
[[nodiscard]] NET_COMMON_Neph_SpancheckIssue schedule(FTIME now, const NET_COMMON_Neph_SpancheckDuration& d) {
    NET_COMMON_Neph_SpancheckIssue issue{};
    issue.end_init_air_flush = now + d.air_flush;
    issue.end_init_co2_flush = issue.end_init_air_flush + d.co2_flush;
    issue.end_co2_sample = issue.end_init_co2_flush + d.co2_sample;
    issue.end_sample_air_flush = issue.end_co2_sample + d.air_flush;
    issue.end_air_sample = issue.end_sample_air_flush + d.air_sample;
    return issue;
}

// To the chosen nephelometers that are still there; without a choice to all.
void issue_to(const LL_TYPE& chosen, const NET_COMMON_Neph_SpancheckIssue& issue) {
    if (chosen.count == 0) COMMAND_broadcast(MSG_COMMON_NEPH_SPANCHECK_ISSUE, FRAME_TO_ALL, issue);
    for (const DWORD uid : LL_each<DWORD>(chosen))
        if (const auto* neph = COMMAND_display<SPANCHECK_head>(uid))
            COMMAND_send(neph, MSG_COMMON_NEPH_SPANCHECK_ISSUE, issue);
}

void sc_button_begin_startnow_close(CURSDIALOG_type* /*dlg*/, void* dlg_user_data, CURSDIALOG_widget* /*wd*/,
                                    void* /*wd_user_data*/, CURSDIALOG_button_action* act) {
    static constexpr DWORD SHARED = FRAME_TO_ALL | FRAME_RESERVED | FRAME_KEEP;
    const auto& begin = *COMMAND_param<spancheck_begin_dlg_param>(dlg_user_data);
    act->close_dialog = true;
    const auto* pd = COMMAND_display<SPANCHECK_head>(begin.uid);
    if (pd == nullptr) return;
    const NET_COMMON_Neph_SpancheckDuration durations = entered(begin);
    issue_to(begin.nephs_for, schedule(UTIL_ftime(), durations));
    COMMAND_broadcast(MSG_COMMON_NEPH_SPANCHECK_DURATION, SHARED, durations);
    WINS_focus_window(pd->scwin);
}

void sc_begin_close(CURSDIALOG_type* /*dlg*/, void* dlg_user_data) {
    CURSDIALOG_close(COMMAND_param<spancheck_begin_dlg_param>(dlg_user_data)->dlg_neph_select);
}

CURSDIALOG_widget* add_seconds(CURSDIALOG_type* dlg, int y, const char* label, double initial) {
    char text[32];
    std::snprintf(text, sizeof text, "%.0f", initial);
    return COMMAND_number_entry(dlg, y, label, text, MAX_DIGITS, &SECONDS);
}

void refuse() {
    DIALOG_tell("Spancheck Error", {"Can't initiate a spancheck while bypassed/contaminated."}, "Cancel");
}

}  // namespace

void SPANCHECK_begin(SPANCHECK_head* pd, DWORD uid) {
    if (pd->is_bypassed) return refuse();
    const auto [dlg, begin] =
        COMMAND_create_form<spancheck_begin_dlg_param>("Configure spancheck", sc_begin_close);
    if (dlg == nullptr) return;
    const NET_COMMON_Neph_SpancheckDuration& last = g_spancheck_duration;
    begin->uid = uid;
    begin->wd_air_flush_time = add_seconds(dlg, 1, "Air flush time (sec):", last.air_flush);
    begin->wd_air_measure_time = add_seconds(dlg, 2, "Air measure time (sec):", last.air_sample);
    begin->wd_co2_flush_time = add_seconds(dlg, 3, "CO2 flush time (sec):", last.co2_flush);
    begin->wd_co2_measure_time = add_seconds(dlg, 4, "CO2 measure time (sec):", last.co2_sample);
    int y = 5;
    if (g_running_nephs.count > 1)
        CURSDIALOG_add_button(dlg, 1, y++, 0, CURSDIALOG_STYLE_LIST, 0,
                              "Select nephelometers to spancheck...", sc_button_setnephs, nullptr, 0);
    COMMAND_ending(dlg, y, ENDING_WIDTH, "Begin", sc_button_begin_startnow_close);
}

void SPANCHECK_abort() {
    COMMAND_queue(MSG_COMMON_NEPH_SPANCHECK_ABORT, FRAME_TO_ALL, nullptr, nullptr, 0, nullptr);
}
