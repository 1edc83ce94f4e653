// The declarations of all kinds of displays, made from the one list of them (kinds.h).
#pragma once

#include "cursclient/display.h"
#include "libvesk/messages/kinds.h"

#define DISPLAYS_DECLARE(kind, ...) extern const DISPLAY_DECL DDCL_##kind;
#define DISPLAYS_IGNORE(...)
KINDS_LIST(DISPLAYS_DECLARE, DISPLAYS_IGNORE)
#undef DISPLAYS_DECLARE
#undef DISPLAYS_IGNORE
