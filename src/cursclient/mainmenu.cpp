// The main menu: the sorted list of entries, its dialog and its hot keys. The dialogs of the built-in entries
// are in clientdialogs.
#include "cursclient/mainmenu.h"

#include <curses.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <vector>

#include "cursclient/clientdialogs.h"
#include "cursclient/conffile.h"
#include "cursclient/dialog.h"
#include "cursclient/globals.h"
#include "cursclient/wins.h"
#include "libvesk/support/util.h"
#include "libveskcurs/curskeys.h"

LL_TYPE g_mainmenu_entrys;
DWORD g_mainmenu_uid_last = 0;

namespace {

constexpr double DEFAULT_ERROR_TIME = 2.0;  // seconds
constexpr char KEY_ERROR_TIME[] = "Settings;ErrorDisplayTime";
constexpr char KEY_ENABLE_COLOR[] = "Settings;EnableColor";

// ---- characters, whatever the locale

bool is_upper(char c) {
    return c >= 'A' && c <= 'Z';
}
bool is_lower(char c) {
    return c >= 'a' && c <= 'z';
}
bool is_alphanumeric(char c) {
    return is_upper(c) || is_lower(c) || (c >= '0' && c <= '9');
}
bool is_graphic(char c) {
    return c != ' ' && UTIL_is_printable(static_cast<unsigned char>(c));
}
char other_case(char c) {
    return is_upper(c) || is_lower(c) ? static_cast<char>(c ^ 0x20) : c;
}

// ---- the list

void format_name(MAINMENU_entry* mme, const char* name) {
    const char mark = is_alphanumeric(mme->sc_char) ? mme->sc_char : ' ';
    mme->name[0] = mark;
    mme->name[1] = ' ';
    UTIL_strncpynt(mme->name + 2, name, sizeof mme->name - 2);
}

// A key that chooses several entries brings up all of them: whoever set the instruments up has to know.
void complain_if_taken(const MAINMENU_entry& entry) {
    if (!is_graphic(entry.sc_char)) return;
    for (const MAINMENU_entry& other : LL_each<MAINMENU_entry>(g_mainmenu_entrys)) {
        if (other.sc_char != entry.sc_char) continue;
        UTIL_complain("the hot key %c of %s is taken by %s", entry.sc_char, entry.name + 2, other.name + 2);
        return;
    }
}

// The node before which an entry with that character goes; null for the tail. A newer entry stands before
// older ones with the same character.
LL_NODE* insertion_point(char sc_char) {
    if (sc_char == MAINMENU_AT_HEAD) return g_mainmenu_entrys.head;
    if (sc_char == MAINMENU_AT_TAIL) return nullptr;
    for (LL_NODE* node = g_mainmenu_entrys.head; node != nullptr; node = node->next) {
        const char other = LL_data<MAINMENU_entry>(node)->sc_char;
        if (other == MAINMENU_AT_HEAD) continue;
        if (other == MAINMENU_AT_TAIL) return node;
        if (static_cast<signed char>(other) >= static_cast<signed char>(sc_char)) return node;
    }
    return nullptr;
}

// ---- the dialog

struct layout {
    int width;  // of a column
    int rows;   // of a column
};

// Columns are halved until they are short enough, then joined again until they are narrow enough; what still
// does not fit, the dialog scrolls.
layout lay_out() {
    std::size_t longest = 0;
    for (const MAINMENU_entry& entry : LL_each<MAINMENU_entry>(g_mainmenu_entrys))
        longest = std::max(longest, std::strlen(entry.name));
    const int width = static_cast<int>(longest);
    double rows = g_mainmenu_entrys.count;
    int ncols = 1;
    for (; rows > 0.8 * LINES; ++ncols)
        rows /= 2;
    for (; width * ncols >= COLS && ncols > 0; --ncols)
        rows *= 2;
    return {width, static_cast<int>(std::ceil(rows))};
}

void MAINMENU_menu_callback(CURSDIALOG_type* /*dlg*/, void* /*dlg_user_data*/, CURSDIALOG_widget* /*wd*/,
                            void* wd_user_data, CURSDIALOG_button_action* act) {
    act->close_dialog = true;
    DWORD uid;
    std::memcpy(&uid, wd_user_data, sizeof uid);
    // The entry's display may have gone while the menu was open.
    if (MAINMENU_entry* mme = MAINMENU_selectbyuid(uid)) MAINMENU_show_entry(mme);
}

int hot_key_of(const MAINMENU_entry& entry) {
    const auto c = static_cast<unsigned char>(entry.sc_char);
    return entry.sc_char == MAINMENU_AT_TAIL ? 0 : c;
}

// ---- keys

bool show_by_either_case(char c) {
    return MAINMENU_show_by_char(c) || (other_case(c) != c && MAINMENU_show_by_char(other_case(c)));
}

// The character pressed with Alt, as an escape sequence or as the eighth bit; 0 for any other key.
char alt_character(int key) {
    if (key >= CURSKEYS_ALT && key < CURSKEYS_ALT + 0xFF) return static_cast<char>(key - CURSKEYS_ALT);
    if (key >= 0x80 && key < 0xFF) return static_cast<char>(key & 0x7F);
    return 0;
}

// ---- built-in entries

void MAINMENU_save_conf_cb(void* /*user_ptr*/) {
    if (save_conf_file()) return;
    const CONFFILE_failure& failure = CONFFILE_error();
    DIALOG_tell("Save configuration", {"Not saved:", failure.reason.c_str(), failure.file.c_str()}, "Close");
}

// The main loop's exit poll takes it from here.
void MAINMENU_quit_cb(void* /*user_ptr*/) {
    std::raise(SIGINT);
}

double saved_error_time() {
    const char* value = CONF_lookup(g_conf, KEY_ERROR_TIME);
    const double seconds = value != nullptr ? UTIL_atofv(value) : DEFAULT_ERROR_TIME;
    return std::isfinite(seconds) ? seconds : DEFAULT_ERROR_TIME;
}

}  // namespace

