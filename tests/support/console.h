// A console without a server for unit tests: a screen in memory, an empty tree of settings, the layers from
// the window manager to the main menu, and the real routing of keys.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

#include "cursclient/wins.h"
#include "support/screen.h"

class ConsoleTest : public testing::Test {
  protected:
    ConsoleTest();
    ~ConsoleTest() override;

    // Starts over on another terminal; everything that was made before is gone, the settings stay.
    void start(int lines, int cols, const char* term = "xterm-256color");
    // The terminal's new size, as the key reader reports it.
    void resize(int lines, int cols);

    // One key through the whole chain of handlers.
    static void press(int key);
    static void press(std::initializer_list<int> keys);
    // Every character of a text as a key.
    static void type(std::string_view text);

    // One pass of the loop's drawing; the rows of the screen, trailing blanks cut.
    static std::string look();
    // Row y of that, whole.
    static std::string look_at_row(int y);

    // The text that `action` writes to standard error.
    template <class F>
    static std::string complaints_of(F action) {
        testing::internal::CaptureStderr();
        action();
        return testing::internal::GetCapturedStderr();
    }

  private:
    void stop();
    std::unique_ptr<TestScreen> screen_;
};
