// The rows of key values, checked when compiled: a value that is not a number of its message's record does
// not compile.
#include "libvesk/watch/keyvalues.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

#include "libvesk/messages/records/all.h"

namespace {

// By type alone: gcc's sanitizers take no address for a constant.
consteval bool is_number(NETDSD_field_type ft) {
    const NETDSD_field_type element = NETDSD_element_type(ft);
    return !NETDSD_is_text(ft) && element != NETDSD_FT_BOOL && element != NETDSD_FT_CHAR;
}

// The member that holds the number at that place.
consteval const NETDSD_field* member_at(const NETDSD_entry* dsd, std::size_t offset) {
    for (std::size_t i = 0; i < dsd->count_fields; ++i) {
        const NETDSD_field& f = dsd->fields[i];
        if (offset < f.offset || offset >= f.offset + f.size) continue;
        if (f.ft == NETDSD_FT_BIN) return member_at(f.nested, (offset - f.offset) % f.nested->total_size);
        if (!is_number(f.ft) || (offset - f.offset) % (f.size / f.count) != 0) throw "not a number";
        return &f;
    }
    throw "no member stands there";
}

template <class R>
consteval KEYVALUE value(NETMSG_type msg, std::size_t offset, const char* label, int decimals) {
    return {.msg = msg,
            .dsd = NETDSD_of<R>(),
            .field = member_at(NETDSD_of<R>(), offset),
            .offset = offset,
            .label = label,
            .decimals = decimals};
}

#define VALUE(msg, R, member, label, decimals) value<R>(msg, offsetof(R, member), label, decimals)

constexpr KEYVALUE AETHALOMETER[] = {
    VALUE(MSG_AETHALOMETER_REPORT, NET_AETHALOMETER_Report, conc[5], "BC 880", 0),
    VALUE(MSG_AETHALOMETER_REPORT, NET_AETHALOMETER_Report, Q, "Q", 2)};
constexpr KEYVALUE BESTUPS[] = {VALUE(MSG_BESTUPS_INSTANT, NET_BESTUPS_Instant, in.V_mains, "mains", 0),
                                VALUE(MSG_BESTUPS_INSTANT, NET_BESTUPS_Instant, in.charge, "bat", 0),
                                VALUE(MSG_BESTUPS_INSTANT, NET_BESTUPS_Instant, in.time_left, "left", 0)};
constexpr KEYVALUE CAPS[] = {VALUE(MSG_CAPS_INSTANT, NET_CAPS_Instant, in.ext, "Bext", 2),
                             VALUE(MSG_CAPS_INSTANT, NET_CAPS_Instant, in.temp, "T", 1)};
constexpr KEYVALUE CCN[] = {VALUE(MSG_CCN_INSTANT, NET_CCN_Instant, cnc, "N", 1),
                            VALUE(MSG_CCN_INSTANT, NET_CCN_Instant, ss_setting, "SS", 2)};
constexpr KEYVALUE CLAP3W[] = {VALUE(MSG_CLAP3W_INSTANT, NET_CLAP3W_Instant, bap[1], "Bap G", 2),
                               VALUE(MSG_CLAP3W_INSTANT, NET_CLAP3W_Instant, tr[1], "Tr G", 3),
                               VALUE(MSG_CLAP3W_INSTANT, NET_CLAP3W_Instant, Q, "Q", 2)};
constexpr KEYVALUE CPC_3010[] = {VALUE(MSG_CPC_3010_INSTANT, NET_CPC_3010_Instant, concentration, "N", 1)};
constexpr KEYVALUE CPC_3022[] = {VALUE(MSG_CPC_3022_INSTANT, NET_CPC_3022_Instant, concentration, "N", 1)};
constexpr KEYVALUE CPC_3703[] = {VALUE(MSG_CPC_3703_INSTANT, NET_CPC_3703_Instant, concentration, "N", 1)};
constexpr KEYVALUE CPC_3775[] = {VALUE(MSG_CPC_3775_INSTANT, NET_CPC_3775_Instant, concentration, "N", 1)};
constexpr KEYVALUE CPC_3781[] = {VALUE(MSG_CPC_3781_INSTANT, NET_CPC_3781_Instant, concentration, "N", 1)};
constexpr KEYVALUE CPC_3783[] = {VALUE(MSG_CPC_3783_INSTANT, NET_CPC_3783_Instant, concentration, "N", 1)};
constexpr KEYVALUE CPC_BMI1710[] = {VALUE(MSG_CPC_BMI1710_INSTANT, NET_CPC_BMI1710_Instant, in.N, "N", 1)};
constexpr KEYVALUE CPC_PULSE[] = {VALUE(MSG_CPC_PULSE_INSTANT, NET_CPC_Pulse_Instant, concentration, "N", 1)};
constexpr KEYVALUE GENERICPID[] = {VALUE(MSG_GENERICPID_INSTANT, NET_GENERICPID_Instant, pv, "PV", 2)};
constexpr KEYVALUE GRIMM[] = {VALUE(MSG_GRIMM_INSTANT, NET_GRIMM_Instant, N, "N", 1),
                              VALUE(MSG_GRIMM_INSTANT, NET_GRIMM_Instant, Q, "Q", 2)};
constexpr KEYVALUE HYGROMETER[] = {VALUE(MSG_HYGROMETER_INSTANT, NET_HYGROMETER_Instant, in.T_dew, "Td", 1),
                                   VALUE(MSG_HYGROMETER_INSTANT, NET_HYGROMETER_Instant, in.RH, "RH", 1)};
constexpr KEYVALUE LASAIR[] = {VALUE(MSG_LASAIR_INSTANT, NET_LASAIR_Instant, N, "N", 1),
                               VALUE(MSG_LASAIR_INSTANT, NET_LASAIR_Instant, Q, "Q", 2)};
constexpr KEYVALUE LOVEPID[] = {VALUE(MSG_LOVEPID_INSTANT, NET_LOVEPID_Instant, pv[0], "PV 1", 2)};
constexpr KEYVALUE MAAP[] = {VALUE(MSG_MAAP_REPORT, NET_MAAP_Report, abs, "Bap", 2),
                             VALUE(MSG_MAAP_REPORT, NET_MAAP_Report, tr, "Tr", 3)};
constexpr KEYVALUE NEPH[] = {VALUE(MSG_NEPH_INSTANT, NET_NEPH_Instant, s.bsp[1], "Bsp G", 2),
                             VALUE(MSG_NEPH_INSTANT, NET_NEPH_Instant, RH_neph, "RH", 1),
                             VALUE(MSG_NEPH_INSTANT, NET_NEPH_Instant, T_neph, "T", 1)};
constexpr KEYVALUE NEPHM903[] = {VALUE(MSG_NEPHM903_INSTANT, NET_NEPHM903_Instant, bspg, "Bsp G", 2),
                                 VALUE(MSG_NEPHM903_INSTANT, NET_NEPHM903_Instant, RH_neph, "RH", 1)};
constexpr KEYVALUE NEPH_AURORA3000[] = {
    VALUE(MSG_NEPHAURORA3000_INSTANT, NET_NEPHAURORA3000_Instant, s.bsp[1], "Bsp G", 2),
    VALUE(MSG_NEPHAURORA3000_INSTANT, NET_NEPHAURORA3000_Instant, RH_sample, "RH", 1)};
constexpr KEYVALUE PAX[] = {VALUE(MSG_PAX_INSTANT, NET_PAX_Instant, in.ba, "Bap", 2),
                            VALUE(MSG_PAX_INSTANT, NET_PAX_Instant, in.bs, "Bsp", 2)};
constexpr KEYVALUE PSAP[] = {VALUE(MSG_PSAP_INSTANT, NET_PSAP_Instant, bap, "Bap G", 2),
                             VALUE(MSG_PSAP_INSTANT, NET_PSAP_Instant, tr, "Tr", 3)};
constexpr KEYVALUE PSAP3[] = {VALUE(MSG_PSAP3_INSTANT, NET_PSAP3_Instant, bap[1], "Bap G", 2),
                              VALUE(MSG_PSAP3_INSTANT, NET_PSAP3_Instant, tr[1], "Tr G", 3)};
constexpr KEYVALUE SEMS[] = {VALUE(MSG_SEMS_INFO, NET_SEMS_Info, Q_sheath, "Q sh", 2),
                             VALUE(MSG_SEMS_INFO, NET_SEMS_Info, rh, "RH", 1)};
constexpr KEYVALUE TSITMF[] = {VALUE(MSG_TSITMF_INSTANT, NET_TSITMF_Instant, in.Q, "Q", 2),
                               VALUE(MSG_TSITMF_INSTANT, NET_TSITMF_Instant, in.T, "T", 1)};
constexpr KEYVALUE VERTICALPROFILE[] = {
    VALUE(MSG_VERTICALPROFILE_ALL, NET_VERTICALPROFILE_All, wp_site.distance, "site", 1)};
constexpr KEYVALUE WATLOW[] = {VALUE(MSG_WATLOW_INSTANT, NET_WATLOW_Channels, chA, "A", 1),
                               VALUE(MSG_WATLOW_INSTANT, NET_WATLOW_Channels, chB, "B", 1)};

// In the order of the kinds. Reports that come by themselves every few minutes may be quiet for two of them.
constexpr KEYVALUES_kind ROWS[] = {
    {.kind = "aethalometer", .quiet = 900, .values = AETHALOMETER},
    {.kind = "bestups", .quiet = 15, .values = BESTUPS},
    {.kind = "caps", .quiet = 15, .values = CAPS},
    {.kind = "ccn", .quiet = 15, .values = CCN},
    {.kind = "clap3w", .quiet = 15, .values = CLAP3W},
    {.kind = "cpc_3010", .quiet = 15, .values = CPC_3010},
    {.kind = "cpc_3022", .quiet = 15, .values = CPC_3022},
    {.kind = "cpc_3703", .quiet = 15, .values = CPC_3703},
    {.kind = "cpc_3775", .quiet = 15, .values = CPC_3775},
    {.kind = "cpc_3781", .quiet = 15, .values = CPC_3781},
    {.kind = "cpc_3783", .quiet = 15, .values = CPC_3783},
    {.kind = "cpc_bmi1710", .quiet = 15, .values = CPC_BMI1710},
    {.kind = "cpc_pulse", .quiet = 15, .values = CPC_PULSE},
    {.kind = "genericpid", .quiet = 15, .values = GENERICPID},
    {.kind = "grimm", .quiet = 150, .values = GRIMM},
    {.kind = "hygrometer", .quiet = 15, .values = HYGROMETER},
    {.kind = "lasair", .quiet = 150, .values = LASAIR},
    {.kind = "lovepid", .quiet = 30, .values = LOVEPID},
    {.kind = "maap", .quiet = 150, .values = MAAP},
    {.kind = "neph", .quiet = 15, .values = NEPH},
    {.kind = "neph_passive", .quiet = 15, .values = NEPH},
    {.kind = "nephM903", .quiet = 15, .values = NEPHM903},
    {.kind = "neph_aurora3000", .quiet = 15, .values = NEPH_AURORA3000},
    {.kind = "pax", .quiet = 15, .values = PAX},
    {.kind = "psap", .quiet = 15, .values = PSAP},
    {.kind = "psap3", .quiet = 15, .values = PSAP3},
    {.kind = "sems", .quiet = 900, .values = SEMS},
    {.kind = "tsitmf", .quiet = 15, .values = TSITMF},
    {.kind = "verticalprofile", .quiet = 60, .values = VERTICALPROFILE},
    {.kind = "watlow", .quiet = 30, .values = WATLOW},
};

}  // namespace

std::span<const KEYVALUES_kind> KEYVALUES_all() {
    return ROWS;
}

const KEYVALUES_kind* KEYVALUES_of(std::string_view kind) {
    const auto* row = std::ranges::find(ROWS, kind, &KEYVALUES_kind::kind);
    return row != std::end(ROWS) ? row : nullptr;
}

double KEYVALUE_read(const KEYVALUE& value, const void* payload) {
    const char* at = static_cast<const char*>(payload) + value.offset;
    const double number = NETDSD_visit_type(value.field->ft, [at]<class T>(std::type_identity<T>) {
        return static_cast<double>(NETDSD_load<T>(at));
    });
    return std::isfinite(number) ? number : VESK_MISSING;
}

std::string KEYVALUE_text(const KEYVALUE& value, double number) {
    const UNIT& unit = *value.field->unit;
    const std::string behind =
        *UNIT_screen_symbol(unit) != '\0' ? std::string(" ") + UNIT_screen_symbol(unit) : "";
    if (number == VESK_MISSING) return "--" + behind;
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", value.decimals, UNIT_on_screen(unit, number));
    return text + behind;
}
