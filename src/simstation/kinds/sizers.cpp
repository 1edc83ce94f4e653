// The instruments that sort the air's particles by size: two optical sizers, which see a power law of large
// particles with the noise of counting, and the mobility spectrometer, which sweeps over the small ones.
#include <array>
#include <cmath>

#include "libvesk/messages/records/sizers.h"
#include "simstation/kinds.h"
#include "simstation/physics/average.h"
#include "simstation/physics/channels.h"

namespace {

constexpr double LPM = 1000 / 60.0;  // cm3 per second

// A concentration as so much air tells it.
double counted(SIM_noise& noise, double n, double cm3) {
    return noise.poisson(n * cm3) / cm3;
}

// --- optical sizers

// Particles per cm3 above a diameter (um): what scatters light is there as often as it scatters, and falls
// with a power that the colour of the scattering tells.
double larger_than(const SIM_air& air, double diameter) {
    static constexpr double AT_QUARTER_UM_PER_SCATTERING = 3;  // cm-3 for each 1/Mm
    const double exponent = air.angstrom() + 2;
    return AT_QUARTER_UM_PER_SCATTERING * air.scattering(550) * std::pow(diameter / 0.25, -exponent);
}

// K names the records and messages of a kind, its lower bin limits and its channels.
template <class K>
struct optical_sizer {
    using Avg = typename K::Avg;
    using Instant = typename K::Instant;
    static constexpr std::size_t BINS = K::diameters.size();

    void start(SIM_instrument& sim) {
        typename K::Info info;
        for (std::size_t i = 0; i < BINS; ++i)
            info.D[i] = K::diameters[i];
        sim.send_kept(K::INFO, info);
    }

    void tick(SIM_instrument& sim) {
        channels.step(sim.noise(), sim.dt());
        const Avg now = reading(sim);
        running.add(sim.time(), now);
        block.add(now);
        auto in = NETDSD_default<Instant>();
        channels.fill(in);
        in.start_time = sim.time();
        std::memcpy(in.dN, now.dN, sizeof in.dN);
        in.N = now.N;
        in.running = running.mean();
        extra.tick(sim, in);
        sim.send_instant(K::INSTANT, in);
        if (!sim.average_due()) return;
        Avg average = block.mean();
        average.start_time = sim.average_start();
        sim.send_kept(K::AVERAGE, average);
        block.reset();
    }

    void status(SIM_instrument& sim) {
        sim.send_changed(K::STATUS, typename K::Status{.have_comms = sim.have_comms()});
    }

    Avg reading(SIM_instrument& sim) {
        auto r = NETDSD_default<Avg>();
        channels.fill(r);
        r.start_time = sim.time();
        r.N = 0;
        const double cm3 = channels.reading("Q") * LPM * sim.dt();
        for (std::size_t i = 0; i < BINS; ++i) {
            const double above = i + 1 < BINS ? larger_than(sim.air(), K::diameters[i + 1]) : 0;
            r.dN[i] = counted(sim.noise(), larger_than(sim.air(), K::diameters[i]) - above, cm3);
            r.N += r.dN[i];
        }
        return r;
    }

