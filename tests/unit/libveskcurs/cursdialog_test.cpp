// How dialogs look and where they are, and how the focus moves through them.
#include "libveskcurs/cursdialog.h"

#include <deque>
#include <sstream>

#include "unit/libveskcurs/dialog_test.h"

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

using DialogView = DialogTest;

// The rows of the screen between the dialog's borders, and the borders themselves.
std::vector<std::string> rows_of_dialog(const std::string& screen) {
    std::vector<std::string> rows;
    std::istringstream lines(screen);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t start = line.find_first_not_of(' ');
        if (start != std::string::npos) rows.push_back(line.substr(start));
    }
    return rows;
}

TEST_F(DialogView, IsFramedCentredAndDrawnInItsAttributes) {
    CURSDIALOG_type* dlg = open("Disk operations");
    button(dlg, 1, 1, "Flush buffers");
    button(dlg, 1, 2, "Start new files");
    button(dlg, 1, 4, "Cancel", 0, CURSDIALOG_STYLE_CLOSE);
    EXPECT_THAT(rows_of_dialog(shown()), ElementsAre("+ Disk operations +",  //
                                                     "|Flush buffers    |",  //
                                                     "|Start new files  |",  //
                                                     "|                 |",  //
                                                     "|[ Cancel ]       |",  //
                                                     "+-----------------+"));
    const Cell title = find("Disk operations");
    EXPECT_EQ(title.y, (24 - 6) / 2);
    EXPECT_EQ(title.x, (80 - 19) / 2 + 2);
    EXPECT_EQ(TestScreen::color_pair(newscr, title.y, title.x), 3);
    const Cell plain = find("Start");
    EXPECT_EQ(TestScreen::color_pair(newscr, plain.y, plain.x), 2);
    EXPECT_EQ(TestScreen::attributes(newscr, plain.y, plain.x) & A_BOLD, 0U);
    EXPECT_NE(TestScreen::attributes(newscr, find("[ Cancel").y, title.x) & A_BOLD, 0U);
    EXPECT_TRUE(focused("Flush buffers"));
    EXPECT_FALSE(focused("Cancel"));
}

TEST_F(DialogView, TitleAndWidgetsAreCutToTheirWidth) {
    CURSDIALOG_type* dlg = open("A title that is far too long for this", 20);
    button(dlg, 1, 1, "OK", 0, CURSDIALOG_STYLE_ROW, 10);
    button(dlg, 11, 1, "Cancel", 0, CURSDIALOG_STYLE_ROW, 10);
    button(dlg, 1, 2, "a long label", 0, CURSDIALOG_STYLE_MENU, 6);
    button(dlg, 8, 2, "b", 0, CURSDIALOG_STYLE_MENU, 6);
    button(dlg, 1, 3, "Interrupt", 0, CURSDIALOG_STYLE_ROW, 6);
    CURSDIALOG_add_label(dlg, 8, 3, 4, 0, "labelled");
    button(dlg, 1, 4, "x", 0, CURSDIALOG_STYLE_CLOSE, 1);
    EXPECT_THAT(rows_of_dialog(shown()), ElementsAre("+A title that is far +",  //
                                                     "|<   OK   >< Cancel >|",  //
                                                     "|a long b            |",  //
                                                     "|<Inte> labe         |",  //
                                                     "|x                   |",  //
                                                     "+--------------------+"));
}

TEST_F(DialogView, TextFromOutsideCannotReachTheTerminalRaw) {
    CURSDIALOG_type* dlg = open("t\x1b[2J");
    button(dlg, 1, 1, "\x9b\nx\xC3\xA9y");
    EXPECT_THAT(rows_of_dialog(shown()), ElementsAre("+ t [2J +", "|  x  y |", "+-------+"));
}

