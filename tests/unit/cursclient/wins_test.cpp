// Windows: placement, moves, focus, stacking, the saved layout, resizing and the frame.
#include "cursclient/wins.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "cursclient/cursclient.h"
#include "cursclient/wintext.h"
#include "libvesk/support/util.h"
#include "libveskcurs/curskeys.h"
#include "support/console.h"

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

struct Box {
    int x, y, sx, sy;
    bool operator==(const Box&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const Box& b) {
        return out << b.x << ',' << b.y << ' ' << b.sx << 'x' << b.sy;
    }
};

Box box_of(const WINS_window* w) {
    return {getbegx(w->win), getbegy(w->win), getmaxx(w->win), getmaxy(w->win)};
}

class Wins : public ConsoleTest {
  protected:
    // A window at a place, shown.
    static WINS_window* shown(const char* ident, Box b, DWORD flags = 0) {
        WINS_window* w = WINS_create(ident, b.sx, b.sy);
        EXPECT_NE(w, nullptr);
        WINS_absolute_move(w, b.x, b.y);
        WINS_show_window(w);
        w->flags = flags;
        return w;
    }
    static WINS_window* hidden(const char* ident, int sx, int sy) {
        WINS_window* w = WINS_create(ident, sx, sy);
        EXPECT_NE(w, nullptr);
        return w;
    }
    // Idents of the panels from bottom to top.
    static std::vector<std::string> stack() {
        std::vector<std::string> idents;
        for (PANEL* p = panel_above(nullptr); p != nullptr; p = panel_above(p))
            for (const WINS_window& w : LL_each<WINS_window>(g_window_list))
                if (w.pan == p) idents.emplace_back(w.ident);
        return idents;
    }
    static std::string focus() {
        const WINS_window* w = LL_data<WINS_window>(g_window_focus);
        int focused = 0;
        for (const WINS_window& each : LL_each<WINS_window>(g_window_list))
            focused += each.focused ? 1 : 0;
        EXPECT_EQ(focused, w == nullptr ? 0 : 1);
        EXPECT_TRUE(w == nullptr || w->focused);
        return w == nullptr ? "" : w->ident;
    }
};

TEST_F(Wins, NewWindowsAreHiddenAndCentred) {
    struct Row {
        int sx, sy;
        Box expected;
    };
    for (const Row& row :
         {Row{31, 7, {25, 9, 31, 7}}, Row{200, 3, {0, 11, 80, 3}}, Row{10, 40, {35, 0, 10, 23}}}) {
        WINS_window* w = WINS_create(nullptr, row.sx, row.sy);
        ASSERT_NE(w, nullptr);
        EXPECT_EQ(box_of(w), row.expected) << row.sx << 'x' << row.sy;
        EXPECT_FALSE(w->visible || w->focused || w->saveable);
        EXPECT_TRUE(panel_hidden(w->pan));
    }
    EXPECT_EQ(WINS_create("none", 0, 5), nullptr);
    EXPECT_EQ(WINS_create("none", 5, -1), nullptr);
    EXPECT_EQ(g_window_list.count, 3);
}

TEST_F(Wins, Identities) {
    EXPECT_STREQ(WINS_create(nullptr, 5, 5)->ident, "0");
    EXPECT_STREQ(WINS_create("", 5, 5)->ident, "1");
    ASSERT_NE(WINS_create("2", 5, 5), nullptr);
    EXPECT_STREQ(WINS_create(nullptr, 5, 5)->ident, "3") << "a number that a living window has is passed by";

    const std::string longer(80, 'x');
    WINS_window* cut = WINS_create(longer.c_str(), 5, 5);
    EXPECT_EQ(std::string(cut->ident), longer.substr(0, 64));
    const WINS_window* second = WINS_create(longer.c_str(), 5, 5);
    ASSERT_NE(second, nullptr) << "the identity is taken, the window is there all the same";
    EXPECT_STREQ(second->ident, "4");
    EXPECT_FALSE(second->saveable);

    WINS_UID uid;
    EXPECT_EQ(WINS_uid_of_window(cut, &uid), &cut->ident);
    EXPECT_EQ(WINS_window_by_uid(&uid), cut);
    EXPECT_EQ(WINS_uid_of_window(nullptr, &uid), nullptr);
    EXPECT_EQ(WINS_window_by_uid(nullptr), nullptr);
    WINS_delete(cut);
    EXPECT_EQ(WINS_window_by_uid(&uid), nullptr);
    EXPECT_TRUE(WINS_create(longer.c_str(), 5, 5)->saveable);
}

