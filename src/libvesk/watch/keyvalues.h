// The key values of each kind of instrument: the few numbers by which an operator sees that it is well, and
// how long it may be quiet. A kind is a row of data; one without a row is still watched for its state.
#pragma once

#include <span>
#include <string_view>

#include "libvesk/messages/netmsg.h"

// One number of a record that a kind sends, as it travels. The descriptor's unit says how screens show it.
struct KEYVALUE {
    NETMSG_type msg;
    const NETDSD_entry* dsd;
    const NETDSD_field* field;  // the member, of a nested record too
    std::size_t offset;         // of the number, from the start of the record
    const char* label;          // "N", "Bsp G", "T"
    int decimals;               // as screens show it
};

struct KEYVALUES_kind {
    const char* kind;
    double quiet;                      // seconds after which silence is worth a word
    std::span<const KEYVALUE> values;  // the first one is the one whose trend is shown
};

inline constexpr double KEYVALUES_QUIET = 30;  // for kinds without a row

// The row of a kind, or null.
[[nodiscard]] const KEYVALUES_kind* KEYVALUES_of(std::string_view kind);
[[nodiscard]] std::span<const KEYVALUES_kind> KEYVALUES_all();

// The number that a payload of the value's message carries, in the unit of the wire; VESK_MISSING for one
// that is missing or not finite.
[[nodiscard]] double KEYVALUE_read(const KEYVALUE& value, const void* payload);
// The same as screens show it: "12.3 1/Mm", or dashes.
[[nodiscard]] std::string KEYVALUE_text(const KEYVALUE& value, double number);
