// The one table of instrument kinds. A new kind is a row here and a file inst_<family>.cpp that defines
// SIM_DCL_<type>. Source names count on from the first of a kind; identifiers are unique in the table.
#pragma once

#include <span>

#include "simstation/sim.h"

// X(type, name, display_name, id_ch, tags, on_demand)
// clang-format off
#define SIM_KIND_LIST(X) \
    X(cpc_3010,    "N61", "TSI 3010 CPC",   '1', "cpc", FALSE) \
    X(cpc_3022,    "N62", "TSI 3022 CPC",   '2', "cpc", FALSE) \
    X(cpc_3703,    "N63", "TSI 3703 CPC",   '3', "cpc", FALSE) \
    X(cpc_3775,    "N64", "TSI 3775 CPC",   '4', "cpc", FALSE) \
    X(cpc_3781,    "N65", "TSI 3781 WCPC",  '5', "cpc", FALSE) \
    X(cpc_3783,    "N66", "TSI 3783 WCPC",  '6', "cpc", FALSE) \
    X(cpc_bmi1710, "N67", "BMI 1710 MCPC",  '7', "cpc", FALSE) \
    X(cpc_pulse,   "N68", "Pulse counter",  '8', "cpc", FALSE) \
    X(lovepid,     "C11", "Love heaters",   'L', "control", FALSE) \
    X(verticalprofile, "V11", "Vertical profile", 'V', "flight", FALSE) \
    X(watlow,      "C12", "Watlow oven",    'W', "control", FALSE) \
    X(genericpid,  "C13", "Line heater PID", 'H', "control", FALSE) \
    X(aethalometer, "A81", "Aethalometer",  'E', "absorption", FALSE) \
    X(maap,        "A82", "MAAP",           'M', "absorption", FALSE) \
    X(caps,        "E71", "CAPS extinction", 'C', "extinction", FALSE) \
    X(pax,         "E72", "PAX",            'P', "extinction", FALSE) \
    X(neph,            "N11", "Nephelometer",     'N', "neph", FALSE) \
    X(nephM903,        "N31", "M903 neph",        'G', "neph", FALSE) \
    X(neph_aurora3000, "N41", "Aurora 3000 neph", 'A', "neph", FALSE) \
    X(neph_passive,    "N21", "Watched neph",     'n', "neph", TRUE) \
    X(psap,        "A11", "PSAP",           'B', "absorption", FALSE) \
    X(psap3,       "A12", "PSAP 3 wavelengths", 'Q', "absorption", FALSE) \
    X(clap3w,      "A13", "CLAP",           'F', "absorption", FALSE) \
    X(grimm,       "S11", "Grimm OPC",      'O', "sizer", FALSE) \
    X(lasair,      "S12", "Lasair OPC",     'R', "sizer", FALSE) \
    X(sems,        "S13", "Mobility sizer", 'S', "sizer", FALSE) \
    X(ccn,         "N71", "CCN counter",    'D', "ccn", FALSE) \
    X(hygrometer,  "H11", "Hygrometer",     'h', "met", FALSE) \
    X(tsitmf,      "Q11", "Mass flow meter", 'f', "flow", FALSE) \
    X(bestups,     "U11", "Power supply",   'u', "power", FALSE) \
    X(inst_skel,   "X11", "Skeleton",       'K', "",    TRUE)
// clang-format on

#define SIM_DECLARE_KIND(type, ...) extern const SIM_decl SIM_DCL_##type;
SIM_KIND_LIST(SIM_DECLARE_KIND)
#undef SIM_DECLARE_KIND

[[nodiscard]] std::span<const SIM_kind> SIM_kinds();
// The row of that type, or null.
[[nodiscard]] const SIM_kind* SIM_kind_by_type(std::string_view type);
