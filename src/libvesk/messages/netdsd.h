// Descriptors of the records that cross the wire. A record is a plain struct packed on 4 bytes; beside it
// stands one NETDSD_RECORD with the list of its members, from which the compiler deduces types, offsets and
// sizes. Everything generic goes by descriptor: size checks, cleaning on receipt, JSON, dumps.
//
//   #pragma pack(push, 4)
//   struct NET_X_Avg { FTIME start_time; double concentration; };
//   #pragma pack(pop)
//   NETDSD_RECORD(NET_X_Avg, 16, NETDSD_TIME(start_time), NETDSD_MEMBER(concentration));
//
// Doubles in such records are aligned on 4 bytes only: pass them by value, never by reference or pointer.
#pragma once

#include <array>
#include <cstddef>
#include <cstring>
#include <span>
#include <string_view>
#include <type_traits>

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

struct NETDSD_entry;

struct NETDSD_field {
    NETDSD_field_type ft;
    const char* name;
    std::size_t offset;          // bytes from the start of the record
    std::size_t count;           // elements: 1 for a scalar, the length of an array, the bytes of a text
    const char* comment;         // "" when there is nothing to say
    std::size_t size;            // bytes of the whole field
    const char* type_name;       // of a nested record, else of the scalar
    const NETDSD_entry* nested;  // descriptor of a nested record, else null
};

struct NETDSD_entry {
    const NETDSD_field* fields;
    std::size_t count_fields;
    const char* name;        // "NET_LOG_MonitorMessage"
    std::size_t total_size;  // bytes on the wire
    BOOL numbers_only;       // holds no text, char or BOOL, so that nothing in it ever needs cleaning
    BOOL padded;             // has bytes that no member owns
};

// Specialised by NETDSD_RECORD for every record.
template <class R>
struct NETDSD_traits;

template <class R>
[[nodiscard]] constexpr const NETDSD_entry* NETDSD_of() {
    return &NETDSD_traits<R>::entry;
}

namespace netdsd_detail {

struct scalar_type {
    NETDSD_field_type ft;
    const char* name;
};

template <class T>
constexpr scalar_type scalar(bool is_time) {
    if constexpr (std::is_same_v<T, BOOL>) return {NETDSD_FT_BOOL, "BOOL"};
    if constexpr (std::is_same_v<T, char>) return {NETDSD_FT_CHAR, "char"};
    if constexpr (std::is_same_v<T, BYTE>) return {NETDSD_FT_BYTE, "BYTE"};
    if constexpr (std::is_same_v<T, std::int16_t>) return {NETDSD_FT_SHORT, "int16"};
    if constexpr (std::is_same_v<T, std::uint16_t>) return {NETDSD_FT_USHORT, "uint16"};
    if constexpr (std::is_same_v<T, std::int32_t>)
        return is_time ? scalar_type{NETDSD_FT_TIME, "time32"} : scalar_type{NETDSD_FT_INT, "int32"};
    if constexpr (std::is_same_v<T, std::uint32_t>) return {NETDSD_FT_UINT, "uint32"};
    if constexpr (std::is_same_v<T, std::int64_t>) return {NETDSD_FT_LONG, "int64"};
    if constexpr (std::is_same_v<T, std::uint64_t>) return {NETDSD_FT_ULONG, "uint64"};
    if constexpr (std::is_same_v<T, float>) return {NETDSD_FT_FLOAT, "float"};
    if constexpr (std::is_same_v<T, double>)
        return is_time ? scalar_type{NETDSD_FT_FTIME, "FTIME"} : scalar_type{NETDSD_FT_DOUBLE, "double"};
}

template <class T>
inline constexpr bool is_scalar = std::is_arithmetic_v<T>;

enum class form { plain, time, chars };

template <class M>
constexpr NETDSD_field member(const char* name, std::size_t offset, form as) {
    using E = std::remove_extent_t<M>;
    static_assert(!std::is_array_v<E>, "records have arrays of one dimension only");
    constexpr std::size_t count = std::is_array_v<M> ? std::extent_v<M> : 1;
    if constexpr (std::is_array_v<M> && std::is_same_v<E, char>) {
        if (as == form::chars) return {NETDSD_FT_A_CHAR, name, offset, count, "", sizeof(M), "char", nullptr};
        return {NETDSD_FT_STRING, name, offset, count, "", sizeof(M), "STRING", nullptr};
    } else if constexpr (is_scalar<E>) {
        constexpr int array_step = NETDSD_FT_A_BOOL - NETDSD_FT_BOOL;
        const scalar_type s = scalar<E>(as == form::time);
        const auto ft = static_cast<NETDSD_field_type>(s.ft + (std::is_array_v<M> ? array_step : 0));
        return {ft, name, offset, count, "", sizeof(M), s.name, nullptr};
    } else {
        return {NETDSD_FT_BIN, name, offset, count, "", sizeof(M), NETDSD_of<E>()->name, NETDSD_of<E>()};
    }
}

// The alignment, at most 4, that the packed layout gives a field.
constexpr std::size_t alignment(const NETDSD_field& f) {
    if (f.ft == NETDSD_FT_BIN) {
        std::size_t most = 1;
        for (std::size_t i = 0; i < f.nested->count_fields; ++i) {
            const std::size_t a = alignment(f.nested->fields[i]);
            most = a > most ? a : most;
        }
        return most;
    }
    const std::size_t one = f.size / f.count;
    return one < 4 ? one : 4;
}

// Every byte of the record belongs to a listed member or is padding that the layout itself makes: a record
// that is aligned more than its members are is padded at its end.
constexpr bool covers(const NETDSD_field* fields, std::size_t n, std::size_t total, std::size_t aligned) {
    std::size_t end = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const std::size_t a = alignment(fields[i]);
        if (fields[i].offset != (end + a - 1) / a * a) return false;
        end = fields[i].offset + fields[i].size;
    }
    return (end + aligned - 1) / aligned * aligned == total;
}

