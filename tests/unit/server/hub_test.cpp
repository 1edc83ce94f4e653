// The hub: greeting, routing, stamping, keeping, departures, and what happens to what is wrong.
#include "hub_rig.h"
#include "libvesk/link/veskmsg.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using wire::message;

constexpr DWORD SHARED = FRAME_TO_ALL | FRAME_RESERVED | FRAME_KEEP;

using Hub = HubRig;

TEST_F(Hub, LateJoinerGetsAnnouncementsThenKeptMessagesInTheOrderOfFirstSending) {
    wire::End& console = client();
    wire::End& a = instrument("A1");
    wire::End& b = instrument("B1");
    console.send(message(MSG_COMMON_NEPH_SPANCHECK_ABORT, SHARED));
    settle(console);
    a.send(message(MSG_CPC_3010_STATUS, SHARED, "", 1));
    a.send(message(MSG_CPC_3010_INSTANT, ALL, "", 1));  // not kept
    settle(a);
    b.send(message(MSG_SERVER_INSTRUMENTINFO, ALL));
    settle(b);
    a.send(message(MSG_SERVER_INSTRUMENTINFO, SHARED));
    a.send(message(MSG_CPC_3010_STATUS, SHARED, "", 2));  // the latest, at the place of the first
    settle(a);
    b.send(message(MSG_SERVER_INSTRUMENTINFO, ALL));  // an announcement keeps its place too
    settle(b);

    wire::End& late = client();
    settle(a);
    ASSERT_EQ(late.frames().size(), 4U);
    EXPECT_EQ(late.frames()[0].source, "B1");
    EXPECT_EQ(late.frames()[3].payload.at(0), std::byte{2});
    EXPECT_THAT(names(late), ElementsAre("MSG_SERVER_INSTRUMENTINFO", "MSG_SERVER_INSTRUMENTINFO",
                                         "MSG_COMMON_NEPH_SPANCHECK_ABORT", "MSG_CPC_3010_STATUS"));
}

TEST_F(Hub, WhatWasKeptBeforeTheAnnouncementIsRepeatedBehindItOnce) {
    wire::End& console = client();
    wire::End& a = instrument("A1");
    a.send(message(MSG_CPC_3010_STATUS, SHARED, "", 1));
    a.send(message(MSG_NEPH_CONFIG, FRAME_KEEP, "B1"));
    settle(a);
    console.frames().clear();
    a.send(message(MSG_SERVER_INSTRUMENTINFO, ALL));
    a.send(message(MSG_CPC_3010_INSTANT, ALL));
    a.send(message(MSG_SERVER_INSTRUMENTINFO, ALL));
    settle(a);
    EXPECT_THAT(names(console), ElementsAre("MSG_SERVER_INSTRUMENTINFO", "MSG_CPC_3010_STATUS",
                                            "MSG_CPC_3010_INSTANT", "MSG_SERVER_INSTRUMENTINFO"));
}

TEST_F(Hub, DepartureComesAfterTheLastWordsAndTakesWhatWasKeptOfInstrumentsAlong) {
    wire::End& witness = client();
    wire::End& console = client();
    wire::End& a = instrument("A1");
    console.send(message(MSG_CONTAMINATION_BYPASS, SHARED));
    settle(console);
    a.send(message(MSG_SERVER_INSTRUMENTINFO, SHARED));
    a.send(message(MSG_CPC_3010_STATUS, SHARED));
    a.write();
    a.hang_up();
    console.hang_up();
    ASSERT_TRUE(until([&] { return hub_->count() == 1; }));
    settle(witness);
    const wire::Seen last = witness.frames().back();
    EXPECT_EQ(last.source, "A1");
    EXPECT_EQ(last.flags, ALL);
    EXPECT_THAT(names(witness), ElementsAre("MSG_CONTAMINATION_BYPASS", "MSG_SERVER_INSTRUMENTINFO",
                                            "MSG_CPC_3010_STATUS", "MSG_NOTIFY_CLIENT_TERMINATE"));
    wire::End& late = client();
    settle(late);
    EXPECT_THAT(names(late), ElementsAre("MSG_CONTAMINATION_BYPASS"));
}

