// The base of every instrument display's private record: what the registry announced
// and what the display made of it.
#pragma once

#include "cursclient/mainmenu.h"
#include "cursclient/status.h"
#include "cursclient/wins.h"
#include "libvesk/support/sfmt.h"

struct INSTDISP_head {
    WINS_window* win;
    MAINMENU_entry* mme;
    STATUS_entry* se;       // null when the instrument has no identifier
    SFMT_buffer sbfr;       // lines are built here
    char name[32];          // source name: messages are accepted from and commands sent to it
    char display_name[32];  // title
    char id_ch;             // hot key and status letter, 0 for none
    BOOL is_logging;        // the server logs this instrument
    char type[32];          // the kind that was announced
};
