#include "cursclient/send.h"

#include <string>

#include "cursclient/dialog.h"
#include "cursclient/globals.h"
#include "cursclient/overview.h"
#include "cursclient/settings.h"

BOOL SEND_message(NETMSG_type msg, DWORD flags, const char* dest, const void* payload, std::size_t size,
                  const char* record) {
    const char* name = NETMSG_by_type(msg)->name;
    if (SETTINGS_on(SETTINGS_READ_ONLY)) {
        DIALOG_tell("Read only", {"This console only watches. Not sent:", name}, "Close");
        return FALSE;
    }
    const BOOL sent = VESKMSG_queue_message(&g_lnk.msg_lnk, msg, flags, dest, payload, size, record);
    const std::string text = std::string(sent ? "this console sent " : "this console could not send ") + name;
    OVERVIEW_note(dest != nullptr ? dest : "", text.c_str());
    return sent;
}
