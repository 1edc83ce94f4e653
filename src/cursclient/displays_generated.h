// The kinds of displays: one list that yields the declarations and the table. The order is binding: it is the
// order in which the persistent displays come up and in which kinds of one type are created.
#pragma once

#include "cursclient/display.h"

// KIND: the unit exists and defines DDCL_<match type>. NONE: no unit yet, all callbacks are null. A new unit
// changes its one word here.
#define DISPLAYS_LIST(KIND, NONE) \
    KIND(aethalometer)            \
    NONE(AGGREGATE)               \
    NONE(AINALL)                  \
    NONE(ain_simple)              \
    NONE(AVGSTATUS)               \
    NONE(bestups)                 \
    KIND(caps)                    \
    KIND(ccn)                     \
    KIND(clap3w)                  \
    KIND(PERSISTENT_COMMONSTATE)  \
    KIND(cpc_3010)                \
    KIND(cpc_3022)                \
    KIND(cpc_3703)                \
    KIND(cpc_3775)                \
    KIND(cpc_3781)                \
    KIND(cpc_3783)                \
    KIND(cpc_bmi1710)             \
    KIND(cpc_pulse)               \
    NONE(cr1000)                  \
    NONE(CUTPOINTS)               \
    KIND(PERSISTENT_ERRORDISP)    \
    NONE(filter)                  \
    NONE(flask)                   \
    KIND(genericpid)              \
    NONE(gps)                     \
    KIND(grimm)                   \
    KIND(PERSISTENT_HELP)         \
    NONE(HUMIDOGRAPH)             \
    NONE(hygrometer)              \
    KIND(lasair)                  \
    KIND(PERSISTENT_LOGENTRY)     \
    KIND(lovepid)                 \
    KIND(maap)                    \
    KIND(PERSISTENT_MESSAGE)      \
    KIND(neph)                    \
    KIND(neph_passive)            \
    KIND(nephM903)                \
    KIND(neph_aurora3000)         \
    NONE(ozonemon)                \
    KIND(pax)                     \
    NONE(pils)                    \
    KIND(psap)                    \
    KIND(psap3)                   \
    NONE(pwd22)                   \
    NONE(rawdatarec)              \
    KIND(PERSISTENT_SCRESULTS)    \
    KIND(sems)                    \
    KIND(inst_skel)               \
    NONE(tsitmf)                  \
    NONE(umac)                    \
    KIND(verticalprofile)         \
    KIND(watlow)                  \
    NONE(zeno)

#define DISPLAYS_DECLARE(kind) extern const DISPLAY_DECL DDCL_##kind;
#define DISPLAYS_IGNORE(kind)
DISPLAYS_LIST(DISPLAYS_DECLARE, DISPLAYS_IGNORE)
#undef DISPLAYS_DECLARE
#undef DISPLAYS_IGNORE
