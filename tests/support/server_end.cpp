// One thread plays both ends: the console's link only moves inside its own calls, and this end only reads
// what those calls have already put into the socket.
#include "support/server_end.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ostream>

#include "cursclient/cursclient.h"
#include "libvesk/netmsg.h"
#include "libvesk/util.h"

namespace {

using namespace std::chrono_literals;

[[noreturn]] void die(const char* what) {
    std::perror(what);
    std::abort();
}

bool readable(int fd) {
    pollfd p{.fd = fd, .events = POLLIN, .revents = 0};
    return poll(&p, 1, 0) == 1;
}

void send_all(int fd, FRAME_span bytes) {
    if (::send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT) !=
        static_cast<ssize_t>(bytes.size()))
        die("send");
}

}  // namespace

ServerEnd::ServerEnd() {
    char name[] = "/tmp/vesk-test-XXXXXX";
    if (mkdtemp(name) == nullptr) die("mkdtemp");
    directory_ = name;
    const std::string path = directory_ + "/server.sock";
    listen_at(path);

    VESKMSG_connect_params params;
    VESKMSG_init_params(&params);
    params.id_str = "CLIENT";
    params.host_override = path.c_str();
    if (!INST_connect(&g_lnk, &params)) die("INST_connect");
    accept_and_welcome();
}

ServerEnd::~ServerEnd() {
    INST_disconnect(&g_lnk);
    close(peer_);
    close(listener_);
    unlink((directory_ + "/server.sock").c_str());
    rmdir(directory_.c_str());
}

void ServerEnd::listen_at(const std::string& path) {
    listener_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    UTIL_strcpynt(address.sun_path, path.c_str());
    if (bind(listener_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        listen(listener_, 1) != 0)
        die("listening");
}

void ServerEnd::accept_and_welcome() {
    const auto deadline = std::chrono::steady_clock::now() + 10s;
    while (g_lnk.msg_lnk.stat != VESKMSG_S_OPEN) {
        if (std::chrono::steady_clock::now() > deadline) die("the console's link did not open");
        VESKMSG_process_messages(
            &g_lnk.msg_lnk, [](VESKMSG_proc_msg*, void*) {}, nullptr);
        if (peer_ == -1 && readable(listener_)) {
            peer_ = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
            FRAME_bytes welcome;
            FRAME_encode_welcome(&welcome);
            send_all(peer_, welcome);
        }
    }
}

void ServerEnd::read_some() {
    const auto space = reader_.space();
    const ssize_t n = recv(peer_, space.data(), space.size(), MSG_DONTWAIT);
    if (n > 0) reader_.commit(static_cast<std::size_t>(n));
}

void ServerEnd::send(FRAME_span frames) {
    send_all(peer_, frames);
}

std::vector<ServerEnd::Sent> ServerEnd::received() {
    if (!VESKMSG_flush(&g_lnk.msg_lnk, 10)) die("the console's messages do not leave");
    std::vector<Sent> all;
    for (;;) {
        FRAME frame;
        const FRAME_status status = reader_.next(&frame);
        if (status == FRAME_BROKEN) die(reader_.error().c_str());
        if (status == FRAME_MORE) {
            if (!readable(peer_)) return all;
            read_some();
        } else if (frame.kind == FRAME_MESSAGE) {
            const auto m = FRAME_decode_message(frame);
            if (!m) die("a broken message");
            const auto* payload = reinterpret_cast<const std::uint8_t*>(m->payload.data());
            all.push_back({m->type, m->flags, std::string(m->dest), std::string(m->record),
                           std::vector<std::uint8_t>(payload, payload + m->payload.size())});
        }
    }
}

std::ostream& operator<<(std::ostream& out, const ServerEnd::Sent& s) {
    const NETMSG_entry* entry = NETMSG_by_type(s.type);
    out << (entry != nullptr ? entry->name : "?") << " flags " << s.flags << " to \"" << s.dest << "\" "
        << s.record;
    for (const std::uint8_t byte : s.payload)
        out << ' ' << static_cast<int>(byte);
    return out;
}
