// The shell of the console: start-up in counted stages, the loop, key and message routing.
#pragma once

#include "cursclient/globals.h"

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