TEST_F(DialogView, HotKeysShowInTheirLabels) {
    CURSDIALOG_type* dlg = open();
    button(dlg, 1, 1, "first");
    button(dlg, 1, 2, "1 Hide window", '1');
    button(dlg, 1, 3, "Zero", 'z');
    button(dlg, 1, 4, "  no such letter", '!');
    shown();
    for (const auto& [text, hot] :
         {std::pair{"1 Hide", true}, {"Zero", true}, {"Hide", false}, {"no such", false}}) {
        const Cell at = find(text);
        EXPECT_EQ((TestScreen::attributes(newscr, at.y, at.x) & A_UNDERLINE) != 0, hot) << text;
        EXPECT_EQ(TestScreen::color_pair(newscr, at.y, at.x), hot ? 3 : 2) << text;
    }
}

TEST_F(DialogView, FocusShowsWithoutColors) {
    CURSDIALOG_cleanup();
    for (const char* term : {"vt100", "xterm-256color"}) {
        TestScreen plain(24, 80, term);
        if (has_colors())
            init_pair(3, COLOR_WHITE, COLOR_BLUE);  // as when colours are switched off: all pairs alike
        CURSDIALOG_type* dlg = open();
        button(dlg, 1, 1, "one");
        button(dlg, 1, 2, "two");
        shown();
        const Cell one = find("one");
        EXPECT_NE(TestScreen::attributes(newscr, one.y, one.x) & A_REVERSE, 0U) << term;
        EXPECT_EQ(TestScreen::attributes(newscr, one.y + 1, one.x) & A_REVERSE, 0U) << term;
        CURSDIALOG_cleanup();
    }
}

TEST_F(DialogView, NewLabelsMakeItGrow) {
    CURSDIALOG_type* dlg = open("");
    CURSDIALOG_widget* wd = button(dlg, 1, 1, "Method: A");
    shown();
    CURSDIALOG_setlabel(wd, "Method: a longer one");
    EXPECT_THAT(rows_of_dialog(shown()),
                ElementsAre("+--------------------+", "|Method: a longer one|", "+--------------------+"));
    EXPECT_STREQ(CURSDIALOG_getvalue(wd, nullptr, 0), "Method: a longer one");
}

TEST_F(DialogView, StaysAboveWindowsThatAreRaised) {
    WINDOW* win = newwin(24, 80, 0, 0);
    PANEL* pan = new_panel(win);
    button(open(), 1, 1, "below");
    CURSDIALOG_type* upper = open("");
    button(upper, 1, 1, "above!");
    for (int pass = 0; pass < 2; ++pass) {
        top_panel(pan);
        EXPECT_THAT(rows_of_dialog(shown()), testing::Contains(HasSubstr("above!")));
    }
    EXPECT_TRUE(focused("above!"));
    del_panel(pan);
    delwin(win);
}

// 200 menu entries in two columns of 100 rows on 24 lines.
class DialogMenu : public DialogTest {
  protected:
    DialogMenu() {
        dlg = open("");
        for (int i = 0; i < 200; ++i) {
            names.push_back("entry number " + std::to_string(i) + ".");
            button(dlg, i < 100 ? 1 : 32, 1 + i % 100, names.back().c_str(), 0, CURSDIALOG_STYLE_MENU, 30);
        }
    }
    // The number of the focused entry, which must be on the screen.
    int focus() {
        const std::string all = shown();
        for (int i = 0; i < 200; ++i) {
            if (all.find(names[i]) != std::string::npos && drawn_focused(names[i])) return i;
        }
        return -1;
    }
    std::deque<std::string> names;
    CURSDIALOG_type* dlg;
};

TEST_F(DialogMenu, PagesWithinItsColumnAndCrossesColumns) {
    EXPECT_EQ(focus(), 0);
    EXPECT_THAT(shown(), Not(HasSubstr("^")));
    EXPECT_THAT(TestScreen::screen_row(23), HasSubstr("v+"));
    press({KEY_NPAGE});
    EXPECT_EQ(focus(), 22);
    press({KEY_NPAGE, KEY_NPAGE, KEY_NPAGE, KEY_NPAGE});
    EXPECT_EQ(focus(), 99) << "the last page is a short one";
    EXPECT_THAT(TestScreen::screen_row(0), HasSubstr("^+"));
    EXPECT_THAT(TestScreen::screen_row(23), Not(HasSubstr("v+")));
    press({KEY_NPAGE});
    EXPECT_EQ(focus(), 99);
    press({KEY_RIGHT});
    EXPECT_EQ(focus(), 199);
    press({KEY_RIGHT, KEY_PPAGE});
    EXPECT_EQ(focus(), 177);
    press({KEY_LEFT});
    EXPECT_EQ(focus(), 77);
}

