// The kinds that an instrument can announce itself as, and the console's own windows: one list, from which
// the console makes its table of displays. The order is binding: it is the order in which the console's own
// windows come up and in which displays of one kind are created.
#pragma once

#include <string_view>

// KIND: the console has a display of it. NONE: it has none yet. A new display changes its one word here.
#define KINDS_LIST(KIND, NONE)   \
    KIND(aethalometer)           \
    NONE(AGGREGATE)              \
    NONE(AINALL)                 \
    NONE(ain_simple)             \
    NONE(AVGSTATUS)              \
    NONE(bestups)                \
    KIND(caps)                   \
    KIND(ccn)                    \
    KIND(clap3w)                 \
    KIND(PERSISTENT_COMMONSTATE) \
    KIND(cpc_3010)               \
    KIND(cpc_3022)               \
    KIND(cpc_3703)               \
    KIND(cpc_3775)               \
    KIND(cpc_3781)               \
    KIND(cpc_3783)               \
    KIND(cpc_bmi1710)            \
    KIND(cpc_pulse)              \
    NONE(cr1000)                 \
    NONE(CUTPOINTS)              \
    KIND(PERSISTENT_ERRORDISP)   \
    NONE(filter)                 \
    NONE(flask)                  \
    KIND(genericpid)             \
    NONE(gps)                    \
    KIND(grimm)                  \
    KIND(PERSISTENT_HELP)        \
    NONE(HUMIDOGRAPH)            \
    NONE(hygrometer)             \
    KIND(lasair)                 \
    KIND(PERSISTENT_LOGENTRY)    \
    KIND(lovepid)                \
    KIND(maap)                   \
    KIND(PERSISTENT_MESSAGE)     \
    KIND(neph)                   \
    KIND(neph_passive)           \
    KIND(nephM903)               \
    KIND(neph_aurora3000)        \
    NONE(ozonemon)               \
    KIND(pax)                    \
    NONE(pils)                   \
    KIND(psap)                   \
    KIND(psap3)                  \
    NONE(pwd22)                  \
    NONE(rawdatarec)             \
    KIND(PERSISTENT_SCRESULTS)   \
    KIND(sems)                   \
    KIND(inst_skel)              \
    NONE(tsitmf)                 \
    NONE(umac)                   \
    KIND(verticalprofile)        \
    KIND(watlow)                 \
    NONE(zeno)

enum KINDS_known {
    KINDS_UNKNOWN,          // no instrument's: nobody will show it
    KINDS_WITHOUT_DISPLAY,  // known, but no console shows it yet
    KINDS_WITH_DISPLAY,
};
// What is known of instruments that announce themselves as that kind.
[[nodiscard]] KINDS_known KINDS_find(std::string_view kind);
