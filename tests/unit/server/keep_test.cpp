// What is kept, and the bound on it.
#include "server/keep.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "libvesk/messages/netmsg.h"

namespace {

KEEP::entry entry(const std::string& source, int type, std::size_t size, bool of_instrument = false) {
    return {source, type, of_instrument, 0, "", FRAME_bytes(size)};
}

std::vector<int> types(const KEEP& keep) {
    std::vector<int> out;
    for (const KEEP::entry& e : keep.messages())
        out.push_back(e.type);
    return out;
}

TEST(Keep, ReplacesInPlaceAndCountsBytes) {
    KEEP keep(1000);
    EXPECT_EQ(keep.put(entry("CLIENT", 1, 100)), KEEP::KEPT);
    EXPECT_EQ(keep.put(entry("N1", 1, 200, true)), KEEP::KEPT);
    EXPECT_EQ(keep.put(entry("CLIENT", 1, 300)), KEEP::KEPT);
    EXPECT_EQ(keep.bytes(), 500U);
    EXPECT_EQ(keep.messages().front().source, "CLIENT");
    EXPECT_EQ(keep.messages().front().frame.size(), 300U);
    keep.forget("N1");
    EXPECT_EQ(keep.bytes(), 300U);
    EXPECT_EQ(keep.put(entry("N1", 1, 200, true)), KEEP::KEPT);  // it has come back
    EXPECT_EQ(keep.messages().back().source, "N1");
}

TEST(Keep, OldestOfConsolesMakeRoomAndInstrumentsDoNot) {
    KEEP keep(1000);
    (void)keep.put(entry("N1", 1, 300, true));
    (void)keep.put(entry("CLIENT", 2, 300));
    (void)keep.put(entry("CLIENT", 3, 300));
    EXPECT_EQ(keep.put(entry("N1", 4, 300, true)), KEEP::KEPT_AND_DROPPED);
    EXPECT_THAT(types(keep), testing::ElementsAre(1, 3, 4));
    EXPECT_EQ(keep.put(entry("CLIENT", 3, 400)), KEEP::KEPT);  // its own old bytes count as free
    EXPECT_EQ(keep.bytes(), 1000U);
    EXPECT_EQ(keep.put(entry("N1", 5, 500, true)), KEEP::NO_ROOM);
    EXPECT_LE(keep.bytes(), 1000U);
    EXPECT_EQ(keep.put(entry("N1", 4, 900, true)), KEEP::NO_ROOM);
    EXPECT_THAT(types(keep), testing::ElementsAre(1));  // not what is no longer true
}

}  // namespace
