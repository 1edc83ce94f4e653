// The two attributes that the console's dialogs share.
#include "cursclient/dialog.h"

CURSDIALOG_type* DIALOG_create(const char* title, int width, const void* user_data,
                               std::size_t user_data_size, CURSDIALOG_closed_cb closed,
                               CURSDIALOG_cleanup_cb cleanup) {
    return CURSDIALOG_create(WINS_attr_normal(), WINS_attr_highlight(), title, width, user_data,
                             user_data_size, closed, cleanup);
}

void DIALOG_tell(const char* title, std::initializer_list<const char*> lines, const char* button) {
    CURSDIALOG_type* dlg = DIALOG_create(title, 0);
    int y = 1;
    for (const char* line : lines)
        CURSDIALOG_add_label(dlg, 1, y++, 0, 0, line);
    CURSDIALOG_widget* close = CURSDIALOG_add_button(dlg, 1, y, 0, CURSDIALOG_STYLE_CLOSE, 0, button,
                                                     CURSDIALOG_DEFAULT_button_close, nullptr, 0);
    CURSDIALOG_force_widget_focus(dlg, close);
}
