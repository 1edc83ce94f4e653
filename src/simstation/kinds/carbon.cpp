// The black-carbon instruments. Both collect the air's absorbing particles on a filter whose transmittance
// falls with the load, until they move to a fresh spot.
#include <algorithm>
#include <array>
#include <cmath>

#include "libvesk/messages/records/carbon.h"
#include "simstation/kinds.h"
#include "simstation/physics/average.h"
#include "simstation/physics/channels.h"

namespace {

constexpr double PER_M = 1e-6;  // 1/Mm in 1/m

// --- aethalometer

constexpr int CHANNELS = NET_AETHALOMETER_CHANNELS;
constexpr std::array<double, CHANNELS> WAVELENGTHS{370, 470, 520, 590, 660, 880, 950};  // nm
// Specific attenuation of black carbon on the quartz fibre tape: 14625 m2/g over the wavelength in nm, the
// manufacturer's constant for this instrument type.
constexpr double SPECIFIC_ATTENUATION = 14625;
// How much more the same particles attenuate on the fibres than they absorb in air (Weingartner et al., 2003:
// about 2.1 for quartz fibre filters).
constexpr double FIBRE_ENHANCEMENT = 2.14;
constexpr double FACE_VELOCITY = 0.5;  // m/s: 5 lpm through a spot of 1.67 cm2
constexpr double FULL_SPOT = 100;      // attenuation of the shortest wavelength at which the tape advances
constexpr int ADVANCE_SECONDS = 300;   // no reports meanwhile
constexpr int REPORT_SECONDS = 60;

struct aethalometer {
    static constexpr SIM_setting settings[] = {
        {.name = "attenuation", .help = "of the shortest wavelength: 0 to 150"}};

    void tick(SIM_instrument& sim) {
        for (std::size_t i = 0; i < CHANNELS; ++i) {
            const double attenuating = FIBRE_ENHANCEMENT * sim.air().absorption(WAVELENGTHS[i]) * PER_M;
            if (advancing == 0) load[i] += 100 * attenuating * FACE_VELOCITY * sim.dt();
            sums[i].add(attenuating);
        }
        if (advancing > 0 && --advancing == 0) load = {};
        if (advancing == 0 && load[0] >= FULL_SPOT) {
            advancing = ADVANCE_SECONDS;
            sim.log("tape advance");
        }
        if (std::fmod(sim.time(), REPORT_SECONDS) == 0) report(sim);
    }

    void status(SIM_instrument& sim) {
        sim.send_changed(MSG_AETHALOMETER_STATUS, NET_AETHALOMETER_Status{sim.have_comms()});
    }

    BOOL set(SIM_instrument&, std::string_view, const SIM_value& value) {
        if (!(value.number >= 0 && value.number <= 150)) return FALSE;
        for (std::size_t i = 0; i < CHANNELS; ++i)
            load[i] = value.number * WAVELENGTHS[0] / WAVELENGTHS[i];
        return TRUE;
    }

    void report(SIM_instrument& sim) {
        auto r = NETDSD_default<NET_AETHALOMETER_Report>();
        r.start_time = sim.time() - REPORT_SECONDS;
        for (std::size_t i = 0; i < CHANNELS; ++i)
            fill_channel(sim, r, i);
        r.Q = sim.noise().normal(4.98, 0.01);
        r.fraction = 0.97;
        if (advancing == 0) sim.send_kept(MSG_AETHALOMETER_REPORT, r);
        for (SIM_stats& s : sums)
            s.reset();
    }

    void fill_channel(SIM_instrument& sim, NET_AETHALOMETER_Report& r, std::size_t i) {
        SIM_noise& noise = sim.noise();
        const double ng_per_g = 1e9;
        r.wavelengths[i] = WAVELENGTHS[i];
        r.conc[i] = sums[i].mean() / (SPECIFIC_ATTENUATION / WAVELENGTHS[i]) * ng_per_g + noise.normal(0, 20);
        r.attn[i] = load[i];
        r.sz[i] = noise.normal(0.021, 0.0004);
        r.rz[i] = noise.normal(0.019, 0.0004);
        r.sb[i] = 4.1 * std::exp(-load[i] / 100) + noise.normal(0, 0.0005);
        r.rb[i] = noise.normal(3.6, 0.0005);
    }

