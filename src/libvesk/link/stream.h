// One connected socket with the framing on it: bytes in through a frame reader, bytes out through an output
// queue, one read and one write under way at most. Both ends of every link are built on it.
#pragma once

#include "libvesk/link/asio_config.h"  // first

#include <asio/generic/stream_protocol.hpp>
#include <memory>
#include <string>

#include "libvesk/link/frame.h"
#include "libvesk/link/outqueue.h"

class STREAM : public std::enable_shared_from_this<STREAM> {
  public:
    using socket_type = asio::generic::stream_protocol::socket;

    // Called from the io_context only, never from within a call of this class.
    class owner {
      public:
        virtual void stream_received() = 0;  // bytes came: take frames from reader(), then read() for more
        virtual void stream_sent() = 0;      // the queue became shorter
        virtual void stream_ended(const std::string& why) = 0;  // nothing more will come; once
      protected:
        ~owner() = default;
    };

    STREAM(socket_type socket, owner* listener);

    [[nodiscard]] FRAME_reader& reader() { return reader_; }
    void read();

    void append(FRAME_span bytes);
    // Starts writing what was appended, unless a write is under way, which then goes on with it.
    void flush();
    // Bytes that have left the queue but not reached the other side's hands yet; 0 where that cannot be told.
    [[nodiscard]] std::size_t on_the_way();
    [[nodiscard]] std::size_t queued() const { return queue_.size(); }

    // Tells the other side that nothing more comes; what is queued leaves first.
    void finish();
    // Ends it now: the owner hears nothing more.
    void close();
    // The other side has closed its end, though bytes of it may still be unread.
    [[nodiscard]] bool hung_up();
    [[nodiscard]] asio::any_io_executor executor() { return socket_.get_executor(); }
    [[nodiscard]] int fd() { return socket_.native_handle(); }

  private:
    void received(const asio::error_code& error, std::size_t n);
    void sent(const asio::error_code& error, std::size_t n);

    socket_type socket_;
    owner* owner_;
    FRAME_reader reader_;
    OUTQUEUE queue_;
    bool reading_ = false;
    bool writing_ = false;
    bool finishing_ = false;
    bool write_failed_ = false;
};
