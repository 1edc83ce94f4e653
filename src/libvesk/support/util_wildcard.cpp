// Shell-style patterns. One pass with a single point to come back to (the latest star) decides: an earlier
// star never needs another try, so the time is bounded by text times pattern.
#include <string_view>

#include "libvesk/support/util.h"

namespace {

// One element of the pattern other than a star, read from its front: what it accepts.
struct element {
    std::string_view source;  // its characters in the pattern
    bool any = false;         // "?"
    bool is_set = false;      // "[...]": `source` without its brackets and negation is in `set`
    bool negated = false;
    std::string_view set{};
    char literal = '\0';
};

// The next character of a set, a backslash taken as quoting what follows.
char take_quoted(std::string_view& text) {
    if (text.size() > 1 && text.front() == '\\') text.remove_prefix(1);
    const char c = text.front();
    text.remove_prefix(1);
    return c;
}

// Length of the set's inside up to its closing bracket, which as first character is a member; npos if none.
std::size_t set_length(std::string_view inside) {
    for (std::size_t i = 0; i < inside.size(); ++i) {
        if (inside[i] == ']' && i > 0) return i;
        if (inside[i] == '\\') ++i;
    }
    return std::string_view::npos;
}

element read_set(std::string_view pattern) {
    const bool negated = pattern.size() > 1 && pattern[1] == '!';
    const std::size_t start = negated ? 2 : 1;
    const std::string_view inside = pattern.substr(start);
    const std::size_t length = set_length(inside);
    if (length == std::string_view::npos) return {.source = pattern.substr(0, 1), .literal = '['};
    return {.source = pattern.substr(0, start + length + 1),
            .is_set = true,
            .negated = negated,
            .set = inside.substr(0, length)};
}

element read_element(std::string_view pattern) {
    if (pattern.front() == '?') return {.source = pattern.substr(0, 1), .any = true};
    if (pattern.front() == '[') return read_set(pattern);
    const std::size_t length = pattern.front() == '\\' && pattern.size() > 1 ? 2 : 1;
    return {.source = pattern.substr(0, length), .literal = pattern[length - 1]};
}

bool in_set(std::string_view set, char c) {
    const auto wanted = static_cast<unsigned char>(c);
    while (!set.empty()) {
        const auto low = static_cast<unsigned char>(take_quoted(set));
        auto high = low;
        if (set.size() > 1 && set.front() == '-') {
            set.remove_prefix(1);
            high = static_cast<unsigned char>(take_quoted(set));
        }
        if (low <= wanted && wanted <= high) return true;
    }
    return false;
}

bool accepts(const element& e, char c) {
    if (e.any) return true;
    return e.is_set ? in_set(e.set, c) != e.negated : e.literal == c;
}

bool matches(std::string_view text, std::string_view pattern) {
    bool starred = false;
    std::string_view retry_text;
    std::string_view retry_pattern;
    while (!text.empty() || !pattern.empty()) {
        if (!pattern.empty() && pattern.front() == '*') {
            pattern.remove_prefix(1);
            starred = true;
            retry_text = text;
            retry_pattern = pattern;
            continue;
        }
        if (!pattern.empty() && !text.empty()) {
            const element e = read_element(pattern);
            if (accepts(e, text.front())) {
                pattern.remove_prefix(e.source.size());
                text.remove_prefix(1);
                continue;
            }
        }
        if (!starred || retry_text.empty()) return false;
        retry_text.remove_prefix(1);  // let the latest star take one more character
        text = retry_text;
        pattern = retry_pattern;
    }
    return true;
}

}  // namespace

BOOL UTIL_wildcard_match(const char* text, const char* pattern) {
    return matches(text == nullptr ? "" : text, pattern == nullptr ? "" : pattern);
}
