// The windows that exist without an instrument, as operators meet them: errors that rise, messages between
// consoles, notes into the log, the help page and the debug console.
#include "journey.h"

namespace {

constexpr std::string_view CTRL_E = "\x05";
constexpr std::string_view F1 = "\x1bOP";
constexpr std::string_view F12 = "\x1b[24~";

class Persistent : public testing::Test {
  protected:
    void SetUp() override {
        console_ = station_.console();
        ASSERT_TRUE(is_up(*console_));
    }
    static std::string error_line(const std::string& text) {
        return R"({"msg":"MSG_LOG_MONITOR","payload":{"flags":1,"msg":")" + text + R"("}})";
    }

    Station station_;
    std::unique_ptr<Terminal> console_;
};

TEST_F(Persistent, TheLastFourErrorsRiseAndGoAndCtrlEPinsThem) {
    auto peer = station_.peer({"--monitor"});
    for (const char* text : {"first", "second", "third", "fourth", "fifth"})
        peer->write_line(error_line(text));
    ASSERT_TRUE(shows_all(*console_, {"Recent Errors", "second", "third", "fourth", "fifth"}));
    EXPECT_FALSE(console_->find("first"));
    EXPECT_EQ(console_->find("Recent Errors")->row, console_->size().rows - 7);
    ASSERT_TRUE(console_->hides("Recent Errors")) << "after the configured time";

    console_->type(CTRL_E);
    ASSERT_TRUE(console_->shows("fifth"));
    console_->type(CTRL_E);
    ASSERT_TRUE(console_->hides("Recent Errors"));
    peer->write_line(error_line("sixth"));
    ASSERT_TRUE(console_->shows("sixth"));
    EXPECT_FALSE(console_->wait_for([this] { return !console_->find("sixth"); }, "", std::chrono::seconds(4)))
        << "once the pin was used, the strip stays";
}

TEST_F(Persistent, AMessageShowsOnceInEveryConsole) {
    auto other = station_.console();
    ASSERT_TRUE(is_up(*other));
    ASSERT_TRUE(choose_from_menu(*console_, "Messaging"));
    ASSERT_TRUE(console_->shows("Messaging"));
    console_->type("CO2 bottle is changed");
    console_->press(Key::enter);
    for (Terminal* c : {console_.get(), other.get()}) {
        ASSERT_TRUE(c->shows("CO2 bottle is changed"));
        const std::string text = c->text();
        const auto first = text.find("CO2 bottle");
        EXPECT_EQ(text.find("CO2 bottle", first + 1), std::string::npos) << text;
    }
}

TEST_F(Persistent, ANoteReachesTheLogAndRaisesNothing) {
    auto monitor = station_.peer({"--monitor", "--only", "MSG_LOG_MONITOR"});
    console_->type(F12);
    ASSERT_TRUE(console_->shows("Online Log Entry"));
    console_->type("inlet cleaned");
    ASSERT_TRUE(console_->shows("inlet cleaned"));
    console_->press(Key::enter);
    ASSERT_TRUE(console_->hides("Online Log Entry"));
    const auto line = monitor->wait_line({"USER: inlet cleaned"});
    ASSERT_TRUE(line);
    EXPECT_NE(line->find("\"flags\":2,"), std::string::npos) << *line;
    EXPECT_TRUE(console_->never_shows("Recent Errors"));
}

TEST_F(Persistent, HelpAndDebugConsoleComeUpByTheirKeys) {
    console_->type(F1);
    ASSERT_TRUE(shows_all(*console_, {"Use PGUP/PGDN to scroll", "Show the root menu"}));
    console_->type(F1);
    ASSERT_TRUE(console_->hides("Use PGUP/PGDN"));
    auto counter = start_counter(station_);
    console_->press(Key::f5);
    ASSERT_TRUE(shows_all(*console_, {"Debug", "Keystokes", "Standard Error", "MSG_CPC_3010_INSTANT"}));
    console_->press(Key::escape);
    ASSERT_TRUE(console_->hides("Keystokes"));
}

}  // namespace
