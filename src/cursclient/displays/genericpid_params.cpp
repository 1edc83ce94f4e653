// The dialogs that change a PID controller's set point and its parameters with their limits.
#include <cstdio>

#include "cursclient/displays/genericpid.h"
#include "cursclient/kit/command.h"
#include "libvesk/support/util.h"

namespace {

constexpr int MAX_VALUE = 16;
constexpr int MAX_LIMIT = 12;
constexpr int SETPOINT_BUTTON_WIDTH = 20;
constexpr int PARAMS_BUTTON_WIDTH = 23;
// The row of a term's limits: the toggle, then the two entries.
constexpr int TOGGLE_WIDTH = 12;
constexpr int MIN_COLUMN = 14;
constexpr int MAX_COLUMN = 31;

// A value as "%e" shows it; with fewer decimals where that would not fit the entry, which would cut off the
// end of its exponent and so make another number of it.
std::string value_text(double value, int max_len) {
    char text[32];
    for (int decimals = 6; decimals >= 0; --decimals)
        if (std::snprintf(text, sizeof text, "%.*e", decimals, value) <= max_len) break;
    return text;
}

CURSDIALOG_widget* add_limit(CURSDIALOG_type* dlg, int x, int y, const char* label, double value) {
    return CURSDIALOG_add_entry(dlg, x, y, 0, 0, 0, label, value_text(value, MAX_LIMIT).c_str(), MAX_LIMIT,
                                CURSDIALOG_DEFAULT_entry_numeric, nullptr, 0);
}

// ---- set point

struct GENERICPID_setsp_dlg_param {
    DWORD uid;
    CURSDIALOG_widget* wd_sp;
};

void apply_setpoint(CURSDIALOG_type*, void* dlg_user_data, CURSDIALOG_widget*, void*,
                    CURSDIALOG_button_action* act) {
    act->close_dialog = TRUE;
    const auto* form = COMMAND_param<GENERICPID_setsp_dlg_param>(dlg_user_data);
    const auto* pd = COMMAND_display<GENERICPID_prv_data>(form->uid);
    if (pd == nullptr) return;
    COMMAND_send(pd, MSG_GENERICPID_SET, NET_GENERICPID_Setpoint{COMMAND_entry_value(form->wd_sp)});
}

// ---- parameters

struct GENERICPID_setparams_dlg_param {
    DWORD uid;
    CURSDIALOG_widget *wd_p, *wd_i, *wd_d;
    CURSDIALOG_widget *wd_min_p, *wd_min_i, *wd_min_d;
    CURSDIALOG_widget *wd_max_p, *wd_max_i, *wd_max_d;
    BOOL limit_p, limit_i, limit_d;
};
using params_form = GENERICPID_setparams_dlg_param;

struct GENERPICPID_setparams_dolimit_param {
    std::size_t offset;  // of the limit flag in params_form
    char name[16];       // on the button once it was pressed
};

// One term of the controller: where its widgets are, and its values in a record of parameters.
struct term {
    const char* label;
    const char* name;
    CURSDIALOG_widget *params_form::*wd, *params_form::*wd_min, *params_form::*wd_max;
    BOOL params_form::*limit;
    std::size_t value;  // offset in NET_GENERICPID_Params
    GENERPICPID_setparams_dolimit_param toggle;
};
// The toggle of D names itself P once pressed, as it always has: the flag that it flips is D's.
#define TERM(name, x, toggle_name)                                                                 \
    {                                                                                              \
        name ": ", name, &params_form::wd_##x, &params_form::wd_min_##x, &params_form::wd_max_##x, \
            &params_form::limit_##x, offsetof(NET_GENERICPID_Params, x), {                         \
            offsetof(params_form, limit_##x), toggle_name                                          \
        }                                                                                          \
    }
constexpr term TERMS[] = {TERM("P", p, "P"), TERM("I", i, "I"), TERM("D", d, "P")};
#undef TERM

double value_of(const term& t, const NET_GENERICPID_Params& params) {
    return NETDSD_load<double>(reinterpret_cast<const std::byte*>(&params) + t.value);
}

void set_value(const term& t, NET_GENERICPID_Params* params, double value) {
    NETDSD_store<double>(reinterpret_cast<std::byte*>(params) + t.value, value);
}

std::string limit_label(BOOL on, const char* name) {
    return COMMAND_check_label(on, (std::string("Limit ") + name).c_str());
}

void GENERPICPID_button_setparams_dolimit(CURSDIALOG_type*, void* dlg_user_data, CURSDIALOG_widget* wd,
                                          void* wd_user_data, CURSDIALOG_button_action*) {
    GENERPICPID_setparams_dolimit_param toggle;
    std::memcpy(&toggle, wd_user_data, sizeof toggle);
    auto* form = reinterpret_cast<std::byte*>(COMMAND_param<params_form>(dlg_user_data));
    BOOL* flag = reinterpret_cast<BOOL*>(form + toggle.offset);
    *flag = !*flag;
    CURSDIALOG_setlabel(wd, limit_label(*flag, toggle.name).c_str());
}

void add_limits(CURSDIALOG_type* dlg, params_form* form, int y, const term& t,
                const NET_GENERICPID_ControllerParams& now) {
    const double min = value_of(t, now.min);
    const double max = value_of(t, now.max);
    form->*t.limit = !VESK_is_missing(min) || !VESK_is_missing(max);
    CURSDIALOG_add_button(dlg, 1, y, TOGGLE_WIDTH, 0, 0, limit_label(form->*t.limit, t.name).c_str(),
                          GENERPICPID_button_setparams_dolimit, &t.toggle, sizeof t.toggle);
    form->*t.wd_min = add_limit(dlg, MIN_COLUMN, y, "Min:", min);
    form->*t.wd_max = add_limit(dlg, MAX_COLUMN, y, "Max:", max);
}

void apply_params(CURSDIALOG_type*, void* dlg_user_data, CURSDIALOG_widget*, void*,
                  CURSDIALOG_button_action* act) {
    act->close_dialog = TRUE;
    const auto* form = COMMAND_param<params_form>(dlg_user_data);
    const auto* pd = COMMAND_display<GENERICPID_prv_data>(form->uid);
    if (pd == nullptr) return;
    auto wanted = NETDSD_default<NET_GENERICPID_ControllerParams>();  // unlimited
    for (const term& t : TERMS) {
        set_value(t, &wanted.params, COMMAND_entry_value(form->*t.wd));
        if (!(form->*t.limit)) continue;
        set_value(t, &wanted.min, COMMAND_entry_value(form->*t.wd_min));
        set_value(t, &wanted.max, COMMAND_entry_value(form->*t.wd_max));
    }
    COMMAND_send(pd, MSG_GENERICPID_SET_PARMS, wanted);
}

}  // namespace

