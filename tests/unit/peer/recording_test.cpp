// The lines of a recording that are played, and their times.
#include "peer/recording.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "libvesk/support/util.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

std::string say(const char* time, const char* source, const char* rest) {
    return std::string(R"({"time":)") + time + R"(,"src":")" + source + R"(",)" + rest + "}\n";
}

constexpr double LONGEST_GAP = 600;
constexpr const char* FLUSH = R"("msg":"MSG_LOG_FLUSH","flags":1)";
constexpr const char* ZERO = R"("msg":"MSG_NEPH_ZERO","flags":1)";
constexpr const char* ANNOUNCE = R"("msg":"MSG_SERVER_INSTRUMENTINFO","flags":7,"payload":{"type":"neph"})";
constexpr const char* GONE = R"("msg":"MSG_NOTIFY_CLIENT_TERMINATE","flags":1)";

// "0 N11 MSG_X" for a message, "2.5 N11 leaves".
std::vector<std::string> events_of(RECORDING_reader& reader) {
    std::vector<std::string> seen;
    for (const RECORDING_event& e : reader.events()) {
        std::string at = std::to_string(e.at);
        at.erase(at.find_last_not_of('0') + 1);
        if (at.ends_with('.')) at.pop_back();
        seen.push_back(at + " " + e.message.src + " " + (e.leaves ? "leaves" : e.message.msg->name));
    }
    return seen;
}

std::vector<std::string> events_of(const std::string& recording, std::vector<std::string> only = {}) {
    RECORDING_reader reader(std::move(only), LONGEST_GAP);
    for (const char byte : recording)
        reader.feed({&byte, 1});
    reader.finish();
    return events_of(reader);
}

TEST(Recording, KeepsTheSpacingWhateverTheClockDid) {
    EXPECT_THAT(events_of(say("100", "N11", FLUSH) + say("100.25", "N12", FLUSH) + "\n" +
                          say("50", "N11", FLUSH) +  // the clock was set back
                          say("51", "N11", FLUSH) + say("null", "N11", FLUSH) +
                          R"({"src":"N12","msg":"MSG_LOG_FLUSH"})"
                          "\n" +
                          say("52.5", "N11", FLUSH)),
                ElementsAre("0 N11 MSG_LOG_FLUSH", "0.25 N12 MSG_LOG_FLUSH", "0.25 N11 MSG_LOG_FLUSH",
                            "1.25 N11 MSG_LOG_FLUSH", "1.25 N11 MSG_LOG_FLUSH", "1.25 N12 MSG_LOG_FLUSH",
                            "2.75 N11 MSG_LOG_FLUSH"));
}

TEST(Recording, PlaysTheLongestGapWhereAClockLeapt) {
    ASSERT_TRUE(LIBVESK_init("PEER"));
    RECORDING_reader reader({}, LONGEST_GAP);
    testing::internal::CaptureStderr();
    reader.feed(say("1e3", "N11", FLUSH) + say("1600", "N11", FLUSH) + say("2e9", "N11", FLUSH) +
                say("1602", "N11", FLUSH) + say("1e300", "N11", FLUSH));
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "PEER: line 3: comes 2e+09 s after the line before, played as 600 s\n");
    EXPECT_EQ(reader.events().back().at, 1800);
    EXPECT_EQ(reader.counts().gaps, 2u);
}

TEST(Recording, LeavesConsolesAndPrivateTalkOutAndCountsThem) {
    RECORDING_reader reader({}, LONGEST_GAP);
    reader.feed(say("1", "CLIENT", FLUSH) + say("1", "CLIENT", R"("msg":"MSG_NEPH_ZERO","dest":"N11")") +
                say("1", "V11", R"("msg":"MSG_NEPH_ZERO","dest":"N11","flags":0)") +
                say("1", "V11", R"("msg":"MSG_NEPH_ZERO","dest":"N11","flags":1)") +
                say("1", "V11", R"("msg":"MSG_NEPH_ZERO","dest":"CLIENT","flags":0)"));
    EXPECT_THAT(events_of(reader), ElementsAre("0 V11 MSG_NEPH_ZERO", "0 V11 MSG_NEPH_ZERO"));
    EXPECT_EQ(reader.counts().of_consoles, 2u);
    EXPECT_EQ(reader.counts().to_instruments, 1u);
    EXPECT_EQ(reader.counts().refused, 0u);
}

