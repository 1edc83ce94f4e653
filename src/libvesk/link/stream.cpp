// Reading and writing of one socket. Handlers keep the stream alive; a closed one has no owner any more.
#include "libvesk/link/stream.h"

#include <linux/sockios.h>
#include <poll.h>
#include <sys/ioctl.h>

#include <asio/ip/tcp.hpp>

namespace {

std::array<asio::const_buffer, OUTQUEUE::PIECES> buffers(const OUTQUEUE::pieces& pieces) {
    std::array<asio::const_buffer, OUTQUEUE::PIECES> out;
    for (std::size_t i = 0; i < pieces.size(); ++i)
        out[i] = asio::buffer(pieces[i].data(), pieces[i].size());
    return out;
}

}  // namespace

STREAM::STREAM(socket_type socket, owner* listener) : socket_(std::move(socket)), owner_(listener) {
    asio::error_code ignored;  // a local socket has no such option
    socket_.set_option(asio::ip::tcp::no_delay(true), ignored);
}

void STREAM::read() {
    if (reading_ || owner_ == nullptr) return;
    reading_ = true;
    const auto space = reader_.space();
    socket_.async_read_some(asio::buffer(space.data(), space.size()),
                            [self = shared_from_this()](const asio::error_code& error, std::size_t n) {
                                self->received(error, n);
                            });
}

void STREAM::received(const asio::error_code& error, std::size_t n) {
    reading_ = false;
    if (owner_ == nullptr) return;
    if (error) {
        owner* const gone = std::exchange(owner_, nullptr);
        gone->stream_ended(error == asio::error::eof ? "the other side closed the connection"
                                                     : error.message());
        return;
    }
    reader_.commit(n);
    owner_->stream_received();
}

void STREAM::append(FRAME_span bytes) {
    if (!write_failed_) queue_.append(bytes);
}

void STREAM::flush() {
    if (writing_ || write_failed_ || owner_ == nullptr) return;
    if (queue_.empty()) {
        asio::error_code ignored;
        if (std::exchange(finishing_, false)) socket_.shutdown(socket_type::shutdown_send, ignored);
        return;
    }
    writing_ = true;
    socket_.async_write_some(
        buffers(queue_.front()),
        [self = shared_from_this()](const asio::error_code& error, std::size_t n) { self->sent(error, n); });
}

// A failed write does not end the stream: what the other side said before it went can still be read, and the
// reading side then learns of the end.
void STREAM::sent(const asio::error_code& error, std::size_t n) {
    writing_ = false;
    if (owner_ == nullptr) return;
    if (error) {
        write_failed_ = true;
        queue_.clear();
    } else {
        queue_.consume(n);
        flush();
    }
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
}

std::size_t STREAM::on_the_way() {
    int bytes = 0;
    return ioctl(socket_.native_handle(), SIOCOUTQ, &bytes) == 0 && bytes > 0
               ? static_cast<std::size_t>(bytes)
               : 0;
}

bool STREAM::hung_up() {
    pollfd p{socket_.native_handle(), POLLRDHUP, 0};
    return poll(&p, 1, 0) == 1 && (p.revents & (POLLRDHUP | POLLHUP | POLLERR)) != 0;
}
