// Fan-out of one sender to many readers: deliveries per second through vesk.server, and how long one message
// takes to each of them, beside a raw relay that only copies bytes from socket to sockets, and beside the
// broker mosquitto (QoS 0) when that is installed.
// One load program drives them all, with the same payloads, in one run, so that the ratios hold on any
// machine.
//
//   hub_bench [SECONDS_PER_ROW]
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "libvesk/link/frame.h"
#include "libvesk/messages/netmsg.h"
#include "table.h"

namespace {

using steady = std::chrono::steady_clock;
using seconds = std::chrono::duration<double>;

// The record in the table of messages that is nearest to 600 bytes.
constexpr NETMSG_type MESSAGE = MSG_COMMON_NEPH_SPANCHECK_RESULTS;
constexpr std::size_t BATCH = 64;  // messages per write of the sender
constexpr int ROUND_TRIPS = 2000;
constexpr std::uint16_t FIRST_PORT = 18375;

std::string g_folder;

[[noreturn]] void die(const std::string& what) {
    std::fprintf(stderr, "hub_bench: %s: %s\n", what.c_str(), std::strerror(errno));
    std::exit(1);
}

// ---- sockets
// -------------------------------------------------------------------------------------------------

struct place {
    std::string path;  // or
    std::uint16_t port = 0;
};

int try_connect(const place& where) {
    int fd = -1;
    int result = -1;
    if (!where.path.empty()) {
        sockaddr_un a{};
        a.sun_family = AF_UNIX;
        where.path.copy(a.sun_path, sizeof a.sun_path - 1);
        fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        result = connect(fd, reinterpret_cast<const sockaddr*>(&a), sizeof a);
    } else {
        sockaddr_in a{};
        a.sin_family = AF_INET;
        a.sin_port = htons(where.port);
        a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        const int on = 1;
        setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        result = connect(fd, reinterpret_cast<const sockaddr*>(&a), sizeof a);
    }
    if (result == 0) return fd;
    close(fd);
    return -1;
}

// A server that was just started needs a moment; -1 when it never answers.
int connect_patiently(const place& where) {
    const auto deadline = steady::now() + std::chrono::seconds(3);
    for (;;) {
        const int fd = try_connect(where);
        if (fd >= 0 || steady::now() > deadline) return fd;
        poll(nullptr, 0, 10);
    }
}

bool write_all(int fd, FRAME_span bytes) {
    while (!bytes.empty()) {
        const ssize_t n = send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        bytes = bytes.subspan(static_cast<std::size_t>(n));
    }
    return true;
}

void read_exactly(int fd, std::size_t n) {
    std::byte buffer[256];
    while (n > 0) {
        const ssize_t got = recv(fd, buffer, std::min(n, sizeof buffer), 0);
        if (got <= 0) die("handshake");
        n -= static_cast<std::size_t>(got);
    }
}

FRAME_span bytes_of(const std::string& text) {
    return std::as_bytes(std::span(text.data(), text.size()));
}

// ---- contestants
// ---------------------------------------------------------------------------------------------

struct contestant {
    const char* name;
    place where;
    std::function<void()> serve;           // in a process of its own
    std::function<void(int)> join_sender;  // handshakes
    std::function<void(int)> join_reader;
    FRAME_bytes message;  // as sent, and as every reader receives it
};

void say_hello(int fd, FRAME_peer_kind kind, const char* name) {
    FRAME_bytes hello;
    FRAME_encode_hello(&hello, {FRAME_VERSION, kind, name});
    if (!write_all(fd, hello)) die("hello");
    read_exactly(fd, FRAME_HEAD);
}

FRAME_bytes payload() {
    return FRAME_bytes(NETMSG_by_type(MESSAGE)->dsd->total_size, std::byte{'x'});
}

contestant hub(const char* name, const place& where) {
    FRAME_bytes message;
    const FRAME_bytes content = payload();
    FRAME_encode_message(&message, {MESSAGE, 0, "S11", "CLIENT", NETMSG_by_type(MESSAGE)->ds_tie, content});
    const auto serve = [where] {
        const std::string listen = "127.0.0.1:" + std::to_string(where.port);
        const std::string socket = g_folder + "/hub.sock";
        if (std::freopen("/dev/null", "w", stderr) == nullptr) die("/dev/null");  // its log
        execl(SERVER_PROGRAM, "vesk.server", "--socket", socket.c_str(),
              where.port != 0 ? "--listen" : nullptr, listen.c_str(), nullptr);
        die(SERVER_PROGRAM);
    };
    return {name,
            where,
            serve,
            [](int fd) { say_hello(fd, FRAME_PEER_INSTRUMENT, "S11"); },
            [](int fd) { say_hello(fd, FRAME_PEER_CLIENT, "CLIENT"); },
            message};
}

// The last to connect is the sender; all before it read.
[[noreturn]] void relay_forever(int listener, std::size_t readers) {
    std::vector<int> fds;
    while (fds.size() < readers + 1)
        fds.push_back(accept(listener, nullptr, nullptr));
    std::vector<std::byte> buffer(128 * 1024);
    for (;;) {
        const ssize_t n = recv(fds.back(), buffer.data(), buffer.size(), 0);
        if (n <= 0) _exit(0);
        for (std::size_t i = 0; i < readers; ++i)
            if (!write_all(fds[i], {buffer.data(), static_cast<std::size_t>(n)})) _exit(0);
    }
}

contestant relay(std::size_t readers) {
    const place where{g_folder + "/relay.sock", 0};
    const auto serve = [where, readers] {
        sockaddr_un a{};
        a.sun_family = AF_UNIX;
        where.path.copy(a.sun_path, sizeof a.sun_path - 1);
        unlink(a.sun_path);
        const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
        if (bind(fd, reinterpret_cast<const sockaddr*>(&a), sizeof a) != 0 || listen(fd, 128) != 0)
            die("relay");
        relay_forever(fd, readers);
    };
    const auto nothing = [](int) {};
    return {"raw relay, unix socket", where, serve, nothing, nothing, payload()};
}

// Just enough of MQTT 3.1.1, so that no client library stands between the load and the broker. Sending every
// message at once makes it prompt and costs it throughput: it is run either way, for what that is good for.
contestant broker(bool prompt) {
    using std::string_literals::operator""s;
    const place where{"", FIRST_PORT + 1};
    const FRAME_bytes content = payload();
    const auto remaining = 3 + content.size();
    FRAME_bytes message{std::byte{0x30},
                        std::byte(0x80 | (remaining & 0x7f)),
                        std::byte(remaining >> 7),
                        std::byte{0},
                        std::byte{1},
                        std::byte{'t'}};
    message.insert(message.end(), content.begin(), content.end());
    const auto serve = [where, prompt] {
        const std::string file = g_folder + "/mosquitto.conf";
        std::ofstream(file) << "listener " << where.port
                            << " 127.0.0.1\nallow_anonymous true\nlog_type none\nset_tcp_nodelay "
                            << (prompt ? "true\n" : "false\n");
        execlp("mosquitto", "mosquitto", "-c", file.c_str(), nullptr);
        execl("/usr/sbin/mosquitto", "mosquitto", "-c", file.c_str(), nullptr);
        _exit(1);
    };
    const auto join = [](int fd) {
        static int number = 100;
        const std::string id = std::to_string(number++);
        if (!write_all(fd, bytes_of("\x10\x0f\x00\x04MQTT\x04\x02\x00\x00\x00\x03"s + id))) die("broker");
        read_exactly(fd, 4);
    };
    const auto subscribe = [join](int fd) {
        join(fd);
        if (!write_all(fd, bytes_of("\x82\x06\x00\x01\x00\x01t\x00"s))) die("broker");
        read_exactly(fd, 5);
    };
    return {"mosquitto, TCP", where, serve, join, subscribe, message};
}

// ---- the load
// ------------------------------------------------------------------------------------------------

struct counts {
    std::atomic<std::size_t> received{0};  // bytes, by all readers
    std::atomic<std::size_t> sent{0};      // messages
    std::atomic<bool> stop_sending{false};
    std::atomic<bool> stop_reading{false};
};

void read_all(const std::vector<int>& fds, counts* c) {
    std::vector<std::byte> buffer(256 * 1024);
    std::vector<pollfd> polled;
    for (const int fd : fds)
        polled.push_back({fd, POLLIN, 0});
    while (!c->stop_reading) {
        if (poll(polled.data(), polled.size(), 100) <= 0) continue;
        for (const pollfd& p : polled) {
            if (p.revents == 0) continue;
            const ssize_t n = recv(p.fd, buffer.data(), buffer.size(), MSG_DONTWAIT);
            if (n > 0) c->received += static_cast<std::size_t>(n);
        }
    }
}

void send_all(int fd, const FRAME_bytes& message, counts* c) {
    FRAME_bytes batch;
    for (std::size_t i = 0; i < BATCH; ++i)
        batch.insert(batch.end(), message.begin(), message.end());
    while (!c->stop_sending && write_all(fd, batch))
        c->sent += BATCH;
}

// Until nothing has come for half a second.
void drain(counts* c) {
    for (std::size_t before = c->received + 1; c->received != before;) {
        before = c->received;
        poll(nullptr, 0, 500);
    }
}

struct result {
    double rate = 0;    // deliveries per second
    double lost = 0;    // per cent of what was due
    double median = 0;  // microseconds from the sender's write to a reader
    double slow = 0;    // the same for one delivery in a hundred
};

// One message at a time, the next when every reader has it.
void latency(const contestant& who, int sender, const std::vector<int>& readers, result* r) {
    std::vector<double> times;
    std::vector<std::byte> buffer(64 * 1024);
    for (int i = 0; i < ROUND_TRIPS; ++i) {
        std::vector<pollfd> waiting;
        std::vector<std::size_t> missing(readers.size(), who.message.size());
        for (const int fd : readers)
            waiting.push_back({fd, POLLIN, 0});
        const auto began = steady::now();
        if (!write_all(sender, who.message)) die("latency");
        for (std::size_t left = readers.size(); left > 0;) {
            if (poll(waiting.data(), waiting.size(), 5000) <= 0) die("a message did not arrive");
            for (std::size_t n = 0; n < readers.size(); ++n) {
                if (waiting[n].revents == 0) continue;
                const ssize_t got = recv(waiting[n].fd, buffer.data(), buffer.size(), MSG_DONTWAIT);
                if (got > 0) missing[n] -= static_cast<std::size_t>(got);
                if (missing[n] > 0) continue;
                times.push_back(seconds(steady::now() - began).count() * 1e6);
                waiting[n].fd = -1;
                --left;
            }
        }
    }
    std::sort(times.begin(), times.end());
    r->median = times[times.size() / 2];
    r->slow = times[times.size() * 99 / 100];
}

void load(const contestant& who, int sender, const std::vector<int>& readers, double duration, result* r) {
    counts c;
    std::thread reading(read_all, std::cref(readers), &c);
    std::thread sending(send_all, sender, std::cref(who.message), &c);
    std::this_thread::sleep_for(seconds(0.3));  // what fills the buffers at first is not counted
    const auto began = steady::now();
    const std::size_t before = c.received;
    std::this_thread::sleep_for(seconds(duration));
    const std::size_t after = c.received;
    const seconds took = steady::now() - began;

    c.stop_sending = true;
    sending.join();
    drain(&c);
    c.stop_reading = true;
    reading.join();
    const auto size = static_cast<double>(who.message.size());
    const double due = static_cast<double>(c.sent) * static_cast<double>(readers.size()) * size;
    r->rate = static_cast<double>(after - before) / size / took.count();
    r->lost = 100.0 * (1.0 - static_cast<double>(c.received) / due);
}

// Nothing when the contestant is not there.
result run(const contestant& who, std::size_t count, double duration) {
    const pid_t pid = fork();
    if (pid == 0) who.serve();
    std::vector<int> readers;
    int sender = -1;
    for (std::size_t i = 0; i <= count; ++i) {
        sender = connect_patiently(who.where);
        if (sender < 0) break;
        (i < count ? who.join_reader : who.join_sender)(sender);
        if (i < count) readers.push_back(sender);
    }
    result r;
    if (sender >= 0) {
        latency(who, sender, readers, &r);
        load(who, sender, readers, duration, &r);
    }
    for (const int fd : readers)
        close(fd);
    close(sender);
    kill(pid, SIGTERM);
    waitpid(pid, nullptr, 0);
    return r;
}

std::string quotient(double a, double b) {
    return b > 0 ? TABLE_number(a / b, 2) : "-";
}

void show_rates(const std::string& what, const result& hub, const result& broker, const result& raw) {
    const std::string measured = TABLE_number(hub.rate) + "/s";
    if (broker.rate > 0)
        TABLE_row(what, measured, "mosquitto " + TABLE_number(broker.rate) + "/s",
                  quotient(hub.rate, broker.rate), "at least 5");
    TABLE_row(what, measured, "raw relay " + TABLE_number(raw.rate) + "/s", quotient(hub.rate, raw.rate),
              "at least 0.25");
    if (hub.lost > 0.001) TABLE_row(what + ", lost", TABLE_number(hub.lost, 3) + " %");
}

void show_latency(const std::string& what, const result& hub, const result& broker, const result& raw) {
    const auto text = [](const result& r) {
        return TABLE_number(r.median, 1) + " us (1 in 100: " + TABLE_number(r.slow, 1) + ")";
    };
    if (broker.rate > 0)
        TABLE_row(what, text(hub), "mosquitto " + text(broker), quotient(hub.median, broker.median));
    TABLE_row(what, text(hub), "raw relay " + text(raw), quotient(hub.median, raw.median));
}

void compare(std::size_t readers, double duration) {
    const result raw = run(relay(readers), readers, duration);
    result other = run(broker(false), readers, duration);
    const result prompt = run(broker(true), readers, duration);
    if (prompt.median < other.median) {
        other.median = prompt.median;
        other.slow = prompt.slow;
    }
    other.rate = std::max(other.rate, prompt.rate);
    const result local = run(hub("vesk.server", {g_folder + "/hub.sock", 0}), readers, duration);
    const result tcp = run(hub("vesk.server", {"", FIRST_PORT}), readers, duration);
    const std::string to = " to " + std::to_string(readers) + (readers == 1 ? " reader" : " readers");
    show_rates("deliveries" + to, local, other, raw);
    show_rates("deliveries" + to + ", TCP", tcp, other, raw);
    show_latency("latency" + to, local, other, raw);
    show_latency("latency" + to + ", TCP", tcp, other, raw);
}

}  // namespace

int main(int argc, char** argv) {
    const double duration = argc > 1 ? std::atof(argv[1]) : 3.0;
    char folder[] = "/tmp/hub_bench.XXXXXX";
    if (mkdtemp(folder) == nullptr) die("folder");
    g_folder = folder;
    for (const std::size_t readers : {1, 8, 64})
        compare(readers, duration);
    std::filesystem::remove_all(g_folder);
    return 0;
}
