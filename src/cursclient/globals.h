// What every layer of the console may ask: the link, the settings, the tick. Whoever starts the console sets
// them; nothing here knows a layer above.
#pragma once

#include "libvesk/link/inst.h"
#include "libvesk/support/conf.h"

extern INST_link g_lnk;             // the one link to the server
extern CONF_node* g_conf;           // root of the settings; null until loaded or first saved
extern unsigned long g_tick;        // display tick: one per 0.2 s of wall time, from 1
extern const char* g_hostoverride;  // host from the command line, or null
extern const char* g_conffile;      // file given with -c, or null

// Attention texts blink with the tick: bold in its first half.
[[nodiscard]] inline BOOL GLOBALS_blink_bold() {
    return (g_tick & 3) < 2;
}
