// One connected socket with the framing on it: bytes in through a frame reader, bytes out through an output
// queue. Both ends of every link are built on it. It waits until the socket is ready and reads and writes at
// once then, so that a connection that is idle holds no buffer.
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
        virtual void stream_sent() = 0;      // the queue became shorter after a wait
        virtual void stream_ended(const std::string& why) = 0;  // nothing more will come; once
      protected:
        ~owner() = default;
    };

    // Both queues take their memory from there; null means the program's own.
    STREAM(socket_type socket, owner* listener, std::shared_ptr<std::pmr::memory_resource> memory = nullptr);

    [[nodiscard]] FRAME_reader& reader() { return reader_; }
    // Waits for bytes; the reader is parked meanwhile.
    void read();

    [[nodiscard]] OUTQUEUE& queue() { return queue_; }
    // Writes what the socket takes now. The rest follows as it takes more.
    void flush();
    // Bytes that have left the queue but not reached the other side's hands yet; 0 where that cannot be told.
    [[nodiscard]] std::size_t on_the_way();

    // Tells the other side that nothing more comes; what is queued leaves first.
    void finish();
    // Ends it now: the owner hears nothing more.
    void close();
    // Ends it so that what the socket has taken arrives, which over TCP may take `seconds` here.
    void part(double seconds);
    // The other side has closed its end, though bytes of it may still be unread.
    [[nodiscard]] bool hung_up();
    [[nodiscard]] asio::any_io_executor executor() { return socket_.get_executor(); }
    [[nodiscard]] int fd() { return socket_.native_handle(); }

  private:
    void readable(const asio::error_code& error);
    void writable(const asio::error_code& error);
    void end(const asio::error_code& error);
    [[nodiscard]] asio::error_code write();

    std::shared_ptr<std::pmr::memory_resource> memory_;  // handlers under way outlive who made the stream
    socket_type socket_;
    owner* owner_;
    FRAME_reader reader_;
    OUTQUEUE queue_;
    bool reading_ = false;
    bool writing_ = false;  // waits until the socket takes more
    bool finishing_ = false;
    bool write_failed_ = false;
};
