// The seven-channel aethalometer: one column per channel, in order of wavelength.
#include <array>

#include "cursclient/kit/instdisp.h"
#include "libvesk/messages/records/carbon.h"

namespace {

struct AETHALOMETER_prv_data : INSTDISP_head {
    NET_AETHALOMETER_Report rep;
    NET_AETHALOMETER_Status status;
};

constexpr int CHANNELS = NET_AETHALOMETER_CHANNELS;
constexpr std::array<int, CHANNELS> COLS{16, 24, 32, 40, 48, 56, 64};
using channel_order = std::array<std::size_t, CHANNELS>;

// Whether a later channel takes the place of the one picked so far: a shorter wavelength does, and anything
// replaces a pick without wavelength, so that such channels come last and the later ones of them first.
bool replaces(double wavelength, double picked) {
    if (VESK_is_missing(picked)) return true;
    return !VESK_is_missing(wavelength) && wavelength < picked;
}

channel_order by_wavelength(const NET_AETHALOMETER_Report& rep) {
    channel_order order{};
    std::array<bool, CHANNELS> used{};
    for (std::size_t& next : order) {
        std::size_t pick = CHANNELS;
        for (std::size_t i = 0; i < CHANNELS; ++i)
            if (!used[i] && (pick == CHANNELS || replaces(rep.wavelengths[i], rep.wavelengths[pick])))
                pick = i;
        used[pick] = true;
        next = pick;
    }
    return order;
}

void draw(AETHALOMETER_prv_data* pd, const CANVAS& d) {
    const NET_AETHALOMETER_Report& rep = pd->rep;
    const channel_order order = by_wavelength(rep);
    d.across(1, "Chan (nm):", COLS, "  *~3.0f", [&](std::size_t i) { return rep.wavelengths[order[i]]; });
    d.across(2, "Conc (ng/m3):", COLS, "*~5.0f", [&](std::size_t i) { return rep.conc[order[i]]; });
    d.across(3, "SZ:", COLS, " *~2.4f", [&](std::size_t i) { return rep.sz[order[i]]; });
    d.across(4, "SB:", COLS, " *~2.4f", [&](std::size_t i) { return rep.sb[order[i]]; });
    d.across(5, "RZ:", COLS, " *~2.4f", [&](std::size_t i) { return rep.rz[order[i]]; });
    d.across(6, "RB:", COLS, " *~2.4f", [&](std::size_t i) { return rep.rb[order[i]]; });
    d.across(7, "Atten:", COLS, " *~2.3f", [&](std::size_t i) { return rep.attn[order[i]]; });
    d.field(8, 1, "Fraction:", COLS[0], " *~2.2f", rep.fraction);
    d.field(8, COLS[1], "  Flow:", COLS[2], " *~2.2f", rep.Q);
    d.no_comms(9, pd->status.have_comms);
}

using store = INSTDISP_store<AETHALOMETER_prv_data>;
constexpr store STORES[] = {
    store::into<&AETHALOMETER_prv_data::rep>(MSG_AETHALOMETER_REPORT),
    store::into<&AETHALOMETER_prv_data::status>(MSG_AETHALOMETER_STATUS),
};
constexpr INSTDISP_kind<AETHALOMETER_prv_data> KIND{.cols = 75, .rows = 11, .stores = STORES, .draw = draw};

}  // namespace

INSTDISP_BINDINGS(AETHALOMETER, aethalometer, KIND)
