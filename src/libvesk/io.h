// The registry of I/O channels: the latest value and running average of every channel that the station
// reports, by name. It follows the MSG_IO_* messages of the links registered with it.
#pragma once

#include "libvesk/inst.h"

[[nodiscard]] BOOL IO_init();
void IO_register_link(INST_link* link);
// The latest value or running average of a channel; VESK_MISSING for one never reported.
[[nodiscard]] double IO_lookup(const char* channel);
[[nodiscard]] double IO_lookup_runningavg(const char* channel);
void IO_cleanup();
