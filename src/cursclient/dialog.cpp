// The two attributes that the console's dialogs share.
#include "cursclient/dialog.h"

CURSDIALOG_type* DIALOG_create(const char* title, int width, const void* user_data,
                               std::size_t user_data_size, CURSDIALOG_closed_cb closed,
                               CURSDIALOG_cleanup_cb cleanup) {
    return CURSDIALOG_create(WINS_attr_normal(), WINS_attr_highlight(), title, width, user_data,
                             user_data_size, closed, cleanup);
}
