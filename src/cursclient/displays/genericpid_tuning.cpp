// The dialog that starts a PID controller's automatic tuning.
#include <array>
#include <cmath>

#include "cursclient/displays/genericpid.h"
#include "cursclient/kit/form.h"

namespace {

constexpr auto RULES = [] {
    std::array<FORM_choice, GENERICPID_TUNE_COUNT> rules{};
    for (std::size_t i = 0; i < rules.size(); ++i)
        rules[i] = {static_cast<double>(g_genericpidtuningtypes[i].value), g_genericpidtuningtypes[i].text};
    return rules;
}();

using request = NET_GENERICPID_TuningRequest;

// Proposes shares of the present output.
bool propose(const GENERICPID_prv_data* pd, request* start) {
    static constexpr double AMPLITUDE_SHARE = 0.25;
    static constexpr double STABLITY_SHARE = 0.005;
    const double out = pd->instant.out;
    *start = {.stablity_samples = 120,
              .stablity_stddev = STABLITY_SHARE * std::fabs(out),
              .num_runs = 8,
              .num_prime = 2,
              .start_out = out,
              .output_amp = AMPLITUDE_SHARE * std::fabs(out),
              .param_gen = GENERICPID_TUNE_TLC_PID};
    return true;
}

constexpr FORM_number RUNS{.min = 1, .max = 9999, .format = "%.0f", .max_len = 8};
constexpr FORM_number SAMPLES{.min = 1, .max = 999999, .format = "%.0f", .max_len = 8};
constexpr FORM_number POSITIVE{.min = 1e-99, .max = 9.999e+99, .format = "%e", .max_len = 16};

using form = FORM<GENERICPID_prv_data, request>;
constexpr form::row ROWS[] = {
    form::number<&request::num_runs>("Number of runs: ", RUNS),
    form::number<&request::num_prime>("Number of priming cycles: ", RUNS),
    form::number<&request::start_out>("Start output: ", GENERICPID_VALUE),
    form::number<&request::output_amp>("Output oscillation amplitude: ", POSITIVE),
    form::number<&request::stablity_samples>("PV samples for stablity: ", SAMPLES),
    form::number<&request::stablity_stddev>("PV StdDev for stablity: ", POSITIVE),
    form::pick<&request::param_gen>("Calculation method", "Calculation method: ", RULES),
};
constexpr form TUNING{.title = "Start tuning sequence",
                      .rows = ROWS,
                      .read = propose,
                      .send = FORM_send<MSG_GENERICPID_TUNING_START>,
                      .ok = "Begin",
                      .ok_width = 22,
                      .trusts_start_values = true};

}  // namespace

void GENERICPID_open_tuning(GENERICPID_prv_data* pd, DWORD uid) {
    FORM_open<TUNING>(pd, uid);
}
