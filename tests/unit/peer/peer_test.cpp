// The loop of vesk.peer against a server that is played here, frame by frame.
#include "peer/peer.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <cstdlib>
#include <future>
#include <optional>
#include <string>
#include <vector>

#include "libvesk/support/util.h"
#include "support/wire.h"

namespace {

using testing::HasSubstr;

constexpr int PATIENCE_MS = 10000;

BOOL readable(int fd) {
    pollfd p{fd, POLLIN, 0};
    return poll(&p, 1, PATIENCE_MS) == 1;
}

// The far side of one link: takes the connection, hears messages, says others.
class far_side {
  public:
    explicit far_side(const std::string& path) : listener_(path) {}

    FRAME_bytes take_hello() {
        end_.emplace(listener_.next());
        return next().bytes;
    }
    void send(const FRAME_bytes& bytes) {
        end_->send(bytes);
        end_->write();
        EXPECT_EQ(end_->unsent(), 0u);
    }
    void welcome() { send(wire::welcome()); }
    // All at once: the peer may go after any of them.
    void say(const std::vector<std::pair<NETMSG_type, const char*>>& messages) {
        FRAME_bytes bytes;
        for (const auto& [type, source] : messages) {
            const FRAME_bytes one = wire::message(type, 1, "", 0, source);
            bytes.insert(bytes.end(), one.begin(), one.end());
        }
        send(bytes);
    }
    // "MSG_X 1 dest NET_X 4": the next message, or "end".
    std::string hear() {
        const wire::Seen m = next();
        if (m.kind != FRAME_MESSAGE) return "end";
        return std::string(NETMSG_by_type(m.value)->name) + " " + std::to_string(m.flags) + " " + m.dest +
               " " + m.record + " " + std::to_string(m.payload.size());
    }
    void hang_up() { end_->hang_up(); }

  private:
    // The next line; empty at the end.
    wire::Seen next() {
        auto& frames = end_->frames();
        EXPECT_TRUE(wire::until([&] { end_->look(); }, [&] { return !frames.empty() || end_->ended(); }));
        if (frames.empty()) return {};
        wire::Seen first = std::move(frames.front());
        frames.erase(frames.begin());
        return first;
    }

    wire::Listener listener_;
    std::optional<wire::End> end_;
};

// A peer that runs on a thread of its own, between two pipes.
class PeerLoop : public testing::Test {
  protected:
    PeerLoop() {
        options.host = folder_ / "socket";
        if (pipe(in_) != 0 || pipe(out_) != 0 || !LIBVESK_init("PEER")) std::abort();
    }
    ~PeerLoop() override {
        for (const int fd : {in_[0], in_[1], out_[0], out_[1]})
            if (fd >= 0) close(fd);
    }

    void start() {
        status_ = std::async(std::launch::async, [this] { return PEER_run(options, in_[0], out_[1]); });
    }
    void start_welcomed() {
        start();
        server.take_hello();
        server.welcome();
    }
    void type(std::string_view text) { ASSERT_EQ(write(in_[1], text.data(), text.size()), std::ssize(text)); }
    void end_input() {
        close(in_[1]);
        in_[1] = -1;
    }
    void stop_reading() {
        close(out_[0]);
        out_[0] = -1;
    }
    int status() {
        if (status_.wait_for(std::chrono::milliseconds(PATIENCE_MS)) != std::future_status::ready) {
            UTIL_request_exit();
            ADD_FAILURE() << "the peer goes on";
        }
        return status_.get();
    }
    std::string output_line() {
        std::string line;
        char c = 0;
        while (readable(out_[0]) && read(out_[0], &c, 1) == 1 && c != '\n')
            line += c;
        return line;
    }
    std::string rest_of_output() {
        close(out_[1]);
        out_[1] = -1;
        std::string text(65536, '\0');
        const ssize_t n = read(out_[0], text.data(), text.size());
        text.resize(n > 0 ? static_cast<std::size_t>(n) : 0);
        return text;
    }

    PEER_options options;
    TemporaryFolder folder_;
    far_side server{folder_ / "socket"};

  private:
    int in_[2] = {-1, -1};
    int out_[2] = {-1, -1};
    std::future<int> status_;
};

TEST_F(PeerLoop, WithoutAServerSaysWhereItLooked) {
    options.host = folder_ / "nobody";
    testing::internal::CaptureStderr();
    start();
    EXPECT_EQ(status(), PEER_EXIT_NO_LINK);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "PEER: cannot connect to " + options.host + ": No such file or directory\n");
}

TEST_F(PeerLoop, ARefusalEndsItWithTheReason) {
    options.as = "N11";
    testing::internal::CaptureStderr();
    start();
    EXPECT_EQ(server.take_hello(), wire::hello(FRAME_PEER_INSTRUMENT, "N11"));
    server.send(wire::refusal(FRAME_NAME_TAKEN));
    EXPECT_EQ(status(), PEER_EXIT_NO_LINK);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "PEER: the server refused: name taken\n");
}

