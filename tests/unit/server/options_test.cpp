// The server's command line, right and wrong, and one whole run.
#include "server/options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <csignal>

#include "server/server.h"
#include "support/wire.h"

namespace {

std::optional<int> parse(std::vector<const char*> words, SERVER_options* options) {
    words.insert(words.begin(), "vesk.server");
    return SERVER_parse_options(static_cast<int>(words.size()), words.data(), options);
}

TEST(Options, TakesWhatItIsGiven) {
    setenv("VESK_SOCKET", "/tmp/here.sock", 1);
    SERVER_options plain;
    ASSERT_FALSE(parse({}, &plain));
    EXPECT_EQ(plain.socket.path, "/tmp/here.sock");
    EXPECT_TRUE(plain.listen.empty());

    SERVER_options all;
    ASSERT_FALSE(parse({"--socket", "/x/y.sock", "--listen", "[::1]:9", "--listen", "station",
                        "--queue-bytes", "100000", "--silence", "6"},
                       &all));
    EXPECT_EQ(all.socket.path, "/x/y.sock");
    ASSERT_EQ(all.listen.size(), 2U);
    EXPECT_EQ(ADDRESS_text(all.listen[0]), "[::1]:9");
    EXPECT_EQ(ADDRESS_text(all.listen[1]), "station:8375");
    EXPECT_EQ(all.hub.connection.queue_bytes, 100000U);
    EXPECT_EQ(all.hub.silence_seconds, 6.0);
}

TEST(Options, SaysWhatIsWrong) {
    const std::pair<std::vector<const char*>, const char*> rows[] = {
        {{"--socket", "x.sock"}, "no slash"},
        {{"--listen", "/x"}, "is a path"},
        {{"--socket", "/x", "a\x1b[2Jb"}, "a?[2Jb"},
    };
    for (const auto& [words, text] : rows) {
        SERVER_options options;
        testing::internal::CaptureStderr();
        EXPECT_EQ(parse(words, &options), 2) << text;
        EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr(text));
    }
    SERVER_options options;
    testing::internal::CaptureStdout();
    EXPECT_EQ(parse({"--help"}, &options), 0);
    EXPECT_THAT(testing::internal::GetCapturedStdout(), testing::HasSubstr("--listen"));
}

TEST(Server, CannotRunWithoutDescriptorsAndSaysSo) {
    const TemporaryFolder folder;
    const pid_t pid = fork();
    if (pid == 0) {
        const rlimit few{6, 6};
        setrlimit(RLIMIT_NOFILE, &few);
        SERVER_options options;
        options.socket.path = folder / "run/server.sock";
        _exit(SERVER_run(options));
    }
    int status = -1;
    ASSERT_EQ(waitpid(pid, &status, 0), pid);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 1);
}

TEST(Server, RunsUntilASignalAndLeavesNothingBehind) {
    TemporaryFolder folder;
    const std::string path = folder / "run/server.sock";
    const pid_t pid = fork();
    if (pid == 0) {
        SERVER_options options;
        options.socket.path = path;
        _exit(SERVER_run(options));
    }
    std::optional<wire::End> peer;
    const auto connects = [&] {
        try {
            return peer.emplace(path), true;
        } catch (const std::runtime_error&) {  // it is not there, or does not listen yet
            return false;
        }
    };
    ASSERT_TRUE(wire::until([] { usleep(1000); }, connects));
    peer->send(wire::hello(FRAME_PEER_CLIENT, "CLIENT"));
    ASSERT_TRUE(wire::until([&] { peer->look(); }, [&] { return !peer->frames().empty(); }));

    SERVER_options same;
    same.socket.path = path;
    testing::internal::CaptureStderr();
    EXPECT_EQ(SERVER_run(same), 1);
    EXPECT_THAT(
        testing::internal::GetCapturedStderr(),
        testing::ContainsRegex("^....-..-..T..:..:..Z vesk.server: cannot listen on .*another server"));

    kill(pid, SIGTERM);
    int status = -1;
    ASSERT_EQ(waitpid(pid, &status, 0), pid);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(wire::until([&] { peer->look(); }, [&] { return peer->ended(); }));
    EXPECT_TRUE(std::filesystem::is_empty(folder / "run"));
}

}  // namespace