CURSDIALOG_widget* GENERICPID_value_entry(CURSDIALOG_type* dlg, int y, const char* label, double value,
                                          const CURSDIALOG_DEFAULT_entry_numeric_param* limits) {
    return COMMAND_number_entry(dlg, y, label, value_text(value, MAX_VALUE).c_str(), MAX_VALUE, limits);
}

void GENERICPID_open_setpoint(GENERICPID_prv_data* pd, DWORD uid) {
    const auto [dlg, form] = COMMAND_create_form<GENERICPID_setsp_dlg_param>("Change setpoint");
    if (dlg == nullptr) return;
    form->uid = uid;
    form->wd_sp = GENERICPID_value_entry(dlg, 1, "Setpoint:", pd->lastsp.sp);
    COMMAND_ending(dlg, 2, SETPOINT_BUTTON_WIDTH, "Apply", apply_setpoint);
}

void GENERICPID_open_params(GENERICPID_prv_data* pd, DWORD uid) {
    const auto [dlg, form] = COMMAND_create_form<params_form>("Change PID Parameters");
    if (dlg == nullptr) return;
    form->uid = uid;
    const NET_GENERICPID_ControllerParams& now = pd->info.params;
    int y = 1;
    for (const term& t : TERMS)
        form->*t.wd = GENERICPID_value_entry(dlg, y++, t.label, value_of(t, now.params));
    for (const term& t : TERMS)
        add_limits(dlg, form, y++, t, now);
    COMMAND_ending(dlg, y, PARAMS_BUTTON_WIDTH, "Apply", apply_params);
}