    SIM_channels channels{K::channels};
    SIM_record_running<Avg> running;
    SIM_record_block<Avg> block;
    K extra;  // what the kind reports besides
};

// The names of a kind's records and messages.
#define OPTICAL_NAMES(KIND)                                      \
    using Avg = NET_##KIND##_Avg;                                \
    using Instant = NET_##KIND##_Instant;                        \
    using Info = NET_##KIND##_Info;                              \
    using Status = NET_##KIND##_Status;                          \
    static constexpr NETMSG_type AVERAGE = MSG_##KIND##_AVERAGE; \
    static constexpr NETMSG_type INSTANT = MSG_##KIND##_INSTANT; \
    static constexpr NETMSG_type INFO = MSG_##KIND##_INFO;       \
    static constexpr NETMSG_type STATUS = MSG_##KIND##_STATUS

struct grimm {
    OPTICAL_NAMES(GRIMM);
    static constexpr std::array<double, NET_GRIMM_BINS> diameters{
        0.25, 0.28, 0.3, 0.35, 0.4, 0.45, 0.5, 0.58, 0.65, 0.7,  0.8,  1.0,  1.3,  1.6,  2.0, 2.5,
        3.0,  3.5,  4.0, 5.0,  6.5, 7.5,  8.5, 10.0, 12.5, 15.0, 17.5, 20.0, 25.0, 30.0, 32.0};
    static constexpr SIM_channel channels[] = {{.field = "Q", .target = 1.2, .noise = 0.004},
                                               {.field = "loc", .target = 1, .noise = 0},
                                               {.field = "gf", .target = 100, .noise = 0},
                                               {.field = "batt", .target = 97, .noise = 0.3},
                                               {.field = "I_motor", .target = 46, .noise = 0.7},
                                               {.field = "zero_filter", .target = 12, .noise = 0.5},
                                               {.field = "cal", .target = 3, .noise = 0}};

    // The counter beside it reports through this instrument.
    void tick(SIM_instrument& sim, NET_GRIMM_Instant& in) {
        static constexpr double COUNTER_FLOW = 1.0 * LPM;
        in.flags = sim.alarm_flags();
        for (const int i : {0, 1, 2})
            in.sens[i] = 20 + 5 * i + static_cast<std::int32_t>(sim.noise().pick(3));
        const double n = counted(sim.noise(), 0.9 * sim.air().number(), COUNTER_FLOW * sim.dt());
        companion.add(sim.time(), n);
        sim.send_instant(MSG_COMMON_CNC_INSTANT, NET_COMMON_CNC_Instant{sim.time(), n, companion.mean()});
    }
    SIM_running companion;
};

struct lasair {
    OPTICAL_NAMES(LASAIR);
    static constexpr std::array<double, NET_LASAIR_BINS> diameters{0.1, 0.2, 0.3, 0.4, 0.5, 0.7, 1.0, 2.0};
    static constexpr SIM_channel channels[] = {{.field = "Q", .target = 0.028, .noise = 0.0001},
                                               {.field = "V_laser", .target = 4.95, .noise = 0.01}};

    // The inlet moves on to its next port every few minutes, and is a while on the way.
    void tick(SIM_instrument& sim, NET_LASAIR_Instant& in) {
        static constexpr int PORTS = 4, PORT_SECONDS = 300, WAY_SECONDS = 8;
        const int seconds = static_cast<int>(std::fmod(sim.time(), PORTS * PORT_SECONDS));
        in.manifold = seconds / PORT_SECONDS + 1;
        in.searching = seconds % PORT_SECONDS < WAY_SECONDS;
        for (const int i : {0, 1, 2, 3})
            in.analog[i] = i + 0.5 + sim.noise().normal(0, 0.002);
    }
};

// --- mobility spectrometer

constexpr double SMALLEST = 10, LARGEST = 800;  // nm, limits of the outermost bins
constexpr int SWEEP_SECONDS = 60;
constexpr std::size_t BLIND_BINS = 3;  // at both ends: the sweep's turning points count nothing
constexpr double LOWEST_HV = 12, HIGHEST_HV = 6000;

constexpr SIM_channel SEMS_CHANNELS[] = {
    {.field = "T", .target = 24.5, .noise = 0.05, .lag = 600, .start = 22},
    {.field = "rh", .target = 18, .noise = 0.2, .lag = 300, .start = 40},
    {.field = "P_impactor", .target = 982, .noise = 0.3},
    {.field = "P_dma", .target = 979, .noise = 0.3},
    {.field = "Q_sheath", .target = 3.0, .noise = 0.004},
    {.field = "Q_excess", .target = 3.0, .noise = 0.004},
    {.field = "Q_mono", .target = 0.36, .noise = 0.001},
    {.field = "T_CPC_condenser", .target = 15, .noise = 0.05, .lag = 80, .start = 23.5},
    {.field = "T_CPC_saturator", .target = 42, .noise = 0.05, .lag = 60, .start = 23.5}};

// Share of a log-normal mode per unit of log10(diameter).
double mode(double diameter, double median, double log_sigma) {
    static constexpr double ROOT_2PI = 2.5066282746310002;
    const double x = std::log10(diameter / median) / log_sigma;
    return std::exp(-x * x / 2) / (ROOT_2PI * log_sigma);
}

struct sems {
    void start(SIM_instrument& sim) {
        sim.send_kept(MSG_SEMS_D, bins(sim.time(), [](std::size_t i) { return diameter(i); }));
        sim.send_kept(MSG_SEMS_DLOGD, bins(sim.time(), [](std::size_t) { return dlogD(); }));
    }

