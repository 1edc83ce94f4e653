// The main menu: order, hot keys, the dialog's columns, and what the built-in entries do.
#include "cursclient/mainmenu.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "cursclient/cursclient.h"
#include "cursclient/passwd.h"
#include "libvesk/messages/netmsg.h"
#include "libvesk/support/util.h"
#include "libveskcurs/cursdialog.h"
#include "libveskcurs/curskeys.h"
#include "support/console.h"

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

std::string g_chosen;  // by choosing entries of `add`

class MainMenu : public ConsoleTest {
  protected:
    MainMenu() { g_chosen.clear(); }

    // An entry that appends `mark` to g_chosen when it is chosen.
    static MAINMENU_entry* add(char sc_char, const char* name, const char* mark = "") {
        MAINMENU_entry* mme = MAINMENU_addentry(
            sc_char, name, [](void* p) { g_chosen += static_cast<const char*>(p); }, const_cast<char*>(mark));
        EXPECT_NE(mme, nullptr);
        return mme;
    }
    static std::vector<std::string> names() {
        std::vector<std::string> all;
        for (const MAINMENU_entry& entry : LL_each<MAINMENU_entry>(g_mainmenu_entrys))
            all.emplace_back(entry.name);
        return all;
    }
    // The mark of what a key chooses.
    static std::string chosen_by(int key) {
        g_chosen.clear();
        press(key);
        return g_chosen;
    }
    // Opens the menu and presses the entry with that name.
    static void choose(const std::string& name) {
        press('\r');
        for (const std::string& each : names()) {
            if (each == "  " + name) break;
            press(CURSKEYS_TAB);
        }
        press('\r');
    }
};

TEST_F(MainMenu, OrderAndNames) {
    EXPECT_THAT(names(),
                ElementsAre("  Client options", "  Disk operations", "  Save configuration", "  Quit"));
    add('c', "third");
    add('a', "older");
    add('a', "newer");
    add('#', "mark");
    add('B', "upper");
    add(static_cast<char>(0xC4), "high");  // negative as a signed character
    MAINMENU_entry* last = add(MAINMENU_AT_TAIL, "after Quit");
    add(MAINMENU_AT_HEAD, "no key");
    EXPECT_THAT(names(), ElementsAre("  no key", "  Client options", "  Disk operations",
                                     "  Save configuration", "  high", "  mark", "B upper", "a newer",
                                     "a older", "c third", "  Quit", "  after Quit"));
    MAINMENU_deleteentry(last);
    MAINMENU_deleteentry(nullptr);
    EXPECT_EQ(names().back(), "  Quit");

    EXPECT_STREQ(add('x', nullptr)->name, "x ");
    EXPECT_EQ(std::string(add('x', std::string(80, 'n').c_str())->name), "x " + std::string(61, 'n'));
}

TEST_F(MainMenu, ATakenHotKeyIsReported) {
    add('n', "first");
    EXPECT_EQ(complaints_of([] { add('n', "second"); }), "the hot key n of second is taken by first\n");
    EXPECT_EQ(complaints_of([] {
                  add('N', "");
                  add(MAINMENU_AT_HEAD, "");
                  add(1, "");
                  add(1, "");
              }),
              "");
}

TEST_F(MainMenu, AltChoosesByCharacter) {
    add('A', "", "A");
    add('b', "", "b");
    add('b', "", "B2");
    add('C', "", "C");
    add('c', "", "c");
    add('!', "", "!");
    add(' ', "", "blank");
    add(MAINMENU_AT_TAIL, "", "tail");
    add(MAINMENU_AT_HEAD, "", "head");
    struct Row {
        int character;
        const char* chosen;
    };
    for (const Row& row : {Row{'A', "A"}, Row{'a', "A"}, Row{'B', "B2b"}, Row{'C', "C"}, Row{'c', "c"},
                           Row{'!', "!"}, Row{'x', ""}, Row{' ', ""}, Row{0, ""}}) {
        EXPECT_EQ(chosen_by(CURSKEYS_ALT + row.character), row.chosen) << row.character;
        EXPECT_EQ(chosen_by(0x80 | row.character), row.chosen) << row.character;
        EXPECT_EQ(MAINMENU_keypress(CURSKEYS_ALT + row.character), *row.chosen != '\0') << row.character;
    }
    for (const int key :
         {0xFF, CURSKEYS_ALT + 0xFE, CURSKEYS_ALT + 0xFF, static_cast<int>('A'), KEY_DOWN, KEY_F(1), -1}) {
        EXPECT_EQ(chosen_by(key), "") << key;
        EXPECT_FALSE(MAINMENU_keypress(key)) << key;
    }
    EXPECT_FALSE(CURSDIALOG_active());

    static MAINMENU_entry* victim;
    victim = add('k', "victim", "victim");
    ASSERT_NE(MAINMENU_addentry(
                  'k', "killer", [](void*) { MAINMENU_deleteentry(victim); }, nullptr),
              nullptr);
    EXPECT_EQ(chosen_by(CURSKEYS_ALT + 'k'), "") << "an entry may delete others when it is chosen";
}

