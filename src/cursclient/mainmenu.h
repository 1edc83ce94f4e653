// The main menu: every way to a window and to the console's own functions, as a dialog or by Alt and a hot
// key; the client options and the disk operations.
#pragma once

#include "libvesk/support/ll.h"
#include "libvesk/support/types.h"

using MAINMENU_selected_callback = void (*)(void* user_ptr);

// Characters that are no hot keys: built-in entries at the head, and the one that stays last.
inline constexpr char MAINMENU_AT_HEAD = 0;
inline constexpr char MAINMENU_AT_TAIL = static_cast<char>(0xFF);

struct MAINMENU_entry {
    char sc_char;   // hot key
    char name[64];  // the text shown
    void* user_ptr;
    MAINMENU_selected_callback cb;  // may be null
    DWORD uid;
};

extern LL_TYPE g_mainmenu_entrys;  // of MAINMENU_entry, in menu order
extern DWORD g_mainmenu_uid_last;  // the next uid

[[nodiscard]] BOOL MAINMENU_init();
void MAINMENU_cleanup();
// The list's copy, or null when memory is out. A null name counts as empty.
[[nodiscard]] MAINMENU_entry* MAINMENU_addentry(char sc_char, const char* name, MAINMENU_selected_callback cb,
                                                void* user_ptr);
void MAINMENU_deleteentry(MAINMENU_entry* mme);
[[nodiscard]] MAINMENU_entry* MAINMENU_selectbyuid(DWORD uid);
void MAINMENU_show_entry(MAINMENU_entry* mme);
void MAINMENU_show_menu();
BOOL MAINMENU_show_by_char(char ch);
BOOL MAINMENU_keypress(int key);
void MAINMENU_update();
void MAINMENU_save_config();
// Entry callback of displays: `p` is the WINS_window to show, focus and raise.
void MAINMENU_default_focus_window(void* p);
