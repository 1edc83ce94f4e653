// Encoding and decoding of frames, and the reader that finds them in a byte stream. Numbers are
// little-endian, as in every host that this runs on, so they are copied as they are.
#include "libvesk/link/frame.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cstring>

namespace {

static_assert(std::endian::native == std::endian::little, "the wire is little-endian");

constexpr std::size_t BUFFER_SIZE = 4 * FRAME_MAX;  // a read of at least FRAME_MAX beside a frame half come
constexpr std::size_t LENGTH_SIZE = 4;              // the length field does not count itself
// The work buffer of the reader that will be next; most programs need one in all.
std::atomic<std::byte*> g_spare;

constexpr std::array MAGIC{std::byte{'V'}, std::byte{'E'}, std::byte{'S'}, std::byte{'K'}};

template <class T>
T get(FRAME_span bytes, std::size_t offset) {
    T value;
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
}

template <class T>
void put(FRAME_bytes* out, T value) {
    const auto raw = std::bit_cast<std::array<std::byte, sizeof(T)>>(value);
    out->insert(out->end(), raw.begin(), raw.end());
}

void put(FRAME_bytes* out, FRAME_span bytes) {
    out->insert(out->end(), bytes.begin(), bytes.end());
}

FRAME_span bytes_of(std::string_view text) {
    return std::as_bytes(std::span(text.data(), text.size()));
}

std::string_view text_of(FRAME_span bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

BYTE text_length(std::string_view text) {
    return static_cast<BYTE>(std::min(text.size(), FRAME_TEXT_MAX));
}

std::string_view cut(std::string_view text) {
    return text.substr(0, FRAME_TEXT_MAX);
}

void put_head(FRAME_bytes* out, std::size_t total, BYTE kind, BYTE detail, std::uint16_t value) {
    put(out, static_cast<std::uint32_t>(total - LENGTH_SIZE));
    put(out, kind);
    put(out, detail);
    put(out, value);
}

// The text that fills the rest of a frame: a length byte and exactly so many bytes.
std::optional<std::string_view> last_text(FRAME_span rest) {
    if (rest.empty() || rest.size() - 1 != get<BYTE>(rest, 0)) return std::nullopt;
    return text_of(rest.subspan(1));
}

// The shape that the kind prescribes, beyond what decoding its body finds out. Null when it is right.
const char* head_fault(const FRAME& frame) {
    switch (frame.kind) {
        case FRAME_HELLO:
        case FRAME_REFUSAL:
            return nullptr;
        case FRAME_WELCOME:
        case FRAME_HEARTBEAT:
            return frame.bytes.size() == FRAME_HEAD ? nullptr : "a frame without a body has one";
        case FRAME_MESSAGE:
            return frame.bytes.size() >= FRAME_MESSAGE_HEAD ? nullptr : "a message shorter than its head";
        default:
            return "a frame of unknown kind";
    }
}

}  // namespace

void FRAME_encode_hello(FRAME_bytes* out, const FRAME_hello& hello) {
    const std::string_view name = cut(hello.name);
    put_head(out, FRAME_HEAD + MAGIC.size() + 1 + name.size(), FRAME_HELLO, hello.kind, hello.version);
    put(out, FRAME_span(MAGIC));
    put(out, text_length(name));
    put(out, bytes_of(name));
}

void FRAME_encode_welcome(FRAME_bytes* out) {
    put_head(out, FRAME_HEAD, FRAME_WELCOME, 0, FRAME_VERSION);
}

void FRAME_encode_refusal(FRAME_bytes* out, const FRAME_refusal& refusal) {
    const std::string_view text = cut(refusal.text);
    put_head(out, FRAME_HEAD + 1 + text.size(), FRAME_REFUSAL, refusal.reason, refusal.version);
    put(out, text_length(text));
    put(out, bytes_of(text));
}

void FRAME_encode_heartbeat(FRAME_bytes* out) {
    put_head(out, FRAME_HEAD, FRAME_HEARTBEAT, 0, 0);
}

BOOL FRAME_encode_message(FRAME_bytes* out, const FRAME_message& m) {
    const std::array texts{cut(m.source), cut(m.dest), cut(m.record)};
    std::size_t total = FRAME_MESSAGE_HEAD + m.payload.size();
    for (const std::string_view t : texts)
        total += t.size();
    if (total > FRAME_MAX) return FALSE;

    put_head(out, total, FRAME_MESSAGE, 0, static_cast<std::uint16_t>(m.type));
    put(out, m.flags);
    for (const std::string_view t : texts)
        put(out, text_length(t));
    put(out, BYTE{0});
    for (const std::string_view t : texts)
        put(out, bytes_of(t));
    put(out, m.payload);
    return TRUE;
}

std::optional<FRAME_hello> FRAME_decode_hello(const FRAME& frame) {
    const FRAME_span body = frame.body();
    if (body.size() < MAGIC.size() || !std::equal(MAGIC.begin(), MAGIC.end(), body.begin()))
        return std::nullopt;
    FRAME_hello hello{frame.value, static_cast<FRAME_peer_kind>(frame.detail), {}};
    if (hello.version != FRAME_VERSION) return hello;

    const auto name = last_text(body.subspan(MAGIC.size()));
    if (!name || frame.detail < FRAME_PEER_CLIENT || frame.detail > FRAME_PEER_MONITOR) return std::nullopt;
    hello.name = *name;
    return hello;
}

std::optional<FRAME_refusal> FRAME_decode_refusal(const FRAME& frame) {
    const auto text = last_text(frame.body());
    if (!text) return std::nullopt;
    return FRAME_refusal{frame.detail, frame.value, *text};
}

std::optional<FRAME_message> FRAME_decode_message(const FRAME& frame) {
    const FRAME_span bytes = frame.bytes;
    if (bytes.size() < FRAME_MESSAGE_HEAD) return std::nullopt;
    FRAME_message m{frame.value, get<DWORD>(bytes, FRAME_HEAD), {}, {}, {}, {}};
    std::size_t at = FRAME_MESSAGE_HEAD;
    std::size_t length_at = FRAME_HEAD + sizeof m.flags;
    for (std::string_view* text : {&m.source, &m.dest, &m.record}) {
        const std::size_t length = get<BYTE>(bytes, length_at++);
        if (length > bytes.size() - at) return std::nullopt;
        *text = text_of(bytes.subspan(at, length));
        at += length;
    }
    m.payload = bytes.subspan(at);
    return m;
}

const char* FRAME_refusal_text(BYTE reason) {
    switch (reason) {
        case FRAME_WRONG_VERSION:
            return "wrong version";
        case FRAME_NAME_TAKEN:
            return "name taken";
        case FRAME_BAD_NAME:
            return "bad name";
        case FRAME_SERVER_FULL:
            return "server full";
        default:
            return "unknown reason";
    }
}

void FRAME_reader::give_back::operator()(std::byte* buffer) const {
    delete[] g_spare.exchange(buffer);
}

void FRAME_reader::unpark() {
    if (buffer_) return;
    buffer_.reset(g_spare.exchange(nullptr));
    if (!buffer_) buffer_.reset(new std::byte[BUFFER_SIZE]);
    std::copy(parked_.begin(), parked_.end(), buffer_.get());
    begin_ = 0;
    end_ = parked_.size();
    parked_.clear();
    parked_.shrink_to_fit();
}

void FRAME_reader::park() {
    if (!buffer_) return;
    parked_.assign(buffer_.get() + begin_, buffer_.get() + end_);
    buffer_.reset();
}

void FRAME_reader::discard() {
    begin_ = end_;
    park();
}

std::span<std::byte> FRAME_reader::space() {
    unpark();
    if (begin_ == end_) begin_ = end_ = 0;
    if (BUFFER_SIZE - end_ < FRAME_MAX && begin_ > 0) {
        std::memmove(buffer_.get(), buffer_.get() + begin_, end_ - begin_);
        end_ -= begin_;
        begin_ = 0;
    }
    const std::size_t room = BUFFER_SIZE - end_;
    return {buffer_.get() + end_, most_ < FRAME_MAX ? std::min(room, most_) : room};
}

void FRAME_reader::commit(std::size_t n) {
    end_ += std::min(n, BUFFER_SIZE - end_);
}

FRAME_status FRAME_reader::next(FRAME* frame) {
    if (!error_.empty()) return FRAME_BROKEN;
    unpark();
    const FRAME_span have(buffer_.get() + begin_, end_ - begin_);
    if (have.size() < LENGTH_SIZE) return FRAME_MORE;
    // In 64 bits, so that the largest length does not wrap to a small total.
    const auto total = std::uint64_t{get<std::uint32_t>(have, 0)} + LENGTH_SIZE;
    if (total < FRAME_HEAD || total > most_) return broken("a frame of " + std::to_string(total) + " bytes");
    if (have.size() < total) return FRAME_MORE;

    *frame = {get<BYTE>(have, 4), get<BYTE>(have, 5), get<std::uint16_t>(have, 6), have.first(total)};
    if (const char* fault = head_fault(*frame)) return broken(fault);
    begin_ += total;
    return FRAME_READY;
}

FRAME_status FRAME_reader::broken(std::string why) {
    error_ = std::move(why);
    return FRAME_BROKEN;
}
