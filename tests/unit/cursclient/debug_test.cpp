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

TEST_F(Debug, TracesMessagesWithTheirRecords) {
    receive("N11", MSG_LOG_INFO, NET_LOG_Info{TRUE});
    EXPECT_THAT(console_row(12), HasSubstr("MSG_LOG_INFO,,N11,0x00000001,(NET_LOG_Info)0x"));
}

TEST(DebugCapture, WhatWasCapturedIsSaidOnTheRealStandardErrorInTheEnd) {
    ::testing::internal::CaptureStderr();
    ASSERT_TRUE(DEBUG_preinit());
    std::fprintf(stderr, "why it failed\nlast\033words");
    DEBUG_release_stderr();
    std::fprintf(stderr, "real again\n");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "why it failed\nlast?words\nreal again\n");
}

}  // namespace
