// The displays that exist without an instrument: the error strip, the help page, messages between operators
// and the log entry.
#include <string>

#include "cursclient/mainmenu.h"
#include "libvesk/messages/records/log.h"
#include "libvesk/messages/records/messaging.h"
#include "support/display_rig.h"

namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

// Windows without a name of their own are numbered in the order in which the displays come up.
constexpr const char* STRIP = "0";
constexpr const char* HELP = "1";
constexpr const char* LOG_ENTRY = "2";
constexpr const char* MESSAGES = "MESSAGING";

constexpr int CTRL_E = 5;
constexpr int CTRL_H = 8;

class Persistent : public DisplayRig {
  protected:
    static void log_line(const std::string& text, BYTE flags = NET_LOG_MONITOR_ERROR) {
        NET_LOG_MonitorMessage line{};
        line.flags = flags;
        UTIL_strcpynt(line.msg, text.c_str());
        receive("LOGGER", MSG_LOG_MONITOR, line);
    }
    static void message(const std::string& text, FTIME at = START) {
        NETDS_MESSAGE_OneMessage m{};
        m.time_sent = at;
        UTIL_strcpynt(m.contents, text.c_str());
        receive("CLIENT", MSG_MESSAGING_MESSAGE, m);
    }
    static BOOL shown(const char* ident) { return window(ident)->visible; }
};

TEST_F(Persistent, TheStripShowsTheLastFourErrorsForTheConfiguredTime) {
    g_errordisp_show_time = 2.0;
    focus(HELP);
    EXPECT_FALSE(shown(STRIP));
    for (const char* text : {"one", "two", "three", "four", "five"})
        log_line(text);
    EXPECT_TRUE(shown(STRIP));
    EXPECT_TRUE(window(HELP)->focused) << "the strip does not take the focus";
    EXPECT_EQ(inside(STRIP), "\ntwo\nthree\nfour\nfive\n");
    EXPECT_EQ(color(STRIP, 1, 1), CP_WHITE_RED);

    set_time(START + 1.0);
    log_line("six");  // moves the deadline
    set_time(START + 2.9);
    redraw();
    EXPECT_TRUE(shown(STRIP));
    set_time(START + 3.0);
    redraw();
    EXPECT_FALSE(shown(STRIP));

    log_line("before the clock is set back");
    set_time(START - 3600.0);
    redraw();
    EXPECT_TRUE(shown(STRIP));
    set_time(START - 3600.0 + 2.1);
    redraw();
    EXPECT_FALSE(shown(STRIP)) << "the deadline did not stay in the future";
}

TEST_F(Persistent, NotesDoNotRaiseTheStripAndThePinDoesForGood) {
    log_line("a note", NET_LOG_MONITOR_NOTE);
    receive("LOGGER", MSG_LOG_MONITOR);
    receive("LOGGER", MSG_LOG_MONITOR, NET_LOG_Info{TRUE});
    EXPECT_FALSE(shown(STRIP));
    g_errordisp_show_time = 0.0;
    log_line("kept, not shown");
    EXPECT_FALSE(shown(STRIP));
    press(CTRL_E);
    EXPECT_THAT(inside(STRIP), HasSubstr("kept, not shown"));
    press(CTRL_E);
    EXPECT_FALSE(shown(STRIP));
    g_errordisp_show_time = 2.0;
    log_line("later");
    set_time(START + 1000.0);
    redraw();
    EXPECT_TRUE(shown(STRIP)) << "once the pin was used no deadline counts";
}

TEST_F(Persistent, TheHelpPageScrollsAndKeepsItsArithmetic) {
    press(KEY_F(1));
    EXPECT_TRUE(window(HELP)->focused);
    EXPECT_EQ(row(HELP, 2), "                    General keystrokes");
    EXPECT_EQ(color(HELP, 1, 20), -CP_YELLOW_BLUE);
    EXPECT_EQ(color(HELP, 2, 22), CP_WHITE_BLUE) << "the second title toggles the bold of the first off";
    EXPECT_EQ(color(HELP, 4, 1), -CP_YELLOW_BLUE);
    press(KEY_NPAGE);
    EXPECT_THAT(row(HELP, 1), StartsWith("CTRL-W"));
    press({KEY_NPAGE, KEY_NPAGE});
    EXPECT_THAT(row(HELP, 1), StartsWith("CTRL-M")) << "18 lines, the last first line is 4";
    press({KEY_PPAGE, KEY_PPAGE, KEY_PPAGE});
    EXPECT_THAT(row(HELP, 1), HasSubstr("Use PGUP"));
    press(CTRL_H);
    EXPECT_FALSE(shown(HELP));
}