TEST_F(MainMenu, OpensAndChooses) {
    add('n', "Nephelometer", "n");
    for (const int key : {10, 13, KEY_ENTER, CURSKEYS_ESCAPE}) {
        press(key);
        EXPECT_THAT(look(), HasSubstr("n Nephelometer")) << key;
        EXPECT_EQ(chosen_by('n'), "n");
        EXPECT_FALSE(CURSDIALOG_active());
    }
    press('\r');
    MAINMENU_deleteentry(LL_data<MAINMENU_entry>(g_mainmenu_entrys.tail->prev));
    EXPECT_EQ(chosen_by('n'), "") << "its display has gone while the menu was open";
    EXPECT_FALSE(CURSDIALOG_active());
    MAINMENU_cleanup();
    press('\r');
    EXPECT_FALSE(CURSDIALOG_active()) << "nothing to show";
}

TEST_F(MainMenu, Columns) {
    struct Row {
        const char* what;
        int entries, lines, cols, width;
        std::vector<int> heads;  // numbers of the entries that stand in the first row
    };
    for (const Row& row : {
             Row{"0.8 of the lines", 40, 50, 80, 20, {0}},
             Row{"one more: halves are rounded up", 41, 50, 80, 20, {0, 21}},
             Row{"many", 60, 24, 80, 18, {0, 15, 30, 45}},
             Row{"joined again until narrow enough, then scrolled", 200, 24, 80, 30, {0, 100}},
             Row{"a name wider than the screen", 10, 24, 20, 30, {0}},
         }) {
        start(row.lines, row.cols);
        for (int i = 1; i < row.entries - 3; ++i) {
            char name[16];
            std::snprintf(name, sizeof name, "#%03d", i);
            add('!', (name + std::string(row.width - 6, '.')).c_str());
        }
        ASSERT_EQ(g_mainmenu_entrys.count, row.entries);
        const auto all = names();
        press('\r');
        const std::string screen = look();
        const std::size_t first = screen.find(all[0].substr(2, 8));
        ASSERT_NE(first, std::string::npos) << screen;
        const std::string line = screen.substr(first, screen.find('\n', first) - first);
        EXPECT_EQ(std::count(line.begin(), line.end(), '#') + 1, static_cast<long>(row.heads.size()))
            << row.what;
        for (const int head : row.heads)
            EXPECT_THAT(line, HasSubstr(all[head].substr(2, 4))) << row.what << '\n' << screen;
    }
}

// ---- built-in entries

TEST_F(MainMenu, SettingsAtStart) {
    struct Row {
        const char *seconds, *color;
        double show_time;
        BOOL enable;
    };
    EXPECT_EQ(g_errordisp_show_time, 2.0);
    EXPECT_TRUE(g_conf_enable_color);
    for (const Row& row : {
             Row{"3.5", "TRUE", 3.5, TRUE},
             Row{"0", "no", 0.0, FALSE},
             Row{"1e300", "0", 1e300, FALSE},  // beyond what the options accept
             Row{"-1", "1", -1.0, TRUE},
             Row{"nan", "t", 2.0, TRUE},
         }) {
        CONF_set(g_conf, "Settings;ErrorDisplayTime", row.seconds);
        CONF_set(g_conf, "Settings;EnableColor", row.color);
        start(24, 80);
        EXPECT_EQ(g_errordisp_show_time, row.show_time) << row.seconds;
        EXPECT_EQ(g_conf_enable_color, row.enable) << row.color;
        MAINMENU_save_config();
        EXPECT_EQ(UTIL_atofv(CONF_lookup(g_conf, "Settings;ErrorDisplayTime")), row.show_time);
    }
}

TEST_F(MainMenu, AFailedSaveIsToldOnTheScreen) {
    g_conffile = "/no/such/folder/conf";
    complaints_of([] { choose("Save configuration"); });
    EXPECT_THAT(look(), AllOf(HasSubstr("Not saved:"), HasSubstr("No such file or directory"),
                              HasSubstr("/no/such/folder/conf")));
    press('\r');
    EXPECT_FALSE(CURSDIALOG_active());
    g_conffile = nullptr;
}

TEST_F(MainMenu, ClientOptions) {
    choose("Client options");
    EXPECT_THAT(look(), AllOf(HasSubstr("Error display time: 2.0"), HasSubstr("[*] Enable colors")));
    type("5.5\r1e17\r");
    EXPECT_EQ(g_errordisp_show_time, 5.5) << "what is out of range is not taken";
    press({CURSKEYS_TAB, '\r'});
    EXPECT_FALSE(g_conf_enable_color);
    EXPECT_THAT(look(), HasSubstr("[ ] Enable colors"));
    UTIL_strcpynt(g_passwd, "abc");
    press({CURSKEYS_TAB, '\r'});
    type("wrong\r");
    EXPECT_THAT(look(), AllOf(HasSubstr("Client options"), Not(HasSubstr("Set password"))));
    press('\r');
    type("abc\r");
    EXPECT_THAT(look(), HasSubstr("Set password"));
}

}  // namespace
