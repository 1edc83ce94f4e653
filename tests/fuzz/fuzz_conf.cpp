// The configuration file takes any bytes: what was loaded, written and loaded again is the same tree, and
// written again the same file.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "libvesk/support/conf.h"

namespace {

CONF_node* load(std::string text) {
    std::FILE* file = fmemopen(text.data(), text.size(), "r");
    if (file == nullptr) std::abort();
    CONF_node* root = CONF_alloc();
    static_cast<void>(CONF_load(root, file));
    std::fclose(file);
    return root;
}

std::string written(const CONF_node* root) {
    char* memory = nullptr;
    std::size_t size = 0;
    std::FILE* file = open_memstream(&memory, &size);
    if (file == nullptr || !CONF_write(root, file)) std::abort();
    std::fclose(file);
    std::string text(memory, size);
    std::free(memory);
    return text;
}

// Gives every setting a line of its own making, as a change of its value would.
void forget_lines(CONF_node& node) {
    node.line.clear();
    for (const auto& child : node.children)
        forget_lines(*child);
}

// The same settings; their order among siblings may differ once duplicates were dropped.
void expect_same(const CONF_node& a, const CONF_node& b) {
    for (const auto& child : a.children) {
        const CONF_node* twin = nullptr;
        for (const auto& other : b.children)
            if (other->name == child->name) twin = other.get();
        if (twin == nullptr || twin->value != child->value) std::abort();
        expect_same(*child, *twin);
    }
}

void expect_stable(const CONF_node* root) {
    const std::string first = written(root);
    CONF_node* again = load(first);
    expect_same(*root, *again);
    expect_same(*again, *root);
    if (written(again) != first) std::abort();
    CONF_free(again);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    CONF_node* root = load(std::string(reinterpret_cast<const char*>(data), size));
    expect_stable(root);
    forget_lines(*root);
    expect_stable(root);
    CONF_free(root);
    return 0;
}