TEST_F(PeerLoop, WatchesWithoutInputUntilTheServerGoes) {
    options.monitor = TRUE;
    testing::internal::CaptureStderr();
    start();
    EXPECT_EQ(server.take_hello(), wire::hello(FRAME_PEER_MONITOR, "CLIENT"));
    server.welcome();
    end_input();
    for (const char* source : {"N11", "N12"}) {  // each line comes before the next message
        server.say({{MSG_LOG_FLUSH, source}});
        EXPECT_THAT(output_line(), HasSubstr(std::string("\"src\":\"") + source + '"'));
    }
    server.hang_up();
    EXPECT_EQ(status(), PEER_EXIT_LOST);
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("PEER: "));
}

TEST_F(PeerLoop, PrintsOnlyWhatMatchesAndCountsThat) {
    options.only = {"MSG_NEPH_*", "N1?"};
    options.count = 2;
    start_welcomed();
    server.say({{MSG_LOG_FLUSH, "X"},
                {MSG_NEPH_STATUS, "X"},
                {MSG_TEST_ONE, "N1"},
                {MSG_TEST_TWO, "N12"},
                {MSG_NEPH_ZERO, "X"}});
    EXPECT_EQ(status(), PEER_EXIT_OK);
    EXPECT_THAT(output_line(), HasSubstr("MSG_NEPH_STATUS"));
    EXPECT_THAT(output_line(), HasSubstr("MSG_TEST_TWO"));
    EXPECT_EQ(rest_of_output(), "");
}

TEST_F(PeerLoop, SendsWhatIsRightRefusesWhatIsNotAndEndsWithItsInput) {
    testing::internal::CaptureStderr();
    start_welcomed();
    type(
        "{\"msg\":\"MSG_LOG_FLUSH\"}\n"
        "\n"
        "{\"msg\":\"MSG_LOG_INFO\",\"payload\":{\"foo\":1}}\n"
        "{\"msg\":\"MSG_NOTIFY_CLIENT_TERMINATE\"}\n"
        "{\"msg\":\"MSG_LOG_FLUSH\",\"flags\":4}\n");
    type(std::string(5000, ' ') + "{\"msg\":\"MSG_LOG_SET_STATE\",\"dest\":\"N11\",\"payload\":{}}");
    end_input();
    EXPECT_EQ(server.hear(), "MSG_LOG_FLUSH 1   0");
    EXPECT_EQ(server.hear(), "MSG_LOG_SET_STATE 0 N11 NET_LOG_SetState 1");
    EXPECT_EQ(server.hear(), "end");
    EXPECT_EQ(status(), PEER_EXIT_WRONG_INPUT);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "PEER: line 3: unknown field \"foo\" in NET_LOG_Info\n"
              "PEER: line 4: MSG_NOTIFY_CLIENT_TERMINATE: a type that only the server may send\n"
              "PEER: line 5: MSG_LOG_FLUSH: no destination\n");
}

// The server takes nothing more and goes: the records, 8 KiB each, cannot all have left.
TEST_F(PeerLoop, TellsWhatMayNotHaveBeenSent) {
    testing::internal::CaptureStderr();
    std::string lines;
    for (int i = 0; i < 250; ++i)
        lines += "{\"msg\":\"MSG_LOG_MONITOR\",\"payload\":{}}\n";
    type(lines);
    start_welcomed();
    EXPECT_EQ(server.hear(), "MSG_LOG_MONITOR 1  NET_LOG_MonitorMessage 8204");
    server.hang_up();
    EXPECT_EQ(status(), PEER_EXIT_LOST);
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                HasSubstr("PEER: 250 of 250 messages may not have been sent: "));
}

TEST_F(PeerLoop, AskedToWatchItStaysAfterItsInput) {
    options.count = 1;
    start_welcomed();
    type("{\"msg\":\"MSG_LOG_FLUSH\"}\n");
    end_input();
    EXPECT_EQ(server.hear(), "MSG_LOG_FLUSH 1   0");
    server.say({{MSG_TEST_ONE, "N11"}});
    EXPECT_EQ(status(), PEER_EXIT_OK);
}

TEST_F(PeerLoop, SendsTheLinesOfItsCommandLineAndLeavesStandardInputAlone) {
    options.send = {"{\"msg\":\"MSG_LOG_FLUSH\"}", "{\"msg\":\"MSG_LOG_FLSH\"}",
                    "{\"msg\":\"MSG_TEST_ONE\"}"};
    options.quiet = TRUE;
    testing::internal::CaptureStderr();
    type("{\"msg\":\"MSG_TEST_TWO\"}\n");
    start();
    server.take_hello();
    server.welcome();
    server.say({{MSG_TEST_THREE, "N11"}});
    EXPECT_EQ(server.hear(), "MSG_LOG_FLUSH 1   0");
    EXPECT_EQ(server.hear(), "MSG_TEST_ONE 1   0");
    EXPECT_EQ(server.hear(), "end");
    EXPECT_EQ(status(), PEER_EXIT_WRONG_INPUT);
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                HasSubstr("line 2: unknown message \"MSG_LOG_FLSH\""));
    EXPECT_EQ(rest_of_output(), "") << "quiet";
}