TEST_F(Wins, SavedLayoutIsAppliedOnlyWhenWhole) {
    struct Row {
        const char *x, *y, *visible;
        Box expected;
        BOOL shown;
    };
    const Box centred{25, 9, 30, 6};
    for (const Row& row : {
             Row{"3", "4", "TRUE", {3, 4, 30, 6}, TRUE},
             Row{"3", "4", "no", {3, 4, 30, 6}, FALSE},
             Row{"200", "100", "TRUE", {50, 17, 30, 6}, TRUE},
             Row{"99999999999", "-7", "FALSE", {50, 0, 30, 6}, FALSE},
             Row{"", "4", "TRUE", centred, FALSE},
             Row{"3", "", "TRUE", centred, FALSE},
             Row{"3", "4", "", centred, FALSE},
         }) {
        CONF_set(g_conf, "Windows;neph:N11;XPos", row.x);
        CONF_set(g_conf, "Windows;neph:N11;YPos", row.y);
        CONF_set(g_conf, "Windows;neph:N11;Visible", row.visible);
        WINS_window* w = WINS_create("neph:N11", 30, 6);
        EXPECT_EQ(box_of(w), row.expected) << row.x << ' ' << row.y << ' ' << row.visible;
        EXPECT_EQ(w->visible, row.shown) << row.visible;
        EXPECT_EQ(focus(), row.shown ? "neph:N11" : "");
        WINS_delete(w);
    }
}

TEST_F(Wins, ArrowKeysStopAtTheEdges) {
    struct Row {
        Box from;
        int key;
        int x, y;
    };
    for (const Row& row : {
             Row{{1, 1, 30, 6}, KEY_LEFT, 0, 1},
             Row{{1, 1, 30, 6}, KEY_UP, 1, 0},
             Row{{49, 16, 30, 6}, KEY_RIGHT, 50, 16},
             Row{{49, 16, 30, 6}, KEY_DOWN, 49, 17},
             // A single cell must not slip onto the status line either.
             Row{{79, 22, 1, 1}, KEY_DOWN, 79, 22},
         }) {
        WINS_window* w = shown("w", row.from);
        for (int i = 0; i < 2; ++i)
            EXPECT_TRUE(WINS_default_keyhandler(w, row.key));
        EXPECT_EQ(box_of(w), (Box{row.x, row.y, row.from.sx, row.from.sy}))
            << row.from << ' ' << keyname(row.key);
        WINS_delete(w);
    }
    WINS_window* w = shown("w", {49, 10, 30, 6});
    WINS_relative_move(w, 2, 1);
    EXPECT_EQ(box_of(w), (Box{49, 10, 30, 6})) << "a refused move is refused in both directions";
    WINS_relative_move(w, -60, -60);
    EXPECT_EQ(box_of(w), (Box{0, 0, 30, 6}));
    WINS_focus_window(shown("other", {0, 10, 10, 5}));
    EXPECT_FALSE(WINS_default_keyhandler(w, KEY_DOWN)) << "keys are for the focused window";
}

TEST_F(Wins, SettingTheSizeKeepsTheOriginOnTheScreen) {
    WINS_window* w = shown("w", {70, 20, 10, 3});
    WINDOW* before = w->win;
    WINS_set_size(w, 10, 3);
    EXPECT_EQ(w->win, before) << "nothing to do";
    WINS_set_size(w, 0, 3);
    EXPECT_EQ(w->win, before) << "no window has no columns";
    WINS_set_size(w, 20, 6);
    EXPECT_EQ(box_of(w), (Box{60, 17, 20, 6}));
    WINS_set_size(w, 5, 2);
    EXPECT_EQ(box_of(w), (Box{60, 17, 5, 2}));
    WINS_set_size(w, 500, 500);
    EXPECT_EQ(box_of(w), (Box{0, 0, 80, 23}));

    WINS_window* unseen = hidden("unseen", 10, 3);
    WINS_set_size(unseen, 12, 3);
    EXPECT_TRUE(panel_hidden(unseen->pan));
    shown("above", {0, 0, 10, 3});
    WINS_set_size(w, 20, 6);
    EXPECT_THAT(stack(), ElementsAre("w", "above")) << "its height in the stack stays";
}

