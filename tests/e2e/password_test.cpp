// The password guard as an operator meets it, and what other peers see being sent.
#include "journey.h"

namespace {

const std::string PASSWORD = "s3cret Word";

class Password : public testing::Test {
  protected:
    void SetUp() override {
        monitor_ = station_.peer({"--monitor", "--only", "MSG_LOG_*"});
        console_ = station_.console();
        ASSERT_TRUE(is_up(*console_));
    }
    // "Flush buffers" is not guarded: once it was seen, everything sent before it has been seen too.
    void flush() {
        ASSERT_TRUE(choose_from_menu(*console_, "Disk operations"));
        ASSERT_TRUE(choose(*console_, "Flush buffers"));
        // The dialog's title reads like the menu's entry: it must be gone before the menu is read again.
        ASSERT_TRUE(console_->hides("Flush buffers"));
        EXPECT_TRUE(monitor_->wait_line({"\"msg\":\"MSG_LOG_FLUSH\"", "\"src\":\"CLIENT\""}));
    }
    void ask_for_new_files() {
        ASSERT_TRUE(choose_from_menu(*console_, "Disk operations"));
        ASSERT_TRUE(choose(*console_, "Start new files"));
        ASSERT_TRUE(console_->hides("Start new files"));
    }
    void answer(std::string_view password) {
        ASSERT_TRUE(console_->shows("Enter password"));
        console_->type(password);
        ASSERT_TRUE(console_->shows(std::string(password.size(), '*')));
        EXPECT_FALSE(console_->find(password)) << "the password is hidden";
        console_->press(Key::enter);
        ASSERT_TRUE(console_->hides("Enter password"));
    }
    [[nodiscard]] bool switched() const {
        return monitor_->out().find("MSG_LOG_SWITCHFILES") != std::string::npos;
    }

    Station station_;
    std::unique_ptr<Process> monitor_;
    std::unique_ptr<Terminal> console_;
};

TEST_F(Password, WithoutOneTheActionIsDoneAtOnce) {
    ask_for_new_files();
    const auto line = monitor_->wait_line({"\"msg\":\"MSG_LOG_SWITCHFILES\""});
    ASSERT_TRUE(line);
    EXPECT_NE(line->find("\"record\":\"NET_LOG_SwitchFiles\""), std::string::npos) << *line;
    EXPECT_NE(line->find("\"flags\":1"), std::string::npos) << *line;
    EXPECT_NE(line->find("\"switchtime\":"), std::string::npos) << *line;
}

TEST_F(Password, GuardsTheActionUntilItIsGiven) {
    ASSERT_TRUE(set_password(*console_, PASSWORD));
    for (const std::string wrong : {"S3CRET WORD", "s3cret Wor"}) {
        ask_for_new_files();
        answer(wrong);
        flush();
        EXPECT_FALSE(switched()) << wrong;
    }
    ask_for_new_files();
    ASSERT_TRUE(console_->shows("Enter password"));
    console_->press(Key::escape);
    ASSERT_TRUE(console_->hides("Enter password"));
    flush();
    EXPECT_FALSE(switched());

    ask_for_new_files();
    answer(PASSWORD);
    EXPECT_TRUE(monitor_->wait_line({"\"msg\":\"MSG_LOG_SWITCHFILES\""}));
}

TEST_F(Password, IsAskedForBeforeItIsChangedAndSavedOnlyWhenAsked) {
    ASSERT_TRUE(set_password(*console_, PASSWORD));
    EXPECT_FALSE(std::filesystem::exists(station_.settings_file()));
    ASSERT_TRUE(choose_from_menu(*console_, "Save configuration"));
    ASSERT_TRUE(console_->hides("Quit"));
    EXPECT_NE(read_file(station_.settings_file()).find("Settings;Password = " + PASSWORD), std::string::npos);

    auto next = station_.console();
    ASSERT_TRUE(is_up(*next));
    ASSERT_TRUE(choose_from_menu(*next, "Client options"));
    ASSERT_TRUE(choose(*next, "Set Password"));
    ASSERT_TRUE(next->shows("Enter password"));
    next->type("guess");
    next->press(Key::enter);
    ASSERT_TRUE(next->hides("Enter password"));
    EXPECT_FALSE(next->find("Set password"));

    ASSERT_TRUE(choose(*next, "Set Password"));
    ASSERT_TRUE(next->shows("Enter password"));
    next->type(PASSWORD);
    next->press(Key::enter);
    EXPECT_TRUE(next->shows("Set password"));
    EXPECT_TRUE(next->shows("Password: " + PASSWORD));
}

}  // namespace
