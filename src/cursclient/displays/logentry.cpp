// The online log entry: a note that the operator writes into the station's log. It starts empty each time the
// window comes up, and goes on its way with Enter.
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "cursclient/kit/command.h"
#include "cursclient/kit/persistent.h"
#include "cursclient/kit/textentry.h"
#include "cursclient/mainmenu.h"
#include "cursclient/wintext.h"
#include "libvesk/messages/records/log.h"
#include "libvesk/support/util.h"
#include "libveskcurs/curskeys.h"

namespace {

constexpr int HEIGHT = 7;
constexpr int COLUMNS = 58;
constexpr int TEXT_ROWS = 4;
constexpr int PROMPT_ROW = 5;
constexpr std::size_t FIRST_SIZE = 32;
constexpr char TITLE[] = "USER: ";
// Characters that the log's record takes behind the title.
constexpr std::size_t MAX_TEXT = sizeof(NET_LOG_MonitorMessage::msg) - sizeof TITLE;

struct LOGENTRY_prv_data {
    WINS_window* win;
    MAINMENU_entry* mme;
    char* buffer;  // owned, null until the first character
    std::size_t sz_buffer;
};

const char* text_of(const LOGENTRY_prv_data* pd) {
    return pd->buffer != nullptr ? pd->buffer : "";
}

void empty(LOGENTRY_prv_data* pd) {
    if (pd->buffer != nullptr) pd->buffer[0] = '\0';
}

// Room for `length` characters and the terminator.
bool reserve(LOGENTRY_prv_data* pd, std::size_t length) {
    if (pd->buffer == nullptr) {
        pd->buffer = static_cast<char*>(std::malloc(FIRST_SIZE));
        if (pd->buffer == nullptr) {
            UTIL_assertion_failed_errno("displays/logentry.c", 151,
                                        "(pd->buffer=(char *)malloc(pd->sz_buffer)) != NULL", errno);
            return false;
        }
        pd->buffer[0] = '\0';
        pd->sz_buffer = FIRST_SIZE;
    }
    if (length + 1 <= pd->sz_buffer) return true;
    const std::size_t size = UTIL_roundup_p2(length + 1);
    void* grown = std::realloc(pd->buffer, size);
    if (grown == nullptr) {
        UTIL_assertion_failed_errno("displays/logentry.c", 158,
                                    "(pd->buffer=(char *)realloc(pd->buffer, pd->sz_buffer)) != NULL", errno);
        return false;
    }
    pd->buffer = static_cast<char*>(grown);
    pd->sz_buffer = size;
    return true;
}

// A text that fills the record takes no more: what stands in the window is what will be in the log.
bool LOGENTRY_append(LOGENTRY_prv_data* pd, int key) {
    if (TEXTENTRY_is_erase(key)) {
        if (pd->buffer != nullptr) TEXTENTRY_key(pd->buffer, pd->sz_buffer, key);
        return true;
    }
    if (TEXTENTRY_character(key) == '\0') return false;
    const std::size_t length = std::strlen(text_of(pd));
    if (length >= MAX_TEXT) return true;
    if (!reserve(pd, length + 1)) return false;
    TEXTENTRY_key(pd->buffer, pd->sz_buffer, key);
    return true;
}

void LOGENTRY_make_entry(LOGENTRY_prv_data* pd) {
    const std::string_view text = text_of(pd);
    if (text.find_first_not_of(' ') != std::string_view::npos) {
        NET_LOG_MonitorMessage note{};
        note.flags = NET_LOG_MONITOR_NOTE;
        note.msgtime = std::floor(UTIL_ftime());
        UTIL_strcpynt(note.msg, (TITLE + std::string(text)).c_str());
        COMMAND_broadcast(MSG_LOG_MONITOR, FRAME_TO_ALL, note);
    }
    empty(pd);
}

// A window that was away comes up empty; one in view keeps its text.
void LOGENTRY_mainmenu_callback(void* prv_data) {
    auto* pd = static_cast<LOGENTRY_prv_data*>(prv_data);
    if (!pd->win->visible) {
        empty(pd);
        WINS_center(pd->win);
    }
    WINS_focus_window(pd->win);
}

bool start(LOGENTRY_prv_data* pd) {
    pd->win->flags = WINS_EDITS_TEXT;
    pd->mme = MAINMENU_addentry(MAINMENU_AT_HEAD, "Online log entry", LOGENTRY_mainmenu_callback, pd);
    return pd->mme != nullptr;
}

void stop(LOGENTRY_prv_data* pd) {
    MAINMENU_deleteentry(pd->mme);
    std::free(pd->buffer);
}

// A short text starts at the top; of a long one the last rows show, its end in the last column.
void draw(LOGENTRY_prv_data* pd, FTIME /*curtime*/) {
    WINTEXT_put_centered(pd->win, PROMPT_ROW, A_REVERSE | WINS_attr_normal(),
                         "Press ENTER to make entry, ESC/CTRL-W to abort");
    std::string_view text = text_of(pd);
    if (text.size() >= MAX_TEXT) WINS_center_string(pd->win, " the entry is full ", HEIGHT - 1);
    constexpr std::size_t SHOWN = TEXT_ROWS * COLUMNS;
    if (text.size() > SHOWN) text.remove_prefix(text.size() - SHOWN);
    for (int row = 1; !text.empty(); ++row) {
        const std::string_view line = text.substr(0, COLUMNS);
        WINTEXT_put(pd->win, row, 1, line);
        text.remove_prefix(line.size());
    }
}

bool call(LOGENTRY_prv_data* pd, int key) {
    if (key == KEY_F(12)) LOGENTRY_mainmenu_callback(pd);
    return false;  // the key goes on
}

bool type(LOGENTRY_prv_data* pd, int key) {
    if (!CURSKEYS_is_enter(key)) return LOGENTRY_append(pd, key);
    LOGENTRY_make_entry(pd);
    WINS_hide_window(pd->win);
    return true;
}

constexpr PERSISTENT_kind<LOGENTRY_prv_data> KIND{.cols = 60,
                                                  .rows = HEIGHT,
                                                  .title = "Online Log Entry",
                                                  .draw = draw,
                                                  .start = start,
                                                  .stop = stop,
                                                  .any_key = call,
                                                  .key = type};

}  // namespace

PERSISTENT_BINDINGS(LOGENTRY, KIND)
