// What holds for every record that can travel, whichever it is.
#include <gtest/gtest.h>

#include <string>

#include "libvesk/netdsd.h"
#include "support/records.h"

namespace {

TEST(Records, FieldsHaveNamesOfTheirOwnAndLieInside) {
    for (const NETDSD_entry* dsd : all_records()) {
        std::set<std::string> names;
        for (const NETDSD_field& f : NETDSD_fields(dsd)) {
            EXPECT_TRUE(names.insert(f.name).second) << dsd->name << "." << f.name;
            EXPECT_LE(f.offset + f.size, dsd->total_size) << dsd->name << "." << f.name;
            EXPECT_TRUE(f.nested == nullptr || f.size == f.count * f.nested->total_size) << f.name;
        }
        EXPECT_EQ(NETDSD_by_name(dsd->name), dsd);
    }
}

TEST(Records, AnyBytesAreCleanAfterOneCleaning) {
    for (const NETDSD_entry* dsd : all_records()) {
        for (unsigned seed = 0; seed < 20; ++seed) {
            std::vector<char> record = random_bytes(dsd->total_size, seed);
            NETDSD_sanitize(dsd, record.data());
            EXPECT_TRUE(is_clean(dsd, record.data())) << dsd->name;
            const std::vector<char> once = record;
            NETDSD_sanitize(dsd, record.data());
            EXPECT_EQ(record, once) << dsd->name;
        }
        std::vector<char> defaults = default_record(dsd);
        NETDSD_sanitize(dsd, defaults.data());
        EXPECT_EQ(defaults, default_record(dsd)) << dsd->name;
    }
}

}  // namespace
