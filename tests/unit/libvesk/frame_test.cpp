// Frames there and back, streams cut anywhere, streams that are wrong, and the bytes that the document
// promises.
#include "libvesk/link/frame.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "support/wire.h"

namespace {

FRAME_bytes sample_message(std::size_t payload) {
    const FRAME_bytes bytes(payload, std::byte{0x5A});
    FRAME_bytes out;
    EXPECT_TRUE(FRAME_encode_message(&out, {155, 7, "N11", "CLIENT", "NET_X", bytes}));
    return out;
}

// One of each, and messages small and as large as can be.
FRAME_bytes sample_stream() {
    FRAME_bytes out;
    FRAME_encode_hello(&out, {FRAME_VERSION, FRAME_PEER_MONITOR, "CLIENT"});
    FRAME_encode_welcome(&out);
    FRAME_encode_heartbeat(&out);
    for (const std::size_t size : {std::size_t{0}, std::size_t{600}, FRAME_MAX - 30}) {
        const FRAME_bytes m = sample_message(size);
        out.insert(out.end(), m.begin(), m.end());
    }
    FRAME_encode_refusal(&out, {FRAME_NAME_TAKEN, 1, "name taken"});
    return out;
}

// The frames that the reader finds when the stream comes in pieces of those sizes.
template <class SIZE>
std::vector<FRAME_bytes> read_in_pieces(FRAME_span stream, SIZE next_size) {
    FRAME_reader reader;
    std::vector<FRAME_bytes> out;
    FRAME f;
    while (!stream.empty()) {
        const auto space = reader.space();
        const std::size_t n = std::min({next_size(), space.size(), stream.size()});
        std::memcpy(space.data(), stream.data(), n);
        reader.commit(n);
        stream = stream.subspan(n);
        FRAME_status status;
        while ((status = reader.next(&f)) == FRAME_READY)
            out.emplace_back(f.bytes.begin(), f.bytes.end());
        EXPECT_EQ(status, FRAME_MORE) << reader.error();
    }
    return out;
}

TEST(Frame, ReaderFindsTheSameFramesHoweverTheStreamIsCut) {
    const FRAME_bytes stream = sample_stream();
    const auto whole = read_in_pieces(stream, [] { return std::size_t{1} << 20; });
    ASSERT_EQ(whole.size(), 7U);
    FRAME_bytes joined;
    for (const FRAME_bytes& f : whole)
        joined.insert(joined.end(), f.begin(), f.end());
    EXPECT_EQ(joined, stream);
    EXPECT_EQ(read_in_pieces(stream, [] { return std::size_t{1}; }), whole);
    std::mt19937 random(7);
    EXPECT_EQ(read_in_pieces(stream, [&] { return std::size_t{1} + random() % 9000; }), whole);
}

FRAME frame_of(const FRAME_bytes& bytes) {
    static FRAME_reader reader;
    reader.discard();
    const auto space = reader.space();
    std::memcpy(space.data(), bytes.data(), bytes.size());
    reader.commit(bytes.size());
    FRAME f;
    EXPECT_EQ(reader.next(&f), FRAME_READY);
    return f;
}

TEST(Frame, HelloOfAnotherVersionYieldsItsVersionWhateverElseItHolds) {
    FRAME_bytes other = wire::hello(FRAME_PEER_CLIENT, "CLIENT", 2);
    other[5] = std::byte{99};   // a kind of peer that there may be by then
    other[12] = std::byte{77};  // a name of another shape
    const auto hello = FRAME_decode_hello(frame_of(other));
    ASSERT_TRUE(hello);
    EXPECT_EQ(hello->version, 2);
    EXPECT_EQ(hello->name, "");
}

TEST(Frame, BodiesThatBreakTheirOwnLengthsAreNotDecoded) {
    for (const std::size_t at : {12U, 13U, 14U}) {
        FRAME_bytes m = sample_message(0);
        m[at] = std::byte{255};
        EXPECT_FALSE(FRAME_decode_message(frame_of(m))) << at;
    }
    const FRAME_bytes good = wire::hello(FRAME_PEER_CLIENT, "CLIENT");
    for (const auto& [at, value] : {std::pair{5, 0}, {5, 4}, {8, 'v'}, {12, 5}, {12, 7}}) {
        FRAME_bytes bad = good;
        bad[static_cast<std::size_t>(at)] = std::byte(value);
        EXPECT_FALSE(FRAME_decode_hello(frame_of(bad))) << at << " " << value;
    }
}

TEST(Frame, MessageThatIsTooLongIsNotEncoded) {
    FRAME_bytes out;
    const FRAME_bytes payload(FRAME_MAX - FRAME_MESSAGE_HEAD + 1);
    EXPECT_FALSE(FRAME_encode_message(&out, {1, 1, "", "", "", payload}));
    EXPECT_TRUE(out.empty());
    EXPECT_TRUE(FRAME_encode_message(&out, {1, 1, "", "", "", FRAME_span(payload).subspan(1)}));
    EXPECT_EQ(out.size(), FRAME_MAX);
    EXPECT_TRUE(FRAME_decode_message(frame_of(out)));
}

TEST(Frame, WrongLengthIsSeenBeforeItsBytesComeAndTheStreamStaysBroken) {
    for (const std::uint32_t length : {3U, std::uint32_t{FRAME_MAX - 3}, 0xFFFFFFFFU}) {
        FRAME_reader reader;
        std::memcpy(reader.space().data(), &length, sizeof length);
        reader.commit(sizeof length);
        FRAME f;
        EXPECT_EQ(reader.next(&f), FRAME_BROKEN) << length;
        EXPECT_EQ(reader.next(&f), FRAME_BROKEN);
    }
}

// The line of the document's examples that begins with that word, as bytes.
FRAME_bytes documented(const std::string& word) {
    const auto root = std::filesystem::path(__FILE__).parent_path() / "../../..";
    std::ifstream file(root / "docs/protocol.md");
    for (std::string line; std::getline(file, line);) {
        std::istringstream in(line);
        std::string first;
        if (!(in >> first) || first != word || line.find("  ") == line.npos) continue;
        FRAME_bytes out;
        for (unsigned byte; in >> std::hex >> byte;)
            out.push_back(std::byte(byte));
        return out;
    }
    return {};
}

TEST(Frame, BytesAreThoseThatTheDocumentShows) {
    EXPECT_EQ(wire::hello(FRAME_PEER_INSTRUMENT, "N11"), documented("hello"));
    EXPECT_EQ(wire::welcome(), documented("welcome"));
    EXPECT_EQ(wire::refusal(FRAME_NAME_TAKEN, "name taken"), documented("refusal"));
    EXPECT_EQ(wire::heartbeat(), documented("heartbeat"));
    EXPECT_EQ(wire::message(MSG_LOG_INFO, 1, "", 1, "N11"), documented("message"));
}

}  // namespace
