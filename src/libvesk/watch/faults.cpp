#include "libvesk/watch/faults.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <string_view>

namespace {

BOOL can_be_fault(const NETDSD_field& f) {
    if (f.nested != nullptr) return FAULTS_can_be_in(f.nested);
    return std::ranges::any_of(f.meanings,
                               [](const NETDSD_meaning& m) { return m.severity == NETDSD_FAULT; });
}

BOOL search(const NETDSD_entry* dsd) {
    return std::ranges::any_of(NETDSD_fields(dsd), can_be_fault);
}

void add(std::string& texts, std::string_view text) {
    if (text.empty() || texts.find(text) != std::string::npos) return;
    if (!texts.empty()) texts += ", ";
    texts += text;
}

std::int64_t whole_number(const NETDSD_field& f, const char* at) {
    return NETDSD_visit_type(f.ft, [at]<class T>(std::type_identity<T>) -> std::int64_t {
        if constexpr (std::is_floating_point_v<T>) {
            return 0;  // no meaning of a measured number is a fault
        } else {
            return static_cast<std::int64_t>(NETDSD_load<T>(at));
        }
    });
}

void judge(const NETDSD_field& f, const char* at, std::string& texts) {
    const std::int64_t value = whole_number(f, at);
    for (const NETDSD_meaning& m : f.meanings) {
        const bool applies = f.by_bits ? (value & m.value) != 0 : value == m.value;
        if (applies && m.severity == NETDSD_FAULT) add(texts, m.text);
    }
}

// Bit words that the elements of an array have in common are judged one by one; the answers of several units
// behind one driver together, since unused places answer never.
void collect(const NETDSD_entry* dsd, const char* record, FAULTS_found& found) {
    for (const NETDSD_field& f : NETDSD_fields(dsd)) {
        if (!can_be_fault(f)) continue;
        const std::size_t step = f.size / f.count;
        const char* at = record + f.offset;
        if (std::string_view(f.name) == "have_comms") {
            found.tells_comms = TRUE;
            found.have_comms = FALSE;
            for (std::size_t i = 0; i < f.count; ++i)
                if (NETDSD_load<BOOL>(at + i * step)) found.have_comms = TRUE;
            continue;
        }
        for (std::size_t i = 0; i < f.count; ++i, at += step) {
            if (f.nested != nullptr) {
                collect(f.nested, at, found);
            } else {
                judge(f, at, found.texts);
            }
        }
    }
}

}  // namespace

BOOL FAULTS_can_be_in(const NETDSD_entry* dsd) {
    static std::map<const NETDSD_entry*, BOOL> known;
    const auto found = known.find(dsd);
    if (found != known.end()) return found->second;
    const BOOL can = search(dsd);
    known.emplace(dsd, can);
    return can;
}

FAULTS_found FAULTS_of(const NETDSD_entry* dsd, const void* record) {
    FAULTS_found found;
    collect(dsd, static_cast<const char*>(record), found);
    return found;
}