TEST_F(DialogMenu, ShowsWhatItCanOnAnyScreen) {
    for (int i = 0; i < 150; ++i)
        press({CURSKEYS_TAB});
    for (const auto& [lines, cols] :
         {std::pair(20, 8), {5, 5}, {3, 3}, {2, 80}, {1, 1}, {2, 2}, {24, 80}, {60, 200}}) {
        screen.resize(lines, cols);
        const std::string all = shown();
        if (cols >= 40) {
            EXPECT_EQ(focus(), 150) << lines << "x" << cols;
        } else {
            const bool framed = lines >= 3 && cols >= 3;
            const std::string start = names[150].substr(0, framed ? cols - 2 : cols);
            EXPECT_THAT(all, HasSubstr(start)) << lines << "x" << cols;
        }
        press({KEY_LEFT, KEY_RIGHT});
    }
}

TEST_F(DialogView, ContentsWiderThanTheScreenScrollSideways) {
    screen.resize(10, 20);
    CURSDIALOG_type* dlg = open("");
    button(dlg, 1, 1, "left", 0, CURSDIALOG_STYLE_ROW, 15);
    button(dlg, 16, 1, "middle", 0, CURSDIALOG_STYLE_ROW, 15);
    button(dlg, 31, 1, "right", 0, CURSDIALOG_STYLE_ROW, 15);
    EXPECT_THAT(rows_of_dialog(shown())[1], "|<    left     ><  >");
    press({KEY_RIGHT});
    EXPECT_THAT(rows_of_dialog(shown())[1], "<  ><   middle    >>");
    press({KEY_RIGHT, KEY_RIGHT});
    EXPECT_THAT(rows_of_dialog(shown())[1], EndsWith("<    right    >|"));
}

TEST_F(DialogView, TextAboveAndBelowTheWidgetsCanBeRead) {
    screen.resize(8, 40);
    CURSDIALOG_type* dlg = open("");
    CURSDIALOG_add_label(dlg, 1, 1, 0, 0, "the heading");
    button(dlg, 1, 3, "one");
    button(dlg, 1, 5, "two");
    CURSDIALOG_add_label(dlg, 1, 20, 0, 0, "the footing");
    EXPECT_THAT(shown(), HasSubstr("the heading"));
    press({CURSKEYS_BTAB, KEY_UP, KEY_DOWN});
    EXPECT_THAT(shown(), HasSubstr("two"));
    for (int i = 0; i < 5; ++i)
        press({KEY_NPAGE});
    EXPECT_THAT(shown(), HasSubstr("the footing"));
    press({KEY_UP});
    EXPECT_THAT(shown(), HasSubstr("the heading"));
}

TEST_F(DialogView, WithoutWidgetsItScrollsAndCloses) {
    screen.resize(6, 40);
    CURSDIALOG_type* dlg = open("");
    for (int i = 1; i <= 9; ++i)
        CURSDIALOG_add_label(dlg, 1, i, 0, 0, ("line " + std::to_string(i)).c_str());
    EXPECT_THAT(shown(), HasSubstr("line 4"));
    press({KEY_DOWN, '\n', ' ', 'x'});
    EXPECT_THAT(shown(), testing::AllOf(HasSubstr("line 5"), Not(HasSubstr("line 1"))));
    press({KEY_NPAGE, KEY_NPAGE, KEY_NPAGE, KEY_PPAGE, KEY_UP});
    EXPECT_THAT(shown(), HasSubstr("line 1"));
    press({CURSKEYS_CTRL_W});
    EXPECT_FALSE(CURSDIALOG_active());
}

