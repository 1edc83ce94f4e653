// The registry of displays: the table of kinds, the live displays, and the hand-out of messages, keys and
// redraws to them.
#pragma once

#include <cstddef>

#include "libvesk/link/veskmsg.h"
#include "libvesk/support/ll.h"

struct DISPLAY_type;

struct DISPLAY_common_params {
    VESKMSG_link* link;  // the one link
    FTIME curtime;       // taken once per dispatch
    DWORD uid;           // of the display being called
};

// The contents of an announcement; absent (null) for persistent displays.
struct DISPLAY_match_params {
    const char* src_name;
    const char* type;
    const char* display_name;
    char id_ch;
};

struct DISPLAY_msg_params {
    VESKMSG_proc_msg* pm;
};

struct DISPLAY_keypress {
    int key;
};

using DISPLAY_cb_init = BOOL (*)(void* prv_data, DISPLAY_common_params*, DISPLAY_match_params*, void* dsp);
using DISPLAY_cb_cleanup = void (*)(void* prv_data);
using DISPLAY_cb_update = void (*)(void* prv_data, DISPLAY_common_params*, void* dsp);
using DISPLAY_cb_msg_proc = void (*)(void* prv_data, DISPLAY_common_params*, DISPLAY_msg_params*, void* dsp);
using DISPLAY_cb_keypress = BOOL (*)(void* prv_data, DISPLAY_common_params*, struct DISPLAY_keypress*,
                                     void* dsp);
// Null prv_data: probe, non-null result is the private record (calloc'ed) of a new display. Live prv_data:
// return it to keep the display, null to have it removed.
using DISPLAY_cb_match = void* (*)(void* prv_data, DISPLAY_common_params*, DISPLAY_msg_params*, void* dsp);

// One per kind. Null slots are skipped.
struct DISPLAY_DECL {
    std::size_t sz_private;   // of the private record, which the registry owns and zero-fills; 0 for none
    DISPLAY_cb_init cb_init;  // FALSE: the display is not created
    DISPLAY_cb_cleanup cb_cleanup;    // releases what init made, not the record
    DISPLAY_cb_update cb_update;      // redraws, once per pass
    DISPLAY_cb_msg_proc cb_msg_proc;  // sees every message
    DISPLAY_cb_keypress cb_keypress;  // TRUE when the key was used
    DISPLAY_cb_match cb_match;        // makes and removes displays by message
};

// One row of the table of kinds.
struct DISPLAY_DEFN {
    const char* match_type;
    const DISPLAY_DECL* dcl;
};

// One live display.
struct DISPLAY_type {
    DISPLAY_cb_update cb_update;
    DISPLAY_cb_msg_proc cb_msg_proc;
    DISPLAY_cb_keypress cb_keypress;
    DISPLAY_cb_cleanup cb_cleanup;
    DISPLAY_cb_match cb_match;
    void* prv_data;
    BOOL wasmatched;      // made from an announcement
    char match_name[32];  // source name (announced), match type (persistent), empty (made by match)
    DWORD uid;            // never reused
};

extern const DISPLAY_DEFN g_display_decls[];  // displays_generated.cpp
extern const std::size_t g_n_display_decls;
// Tests put a table of their own in place of the real one; null restores it.
void DISPLAY_set_kinds(const DISPLAY_DEFN* rows, std::size_t count);
extern LL_TYPE g_displays;  // of DISPLAY_type
extern DWORD g_display_uid_next;

[[nodiscard]] BOOL DISPLAY_init();
void DISPLAY_cleanup();
BOOL DISPLAY_handle_message(VESKMSG_proc_msg* pm);  // always FALSE
void DISPLAY_update();
BOOL DISPLAY_distribute_keypress(int key);
void DISPLAY_instrument_register(const char* src_name, const NET_SERVER_InstrumentInfo* ii);
void DISPLAY_handle_disconnect(const char* name);
void DISPLAY_create_new_match(DISPLAY_common_params* cps, DISPLAY_msg_params* msg);
[[nodiscard]] DISPLAY_type* DISPLAY_by_name(const char* name);
// The private record of a living display, or null: how dialogs find their display again.
[[nodiscard]] void* DISPLAY_privatedata_by_uid(DWORD uid);
