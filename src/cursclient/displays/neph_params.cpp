// The parameters of the three-wavelength nephelometer: the dialog starts with what the instrument last
// reported and sends a whole configuration, and an order to the zero valve when one was chosen.
#include "cursclient/displays/neph.h"
#include "cursclient/kit/form.h"

namespace {

constexpr std::int16_t VALVE_UNCHANGED = -1;

struct NEPH_parameters : NET_NEPH_Config {
    std::int16_t v;  // of the zero valve
};

bool read_parameters(const NEPH_prv_data* pd, NEPH_parameters* start) {
    *start = {pd->config, VALVE_UNCHANGED};
    return true;
}

void send_parameters(NEPH_prv_data* pd, const NEPH_parameters& wanted) {
    COMMAND_send<NET_NEPH_Config>(pd, MSG_NEPH_CONFIG, wanted);
    if (wanted.v != VALVE_UNCHANGED)
        COMMAND_send(pd, MSG_NEPH_OVERRIDEPARAMS, NET_NEPH_OverrideParams{wanted.v});
}

constexpr FORM_choice SMB[] = {{.value = TRUE, .label = "Backscatter mode"},
                               {.value = FALSE, .label = "Total mode"}};
constexpr FORM_choice LAMP[] = {{.value = TRUE, .label = "Lamp ON"}, {.value = FALSE, .label = "Lamp OFF"}};
constexpr FORM_choice VALVE[] = {{.value = VALVE_UNCHANGED, .label = "Zero valve unchanged"},
                                 {.value = 0, .label = "Zero valve off"},
                                 {.value = 1, .label = "Zero valve on"}};

using form = FORM<NEPH_prv_data, NEPH_parameters>;
using config = NEPH_parameters;
// The wire has 16 bits where STP may be longer: it wraps.
constexpr FORM_number upto(double min, double max) {
    return {.min = min, .max = max, .format = "%.0f", .max_len = 8};
}
constexpr form::row ROWS[] = {
    form::number<&config::smz>("SMZ - Number of autozero measurements to average: ", upto(0, 24)),
    form::number<&config::sta>("STA - Length (sec) of averaging time: ", upto(1, 9960)),
    form::number<&config::stb>("STB - Blanking time (sec): ", upto(5, 999)),
    form::number<&config::stp>("STP - Time (sec) between autozeros: ", upto(10, 99999)),
    form::number<&config::stz>("STZ - Duration (sec) of filter air zero check: ", upto(1, 9999)),
    form::number<&config::sp>("SP - Lamp power (watts): ", upto(0, 150)),
    form::number<&config::b>("B - Blower (0-255): ", upto(0, 255)),
    form::number<&config::svb>("SVB - Blue PMT voltage (1-1200): ", upto(1, 1200)),
    form::number<&config::svg>("SVG - Green PMT voltage (1-1200): ", upto(1, 1200)),
    form::number<&config::svr>("SVR - Red PMT voltage (1-1200): ", upto(1, 1200)),
    form::number<&config::sx>("SX - Analog out (mv): ", upto(0, 10000)),
    form::cycle<&config::smb>("", SMB),
    form::cycle<&config::l>("", LAMP),
    form::cycle<&config::v>("", VALVE),
};
constexpr form PARAMETERS{.title = "Change paramters",
                          .rows = ROWS,
                          .read = read_parameters,
                          .send = send_parameters,
                          .ok_width = 26,
                          .cancel_width = 25,
                          .focuses_first_row = true,
                          .trusts_start_values = true};

}  // namespace

void NEPH_open_parameters(NEPH_prv_data* pd, DWORD uid) {
    FORM_open<PARAMETERS>(pd, uid);
}
