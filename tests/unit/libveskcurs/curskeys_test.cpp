// Bytes in, keys out: what the reader makes of the sequences that terminals send.
#include "libveskcurs/curskeys.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "support/screen.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<int> g_keys;
std::vector<int> g_raw;

std::vector<int> read_keys() {
    g_keys.clear();
    g_raw.clear();
    const bool any =
        CURSKEYS_handle_keys([](int key) { g_raw.push_back(key); }, [](int key) { g_keys.push_back(key); });
    EXPECT_EQ(any, !g_raw.empty());
    return g_keys;
}

constexpr int alt(int c) {
    return CURSKEYS_ALT + c;
}

struct Case {
    const char* what;
    std::string bytes;
    std::vector<int> keys;
};

class Keys : public testing::TestWithParam<const char*> {
  protected:
    TestScreen screen{24, 80, GetParam()};
};

// Cases that hold for every terminal description.
const std::vector<Case> CASES = {
    {"plain", "aZ 1", {'a', 'Z', ' ', '1'}},
    {"control characters", "\t\n\r\x17\x04", {9, 10, 13, 23, 4}},
    {"escape", "\x1b", {27}},
    {"three escapes and a letter", "\x1b\x1b\x1bx", {27, 27, alt('x')}},
    {"alt with the introducers", "\x1b[", {alt('[')}},
    {"alt with the introducers", "\x1bO", {alt('O')}},
    {"alt, then plain", "\x1bMy", {alt('M'), 'y'}},
    {"reverse tab", "\x1b[Z", {CURSKEYS_BTAB}},
    {"arrows of any terminal", "\x1b[A\x1b[B\x1bOC\x1bOD", {KEY_UP, KEY_DOWN, KEY_RIGHT, KEY_LEFT}},
    {"paging keys", "\x1b[5~\x1b[6~", {KEY_PPAGE, KEY_NPAGE}},
    {"unknown control sequence", "a\x1b[99;7~b", {'a', 'b'}},
    {"private parameters and intermediates", "a\x1b[?1;2$yb\x1b[>0c", {'a', 'b'}},
    {"unknown single shift", "a\x1bO9zb", {'a', 'b'}},
    {"sequence cut short", "a\x1b[1;", {'a'}},
    {"sequence broken off by an escape", "\x1b[1;\x1bq", {alt('q')}},
    {"sequence broken off by a control character", "\x1b[1\nq", {10, 'q'}},
    {"sequence that never ends", "\x1b[" + std::string(32, '1') + "q", {'q'}},
    {"complete UTF-8",
     "a\xC3\xA9"
     "b\xE2\x82\xAC"
     "c\xF0\x9F\x98\x80"
     "d",
     {'a', 'b', 'c', 'd'}},
    {"alt with complete UTF-8", "\x1b\xC3\xA9x", {'x'}},
    {"meta", "\xE1\xED", {0xE1, 0xED}},
    {"UTF-8 cut short is meta", "\xE2\x82", {0xE2, 0x82}},
    {"UTF-8 broken off is meta", "\xF0\x9F\x98z", {0xF0, 0x9F, 0x98, 'z'}},
    {"stray continuation", "\x80", {0x80}},
    {"no character at all",
     "a\xFF"
     "b",
     {'a', 'b'}},
};

TEST_P(Keys, SequencesWhole) {
    for (const Case& c : CASES) {
        screen.type(c.bytes);
        EXPECT_EQ(read_keys(), c.keys) << c.what;
        EXPECT_THAT(read_keys(), IsEmpty()) << c.what << " left something behind";
    }
}

TEST_P(Keys, RawCallbackSeesEveryCode) {
    screen.type("\x1bxq\x1b[99~");
    EXPECT_THAT(read_keys(), ElementsAre(alt('x'), 'q'));
    EXPECT_THAT(g_raw, ElementsAre(27, 'x', 'q', 27, '[', '9', '9', '~'));
}

INSTANTIATE_TEST_SUITE_P(Terminals, Keys, testing::Values("xterm-256color", "linux", "vt100", "dumb"));

class KeyReader : public testing::Test {
  protected:
    TestScreen screen;
};