    std::array<double, CHANNELS> load{};  // attenuation of the present spot
    std::array<SIM_stats, CHANNELS> sums;
    int advancing = 0;  // seconds until the fresh spot is in place
};

// --- multi-angle absorption photometer

constexpr double MAAP_WAVELENGTH = 637;           // nm (Mueller et al., 2011)
constexpr double MAAP_SPECIFIC_ABSORPTION = 6.6;  // m2/g, by which it turns absorption into black carbon
constexpr double MAAP_FACE_VELOCITY = 1.39;       // m/s: 16.7 lpm through 2 cm2
constexpr double MAAP_FLOW = 16.67;               // slpm
constexpr double FULL_FILTER = 0.5;               // transmittance at which the tape advances by itself
constexpr int MAAP_ADVANCE_SECONDS = 120;
constexpr DWORD ADVANCING = 0x10;     // state bit, no error
constexpr double SPOT_LENGTH = 0.02;  // m of tape

constexpr SIM_channel MAAP_CHANNELS[] = {
    {.field = "P_orifice", .target = 20.5, .noise = 0.1},
    {.field = "P_pump", .target = 240, .noise = 1.5},
    {.field = "P_amb", .target = 985, .noise = 0.3},
    {.field = "T_amb", .target = 22, .noise = 0.05},
    {.field = "T_measure", .target = 31.5, .noise = 0.05, .lag = 200, .start = 22},
    {.field = "T_system", .target = 29, .noise = 0.05, .lag = 300, .start = 22},
};

struct maap {
    static constexpr SIM_setting settings[] = {
        {.name = "transmittance", .help = "of the present spot: 0.3 to 1"},
        {.name = "global", .help = "bits of the global status word, besides its own"},
    };

    void start(SIM_instrument& sim) { new_spot(sim); }

    void tick(SIM_instrument& sim) {
        channels.step(sim.noise(), sim.dt());
        if (advancing > 0 && --advancing == 0) new_spot(sim);
        const double absorption = sim.air().absorption(MAAP_WAVELENGTH);
        if (advancing == 0) {
            transmittance *= std::exp(-3 * absorption * PER_M * MAAP_FACE_VELOCITY * sim.dt());
            volume += MAAP_FLOW / 60 / 1000 * sim.dt();
            if (transmittance <= FULL_FILTER) advance(sim);
        }
        sim.send_instant(MSG_MAAP_REPORT, report(sim, absorption));
    }

    void status(SIM_instrument& sim) {
        const DWORD state = advancing > 0 ? ADVANCING : 0;
        sim.send_changed(MSG_MAAP_STATUS,
                         NET_MAAP_Status{sim.have_comms(), sim.alarm_flags(), 0, state | global});
    }

    BOOL command(SIM_instrument& sim, const VESKMSG_proc_msg* pm) {
        if (pm->msg->msg != MSG_MAAP_ADVANCE) return FALSE;
        if (advancing > 0) return sim.refuse("filter advance", "the tape moves already");
        advance(sim);
        return TRUE;
    }

    BOOL set(SIM_instrument&, std::string_view name, const SIM_value& value) {
        if (name == "global") {
            if (!(value.number >= 0 && value.number <= 0xFFFFFF)) return FALSE;
            global = static_cast<DWORD>(value.number);
            return TRUE;
        }
        if (!(value.number >= 0.3 && value.number <= 1)) return FALSE;
        transmittance = value.number;
        return TRUE;
    }

    void advance(SIM_instrument& sim) {
        advancing = MAAP_ADVANCE_SECONDS;
        sim.log("filter advance at a transmittance of %.3f", transmittance);
    }

    void new_spot(SIM_instrument& sim) {
        transmittance = 1;
        volume = 0;
        tape = std::max(0.0, tape - SPOT_LENGTH);
        sim.send_kept(MSG_MAAP_FILTER, NET_MAAP_Filter{sim.time(), tape, volume});
    }

    NET_MAAP_Report report(SIM_instrument& sim, double absorption) {
        auto r = NETDSD_default<NET_MAAP_Report>();
        channels.fill(r);
        r.start_time = sim.time();
        r.Q = advancing > 0 ? 0 : sim.noise().normal(MAAP_FLOW, 0.01);
        r.tr = transmittance;
        r.Szref = 2010;
        r.Sz135 = 1480;
        r.Sz165 = 1260;
        r.Sz0 = 1890;
        r.Sref = sim.noise().normal(2010, 0.3);
        r.S0 = 1890 * transmittance + sim.noise().normal(0, 0.3);
        // Back-scattered light loses less than transmitted light to the same load.
        r.S135 = 1480 * std::sqrt(transmittance) + sim.noise().normal(0, 0.3);
        r.S165 = 1260 * std::sqrt(transmittance) + sim.noise().normal(0, 0.3);
        if (advancing > 0) return r;  // absorption is unknown while the tape moves
        r.abs = absorption + sim.noise().normal(0, 0.15);
        r.C = r.abs / MAAP_SPECIFIC_ABSORPTION;
        r.ssa = 0.6 + 0.35 * transmittance;
        return r;
    }

    SIM_channels channels{MAAP_CHANNELS};
    double transmittance = 1;
    double volume = 0;  // m3
    double tape = 8;    // m
    DWORD global = 0;
    int advancing = 0;
};

}  // namespace

constinit const SIM_decl SIM_DCL_aethalometer = SIM_decl_of<aethalometer>();
constinit const SIM_decl SIM_DCL_maap = SIM_decl_of<maap>();
