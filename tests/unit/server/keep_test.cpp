// Kept messages, and the bound on them.
#include "server/keep.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "libvesk/messages/netmsg.h"

namespace {

using testing::ElementsAre;

// An entry that counts `size` bytes.
KEEP::entry entry(const std::string& source, int type, std::size_t size, bool of_instrument = false) {
    return {source, type, of_instrument, 0, "", FRAME_bytes(size - KEEP::ENTRY_BYTES)};
}

std::vector<int> types(const KEEP& keep, KEEP::reading reading) {
    std::vector<int> out;
    while (const KEEP::entry* e = keep.next(&reading))
        out.push_back(e->type);
    return out;
}
std::vector<int> types(const KEEP& keep) {
    return types(keep, keep.begin_reading());
}

TEST(Keep, ReplacesInPlaceAndCountsBytes) {
    KEEP keep(10000);
    EXPECT_EQ(keep.put(entry("CLIENT", 1, 1000)), KEEP::KEPT);
    EXPECT_EQ(keep.put(entry("N1", 2, 2000, true)), KEEP::KEPT);
    EXPECT_EQ(keep.put(entry("CLIENT", 1, 3000)), KEEP::KEPT);
    EXPECT_EQ(keep.bytes(), 5000U);
    EXPECT_THAT(types(keep), ElementsAre(1, 2));
    keep.forget("N1");
    EXPECT_EQ(keep.bytes(), 3000U);
    EXPECT_EQ(keep.put(entry("N1", 2, 2000, true)), KEEP::KEPT);  // it has come back
    EXPECT_THAT(types(keep), ElementsAre(1, 2));
}

TEST(Keep, OldestOfConsolesMakeRoomAndInstrumentsDoNot) {
    KEEP keep(10000);
    (void)keep.put(entry("N1", 1, 3000, true));
    (void)keep.put(entry("CLIENT", 2, 3000));
    (void)keep.put(entry("CLIENT", 3, 3000));
    EXPECT_EQ(keep.put(entry("N1", 4, 3000, true)), KEEP::KEPT_AND_DROPPED);
    EXPECT_THAT(types(keep), ElementsAre(1, 3, 4));
    EXPECT_EQ(keep.put(entry("CLIENT", 3, 4000)), KEEP::KEPT);  // its own old bytes count as free
    EXPECT_EQ(keep.bytes(), 10000U);
    EXPECT_EQ(keep.put(entry("N1", 5, 5000, true)), KEEP::NO_ROOM);
    EXPECT_THAT(types(keep), ElementsAre(1, 3, 4)) << "nothing is dropped in vain";
    EXPECT_EQ(keep.put(entry("N1", 4, 9000, true)), KEEP::NO_ROOM);
    EXPECT_THAT(types(keep), ElementsAre(1, 3)) << "not what is no longer true";
}

TEST(Keep, ReadingFindsWhatWasThereWhenItBeganThoughTheRestChanges) {
    KEEP keep(10000);
    EXPECT_TRUE(keep.announce(entry("N1", 10, 300, true)));
    EXPECT_TRUE(keep.announce(entry("N2", 10, 300, true)));
    (void)keep.put(entry("CLIENT", 1, 300));
    (void)keep.put(entry("N1", 2, 300, true));
    (void)keep.put(entry("N2", 3, 300, true));
    KEEP::reading reading = keep.begin_reading();
    EXPECT_EQ(keep.next(&reading)->source, "N1");
    keep.forget("N1");
    EXPECT_TRUE(keep.announce(entry("N1", 10, 300, true)));
    EXPECT_FALSE(keep.announce(entry("N2", 10, 300, true)));
    (void)keep.put(entry("N1", 2, 300, true));
    (void)keep.put(entry("CLIENT", 1, 400));
    EXPECT_THAT(types(keep, reading), ElementsAre(10, 1, 3));
}

}  // namespace
