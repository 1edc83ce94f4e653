// The settings file of the console: where it is, reading it into g_conf and saving g_conf with what the
// owners of settings have to say.
#pragma once

#include <cstdio>
#include <span>
#include <string>

#include "libvesk/support/types.h"

// Puts the present values of one layer's settings into g_conf.
using CONFFILE_owner = void (*)();
// All owners, in the order in which new settings enter the file; the shell of the console defines it.
extern const std::span<const CONFFILE_owner> g_conf_owners;

// FALSE, said on standard error, when the file's name is that of a pipe, which would hold the console up, or
// of a device, which keeps nothing. A folder is a file that cannot be read.
[[nodiscard]] BOOL CONFFILE_is_usable();
// The settings file, opened for `mode`; null (errno says why) when that fails.
[[nodiscard]] std::FILE* open_conf_file(const char* mode);
// Also removes what a save that was killed has left. FALSE when there is no file.
BOOL load_conf_file();
// Lets every owner store its settings in the tree and writes it. FALSE when that fails: the file keeps what
// it had, CONFFILE_error says why, and so does a line on standard error. It fails after a load that read only
// a part of the file, whose rest would be lost. New files get mode 0600.
BOOL save_conf_file();

struct CONFFILE_failure {
    std::string reason;
    std::string file;  // "" when its name cannot be built
};
// The last save that failed.
[[nodiscard]] const CONFFILE_failure& CONFFILE_error();
