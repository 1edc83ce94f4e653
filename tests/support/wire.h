// One end of a socket spoken to in frames, or in bytes that no program of ours would send: the raw peer of a
// server under test, the raw server of a link under test. Nothing blocks; tests go round in until().
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "libvesk/link/frame.h"
#include "libvesk/messages/netmsg.h"
#include "support/folder.h"

namespace wire {

// Goes round until `done` says so; false when that does not happen for a long while.
template <class ROUND, class DONE>
[[nodiscard]] bool until(ROUND round, DONE done) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!done()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        round();
    }
    return true;
}

// A frame as a test looks at it; of a message also what it carries.
struct Seen {
    int kind = 0;
    int detail = 0;
    int value = 0;
    std::string text;  // of a refusal
    DWORD flags = 0;
    std::string source;
    std::string dest;
    std::string record;
    FRAME_bytes payload;
    FRAME_bytes bytes;  // the frame as it came
};

inline Seen seen(const FRAME& f) {
    Seen s{f.kind, f.detail, f.value, {}, 0, {}, {}, {}, {}, {f.bytes.begin(), f.bytes.end()}};
    if (f.kind == FRAME_REFUSAL) s.text = FRAME_decode_refusal(f).value().text;
    if (f.kind != FRAME_MESSAGE) return s;
    const FRAME_message m = FRAME_decode_message(f).value();
    s.flags = m.flags;
    s.source = m.source;
    s.dest = m.dest;
    s.record = m.record;
    s.payload.assign(m.payload.begin(), m.payload.end());
    return s;
}

// A message with the payload that its type is tied to, every byte of it `fill`.
inline FRAME_bytes message(NETMSG_type type, DWORD flags, const std::string& dest = "", BYTE fill = 0,
                           const std::string& source = "") {
    const NETMSG_entry* entry = NETMSG_by_type(type);
    const FRAME_bytes payload(entry->dsd != nullptr ? entry->dsd->total_size : 0, std::byte{fill});
    FRAME_bytes out;
    FRAME_encode_message(&out, {type, flags, source, dest, entry->ds_tie, payload});
    return out;
}

inline FRAME_bytes hello(FRAME_peer_kind kind, const std::string& name,
                         std::uint16_t version = FRAME_VERSION) {
    FRAME_bytes out;
    FRAME_encode_hello(&out, {version, kind, name});
    return out;
}

inline FRAME_bytes welcome() {
    FRAME_bytes out;
    FRAME_encode_welcome(&out);
    return out;
}
inline FRAME_bytes heartbeat() {
    FRAME_bytes out;
    FRAME_encode_heartbeat(&out);
    return out;
}
inline FRAME_bytes refusal(BYTE reason, const std::string& text = "") {
    FRAME_bytes out;
    FRAME_encode_refusal(&out, {reason, FRAME_VERSION, text});
    return out;
}

inline sockaddr_un address(const std::string& path) {
    sockaddr_un a{};
    a.sun_family = AF_UNIX;
    path.copy(a.sun_path, sizeof a.sun_path - 1);
    return a;
}

class End {
  public:
    explicit End(int fd) : fd_(fd) {
        if (fd < 0) throw std::runtime_error("no socket");
        fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) | O_NONBLOCK);
    }
    explicit End(const std::string& path) : End(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        const sockaddr_un a = address(path);
        if (connect(fd_, reinterpret_cast<const sockaddr*>(&a), sizeof a) != 0)
            throw std::runtime_error("connect");
    }
    ~End() { hang_up(); }
    End(End&& other) noexcept
        : fd_(std::exchange(other.fd_, -1)),
          reader_(std::move(other.reader_)),
          unsent_(std::move(other.unsent_)) {}
    End& operator=(End&&) = delete;

    // Queues bytes; they leave as the socket takes them, in look().
    void send(FRAME_span bytes) { unsent_.insert(unsent_.end(), bytes.begin(), bytes.end()); }
    void send(const std::string& bytes) { send(std::as_bytes(std::span(bytes.data(), bytes.size()))); }
    [[nodiscard]] std::size_t unsent() const { return unsent_.size(); }

    void write() {
        const ssize_t n = unsent_.empty() ? 0 : ::send(fd_, unsent_.data(), unsent_.size(), MSG_NOSIGNAL);
        if (n > 0) unsent_.erase(unsent_.begin(), unsent_.begin() + n);
    }
    // Writes and reads what can be; what arrived joins frames(). Whether anything came.
    bool look() {
        write();
        const auto space = reader_.space();
        const ssize_t n = recv(fd_, space.data(), space.size(), 0);
        if (n > 0) reader_.commit(static_cast<std::size_t>(n));
        if (n == 0 || (n < 0 && errno != EAGAIN)) ended_ = true;
        FRAME f;
        while (reader_.next(&f) == FRAME_READY)
            if (f.kind != FRAME_HEARTBEAT) {
                frames_.push_back(seen(f));
            } else {
                ++heartbeats_;
            }
        return n > 0;
    }
    // Takes up to `most` bytes off the socket without looking at them.
    std::size_t skip(std::size_t most) {
        FRAME_bytes buffer(most);
        const ssize_t n = recv(fd_, buffer.data(), buffer.size(), 0);
        return n > 0 ? static_cast<std::size_t>(n) : 0;
    }
    [[nodiscard]] std::vector<Seen>& frames() { return frames_; }
    [[nodiscard]] int heartbeats() const { return heartbeats_; }
    [[nodiscard]] bool ended() const { return ended_; }
    void hang_up() {
        if (fd_ >= 0) close(fd_);
        fd_ = -1;
    }

  private:
    int fd_;
    FRAME_reader reader_;
    FRAME_bytes unsent_;
    std::vector<Seen> frames_;
    int heartbeats_ = 0;
    bool ended_ = false;
};

// Listens at a path, as the servers do that tests play.
class Listener {
  public:
    explicit Listener(const std::string& path) : fd_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        const sockaddr_un a = address(path);
        if (bind(fd_, reinterpret_cast<const sockaddr*>(&a), sizeof a) != 0 || listen(fd_, 4) != 0)
            throw std::runtime_error("cannot listen at " + path);
    }
    ~Listener() { close(fd_); }
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    // The next connection; throws when none comes for a long while.
    [[nodiscard]] End next() const {
        pollfd p{fd_, POLLIN, 0};
        return End(poll(&p, 1, 20000) == 1 ? accept(fd_, nullptr, nullptr) : -1);
    }

  private:
    int fd_;
};

}  // namespace wire
