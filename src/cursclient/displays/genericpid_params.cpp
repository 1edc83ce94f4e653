// The dialogs that change a PID controller's set point and its parameters with their limits.
#include "cursclient/displays/genericpid.h"
#include "cursclient/kit/form.h"

namespace {

// ---- set point

using setpoint_form = FORM<GENERICPID_prv_data, NET_GENERICPID_Setpoint>;
constexpr setpoint_form::row SETPOINT_ROWS[] = {
    setpoint_form::number<&NET_GENERICPID_Setpoint::sp>("Setpoint:", GENERICPID_VALUE)};
constexpr setpoint_form SETPOINT{.title = "Change setpoint",
                                 .rows = SETPOINT_ROWS,
                                 .read = FORM_read<&GENERICPID_prv_data::lastsp>,
                                 .send = FORM_send<MSG_GENERICPID_SET>,
                                 .ok_width = 20,
                                 .trusts_start_values = true};

// ---- parameters

struct GENERICPID_parameters : NET_GENERICPID_ControllerParams {
    bool limit_p, limit_i, limit_d;
};

bool read_parameters(const GENERICPID_prv_data* pd, GENERICPID_parameters* start) {
    const NET_GENERICPID_ControllerParams& now = pd->info.params;
    const auto is_limited = [](double min, double max) {
        return !VESK_is_missing(min) || !VESK_is_missing(max);
    };
    *start = {now, is_limited(now.min.p, now.max.p), is_limited(now.min.i, now.max.i),
              is_limited(now.min.d, now.max.d)};
    return true;
}

void send_parameters(GENERICPID_prv_data* pd, const GENERICPID_parameters& entered) {
    NET_GENERICPID_ControllerParams wanted = entered;
    if (!entered.limit_p) wanted.min.p = wanted.max.p = VESK_MISSING;
    if (!entered.limit_i) wanted.min.i = wanted.max.i = VESK_MISSING;
    if (!entered.limit_d) wanted.min.d = wanted.max.d = VESK_MISSING;
    COMMAND_send(pd, MSG_GENERICPID_SET_PARMS, wanted);
}

using form = FORM<GENERICPID_prv_data, GENERICPID_parameters>;
using values = GENERICPID_parameters;
using terms = NET_GENERICPID_Params;
constexpr FORM_number limit(int x) {
    return {.format = "%e", .max_len = 12, .as_typed = true, .x = x};
}
constexpr FORM_check LIMIT_SWITCH{.width = 12};
constexpr int MIN = 14, MAX = 31;  // columns
constexpr form::row ROWS[] = {
    form::number<&values::params, &terms::p>("P: ", GENERICPID_VALUE),
    form::number<&values::params, &terms::i>("I: ", GENERICPID_VALUE),
    form::number<&values::params, &terms::d>("D: ", GENERICPID_VALUE),
    form::check<&values::limit_p>("Limit P", LIMIT_SWITCH),
    form::number<&values::min, &terms::p>("Min:", limit(MIN)),
    form::number<&values::max, &terms::p>("Max:", limit(MAX)),
    form::check<&values::limit_i>("Limit I", LIMIT_SWITCH),
    form::number<&values::min, &terms::i>("Min:", limit(MIN)),
    form::number<&values::max, &terms::i>("Max:", limit(MAX)),
    // Once pressed it reads P, as it always has: the flag that it flips is D's.
    form::check<&values::limit_d>("Limit D", {.pressed_label = "Limit P", .width = LIMIT_SWITCH.width}),
    form::number<&values::min, &terms::d>("Min:", limit(MIN)),
    form::number<&values::max, &terms::d>("Max:", limit(MAX)),
};
constexpr form PARAMETERS{.title = "Change PID Parameters",
                          .rows = ROWS,
                          .read = read_parameters,
                          .send = send_parameters,
                          .ok_width = 23,
                          .trusts_start_values = true};

}  // namespace

void GENERICPID_open_setpoint(GENERICPID_prv_data* pd, DWORD uid) {
    FORM_open<SETPOINT>(pd, uid);
}

void GENERICPID_open_params(GENERICPID_prv_data* pd, DWORD uid) {
    FORM_open<PARAMETERS>(pd, uid);
}
