// Putting a field's description into words.
#include "peer/descriptor_text.h"

#include <cinttypes>
#include <cstdio>

#include "libvesk/json/json_describe.h"
#include "libvesk/json/json_record.h"

namespace {

std::string number(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.10g", value);
    return text;
}

std::string value_text(const NETDSD_field& f, std::uint32_t value) {
    char text[40];
    if (NETDSD_element_type(f.ft) == NETDSD_FT_BOOL) return value != 0 ? "true" : "false";
    std::snprintf(text, sizeof text, f.by_bits ? "0x%" PRIX32 : "%" PRIu32, value);
    return text;
}

}  // namespace

std::string DESCRIPTOR_type(const NETDSD_field& f) {
    const bool has_length = JSONREC_is_list(f) || NETDSD_is_text(f.ft);
    return f.type_name + (has_length ? "[" + std::to_string(f.count) + "]" : std::string());
}

std::string DESCRIPTOR_unit(const NETDSD_field& f) {
    return f.unit != nullptr ? f.unit->symbol : "";
}

std::string DESCRIPTOR_range(const NETDSD_field& f) {
    return f.has_range ? number(f.min) + " to " + number(f.max) : "";
}

std::string DESCRIPTOR_comment(const NETDSD_field& f) {
    std::string text = f.comment;
    if (f.elements[0] != '\0') text += std::string(" (") + f.elements + ")";
    return text;
}

std::vector<std::string> DESCRIPTOR_meanings(const NETDSD_field& f) {
    std::vector<std::string> lines;
    for (const NETDSD_meaning& m : f.meanings) {
        lines.push_back(value_text(f, m.value) + ": " + (m.text[0] != '\0' ? m.text : "normal"));
        if (m.severity != NETDSD_STATE)
            lines.back() += std::string(" (") + JSONDESC_severity(m.severity) + ")";
    }
    return lines;
}
