// Line reads over a pipe: whole lines, lines in parts, lines longer than the reader's room, the end.
#include "libvesk/support/veskfile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <string_view>
#include <vector>

namespace {

class Veskfile : public testing::Test {
  protected:
    void SetUp() override {
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        read_end_ = ends[0];
        write_end_ = ends[1];
        handle_ = VESKFILE_associate_fh(read_end_, 0);
        ASSERT_GE(handle_, 0);
    }
    void TearDown() override {
        VESKFILE_close(handle_);
        end_of_input();
    }

    void arrives(std::string_view text) {
        ASSERT_EQ(write(write_end_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    void end_of_input() {
        if (write_end_ >= 0) close(write_end_);
        write_end_ = -1;
    }
    // One read with room for five characters: "count:text".
    std::string read_line(std::string_view stops = "\n") {
        char line[6] = "?????";
        const int n = VESKFILE_readuntil_int(handle_, line, sizeof line, stops.data(), stops.size());
        return n > 0 ? std::to_string(n) + ":" + line : std::to_string(n);
    }

    int read_end_ = -1;
    int write_end_ = -1;
    int handle_ = -1;
};

TEST_F(Veskfile, LinesArriveWholeAndInParts) {
    EXPECT_EQ(read_line(), "0");
    arrives("one\ntwo\nth");
    EXPECT_EQ(read_line(), "4:one");
    EXPECT_EQ(read_line(), "4:two");
    EXPECT_EQ(read_line(), "0");
    arrives("ree");
    EXPECT_EQ(read_line(), "0");
    arrives("\n\nx");
    EXPECT_EQ(read_line(), "6:three") << "a line that just fits is one line";
    EXPECT_EQ(read_line(), "1:");
    EXPECT_EQ(read_line(), "0");
}

TEST_F(Veskfile, LongLinesArriveInPieces) {
    arrives("abcdefghijkl\nm\n");
    EXPECT_EQ(read_line(), "5:abcde");
    EXPECT_EQ(read_line(), "5:fghij");
    EXPECT_EQ(read_line(), "3:kl");
    EXPECT_EQ(read_line(), "2:m");
    const std::string lines = std::string(20'000, 'x') + "\n";
    arrives(lines);
    std::size_t consumed = 0;
    char piece[70];
    for (int n; (n = VESKFILE_readuntil_int(handle_, piece, sizeof piece, "\n", 1)) > 0;)
        consumed += static_cast<std::size_t>(n);
    EXPECT_EQ(consumed, lines.size());
}

TEST_F(Veskfile, EndComesAfterTheLastLineAndLeavesTheRest) {
    arrives("just");
    char all[32];
    EXPECT_EQ(VESKFILE_readrest(handle_, all, sizeof all), 4) << "what has arrived, read or not";
    arrives("a;last\nrest");
    EXPECT_EQ(read_line("\n;"), "2:a") << "any stop character ends a line";
    end_of_input();
    EXPECT_EQ(read_line(), "5:last");
    EXPECT_EQ(read_line(), "-1");
    char rest[3];
    EXPECT_EQ(VESKFILE_readrest(handle_, rest, sizeof rest), 2);
    EXPECT_STREQ(rest, "re");
    EXPECT_EQ(VESKFILE_readrest(handle_, rest, sizeof rest), 2);
    EXPECT_STREQ(rest, "st");
    EXPECT_EQ(VESKFILE_readrest(handle_, rest, sizeof rest), 0);
}

TEST_F(Veskfile, WrongHandlesAndArgumentsFail) {
    char line[8];
    for (int wrong : {-1, handle_ + 1, 12345}) {
        EXPECT_EQ(VESKFILE_readuntil_int(wrong, line, sizeof line, "\n", 1), -1);
        EXPECT_EQ(errno, EBADF);
    }
    EXPECT_EQ(VESKFILE_readuntil_int(handle_, line, 1, "\n", 1), -1);
    EXPECT_EQ(VESKFILE_associate_fh(-1, 0), -1);
    EXPECT_EQ(VESKFILE_associate_fh(write_end_, 1), -1);
    VESKFILE_close(handle_);
    EXPECT_EQ(fcntl(read_end_, F_GETFD), -1) << "closed with its handle";
    EXPECT_EQ(read_line(), "-1");
    const int other = VESKFILE_associate_fh(write_end_, 0);
    EXPECT_EQ(other, handle_) << "a free handle is used again";
    write_end_ = -1;
}

}  // namespace
