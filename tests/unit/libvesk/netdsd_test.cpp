#include "libvesk/messages/netdsd.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "libvesk/messages/records/cpc.h"
#include "libvesk/messages/records/server.h"
#include "support/records.h"

// Records that exist for these tests only: one field of every type, packed as wire records are.
#pragma pack(push, 4)
struct TEST_Inner {
    char mark;
    double value;
    FTIME when;
};

struct TEST_All {
    BOOL flag;
    char mark;
    BYTE byte;
    std::int16_t i16;
    std::uint16_t u16;
    std::int32_t i32;
    std::uint32_t u32;
    std::int64_t i64;
    std::uint64_t u64;
    TIME32 time;
    FTIME ftime;
    double value;
    float single;
    STRING<5> text;
    char chars[5];
    BOOL flags[3];
    double values[2];
    TIME32 times[2];
    FTIME ftimes[2];
    TEST_Inner one;
    TEST_Inner two[2];
};
#pragma pack(pop)

inline constexpr NETDSD_meaning TEST_BITS[] = {{1, "LOW", NETDSD_NOTE}, {6, "WRONG", NETDSD_FAULT}};

NETDSD_RECORD(TEST_Inner, 20,
    NETDSD_MEMBER(mark, "mark"),
    NETDSD_MEMBER(value, UNIT_degC, "sample temperature").range(-40, 60),
    NETDSD_TIME(when, "time"));
NETDSD_RECORD(TEST_All, 172,
    NETDSD_MEMBER(flag, ""), NETDSD_MEMBER(mark, ""), NETDSD_MEMBER(byte, UNIT_bits, "").bits(TEST_BITS),
    NETDSD_MEMBER(i16, UNIT_none, ""), NETDSD_MEMBER(u16, UNIT_none, ""), NETDSD_MEMBER(i32, UNIT_none, ""),
    NETDSD_MEMBER(u32, UNIT_none, ""), NETDSD_MEMBER(i64, UNIT_none, ""), NETDSD_MEMBER(u64, UNIT_none, ""),
    NETDSD_TIME(time, ""), NETDSD_TIME(ftime, ""), NETDSD_MEMBER(value, UNIT_per_m, ""),
    NETDSD_MEMBER(single, UNIT_none, ""), NETDSD_MEMBER(text, ""), NETDSD_CHARS(chars, ""),
    NETDSD_MEMBER(flags, ""), NETDSD_MEMBER(values, UNIT_per_Mm, "").each("blue, green"),
    NETDSD_TIME(times, ""), NETDSD_TIME(ftimes, ""), NETDSD_MEMBER(one, ""), NETDSD_MEMBER(two, ""));

