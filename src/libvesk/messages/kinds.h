// The kinds that an instrument can announce itself as, and the console's own windows: one list, from which
// the console makes its table of displays. The order is binding: it is the order in which the console's own
// windows come up and in which displays of one kind are created.
#pragma once

#include <span>
#include <string_view>

// KIND: the console has a display of it. NONE: it has none yet. A new display changes its one word here. Then
// the name, how displays of the kind come up, the families of its messages (MSG_<family>_..., separated by a
// blank), and what it is.
// clang-format off
#define KINDS_LIST(KIND, NONE) \
    KIND(aethalometer, ANNOUNCED, "AETHALOMETER", "seven-channel aethalometer") \
    NONE(AGGREGATE, MATCHED, "DISPAGGREGATOR", "values of several instruments together") \
    NONE(AINALL, MATCHED, "IO", "all analog inputs together") \
    NONE(ain_simple, ANNOUNCED, "AINSIMPLE", "analog inputs") \
    KIND(AVGSTATUS, MATCHED, "CONTAMINATION LOG_AVG", "contamination, bypass and flush of the averages") \
    KIND(bestups, ANNOUNCED, "BESTUPS", "uninterruptible power supply") \
    KIND(caps, ANNOUNCED, "CAPS", "cavity extinction monitor") \
    KIND(ccn, ANNOUNCED, "CCN", "cloud condensation nuclei counter") \
    KIND(clap3w, ANNOUNCED, "CLAP3W", "three-wavelength absorption photometer with eight spots") \
    KIND(PERSISTENT_COMMONSTATE, AT_START, "", "the station's settings that several displays need") \
    KIND(cpc_3010, ANNOUNCED, "CPC_3010", "TSI 3010 particle counter") \
    KIND(cpc_3022, ANNOUNCED, "CPC_3022", "TSI 3022 particle counter") \
    KIND(cpc_3703, ANNOUNCED, "CPC_3703", "TSI 3703 particle counter") \
    KIND(cpc_3775, ANNOUNCED, "CPC_3775", "TSI 3775 particle counter") \
    KIND(cpc_3781, ANNOUNCED, "CPC_3781", "TSI 3781 water counter") \
    KIND(cpc_3783, ANNOUNCED, "CPC_3783", "TSI 3783 water counter") \
    KIND(cpc_bmi1710, ANNOUNCED, "CPC_BMI1710", "Brechtel 1710 particle counter") \
    KIND(cpc_pulse, ANNOUNCED, "CPC_PULSE", "particle counter that only gives pulses") \
    NONE(cr1000, ANNOUNCED, "CR1000", "data logger CR1000") \
    NONE(CUTPOINTS, MATCHED, "CUTPOINTS", "size cut points of the inlet") \
    KIND(PERSISTENT_ERRORDISP, AT_START, "", "the strip of recent errors") \
    NONE(filter, ANNOUNCED, "FILTER", "filter sampler") \
    NONE(flask, ANNOUNCED, "FLASK", "flask sampler") \
    KIND(genericpid, ANNOUNCED, "GENERICPID", "software PID controller") \
    NONE(gps, ANNOUNCED, "GPS", "position receiver") \
    KIND(grimm, ANNOUNCED, "GRIMM COMMON_CNC", "Grimm optical particle counter") \
    KIND(PERSISTENT_HELP, AT_START, "", "the help window") \
    NONE(HUMIDOGRAPH, MATCHED, "HUMIDOGRAPH", "scattering over a scan of humidity") \
    KIND(hygrometer, ANNOUNCED, "HYGROMETER", "hygrometer") \
    KIND(lasair, ANNOUNCED, "LASAIR", "PMS Lasair optical particle counter") \
    KIND(PERSISTENT_LOGENTRY, AT_START, "", "the online log entry") \
    KIND(lovepid, ANNOUNCED, "LOVEPID", "up to four Love loop controllers") \
    KIND(maap, ANNOUNCED, "MAAP", "multi-angle absorption photometer") \
    KIND(PERSISTENT_MESSAGE, AT_START, "", "messages between consoles") \
    KIND(neph, ANNOUNCED, "NEPH COMMON_NEPH", "three-wavelength nephelometer") \
    KIND(neph_passive, ANNOUNCED, "NEPH COMMON_NEPH", "three-wavelength nephelometer that is only watched") \
    KIND(nephM903, ANNOUNCED, "NEPHM903 COMMON_NEPH", "single-wavelength nephelometer M903") \
    KIND(neph_aurora3000, ANNOUNCED, "NEPHAURORA3000 COMMON_NEPH", "three-wavelength nephelometer Aurora 3000") \
    NONE(ozonemon, ANNOUNCED, "OZONEMON", "ozone monitor") \
    KIND(pax, ANNOUNCED, "PAX", "photoacoustic extinctiometer") \
    NONE(pils, ANNOUNCED, "PILS", "particle-into-liquid sampler") \
    KIND(psap, ANNOUNCED, "PSAP", "one-wavelength absorption photometer") \
    KIND(psap3, ANNOUNCED, "PSAP3", "three-wavelength absorption photometer") \
    NONE(pwd22, ANNOUNCED, "PWD22", "present-weather detector") \
    NONE(rawdatarec, ANNOUNCED, "RAWDATAREC", "recorder of raw data") \
    KIND(PERSISTENT_SCRESULTS, AT_START, "", "results of a span check") \
    KIND(sems, ANNOUNCED, "SEMS", "scanning electrical mobility spectrometer") \
    KIND(inst_skel, ANNOUNCED, "", "skeleton for developers") \
    KIND(tsitmf, ANNOUNCED, "TSITMF", "thermal mass flow meter") \
    NONE(umac, ANNOUNCED, "UMAC", "data acquisition unit") \
    KIND(verticalprofile, ANNOUNCED, "VERTICALPROFILE GPS", "schedule of a vertical profile") \
    KIND(watlow, ANNOUNCED, "WATLOW", "Watlow loop controller with two channels") \
    NONE(zeno, ANNOUNCED, "ZENO", "weather station")
// clang-format on

enum KINDS_origin {
    KINDS_AT_START,   // a window of the console's own
    KINDS_ANNOUNCED,  // for an instrument that announces itself as this kind
    KINDS_MATCHED,    // one for the station, at the first message that it waits for
};

struct KINDS_row {
    const char* name;
    bool has_display;
    KINDS_origin origin;
    const char* families;
    const char* purpose;
};

// All of them in the order of the list.
[[nodiscard]] std::span<const KINDS_row> KINDS_all();
// The row of exactly that name, or null.
[[nodiscard]] const KINDS_row* KINDS_by_name(std::string_view name);
// Calls each(family) for each of the kind's families.
template <class F>
void KINDS_for_each_family(const KINDS_row& kind, F&& each) {
    for (std::string_view left = kind.families; !left.empty();) {
        const std::string_view family = left.substr(0, left.find(' '));
        each(family);
        left.remove_prefix(family.size() + (family.size() < left.size() ? 1 : 0));
    }
}
// Whether a message of that name belongs to one of the kind's families.
[[nodiscard]] bool KINDS_has_message(const KINDS_row& kind, std::string_view message);

enum KINDS_known {
    KINDS_UNKNOWN,          // no instrument's: nobody will show it
    KINDS_WITHOUT_DISPLAY,  // known, but no console shows it yet
    KINDS_WITH_DISPLAY,
};
// Tells whether instruments may announce themselves as that kind, and whether a display shows them.
[[nodiscard]] KINDS_known KINDS_find(std::string_view kind);
