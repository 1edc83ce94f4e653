// The debug console: what goes to standard error ends up in its window and never stops the program, and the
// real standard error comes back when the console ends.
#include "cursclient/debug.h"

#include <unistd.h>

#include <cstdio>
#include <string>

#include "cursclient/cursclient.h"
#include "libvesk/messages/records/log.h"
#include "support/display_rig.h"

namespace {

using ::testing::HasSubstr;

constexpr const char* CONSOLE = "3";  // the fourth window without a name of its own

class Debug : public DisplayRig {
  protected:
    Debug() {
        EXPECT_TRUE(DEBUG_preinit());
        EXPECT_TRUE(DEBUG_init());
    }
    ~Debug() override {
        DEBUG_cleanup();
        DEBUG_release_stderr();
    }
    static std::string console_row(int y) {
        window(CONSOLE)->visible = TRUE;
        DEBUG_update();
        return row(CONSOLE, y);
    }
};

TEST_F(Debug, ShowsTheLastLinesOfStandardErrorOldestFirst) {
    for (int i = 1; i <= 6; ++i)
        std::fprintf(stderr, "line %d\n", i);
    EXPECT_EQ(console_row(14), "line 3");
    EXPECT_EQ(console_row(17), "line 6");
    EXPECT_THAT(console_row(13), HasSubstr("Standard Error"));
    std::fprintf(stderr, "%s\n", std::string(100, 'x').c_str());
    EXPECT_EQ(console_row(16), std::string(69, 'x'));
    EXPECT_EQ(console_row(17), std::string(31, 'x')) << "the rest arrives as the next line";
}

TEST_F(Debug, ABurstNeverBlocks) {
    for (int i = 0; i < 10000; ++i)
        std::fprintf(stderr, "a line that is long enough to fill the pipe many times over: %d\n", i);
    EXPECT_THAT(console_row(17), HasSubstr("a line that"));
    std::fprintf(stderr, "\nafterwards\n");
    EXPECT_EQ(console_row(17), "afterwards");
}

TEST_F(Debug, TracesMessagesWithAndWithoutPayload) {
    receive("N11", MSG_NEPH_ISSUE_ZERO);
    EXPECT_EQ(console_row(12), "1700000000.0,MSG_NEPH_ISSUE_ZERO,,N11,0x00000001");
    receive("N11", MSG_LOG_INFO, NET_LOG_Info{TRUE});
    EXPECT_THAT(console_row(12), HasSubstr("MSG_LOG_INFO,,N11,0x00000001,(NET_LOG_Info)0x"));
    EXPECT_EQ(console_row(11), "1700000000.0,MSG_NEPH_ISSUE_ZERO,,N11,0x00000001");
}

TEST_F(Debug, NotesKeysAndF5BringsItUp) {
    for (const int key : {'a', 'b', 'c', 'd'})
        DEBUG_rawkeypress(key);
    EXPECT_FALSE(window(CONSOLE)->visible);
    DEBUG_rawkeypress(KEY_F(5));
    EXPECT_TRUE(window(CONSOLE)->focused);
    EXPECT_EQ(console_row(4), "1700000000.0000 - 'b' - 0x00000062 98");
    EXPECT_EQ(console_row(7), "1700000000.0000 - ' ' - 0x0000010D 269");
    DEBUG_interpkeypress(0x10041);
    EXPECT_EQ(console_row(2), "Last interpreted keystoke: 'A' - 0x00010041 65601");
}

TEST(DebugCapture, WhatWasCapturedIsSaidOnTheRealStandardErrorInTheEnd) {
    ::testing::internal::CaptureStderr();
    ASSERT_TRUE(DEBUG_preinit());
    std::fprintf(stderr, "why it failed\nlast words");
    DEBUG_release_stderr();
    std::fprintf(stderr, "real again\n");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "why it failed\nlast words\nreal again\n");
}

}  // namespace
