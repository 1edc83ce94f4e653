// Station-wide state that several displays read; a display without a window keeps it.
#pragma once

#include "libvesk/messages/records/common_neph.h"

// Lengths of the span check's phases, as the station last told them.
extern NET_COMMON_Neph_SpancheckDuration g_spancheck_duration;
