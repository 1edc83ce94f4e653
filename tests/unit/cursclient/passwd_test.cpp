// The password guard: who is let through, and that every check is answered once.
#include "cursclient/passwd.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cursclient/cursclient.h"
#include "libvesk/support/util.h"
#include "libveskcurs/cursdialog.h"
#include "libveskcurs/curskeys.h"
#include "support/console.h"

using testing::HasSubstr;
using testing::Not;

namespace {

constexpr int CTRL_U = 21;

struct Answers {
    int passed = 0;
    int failed = 0;
    bool operator==(const Answers&) const = default;
};

class Passwd : public ConsoleTest {
  protected:
    static void check(Answers* answers) {
        PASSWD_checkpass(
            [](BOOL passok, void* param) {
                auto* a = static_cast<Answers*>(param);
                ++(passok ? a->passed : a->failed);
            },
            answers);
    }
    static void set_password(const std::string& text) { UTIL_strcpynt(g_passwd, text.c_str()); }
};

TEST_F(Passwd, WithoutAPasswordEverythingPassesAtOnce) {
    Answers answers;
    check(&answers);
    EXPECT_EQ(answers, (Answers{.passed = 1, .failed = 0}));
    EXPECT_FALSE(CURSDIALOG_active());
    PASSWD_checkpass(nullptr, nullptr);
}

TEST_F(Passwd, OnlyThePasswordPasses) {
    const std::string longest(63, 'p');
    struct Row {
        std::string password, typed;
        int last_key;
        BOOL passes;
    };
    for (const Row& row : {
             Row{"abc", "abc", '\r', TRUE}, Row{"abc", "ABC", '\r', FALSE}, Row{"abc", "ab", '\r', FALSE},
             Row{"abc", "", '\r', FALSE}, Row{"abc", "abc", CURSKEYS_ESCAPE, FALSE},
             Row{longest, longest, '\r', TRUE},
             Row{longest, longest + "q", '\r', TRUE},  // the entry takes no 64th character
         }) {
        set_password(row.password);
        Answers answers;
        check(&answers);
        EXPECT_EQ(answers, Answers{}) << "asked, not answered";
        EXPECT_THAT(look(), HasSubstr("Enter password"));
        type(row.typed);
        if (!row.typed.empty()) {
            EXPECT_THAT(look(), Not(HasSubstr(row.typed))) << "hidden";
        }
        press(row.last_key);
        EXPECT_FALSE(CURSDIALOG_active());
        press({'\r', CURSKEYS_ESCAPE, CURSKEYS_ESCAPE});
        EXPECT_EQ(answers, (row.passes ? Answers{1, 0} : Answers{0, 1}))
            << "answered once: " << row.typed << " key " << row.last_key;
        while (CURSDIALOG_active())
            press(CURSKEYS_ESCAPE);
    }
}

TEST_F(Passwd, OpenChecksAreAnsweredEachByItself) {
    set_password("abc");
    Answers lower;
    Answers upper;
    check(&lower);
    check(&upper);
    type("abc\r");
    EXPECT_EQ(upper, (Answers{1, 0}));
    EXPECT_EQ(lower, Answers{});
    CURSDIALOG_cleanup();  // the end of the program closes what is open
    EXPECT_EQ(lower, (Answers{0, 1}));
    EXPECT_TRUE(CURSDIALOG_init());
}

TEST_F(Passwd, ACheckMayBeMadeByTheAnswerOfAnother) {
    set_password("abc");
    static Answers second;
    second = {};
    PASSWD_checkpass([](BOOL, void*) { check(&second); }, nullptr);
    type("no\r");
    EXPECT_TRUE(CURSDIALOG_active());
    type("abc\r");
    EXPECT_EQ(second, (Answers{1, 0}));
}

TEST_F(Passwd, Change) {
    struct Row {
        const char* what;
        const char* before;
        std::vector<int> keys;
        const char* after;
    };
    for (const Row& row : {
             Row{"typed over", "old", {'n', 'e', 'w', '\t', '\r'}, "new"},
             Row{"edited", "old", {'\r', 'e', 'r', '\r', '\t', '\r'}, "older"},
             Row{"emptied", "old", {'\r', CTRL_U, '\r', '\t', '\r'}, ""},
             Row{"first one", "", {'x', '\t', '\r'}, "x"},
             Row{"closed", "old", {'n', 'e', 'w', '\t', CURSKEYS_ESCAPE}, "old"},
         }) {
        set_password(row.before);
        PASSWD_display_change_dialog();
        EXPECT_THAT(look(), HasSubstr("Set password"));
        EXPECT_THAT(look(), HasSubstr(std::string("Password: ") + row.before)) << "shown in clear";
        for (const int key : row.keys)
            press(key);
        EXPECT_STREQ(g_passwd, row.after) << row.what;
        EXPECT_FALSE(CURSDIALOG_active()) << row.what;
    }
}

TEST_F(Passwd, Settings) {
    EXPECT_STREQ(g_passwd, "");
    PASSWD_save_config();
    EXPECT_STREQ(CONF_lookup(g_conf, "Settings;Password"), "") << "saved when empty too";
    CONF_set(g_conf, "Settings;Password", std::string(70, 'p'));
    EXPECT_TRUE(PASSWD_init());
    EXPECT_EQ(std::string(g_passwd), std::string(63, 'p'));
}

}  // namespace
