// Operators at work on a whole station: commands that cross the real link, and what all consoles see of them.
// The unit tests cover the commands of each display and the answers of each simulated instrument.
#include <csignal>

#include "journey.h"

namespace {

class Operation : public testing::Test {
  protected:
    // Two consoles and a monitor, before any instrument.
    void SetUp() override {
        monitor_ = station_.peer({"--monitor"});
        one_ = station_.console();
        two_ = station_.console();
        ASSERT_TRUE(is_up(*one_) && is_up(*two_));
    }
    // Opens the menu of the focused window and presses a button by its hot key.
    static testing::AssertionResult order(Terminal& console, std::string_view label) {
        console.type("m");
        if (auto result = console.shows(label); !result) return result;
        console.type(label.substr(0, 1));
        return console.hides("1 Hide window");
    }
    [[nodiscard]] bool was_seen(std::string_view text) const {
        return monitor_->out().find(text) != std::string::npos;
    }

    Station station_;
    std::unique_ptr<Process> monitor_;
    std::unique_ptr<Terminal> one_, two_;
};

TEST_F(Operation, ACommandWaitsForThePasswordAndReachesItsInstrumentAlone) {
    auto simulated = station_.simstation({"--kinds", "psap,psap3", "--seed", "3", "--speed", "20"});
    ASSERT_TRUE(is_up(*one_, "BQ"));
    ASSERT_TRUE(set_password(*one_, "s3cret Word"));
    one_->alt('b');
    two_->alt('b');
    for (const std::string password : {"S3CRET WORD", "s3cret Word"}) {
        EXPECT_FALSE(was_seen("MSG_PSAP_SETFILTERSATUS"));
        ASSERT_TRUE(order(*one_, "2 Start filter change"));
        one_->type(password);
        ASSERT_TRUE(one_->shows(std::string(password.size(), '*')));
        EXPECT_FALSE(one_->find(password)) << "the password is hidden";
        one_->press(Key::enter);
        ASSERT_TRUE(one_->hides("Enter password"));
    }
    EXPECT_TRUE(
        monitor_->wait_line({R"("src":"CLIENT","dest":"A11","flags":0,"msg":"MSG_PSAP_SETFILTERSATUS")",
                             R"("changing_filter":true)"}));
    for (Terminal* console : {one_.get(), two_.get()})
        EXPECT_TRUE(console->shows("Changing filter..."));
    ASSERT_TRUE(order(*two_, "2 Stop filter change")) << "this console has no password";
    ASSERT_TRUE(two_->shows("Have you pressed 'RESET Transmitance'?"));
    two_->press(Key::left);
    two_->press(Key::enter);
    EXPECT_TRUE(one_->shows("Transmittance:   1.000")) << "a clean filter";
    EXPECT_TRUE(one_->hides("Changing filter..."));
    simulated->signal(SIGTERM);
    EXPECT_EQ(simulated->wait_exit(), 0) << simulated->err();
    EXPECT_TRUE(one_->hides("Transmittance:"));
}

TEST_F(Operation, ASpanCheckIsInSightOfAllConsoles) {
    auto simulated = station_.simstation(
        {"--kinds", "neph=N11,nephM903=N31,neph_aurora3000=N41", "--speed", "400", "--errors", "0"});
    ASSERT_TRUE(is_up(*one_, "AGN"));
    one_->alt('n');
    ASSERT_TRUE(order(*one_, "5 Begin spancheck"));
    ASSERT_TRUE(highlight(*one_, "Air flush time (sec):180"));
    one_->type("75");
    one_->press(Key::down);
    ASSERT_TRUE(choose(*one_, "Select nephelometers"));
    ASSERT_TRUE(choose(*one_, "[*] M903"));
    ASSERT_TRUE(one_->shows("[ ] M903"));
    ASSERT_TRUE(choose(*one_, "Close"));
    ASSERT_TRUE(choose(*one_, "Begin"));
    for (int i = 1; i <= 5; ++i)
        EXPECT_TRUE(
            monitor_->wait_line({R"("src":"N11")", "SPANCHECK_PHASE", R"("phase":)" + std::to_string(i)}));
    for (Terminal* console : {one_.get(), two_.get()}) {
        ASSERT_TRUE(shows_all(*console, {"Spancheck Results", "Nephelometer:", "Aurora 3000 neph:"}));
        EXPECT_FALSE(console->find("M903 neph:")) << "it did not take part";
    }
    auto late = station_.console();
    ASSERT_TRUE(is_up(*late, "AGN"));
    late->alt('g');
    ASSERT_TRUE(order(*late, "2 Begin spancheck"));
    EXPECT_TRUE(late->shows("Air flush time (sec):75")) << "as begun last, for those who come later too";
}

TEST_F(Operation, LogFilesAreSwitchedForAllAndAMessageShowsOnceInEveryConsole) {
    ASSERT_TRUE(choose_from_menu(*one_, "Disk operations"));
    ASSERT_TRUE(choose(*one_, "Start new files"));
    EXPECT_TRUE(monitor_->wait_line({R"("flags":1,"msg":"MSG_LOG_SWITCHFILES")", R"("switchtime":)"}));
    ASSERT_TRUE(one_->hides("Start new files"));
    ASSERT_TRUE(choose_from_menu(*one_, "Messaging"));
    one_->type("CO2 bottle is changed\r");
    for (Terminal* console : {one_.get(), two_.get()}) {
        ASSERT_TRUE(console->shows("CO2 bottle is changed"));
        const std::string text = console->text();
        EXPECT_EQ(text.find("CO2 bottle"), text.rfind("CO2 bottle")) << text;
    }
}

}  // namespace
