// The shell of the console: start-up in counted stages, the loop, key and message routing, the settings file.
#pragma once

#include <cstdio>

#include "libvesk/conf.h"
#include "libvesk/inst.h"

extern INST_link g_lnk;             // the one link to the server
extern CONF_node* g_conf;           // root of the settings; null until loaded or first saved
extern unsigned long g_tick;        // display tick: one per 0.2 s of wall time, from 1
extern const char* g_hostoverride;  // host from the command line, or null
extern const char* g_conffile;      // file given with -c, or null

// Attention texts blink with the tick: bold in its first half.
[[nodiscard]] inline BOOL CURSCLIENT_blink_bold() {
    return (g_tick & 3) < 2;
}

// The program; main() only calls this. Returns the exit code of a start-up that failed; the loop itself ends
// with exit().
int CURSCLIENT_main(int argc, char** argv);

// Parses the command line into g_conffile and g_hostoverride; -h prints the usage and exits with 1.
void proc_arguments(int argc, char** argv);
void print_usage();
void message_proc(VESKMSG_proc_msg* pm, void* param);
void distribute_key(int key);
// The drawing of one pass: every layer from bottom to top, then one physical update of the terminal.
void redraw();

// The settings file, opened for `mode`; null (errno says why) when that fails.
[[nodiscard]] std::FILE* open_conf_file(const char* mode);
BOOL load_conf_file();
// Lets every owner store its settings in the tree and writes it; the file keeps what it had when that fails,
// and a line on standard error names it and the reason. New files get mode 0600.
BOOL save_conf_file();
