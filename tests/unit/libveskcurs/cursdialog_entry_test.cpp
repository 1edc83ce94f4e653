// Entries: editing, committing, rejecting, and the numeric verifier.
#include <clocale>
#include <cmath>

#include "libvesk/support/util.h"
#include "libveskcurs/cursdialog.h"
#include "libveskcurs/cursdialog_line.h"
#include "unit/libveskcurs/dialog_test.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr int CTRL_U = 21;

void log_value(CURSDIALOG_type*, void*, CURSDIALOG_widget*, void*, char* str, CURSDIALOG_entry_action*) {
    g_log.emplace_back(str);
}

class DialogEntry : public DialogTest {
  protected:
    DialogEntry() : dlg(open()) {}
    // An entry "Name: " with that text, and a button below it whose hot key is "x".
    void build(const char* initial, int max_len = 8, CURSDIALOG_entry_verify_cb verify = log_value) {
        wd = entry(dlg, 1, "Name: ", initial, max_len, verify);
        button(dlg, 1, 2, "xpress", 'x');
    }
    std::string value() { return CURSDIALOG_getvalue(wd, nullptr, 0); }
    // The text behind the label, up to the end of the field.
    std::string field() {
        shown();
        const Cell at = find("Name: ");
        const std::string row = TestScreen::screen_row(at.y).substr(at.x + 6);
        return row.substr(0, row.find('|'));
    }
    // The column of the cursor cell within the field, or -1.
    int cursor() {
        shown();
        const Cell at = find("Name: ");
        for (int x = 0; x < 20; ++x) {
            if ((TestScreen::attributes(newscr, at.y, at.x + 6 + x) & A_REVERSE) != 0) return x;
        }
        return -1;
    }

    CURSDIALOG_type* dlg;
    CURSDIALOG_widget* wd = nullptr;
};

TEST_F(DialogEntry, EnterEditsThePresentText) {
    build("abc");
    EXPECT_EQ(field(), "abc_____");
    EXPECT_EQ(cursor(), -1);
    press({'\n'});
    EXPECT_EQ(cursor(), 3);
    type("de");
    EXPECT_EQ(value(), "abc") << "not committed yet";
    press({'\n'});
    EXPECT_EQ(value(), "abcde");
    EXPECT_EQ(cursor(), -1);
    EXPECT_THAT(g_log, ElementsAre("abcde"));
}

TEST_F(DialogEntry, TypingReplacesThePresentText) {
    build("abc");
    type("x y\n");
    EXPECT_EQ(value(), "x y") << "the hot key of a button is text here";
    type(" \n");
    EXPECT_THAT(g_log, ElementsAre("x y", " "));
}

TEST_F(DialogEntry, LineEditing) {
    struct Row {
        const char* what;
        std::vector<int> keys;
        const char* result;
        int cursor;
    };
    const std::vector<Row> rows = {
        {"insert in the middle", {KEY_LEFT, KEY_LEFT, '-'}, "12-34", 3},
        {"backspace", {KEY_BACKSPACE, 127, 8}, "1", 1},
        {"backspace at the start", {KEY_HOME, KEY_BACKSPACE}, "1234", 0},
        {"delete", {KEY_HOME, KEY_DC, KEY_RIGHT, KEY_DC}, "24", 1},
        {"delete at the end", {KEY_DC}, "1234", 4},
        {"home and end", {KEY_HOME, 'a', KEY_END, 'b'}, "a1234b", 6},
        {"beyond the ends", {KEY_RIGHT, KEY_HOME, KEY_LEFT, 'z'}, "z1234", 1},
        {"kill", {KEY_LEFT, CTRL_U, 'k'}, "k", 1},
        {"full", {'5', '6', '7', '8', '9', '0'}, "12345678", 8},
        {"ignored", {0, 1, 0xE9, KEY_F(2), CURSKEYS_ALT + 'a', KEY_NPAGE}, "1234", 4},
    };
    for (const Row& row : rows) {
        cursdialog::LineEditor editor("1234", 8);
        for (const int key : row.keys)
            editor.key(key);
        EXPECT_EQ(editor.text(), row.result) << row.what;
        EXPECT_EQ(editor.cursor(), row.cursor) << row.what;
    }
}

TEST_F(DialogEntry, TabAndArrowsCommitAndMoveOn) {
    build("abc");
    for (const int key : {int{CURSKEYS_TAB}, KEY_DOWN, int{CURSKEYS_BTAB}, KEY_UP}) {
        g_log.clear();
        CURSDIALOG_force_widget_focus(dlg, wd);
        type("new");
        press({key, ' '});
        EXPECT_THAT(g_log, ElementsAre("new", "xpress")) << key;
    }
    EXPECT_EQ(value(), "new");
}

