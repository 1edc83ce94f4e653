// Everything generic about records that needs nothing but their descriptors: cleaning what came from outside,
// default values.
#include "libvesk/messages/netdsd.h"

#include <algorithm>

#include "libvesk/support/util.h"

namespace {

void sanitize_text(char* text, std::size_t capacity, std::size_t size) {
    const void* terminator = std::memchr(text, '\0', capacity);
    const std::size_t length = terminator != nullptr ? static_cast<const char*>(terminator) - text : capacity;
    std::transform(text, text + length, text, UTIL_shown);
    std::memset(text + length, 0, size - length);
}

void sanitize_field(const NETDSD_field& f, char* at) {
    switch (f.ft) {
        case NETDSD_FT_BOOL:
        case NETDSD_FT_A_BOOL:
            std::transform(at, at + f.count, at, [](char c) -> char { return c != 0; });
            break;
        case NETDSD_FT_CHAR:
            if (*at != 0) *at = UTIL_shown(*at);
            break;
        case NETDSD_FT_A_CHAR:
        case NETDSD_FT_STRING:
            sanitize_text(at, NETDSD_text_capacity(f), f.size);
            break;
        case NETDSD_FT_BIN:
            if (f.nested->numbers_only) break;
            for (std::size_t i = 0; i < f.count; ++i)
                NETDSD_sanitize(f.nested, at + i * f.nested->total_size);
            break;
        default:
            break;
    }
}

void set_default(const NETDSD_field& f, char* at) {
    switch (NETDSD_element_type(f.ft)) {
        case NETDSD_FT_DOUBLE:
            NETDSD_store<double>(at, VESK_MISSING);
            break;
        case NETDSD_FT_FTIME:
            NETDSD_store<FTIME>(at, VESK_NO_TIME);
            break;
        case NETDSD_FT_TIME:
            NETDSD_store<TIME32>(at, -1);
            break;
        default:
            break;
    }
}

}  // namespace

const NETDSD_field* NETDSD_field_by_name(const NETDSD_entry* dsd, std::string_view name) {
    const auto fields = NETDSD_fields(dsd);
    const auto found =
        std::find_if(fields.begin(), fields.end(), [&](const auto& f) { return name == f.name; });
    return found != fields.end() ? &*found : nullptr;
}

void NETDSD_sanitize(const NETDSD_entry* dsd, void* record) {
    if (dsd->numbers_only) return;
    for (const NETDSD_field& f : NETDSD_fields(dsd)) {
        sanitize_field(f, static_cast<char*>(record) + f.offset);
    }
}

void NETDSD_clear_padding(const NETDSD_entry* dsd, void* record) {
    if (!dsd->padded) return;
    char* const bytes = static_cast<char*>(record);
    std::size_t end = 0;
    for (const NETDSD_field& f : NETDSD_fields(dsd)) {
        std::memset(bytes + end, 0, f.offset - end);
        end = f.offset + f.size;
        if (f.nested == nullptr || !f.nested->padded) continue;
        for (std::size_t i = 0; i < f.count; ++i)
            NETDSD_clear_padding(f.nested, bytes + f.offset + i * f.nested->total_size);
    }
    std::memset(bytes + end, 0, dsd->total_size - end);
}

void NETDSD_set_defaults(const NETDSD_entry* dsd, void* record) {
    char* const bytes = static_cast<char*>(record);
    std::memset(bytes, 0, dsd->total_size);
    NETDSD_for_each_leaf(dsd, [&](const NETDSD_field& f, std::size_t at) { set_default(f, bytes + at); });
}
