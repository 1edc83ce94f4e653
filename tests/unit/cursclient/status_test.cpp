// The status bar as it is drawn.
#include "cursclient/status.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "libvesk/support/util.h"
#include "support/console.h"

using testing::StartsWith;

namespace {

class Status : public ConsoleTest {
  protected:
    static std::string bar() { return look_at_row(LINES - 1); }
};

TEST_F(Status, TimeAndFractionalDay) {
    struct Row {
        UTIL_clock clock;
        const char* text;
    };
    for (const Row& row : {
             Row{[] { return 1735689599.5; },
                 "UTC: 2024-12-31 23:59:59 366.99999"},  // a leap year's last second
             Row{[] { return 1735689600.0; }, "UTC: 2025-01-01 00:00:00   1.00000"},
             Row{[] { return 1700000000.25; }, "UTC: 2023-11-14 22:13:20 318.92593"},
         }) {
        UTIL_set_clock(row.clock);
        EXPECT_EQ(bar(), std::string(46, ' ') + row.text);
    }
    EXPECT_EQ(TestScreen::color_pair(stdscr, 23, 46), CP_WHITE_BLACK);
    EXPECT_EQ(TestScreen::color_pair(stdscr, 23, 45), CP_WHITE_BLUE) << "the rest shows the background";
    start(10, 34);
    EXPECT_THAT(bar(), StartsWith("UTC: "));
    start(10, 33);
    EXPECT_EQ(bar(), std::string(33, ' '));
}

TEST_F(Status, IndicatorsAreSortedAndHighlightedWhileLogging) {
    ASSERT_NE(STATUS_addentry('c', TRUE), nullptr);
    ASSERT_NE(STATUS_addentry(0, TRUE), nullptr);
    STATUS_entry* a = STATUS_addentry('a', TRUE);
    ASSERT_NE(STATUS_addentry('b', FALSE), nullptr);
    EXPECT_THAT(bar(), StartsWith("abc "));
    STATUS_setlogging(a, FALSE);
    STATUS_entry* newer = STATUS_addentry('a', TRUE);
    EXPECT_THAT(bar(), StartsWith("aabc "));
    struct Cell {
        int pair;
        bool bold;
    };
    // The newer of two equal characters stands first.
    const Cell expected[] = {
        {CP_YELLOW_BLACK, true}, {CP_WHITE_BLACK, false}, {CP_WHITE_BLACK, false}, {CP_YELLOW_BLACK, true}};
    for (int x = 0; x < 4; ++x) {
        EXPECT_EQ(TestScreen::color_pair(stdscr, 23, x), expected[x].pair) << x;
        EXPECT_EQ((TestScreen::attributes(stdscr, 23, x) & A_BOLD) != 0, expected[x].bold) << x;
    }
    STATUS_deleteentry(a);
    STATUS_deleteentry(nullptr);
    EXPECT_THAT(bar(), StartsWith("abc "));
    EXPECT_TRUE(TestScreen::attributes(stdscr, 23, 0) & A_BOLD);
    STATUS_deleteentry(newer);
    EXPECT_THAT(bar(), StartsWith("bc "));
    ASSERT_NE(STATUS_addentry(static_cast<char>(0xE9), FALSE), nullptr);
    ASSERT_NE(STATUS_addentry('\n', FALSE), nullptr);
    EXPECT_THAT(bar(), StartsWith("  bc ")) << "sorted as signed, and none reaches the terminal raw";
}

TEST_F(Status, TimeWinsOverIndicators) {
    start(10, 40);
    for (int i = 0; i < 40; ++i)
        ASSERT_NE(STATUS_addentry('x', TRUE), nullptr);
    EXPECT_THAT(bar(), StartsWith("xxxxxxUTC: "));
    resize(10, 20);
    EXPECT_EQ(bar(), std::string(20, 'x')) << "what is beyond the screen is not drawn";
}

}  // namespace