namespace {

// A member left out, one listed twice or in the wrong place does not compile as a record.
using inner = NETDSD_traits<TEST_Inner>;
static_assert(netdsd_detail::covers(inner::fields.data(), 3, 20, 4));
static_assert(!netdsd_detail::covers(inner::fields.data(), 2, 20, 4));
static_assert(!netdsd_detail::covers(inner::fields.data() + 1, 2, 20, 4));
static_assert(!netdsd_detail::covers(inner::fields.data(), 3, 24, 4));

TEST(Netdsd, DescribesEveryTypeOfField) {
    std::string seen;
    for (const NETDSD_field& f : NETDSD_fields(NETDSD_of<TEST_All>())) {
        seen += std::string(f.type_name) + (f.count > 1 ? "[" + std::to_string(f.count) + "] " : " ");
        EXPECT_EQ(f.nested, f.ft == NETDSD_FT_BIN ? NETDSD_of<TEST_Inner>() : nullptr);
        EXPECT_EQ(NETDSD_field_by_name(NETDSD_of<TEST_All>(), f.name), &f);
    }
    EXPECT_EQ(seen,
              "BOOL char BYTE int16 uint16 int32 uint32 int64 uint64 time32 FTIME double float STRING[5] "
              "char[5] BOOL[3] double[2] time32[2] FTIME[2] TEST_Inner TEST_Inner[2] ");
    EXPECT_EQ(NETDSD_field_by_name(NETDSD_of<TEST_All>(), "tex"), nullptr);
}

TEST(Netdsd, EveryMemberOfEveryRecordIsDescribed) {
    for (const NETDSD_entry* dsd : all_records()) {
        for (const NETDSD_field& f : NETDSD_fields(dsd)) {
            SCOPED_TRACE(std::string(dsd->name) + "." + f.name);
            EXPECT_GE(std::string_view(f.comment).size(), 3u);
            EXPECT_TRUE(f.unit != nullptr || !f.has_range);
            const std::uint64_t bits = f.size / NETDSD_values(f) * 8;
            for (const NETDSD_meaning& m : f.meanings)
                EXPECT_EQ(bits < 32 ? m.value >> bits : 0, 0u) << m.text << " lies beyond the field";
            EXPECT_EQ(f.by_bits, f.unit == &UNIT_bits && !f.meanings.empty());
        }
    }
}

TEST(Netdsd, ScreensShowSomeUnitsInAnother) {
    EXPECT_EQ(UNIT_on_screen(UNIT_per_m, 0.25), 250000);
    EXPECT_EQ(UNIT_on_screen(UNIT_per_m, VESK_MISSING), VESK_MISSING);
    EXPECT_STREQ(UNIT_screen_symbol(UNIT_per_m), UNIT_per_Mm.symbol);
    EXPECT_STREQ(UNIT_screen_symbol(UNIT_hPa), "hPa");
    EXPECT_STREQ(UNIT_screen_symbol(UNIT_none), "");
    std::set<std::string_view> symbols;
    for (const UNIT* unit : UNITS)
        EXPECT_TRUE(symbols.insert(unit->symbol).second) << unit->symbol;
}

TEST(Netdsd, DefaultsSayThatNothingIsKnown) {
    const auto record = NETDSD_default<TEST_All>();
    EXPECT_EQ(+record.u64, 0u);
    EXPECT_EQ(+record.times[1], -1);
    EXPECT_EQ(+record.ftimes[1], VESK_NO_TIME);
    EXPECT_EQ(+record.values[1], VESK_MISSING);
    EXPECT_EQ(record.text[0], 0);
    EXPECT_EQ(+record.two[1].when, VESK_NO_TIME);
}

TEST(Netdsd, LeavesComeOneByOneInOrder) {
    std::string seen;
    NETDSD_for_each_leaf(NETDSD_of<TEST_All>(), [&](const NETDSD_field& f, std::size_t at) {
        if (at >= 56) seen += std::string(f.name) + "@" + std::to_string(at) + " ";
    });
    EXPECT_EQ(
        seen,
        "text@56 chars@61 flags@66 flags@67 flags@68 values@72 values@80 times@88 times@92 ftimes@96 "
        "ftimes@104 mark@112 value@116 when@124 mark@132 value@136 when@144 mark@152 value@156 when@164 ");
}

TEST(Netdsd, TextsAreTerminatedCleanedAndZeroFilled) {
    const struct {
        std::string_view arrives;
        std::string_view stays;
        std::string_view stays_whole;  // in a field without terminator
    } rows[] = {
        {{"abcde", 5}, {"abcd\0", 5}, {"abcde", 5}},
        {{"ab\0cd", 5}, {"ab\0\0\0", 5}, {"ab\0\0\0", 5}},     // nothing leaks from behind the end
        {{"\x1b[2\x7f\n", 5}, {" [2 \0", 5}, {" [2  ", 5}},    // nothing that a terminal obeys
        {{"\xc3\xa9\x9b~ ", 5}, {"   ~\0", 5}, {"   ~ ", 5}},  // only ASCII
        {{"\0\x01\x02\x03\x04", 5}, {"\0\0\0\0\0", 5}, {"\0\0\0\0\0", 5}},
    };
    for (const auto& row : rows) {
        TEST_All record = NETDSD_default<TEST_All>();
        std::memcpy(record.text, row.arrives.data(), 5);
        std::memcpy(record.chars, row.arrives.data(), 5);
        NETDSD_sanitize(NETDSD_of<TEST_All>(), &record);
        EXPECT_EQ(std::string_view(record.text, 5), row.stays) << row.arrives;
        EXPECT_EQ(std::string_view(record.chars, 5), row.stays_whole) << row.arrives;
    }
}

TEST(Netdsd, BoolsAndCharsAreCleanedAndNumbersAreNot) {
    std::vector<char> bytes(sizeof(TEST_All) + 2, '\x93');  // on an odd address, between two guards
    char* const record = bytes.data() + 1;
    record[offsetof(TEST_All, flags) + 1] = 0;
    record[offsetof(TEST_All, two[1].mark)] = 0;
    NETDSD_sanitize(NETDSD_of<TEST_All>(), record);
    EXPECT_EQ(std::string_view(record + offsetof(TEST_All, flags), 3), std::string_view("\1\0\1", 3));
    EXPECT_EQ(record[offsetof(TEST_All, mark)], ' ');
    EXPECT_EQ(record[offsetof(TEST_All, two[1].mark)], 0);
    EXPECT_EQ(record[offsetof(TEST_All, byte)], '\x93');
    EXPECT_EQ(NETDSD_load<std::uint32_t>(record + offsetof(TEST_All, u32)), 0x93939393u);
    EXPECT_EQ(NETDSD_load<std::uint64_t>(record + offsetof(TEST_All, two[1].value)), 0x9393939393939393u);
    EXPECT_EQ(bytes.front(), '\x93');
    EXPECT_EQ(bytes.back(), '\x93');
}

TEST(Netdsd, PaddingIsZeroedAndNothingElse) {
    std::set<const NETDSD_entry*> records = all_records();
    records.insert(
        NETDSD_of<TEST_All>());  // gaps between members, within nested records and in an array of them
    std::size_t padded = 0;
    for (const NETDSD_entry* dsd : records) {
        std::vector<char> expected(dsd->total_size + 1, '\0');
        NETDSD_for_each_leaf(dsd, [&](const NETDSD_field& f, std::size_t at) {
            const std::size_t size = f.size / NETDSD_values(f);
            std::fill_n(expected.data() + at, size, '\x93');
        });
        expected.back() = '\x93';  // what stands behind the record
        padded += std::count(expected.begin(), expected.end(), '\0') > 0;
        std::vector<char> record(expected.size(), '\x93');
        NETDSD_clear_padding(dsd, record.data());
        EXPECT_EQ(record, expected) << dsd->name;
    }
    EXPECT_GT(padded, 10U);
}

TEST(Netdsd, KnowsWhichRecordsNeedNoCleaning) {
    EXPECT_TRUE(NETDSD_of<NET_CPC_3775_Instant>()->numbers_only);  // a nested average included
    EXPECT_FALSE(NETDSD_of<NET_CPC_3775_Status>()->numbers_only);
    EXPECT_FALSE(NETDSD_of<NET_SERVER_InstrumentInfo>()->numbers_only);
    EXPECT_FALSE(NETDSD_of<TEST_Inner>()->numbers_only);
}

TEST(Netdsd, FindsNestedRecordsToo) {
    EXPECT_EQ(NETDSD_by_name("NET_SERVER_InstrumentTag"), NETDSD_of<NET_SERVER_InstrumentTag>());
    EXPECT_EQ(NETDSD_by_name("TEST_All"), nullptr) << "it does not travel";
}

}  // namespace
