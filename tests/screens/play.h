// Plays a screen file: what instruments say, the keys that are pressed, and the screens and commands that
// come of it. docs/architecture.md says how such a file is written.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "libveskcurs/picture.h"
#include "support/display_rig.h"

class ScreenPlay : public DisplayRig {
  public:
    ScreenPlay();
    ~ScreenPlay() override;
    // The text of a file, with every screen and command in it as the program has them now. What is wrong in
    // the text fails the test.
    std::string play(const std::string& text);
    // The pictures that the screens asked for, by their names, as SVG.
    [[nodiscard]] const std::map<std::string, std::string>& pictures() const { return pictures_; }

  private:
    struct Row {
        std::string text;   // trailing blanks cut
        std::string looks;  // a letter for each cell, a blank for the usual look, trailing blanks cut
        bool operator==(const Row&) const = default;
    };
    using Screen = std::vector<Row>;  // without the status bar

    void TestBody() override {}
    void step(const std::string& line);
    void receive_line(const std::string& line);
    static void press_key(int key);
    static void press_keys(std::string_view text);
    void set_terminal(const std::string& size);
    void fit(WINS_window* win);
    static Row row_of_screen(int y);
    static std::string changed_rows(const Screen& before, const Screen& now);
    void look_at_screen();
    void tell_screen();
    void draw(const std::string& picture);
    void note_sent();

    std::string out_;
    std::string source_;  // of messages that do not say theirs: whoever announced itself last
    bool sized_ = false;  // the file has said how large the terminal is
    bool watching_ = false;
    std::vector<Screen> screens_;
    std::map<std::string, std::string> pictures_;
};
