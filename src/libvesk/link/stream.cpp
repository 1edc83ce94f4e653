// Reading and writing of one socket. Handlers keep the stream alive; a closed one has no owner any more.
#include "libvesk/link/stream.h"

#include <linux/sockios.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <asio/ip/tcp.hpp>
#include <chrono>

namespace {

using steady = std::chrono::steady_clock;

BOOL is_local(int fd) {
    int family = AF_UNIX;
    socklen_t size = sizeof family;
    return getsockopt(fd, SOL_SOCKET, SO_DOMAIN, &family, &size) != 0 || family == AF_UNIX;
}

std::size_t unacknowledged(int fd) {
    int bytes = 0;
    return ioctl(fd, SIOCOUTQ, &bytes) == 0 && bytes > 0 ? static_cast<std::size_t>(bytes) : 0;
}

// Reads and forgets what the other side says until it has closed, or the time is over.
void read_to_the_end(int fd, steady::time_point deadline) {
    std::array<char, 16384> unread;
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - steady::now());
        if (left.count() <= 0) return;
        pollfd p{fd, POLLIN, 0};
        if (poll(&p, 1, static_cast<int>(left.count())) > 0 &&
            recv(fd, unread.data(), unread.size(), MSG_DONTWAIT) <= 0)
            return;
    }
}

}  // namespace

STREAM::STREAM(socket_type socket, owner* listener, std::shared_ptr<std::pmr::memory_resource> memory)
    : memory_(std::move(memory)),
      socket_(std::move(socket)),
      owner_(listener),
      reader_(memory_ ? memory_.get() : std::pmr::get_default_resource()),
      queue_(memory_ ? memory_.get() : std::pmr::get_default_resource()) {
    asio::error_code ignored;  // a local socket has no such option
    socket_.set_option(asio::ip::tcp::no_delay(true), ignored);
    socket_.non_blocking(true, ignored);
}

void STREAM::read() {
    if (reading_ || owner_ == nullptr) return;
    reading_ = true;
    reader_.park();
    socket_.async_wait(socket_type::wait_read,
                       [self = shared_from_this()](const asio::error_code& error) { self->readable(error); });
}

void STREAM::readable(const asio::error_code& error) {
    reading_ = false;
    if (owner_ == nullptr) return;
    if (error) return end(error);
    const auto space = reader_.space();
    asio::error_code failed;
    const std::size_t n = socket_.read_some(asio::buffer(space.data(), space.size()), failed);
    if (failed == asio::error::would_block) return read();
    if (failed) return end(failed);
    reader_.commit(n);
    owner_->stream_received();
}

void STREAM::end(const asio::error_code& error) {
    owner* const gone = std::exchange(owner_, nullptr);
    gone->stream_ended(error == asio::error::eof ? "the other side closed the connection" : error.message());
}

// A failed write does not end the stream: what the other side said before it went can still be read, and the
// reading side then learns of the end.
void STREAM::flush() {
    if (write_failed_) queue_.clear();
    if (writing_ || write_failed_ || owner_ == nullptr) return;
    asio::error_code error = write();
    if (error == asio::error::would_block) {
        writing_ = true;
        socket_.async_wait(socket_type::wait_write,
                           [self = shared_from_this()](const asio::error_code& e) { self->writable(e); });
        return;
    }
    if (error) {
        write_failed_ = true;
        queue_.clear();
    } else if (std::exchange(finishing_, false)) {
        socket_.shutdown(socket_type::shutdown_send, error);
    }
}

// A socket that took a part is full: it is not asked again before it says so.
asio::error_code STREAM::write() {
    std::array<FRAME_span, OUTQUEUE::PIECES> pieces;
    std::array<asio::const_buffer, OUTQUEUE::PIECES> buffers;
    asio::error_code error;
    while (!queue_.empty() && !error) {
        const std::size_t count = queue_.front(pieces);
        std::size_t offered = 0;
        for (std::size_t i = 0; i < count; ++i) {
            buffers[i] = asio::buffer(pieces[i].data(), pieces[i].size());
            offered += pieces[i].size();
        }
        const std::size_t n = socket_.write_some(std::span(buffers).first(count), error);
        queue_.consume(n);
        if (!error && n < offered) error = asio::error::would_block;
    }
    return error;
}

void STREAM::writable(const asio::error_code& error) {
    writing_ = false;
    if (owner_ == nullptr || error == asio::error::operation_aborted) return;
    flush();
    owner_->stream_sent();
}

void STREAM::finish() {
    finishing_ = true;
    flush();
}

void STREAM::close() {
    owner_ = nullptr;
    asio::error_code ignored;
    socket_.close(ignored);
    queue_.clear();
}

// Closed with something unread, a TCP connection is reset and forgets what is on its way: so the other side
// is told that nothing more comes, and what it says is read until it has closed too.
void STREAM::part(double seconds) {
    if (!is_local(fd()) && unacknowledged(fd()) > 0) {
        const auto patience = std::chrono::duration<double>(seconds);
        shutdown(fd(), SHUT_WR);
        read_to_the_end(fd(), steady::now() + std::chrono::duration_cast<steady::duration>(patience));
    }
    close();
}

std::size_t STREAM::on_the_way() {
    return unacknowledged(fd());
}

bool STREAM::hung_up() {
    pollfd p{socket_.native_handle(), POLLRDHUP, 0};
    return poll(&p, 1, 0) == 1 && (p.revents & (POLLRDHUP | POLLHUP | POLLERR)) != 0;
}
