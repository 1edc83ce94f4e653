// The button action with which menus of displays switch logging.
#include "cursclient/dialog_default.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "cursclient/passwd.h"
#include "libvesk/messages/netmsg.h"
#include "libvesk/support/util.h"
#include "support/console.h"
#include "support/server_end.h"

using testing::ElementsAre;

namespace {

class Dialog : public ConsoleTest {
  protected:
    // A dialog with that one button, pressed.
    static void press_logging(BOOL set_to, const char* net_name) {
        DIALOG_DEFAULT_button_set_logging_param prm{.set_to = set_to, .net_name = ""};
        UTIL_strcpynt(prm.net_name, net_name);
        CURSDIALOG_add_button(DIALOG_create("menu", 0), 1, 1, 0, CURSDIALOG_STYLE_LIST, '1', "1 Do it",
                              DIALOG_DEFAULT_button_set_logging_close, &prm, sizeof prm);
        press('1');
    }
};

TEST_F(Dialog, SetLoggingIsGuarded) {
    ServerEnd server;
    press_logging(TRUE, "N11");
    press_logging(FALSE, "");
    EXPECT_THAT(server.received(), ElementsAre(R"(MSG_LOG_SET_STATE flags 1 to N11 {"enable":true})",
                                               R"(MSG_LOG_SET_STATE flags 1 {"enable":false})"));
    UTIL_strcpynt(g_passwd, "abc");
    press_logging(TRUE, "N11");
    type("wrong\r");
    EXPECT_FALSE(CURSDIALOG_active());
    press_logging(FALSE, "N11");
    type("abc\r");
    EXPECT_THAT(server.received(), ElementsAre(R"(MSG_LOG_SET_STATE flags 1 to N11 {"enable":false})"));
}

}  // namespace
