// The button actions that menus of displays share.
#include "cursclient/dialog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "cursclient/passwd.h"
#include "libvesk/netmsg.h"
#include "libvesk/util.h"
#include "libveskcurs/curskeys.h"
#include "support/console.h"
#include "support/server_end.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class Dialog : public ConsoleTest {
  protected:
    // A dialog with that one button, pressed.
    static void press_button(CURSDIALOG_button_cb cb, const void* data, std::size_t size) {
        CURSDIALOG_type* dlg = DIALOG_create("menu", 0);
        ASSERT_NE(CURSDIALOG_add_button(dlg, 1, 1, 0, CURSDIALOG_STYLE_LIST, '1', "1 Do it", cb, data, size),
                  nullptr);
        press('1');
    }
    static void press_logging(BOOL set_to, const char* net_name) {
        DIALOG_DEFAULT_button_set_logging_param prm{.set_to = set_to, .net_name = ""};
        UTIL_strcpynt(prm.net_name, net_name);
        press_button(DIALOG_DEFAULT_button_set_logging_close, &prm, sizeof prm);
    }
};

TEST_F(Dialog, HideWindow) {
    WINS_window* w = WINS_create("neph:N11", 20, 5);
    WINS_show_window(w);
    press_button(DIALOG_DEFAULT_button_hide_window_close, WINS_uid_of_window(w, nullptr), sizeof(WINS_UID));
    EXPECT_FALSE(w->visible);
    EXPECT_FALSE(CURSDIALOG_active());

    WINS_UID gone;
    WINS_uid_of_window(w, &gone);
    WINS_delete(w);
    press_button(DIALOG_DEFAULT_button_hide_window_close, &gone, sizeof gone);
    press_button(DIALOG_DEFAULT_button_hide_window_close, nullptr, 0);
    EXPECT_FALSE(CURSDIALOG_active()) << "the dialog closes though the window has gone";
}

TEST_F(Dialog, SetLogging) {
    ServerEnd server;
    press_logging(TRUE, "N11");
    press_logging(FALSE, "");
    EXPECT_FALSE(CURSDIALOG_active());
    EXPECT_THAT(server.received(),
                ElementsAre(ServerEnd::Sent{MSG_LOG_SET_STATE, 1, "N11", "NET_LOG_SetState", {1}},
                            ServerEnd::Sent{MSG_LOG_SET_STATE, 1, "", "NET_LOG_SetState", {0}}));
    press_button(DIALOG_DEFAULT_button_set_logging_close, nullptr, 0);
    EXPECT_THAT(server.received(), IsEmpty());
}

TEST_F(Dialog, SetLoggingIsGuarded) {
    ServerEnd server;
    UTIL_strcpynt(g_passwd, "abc");
    press_logging(TRUE, "N11");
    type("wrong\r");
    press_logging(TRUE, "N11");
    press(CURSKEYS_ESCAPE);
    EXPECT_FALSE(CURSDIALOG_active());
    EXPECT_THAT(server.received(), IsEmpty());
    press_logging(FALSE, "N11");
    type("abc\r");
    EXPECT_THAT(server.received(),
                ElementsAre(ServerEnd::Sent{MSG_LOG_SET_STATE, 1, "N11", "NET_LOG_SetState", {0}}));
    DIALOG_DEFALT_set_logging_passwd(TRUE, nullptr);
    EXPECT_THAT(server.received(), IsEmpty());
}

}  // namespace