TEST_F(DialogEntry, EscapeAndCtrlWCommitNothing) {
    build("abc");
    type("new");
    press({CURSKEYS_ESCAPE});
    EXPECT_EQ(field(), "abc_____") << "as it was, and the dialog stays";
    press({CURSKEYS_ESCAPE});
    EXPECT_FALSE(CURSDIALOG_active());
    for (const int key : {CURSKEYS_CTRL_W, CURSKEYS_ESCAPE}) {
        dlg = open();
        build("abc");
        CURSDIALOG_force_entry_input(dlg, wd);
        EXPECT_EQ(cursor(), 3);
        type("x");
        press({key});
        EXPECT_FALSE(CURSDIALOG_active()) << "the input was all there was";
    }
    EXPECT_THAT(g_log, IsEmpty());
}

TEST_F(DialogEntry, ALongValueScrollsInItsField) {
    wd = entry(dlg, 1, "Name: ", "abcdefghijkl", 20, nullptr, nullptr, 0, 6 + 5);
    EXPECT_EQ(field(), "abcde");
    press({'\n'});
    EXPECT_EQ(field(), "ijkl ");
    EXPECT_EQ(cursor(), 4);
    press({KEY_LEFT, KEY_LEFT, KEY_LEFT});
    EXPECT_EQ(field(), "ijkl_");
    EXPECT_EQ(cursor(), 1);
    press({KEY_HOME});
    EXPECT_EQ(field(), "abcde");
    press({KEY_END, KEY_BACKSPACE});
    EXPECT_EQ(field(), "hijk ") << "no more empty room than the cursor needs";
    type("\n");
    EXPECT_EQ(value(), "abcdefghijk");
}

TEST_F(DialogEntry, FieldWidths) {
    CURSDIALOG_type* wide = open("", 30);
    entry(wide, 1, "To the edge: ", "", 63);
    entry(wide, 2, "Given: ", "", 63, nullptr, nullptr, 0, 10);
    entry(wide, 3, "A label without room: ", "", 8, nullptr, nullptr, 0, 5);
    EXPECT_THAT(shown(), HasSubstr("|To the edge: _________________|"));
    EXPECT_THAT(shown(), HasSubstr("|Given: ___                    |"));
    EXPECT_THAT(shown(), HasSubstr("|A label without room: _____   |"));
}

void reject(CURSDIALOG_type*, void*, CURSDIALOG_widget* wd, void*, char* str, CURSDIALOG_entry_action* act) {
    g_log.emplace_back(std::string(str) + "/" + CURSDIALOG_getvalue(wd, nullptr, 0));
    act->revert_value = TRUE;
    static char reason[] = "a value that is anything but this one";
    act->reason = str[0] == '?' ? nullptr : reason;
}

TEST_F(DialogEntry, RejectedValueIsRevertedAndSaysWhyUntilTheNextKey) {
    build("abc", 8, reject);
    type("new\t");
    EXPECT_THAT(g_log, ElementsAre("new/new"));
    EXPECT_EQ(field(), std::string("abc_____") + std::string(25, ' '))
        << "the dialog is as wide as the reason";
    EXPECT_THAT(shown(), HasSubstr("+ a value that is anything but this one +"));
    EXPECT_TRUE(focused("Name: ")) << "stays on the entry";
    press({KEY_RIGHT});
    EXPECT_THAT(shown(), Not(HasSubstr("anything")));
    type("?\n");
    EXPECT_THAT(shown(), HasSubstr(" not accepted "));
}

TEST_F(DialogEntry, VerifierMayChangeTheText) {
    build("abc", 8,
          [](CURSDIALOG_type*, void*, CURSDIALOG_widget*, void*, char* str, CURSDIALOG_entry_action*) {
              strcpy(str, "rewritten and too long");
          });
    type("new\n");
    EXPECT_EQ(value(), "rewritte") << "never longer than the entry takes";
}

// The numeric verifier: typed text in, value (or nothing, with the reason) out.
struct Number {
    const char* typed;
    const char* value;  // null: rejected
};

