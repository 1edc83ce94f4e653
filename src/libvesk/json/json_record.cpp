// Written by hand instead of through a JSON library: a line is made for every message of the station, and
// doubles must come back exactly.
#include "libvesk/json/json_record.h"

#include <charconv>
#include <cmath>

#include "libvesk/support/util.h"

namespace {

template <class T>
void append_shortest(std::string* out, T value) {
    char digits[40];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    out->append(digits, end);
}

template <class T>
void append_floating(std::string* out, T value) {
    if (std::isnan(value)) {
        JSONREC_append_text(out, JSONREC_NAN);
    } else if (std::isinf(value)) {
        JSONREC_append_text(out, value > 0 ? JSONREC_INF : JSONREC_NEG_INF);
    } else if (value == 0 && std::signbit(value)) {
        *out += "-0.0";  // "-0" reads back as the integer 0
    } else {
        append_shortest(out, value);
    }
}

void append_scalar(std::string* out, NETDSD_field_type ft, const char* at) {
    NETDSD_visit_type(ft, [&]<class T>(std::type_identity<T>) {
        const T value = NETDSD_load<T>(at);
        if constexpr (std::is_same_v<T, BOOL>) {
            *out += value ? "true" : "false";
        } else if constexpr (std::is_same_v<T, char>) {
            JSONREC_append_text(out, std::string_view(&value, value != 0 ? 1 : 0));
        } else if constexpr (std::is_same_v<T, double>) {
            JSONREC_append_double(out, value);
        } else if constexpr (std::is_same_v<T, float>) {
            append_floating(out, value);
        } else {
            append_shortest(out, value);
        }
    });
}

void append_element(std::string* out, const NETDSD_field& f, const char* at) {
    if (f.ft == NETDSD_FT_BIN) {
        JSONREC_append_record(out, f.nested, at);
    } else if (NETDSD_is_text(f.ft)) {
        const std::string_view text(at, NETDSD_text_capacity(f));
        JSONREC_append_text(out, text.substr(0, text.find('\0')));
    } else {
        append_scalar(out, f.ft, at);
    }
}

void append_field(std::string* out, const NETDSD_field& f, const char* at) {
    if (!JSONREC_is_list(f)) return append_element(out, f, at);
    *out += '[';
    for (std::size_t i = 0; i < f.count; ++i) {
        if (i > 0) *out += ',';
        append_element(out, f, at + i * (f.size / f.count));
    }
    *out += ']';
}

void append_escaped(std::string* out, unsigned char c) {
    constexpr char HEX[] = "0123456789abcdef";
    *out += "\\u00";
    *out += HEX[c >> 4];
    *out += HEX[c & 15];
}

}  // namespace

void JSONREC_append_record(std::string* out, const NETDSD_entry* dsd, const void* record) {
    *out += '{';
    for (const NETDSD_field& f : NETDSD_fields(dsd)) {
        if (out->back() != '{') *out += ',';
        *out += '"';
        *out += f.name;
        *out += "\":";
        append_field(out, f, static_cast<const char*>(record) + f.offset);
    }
    *out += '}';
}

void JSONREC_append_text(std::string* out, std::string_view text) {
    *out += '"';
    for (const char c : text) {
        if (!UTIL_is_printable(static_cast<unsigned char>(c))) {
            append_escaped(out, static_cast<unsigned char>(c));
            continue;
        }
        if (c == '"' || c == '\\') *out += '\\';
        *out += c;
    }
    *out += '"';
}

void JSONREC_append_double(std::string* out, double value) {
    if (VESK_is_missing(value)) {
        *out += "null";
    } else {
        append_floating(out, value);
    }
}
