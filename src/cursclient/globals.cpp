#include "cursclient/globals.h"

INST_link g_lnk;
CONF_node* g_conf = nullptr;
unsigned long g_tick = 0;
const char* g_hostoverride = nullptr;
const char* g_conffile = nullptr;
