// Helpers of the tests of dialogs: a screen in memory, short ways to open dialogs and press keys, and a log
// that callbacks write to.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <panel.h>

#include <cstring>
#include <string>
#include <vector>

#include "libveskcurs/cursdialog.h"
#include "libveskcurs/curskeys.h"
#include "support/screen.h"

inline std::vector<std::string> g_log;

class DialogTest : public testing::Test {
  protected:
    DialogTest() {
        g_log.clear();
        EXPECT_TRUE(CURSDIALOG_init());
    }
    ~DialogTest() override { CURSDIALOG_cleanup(); }

    static int normal() { return COLOR_PAIR(2); }
    static int highlight() { return static_cast<int>(A_BOLD) | COLOR_PAIR(3); }

    static CURSDIALOG_type* open(const char* title = "Title", int width = 0, const char* tag = nullptr,
                                 CURSDIALOG_closed_cb closed = nullptr,
                                 CURSDIALOG_cleanup_cb cleanup = nullptr) {
        return CURSDIALOG_create(normal(), highlight(), title, width, tag,
                                 tag != nullptr ? strlen(tag) + 1 : 0, closed, cleanup);
    }
    // A button that logs its tag (its label) when pressed.
    static CURSDIALOG_widget* button(CURSDIALOG_type* dlg, int x, int y, const char* label, int hot_key = 0,
                                     int style = CURSDIALOG_STYLE_LIST, int width = 0) {
        return CURSDIALOG_add_button(dlg, x, y, width, style, hot_key, label, log_press, label,
                                     strlen(label) + 1);
    }
    static CURSDIALOG_widget* entry(CURSDIALOG_type* dlg, int y, const char* label, const char* initial,
                                    int max_len, CURSDIALOG_entry_verify_cb verify = nullptr,
                                    const void* data = nullptr, std::size_t size = 0, int width = 0) {
        return CURSDIALOG_add_entry(dlg, 1, y, width, CURSDIALOG_STYLE_LIST, 0, label, initial, max_len,
                                    verify, data, size);
    }
    static void log_press(CURSDIALOG_type*, void*, CURSDIALOG_widget*, void* data,
                          CURSDIALOG_button_action*) {
        g_log.emplace_back(static_cast<const char*>(data));
    }

    static void press(std::initializer_list<int> keys) {
        for (const int key : keys)
            EXPECT_TRUE(CURSDIALOG_keypress(key)) << "key " << key;
    }
    static void type(std::string_view text) {
        for (const char c : text)
            press({c});
    }

    // The screen after one pass of the main loop.
    static std::string shown() {
        CURSDIALOG_update();
        update_panels();
        doupdate();
        return TestScreen::screen_dump();
    }
    struct Cell {
        int y, x;
    };
    // Where that text stands on the screen, as last drawn.
    static Cell find(const std::string& text) {
        for (int y = 0; y < LINES; ++y) {
            const std::size_t x = TestScreen::screen_row(y).find(text);
            if (x != std::string::npos) return {y, static_cast<int>(x)};
        }
        ADD_FAILURE() << '"' << text << "\" is not on the screen:\n" << TestScreen::screen_dump();
        return {0, 0};
    }
    // Whether the text is drawn as the focused widget is. Its last cell tells, the first may be a hot key's.
    static bool focused(const std::string& text) {
        shown();
        return drawn_focused(text);
    }
    static bool drawn_focused(const std::string& text) {
        const Cell at = find(text);
        const int x = at.x + static_cast<int>(text.size()) - 1;
        return TestScreen::color_pair(newscr, at.y, x) == 3 &&
               (TestScreen::attributes(newscr, at.y, x) & A_BOLD) != 0;
    }

    TestScreen screen;
};
