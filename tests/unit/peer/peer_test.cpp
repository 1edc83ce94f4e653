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

#include "libvesk/util.h"
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
    explicit far_side(const std::string& path) : m_listener(path) {}

    FRAME_bytes take_hello() {
        m_end.emplace(m_listener.next());
        return next().bytes;
    }
    void send(const FRAME_bytes& bytes) {
        m_end->send(bytes);
        m_end->write();
        EXPECT_EQ(m_end->unsent(), 0u);
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
    void hang_up() { m_end->hang_up(); }

  private:
    // What comes next; empty at the end.
    wire::Seen next() {
        auto& frames = m_end->frames();
        EXPECT_TRUE(wire::until([&] { m_end->look(); }, [&] { return !frames.empty() || m_end->ended(); }));
        if (frames.empty()) return {};
        wire::Seen first = std::move(frames.front());
        frames.erase(frames.begin());
        return first;
    }

    wire::Listener m_listener;
    std::optional<wire::End> m_end;
};

// A peer that runs on a thread of its own, between two pipes.
class PeerLoop : public testing::Test {
  protected:
    PeerLoop() {
        options.host = m_folder / "socket";
        if (pipe(m_in) != 0 || pipe(m_out) != 0 || !LIBVESK_init("PEER")) std::abort();
    }
    ~PeerLoop() override {
        for (const int fd : {m_in[0], m_in[1], m_out[0], m_out[1]})
            if (fd >= 0) close(fd);
    }

    void start() {
        m_status = std::async(std::launch::async, [this] { return PEER_run(options, m_in[0], m_out[1]); });
    }
    void start_welcomed() {
        start();
        server.take_hello();
        server.welcome();
    }
    void type(std::string_view text) {
        ASSERT_EQ(write(m_in[1], text.data(), text.size()), std::ssize(text));
    }
    void end_input() {
        close(m_in[1]);
        m_in[1] = -1;
    }
    void stop_reading() {
        close(m_out[0]);
        m_out[0] = -1;
    }
    int status() {
        if (m_status.wait_for(std::chrono::milliseconds(PATIENCE_MS)) != std::future_status::ready) {
            UTIL_request_exit();
            ADD_FAILURE() << "the peer goes on";
        }
        return m_status.get();
    }
    std::string output_line() {
        std::string line;
        char c = 0;
        while (readable(m_out[0]) && read(m_out[0], &c, 1) == 1 && c != '\n')
            line += c;
        return line;
    }
    std::string rest_of_output() {
        close(m_out[1]);
        m_out[1] = -1;
        std::string text(65536, '\0');
        const ssize_t n = read(m_out[0], text.data(), text.size());
        text.resize(n > 0 ? static_cast<std::size_t>(n) : 0);
        return text;
    }

    PEER_options options;
    TemporaryFolder m_folder;
    far_side server{m_folder / "socket"};

  private:
    int m_in[2] = {-1, -1};
    int m_out[2] = {-1, -1};
    std::future<int> m_status;
};

TEST_F(PeerLoop, WithoutAServerSaysWhereItLooked) {
    options.host = m_folder / "nobody";
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
    EXPECT_EQ(status(), PEER_EXIT_REFUSED_LINES);
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

TEST_F(PeerLoop, AnInstrumentEndsWithItsInputEvenWhenThatIsEmpty) {
    options.as = "N11";
    start_welcomed();
    end_input();
    EXPECT_EQ(server.hear(), "end");
    EXPECT_EQ(status(), PEER_EXIT_OK);
}

TEST_F(PeerLoop, InputMayBeAFile) {
    const std::string path = m_folder / "lines";
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
