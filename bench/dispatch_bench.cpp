// The cost of a message from the socket to the console's displays with every kind open: reading, decoding,
// checking, cleaning, and the offer to each display. The messages are those of a whole simulated station.
#include <benchmark/benchmark.h>

#include <chrono>

#include "console_rig.h"
#include "cursclient/cursclient.h"
#include "cursclient/display.h"
#include "support/server_end.h"

namespace {

constexpr std::size_t BATCH_BYTES =
    64 * 1024;  // what the hub hands over at a time, and a socket surely holds

struct batch {
    FRAME_bytes frames;
    std::size_t messages = 0;
};

void append(batch* b, const STATION_message& m) {
    const auto payload = std::as_bytes(std::span(m.payload));
    FRAME_encode_message(&b->frames,
                         {m.msg, FRAME_TO_ALL, m.source, {}, m.dsd != nullptr ? m.dsd->name : "", payload});
    ++b->messages;
}

std::vector<batch> batches_of(STATION_feed& station, std::size_t count) {
    std::vector<batch> all(1);
    while (all.size() <= count) {
        for (const STATION_message& m : station.next_second()) {
            append(&all.back(), m);
            if (all.back().frames.size() > BATCH_BYTES - FRAME_MAX / 4) all.emplace_back();
        }
    }
    all.resize(count);
    return all;
}

void from_the_socket(benchmark::State& state) {
    CONSOLE_rig rig;
    ServerEnd server;
    const std::vector<batch> batches = batches_of(rig.station, 64);
    std::size_t next = 0;
    std::size_t messages = 0;
    for (auto _ : state) {
        const batch& b = batches[next++ % batches.size()];
        server.send(b.frames);
        const auto began = std::chrono::steady_clock::now();
        VESKMSG_process_messages(&g_lnk.msg_lnk, message_proc, nullptr);
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - began;
        state.SetIterationTime(took.count());
        messages += b.messages;
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(messages));
    state.counters["displays"] = static_cast<double>(g_displays.count);
}

BENCHMARK(from_the_socket)->UseManualTime()->Unit(benchmark::kMicrosecond);

}  // namespace
