// The demo as a newcomer starts it, with the programs just built. For the documents: writes its picture into
// the folder that VESK_SCREENS names.
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "journey.h"

namespace {

constexpr TerminalSize PICTURE{32, 92};

// The windows that are open in the demo on a terminal of that size.
std::size_t windows_of(TerminalSize size) {
    Process layout(
        {{VESK_SCRIPTS "/demo_layout.sh", std::to_string(size.rows), std::to_string(size.cols)}, {}});
    EXPECT_EQ(layout.wait_exit(), 0) << layout.err();
    std::size_t windows = 0;
    for (std::size_t at = 0; (at = layout.out().find("Visible", at)) != std::string::npos; ++at)
        ++windows;
    return windows;
}

// Ends with it, and takes what it started along.
struct Demo {
    explicit Demo(TerminalSize size)
        : console({{VESK_SCRIPTS "/demo.sh"},
                   {{"VESK_BIN", program("")}, {"TERM", "xterm-256color"}, {"HOME", folder / ""}}},
                  size) {}
    ~Demo() {
        console.type("\x03");
        static_cast<void>(console.wait_exit());
    }
    [[nodiscard]] std::size_t count(std::string_view character) const {
        std::size_t found = 0;
        for (int row = 0; row < console.size().rows; ++row)
            for (int col = 0; col < console.size().cols; ++col)
                found += console.cell(row, col).text == character;
        return found;
    }
    [[nodiscard]] std::string red_text() const {
        std::string red;
        for (int row = 0; row < console.size().rows; ++row)
            for (int col = 0; col < console.size().cols; ++col)
                if (console.cell(row, col).fg == TERMINAL_RED) red += console.cell(row, col).text;
        return red;
    }

    // A row that misses a value; but Angstrom exponents are missing while a nephelometer zeroes, which it
    // does at every full hour.
    [[nodiscard]] bool misses_values() const {
        std::istringstream rows(console.text());
        for (std::string row; std::getline(rows, row);)
            if (row.find("-.-") != std::string::npos && row.find("Alpha") == std::string::npos) return true;
        return false;
    }

    TemporaryFolder folder;
    Terminal console;
};

TEST(Screens, DemoOpensWarmWithValuesInWindowsSideBySide) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "instrumented programs take minutes to simulate the hour before the demo";
#endif
    for (const TerminalSize size : {PICTURE, TerminalSize{50, 160}}) {
        Demo demo(size);
        ASSERT_TRUE(demo.console.wait_for(
            [&] { return demo.console.output().find("vesk.peer --monitor") != std::string::npos; },
            "a warm station", 4 * PATIENCE));
        ASSERT_TRUE(is_up(demo.console, "12345678ABCDEFGHLMNOPQRSVW"));
        const std::size_t windows = windows_of(size);
        const auto open = [&] { return demo.count("\u250c") == windows && !demo.misses_values(); };
        ASSERT_TRUE(demo.console.wait_for(open, std::to_string(windows) + " windows with values"));
        for (const char* corner : {"\u2510", "\u2514", "\u2518"})
            EXPECT_EQ(demo.count(corner), windows) << "one window lies over another\n" << demo.console.text();
        EXPECT_EQ(demo.red_text(), "") << "an alarm";
        const char* const folder = std::getenv("VESK_SCREENS");
        if (folder == nullptr || size.rows != PICTURE.rows) continue;
        std::ofstream file(std::string(folder) + "/console.svg");
        file << demo.console.svg("vesk.cursclient");
        EXPECT_TRUE(file.flush().good()) << "cannot write to " << folder;
    }
}

}  // namespace