BOOL MAINMENU_init() {
    LL_init(&g_mainmenu_entrys);
    g_mainmenu_uid_last = 0;
    g_errordisp_show_time = saved_error_time();
    g_conf_enable_color = WINS_color_setting();
    struct builtin {
        char sc_char;
        const char* name;
        MAINMENU_selected_callback cb;
    };
    static constexpr builtin BUILTINS[] = {
        {MAINMENU_AT_HEAD, "Save configuration", MAINMENU_save_conf_cb},
        {MAINMENU_AT_HEAD, "Disk operations", CLIENTDIALOGS_disk_operations},
        {MAINMENU_AT_HEAD, "Client options", CLIENTDIALOGS_client_options},
        {MAINMENU_AT_TAIL, "Quit", MAINMENU_quit_cb},
    };
    for (const builtin& b : BUILTINS)
        if (MAINMENU_addentry(b.sc_char, b.name, b.cb, nullptr) == nullptr) return FALSE;
    return TRUE;
}

void MAINMENU_cleanup() {
    LL_clear(&g_mainmenu_entrys);
}

MAINMENU_entry* MAINMENU_addentry(char sc_char, const char* name, MAINMENU_selected_callback cb,
                                  void* user_ptr) {
    MAINMENU_entry entry{};
    entry.sc_char = sc_char;
    entry.user_ptr = user_ptr;
    entry.cb = cb;
    entry.uid = g_mainmenu_uid_last++;
    format_name(&entry, name);
    complain_if_taken(entry);
    return LL_data<MAINMENU_entry>(
        LL_insert_before(&g_mainmenu_entrys, insertion_point(sc_char), &entry, sizeof entry));
}

void MAINMENU_deleteentry(MAINMENU_entry* mme) {
    if (mme == nullptr) return;
    DWORD uid = mme->uid;  // the entry itself goes
    const auto same = [](void* data, void* param) -> BOOL {
        return static_cast<MAINMENU_entry*>(data)->uid == *static_cast<DWORD*>(param);
    };
    LL_selective_delete(&g_mainmenu_entrys, same, &uid);
}

MAINMENU_entry* MAINMENU_selectbyuid(DWORD uid) {
    for (MAINMENU_entry& entry : LL_each<MAINMENU_entry>(g_mainmenu_entrys))
        if (entry.uid == uid) return &entry;
    return nullptr;
}

void MAINMENU_show_entry(MAINMENU_entry* mme) {
    if (mme != nullptr && mme->cb != nullptr) mme->cb(mme->user_ptr);
}

void MAINMENU_show_menu() {
    if (g_mainmenu_entrys.count == 0) return;
    const layout cells = lay_out();
    CURSDIALOG_type* dlg = DIALOG_create("", 0);
    if (dlg == nullptr) return;
    int x = 1;
    int y = 1;
    for (const MAINMENU_entry& entry : LL_each<MAINMENU_entry>(g_mainmenu_entrys)) {
        if (CURSDIALOG_add_button(dlg, x, y, cells.width, CURSDIALOG_STYLE_MENU, hot_key_of(entry),
                                  entry.name, MAINMENU_menu_callback, &entry.uid,
                                  sizeof entry.uid) == nullptr)
            continue;
        if (++y <= cells.rows) continue;
        y = 1;
        x += cells.width + 1;
    }
}

BOOL MAINMENU_show_by_char(char ch) {
    // Callbacks may add and remove entries: what to call is settled before the first one runs.
    std::vector<DWORD> matches;
    for (const MAINMENU_entry& entry : LL_each<MAINMENU_entry>(g_mainmenu_entrys))
        if (entry.sc_char == ch && is_graphic(ch)) matches.push_back(entry.uid);
    for (const DWORD uid : matches)
        MAINMENU_show_entry(MAINMENU_selectbyuid(uid));
    return !matches.empty();
}

BOOL MAINMENU_keypress(int key) {
    if (const char c = alt_character(key); c != 0 && show_by_either_case(c)) return TRUE;
    if (CURSKEYS_is_enter(key) || key == CURSKEYS_ESCAPE) {
        MAINMENU_show_menu();
        return TRUE;
    }
    if (key == CURSKEYS_CTRL_D) {
        CLIENTDIALOGS_disk_operations(nullptr);
        return TRUE;
    }
    return FALSE;
}

void MAINMENU_update() {}

void MAINMENU_save_config() {
    if (g_conf == nullptr) return;
    char seconds[352];  // the longest double has 309 digits before the point
    std::snprintf(seconds, sizeof seconds, "%.1f", g_errordisp_show_time);
    CONF_set(g_conf, KEY_ERROR_TIME, seconds);
    CONF_set(g_conf, KEY_ENABLE_COLOR, g_conf_enable_color ? "TRUE" : "FALSE");
}

void MAINMENU_default_focus_window(void* p) {
    if (p != nullptr) WINS_focus_window(static_cast<WINS_window*>(p));
}