TEST(Recording, RefusesWrongLinesByNumberAndGoesOn) {
    ASSERT_TRUE(LIBVESK_init("PEER"));
    RECORDING_reader reader({}, LONGEST_GAP);
    testing::internal::CaptureStderr();
    reader.feed(say("1", "N11", FLUSH) + "garbage\n\n" +
                R"({"msg":"MSG_LOG_FLUSH"})"
                "\n" +
                say("2", " N11", FLUSH) + say("2", "N11", R"("msg":"MSG_SERVER_HEARTBEAT")") +
                say("2", "N11", R"("msg":"MSG_LOG_INFO","payload":{"logging":3})") +
                std::string((1 << 20) + 1, ' ') + "\n" + say("3", "N11", FLUSH));
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "PEER: line 2: no JSON: wrong at byte 1\n"
              "PEER: line 4: no \"src\" that is a name: not from a recording\n"
              "PEER: line 5: no \"src\" that is a name: not from a recording\n"
              "PEER: line 6: MSG_SERVER_HEARTBEAT: a type that only the server may send\n"
              "PEER: line 7: logging: expects true or false\n"
              "PEER: line 8: longer than 1048576 bytes\n");
    EXPECT_THAT(events_of(reader), ElementsAre("0 N11 MSG_LOG_FLUSH", "2 N11 MSG_LOG_FLUSH"));
    EXPECT_EQ(reader.counts().refused, 6u);
}

TEST(Recording, SelectsWithTheAnnouncementsThatBelongToIt) {
    const std::string recording = say("1", "N11", ANNOUNCE) + say("1", "N12", ANNOUNCE) +
                                  say("2", "N11", FLUSH) + say("3", "N11", ZERO) + say("4", "N11", ANNOUNCE) +
                                  say("5", "N12", FLUSH) + say("6", "N11", GONE) + say("6", "N12", GONE) +
                                  say("7", "N11", ANNOUNCE) + say("8", "N11", ZERO);
    const struct {
        std::vector<std::string> only;
        std::vector<std::string> events;
    } rows[] = {
        {{"MSG_NEPH_*"},
         {"2 N11 MSG_SERVER_INSTRUMENTINFO", "2 N11 MSG_NEPH_ZERO", "3 N11 MSG_SERVER_INSTRUMENTINFO",
          "5 N11 leaves", "7 N11 MSG_SERVER_INSTRUMENTINFO", "7 N11 MSG_NEPH_ZERO"}},
        {{"N12"}, {"0 N12 MSG_SERVER_INSTRUMENTINFO", "4 N12 MSG_LOG_FLUSH", "5 N12 leaves"}},
        {{"N13"}, {}},
    };
    for (const auto& row : rows)
        EXPECT_THAT(events_of(recording, row.only), ElementsAreArray(row.events));
}

TEST(RecordingPosition, GoesWithTheClockButNotWithItsJumps) {
    RECORDING_position position(10);
    EXPECT_EQ(position.at(1000), 0);
    EXPECT_EQ(position.at(1000.5), 5);
    EXPECT_EQ(position.at(1000.5), 5);
    EXPECT_EQ(position.at(2000), 5) << "stopped, or set ahead";
    EXPECT_EQ(position.at(2001), 15);
    EXPECT_EQ(position.at(1500), 15) << "set back";
    EXPECT_EQ(position.at(1504), 55);
}

}  // namespace
