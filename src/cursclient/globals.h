// The state that every layer of the console may ask for: the link, the settings, the tick. The layers above
// set it; nothing here knows them.
#pragma once

#include "libvesk/link/inst.h"
#include "libvesk/support/conf.h"

extern INST_link g_lnk;             // the one link to the server
extern CONF_node* g_conf;           // root of the settings; null until loaded or first saved
extern unsigned long g_tick;        // display tick: one per 0.2 s of wall time, from 1
extern const char* g_hostoverride;  // host from the command line, or null
extern const char* g_conffile;      // file given with -c, or null

// The client options. The main menu reads and saves them, its dialog changes them.
extern double
    g_errordisp_show_time;  // seconds that an error line stays up; none comes up by itself at 0 or less
extern BOOL g_conf_enable_color;

// Attention texts blink with the tick: bold in its first half.
[[nodiscard]] inline BOOL GLOBALS_blink_bold() {
    return (g_tick & 3) < 2;
}
