// The settings file of the console: where it is, reading it into g_conf and saving g_conf with what the
// owners of settings have to say.
#pragma once

#include <cstdio>
#include <span>

#include "libvesk/support/types.h"

// Puts the present values of one layer's settings into g_conf.
using CONFFILE_owner = void (*)();
// All owners, in the order in which new settings enter the file; the shell of the console defines it.
extern const std::span<const CONFFILE_owner> g_conf_owners;

// The settings file, opened for `mode`; null (errno says why) when that fails.
[[nodiscard]] std::FILE* open_conf_file(const char* mode);
BOOL load_conf_file();
// Lets every owner store its settings in the tree and writes it; the file keeps what it had when that fails,
// and a line on standard error names it and the reason. New files get mode 0600.
BOOL save_conf_file();
