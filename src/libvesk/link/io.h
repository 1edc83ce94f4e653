// The registry of I/O channels: the latest value and running average of every channel that the station
// reports, by name. It follows the MSG_IO_* messages of the links registered with it:
//   MSG_IO_INSTANT     sets the value, missing included; a running average only when it carries one
//   MSG_IO_RUNNINGAVG  sets the running average, missing included; a value only when it carries one
//   MSG_IO_AVG         is a finished block average: sets a running average when it carries one, nothing else
// The channels of a source that went away are forgotten with it.
#pragma once

#include "libvesk/link/inst.h"

[[nodiscard]] BOOL IO_init();
void IO_register_link(INST_link* link);  // once; the link lives until IO_cleanup
// The latest value or running average of a channel; VESK_MISSING for one never reported.
[[nodiscard]] double IO_lookup(const char* channel);
[[nodiscard]] double IO_lookup_runningavg(const char* channel);
void IO_cleanup();