TEST_F(Wins, FocusCycle) {
    press({CURSKEYS_TAB, CURSKEYS_BTAB});
    EXPECT_EQ(focus(), "");
    EXPECT_TRUE(WINS_keypress(CURSKEYS_TAB)) << "taken even without a window";
    EXPECT_FALSE(WINS_keypress('x'));

    shown("A", {0, 0, 10, 5});
    shown("B", {0, 5, 10, 5}, WINS_SKIP_IN_CYCLE);
    shown("C", {0, 10, 10, 5});
    hidden("D", 10, 5);
    WINS_window* at_bottom = shown("E", {0, 0, 10, 5}, WINS_AT_BOTTOM);
    EXPECT_EQ(focus(), "A") << "showing takes the focus only when nobody has it";
    std::string visited;
    for (const int key : {CURSKEYS_TAB, CURSKEYS_TAB, CURSKEYS_TAB, CURSKEYS_BTAB, CURSKEYS_BTAB}) {
        press(key);
        visited += focus();
    }
    EXPECT_EQ(visited, "CEAEC");
    EXPECT_EQ(stack().back(), "C");
    WINS_hide_window(at_bottom);
    press(CURSKEYS_TAB);
    EXPECT_EQ(focus(), "A");
    WINS_focus_window(at_bottom);
    EXPECT_EQ(focus(), "E");
    EXPECT_TRUE(at_bottom->visible);
}

TEST_F(Wins, HidingPassesTheFocusBackwards) {
    struct Row {
        std::vector<DWORD> flags;  // of the windows 0, 1, ..., all visible
        const char* hidden;        // the focused one
        const char* expected;      // the focus after it was hidden
    };
    for (const Row& row : {
             Row{{0, 0, 0}, "2", "1"},
             Row{{0, 0, 0}, "0", "2"},
             Row{{0, WINS_AT_BOTTOM, 0}, "2", "0"},
             Row{{0, WINS_SKIP_IN_CYCLE, 0}, "2", "0"},
             // Only then one at the bottom.
             Row{{WINS_AT_BOTTOM, WINS_ON_TOP | WINS_SKIP_IN_CYCLE, 0}, "2", "0"},
             Row{{WINS_SKIP_IN_CYCLE, WINS_SKIP_IN_CYCLE, 0}, "2", ""},
             Row{{WINS_ON_TOP, 0}, "1", "0"},
             Row{{0}, "0", ""},
         }) {
        start(24, 80);
        for (const DWORD flags : row.flags)
            shown(nullptr, {0, 0, 10, 5}, flags);
        WINS_UID uid{};
        UTIL_strcpynt(uid, row.hidden);
        WINS_window* win = WINS_window_by_uid(&uid);
        WINS_focus_window(win);
        WINS_hide_window(win);
        EXPECT_EQ(focus(), row.expected) << row.hidden << " of " << row.flags.size();
        EXPECT_FALSE(win->visible);
        EXPECT_TRUE(panel_hidden(win->pan));
    }
    shown("next", {0, 0, 10, 5});
    EXPECT_EQ(focus(), "next") << "the next one shown takes the free focus";
    WINS_window* last = shown("last", {0, 0, 10, 5});
    WINS_focus_window(last);
    WINS_delete(last);
    EXPECT_EQ(focus(), "next") << "deleting passes it on as hiding does";
    WINS_delete(nullptr);
}

TEST_F(Wins, Stacking) {
    WINS_window* top = shown("top", {0, 0, 10, 5}, WINS_ON_TOP);
    WINS_window* bottom = shown("bottom", {0, 0, 10, 5}, WINS_AT_BOTTOM);
    WINS_window* plain = shown("plain", {0, 0, 10, 5});
    WINS_focus_window(plain);
    WINS_update();
    EXPECT_THAT(stack(), ElementsAre("bottom", "plain", "top"));
    WINS_focus_window(bottom);
    WINS_update();
    EXPECT_THAT(stack(), ElementsAre("plain", "bottom", "top")) << "not lowered while focused";
    WINS_hide_window(top);
    WINS_update();
    EXPECT_THAT(stack(), ElementsAre("plain", "bottom"));
}