    void tick(SIM_instrument& sim) {
        channels.step(sim.noise(), sim.dt());
        air.add(sim.air().number());
        auto info = NETDSD_default<NET_SEMS_Info>();
        channels.fill(info);
        info.HV_out = voltage() * (1 + 0.001 * sim.noise().normal());
        sim.send_instant(MSG_SEMS_INFO, info);
        if (++seconds < SWEEP_SECONDS) return;
        sim.send_kept(upward ? MSG_SEMS_DN_UP : MSG_SEMS_DN_DOWN, sweep(sim));
        upward = !upward;
        seconds = 0;
        air.reset();
    }

    void status(SIM_instrument& sim) { sim.send_changed(MSG_SEMS_STATUS, NET_SEMS_Status{sim.have_comms()}); }

    static double dlogD() { return std::log10(LARGEST / SMALLEST) / NET_SEMS_BINS; }
    static double diameter(std::size_t bin) {
        return SMALLEST * std::pow(10, (static_cast<double>(bin) + 0.5) * dlogD());
    }
    template <class F>
    static NET_SEMS_Bins bins(FTIME time, F value) {
        NET_SEMS_Bins b;
        b.start_time = time;
        for (std::size_t i = 0; i < NET_SEMS_BINS; ++i)
            b.v[i] = value(i);
        return b;
    }

    // Rises or falls by the same factor every second.
    [[nodiscard]] double voltage() const {
        const double share = static_cast<double>(seconds) / SWEEP_SECONDS;
        return LOWEST_HV * std::pow(HIGHEST_HV / LOWEST_HV, upward ? share : 1 - share);
    }

    // Fresh and aged particles, smeared a little towards where the sweep came from.
    NET_SEMS_Bins sweep(SIM_instrument& sim) {
        static constexpr double FRESH_NM = 35, AGED_NM = 140, FRESH_SHARE = 0.55;
        static constexpr double CHARGED = 0.15;  // share of the particles that the field can move
        const double smear = upward ? 1.02 : 0.98;
        const double cm3 = 0.36 * LPM * CHARGED * SWEEP_SECONDS / NET_SEMS_BINS;
        return bins(sim.time() - SWEEP_SECONDS + sim.dt(), [&](std::size_t i) {
            if (i < BLIND_BINS || i >= NET_SEMS_BINS - BLIND_BINS) return 0.0;
            const double d = diameter(i) / smear;
            const double share =
                FRESH_SHARE * mode(d, FRESH_NM, 0.18) + (1 - FRESH_SHARE) * mode(d, AGED_NM, 0.17);
            return counted(sim.noise(), air.mean() * share * dlogD(), cm3);
        });
    }

    SIM_channels channels{SEMS_CHANNELS};
    SIM_stats air;  // of the present sweep
    BOOL upward = TRUE;
    int seconds = 0;  // into the sweep
};

}  // namespace

constinit const SIM_decl SIM_DCL_grimm = SIM_decl_of<optical_sizer<grimm>>();
constinit const SIM_decl SIM_DCL_lasair = SIM_decl_of<optical_sizer<lasair>>();
constinit const SIM_decl SIM_DCL_sems = SIM_decl_of<sems>();
