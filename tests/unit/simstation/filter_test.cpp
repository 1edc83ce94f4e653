// The filter absorption photometers: filters that darken by what the air carries, and a whole life of one
// with everything that an operator can do to it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "simstation/physics/average.h"
#include "simstation/physics/filter.h"
#include "support/sim_probe.h"

namespace {

constexpr double PER_M = 1e-6;

// ---- with one spot

TEST(Psap, MeasuresTheAirAndLoadsItsFilter) {
    SimProbe probe("psap");
    probe.run(600);
    const auto first = probe.last<MSG_PSAP_INSTANT>();
    EXPECT_NEAR(+first.I, static_cast<double>(first.I_sample) / first.I_reference, 0.01)
        << "but for the dark";
    expect_between(first.smoothed_I_sam_rsd, 1e-9, 1e-4, "smoothed_I_sam_rsd");
    SIM_stats air, measured;
    for (int i = 0; i < 3600; ++i) {
        probe.forget();
        probe.run(1);
        air.add(probe.world.air.absorption(565) * PER_M);
        measured.add(probe.last<MSG_PSAP_INSTANT>().bap);
    }
    EXPECT_NEAR(measured.mean(), air.mean(), 0.1 * air.mean());
    expect_between(probe.last<MSG_PSAP_INSTANT>().tr / first.tr, 0.5, 0.999, "an hour's darkening");
}

TEST(Psap, ThreeColoursOfSootAbsorbBlueMost) {
    SimProbe probe("psap3");
    EXPECT_FALSE(probe.set("transmittance", "1.5"));
    EXPECT_FALSE(probe.set("loading", "0"));
    EXPECT_TRUE(probe.set("loading", "50"));
    EXPECT_TRUE(probe.set("transmittance", "1"));
    probe.run(1200);
    const auto now = probe.last<MSG_PSAP3_INSTANT>();
    EXPECT_GT(+now.bap[0], +now.bap[1]);
    EXPECT_GT(+now.bap[1], +now.bap[2]);
    EXPECT_LT(+now.tr[0], +now.tr[2]);
}

TEST(Psap, AFilterChangeStopsTheFlowUnsettlesTheReadingsAndEndsWithACleanFilter) {
    SimProbe probe("psap");
    const auto changing = [&] { return probe.last<MSG_PSAP_FILTERSTATUS>().changing_filter; };
    probe.run(120);
    const auto before = probe.last<MSG_PSAP_INSTANT>();
    EXPECT_FALSE(probe.command(MSG_PSAP_SETFILTERSATUS)) << "without a record";
    EXPECT_TRUE(probe.command(MSG_PSAP_SETFILTERSATUS, NET_PSAP_FilterStatus{TRUE}));
    EXPECT_TRUE(changing());
    probe.run(90);
    const auto during = probe.last<MSG_PSAP_INSTANT>();
    EXPECT_NEAR(+during.Q_slpm, 0, 0.01);
    EXPECT_GT(+during.smoothed_I_ref_rsd, 5 * before.smoothed_I_ref_rsd);
    probe.run(60);
    EXPECT_TRUE(VESK_is_missing(+probe.last<MSG_PSAP_AVERAGE>().bapG)) << "nothing to average";

    EXPECT_TRUE(probe.command(MSG_PSAP_SETFILTERSATUS, NET_PSAP_FilterStatus{FALSE}));
    probe.run(60);
    EXPECT_FALSE(changing());
    EXPECT_NEAR(+probe.last<MSG_PSAP_INSTANT>().tr, 1, 0.001);
}

// ---- with eight

class ClapLife : public testing::Test {
  protected:
    [[nodiscard]] NET_CLAP3W_FilterStatus said() const { return probe.last<MSG_CLAP3W_FILTERSTATUS>(); }
    [[nodiscard]] NET_CLAP3W_Instant now() const { return probe.last<MSG_CLAP3W_INSTANT>(); }
    [[nodiscard]] bool flows() const { return now().Q > 0.4; }
    // Runs until it is in that state, for a while; how many seconds it took.
    int until(NET_CLAP3W_State state) {
        int seconds = 0;
        for (; said().status != state && seconds < 1000; ++seconds)
            probe.run(1);
        EXPECT_EQ(said().status, state);
        return seconds;
    }
    // An order that changes nothing is refused.
    void command(NETMSG_type msg, NET_CLAP3W_State expected) {
        SCOPED_TRACE(NETMSG_by_type(msg)->name);
        const auto before = said();
        const BOOL done = probe.command(msg);
        EXPECT_EQ(said().status, expected);
        EXPECT_EQ(done, said().status != before.status || said().active_spot != before.active_spot);
    }
    SimProbe probe{"clap3w"};
};

TEST_F(ClapLife, MeasuresTheAirOnItsActiveSpot) {
    probe.run(600);
    const auto in = now();
    const std::size_t spot = in.spot_index;
    ASSERT_TRUE(spot >= 1 && spot <= NET_CLAP3W_SPOTS);
    EXPECT_EQ(+in.Isam[1], +in.in.IG[spot + 1]);
    EXPECT_NEAR(+in.tr[1], +in.IrzG[spot - 1], 1e-9);
    for (std::size_t i = spot; i < NET_CLAP3W_SPOTS; ++i)
        EXPECT_NEAR(+in.IrzR[i], 1, 1e-3) << "unused";
    const auto average = probe.last<MSG_CLAP3W_AVERAGE>();
    EXPECT_NEAR(+average.bap[1], probe.world.air.absorption(528) * PER_M, 1 * PER_M);
    EXPECT_NEAR(+average.Qt, 0.83e-3 * 10, 0.5e-3) << "ten minutes of 0.83 slpm";
}

TEST_F(ClapLife, SpotsAdvanceByThemselvesUntilTheLastDemandsAChange) {
    EXPECT_TRUE(probe.set("loading", "500"));
    int spot = said().active_spot;
    int demands = 0;
    probe.run(7200);
    for (const auto& s : probe.records<MSG_CLAP3W_FILTERSTATUS>()) {
        EXPECT_TRUE(s.active_spot == spot || s.active_spot == ++spot) << "one after the other";
        demands += s.status == NET_CLAP3W_CHANGE_REQUIRED;
    }
    EXPECT_EQ(spot, NET_CLAP3W_SPOTS);
    EXPECT_GT(demands, 1) << "it keeps saying so";
    EXPECT_EQ(said().status, NET_CLAP3W_CHANGE_REQUIRED);
    EXPECT_FALSE(flows());
    for (int i = 0; i < NET_CLAP3W_SPOTS; ++i)
        expect_between(now().IrzG[i], 0.6, 0.701, "what a used spot lets through");
}

TEST_F(ClapLife, AFilterChangeEndsOnTheFirstSpotAndAWhiteFilterCheckSetsWhatTheRatiosAreTakenTo) {
    const WORD number = said().clap_filter_number;
    command(MSG_CLAP3W_FILTERCHANGE, NET_CLAP3W_CHANGING_FILTER);
    probe.run(120);
    EXPECT_FALSE(flows());
    EXPECT_GT(+now().Inormrsd[0], 1.5e-4) << "daylight";
    command(MSG_CLAP3W_SPOTADVANCE, NET_CLAP3W_CHANGING_FILTER);
    command(MSG_CLAP3W_FLOWOVERRIDE, NET_CLAP3W_CHANGING_FILTER);
    command(MSG_CLAP3W_FILTERCHANGE, NET_CLAP3W_WAIT_FILTER);
    EXPECT_EQ(+said().clap_filter_number, number + 1);
    EXPECT_NEAR(until(NET_CLAP3W_WAIT_SPOT), 120, 1);
    EXPECT_EQ(+said().active_spot, 1);
    EXPECT_NEAR(until(NET_CLAP3W_NORMAL), 60, 1);
    EXPECT_LT(+now().Inormrsd[0], 1e-4) << "stable again";
    double off = 0;
    for (int i = 0; i < NET_CLAP3W_SPOTS; ++i) {
        EXPECT_NEAR(+now().IrzB[i], 1, 1e-3);
        off = std::max(off, std::fabs(now().IrwG[i] - 1));
    }
    EXPECT_GT(off, 2e-3) << "another filter than the white one";

    command(MSG_CLAP3W_FILTERCHANGE, NET_CLAP3W_CHANGING_FILTER);
    command(MSG_CLAP3W_WHITECHANGE, NET_CLAP3W_WHITE_CHECK);
    probe.run(60);
    command(MSG_CLAP3W_WHITECHANGE, NET_CLAP3W_WHITE_CHECK);
    command(MSG_CLAP3W_FILTERCHANGE, NET_CLAP3W_WAIT_WHITE);
    until(NET_CLAP3W_WAIT_SPOT);
    probe.run(1);
    for (int i = 0; i < NET_CLAP3W_SPOTS; ++i)
        EXPECT_NEAR(+now().IrwG[i], 1, 1e-3);
}

TEST_F(ClapLife, FlowAndSpotsWithAndWithoutOverride) {
    const WORD spot = said().active_spot;
    command(MSG_CLAP3W_FLOW, NET_CLAP3W_NORMAL);
    command(MSG_CLAP3W_NOFLOW, NET_CLAP3W_FLOW_OFF);
    probe.run(30);
    EXPECT_FALSE(flows());
    EXPECT_EQ(said().paused, 1);
    command(MSG_CLAP3W_SPOTADVANCE, NET_CLAP3W_FLOW_OFF_PENDING);
    EXPECT_EQ(+said().active_spot, spot + 1);
    command(MSG_CLAP3W_FLOW, NET_CLAP3W_WAIT_SPOT);
    command(MSG_CLAP3W_NOFLOW, NET_CLAP3W_WAIT_SPOT);
    command(MSG_CLAP3W_NOFLOWOVERRIDE, NET_CLAP3W_FLOW_OFF_PENDING);
    command(MSG_CLAP3W_FLOWOVERRIDE, NET_CLAP3W_WAIT_SPOT);
    command(MSG_CLAP3W_FLOWOVERRIDE, NET_CLAP3W_NORMAL);
    EXPECT_EQ(said().paused, 0);
    EXPECT_FALSE(probe.command(MSG_CLAP3W_FLOWMULTI));
}

TEST_F(ClapLife, AnOverriddenDemandUsesTheLastSpotOn) {
    while (said().active_spot < NET_CLAP3W_SPOTS)
        command(MSG_CLAP3W_SPOTADVANCE, NET_CLAP3W_WAIT_SPOT);
    command(MSG_CLAP3W_SPOTADVANCE, NET_CLAP3W_CHANGE_REQUIRED);
    command(MSG_CLAP3W_FLOW, NET_CLAP3W_CHANGE_REQUIRED);
    command(MSG_CLAP3W_FLOWOVERRIDE, NET_CLAP3W_NORMAL);
    EXPECT_TRUE(probe.set("transmittance", "0.5"));
    probe.run(100);
    EXPECT_EQ(said().status, NET_CLAP3W_NORMAL);
}

TEST_F(ClapLife, EveryFifthFilterWantsAWhiteFilterCheck) {
    for (int filter = 0; filter < 5; ++filter) {
        command(MSG_CLAP3W_FILTERCHANGE, NET_CLAP3W_CHANGING_FILTER);
        command(MSG_CLAP3W_FILTERCHANGE, NET_CLAP3W_WAIT_FILTER);
    }
    until(NET_CLAP3W_NORMAL);
    for (int i = 0; i < NET_CLAP3W_SPOTS; ++i)
        EXPECT_TRUE(probe.command(MSG_CLAP3W_SPOTADVANCE));
    EXPECT_EQ(said().status, NET_CLAP3W_WHITE_REQUIRED);
}

TEST_F(ClapLife, ScenariosRaiseErrorsAndDemands) {
    probe.instrument.set_alarm_flags(NET_CLAP3W_FILTER_OR_LED);
    EXPECT_TRUE(probe.set("demand", "9"));
    EXPECT_EQ(said().status, NET_CLAP3W_WHITE_REQUIRED);
    EXPECT_FALSE(probe.set("demand", "7"));
    EXPECT_FALSE(probe.set("demand", "8.5"));
    EXPECT_FALSE(probe.set("transmittance", "0"));
    probe.run(60);
    EXPECT_EQ(+probe.last<MSG_CLAP3W_AVERAGE>().flags, NET_CLAP3W_FILTER_OR_LED);
    EXPECT_TRUE(VESK_is_missing(+probe.last<MSG_CLAP3W_AVERAGE>().bap[0])) << "without flow";
}

}  // namespace