class DialogNumber : public DialogEntry {
  protected:
    // Types each text over a fresh "old" and compares what is left.
    void check(const CURSDIALOG_DEFAULT_entry_numeric_param* param, int max_len,
               const std::vector<Number>& rows, const char* reason = " a number ") {
        for (const Number& row : rows) {
            CURSDIALOG_type* fresh = open();
            wd = entry(fresh, 1, "Name: ", "old", max_len, CURSDIALOG_DEFAULT_entry_numeric, param,
                       param != nullptr ? sizeof *param : 0);
            press({'\n', CTRL_U});
            type(row.typed);
            press({'\n'});
            EXPECT_EQ(value(), row.value != nullptr ? row.value : "old") << '"' << row.typed << '"';
            const bool says_why = shown().find(reason) != std::string::npos;
            EXPECT_EQ(says_why, row.value == nullptr) << '"' << row.typed << "\"\n" << shown();
            CURSDIALOG_close(fresh);
        }
    }
};

TEST_F(DialogNumber, AcceptsWithinItsLimitsAndShowsAgainInItsFormat) {
    const CURSDIALOG_DEFAULT_entry_numeric_param param{1, 9999, "%.1f", log_value};
    check(&param, 8,
          {{"1", "1.0"},
           {"9999", "9999.0"},
           {" 2.25 ", "2.2"},
           {"0.999", nullptr},
           {"9999.01", nullptr},
           {"", nullptr},
           {"12x", nullptr}},
          " a number from 1 to 9999 ");
    EXPECT_THAT(g_log, ElementsAre("1.0", "9999.0", "2.2")) << "the accepted texts go on, as shown";
}

TEST_F(DialogNumber, LimitsMayBeFarOrNone) {
    const CURSDIALOG_DEFAULT_entry_numeric_param far{1e-99, 9.999e+99, "%e", nullptr};
    check(&far, 8, {{"0", nullptr}}, " a number from 1e-99 to 9.999e+99 ");
    check(nullptr, 16, {{"1.50", "1.50"}, {"-9.999e-99", "-9.999e-99"}, {"12x", nullptr}, {"inf", nullptr}});
    const CURSDIALOG_DEFAULT_entry_numeric_param no_numbers{NAN, INFINITY, "%.0f", nullptr};
    check(&no_numbers, 8, {{"-77", "-77"}, {"nan", nullptr}});
}

TEST_F(DialogNumber, FormatsThatCannotBeUsedLeaveTheTextAsTyped) {
    for (const char* fmt :
         {"", "%s", "%n", "%d", "%.1f %.1f", "%", "%*f", "%.1", "%999f", "%.99999f", "no number", "x %Lf"}) {
        CURSDIALOG_DEFAULT_entry_numeric_param param{0, 100, "", nullptr};
        UTIL_strcpynt(param.fmt, fmt);
        check(&param, 8, {{"2.50", "2.50"}});
    }
    // Unterminated: the field ends the format.
    CURSDIALOG_DEFAULT_entry_numeric_param full{0, 100, "", nullptr};
    memset(full.fmt, '#', sizeof full.fmt);
    check(&full, 8, {{"2.50", "2.50"}});
}

TEST_F(DialogNumber, ShownTextFitsTheEntryAndTheLimits) {
    const CURSDIALOG_DEFAULT_entry_numeric_param param{0, 9.96, "%.1f", nullptr};
    check(&param, 4, {{"9.96", "9.96"}, {"9.92", "9.9"}});
    const CURSDIALOG_DEFAULT_entry_numeric_param longer{0, 100, "%e", nullptr};
    check(&longer, 8, {{"2.5", "2.5"}});
}

TEST_F(DialogNumber, ThePointIsAPointInEveryLocale) {
    const char* found = nullptr;
    for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "de_DE"})
        if (found == nullptr) found = setlocale(LC_NUMERIC, name);
    if (found == nullptr) GTEST_SKIP() << "no locale with a comma is installed";
    const CURSDIALOG_DEFAULT_entry_numeric_param param{0, 100, "%.2f", nullptr};
    check(&param, 8, {{"2.5", "2.50"}, {"2,5", nullptr}});
    setlocale(LC_NUMERIC, "C");
}

TEST_F(DialogNumber, PassThroughMayReject) {
    const CURSDIALOG_DEFAULT_entry_numeric_param param{
        0, 100, "%.0f",
        [](CURSDIALOG_type*, void*, CURSDIALOG_widget*, void* data, char* str, CURSDIALOG_entry_action* act) {
            const auto* own = static_cast<const CURSDIALOG_DEFAULT_entry_numeric_param*>(data);
            EXPECT_EQ(own->max, 100) << "the same user data";
            act->revert_value = strcmp(str, "13") == 0;
        }};
    check(&param, 8, {{"13.0", nullptr}, {"14.0", "14"}}, " not accepted ");
}

}  // namespace
