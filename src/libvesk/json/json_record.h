// Writes records as JSON text by their descriptors. What it writes, JSONLINE_read reads back to the same
// values; the output is printable ASCII only, so that it is safe on a terminal.
#pragma once

#include <string>
#include <string_view>

#include "libvesk/messages/netdsd.h"

// Numbers that JSON cannot say.
inline constexpr std::string_view JSONREC_NAN = "NaN";
inline constexpr std::string_view JSONREC_INF = "Inf";
inline constexpr std::string_view JSONREC_NEG_INF = "-Inf";

// TRUE when the field is a JSON array: an array of values, or more than one nested record.
[[nodiscard]] constexpr BOOL JSONREC_is_list(const NETDSD_field& f) {
    return !NETDSD_is_text(f.ft) && (NETDSD_is_array(f.ft) || (f.ft == NETDSD_FT_BIN && f.count > 1));
}

// Appends an object with the record's fields in their order: nested records are objects, arrays arrays,
// texts strings, characters strings of one character (none for 0), BOOLs true or false, a missing double is
// null. `record` may have any alignment and any bytes.
void JSONREC_append_record(std::string* out, const NETDSD_entry* dsd, const void* record);

// Appends a quoted text, each byte as the character of that number.
void JSONREC_append_text(std::string* out, std::string_view text);

// Appends the shortest number that reads back as the same double; null when missing.
void JSONREC_append_double(std::string* out, double value);
