// Listening and accepting. A failed accept is not repeated at once: what failed it, such as having no
// descriptor left, lasts a while.
#include "server/listener.h"

#include <sys/socket.h>

#include <asio/io_context.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/local/stream_protocol.hpp>

namespace {

using asio::generic::stream_protocol;
using asio::ip::tcp;

CONNECTION_origin local_origin(int fd) {
    ucred credentials{};
    socklen_t size = sizeof credentials;
    if (getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &credentials, &size) != 0) return {"local", "local"};
    const std::string who =
        "pid " + std::to_string(credentials.pid) + ", uid " + std::to_string(credentials.uid);
    return {who, who};
}

CONNECTION_origin tcp_origin(const stream_protocol::endpoint& endpoint) {
    tcp::endpoint tcp_endpoint;
    if (endpoint.size() > tcp_endpoint.capacity()) return {"unknown", "unknown"};
    std::memcpy(tcp_endpoint.data(), endpoint.data(), endpoint.size());
    const std::string host = tcp_endpoint.address().to_string();
    return {ADDRESS_text({{}, host, tcp_endpoint.port()}), host};
}

CONNECTION_origin origin_of(STREAM::socket_type& socket) {
    asio::error_code error;
    const auto remote = socket.remote_endpoint(error);
    if (error) return {"unknown", "unknown"};
    return remote.protocol().family() == AF_UNIX ? local_origin(socket.native_handle()) : tcp_origin(remote);
}

}  // namespace

LISTENER::LISTENER(asio::io_context& context, accept_cb on_accept, log_cb log)
    : context_(context), on_accept_(std::move(on_accept)), log_(std::move(log)), acceptor_(context) {}

BOOL LISTENER::listen(const ADDRESS& address, std::string* why) {
    text_ = ADDRESS_text(address);
    std::string reason;
    if (!(address.is_local() ? listen_local(address, &reason) : listen_tcp(address, &reason))) {
        *why = "cannot listen on " + text_ + ": " + reason;
        return FALSE;
    }
    if (!path_.warning().empty()) log_(path_.warning());
    accept();
    return TRUE;
}

BOOL LISTENER::listen_local(const ADDRESS& address, std::string* why) {
    const int fd = path_.bind(address.path, why);
    if (fd < 0) return FALSE;
    acceptor_.assign(stream_protocol(AF_UNIX, 0), fd);
    return TRUE;
}

BOOL LISTENER::listen_tcp(const ADDRESS& address, std::string* why) {
    asio::error_code error;
    tcp::resolver resolver(context_);
    const auto found =
        resolver.resolve(address.host, std::to_string(address.port), tcp::resolver::passive, error);
    for (const auto& entry : found)
        if (listen_endpoint(entry.endpoint(), error)) break;
    if (error) {
        *why = error.message();
        return FALSE;
    }
    text_ = tcp_origin(acceptor_.local_endpoint()).text;
    return TRUE;
}

BOOL LISTENER::listen_endpoint(const stream_protocol::endpoint& endpoint, asio::error_code& error) {
    asio::error_code ignored;
    acceptor_.close(ignored);
    acceptor_.open(endpoint.protocol(), error);
    if (!error) acceptor_.set_option(asio::socket_base::reuse_address(true), error);
    if (!error) acceptor_.bind(endpoint, error);
    if (!error) acceptor_.listen(asio::socket_base::max_listen_connections, error);
    return !error;
}

void LISTENER::accept() {
    accepting_ = true;
    acceptor_.async_accept([this](const asio::error_code& error, STREAM::socket_type socket) {
        if (error != asio::error::operation_aborted) handle(error, std::move(socket));
    });
}

void LISTENER::handle(const asio::error_code& error, STREAM::socket_type socket) {
    accepting_ = false;
    if (error) {
        if (!std::exchange(failing_, true)) log_("cannot accept a connection: " + error.message());
        return;
    }
    failing_ = false;
    CONNECTION_origin origin = origin_of(socket);
    on_accept_(std::move(socket), std::move(origin));
    accept();
}

void LISTENER::tick() {
    if (!accepting_ && acceptor_.is_open()) accept();
}

void LISTENER::close() {
    asio::error_code ignored;
    acceptor_.close(ignored);
    path_.release();
}
