// The status bar on the bottom line: one character per instrument, highlighted while its data are logged, and
// the UTC clock.
#pragma once

#include "libvesk/support/ll.h"
#include "libvesk/support/types.h"

struct STATUS_entry {
    char log_char;  // 0 is never drawn
    BOOL is_logging;
    DWORD uid;  // unique for the life of the process
};

extern LL_TYPE g_status_entrys;  // of STATUS_entry, sorted by log_char
extern DWORD g_status_last_uid;  // the next uid

[[nodiscard]] BOOL STATUS_init();
void STATUS_cleanup();
// The list's copy, or null when memory is out. It stays valid until it is deleted.
[[nodiscard]] STATUS_entry* STATUS_addentry(char log_char, BOOL is_logging);
void STATUS_deleteentry(STATUS_entry* se);
void STATUS_setlogging(STATUS_entry* se, BOOL logging);
void STATUS_update();
