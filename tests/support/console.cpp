// The layers are brought up and down in the order of the program; displays and the debug console have nothing
// to show here.
#include "support/console.h"

#include "cursclient/cursclient.h"
#include "cursclient/mainmenu.h"
#include "cursclient/passwd.h"
#include "cursclient/status.h"
#include "libvesk/support/util.h"
#include "libveskcurs/cursdialog.h"

ConsoleTest::ConsoleTest() {
    g_conf = CONF_alloc();
    g_tick = 1;
    start(24, 80);
}

ConsoleTest::~ConsoleTest() {
    stop();
    CONF_free(g_conf);
    g_conf = nullptr;
    UTIL_set_clock(nullptr);
}

void ConsoleTest::start(int lines, int cols, const char* term) {
    stop();
    screen_ = std::make_unique<TestScreen>(lines, cols, term);
    WINS_setup_screen();
    EXPECT_TRUE(CURSDIALOG_init());
    EXPECT_TRUE(STATUS_init());
    EXPECT_TRUE(PASSWD_init());
    EXPECT_TRUE(MAINMENU_init());
}

void ConsoleTest::stop() {
    if (screen_ == nullptr) return;
    MAINMENU_cleanup();
    PASSWD_cleanup();
    STATUS_cleanup();
    CURSDIALOG_cleanup();
    WINS_cleanup();
    screen_.reset();
}

void ConsoleTest::resize(int lines, int cols) {
    screen_->resize(lines, cols);
    press(KEY_RESIZE);
}

void ConsoleTest::press(int key) {
    distribute_key(key);
}

void ConsoleTest::press(std::initializer_list<int> keys) {
    for (const int key : keys)
        press(key);
}

void ConsoleTest::type(std::string_view text) {
    for (const char c : text)
        press(static_cast<unsigned char>(c));
}

namespace {

void draw() {
    STATUS_update();
    WINS_update();
    MAINMENU_update();
    CURSDIALOG_update();
    WINS_show_pictures();
    // The panel library knows the standard screen only once there was a panel.
    if (panel_above(nullptr) == nullptr) wnoutrefresh(stdscr);
}

}  // namespace

std::string ConsoleTest::look() {
    draw();
    return TestScreen::screen_dump();
}

std::string ConsoleTest::look_at_row(int y) {
    draw();
    return TestScreen::screen_row(y);
}
