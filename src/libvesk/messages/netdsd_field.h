// The descriptor of a record's members: type and place, unit and name, the values that it
// may have, and what values or bits mean. How a record gets its descriptor stands in netdsd_record.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "libvesk/messages/unit.h"
#include "libvesk/support/types.h"

enum NETDSD_field_type {
    NETDSD_FT_BOOL,
    NETDSD_FT_CHAR,
    NETDSD_FT_BYTE,
    NETDSD_FT_SHORT,
    NETDSD_FT_USHORT,
    NETDSD_FT_INT,
    NETDSD_FT_UINT,
    NETDSD_FT_LONG,
    NETDSD_FT_ULONG,
    NETDSD_FT_SIZET,
    NETDSD_FT_TIME,
    NETDSD_FT_FTIME,
    NETDSD_FT_DOUBLE,
    NETDSD_FT_FLOAT,
    NETDSD_FT_A_BOOL,  // the same fourteen as arrays
    NETDSD_FT_A_CHAR,  // char[count], a text that is terminated only when it is shorter
    NETDSD_FT_A_BYTE,
    NETDSD_FT_A_SHORT,
    NETDSD_FT_A_USHORT,
    NETDSD_FT_A_INT,
    NETDSD_FT_A_UINT,
    NETDSD_FT_A_LONG,
    NETDSD_FT_A_ULONG,
    NETDSD_FT_A_SIZET,
    NETDSD_FT_A_TIME,
    NETDSD_FT_A_FTIME,
    NETDSD_FT_A_DOUBLE,
    NETDSD_FT_A_FLOAT,
    NETDSD_FT_STRING,  // char[count], terminated text
    NETDSD_FT_BIN,     // `count` nested records of type `type_name`
};
static_assert(NETDSD_FT_A_FLOAT == 27 && NETDSD_FT_STRING == 28 && NETDSD_FT_BIN == 29);

enum NETDSD_severity {
    NETDSD_STATE,  // how the instrument is used just now
    NETDSD_NOTE,   // for the operator to know
    NETDSD_FAULT,  // for the operator to mend
};

// The meaning of one value of a member, or of one bit (or any of several) of a word of flags.
struct NETDSD_meaning {
    std::uint32_t value;
    const char* text;  // as screens show it; "" when there is nothing to say
    NETDSD_severity severity;
};
using NETDSD_meanings = std::span<const NETDSD_meaning>;

struct NETDSD_entry;

struct NETDSD_field {
    NETDSD_field_type ft;
    const char* name;
    std::size_t offset;          // bytes from the start of the record
    std::size_t count;           // elements: 1 for a scalar, the length of an array, the bytes of a text
    const char* comment;         // its name in the field's terms: "sample temperature"
    std::size_t size;            // bytes of the whole field
    const char* type_name;       // of a nested record, else of the scalar
    const NETDSD_entry* nested;  // descriptor of a nested record, else null
    const UNIT* unit;            // of a number or a time, else null

    const char* elements = "";      // what the elements of an array are, in order: "blue, green, red"
    NETDSD_meanings meanings = {};  // known values, or known bits
    BOOL by_bits = FALSE;           // `meanings` are of bits
    BOOL has_range = FALSE;         // a valid number is from `min` to `max`; others may come all the same
    double min = 0;
    double max = 0;

    // Further statements about a member, for its line in the record's list.
    [[nodiscard]] constexpr NETDSD_field range(double from, double to) const {
        NETDSD_field f = *this;
        f.has_range = TRUE;
        f.min = from;
        f.max = to;
        return f;
    }
    [[nodiscard]] constexpr NETDSD_field each(const char* names) const {
        NETDSD_field f = *this;
        f.elements = names;
        return f;
    }
    [[nodiscard]] constexpr NETDSD_field values(NETDSD_meanings known) const {
        NETDSD_field f = *this;
        f.meanings = known;
        return f;
    }
    [[nodiscard]] constexpr NETDSD_field bits(NETDSD_meanings known) const {
        NETDSD_field f = values(known);
        f.by_bits = TRUE;
        return f;
    }
};

struct NETDSD_entry {
    const NETDSD_field* fields;
    std::size_t count_fields;
    const char* name;        // "NET_LOG_MonitorMessage"
    std::size_t total_size;  // bytes on the wire
    BOOL numbers_only;       // holds no text, char or BOOL, so that nothing in it ever needs cleaning
    BOOL padded;             // has bytes that no member owns
};

[[nodiscard]] constexpr BOOL NETDSD_is_array(NETDSD_field_type ft) {
    return ft >= NETDSD_FT_A_BOOL && ft <= NETDSD_FT_A_FLOAT;
}
[[nodiscard]] constexpr BOOL NETDSD_is_text(NETDSD_field_type ft) {
    return ft == NETDSD_FT_STRING || ft == NETDSD_FT_A_CHAR;
}
// Characters that a text field holds at most.
[[nodiscard]] constexpr std::size_t NETDSD_text_capacity(const NETDSD_field& f) {
    return f.ft == NETDSD_FT_STRING ? f.size - 1 : f.size;
}
// Values in a field: a text is one.
[[nodiscard]] constexpr std::size_t NETDSD_values(const NETDSD_field& f) {
    return NETDSD_is_text(f.ft) ? 1 : f.count;
}
// The type of one element of the field: the scalar type of an array, else the type itself.
[[nodiscard]] constexpr NETDSD_field_type NETDSD_element_type(NETDSD_field_type ft) {
    return NETDSD_is_array(ft) ? static_cast<NETDSD_field_type>(ft - NETDSD_FT_A_BOOL) : ft;
}

// The meaning of exactly that value, or null.
[[nodiscard]] constexpr const NETDSD_meaning* NETDSD_meaning_of(NETDSD_meanings meanings,
                                                                std::int64_t value) {
    for (const NETDSD_meaning& m : meanings)
        if (m.value == value) return &m;
    return nullptr;
}