TEST_F(Wins, AutomaticPlacement) {
    struct Row {
        const char* what;
        std::vector<Box> others;
        int width;
        int x, y;
    };
    for (const Row& row : {
             Row{"empty screen", {}, 30, 0, 0},
             Row{"right of the first", {{0, 0, 30, 6}}, 30, 30, 0},
             Row{"just fits", {{0, 0, 30, 6}}, 50, 30, 0},
             Row{"in a gap", {{0, 0, 20, 6}, {40, 0, 40, 6}}, 20, 20, 0},
             Row{"a gap one column short", {{0, 0, 20, 6}, {39, 0, 41, 6}}, 20, 0, 0},
             Row{"only the top edge is tested", {{0, 1, 80, 6}}, 30, 0, 0},
             Row{"columns stay occupied in later rows", {{0, 0, 60, 2}}, 30, 0, 0},
         }) {
        start(24, 80);
        for (const Box& b : row.others)
            shown(nullptr, b);
        hidden(nullptr, 80, 23);  // counts for nothing
        WINS_window* w = shown("placed", {17, 9, row.width, 5});
        WINS_autoposition(w);
        EXPECT_EQ(box_of(w), (Box{row.x, row.y, row.width, 5})) << row.what;
    }
}

// ---- resizing

TEST_F(Wins, WindowsSurviveEveryScreenAndComeBack) {
    const std::vector<Box> boxes{
        {0, 0, 80, 23}, {50, 17, 30, 6}, {5, 2, 10, 3}, {79, 22, 1, 1}, {12, 0, 60, 20}};
    std::vector<WINS_window*> windows;
    for (const Box& b : boxes)
        windows.push_back(shown(nullptr, b));
    WINS_window* unseen = hidden("unseen", 40, 10);
    const Box unseen_box = box_of(unseen);
    WINS_focus_window(windows[1]);
    const auto stack_before = stack();

    for (const auto& [lines, cols] : {std::pair{8, 20}, {1, 1}, {2, 300}, {60, 3}, {100, 300}, {10, 79}}) {
        resize(lines, cols);
        for (std::size_t i = 0; i < windows.size(); ++i) {
            const Box now = box_of(windows[i]);
            EXPECT_LE(now.x + now.sx, cols) << boxes[i] << " on " << cols << 'x' << lines;
            EXPECT_LE(now.y + now.sy, std::max(lines - 1, 1)) << boxes[i] << " on " << cols << 'x' << lines;
            EXPECT_TRUE(windows[i]->visible && !panel_hidden(windows[i]->pan));
            WINS_draw_frame(windows[i], "a title that is too long for most of them");
        }
        EXPECT_TRUE(panel_hidden(unseen->pan));
        EXPECT_EQ(stack(), stack_before);
        EXPECT_EQ(focus(), "1");
        look();
    }
    resize(8, 20);
    EXPECT_EQ(box_of(windows[1]), (Box{0, 1, 20, 6}));
    EXPECT_EQ(box_of(windows[2]), (Box{5, 2, 10, 3})) << "what fits stays";
    resize(24, 80);
    for (std::size_t i = 0; i < windows.size(); ++i)
        EXPECT_EQ(box_of(windows[i]), boxes[i]);
    EXPECT_EQ(box_of(unseen), unseen_box);
}

TEST_F(Wins, WishesOfASmallScreen) {
    start(8, 20);
    WINS_window* made_small = WINS_create("made_small", 60, 20);
    EXPECT_EQ(box_of(made_small), (Box{0, 0, 20, 7}));
    WINDOW* before = made_small->win;
    WINS_set_size(made_small, 60, 20);
    EXPECT_EQ(made_small->win, before) << "the wish has not changed";

    WINS_window* moved = WINS_create("moved", 10, 3);
    WINS_absolute_move(moved, 60, 15);
    EXPECT_EQ(box_of(moved), (Box{10, 4, 10, 3}));
    WINS_window* pushed = WINS_create("pushed", 10, 3);
    WINS_absolute_move(pushed, 60, 15);
    WINS_relative_move(moved, -1, -1);
    WINS_window* shrunk = WINS_create("shrunk", 20, 5);
    WINS_absolute_move(shrunk, 60, 15);
    WINS_set_size(shrunk, 10, 3);

    resize(24, 80);
    EXPECT_EQ(box_of(made_small), (Box{0, 0, 60, 20}));
    EXPECT_EQ(box_of(moved), (Box{9, 3, 10, 3})) << "the operator's move is the new wish";
    EXPECT_EQ(box_of(pushed), (Box{60, 15, 10, 3}));
    EXPECT_EQ(box_of(shrunk), (Box{60, 15, 10, 3})) << "a new size keeps the wished place";
}

