// The password guard: one asynchronous check in front of every command that changes what is recorded.
#pragma once

#include "libvesk/support/types.h"

using PASSWD_callback = void (*)(BOOL passok, void* param);

struct PASSWD_checkpass_param {
    PASSWD_callback cb;  // null once it was called
    void* param;
};

extern char g_passwd[64];  // empty: no password, every check passes at once

[[nodiscard]] BOOL PASSWD_init();
void PASSWD_cleanup();
void PASSWD_save_config();
// Calls `cb` exactly once, now or later, with TRUE when the password was given or none is set.
void PASSWD_checkpass(PASSWD_callback cb, void* param);
void PASSWD_display_change_dialog();
