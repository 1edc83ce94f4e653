// The simulated sizers: spectra that a physicist would believe, announced bins, and sweeps in turn.
#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "support/sim_probe.h"

namespace {

// Sum of an array of a record, which may be unaligned.
template <class Record>
double sum_of_bins(const Record& record, std::size_t first, std::size_t last) {
    double sum = 0;
    for (std::size_t i = first; i < last; ++i)
        sum += record.dN[i];
    return sum;
}

template <NETMSG_type INFO>
void expect_bins_announced_once(const char* type) {
    SimProbe probe(type);
    probe.run(60);
    ASSERT_EQ(probe.count(INFO), 1u);
    EXPECT_EQ(probe.of(INFO)[0].flags, DWORD{FRAME_TO_ALL | FRAME_KEEP});
    const auto info = probe.last<INFO>();
    for (std::size_t i = 1; i < std::size(info.D); ++i)
        EXPECT_GT(+info.D[i], +info.D[i - 1]) << type;
}

TEST(SimSizers, OpticalSizersAnnounceTheirBinsOnceAndForLateJoiners) {
    expect_bins_announced_once<MSG_GRIMM_INFO>("grimm");
    expect_bins_announced_once<MSG_LASAIR_INFO>("lasair");
}

TEST(SimSizers, TheGrimmsSpectrumFallsSteeplyAndItsCompanionCountsFarMore) {
    SimProbe probe("grimm");
    probe.instrument.set_alarm_flags(0x12);
    probe.run(300);
    const auto all = probe.records<MSG_GRIMM_INSTANT>();
    int empty_tops = 0;
    for (const NET_GRIMM_Instant& in : all) {
        EXPECT_GT(sum_of_bins(in, 0, 6), 5 * sum_of_bins(in, 6, NET_GRIMM_BINS));
        EXPECT_NEAR(sum_of_bins(in, 0, NET_GRIMM_BINS), +in.N, 1e-6);
        empty_tops += in.dN[NET_GRIMM_BINS - 2] == 0;
    }
    EXPECT_GT(empty_tops, 200);
    EXPECT_EQ(all.back().flags, 0x12);
    const double average = probe.last<MSG_GRIMM_AVERAGE>().N;
    EXPECT_NEAR(+all.back().running.N, average, average * 0.05);
    EXPECT_EQ(probe.count(MSG_COMMON_CNC_INSTANT), all.size());
    EXPECT_GT(+probe.last<MSG_COMMON_CNC_INSTANT>().in, 10 * all.back().N);
}

TEST(SimSizers, TheLasairsManifoldGoesRound) {
    SimProbe probe("lasair");
    probe.run(1300);
    int searching = 0;
    std::map<int, int> seconds;
    for (const auto& in : probe.records<MSG_LASAIR_INSTANT>()) {
        ++seconds[in.manifold];
        searching += in.searching;
    }
    for (const int port : {1, 2, 3, 4})
        EXPECT_GE(seconds[port], 300);
    EXPECT_EQ(seconds.size(), 4u);
    expect_between(searching, 32, 48, "seconds between ports");
}

TEST(SimSizers, SweepsAlternateEveryMinuteOverTwoModes) {
    SimProbe probe("sems");
    probe.run(240);
    const auto up = probe.of(MSG_SEMS_DN_UP);
    const auto down = probe.of(MSG_SEMS_DN_DOWN);
    ASSERT_EQ(up.size(), 2u);
    ASSERT_EQ(down.size(), 2u);
    EXPECT_EQ(down[0].time - up[0].time, 60);
    EXPECT_EQ(up[1].time - down[0].time, 60);

    const auto D = probe.last<MSG_SEMS_D>();
    EXPECT_NEAR(std::log10(D.v[30] / D.v[29]), +probe.last<MSG_SEMS_DLOGD>().v[29], 1e-9);
    for (const SentMessage& sweep : {up.back(), down.back()}) {
        const auto dN = sweep.as<NET_SEMS_Bins>();
        // Averages of five bins around the modes and between them.
        const auto around = [&](double nm) {
            std::size_t at = 0;
            while (D.v[at] < nm)
                ++at;
            return (dN.v[at - 2] + dN.v[at - 1] + dN.v[at] + dN.v[at + 1] + dN.v[at + 2]) / 5;
        };
        EXPECT_GT(around(35), 1.2 * around(75));
        EXPECT_GT(around(140), 1.2 * around(75));
    }
}

}  // namespace
