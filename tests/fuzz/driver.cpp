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

// A bit flipped, a byte or a word at the edge of its range, bytes inserted or erased, or the head of this
// input with the tail of another.
void mutate(Bytes& b, Random& random, const Bytes& other) {
    static constexpr std::uint8_t EDGES[] = {0, 1, 9, 10, 13, 27, 32, '"', '%', '\\', 127, 128, 254, 255};
    const std::uint8_t edge = EDGES[below(random, std::size(EDGES))];
    const std::size_t from = below(random, b.size());
    const std::size_t most = b.size() - from;  // up to the end
    const auto at = b.begin() + static_cast<std::ptrdiff_t>(from);
    switch (random() % 6) {
        case 0:
            if (most > 0) *at ^= static_cast<std::uint8_t>(1U << below(random, 8));
            break;
        case 1:
            std::fill_n(at, std::min<std::size_t>(most, 1), edge);
            break;
        case 2:
            std::fill_n(at, std::min<std::size_t>(most, 4), edge);
            break;
        case 3:
            b.insert(at, 1 + below(random, 16), static_cast<std::uint8_t>(random()));
            break;
        case 4:
            b.erase(at, at + static_cast<std::ptrdiff_t>(std::min(most, 1 + below(random, 16))));
            break;
        default:
            b.resize(from);
            b.insert(b.end(), other.begin() + static_cast<std::ptrdiff_t>(below(random, other.size())),
                     other.end());
    }
}

Bytes mutated(const std::vector<Bytes>& seeds, Random& random) {
    Bytes result = seeds[below(random, seeds.size())];
    for (std::size_t n = 1 + below(random, 5); n > 0; --n)
        mutate(result, random, seeds[below(random, seeds.size())]);
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