TEST_F(Hub, DirectedMessageReachesItsNameAndMonitorsOnce) {
    wire::End& console = client();
    wire::End& other = client();
    wire::End& a = instrument("A1");
    wire::End& b = instrument("B1");
    wire::End& monitor = join(FRAME_PEER_MONITOR);
    console.send(message(MSG_NEPH_ISSUE_ZERO, 0, "A1"));
    console.send(message(MSG_NEPH_CONFIG, FRAME_KEEP, "C1"));
    console.send(message(MSG_LOG_FLUSH, ALL, "A1"));
    a.send(message(MSG_CPC_3010_STATUS, 0, "CLIENT"));
    settle(console);
    settle(a);
    EXPECT_THAT(names(a), ElementsAre("MSG_NEPH_ISSUE_ZERO", "MSG_LOG_FLUSH"));
    EXPECT_THAT(names(b), ElementsAre("MSG_LOG_FLUSH"));
    EXPECT_THAT(names(other), testing::UnorderedElementsAre("MSG_LOG_FLUSH", "MSG_CPC_3010_STATUS"));
    EXPECT_THAT(names(console), testing::UnorderedElementsAre("MSG_LOG_FLUSH", "MSG_CPC_3010_STATUS"));
    EXPECT_EQ(monitor.frames().size(), 4U);
    // The hub replays a kept message to its destination.
    wire::End& c = instrument("C1");
    wire::End& late = client();
    settle(console);
    EXPECT_THAT(names(c), ElementsAre("MSG_NEPH_CONFIG"));
    EXPECT_THAT(names(late), IsEmpty());
}

TEST_F(Hub, FramesInOrderAreForwardedByteForByteAndOthersGetTheirTrueSource) {
    wire::End& a = instrument("A1");
    wire::End& console = client();
    const FRAME_bytes own = message(MSG_CPC_3010_STATUS, ALL | FRAME_RESERVED, "B1", 0xA5, "A1");
    a.send(own);
    a.send(message(MSG_CPC_3010_STATUS, ALL, "B1", 0xA5, ""));
    a.send(message(MSG_CPC_3010_STATUS, ALL, "B1", 0xA5, "CLIENT"));
    settle(a);
    ASSERT_EQ(console.frames().size(), 3U);
    EXPECT_EQ(console.frames()[0].bytes, own);
    for (const wire::Seen& s : console.frames()) {
        EXPECT_EQ(s.source, "A1");
        EXPECT_EQ(s.payload, console.frames()[0].payload);
        EXPECT_EQ(s.dest, "B1");
    }
    EXPECT_EQ(logged("another's name"), 1U);
}

TEST_F(Hub, RefusesWithAReasonAndClosesThen) {
    HUB_params params;
    params.most_connections = 2;
    start(params);
    wire::End& a = instrument("A1");
    a.send(message(MSG_CPC_3010_STATUS, SHARED));
    settle(a);
    struct {
        FRAME_bytes hello;
        const char* text;
    } rows[] = {
        {wire::hello(FRAME_PEER_INSTRUMENT, "B1", 2), "wrong version, it speaks 1"},
        {wire::hello(FRAME_PEER_INSTRUMENT, "A1"), "name taken"},
        {wire::hello(FRAME_PEER_INSTRUMENT, ""), "bad name"},
        {wire::hello(FRAME_PEER_INSTRUMENT, "CLIENT"), "bad name"},
        {wire::hello(FRAME_PEER_CLIENT, "B1"), "bad name"},
        {wire::hello(FRAME_PEER_MONITOR, "B1"), "bad name"},
    };
    for (const auto& row : rows) {
        wire::End& refused = raw();
        refused.send(row.hello);
        refused.send(message(MSG_LOG_FLUSH, ALL));  // speaks before it is asked
        ASSERT_TRUE(until([&] { return refused.ended(); })) << row.text;
        ASSERT_EQ(refused.frames().size(), 1U) << row.text;
        EXPECT_EQ(refused.frames()[0].text, row.text);
        refused.hang_up();
        ASSERT_TRUE(until([&] { return hub_->count() == 1; }));
    }
    wire::End& console = client();
    settle(console);
    EXPECT_THAT(names(console), ElementsAre("MSG_CPC_3010_STATUS")) << "the refused has not taken it along";
    wire::End& late = raw();
    ASSERT_TRUE(until([&] { return late.ended(); }));
    ASSERT_EQ(late.frames().size(), 1U);
    EXPECT_EQ(late.frames()[0].text, "server full");
    EXPECT_EQ(logged("refused"), std::size(rows) + 1);
}

FRAME_bytes odd_message(int type, DWORD flags, const char* dest, const char* record, std::size_t size) {
    FRAME_bytes out;
    FRAME_encode_message(&out, {type, flags, "", dest, record, FRAME_bytes(size)});
    return out;
}

