// The bytes of the link: frames are made here and taken apart here, by both ends. A stream may be fed in
// pieces of any size; lengths are checked before anything is kept. docs/protocol.md describes every byte.
#pragma once

#include <cstddef>
#include <memory>
#include <memory_resource>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "libvesk/support/types.h"

// Bits of the flags word (see docs/protocol.md); 0 sends to the named destination only.
inline constexpr DWORD FRAME_TO_ALL = 1;    // every connected peer, the sender included
inline constexpr DWORD FRAME_RESERVED = 2;  // carried, without meaning
inline constexpr DWORD FRAME_KEEP = 4;      // the server replays the latest per source and type

using FRAME_bytes = std::vector<std::byte>;
using FRAME_span = std::span<const std::byte>;

inline constexpr std::uint16_t FRAME_VERSION = 1;
inline constexpr std::size_t FRAME_HEAD = 8;           // length, kind, detail, value
inline constexpr std::size_t FRAME_MESSAGE_HEAD = 16;  // the same, then flags and the lengths of three texts
inline constexpr std::size_t FRAME_MAX = 64 * 1024;    // bytes of a whole frame, its length field included
inline constexpr std::size_t FRAME_TEXT_MAX = 255;     // bytes of a text that has a length byte
inline constexpr std::size_t FRAME_HELLO_MAX = FRAME_HEAD + 4 + 1 + FRAME_TEXT_MAX;

enum FRAME_kind : BYTE {
    FRAME_HELLO = 1,
    FRAME_WELCOME = 2,
    FRAME_REFUSAL = 3,
    FRAME_HEARTBEAT = 4,
    FRAME_MESSAGE = 5,
};
// The kind of a peer, as its hello says.
enum FRAME_peer_kind : BYTE {
    FRAME_PEER_CLIENT = 1,
    FRAME_PEER_INSTRUMENT = 2,
    FRAME_PEER_MONITOR = 3,
};
enum FRAME_refusal_reason : BYTE {
    FRAME_WRONG_VERSION = 1,
    FRAME_NAME_TAKEN = 2,
    FRAME_BAD_NAME = 3,
    FRAME_SERVER_FULL = 4,
};

// One whole frame; its bytes lie in the reader that gave it, which says how long.
struct FRAME {
    BYTE kind = 0;
    BYTE detail = 0;          // hello: peer kind; refusal: reason; else 0
    std::uint16_t value = 0;  // hello, welcome, refusal: protocol version; message: its type; else 0
    FRAME_span bytes;         // all of it, the length included
    [[nodiscard]] FRAME_span body() const { return bytes.subspan(FRAME_HEAD); }
};

struct FRAME_message {
    int type;
    DWORD flags;
    std::string_view source;
    std::string_view dest;
    std::string_view record;  // "" without a payload
    FRAME_span payload;
};
struct FRAME_hello {
    std::uint16_t version;
    FRAME_peer_kind kind;
    std::string_view name;
};
struct FRAME_refusal {
    BYTE reason;
    std::uint16_t version;  // that the server speaks
    std::string_view text;
};

// Each appends one frame to `out`. Texts longer than FRAME_TEXT_MAX are cut; a message that would exceed
// FRAME_MAX appends nothing and returns FALSE.
void FRAME_encode_hello(FRAME_bytes* out, const FRAME_hello& hello);
void FRAME_encode_welcome(FRAME_bytes* out);
void FRAME_encode_refusal(FRAME_bytes* out, const FRAME_refusal& refusal);
void FRAME_encode_heartbeat(FRAME_bytes* out);
BOOL FRAME_encode_message(FRAME_bytes* out, const FRAME_message& message);

// Each takes apart a frame of its kind; none when the body breaks its own lengths. A hello of another
// protocol version yields that version and an empty name: the rest of it is not ours to read.
[[nodiscard]] std::optional<FRAME_hello> FRAME_decode_hello(const FRAME& frame);
[[nodiscard]] std::optional<FRAME_refusal> FRAME_decode_refusal(const FRAME& frame);
[[nodiscard]] std::optional<FRAME_message> FRAME_decode_message(const FRAME& frame);

// "name taken": what a refusal's reason means.
[[nodiscard]] const char* FRAME_refusal_text(BYTE reason);

enum FRAME_status {
    FRAME_MORE,    // bytes are missing
    FRAME_READY,   // `frame` is filled
    FRAME_BROKEN,  // the stream breaks the framing and stays broken; error() says how
};

// Cuts a byte stream into frames. Use: put bytes into space(), tell commit() how many, take frames with
// next() until it says FRAME_MORE, and park() before waiting for more. The buffer that it works in is lent
// from one reader to the next: a parked one holds no more than the bytes of an unfinished frame.
class FRAME_reader {
  public:
    // Takes the memory for parked bytes from there.
    explicit FRAME_reader(std::pmr::memory_resource* memory = std::pmr::get_default_resource())
        : parked_(memory) {}
    // A longer frame breaks the stream, and little more than so many bytes are taken at a time.
    void limit(std::size_t most) { most_ = most; }
    // Where the next bytes go; never empty once next() has said FRAME_MORE. Ends all views.
    [[nodiscard]] std::span<std::byte> space();
    void commit(std::size_t n);
    // Views of frames last until space(), park() or discard().
    [[nodiscard]] FRAME_status next(FRAME* frame);
    // Puts aside what no frame was made of yet.
    void park();
    // Forgets it.
    void discard();
    [[nodiscard]] std::size_t parked() const { return parked_.size(); }
    [[nodiscard]] const std::string& error() const { return error_; }

  private:
    struct give_back {
        void operator()(std::byte* buffer) const;
    };
    FRAME_status broken(std::string why);
    void unpark();

    std::size_t most_ = FRAME_MAX;
    std::unique_ptr<std::byte[], give_back> buffer_;
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
    std::pmr::vector<std::byte> parked_;
    std::string error_;
};