TEST_F(Persistent, AMessageComesToTheFrontAndWrapsUnderItself) {
    const std::string text = std::string(49, 'a') + std::string(49, 'b') + "cc";
    message(text);
    EXPECT_TRUE(window(MESSAGES)->focused);
    EXPECT_EQ(row(MESSAGES, 1), "22:13:20 " + std::string(49, 'a'));
    EXPECT_EQ(row(MESSAGES, 2), "         " + std::string(49, 'b'));
    EXPECT_EQ(row(MESSAGES, 3), "         cc");
    message("");
    EXPECT_EQ(row(MESSAGES, 4), "22:13:20");
    for (int i = 1; i <= 13; ++i)
        message("number " + std::to_string(i));
    EXPECT_EQ(row(MESSAGES, 1), "22:13:20 number 2");
    EXPECT_EQ(row(MESSAGES, 12), "22:13:20 number 13");
}

TEST_F(Persistent, AMessageIsSentOnceAndShownWhenItComesBack) {
    focus(MESSAGES);
    press(ENTER);
    EXPECT_THAT(take_sent(), IsEmpty()) << "an empty entry sends nothing";
    type("hallo");
    press({KEY_BACKSPACE, 127});
    type("lo there");
    EXPECT_EQ(row(MESSAGES, 13), "hallo there");
    press(ENTER);
    EXPECT_EQ(row(MESSAGES, 1), "") << "shown only when the server sends it back";
    EXPECT_EQ(take_sent().size(), 1U);
    type(std::string(2100, 'x') + "y");
    EXPECT_EQ(row(MESSAGES, 13), std::string(58, 'x'));
    press(ENTER);
    EXPECT_THAT(take_sent(), ElementsAre(AllOf(StartsWith("MSG_MESSAGING_MESSAGE flags 1 {"),
                                               HasSubstr(":\"" + std::string(2047, 'x') + "\""))))
        << "an entry holds a full message and no more";
}

TEST_F(Persistent, AnAbortedNoteIsForgottenAndAFocusedOneKept) {
    press(KEY_F(12));
    type("abandoned");
    press(ESCAPE);
    EXPECT_FALSE(shown(LOG_ENTRY));
    press(KEY_F(12));
    type("   \r");
    EXPECT_THAT(take_sent(), IsEmpty()) << "blanks are no note";
    EXPECT_FALSE(shown(LOG_ENTRY));
    press(KEY_F(12));
    EXPECT_EQ(row(LOG_ENTRY, 1), "");
    type("kept");
    focus(MESSAGES);
    press(KEY_F(12));
    EXPECT_EQ(row(LOG_ENTRY, 1), "kept");
    press(ENTER);
    EXPECT_THAT(take_sent(), ElementsAre("MSG_LOG_MONITOR flags 1 "
                                         R"({"flags":2,"msgtime":1.7e+09,"msg":"USER: kept"})"));
}

TEST_F(Persistent, ALongNoteShowsItsEnd) {
    press(KEY_F(12));
    type(std::string(58, 'a') + std::string(58, 'b'));
    EXPECT_EQ(row(LOG_ENTRY, 2), std::string(58, 'b'));
    type(std::string(58, 'c') + std::string(58, 'd') + "E");
    EXPECT_EQ(row(LOG_ENTRY, 1), std::string(57, 'a') + "b");
    EXPECT_EQ(row(LOG_ENTRY, 4), std::string(57, 'd') + "E");
    press(KEY_DC);
    EXPECT_EQ(row(LOG_ENTRY, 4), std::string(58, 'd'));
}

}  // namespace
