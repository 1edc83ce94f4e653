// The keys of the window that has the focus, on F4: those that every window has, those of its kind, and the
// way to its menu.
#pragma once

#include <span>
#include <string_view>

#include "libvesk/support/types.h"

struct KEYHELP_row {
    const char* key;  // as the manual writes it: "Page Down"
    const char* text;
};

// The keys that windows of that kind alone have ("neph"); none for a kind without such.
[[nodiscard]] std::span<const KEYHELP_row> KEYHELP_of_kind(std::string_view kind);
// F4: shows them in a dialog.
[[nodiscard]] BOOL KEYHELP_keypress(int key);
