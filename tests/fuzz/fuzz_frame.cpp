// The bytes of a link: whatever they are, the reader finds the same frames in them however they are cut,
// keeps within its bounds, and what can be taken apart can be put together again to the same bytes. The first
// byte of an input chooses how it is cut.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "libvesk/link/frame.h"
#include "libvesk/link/msgcheck.h"

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

void take_apart(const FRAME& f) {
    require(f.bytes.size() >= FRAME_HEAD && f.bytes.size() <= FRAME_MAX);
    (void)FRAME_decode_refusal(f);
    if (const auto hello = FRAME_decode_hello(f)) require(hello->name.size() <= FRAME_TEXT_MAX);
    if (f.kind != FRAME_MESSAGE) return;
    const auto m = FRAME_decode_message(f);
    if (!m) return;
    MSGCHECK_found found;
    const MSGCHECK_fault fault = MSGCHECK_from_peer(*m, &found);
    require(MSGCHECK_text(fault) != nullptr);
    for (const char c : MSGCHECK_describe(*m))
        require(c >= ' ' && c <= '~');
    if (fault == MSGCHECK_OK && found.dsd != nullptr) require(m->payload.size() == found.dsd->total_size);

    FRAME_bytes again;
    require(FRAME_encode_message(&again, *m));
    // All but the bytes that receivers ignore: detail and the last of the head.
    FRAME_bytes original(f.bytes.begin(), f.bytes.end());
    original[5] = original[15] = std::byte{0};
    require(again == original);
}

struct outcome {
    std::size_t frames = 0;
    std::size_t bytes = 0;
    bool broken = false;
    bool operator==(const outcome&) const = default;
};

outcome read(FRAME_span stream, std::size_t piece) {
    FRAME_reader reader;
    outcome out;
    while (!stream.empty() && !out.broken) {
        const auto space = reader.space();
        require(!space.empty());
        const std::size_t n = std::min({piece, space.size(), stream.size()});
        std::memcpy(space.data(), stream.data(), n);
        reader.commit(n);
        stream = stream.subspan(n);
        FRAME f;
        FRAME_status status = reader.next(&f);
        for (; status == FRAME_READY; status = reader.next(&f)) {
            take_apart(f);
            ++out.frames;
            out.bytes += f.bytes.size();
        }
        out.broken = status == FRAME_BROKEN;
        require(out.broken == !reader.error().empty());
    }
    return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const FRAME_span stream = std::as_bytes(std::span(data + 1, size - 1));
    const outcome whole = read(stream, stream.size());
    require(read(stream, std::size_t{1} + data[0]) == whole);
    return 0;
}
