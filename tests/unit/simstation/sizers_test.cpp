// The simulated sizers: spectra that a physicist would believe, announced bins, and sweeps in turn.
#include <gtest/gtest.h>

#include <array>
#include <cmath>

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

TEST(SimSizers, OpticalSizersAnnounceTheirBinsOnceAndForLateJoiners) {
    SimProbe grimm("grimm");
    SimProbe lasair("lasair");
    grimm.run(60);
    lasair.run(60);
    ASSERT_EQ(grimm.count(MSG_GRIMM_INFO), 1u);
    ASSERT_EQ(lasair.count(MSG_LASAIR_INFO), 1u);
    EXPECT_EQ(grimm.of(MSG_GRIMM_INFO)[0].flags, DWORD{VESKMSG_TO_ALL | VESKMSG_KEEP});
    const auto g = grimm.last<MSG_GRIMM_INFO>();
    const auto l = lasair.last<MSG_LASAIR_INFO>();
    for (std::size_t i = 1; i < NET_GRIMM_BINS; ++i)
        EXPECT_GT(+g.D[i], +g.D[i - 1]);
    for (std::size_t i = 1; i < NET_LASAIR_BINS; ++i)
        EXPECT_GT(+l.D[i], +l.D[i - 1]);
}

TEST(SimSizers, TheSpectrumFallsSteeplyAndItsTopIsOftenEmpty) {
    SimProbe probe("grimm");
    probe.run(300);
    const auto all = probe.records<MSG_GRIMM_INSTANT>();
    ASSERT_EQ(all.size(), 300u);
    int empty_tops = 0;
    for (const NET_GRIMM_Instant& in : all) {
        EXPECT_GT(sum_of_bins(in, 0, 6), 5 * sum_of_bins(in, 6, NET_GRIMM_BINS));
        EXPECT_NEAR(sum_of_bins(in, 0, NET_GRIMM_BINS), +in.N, 1e-6);
        EXPECT_GT(+in.N, 5);
        EXPECT_LT(+in.N, 1000);
        empty_tops += in.dN[NET_GRIMM_BINS - 2] == 0;
    }
    EXPECT_GT(empty_tops, 200);
    const double average = probe.last<MSG_GRIMM_AVERAGE>().N;
    EXPECT_NEAR(+all.back().running.N, average, average * 0.05);
}

TEST(SimSizers, TheGrimmSpeaksForItsCompanionCounter) {
    SimProbe probe("grimm");
    probe.run(60);
    EXPECT_EQ(probe.count(MSG_COMMON_CNC_INSTANT), 60u);
    const auto cnc = probe.last<MSG_COMMON_CNC_INSTANT>();
    EXPECT_GT(+cnc.in, 10 * probe.last<MSG_GRIMM_INSTANT>().N) << "it counts far smaller ones";
    EXPECT_NEAR(+cnc.ra, +cnc.in, 0.5 * cnc.in);
    probe.instrument.set_alarm_flags(0x12);
    probe.run(1);
    EXPECT_EQ(probe.last<MSG_GRIMM_INSTANT>().flags, 0x12);
}

TEST(SimSizers, TheLasairsManifoldGoesRound) {
    SimProbe probe("lasair");
    probe.run(1300);
    int searching = 0;
    std::array<int, 5> seconds{};
    for (const auto& in : probe.records<MSG_LASAIR_INSTANT>()) {
        ASSERT_TRUE(in.manifold >= 1 && in.manifold <= 4);
        ++seconds[static_cast<std::size_t>(in.manifold)];
        searching += in.searching;
    }
    for (const std::size_t port : {1, 2, 3, 4})
        EXPECT_GE(seconds[port], 300);
    EXPECT_GE(searching, 32);
    EXPECT_LE(searching, 48);
}

TEST(SimSizers, SweepsAlternateEveryMinuteOverTwoModes) {
    SimProbe probe("sems");
    EXPECT_EQ(probe.count(MSG_SEMS_D), 1u);
    EXPECT_EQ(probe.count(MSG_SEMS_DLOGD), 1u);
    probe.run(240);
    const auto up = probe.of(MSG_SEMS_DN_UP);
    const auto down = probe.of(MSG_SEMS_DN_DOWN);
    ASSERT_EQ(up.size(), 2u);
    ASSERT_EQ(down.size(), 2u);
    EXPECT_EQ(down[0].time - up[0].time, 60);
    EXPECT_EQ(up[1].time - down[0].time, 60);

    const auto D = probe.last<MSG_SEMS_D>();
    const auto dLogD = probe.last<MSG_SEMS_DLOGD>();
    EXPECT_NEAR(std::log10(D.v[30] / D.v[29]), +dLogD.v[29], 1e-9);
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
        double total = 0;
        for (std::size_t i = 0; i < NET_SEMS_BINS; ++i)
            total += dN.v[i];
        EXPECT_NEAR(total / probe.world.air.number(), 1, 0.35);
    }
}

}  // namespace
