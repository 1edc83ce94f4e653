// The greeting of a link, each end against bytes of anybody: the hub that takes a connection, and the peer
// that makes one. Whatever comes, each answers with whole frames or not at all, says why it gives up, and is
// rid of the connection once the other side has gone. The first byte of an input chooses the end under test
// and how the rest is cut into pieces.
#include "libvesk/link/asio_config.h"  // first

#include <asio/io_context.hpp>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>

#include "libvesk/link/inst.h"
#include "server/hub.h"
#include "support/wire.h"

namespace {

constexpr std::size_t LONGEST_INPUT = 16 * 1024;  // what a socket holds in any case

double g_clock = 1.7e9;

void require(bool holds) {
    if (!holds) std::abort();
}

void require_printable(const std::string& text) {
    for (const char c : text)
        require(UTIL_is_printable(static_cast<unsigned char>(c)));
}

// Sends the bytes piece by piece, with a round after each, and goes on until all are taken or the link is
// over.
template <class ROUND, class OVER>
void feed(wire::End& from, std::string_view bytes, std::size_t piece, ROUND round, OVER over) {
    for (; !bytes.empty(); bytes.remove_prefix(std::min(piece, bytes.size()))) {
        from.send(std::string(bytes.substr(0, piece)));
        round();
    }
    while (from.unsent() > 0 && !over())
        round();
    round();
}

// ---- the hub's end

class server_side {
  public:
    server_side() : hub_(params()) {
        int ends[2];
        require(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends) == 0);
        peer_ = std::make_unique<wire::End>(ends[0]);
        STREAM::socket_type socket(context_);
        socket.assign(asio::generic::stream_protocol(AF_UNIX, 0), ends[1]);
        hub_.adopt(std::move(socket), {"a fuzzer", "a fuzzer"});
    }
    void run(std::string_view bytes, std::size_t piece) {
        feed(
            *peer_, bytes, piece, [this] { round(); }, [this] { return peer_->ended(); });
        check_answers();
        peer_->hang_up();
        for (int i = 0; i < 4 && hub_.count() > 0; ++i)
            pump();
        require(hub_.count() == 0);
    }

  private:
    static HUB_params params() {
        HUB_params p;
        p.log = p.chat = require_printable;
        return p;
    }
    void pump() {
        context_.restart();
        context_.poll();
        hub_.tick();
    }
    void round() {
        pump();
        peer_->look();
    }
    // A welcome or a refusal comes first and once, if anything comes.
    void check_answers() {
        const auto& frames = peer_->frames();
        for (std::size_t i = 0; i < frames.size(); ++i) {
            const bool greets = frames[i].kind == FRAME_WELCOME || frames[i].kind == FRAME_REFUSAL;
            require(greets == (i == 0));
            require_printable(frames[i].text);
        }
    }

    asio::io_context context_;
    HUB hub_;
    std::unique_ptr<wire::End> peer_;
};

// ---- the peer's end

class peer_side {
  public:
    peer_side() {
        static const TemporaryFolder folder;
        static const std::string path = folder / "server.sock";
        static const wire::Listener listener(path);
        const VESKMSG_connect_params params{"CLIENT", path.c_str(), FALSE};
        require(INST_connect(&inst_, &params));
        server_ = std::make_unique<wire::End>(listener.next());
    }
    void run(std::string_view bytes, std::size_t piece) {
        feed(
            *server_, bytes, piece, [this] { round(); }, [this] { return stat() == VESKMSG_S_UNLINKED; });
        require(!server_->frames().empty() && server_->frames()[0].kind == FRAME_HELLO);
        server_->hang_up();
        round();
        round();
        require(stat() == VESKMSG_S_UNLINKED);
        require(!VESKMSG_error(&inst_.msg_lnk).empty());
        require_printable(VESKMSG_error(&inst_.msg_lnk));
    }

  private:
    [[nodiscard]] VESKMSG_LINK_STATUS stat() const { return inst_.msg_lnk.stat; }
    static void take(VESKMSG_proc_msg* pm, void*) {
        require_printable(pm->src_name);
        require_printable(pm->dest_name);
    }
    void round() {
        server_->look();
        VESKMSG_process_messages(&inst_.msg_lnk, take, nullptr);
    }

    INST_link inst_;
    std::unique_ptr<wire::End> server_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0 || size > LONGEST_INPUT) return 0;
    UTIL_set_clock([] { return g_clock; });
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    const std::size_t piece = std::size_t{1} + (data[0] >> 1) * 16;
    if (data[0] % 2 == 0) {
        server_side().run(bytes, piece);
    } else {
        peer_side().run(bytes, piece);
    }
    return 0;
}
