// Reading and saving the settings file.
#include "cursclient/conffile.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include "cursclient/globals.h"
#include "libvesk/support/savefile.h"
#include "libvesk/support/util.h"

namespace {

// The settings file's name; empty (errno says why) when it cannot be built.
std::string conf_file_name() {
    if (g_conffile != nullptr) return g_conffile;
    const char* home = std::getenv("HOME");
    char name[256];
    const int n = std::snprintf(name, sizeof name, "%s/.veskcursclient.conf", home != nullptr ? home : ".");
    if (n >= 0 && static_cast<std::size_t>(n) < sizeof name) return name;
    errno = ENAMETOOLONG;
    return "";
}

BOOL save_failed(int error) {
    UTIL_complain("cannot save the configuration to %s: %s", conf_file_name().c_str(), std::strerror(error));
    return FALSE;
}

}  // namespace

std::FILE* open_conf_file(const char* mode) {
    const std::string name = conf_file_name();
    return name.empty() ? nullptr : std::fopen(name.c_str(), mode);
}

BOOL load_conf_file() {
    std::FILE* file = open_conf_file("r");
    if (file == nullptr) return FALSE;
    CONF_free(g_conf);
    g_conf = CONF_alloc();
    CONF_load(g_conf, file);
    std::fclose(file);
    return TRUE;
}

BOOL save_conf_file() {
    const std::string name = conf_file_name();
    if (name.empty()) return save_failed(errno);
    SAVEFILE save(name);  // the file may hold the password: what is created is for its owner alone
    if (save.file() == nullptr) return save_failed(errno);
    if (g_conf == nullptr) g_conf = CONF_alloc();
    for (const CONFFILE_owner owner : g_conf_owners)
        owner();
    return CONF_write(g_conf, save.file()) && save.keep() ? TRUE : save_failed(errno);
}