TEST_F(DialogView, FocusMovesInOrderAndAlongRows) {
    CURSDIALOG_type* dlg = open();
    button(dlg, 1, 1, "alpha");
    CURSDIALOG_add_label(dlg, 1, 2, 0, 0, "a text");
    button(dlg, 1, 3, "yes", 0, CURSDIALOG_STYLE_ROW, 10);
    button(dlg, 11, 3, "no", 0, CURSDIALOG_STYLE_ROW, 10);
    button(dlg, 1, 4, "omega");
    const auto expect = [&](std::initializer_list<int> keys, const char* text) {
        press(keys);
        EXPECT_TRUE(focused(text)) << text << '\n' << shown();
    };
    expect({}, "alpha");
    expect({KEY_RIGHT, KEY_LEFT}, "alpha");
    expect({CURSKEYS_TAB}, "yes");
    expect({KEY_LEFT}, "yes");
    expect({KEY_RIGHT, KEY_RIGHT}, "no");
    expect({KEY_DOWN}, "omega");
    expect({CURSKEYS_TAB}, "alpha");
    expect({CURSKEYS_BTAB}, "omega");
    expect({KEY_UP, KEY_UP}, "yes");
    expect({KEY_END}, "omega");
    expect({KEY_HOME}, "alpha");
    expect({KEY_NPAGE}, "omega");
    expect({KEY_PPAGE}, "alpha");
}

TEST_F(DialogView, EnterSpaceAndHotKeysPressButtons) {
    CURSDIALOG_type* dlg = open();
    button(dlg, 1, 1, "big A", 'A');
    button(dlg, 1, 2, "small a", 'a');
    button(dlg, 1, 3, "big B", 'B');
    button(dlg, 1, 4, "small c", 'c');
    button(dlg, 1, 5, "accented", 0xE9);
    button(dlg, 1, 6, "none");
    press({'a', 'A', 'b', 'C', 0xE9, 0});
    EXPECT_THAT(g_log, ElementsAre("small a", "big A", "big B", "small c", "accented"))
        << "the exact character first";
    EXPECT_TRUE(focused("accented")) << "the button that was pressed has the focus";
    g_log.clear();
    press({' ', '\r', '\n', KEY_ENTER});
    EXPECT_THAT(g_log, ElementsAre("accented", "accented", "accented", "accented"));
}

TEST_F(DialogView, ConsumesEveryKeyButAResize) {
    EXPECT_FALSE(CURSDIALOG_keypress('x'));
    button(open(), 1, 1, "mine", 'm');
    press({'x', CURSKEYS_ALT + 'm', 0xED, KEY_F(1), 0, CURSKEYS_CTRL_D, KEY_MOUSE});
    EXPECT_THAT(g_log, IsEmpty()) << "Alt is no hot key";
    EXPECT_FALSE(CURSDIALOG_keypress(KEY_RESIZE));
    press({CURSKEYS_ESCAPE});
    EXPECT_FALSE(CURSDIALOG_keypress(CURSKEYS_ESCAPE));
}

TEST_F(DialogView, NullAndForeignArgumentsAreIgnored) {
    CURSDIALOG_type* dlg = open(nullptr);
    CURSDIALOG_widget* wd = CURSDIALOG_add_button(dlg, -5, 0, -1, 77, 0, nullptr, nullptr, nullptr, 0);
    ASSERT_NE(wd, nullptr);
    CURSDIALOG_force_widget_focus(open(), wd);
    CURSDIALOG_force_entry_input(dlg, wd);
    CURSDIALOG_setlabel(nullptr, "x");
    CURSDIALOG_setlabel(wd, nullptr);
    EXPECT_STREQ(CURSDIALOG_getvalue(nullptr, nullptr, 0), "");
    EXPECT_EQ(CURSDIALOG_add_button(nullptr, 1, 1, 0, 0, 0, "x", nullptr, nullptr, 0), nullptr);
    CURSDIALOG_close(nullptr);
    shown();
    press({'\n', CURSKEYS_ESCAPE, '\n', ' '});
    EXPECT_TRUE(CURSDIALOG_active());
}

TEST(DialogWithoutScreen, CannotBeMade) {
    EXPECT_EQ(CURSDIALOG_create(0, 0, "x", 0, nullptr, 0, nullptr, nullptr), nullptr);
    EXPECT_FALSE(CURSDIALOG_active());
}

}  // namespace
