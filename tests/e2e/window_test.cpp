// The operator at work on one console: windows, menus, dialogs, settings, and a terminal that changes size.
#include <filesystem>

#include "journey.h"

namespace {

// A console on a station with the one counter, its window open.
class Window : public testing::Test {
  protected:
    void SetUp() override {
        counter_ = start_counter(station_);
        console_ = station_.console();
        ASSERT_TRUE(open_counter(*console_));
    }

    Station station_;
    std::unique_ptr<Process> counter_;
    std::unique_ptr<Terminal> console_;
};

TEST_F(Window, SavedLayoutAndOptionsComeBackInANewConsole) {
    console_->press(Key::up);
    console_->press(Key::left);
    ASSERT_TRUE(stands_at(*console_, "Counter", 5, 24));
    ASSERT_TRUE(choose_from_menu(*console_, "Client options"));
    ASSERT_TRUE(highlight(*console_, "Error display time: "));
    console_->type("7.25");
    ASSERT_TRUE(console_->shows("Error display time: 7.25"));
    console_->press(Key::enter);
    EXPECT_TRUE(console_->wait_for([&] { return !console_->find("7.25"); }, "the time in its format"));
    ASSERT_TRUE(choose(*console_, "Close"));
    ASSERT_TRUE(console_->hides("Client options"));
    ASSERT_FALSE(std::filesystem::exists(station_.settings_file())) << "nothing is saved unasked";
    ASSERT_TRUE(choose_from_menu(*console_, "Save configuration"));
    ASSERT_TRUE(console_->hides("Quit"));
    const std::string saved = read_file(station_.settings_file());
    EXPECT_NE(saved.find("Windows;cpc_3010:N11;XPos = 24\n"), std::string::npos) << saved;
    EXPECT_EQ(std::filesystem::status(station_.settings_file()).permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);

    auto other = station_.console();
    EXPECT_TRUE(shows_all(*other, counter_rows()));
    EXPECT_TRUE(stands_at(*other, "Counter", 5, 24));
    ASSERT_TRUE(choose_from_menu(*other, "Client options"));
    EXPECT_TRUE(other->wait_for([&] { return other->find("time: 7.2") || other->find("time: 7.3"); }));
}

TEST_F(Window, ColoursGoOffAndOnAtRunTime) {
    const auto background = [&] { return console_->cell(0, 0).bg; };
    ASSERT_EQ(background(), TERMINAL_BLUE);
    ASSERT_TRUE(choose_from_menu(*console_, "Client options"));
    ASSERT_TRUE(choose(*console_, "[*] Enable colors"));
    EXPECT_TRUE(console_->shows("[ ] Enable colors"));
    EXPECT_TRUE(console_->wait_for([&] { return background() == TERMINAL_BLACK; }, "black"));
    ASSERT_TRUE(choose(*console_, "Enable colors"));
    EXPECT_TRUE(console_->shows("[*] Enable colors"));
    EXPECT_TRUE(console_->wait_for([&] { return background() == TERMINAL_BLUE; }, "blue"));
}

TEST_F(Window, SmallTerminalLosesNothing) {
    ASSERT_TRUE(stands_at(*console_, "Counter", 6, 25));
    struct Row {
        TerminalSize size;
        const char* shown;  // there is no room for any text on the last
    };
    for (const Row& small : {Row{{8, 20}, "Last Average:"}, Row{{20, 8}, "Last"}, Row{{3, 3}, "┌"}}) {
        SCOPED_TRACE(std::to_string(small.size.cols) + "x" + std::to_string(small.size.rows));
        console_->resize(small.size);
        EXPECT_TRUE(console_->shows(small.shown));
        console_->press(Key::tab);
        console_->resize({24, 80});
        EXPECT_TRUE(shows_all(*console_, counter_rows()));
        EXPECT_TRUE(stands_at(*console_, "Counter", 6, 25));
        EXPECT_TRUE(is_up(*console_, "N"));
    }
}

// A terminal drops what it has no room for, though its size is the old one again when the console looks.
TEST_F(Window, ScreenIsWholeAfterAShrinkThatWasUndoneAtOnce) {
    for (int i = 0; i < 3; ++i) {
        console_->resize({2, 2});
        console_->resize({24, 80});
        EXPECT_TRUE(shows_all(*console_, counter_rows()));
        EXPECT_TRUE(is_up(*console_, "N"));
    }
}

// SGR reports of a terminal's mouse: button 0 pressed (M) and released (m), 32 while it moves with it.
TEST(Mouse, FocusesAndDragsWindowsWhereTheSettingsAskForIt) {
    Station station;
    write_file(station.settings_file(),
               "Settings;Mouse = TRUE\nWindows;cpc_3010:N11;XPos = 10\nWindows;cpc_3010:N11;YPos = 5\n"
               "Windows;cpc_3010:N11;Visible = TRUE\n");
    auto counter = start_counter(station);
    auto console = station.console();
    ASSERT_TRUE(stands_at(*console, "Counter", 5, 10));
    console->type("\x1b[<0;13;6M\x1b[<32;33;8M\x1b[<0;33;8m");
    EXPECT_TRUE(stands_at(*console, "Counter", 7, 30));
    console->type("\x1b[<32;60;20M");
    EXPECT_TRUE(stands_at(*console, "Counter", 7, 30)) << "nobody holds it any more";
}

TEST_F(Window, F6LeavesTheScreenInFilesOfTheHomeFolder) {
    console_->type("\x1b[17~");
    ASSERT_TRUE(console_->shows("Screen written"));
    std::string text, picture;
    for (const auto& file : std::filesystem::directory_iterator(station_.folder() / "")) {
        if (file.path().extension() == ".txt") text = read_file(file.path());
        if (file.path().extension() == ".svg") picture = read_file(file.path());
    }
    for (const std::string& row : counter_rows())
        EXPECT_NE(text.find(row), std::string::npos) << row << " in\n" << text;
    EXPECT_NE(picture.find("Counter"), std::string::npos);
}

}  // namespace
