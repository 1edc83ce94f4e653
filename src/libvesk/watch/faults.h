// Finds the faults that a record reports, by its descriptor alone: every member whose value, or one of whose
// bits, means a fault.
#pragma once

#include <string>

#include "libvesk/messages/netdsd.h"

struct FAULTS_found {
    std::string texts;         // separated by ", "; "" when all is well; without what comms say
    BOOL tells_comms = FALSE;  // the record has the member have_comms
    BOOL have_comms = TRUE;    // of several in an array: one of them at least
};

// The record has members that can mean a fault: cheap to ask for each message.
[[nodiscard]] BOOL FAULTS_can_be_in(const NETDSD_entry* dsd);
// `record` has dsd->total_size bytes, any alignment.
[[nodiscard]] FAULTS_found FAULTS_of(const NETDSD_entry* dsd, const void* record);
