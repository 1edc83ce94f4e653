// The descriptors of the records that cross the wire, and everything generic that goes by them: size checks,
// cleaning on receipt, JSON, dumps. A header of records includes this one; netdsd_record.h shows the form.
//
// Doubles in records are aligned on 4 bytes only: pass them by value, never by reference or pointer.
#pragma once

#include <cstring>
#include <span>
#include <string_view>
#include <type_traits>

#include "libvesk/messages/netdsd_record.h"

// Cleans a record that came from outside, in place, whatever bytes it holds: texts are terminated within
// their field (those without terminator end with it) and zero-filled behind their end, bytes that are not
// printable become blanks (a NUL char stays), a BOOL becomes 0 or 1. Numbers stay as they are. `record` has
// total_size bytes, any alignment.
void NETDSD_sanitize(const NETDSD_entry* dsd, void* record);

// Zeroes the bytes that no member owns, in place: what stood in memory before a record was made there is not
// for others to see, and equal values become equal bytes.
void NETDSD_clear_padding(const NETDSD_entry* dsd, void* record);

// Fills a record with the values of a payload that says nothing: doubles missing, times -1, all else zero.
void NETDSD_set_defaults(const NETDSD_entry* dsd, void* record);

// A record of that type with those values.
template <class R>
[[nodiscard]] R NETDSD_default() {
    R record;
    NETDSD_set_defaults(NETDSD_of<R>(), &record);
    return record;
}

[[nodiscard]] inline std::span<const NETDSD_field> NETDSD_fields(const NETDSD_entry* dsd) {
    return {dsd->fields, dsd->count_fields};
}
// The field of that name, or null.
[[nodiscard]] const NETDSD_field* NETDSD_field_by_name(const NETDSD_entry* dsd, std::string_view name);

// A value out of and into a record, whatever its alignment. Any byte but 0 reads as TRUE.
template <class T>
[[nodiscard]] T NETDSD_load(const void* from) {
    if constexpr (std::is_same_v<T, BOOL>) {
        return NETDSD_load<BYTE>(from) != 0;
    } else {
        T value;
        std::memcpy(&value, from, sizeof value);
        return value;
    }
}
template <class T>
void NETDSD_store(void* to, std::type_identity_t<T> value) {
    std::memcpy(to, &value, sizeof value);
}

// Calls visit(std::type_identity<T>{}) with the C++ type of the field's elements: text counts as char. Not
// for nested records.
template <class F>
decltype(auto) NETDSD_visit_type(NETDSD_field_type ft, F&& visit) {
    switch (NETDSD_element_type(ft)) {
        case NETDSD_FT_BOOL:
            return visit(std::type_identity<BOOL>{});
        case NETDSD_FT_BYTE:
            return visit(std::type_identity<BYTE>{});
        case NETDSD_FT_SHORT:
            return visit(std::type_identity<std::int16_t>{});
        case NETDSD_FT_USHORT:
            return visit(std::type_identity<std::uint16_t>{});
        case NETDSD_FT_INT:
        case NETDSD_FT_TIME:
            return visit(std::type_identity<std::int32_t>{});
        case NETDSD_FT_UINT:
            return visit(std::type_identity<std::uint32_t>{});
        case NETDSD_FT_LONG:
            return visit(std::type_identity<std::int64_t>{});
        case NETDSD_FT_ULONG:
        case NETDSD_FT_SIZET:
            return visit(std::type_identity<std::uint64_t>{});
        case NETDSD_FT_FTIME:
        case NETDSD_FT_DOUBLE:
            return visit(std::type_identity<double>{});
        case NETDSD_FT_FLOAT:
            return visit(std::type_identity<float>{});
        default:
            return visit(std::type_identity<char>{});
    }
}

// Calls leaf(field, offset) for every value of the record in order of its place: each scalar, each element
// of an array, each text as a whole, those of nested records included. The offset counts from `base`.
template <class F>
void NETDSD_for_each_leaf(const NETDSD_entry* dsd, F&& leaf, std::size_t base = 0) {
    for (const NETDSD_field& f : NETDSD_fields(dsd)) {
        const std::size_t step = f.size / NETDSD_values(f);
        for (std::size_t i = 0; i < NETDSD_values(f); ++i) {
            const std::size_t at = base + f.offset + i * step;
            if (f.nested != nullptr) {
                NETDSD_for_each_leaf(f.nested, leaf, at);
            } else {
                leaf(f, at);
            }
        }
    }
}