TEST_F(Hub, WrongMessagesAreDroppedAndLoggedOncePerPeerAndCause) {
    struct {
        FRAME_bytes bytes;
        const char* cause;
    } const rows[] = {
        {odd_message(270, ALL, "", "", 0), "an unknown type"},
        {odd_message(MSG_NOTIFY_CLIENT_TERMINATE, ALL, "", "", 0), "only the server may send"},
        {odd_message(MSG_CPC_3010_STATUS, ALL, "", "NET_NONE\x1b", 1), "an unknown record"},
        {odd_message(MSG_CPC_3010_STATUS, ALL, "", "NET_IO_Value", 48), "does not belong to the type"},
        {odd_message(MSG_IO_INSTANT, ALL, "", "NET_IO_Value", 49), "another size"},
        {odd_message(MSG_LOG_FLUSH, 9, "", "", 0), "flags without a meaning"},
        {odd_message(MSG_LOG_FLUSH, 0, "", "", 0), "no destination"},
        {odd_message(MSG_LOG_FLUSH, ALL, "N\n", "", 0), "a destination that cannot be a name"},
        {message(MSG_SERVER_INSTRUMENTINFO, ALL), "only an instrument may send"},
        {odd_message(MSG_SERVER_INSTRUMENTINFO, ALL, "", "", 0), "only an instrument may send"},
    };
    wire::End& bad = client();
    wire::End& witness = client();
    for (const auto& row : rows) {
        bad.send(row.bytes);
        bad.send(row.bytes);
    }
    settle(bad);
    EXPECT_THAT(names(witness), IsEmpty());
    for (const auto& row : rows)
        EXPECT_EQ(logged(row.cause), 1U) << row.cause;
    for (const std::string& line : log_)
        EXPECT_TRUE(std::all_of(line.begin(), line.end(), [](char c) { return UTIL_is_printable(BYTE(c)); }))
            << line;

    witness.send(rows[0].bytes);
    settle(witness);
    EXPECT_EQ(logged(rows[0].cause), 2U);  // once per peer
}

FRAME_bytes raw_frame(std::uint32_t length, BYTE kind, std::size_t body) {
    FRAME_bytes out(FRAME_HEAD + body);
    std::memcpy(out.data(), &length, sizeof length);
    out[4] = std::byte{kind};
    return out;
}

TEST_F(Hub, BrokenFramingCostsTheLinkAndDisturbsNobodyElse) {
    FRAME_bytes long_texts = message(MSG_LOG_FLUSH, ALL);
    long_texts[12] = std::byte{1};  // a source of one byte in a frame that has none
    struct {
        bool after_hello;
        FRAME_bytes bytes;
        const char* what;
    } const rows[] = {
        {false, FRAME_bytes(64, std::byte{'G'}), "a frame of 1195853643 bytes"},
        {false, message(MSG_LOG_FLUSH, ALL), "its first frame is no hello"},
        {false, raw_frame(4, FRAME_HELLO, 0), "its first frame is no hello"},
        {false, raw_frame(2000, FRAME_HELLO, 0), "a frame of 2004 bytes"},
        {true, raw_frame(0xFFFFFFFF, FRAME_MESSAGE, 0), "a frame of 4294967299 bytes"},
        {true, raw_frame(FRAME_MAX - 3, FRAME_MESSAGE, 0), "a frame of 65537 bytes"},
        {true, raw_frame(3, FRAME_HEARTBEAT, 0), "a frame of 7 bytes"},
        {true, raw_frame(4, 77, 0), "unknown kind"},
        {true, raw_frame(4, FRAME_MESSAGE, 0), "shorter than its head"},
        {true, raw_frame(5, FRAME_HEARTBEAT, 1), "without a body has one"},
        {true, long_texts, "longer than itself"},
        {true, wire::hello(FRAME_PEER_CLIENT, "CLIENT"), "out of turn"},
    };
    wire::End& witness = client();
    for (const auto& row : rows) {
        const std::size_t before = logged(row.what);
        wire::End& bad = row.after_hello ? client() : raw();
        bad.send(row.bytes);
        ASSERT_TRUE(until([&] { return bad.ended(); })) << row.what;
        EXPECT_EQ(logged(row.what), before + 1) << row.what;
    }
    settle(witness);
    EXPECT_FALSE(witness.ended());
    EXPECT_EQ(hub_->count(), 1U);
}

}  // namespace
