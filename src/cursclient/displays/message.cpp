// The messaging window: operators' free-text messages to each other. What is sent comes back from the server
// like anybody's message and is shown then, so that all consoles show the same.
#include <cstdio>
#include <cstring>
#include <string_view>

#include "cursclient/kit/instdisp.h"
#include "cursclient/kit/persistent.h"
#include "cursclient/kit/textentry.h"
#include "cursclient/mainmenu.h"
#include "cursclient/wintext.h"
#include "libvesk/messages/records/messaging.h"
#include "libvesk/support/sfmt.h"
#include "libvesk/support/util.h"
#include "libveskcurs/curskeys.h"

namespace {

constexpr int ROWS = 12;
constexpr int COLUMNS = 58;     // of a buffer line
constexpr int TEXT_COLUMN = 9;  // where the text starts, behind the time or its indent
constexpr int ENTRY_ROW = 13;
constexpr char MENU_CHARACTER = 1;  // stands before every hot key, and is none itself

struct MESSAGE_prv_data {
    WINS_window* win;
    MAINMENU_entry* mme;
    SFMT_buffer sbfr;
    char display_buffer[ROWS * COLUMNS];  // lines are not terminated; a line whose first byte is 0 is free
    char entry_buffer[sizeof(NETDS_MESSAGE_OneMessage::contents)];
};

// The first free line, after scrolling the oldest one away when there is none.
char* free_line(MESSAGE_prv_data* pd) {
    for (int i = 0; i < ROWS; ++i)
        if (pd->display_buffer[i * COLUMNS] == '\0') return pd->display_buffer + i * COLUMNS;
    UTIL_shift_array(pd->display_buffer, sizeof pd->display_buffer, -COLUMNS);
    char* last = pd->display_buffer + (ROWS - 1) * COLUMNS;
    std::memset(last, 0, COLUMNS);
    return last;
}

void add_message(MESSAGE_prv_data* pd, FTIME time_sent, std::string_view contents) {
    char head[TEXT_COLUMN];
    std::memset(head, ' ', sizeof head);
    const INSTDISP_clock clock = INSTDISP_time(time_sent);
    std::memcpy(head, clock.text, sizeof clock.text - 1);
    do {
        char* line = free_line(pd);
        const std::string_view piece = contents.substr(0, COLUMNS - TEXT_COLUMN);
        std::memcpy(line, head, TEXT_COLUMN);
        std::memcpy(line + TEXT_COLUMN, piece.data(), piece.size());
        contents.remove_prefix(piece.size());
        std::memset(head, ' ', sizeof head);  // continuation lines are indented under the message
    } while (!contents.empty());
}

void send_message(MESSAGE_prv_data* pd) {
    if (pd->entry_buffer[0] == '\0') return;
    NETDS_MESSAGE_OneMessage message{};
    message.time_sent = UTIL_ftime();
    UTIL_strcpynt(message.contents, pd->entry_buffer);
    COMMAND_broadcast(MSG_MESSAGING_MESSAGE, FRAME_TO_ALL, message);
    pd->entry_buffer[0] = '\0';
}

bool start(MESSAGE_prv_data* pd) {
    SFMT_init_buffer(&pd->sbfr);
    pd->win->flags = WINS_EDITS_TEXT;
    pd->mme = MAINMENU_addentry(MENU_CHARACTER, "Messaging", MAINMENU_default_focus_window, pd->win);
    return pd->mme != nullptr;
}

void stop(MESSAGE_prv_data* pd) {
    SFMT_destroy_buffer(&pd->sbfr);
    MAINMENU_deleteentry(pd->mme);
}

void take_message(MESSAGE_prv_data* pd, const VESKMSG_proc_msg* pm, FTIME /*curtime*/) {
    if (pm->msg->msg != MSG_MESSAGING_MESSAGE) return;
    const auto* message = VESKMSG_payload<NETDS_MESSAGE_OneMessage>(pm);
    if (message == nullptr) return;
    add_message(pd, message->time_sent, message->contents);
    WINS_focus_window(pd->win);
}

void draw(MESSAGE_prv_data* pd, FTIME /*curtime*/) {
    for (int i = 0; i < ROWS; ++i)
        WINTEXT_put(pd->win, 1 + i, 1, std::string_view(pd->display_buffer + i * COLUMNS, COLUMNS));
    std::string_view entry = pd->entry_buffer;
    if (entry.size() >= COLUMNS) entry.remove_prefix(entry.size() - COLUMNS);
    WINTEXT_put_attr(pd->win, ENTRY_ROW, 1, A_BOLD | WINS_attr_normal(), entry);
}

bool type(MESSAGE_prv_data* pd, int key) {
    if (!CURSKEYS_is_enter(key)) return TEXTENTRY_key(pd->entry_buffer, sizeof pd->entry_buffer, key);
    send_message(pd);
    return true;
}

constexpr PERSISTENT_kind<MESSAGE_prv_data> KIND{.cols = 60,
                                                 .rows = 15,
                                                 .title = "Messaging",
                                                 .draw = draw,
                                                 .ident = "MESSAGING",
                                                 .start = start,
                                                 .stop = stop,
                                                 .message = take_message,
                                                 .key = type};

}  // namespace

PERSISTENT_BINDINGS(MESSAGE, KIND)
