// How storms of log lines end up as a few.
#include "server/log.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;

TEST(Log, FirstLineIsWrittenAndThoseLikeItAreCounted) {
    std::vector<std::string> lines;
    LOG log([&](const std::string& line) { lines.push_back(line); }, 60);
    log.tick(1000);
    for (const char* line : {"A1: left: 1", "A1: left: 2", "A1: left: 3", "A1: left: 4"})
        log.say("left", "A1", line);
    log.say("left", "B1", "B1: left");
    log.say("connected", "A1", "A1: connected");
    EXPECT_THAT(lines, ElementsAre("A1: left: 1", "B1: left", "A1: connected"));
    log.tick(1059);
    EXPECT_EQ(lines.size(), 3U);
    log.tick(1060);
    EXPECT_EQ(lines.back(), "A1: left: 4 (and 2 more like this were not logged)");
    log.say("left", "A1", "A1: left: 5");
    EXPECT_EQ(lines.back(), "A1: left: 5");
}

TEST(Log, ManySourcesOfOneCauseAreOneStorm) {
    std::size_t lines = 0;
    LOG log([&](const std::string&) { ++lines; }, 60);
    for (int i = 0; i < 10000; ++i)
        log.say("connected", "N" + std::to_string(i), "connected");
    log.tick(60);
    EXPECT_LE(lines, LOG::MOST_SOURCES + 2);
}

}  // namespace