constexpr BOOL numbers_only(const NETDSD_field* fields, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        const NETDSD_field& f = fields[i];
        const bool clean = f.ft == NETDSD_FT_BIN ? f.nested->numbers_only
                                                 : f.ft != NETDSD_FT_BOOL && f.ft != NETDSD_FT_A_BOOL &&
                                                       f.ft != NETDSD_FT_CHAR && f.ft != NETDSD_FT_A_CHAR &&
                                                       f.ft != NETDSD_FT_STRING;
        if (!clean) return FALSE;
    }
    return TRUE;
}

constexpr BOOL padded(const NETDSD_field* fields, std::size_t n, std::size_t total) {
    std::size_t end = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const NETDSD_field& f = fields[i];
        if (f.offset != end || (f.ft == NETDSD_FT_BIN && f.nested->padded)) return TRUE;
        end = f.offset + f.size;
    }
    return end != total;
}

}  // namespace netdsd_detail

#define NETDSD_FIELD(m, as) netdsd_detail::member<decltype(R::m)>(#m, offsetof(R, m), netdsd_detail::form::as)
#define NETDSD_MEMBER(m) NETDSD_FIELD(m, plain)  // a char[] is a terminated text
#define NETDSD_TIME(m) NETDSD_FIELD(m, time)
#define NETDSD_CHARS(m) NETDSD_FIELD(m, chars)  // a char[] that its text may fill to the last byte

#define NETDSD_RECORD(record, size_in_bytes, ...)                                                         \
    template <>                                                                                           \
    struct NETDSD_traits<record> {                                                                        \
        using R = record;                                                                                 \
        static constexpr auto fields = std::to_array<NETDSD_field>({__VA_ARGS__});                        \
        static constexpr NETDSD_entry entry{                                                              \
            fields.data(),                                                                                \
            fields.size(),                                                                                \
            #record,                                                                                      \
            sizeof(record),                                                                               \
            netdsd_detail::numbers_only(fields.data(), fields.size()),                                    \
            netdsd_detail::padded(fields.data(), fields.size(), sizeof(record))};                         \
    };                                                                                                    \
    static_assert(sizeof(record) == (size_in_bytes), #record ": size");                                   \
    static_assert(std::is_trivially_copyable_v<record>, #record ": trivially copyable");                  \
    static_assert(                                                                                        \
        netdsd_detail::covers(NETDSD_traits<record>::fields.data(), NETDSD_traits<record>::fields.size(), \
                              sizeof(record), alignof(record)),                                           \
        #record ": the member list covers the record")

// For layouts that are stated byte by byte.
#define NETDSD_OFFSET(record, member, bytes) \
    static_assert(offsetof(record, member) == (bytes), #record ": offset of " #member)

// Cleans a record that came from outside, in place, whatever bytes it holds: texts are terminated within
// their field (those without terminator end with it) and zero-filled behind their end, bytes that are not
// printable become blanks (a NUL char stays), a
// BOOL becomes 0 or 1. Numbers stay as they are. `record` has total_size bytes, any alignment.
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
// What one element of the field is: the scalar type of an array, else the type itself.
[[nodiscard]] constexpr NETDSD_field_type NETDSD_element_type(NETDSD_field_type ft) {
    return NETDSD_is_array(ft) ? static_cast<NETDSD_field_type>(ft - NETDSD_FT_A_BOOL) : ft;
}

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
