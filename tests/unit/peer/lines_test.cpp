#include "peer/lines.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// "1:text 2:! " with a "!" for a line over the limit.
std::string cut(const std::vector<std::string>& pieces, std::size_t limit) {
    LINES_reader reader(limit);
    std::string seen;
    const auto note = [&](const LINES_line& line) {
        seen += std::to_string(line.number) + ":" + (line.too_long ? "!" : std::string(line.text)) + " ";
    };
    for (const std::string& piece : pieces)
        reader.feed(piece, note);
    reader.finish(note);
    return seen;
}

TEST(Lines, AreTheSameHoweverTheStreamIsCut) {
    const std::string stream = "one\n\nlonger\nfour\nlast";
    const std::string lines = "1:one 2: 3:! 4:four 5:last ";
    EXPECT_EQ(cut({stream}, 4), lines);
    for (std::size_t at = 0; at <= stream.size(); ++at)
        EXPECT_EQ(cut({stream.substr(0, at), stream.substr(at)}, 4), lines) << at;
}

TEST(Lines, TheLastOneNeedsNoNewline) {
    EXPECT_EQ(cut({}, 4), "");
    EXPECT_EQ(cut({"a\n"}, 4), "1:a ");
    EXPECT_EQ(cut({"a\nlonger"}, 4), "1:a 2:! ");
    EXPECT_EQ(cut({std::string("a\0b\n", 4)}, 4), std::string("1:a\0b ", 6));
}

}  // namespace
