// How a record gets its descriptor. A record is a plain struct packed on 4 bytes; beside it stands one
// NETDSD_RECORD with the list of its members, from which the compiler deduces types, offsets and sizes.
//
//   #pragma pack(push, 4)
//   struct NET_X_Avg { FTIME start_time; double T; double bsp[3]; BOOL lit; };
//   #pragma pack(pop)
//   NETDSD_RECORD(NET_X_Avg, 44,
//       NETDSD_TIME(start_time, "begin of the interval"),
//       NETDSD_MEMBER(T, UNIT_degC, "sample temperature").range(-40, 60),
//       NETDSD_MEMBER(bsp, UNIT_per_m, "total scatter").each("blue, green, red"),
//       NETDSD_MEMBER(lit, "the lamp is on"));
//
// A line gives the member's unit on the wire and its name in the field's terms. Every number has a unit, if
// only UNIT_none; texts, characters, BOOLs and nested records have none. .values() and .bits() name the table
// of what a state or the bits of a flag word mean.
#pragma once

#include <array>
#include <type_traits>

#include "libvesk/messages/netdsd_field.h"

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
template <class T>
inline constexpr bool is_number = is_scalar<T> && !std::is_same_v<T, BOOL> && !std::is_same_v<T, char>;

enum class form { plain, time, chars };

template <class M, form AS>
constexpr NETDSD_field described(const char* name, std::size_t offset, const UNIT* unit,
                                 const char* comment) {
    using E = std::remove_extent_t<M>;
    static_assert(!std::is_array_v<E>, "records have arrays of one dimension only");
    constexpr std::size_t count = std::is_array_v<M> ? std::extent_v<M> : 1;
    if constexpr (AS == form::chars) {
        static_assert(std::is_array_v<M> && std::is_same_v<E, char>, "only a char[] is a text");
        return {NETDSD_FT_A_CHAR, name, offset, count, comment, sizeof(M), "char", nullptr, nullptr};
    } else if constexpr (std::is_array_v<M> && std::is_same_v<E, char>) {
        return {NETDSD_FT_STRING, name, offset, count, comment, sizeof(M), "STRING", nullptr, nullptr};
    } else if constexpr (is_scalar<E>) {
        constexpr int array_step = NETDSD_FT_A_BOOL - NETDSD_FT_BOOL;
        constexpr scalar_type s = scalar<E>(AS == form::time);
        constexpr auto ft = static_cast<NETDSD_field_type>(s.ft + (std::is_array_v<M> ? array_step : 0));
        return {ft, name, offset, count, comment, sizeof(M), s.name, nullptr, unit};
    } else {
        constexpr const NETDSD_entry* nested = NETDSD_of<E>();
        return {NETDSD_FT_BIN, name, offset, count, comment, sizeof(M), nested->name, nested, nullptr};
    }
}

template <class M, form AS>
constexpr NETDSD_field member(const char* name, std::size_t offset, const UNIT& unit, const char* comment) {
    static_assert(is_number<std::remove_extent_t<M>>, "only a number has a unit");
    return described<M, AS>(name, offset, &unit, comment);
}

template <class M, form AS>
constexpr NETDSD_field member(const char* name, std::size_t offset, const char* comment) {
    using E = std::remove_extent_t<M>;
    static_assert(AS == form::time || !is_number<E>, "a number says its unit, if only UNIT_none");
    return described<M, AS>(name, offset, AS == form::time ? &UNIT_epoch : nullptr, comment);
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

// Numbers may be anything; texts, characters and BOOLs may not. (Asked of the type and not of the unit: under
// its sanitizer gcc compares no address with null at compile time.)
constexpr bool is_a_number(NETDSD_field_type ft) {
    switch (ft) {
        case NETDSD_FT_BOOL:
        case NETDSD_FT_A_BOOL:
        case NETDSD_FT_CHAR:
        case NETDSD_FT_A_CHAR:
        case NETDSD_FT_STRING:
            return false;
        default:
            return true;
    }
}

constexpr BOOL numbers_only(const NETDSD_field* fields, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        const NETDSD_field& f = fields[i];
        const bool clean = f.ft == NETDSD_FT_BIN ? f.nested->numbers_only : is_a_number(f.ft);
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

#define NETDSD_FIELD(as, m, ...) \
    netdsd_detail::member<decltype(R::m), netdsd_detail::form::as>(#m, offsetof(R, m), __VA_ARGS__)
#define NETDSD_MEMBER(m, ...) NETDSD_FIELD(plain, m, __VA_ARGS__)  // a char[] is a terminated text
#define NETDSD_TIME(m, comment) NETDSD_FIELD(time, m, comment)
#define NETDSD_CHARS(m, comment) NETDSD_FIELD(chars, m, comment)  // a char[] that its text may fill wholly

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
