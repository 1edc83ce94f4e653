// The dialog that starts a PID controller's automatic tuning, and the list of the rules that make parameters
// of what it measures.
#include <cmath>
#include <iterator>

#include "cursclient/displays/genericpid.h"
#include "cursclient/kit/command.h"

namespace {

constexpr int MAX_COUNT = 8;
constexpr int BUTTON_WIDTH = 22;

// What is proposed, as shares of the present output.
constexpr double AMPLITUDE_SHARE = 0.25;
constexpr double STABLITY_SHARE = 0.005;

// Indexed by NET_GENERICPID_TuningParamGenType.
constexpr const char* g_genericpidtuningtypes[] = {
    "Tyreus-Luyben PID", "Tyreus-Luyben PI", "Ziegler-Nichols PID", "Ziegler-Nichols PI", "Ziegler-Nichols P",
};
static_assert(std::size(g_genericpidtuningtypes) == GENERICPID_TUNE_COUNT);

constexpr CURSDIALOG_DEFAULT_entry_numeric_param RUNS{1, 9999, "%.0f", nullptr};
constexpr CURSDIALOG_DEFAULT_entry_numeric_param SAMPLES{1, 999999, "%.0f", nullptr};
constexpr CURSDIALOG_DEFAULT_entry_numeric_param POSITIVE{1e-99, 9.999e+99, "%e", nullptr};

struct GENERICPID_starttune_dlg_param {
    DWORD uid;
    CURSDIALOG_widget *wd_stablity_samples, *wd_stablity_stddev;
    CURSDIALOG_widget *wd_start_out, *wd_output_amp;
    CURSDIALOG_widget *wd_num_runs, *wd_num_prime;
    CURSDIALOG_widget* wd_type_select;  // the button that shows the rule
    CURSDIALOG_type* dlg_type_select;   // the open list of rules, or null
    std::uint32_t param_gen;            // chosen
};
using tuning_form = GENERICPID_starttune_dlg_param;

// ---- the rule

std::string method_label(std::uint32_t param_gen) {
    return std::string("Calculation method: ") + g_genericpidtuningtypes[param_gen];
}

void method_chosen(CURSDIALOG_type*, void* dlg_user_data, CURSDIALOG_widget*, void* wd_user_data,
                   CURSDIALOG_button_action* act) {
    act->close_dialog = TRUE;
    auto* form = COMMAND_param<tuning_form>(dlg_user_data);
    std::memcpy(&form->param_gen, wd_user_data, sizeof form->param_gen);
    CURSDIALOG_setlabel(form->wd_type_select, method_label(form->param_gen).c_str());
}

void method_list_closed(CURSDIALOG_type*, void* dlg_user_data) {
    COMMAND_param<tuning_form>(dlg_user_data)->dlg_type_select = nullptr;
}

void open_method_list(CURSDIALOG_type*, void* dlg_user_data, CURSDIALOG_widget*, void*,
                      CURSDIALOG_button_action*) {
    auto* form = COMMAND_param<tuning_form>(dlg_user_data);
    if (form->dlg_type_select != nullptr) return;
    CURSDIALOG_type* dlg = DIALOG_create("Calculation method", 0, &form, sizeof form, method_list_closed);
    form->dlg_type_select = dlg;
    for (std::uint32_t type = 0; type < GENERICPID_TUNE_COUNT; ++type) {
        CURSDIALOG_widget* button =
            CURSDIALOG_add_button(dlg, 1, 1 + static_cast<int>(type), 0, CURSDIALOG_STYLE_LIST, 0,
                                  g_genericpidtuningtypes[type], method_chosen, &type, sizeof type);
        if (type == form->param_gen) CURSDIALOG_force_widget_focus(dlg, button);
    }
}

// ---- the dialog

void tuning_dialog_closed(CURSDIALOG_type*, void* dlg_user_data) {
    CURSDIALOG_close(COMMAND_param<tuning_form>(dlg_user_data)->dlg_type_select);
}

// What an entry with limits within the type's range holds.
std::uint32_t entry_count(CURSDIALOG_widget* entry) {
    return static_cast<std::uint32_t>(COMMAND_entry_value(entry));
}

void begin(CURSDIALOG_type*, void* dlg_user_data, CURSDIALOG_widget*, void*, CURSDIALOG_button_action* act) {
    act->close_dialog = TRUE;
    const auto* form = COMMAND_param<tuning_form>(dlg_user_data);
    const auto* pd = COMMAND_display<GENERICPID_prv_data>(form->uid);
    if (pd == nullptr) return;
    NET_GENERICPID_TuningRequest request{};
    request.stablity_samples = entry_count(form->wd_stablity_samples);
    request.stablity_stddev = COMMAND_entry_value(form->wd_stablity_stddev);
    request.num_runs = entry_count(form->wd_num_runs);
    request.num_prime = entry_count(form->wd_num_prime);
    request.start_out = COMMAND_entry_value(form->wd_start_out);
    request.output_amp = COMMAND_entry_value(form->wd_output_amp);
    request.param_gen = form->param_gen;
    COMMAND_send(pd, MSG_GENERICPID_TUNING_START, request);
}

}  // namespace

void GENERICPID_open_tuning(GENERICPID_prv_data* pd, DWORD uid) {
    const auto [dlg, form] = COMMAND_create_form<tuning_form>("Start tuning sequence", tuning_dialog_closed);
    if (dlg == nullptr) return;
    const double out = pd->instant.out;
    form->uid = uid;
    form->wd_num_runs = COMMAND_number_entry(dlg, 1, "Number of runs: ", "8", MAX_COUNT, &RUNS);
    form->wd_num_prime = COMMAND_number_entry(dlg, 2, "Number of priming cycles: ", "2", MAX_COUNT, &RUNS);
    form->wd_start_out = GENERICPID_value_entry(dlg, 3, "Start output: ", out);
    form->wd_output_amp = GENERICPID_value_entry(
        dlg, 4, "Output oscillation amplitude: ", AMPLITUDE_SHARE * std::fabs(out), &POSITIVE);
    form->wd_stablity_samples =
        COMMAND_number_entry(dlg, 5, "PV samples for stablity: ", "120", MAX_COUNT, &SAMPLES);
    form->wd_stablity_stddev = GENERICPID_value_entry(
        dlg, 6, "PV StdDev for stablity: ", STABLITY_SHARE * std::fabs(out), &POSITIVE);
    form->wd_type_select =
        CURSDIALOG_add_button(dlg, 1, 7, 0, CURSDIALOG_STYLE_LIST, 0, method_label(form->param_gen).c_str(),
                              open_method_list, nullptr, 0);
    COMMAND_ending(dlg, 8, BUTTON_WIDTH, "Begin", begin);
}
