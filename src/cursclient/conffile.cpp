// Reading and saving the settings file.
#include "cursclient/conffile.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "cursclient/globals.h"
#include "libvesk/support/savefile.h"
#include "libvesk/support/util.h"

namespace {

constexpr char NOT_A_FILE[] = "it is not a regular file";
constexpr char NOT_WHOLE[] = "it was not read whole when the console started";

bool g_not_whole = false;  // the tree lacks settings that the file has
CONFFILE_failure g_failure;

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

// The type of what has that name (S_IFREG and so on), 0 for nothing.
mode_t type_of(const std::string& name) {
    struct stat st {};
    return stat(name.c_str(), &st) == 0 ? st.st_mode & S_IFMT : 0;
}

bool save_failed(const char* reason) {
    g_failure = {reason, UTIL_printable(conf_file_name())};
    UTIL_complain("cannot save the configuration to %s: %s", g_failure.file.c_str(), reason);
    return false;
}

}  // namespace

BOOL CONFFILE_is_usable() {
    const std::string name = conf_file_name();
    const mode_t type = type_of(name);
    if (type == 0 || type == S_IFREG || type == S_IFDIR) return TRUE;
    UTIL_complain("cannot use the configuration file %s: %s", name.c_str(), NOT_A_FILE);
    return FALSE;
}

std::FILE* open_conf_file(const char* mode) {
    const std::string name = conf_file_name();
    return name.empty() ? nullptr : std::fopen(name.c_str(), mode);
}

BOOL load_conf_file() {
    if (const std::string name = conf_file_name(); !name.empty()) SAVEFILE::clean_up(name);
    std::FILE* file = open_conf_file("r");
    g_not_whole = file == nullptr && errno != ENOENT;
    if (file == nullptr) return FALSE;
    CONF_free(g_conf);
    g_conf = CONF_alloc();
    g_not_whole = !CONF_load(g_conf, file);
    std::fclose(file);
    return TRUE;
}

BOOL save_conf_file() {
    const std::string name = conf_file_name();
    if (name.empty()) return save_failed(std::strerror(errno));
    if (const mode_t type = type_of(name); type != 0 && type != S_IFREG) return save_failed(NOT_A_FILE);
    if (g_not_whole) return save_failed(NOT_WHOLE);
    SAVEFILE save(name);  // the file may hold the password: what is created is for its owner alone
    if (save.file() == nullptr) return save_failed(std::strerror(errno));
    if (g_conf == nullptr) g_conf = CONF_alloc();
    for (const CONFFILE_owner owner : g_conf_owners)
        owner();
    return CONF_write(g_conf, save.file()) && save.keep() ? TRUE : save_failed(std::strerror(errno));
}

const CONFFILE_failure& CONFFILE_error() {
    return g_failure;
}
