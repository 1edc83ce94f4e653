#include "cursclient/settings.h"

#include <algorithm>

#include "cursclient/globals.h"
#include "libvesk/support/util.h"

namespace {

constexpr std::size_t MOST_OF_A_NAME = 40;

const char* key_of(SETTINGS_switch which) {
    switch (which) {
        case SETTINGS_READ_ONLY:
            return "Settings;ReadOnly";
        case SETTINGS_CONFIRM:
            return "Settings;ConfirmCommands";
        case SETTINGS_RECONNECT:
            return "Settings;Reconnect";
        case SETTINGS_MOUSE:
            return "Settings;Mouse";
    }
    return "";
}

}  // namespace

BOOL SETTINGS_on(SETTINGS_switch which) {
    const char* value = CONF_lookup(g_conf, key_of(which));
    return value != nullptr && UTIL_text_is_true(value);
}

std::string SETTINGS_station_name() {
    const char* value = CONF_lookup(g_conf, "Settings;StationName");
    std::string name(value != nullptr ? value : "");
    name.resize(std::min(name.size(), MOST_OF_A_NAME));
    std::ranges::replace_if(
        name, [](char c) { return !UTIL_is_printable(static_cast<unsigned char>(c)); }, ' ');
    return name;
}