// ---- drawing

TEST_F(Wins, Frame) {
    WINS_window* w = shown("w", {0, 0, 12, 3});
    WINS_draw_frame(w, "CPC");
    WINTEXT_put(w, 1, 1, "stale");
    WINS_show_pictures();
    EXPECT_EQ(TestScreen::dump(w->win), "+----CPC---+\n|stale     |\n+----------+\n");
    EXPECT_EQ(TestScreen::color_pair(w->win, 0, 0), CP_YELLOW_BLUE);
    EXPECT_TRUE(TestScreen::attributes(w->win, 0, 0) & A_BOLD);
    EXPECT_EQ(TestScreen::color_pair(w->win, 1, 1), CP_WHITE_BLUE) << "text that follows is plain";

    WINS_focus_window(shown("other", {0, 5, 12, 3}));
    WINS_draw_frame(w, "0123456789abc");
    WINS_show_pictures();
    EXPECT_EQ(TestScreen::dump(w->win), "+0123456789+\n|          |\n+----------+\n");
    EXPECT_EQ(TestScreen::color_pair(w->win, 0, 0), CP_WHITE_BLUE) << "not focused";
    EXPECT_FALSE(TestScreen::attributes(w->win, 0, 0) & A_BOLD);
}

// ---- the terminal

TEST_F(Wins, Colours) {
    struct Row {
        const char* setting;
        short foreground, background;  // of the pair for faults
    };
    for (const Row& row : {Row{"TRUE", COLOR_RED, COLOR_BLUE}, Row{"no", COLOR_WHITE, COLOR_BLACK}}) {
        CONF_set(g_conf, "Settings;EnableColor", row.setting);
        start(24, 80);
        short foreground = -1;
        short background = -1;
        pair_content(CP_RED_BLUE, &foreground, &background);
        EXPECT_EQ(foreground, row.foreground) << row.setting;
        EXPECT_EQ(background, row.background) << row.setting;
    }
    EXPECT_FALSE(WINS_attr_fault() & static_cast<int>(A_BOLD)) << "plain without colours too";
    for (const auto& [tick, bold] : {std::pair{5UL, true}, {6UL, false}, {7UL, false}, {8UL, true}}) {
        g_tick = tick;
        EXPECT_EQ((WINS_attr_alarm() & static_cast<int>(A_BOLD)) != 0, bold) << "alarms blink: " << tick;
    }
}

// Curses writes to the real standard output here.
TEST(WinsTerminal, StartsEndsAndStartsAgain) {
    const int real = dup(STDOUT_FILENO);
    ASSERT_NE(std::freopen("/dev/null", "w", stdout), nullptr);
    setenv("TERM", "xterm-256color", 1);
    for (int i = 0; i < 2; ++i) {
        EXPECT_TRUE(WINS_init());
        EXPECT_EQ(PAIR_NUMBER(getbkgd(stdscr)), CP_WHITE_BLUE);
        EXPECT_NE(WINS_create("left for the clean-up", 10, 5), nullptr);
        WINS_cleanup();
        EXPECT_EQ(g_window_list.count, 0);
    }
    std::fflush(stdout);
    dup2(real, STDOUT_FILENO);
    close(real);
}

TEST(WinsTerminal, AnUnfitTerminalIsNamedAndSurvived) {
    for (const auto& [term, expected] : {std::pair{"no-such-terminal", "\"no-such-terminal\""},
                                         {"", "TERM is not set"},
                                         {"dumb", "\"dumb\""}}) {
        setenv("TERM", term, 1);
        testing::internal::CaptureStderr();
        const BOOL started = WINS_init();
        const std::string said = testing::internal::GetCapturedStderr();
        if (started) WINS_cleanup();
        EXPECT_FALSE(started) << term;
        EXPECT_THAT(said, HasSubstr(expected)) << term;
    }
}

}  // namespace
