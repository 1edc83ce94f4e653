#include "peer/options.h"

#include <gmock/gmock.h>

#include "peer/peer.h"

namespace {

using testing::ElementsAre;
using arguments = std::vector<const char*>;

std::optional<int> parse(arguments args, PEER_options* options) {
    args.insert(args.begin(), "vesk.peer");
    return PEER_parse_options(static_cast<int>(args.size()), args.data(), options);
}

TEST(PeerOptions, AreReadInFull) {
    PEER_options options;
    ASSERT_FALSE(parse({"--monitor", "--host", "[::1]:99", "--only", "MSG_CPC_*", "--only", "N1?", "--count",
                        "3", "--timeout", "0.5"},
                       &options));
    EXPECT_TRUE(options.monitor);
    EXPECT_EQ(options.host, "[::1]:99");
    EXPECT_THAT(options.only, ElementsAre("MSG_CPC_*", "N1?"));
    EXPECT_EQ(options.count, 3u);
    EXPECT_EQ(options.timeout, 0.5);
    ASSERT_FALSE(
        parse({"--as", "N11", "--silence", "30", "--send", "{}", "--send", "{ }", "--quiet"}, &options));
    EXPECT_EQ(options.silence, 30);
    EXPECT_THAT(options.send, ElementsAre("{}", "{ }"));
    ASSERT_FALSE(parse({"--replay", "day.json", "--speed", "60", "--only", "N11"}, &options));
    EXPECT_EQ(options.replay, "day.json");
    EXPECT_EQ(options.speed, 60);
}

TEST(PeerOptions, WrongOnesEndTheProgramWithAReason) {
    const arguments rows[] = {
        {"--as", ""},
        {"--as", "CLIENT"},
        {"--as", "N11", "--monitor"},
        {"--speed", "60"},
        {"--silence", "30"},
        {"--as", "N11", "--silence", "0"},
        {"--quiet", "--count", "1"},
        {"--send", "{}", "--replay", "day.json"},
        {"--list", "--describe", "X"},
        {"--json", "--markdown", "--list"},
        {"--describe", "X", "--markdown"},
        {"--list", "--as", "N11"},
        {"--replay", ""},
        {"--replay", "day.json", "--as", "N11"},
        {"--replay", "day.json", "--monitor"},
    };
    for (const arguments& row : rows) {
        PEER_options options;
        testing::internal::CaptureStderr();
        EXPECT_EQ(parse(row, &options), PEER_EXIT_NO_LINK) << row.back();
        EXPECT_NE(testing::internal::GetCapturedStderr(), "") << row.back();
    }
}

}  // namespace
