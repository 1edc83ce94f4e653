// The parameters of the three-wavelength nephelometer: the dialog starts with what the instrument last
// reported and sends a whole configuration, and an order to the zero valve when one was chosen.
#include <cstdio>
#include <iterator>

#include "cursclient/displays/neph.h"

namespace {

constexpr int MAX_DIGITS = 8;

// One numeric parameter; the row of its entry is its place in the table.
struct parameter {
    std::int16_t NET_NEPH_Config::*member;
    const char* label;
    double min, max;
};
constexpr parameter PARAMETERS[] = {
    {&NET_NEPH_Config::smz, "SMZ - Number of autozero measurements to average: ", 0, 24},
    {&NET_NEPH_Config::sta, "STA - Length (sec) of averaging time: ", 1, 9960},
    {&NET_NEPH_Config::stb, "STB - Blanking time (sec): ", 5, 999},
    {&NET_NEPH_Config::stp, "STP - Time (sec) between autozeros: ", 10, 99999},
    {&NET_NEPH_Config::stz, "STZ - Duration (sec) of filter air zero check: ", 1, 9999},
    {&NET_NEPH_Config::sp, "SP - Lamp power (watts): ", 0, 150},
    {&NET_NEPH_Config::b, "B - Blower (0-255): ", 0, 255},
    {&NET_NEPH_Config::svb, "SVB - Blue PMT voltage (1-1200): ", 1, 1200},
    {&NET_NEPH_Config::svg, "SVG - Green PMT voltage (1-1200): ", 1, 1200},
    {&NET_NEPH_Config::svr, "SVR - Red PMT voltage (1-1200): ", 1, 1200},
    {&NET_NEPH_Config::sx, "SX - Analog out (mv): ", 0, 10000},
};
constexpr int N_PARAMETERS = static_cast<int>(std::size(PARAMETERS));

struct NEPH_config_wdptrs {
    CURSDIALOG_widget* entries[N_PARAMETERS];  // in the order of PARAMETERS
    BOOL smb;
    BOOL l;
    std::int16_t v;  // of the zero valve, VALVE_UNCHANGED for none
    DWORD uid;
};

constexpr std::int16_t VALVE_UNCHANGED = -1;

const char* label_smb(BOOL on) {
    return on ? "Backscatter mode" : "Total mode";
}
const char* label_l(BOOL on) {
    return on ? "Lamp ON" : "Lamp OFF";
}
const char* label_v(std::int16_t v) {
    if (v == VALVE_UNCHANGED) return "Zero valve unchanged";
    return v == 0 ? "Zero valve off" : "Zero valve on";
}

void NEPH_button_smb(CURSDIALOG_type*, void* dlg_user_data, CURSDIALOG_widget* wd, void*,
                     CURSDIALOG_button_action*) {
    auto* wds = COMMAND_param<NEPH_config_wdptrs>(dlg_user_data);
    wds->smb = !wds->smb;
    CURSDIALOG_setlabel(wd, label_smb(wds->smb));
}

void NEPH_button_l(CURSDIALOG_type*, void* dlg_user_data, CURSDIALOG_widget* wd, void*,
                   CURSDIALOG_button_action*) {
    auto* wds = COMMAND_param<NEPH_config_wdptrs>(dlg_user_data);
    wds->l = !wds->l;
    CURSDIALOG_setlabel(wd, label_l(wds->l));
}

void NEPH_button_v(CURSDIALOG_type*, void* dlg_user_data, CURSDIALOG_widget* wd, void*,
                   CURSDIALOG_button_action*) {
    auto* wds = COMMAND_param<NEPH_config_wdptrs>(dlg_user_data);
    wds->v = wds->v == 1 ? VALVE_UNCHANGED : static_cast<std::int16_t>(wds->v + 1);
    CURSDIALOG_setlabel(wd, label_v(wds->v));
}

[[nodiscard]] NET_NEPH_Config entered(const NEPH_config_wdptrs& wds, NET_NEPH_Config config) {
    for (int i = 0; i < N_PARAMETERS; ++i) {
        const auto value = static_cast<std::int32_t>(COMMAND_entry_value(wds.entries[i]));
        // The wire has 16 bits where the dialog lets the time between zeros be longer: it wraps.
        config.*PARAMETERS[i].member = static_cast<std::int16_t>(value);
    }
    config.smb = wds.smb;
    config.l = wds.l;
    return config;
}

void NEPH_button_applyconfig_close(CURSDIALOG_type*, void* dlg_user_data, CURSDIALOG_widget*, void*,
                                   CURSDIALOG_button_action* act) {
    act->close_dialog = TRUE;
    const auto& wds = *COMMAND_param<NEPH_config_wdptrs>(dlg_user_data);
    const auto* pd = COMMAND_display<NEPH_prv_data>(wds.uid);
    if (pd == nullptr) return;
    COMMAND_send(pd, MSG_NEPH_CONFIG, entered(wds, pd->config));
    if (wds.v != VALVE_UNCHANGED) COMMAND_send(pd, MSG_NEPH_OVERRIDEPARAMS, NET_NEPH_OverrideParams{wds.v});
}

void add_entries(CURSDIALOG_type* dlg, NEPH_config_wdptrs* wds, const NET_NEPH_Config& config) {
    for (int i = 0; i < N_PARAMETERS; ++i) {
        const parameter& p = PARAMETERS[i];
        const CURSDIALOG_DEFAULT_entry_numeric_param limits{p.min, p.max, "%.0f", nullptr};
        char initial[16];
        std::snprintf(initial, sizeof initial, "%hd", config.*p.member);
        wds->entries[i] = COMMAND_number_entry(dlg, i + 1, p.label, initial, MAX_DIGITS, &limits);
    }
}

void add_toggles(CURSDIALOG_type* dlg, const NEPH_config_wdptrs& wds) {
    const auto add = [dlg](int y, const char* label, CURSDIALOG_button_cb pressed) {
        CURSDIALOG_add_button(dlg, 1, y, 0, CURSDIALOG_STYLE_LIST, 0, label, pressed, nullptr, 0);
    };
    add(12, label_smb(wds.smb), NEPH_button_smb);
    add(13, label_l(wds.l), NEPH_button_l);
    add(14, label_v(wds.v), NEPH_button_v);
}

}  // namespace

void NEPH_open_parameters(NEPH_prv_data* pd, DWORD uid) {
    const auto [dlg, wds] = COMMAND_create_form<NEPH_config_wdptrs>("Change paramters");
    if (dlg == nullptr) return;
    wds->smb = pd->config.smb;
    wds->l = pd->config.l;
    wds->v = VALVE_UNCHANGED;
    wds->uid = uid;
    add_entries(dlg, wds, pd->config);
    add_toggles(dlg, *wds);
    CURSDIALOG_add_button(dlg, 1, 15, 26, CURSDIALOG_STYLE_ROW, 0, "Apply", NEPH_button_applyconfig_close,
                          nullptr, 0);
    CURSDIALOG_add_button(dlg, 27, 15, 25, CURSDIALOG_STYLE_ROW, 0, "Cancel", CURSDIALOG_DEFAULT_button_close,
                          nullptr, 0);
    CURSDIALOG_force_widget_focus(dlg, wds->entries[0]);
}
