// Runs a fuzz target without a fuzzer: over every seed file, then over mutations of them that are the same in
// every run. An input that makes the target fail is left in a file beside the program's other output.
//
//   fuzz_NAME SEED_FOLDER [MUTATIONS [SECONDS]]
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
// Present when a sanitizer is: what it calls before it ends the process.
extern "C" void __sanitizer_set_death_callback(void (*callback)()) __attribute__((weak));

namespace {

using Bytes = std::vector<std::uint8_t>;
using Random = std::mt19937;

constexpr std::size_t MAX_INPUT = 65536;

std::string g_failure_file;    // where an input that fails goes
const Bytes* g_now = nullptr;  // the input being run

void leave_input() {
    if (g_now == nullptr) return;
    const int fd = open(g_failure_file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (fd < 0 || write(fd, g_now->data(), g_now->size()) != static_cast<ssize_t>(g_now->size())) return;
    std::fprintf(stderr, "the input that failed is in %s\n", g_failure_file.c_str());
    g_now = nullptr;
}

void on_signal(int number) {
    leave_input();
    std::signal(number, SIG_DFL);
    std::raise(number);
}

void catch_failures() {
    std::signal(SIGABRT, on_signal);
    if (__sanitizer_set_death_callback != nullptr) return __sanitizer_set_death_callback(leave_input);
    for (const int number : {SIGSEGV, SIGBUS, SIGFPE, SIGILL})
        std::signal(number, on_signal);
}

// Each input has an allocation of its own, exactly as long, so that a sanitizer sees one byte too many.
void run(const Bytes& input) {
    const Bytes exact(input);
    g_now = &exact;
    LLVMFuzzerTestOneInput(exact.data(), exact.size());
    g_now = nullptr;
}

std::size_t below(Random& random, std::size_t n) {
    return n == 0 ? 0 : random() % n;
}

void flip_bit(Bytes& b, Random& random, const Bytes&) {
    if (!b.empty()) b[below(random, b.size())] ^= static_cast<std::uint8_t>(1U << below(random, 8));
}
void set_byte(Bytes& b, Random& random, const Bytes&) {
    static constexpr std::uint8_t EDGES[] = {0, 1, 9, 10, 13, 27, 32, '"', '%', '\\', 127, 128, 254, 255};
    if (!b.empty()) b[below(random, b.size())] = EDGES[below(random, std::size(EDGES))];
}
void set_word(Bytes& b, Random& random, const Bytes&) {
    static constexpr std::uint32_t EDGES[] = {0, 1, 0x7F, 0xFF, 0xFFFF, 0x10000, 0x7FFFFFFF, 0xFFFFFFFF};
    if (b.size() < 4) return;
    const std::size_t at = below(random, b.size() - 3);
    const std::uint32_t word = EDGES[below(random, std::size(EDGES))];
    for (std::size_t i = 0; i < 4; ++i)
        b[at + i] = static_cast<std::uint8_t>(word >> (8 * i));
}
void insert_bytes(Bytes& b, Random& random, const Bytes&) {
    const Bytes more(1 + below(random, 16), static_cast<std::uint8_t>(random()));
    b.insert(b.begin() + static_cast<std::ptrdiff_t>(below(random, b.size() + 1)), more.begin(), more.end());
}
void erase_bytes(Bytes& b, Random& random, const Bytes&) {
    const auto from = b.begin() + static_cast<std::ptrdiff_t>(below(random, b.size()));
    const auto most = static_cast<std::size_t>(b.end() - from);
    b.erase(from, from + static_cast<std::ptrdiff_t>(std::min(most, 1 + below(random, 16))));
}
void cut_off(Bytes& b, Random& random, const Bytes&) {
    b.resize(below(random, b.size() + 1));
}
void repeat_part(Bytes& b, Random& random, const Bytes&) {
    const auto from = static_cast<std::ptrdiff_t>(below(random, b.size()));
    const Bytes part(b.begin() + from, b.end());
    b.insert(b.end(), part.begin(), part.end());
}
// The head of this input with the tail of another.
void splice(Bytes& b, Random& random, const Bytes& other) {
    b.resize(below(random, b.size() + 1));
    b.insert(b.end(), other.begin() + static_cast<std::ptrdiff_t>(below(random, other.size())), other.end());
}

Bytes mutated(const std::vector<Bytes>& seeds, Random& random) {
    static constexpr void (*MUTATIONS[])(Bytes&, Random&, const Bytes&) = {
        flip_bit, set_byte, set_word, insert_bytes, erase_bytes, cut_off, repeat_part, splice};
    Bytes result = seeds[below(random, seeds.size())];
    for (std::size_t n = 1 + below(random, 5); n > 0; --n)
        MUTATIONS[below(random, std::size(MUTATIONS))](result, random, seeds[below(random, seeds.size())]);
    result.resize(std::min(result.size(), MAX_INPUT));
    return result;
}

std::vector<Bytes> read_seeds(const std::string& folder) {
    std::vector<std::filesystem::path> files;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error))
        files.push_back(entry.path());
    std::sort(files.begin(), files.end());  // the same order in every run
    std::vector<Bytes> seeds;
    for (const auto& file : files) {
        std::ifstream in(file, std::ios::binary);
        seeds.emplace_back(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    return seeds;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s SEED_FOLDER [MUTATIONS [SECONDS]]\n", argv[0]);
        return 2;
    }
    const unsigned long mutations = argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 5000;
    const std::chrono::duration<double> most(argc > 3 ? std::strtod(argv[3], nullptr) : 2.0);
    g_failure_file = std::filesystem::path(argv[0]).filename().string() + ".failed";
    const std::vector<Bytes> seeds = read_seeds(argv[1]);
    if (seeds.empty()) {
        std::fprintf(stderr, "no seeds in %s\n", argv[1]);
        return 2;
    }
    catch_failures();
    run({});
    for (const Bytes& seed : seeds)
        run(seed);
    Random random(1);
    const auto start = std::chrono::steady_clock::now();
    unsigned long done = 0;
    for (; done < mutations && std::chrono::steady_clock::now() - start < most; ++done)
        run(mutated(seeds, random));
    std::printf("%zu seeds, %lu mutations\n", seeds.size(), done);
    return 0;
}
