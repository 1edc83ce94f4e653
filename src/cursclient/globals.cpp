#include "cursclient/globals.h"

INST_link g_lnk;
CONF_node* g_conf = nullptr;
unsigned long g_tick = 0;
const char* g_hostoverride = nullptr;
const char* g_conffile = nullptr;
double g_errordisp_show_time = 2.0;
BOOL g_conf_enable_color = TRUE;