TEST_F(KeyReader, TerminalsOwnKeysPassThroughAndThoseOfAnotherAreSwallowed) {
    screen.type("\x1bOA\x1b[3~\x1bOM\x7f\x1b[Z\x1b\x7f");
    EXPECT_THAT(read_keys(), ElementsAre(KEY_UP, KEY_DC, KEY_ENTER, KEY_BACKSPACE, CURSKEYS_BTAB, alt(127)));
    screen.type("a\x1b[[Cb\x1b[11^c\x1b[3@d");
    EXPECT_THAT(read_keys(), ElementsAre('a', 'b', 'c', 'd'));
}

TEST_F(KeyReader, EscapeStaysEscapeBeforeAFunctionKeyAndInAPassOfItsOwn) {
    screen.type("\x1b\x1bOA");
    EXPECT_THAT(read_keys(), ElementsAre(27, KEY_UP));
    screen.type("\x1b");
    EXPECT_THAT(read_keys(), ElementsAre(27));
    screen.type("m");
    EXPECT_THAT(read_keys(), ElementsAre('m'));
}

// The Escape itself was a key by then; its rest is neither a key nor typed into a window.
TEST_F(KeyReader, RestOfASequenceThatComesTooLateIsSwallowedButAKeyIsNot) {
    for (const std::string late : {"[A", "OP", "[24~"}) {
        screen.type("\x1b");
        EXPECT_THAT(read_keys(), ElementsAre(27));
        screen.type(late + "q");
        EXPECT_THAT(read_keys(), ElementsAre('q')) << late;
    }
    screen.type("\x1b");
    EXPECT_THAT(read_keys(), ElementsAre(27));
    screen.type("[");
    EXPECT_THAT(read_keys(), ElementsAre('['));
    screen.type("O");
    EXPECT_THAT(read_keys(), ElementsAre('O'));
}

// On a slow line the rest of a sequence comes while the reader is waiting for it.
TEST_P(Keys, SequencesArriveInPieces) {
    static TestScreen* line;
    static std::string rest;
    line = &screen;
    const std::vector<Case> pieces = {
        {"unknown", "\x1b[1;5~", {}},
        {"unknown shift", "\x1bO5P", {}},
        {"reverse tab", "\x1b[Z", {CURSKEYS_BTAB}},
        {"function key", "\x1b[24~", {KEY_F(12)}},
        {"alt", "\x1bx", {alt('x')}},
        {"UTF-8", "\xE2\x82\xAC", {}},
    };
    for (const Case& c : pieces) {
        rest = c.bytes.substr(1);
        g_keys.clear();
        screen.type(c.bytes.substr(0, 1));
        EXPECT_TRUE(CURSKEYS_handle_keys(
            [](int) {
                line->type(rest.substr(0, 1));
                rest.erase(0, 1);
            },
            [](int key) { g_keys.push_back(key); }));
        EXPECT_EQ(g_keys, c.keys) << c.what;
    }
}

TEST_F(KeyReader, FloodIsTakenInPiecesAndNothingIsLost) {
    std::string all;
    for (int i = 0; i < 6000; ++i)
        all += static_cast<char>('a' + i % 26);
    screen.type(all);
    std::string got;
    int calls = 0;
    while (got.size() < all.size() && ++calls < 100) {
        for (const int key : read_keys())
            got += static_cast<char>(key);
    }
    EXPECT_EQ(got, all);
    EXPECT_GT(calls, 2);
    EXPECT_LT(calls, 20);
}

TEST_F(KeyReader, DoesNotRefreshTheStandardScreen) {
    mvaddstr(3, 3, "half drawn");
    screen.type("ab");
    EXPECT_THAT(read_keys(), ElementsAre('a', 'b'));
    EXPECT_EQ(TestScreen::row(curscr, 3).find("half drawn"), std::string::npos);
}

TEST_F(KeyReader, LostTerminalIsSeenAfterItsLastKey) {
    EXPECT_FALSE(CURSKEYS_terminal_lost());
    screen.type("q");
    EXPECT_FALSE(CURSKEYS_terminal_lost());
    screen.hang_up();
    EXPECT_FALSE(CURSKEYS_terminal_lost()) << "a key still waits";
    EXPECT_THAT(read_keys(), ElementsAre('q'));
    EXPECT_TRUE(CURSKEYS_terminal_lost());
    EXPECT_THAT(read_keys(), IsEmpty());
    const int closed = dup(STDIN_FILENO);
    close(closed);
    CURSKEYS_set_input_fd(closed);
    EXPECT_TRUE(CURSKEYS_terminal_lost()) << "nor is a closed descriptor a terminal";
}

}  // namespace
