// Every record that can travel, and records full of anything: for tests that treat all of them alike.
#pragma once

#include <algorithm>
#include <random>
#include <set>
#include <string_view>
#include <vector>

#include "libvesk/messages/netmsg.h"
#include "libvesk/support/util.h"

inline void add_with_nested(std::set<const NETDSD_entry*>* all, const NETDSD_entry* dsd) {
    all->insert(dsd);
    for (const NETDSD_field& f : NETDSD_fields(dsd))
        if (f.nested != nullptr) add_with_nested(all, f.nested);
}

inline std::set<const NETDSD_entry*> all_records() {
    std::set<const NETDSD_entry*> all;
    for (int i = 0; i < NETMSG_COUNT; ++i)
        if (const NETDSD_entry* dsd = NETMSG_by_type(i)->dsd; dsd != nullptr) add_with_nested(&all, dsd);
    return all;
}

inline std::vector<char> random_bytes(std::size_t size, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<char> bytes(size);
    for (char& b : bytes)
        b = static_cast<char>(random());
    return bytes;
}

inline std::vector<char> default_record(const NETDSD_entry* dsd) {
    std::vector<char> record(dsd->total_size, 'x');
    NETDSD_set_defaults(dsd, record.data());
    return record;
}

inline BOOL is_clean_text(std::string_view field, std::size_t capacity) {
    const std::size_t end = std::min(field.find('\0'), field.size());
    const std::string_view text = field.substr(0, end);
    return end <= capacity && field.find_first_not_of('\0', end) == std::string_view::npos &&
           std::all_of(text.begin(), text.end(),
                       [](char c) { return UTIL_is_printable(static_cast<unsigned char>(c)); });
}

inline BOOL is_clean_value(const NETDSD_field& f, const char* at) {
    const auto first = static_cast<unsigned char>(*at);
    if (NETDSD_is_text(f.ft)) return is_clean_text({at, f.size}, NETDSD_text_capacity(f));
    switch (NETDSD_element_type(f.ft)) {
        case NETDSD_FT_BOOL:
            return first <= 1;
        case NETDSD_FT_CHAR:
            return first == 0 || UTIL_is_printable(first);
        default:
            return TRUE;
    }
}

// The promises of NETDSD_sanitize about every text, character and BOOL.
inline BOOL is_clean(const NETDSD_entry* dsd, const char* record) {
    BOOL clean = TRUE;
    NETDSD_for_each_leaf(
        dsd, [&](const NETDSD_field& f, std::size_t at) { clean = clean && is_clean_value(f, record + at); });
    return clean;
}
