// Where the server listens: its local socket, which is taken over from a dead server and never from a living
// one, and TCP addresses when asked.
#pragma once

#include "libvesk/link/asio_config.h"  // first

#include <asio/basic_socket_acceptor.hpp>
#include <functional>
#include <memory>
#include <string>

#include "libvesk/link/address.h"
#include "libvesk/link/stream.h"
#include "server/connection.h"

// The local socket on the file system, from before it is bound until it is gone again.
class LISTENER_path {
  public:
    LISTENER_path() = default;
    ~LISTENER_path() { release(); }
    LISTENER_path(const LISTENER_path&) = delete;
    LISTENER_path& operator=(const LISTENER_path&) = delete;

    // A listening socket at that path, mode 0660, in a directory that is made with mode 0750 when it is
    // missing; -1 with the reason in `why`. A lock file beside it keeps two servers from taking it at once.
    [[nodiscard]] int bind(const std::string& path, std::string* why);
    // Removes the socket, if it is still the one that was made, and the lock.
    void release();
    // A warning about the place for the log, or "".
    [[nodiscard]] const std::string& warning() const { return warning_; }

  private:
    BOOL prepare_directory(std::string* why);
    BOOL lock(std::string* why);
    BOOL clear_way(std::string* why);
    int make_socket(std::string* why);

    std::string path_;
    std::string warning_;
    int lock_fd_ = -1;
    unsigned long long device_ = 0;  // of the socket that was made
    unsigned long long inode_ = 0;
};

// Accepts connections until it is destroyed.
class LISTENER {
  public:
    using accept_cb = std::function<void(STREAM::socket_type, CONNECTION_origin)>;
    using log_cb = std::function<void(const std::string&)>;

    LISTENER(asio::io_context& context, accept_cb on_accept, log_cb log);
    [[nodiscard]] BOOL listen(const ADDRESS& address, std::string* why);
    // Accepts again after a failure, such as having run out of descriptors; at every tick.
    void tick();
    void close();
    // Where it listens, with the port that was chosen.
    [[nodiscard]] const std::string& text() const { return text_; }

  private:
    using acceptor = asio::basic_socket_acceptor<asio::generic::stream_protocol>;
    BOOL listen_local(const ADDRESS& address, std::string* why);
    BOOL listen_tcp(const ADDRESS& address, std::string* why);
    BOOL listen_endpoint(const asio::generic::stream_protocol::endpoint& endpoint, asio::error_code& error);
    void accept();
    void handle(const asio::error_code& error, STREAM::socket_type socket);

    asio::io_context& context_;
    accept_cb on_accept_;
    log_cb log_;
    LISTENER_path path_;
    acceptor acceptor_;
    std::string text_;
    bool accepting_ = false;
    bool failing_ = false;
};