TEST_F(PeerLoop, WaitsForTheAnswerToALineOfItsCommandLine) {
    options.send = {"{\"msg\":\"MSG_LOG_FLUSH\"}"};
    options.only = {"MSG_TEST_*"};
    options.count = 1;
    start_welcomed();
    EXPECT_EQ(server.hear(), "MSG_LOG_FLUSH 1   0");
    server.say({{MSG_TEST_ONE, "N11"}});
    EXPECT_EQ(status(), PEER_EXIT_OK);
    EXPECT_THAT(output_line(), HasSubstr("MSG_TEST_ONE"));
}

TEST_F(PeerLoop, SpeaksForADriverThatHasFallenSilent) {
    options.as = "N11";
    options.silence = 0.1;
    testing::internal::CaptureStderr();
    start_welcomed();
    type("{\"msg\":\"MSG_CPC_3010_STATUS\",\"payload\":{\"have_comms\":true}}\n");
    EXPECT_EQ(server.hear(), "MSG_CPC_3010_STATUS 1  NET_CPC_3010_Status 4");
    EXPECT_EQ(server.hear(), "MSG_CPC_3010_STATUS 7  NET_CPC_3010_Status 4");
    type("{\"msg\":\"MSG_LOG_FLUSH\"}\n");
    EXPECT_EQ(server.hear(), "MSG_CPC_3010_STATUS 1  NET_CPC_3010_Status 4") << "as the driver said it last";
    EXPECT_EQ(server.hear(), "MSG_LOG_FLUSH 1   0");
    end_input();
    EXPECT_EQ(status(), PEER_EXIT_OK);
    EXPECT_THAT(
        testing::internal::GetCapturedStderr(),
        HasSubstr("PEER: no line for 0.1 s: reporting lost communications\nPEER: lines come again\n"));
}

TEST_F(PeerLoop, AnInstrumentEndsWithItsInputEvenWhenThatIsEmpty) {
    options.as = "N11";
    start_welcomed();
    end_input();
    EXPECT_EQ(server.hear(), "end");
    EXPECT_EQ(status(), PEER_EXIT_OK);
}

TEST_F(PeerLoop, InputMayBeAFile) {
    const std::string path = folder_ / "lines";
    const int file = open(path.c_str(), O_RDWR | O_CREAT, 0600);
    const std::string_view line = "{\"msg\":\"MSG_LOG_FLUSH\"}\n";
    for (int i = 0; i < 2000; ++i)
        ASSERT_EQ(write(file, line.data(), line.size()), std::ssize(line));
    lseek(file, 0, SEEK_SET);
    auto ended = std::async(std::launch::async, [&] { return PEER_run(options, file, STDERR_FILENO); });
    server.take_hello();
    server.welcome();
    int heard = 0;
    while (server.hear() != "end")
        ++heard;
    EXPECT_EQ(heard, 2000);
    EXPECT_EQ(ended.get(), PEER_EXIT_OK);
    close(file);
}

TEST_F(PeerLoop, InputThatCannotBeReadIsAnError) {
    const int directory = open((folder_ / "").c_str(), O_RDONLY);
    testing::internal::CaptureStderr();
    options.as = "N11";
    auto ended = std::async(std::launch::async, [&] { return PEER_run(options, directory, STDERR_FILENO); });
    server.take_hello();
    server.welcome();
    EXPECT_EQ(ended.get(), PEER_EXIT_WRONG_INPUT);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "PEER: cannot read standard input: Is a directory\n");
    close(directory);
}

TEST_F(PeerLoop, TimeoutHasItsOwnStatus) {
    options.timeout = 0.05;
    start_welcomed();
    EXPECT_EQ(status(), PEER_EXIT_TIMEOUT);
}

TEST_F(PeerLoop, EndsQuietlyWhenNobodyReadsItsOutput) {
    testing::internal::CaptureStderr();
    start_welcomed();
    server.say({{MSG_TEST_ONE, "N11"}});
    output_line();
    stop_reading();
    EXPECT_EQ(status(), PEER_EXIT_OK);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(PeerLoop, AnExitSignalEndsIt) {
    start_welcomed();
    UTIL_request_exit();
    EXPECT_EQ(status(), PEER_EXIT_OK);
    UTIL_request_exit(FALSE);
}

}  // namespace
