// The particle counters: what each kind sends, in the ranges that an operator expects.
#include <gtest/gtest.h>

#include <cmath>

#include "libvesk/records/cpc.h"
#include "simstation/average.h"
#include "support/sim_probe.h"

namespace {

constexpr int WARM = 900;  // seconds after which every counter is in order

// A value between the two; by value, since fields of records may be unaligned.
void expect_between(double value, double low, double high, const char* what) {
    EXPECT_TRUE(value >= low && value <= high) << what << " is " << value;
}

template <class Avg, class Instant, class Status>
struct names {
    using avg = Avg;
    using instant = Instant;
    using status = Status;
    const char* type;
    NETMSG_type average_msg;
    NETMSG_type instant_msg;
};

// The average of a whole minute is that of the readings sent in it, and so is the running average.
template <class N>
void expect_averages_of_readings(const N& n) {
    SCOPED_TRACE(n.type);
    SimProbe probe(n.type);
    probe.run(WARM);
    while (std::fmod(probe.world.now + 1, 60) != 0)
        probe.run(1);
    probe.forget();
    probe.run(60);
    SIM_stats stats;
    for (const auto& r : probe.records<typename N::instant>(n.instant_msg)) {
        expect_between(r.concentration, 100, 20000, "concentration");
        stats.add(r.concentration);
    }
    ASSERT_EQ(stats.count(), 60);
    const auto avg = probe.last<typename N::avg>(n.average_msg);
    EXPECT_EQ(+avg.start_time, probe.world.now - 59);
    EXPECT_DOUBLE_EQ(+avg.concentration, stats.mean());
    EXPECT_DOUBLE_EQ(+avg.stddev_concentration, stats.stddev());
    const auto running = probe.last<typename N::instant>(n.instant_msg).running;
    EXPECT_DOUBLE_EQ(+running.concentration, stats.mean());
    EXPECT_DOUBLE_EQ(+running.stddev_concentration, stats.stddev());
    EXPECT_EQ(+running.start_time, +avg.start_time);
}

#define NAMES(record, msg, type)                                                           \
    names<NET_CPC_##record##_Avg, NET_CPC_##record##_Instant, NET_CPC_##record##_Status> { \
        type, MSG_CPC_##msg##_AVERAGE, MSG_CPC_##msg##_INSTANT                             \
    }

TEST(Cpc, AveragesAreThoseOfTheReadingsSent) {
    expect_averages_of_readings(NAMES(3010, 3010, "cpc_3010"));
    expect_averages_of_readings(NAMES(3022, 3022, "cpc_3022"));
    expect_averages_of_readings(NAMES(3703, 3703, "cpc_3703"));
    expect_averages_of_readings(NAMES(3775, 3775, "cpc_3775"));
    expect_averages_of_readings(NAMES(3781, 3781, "cpc_3781"));
    expect_averages_of_readings(NAMES(3783, 3783, "cpc_3783"));
    expect_averages_of_readings(NAMES(Pulse, PULSE, "cpc_pulse"));
}

TEST(Cpc, AnotherSeedIsAnotherDay) {
    SimProbe::Options options;
    options.settings.seed = 2;
    SimProbe one("cpc_3703");
    SimProbe two("cpc_3703", options);
    one.run(60);
    two.run(60);
    EXPECT_NE(+one.last<NET_CPC_3703_Instant>(MSG_CPC_3703_INSTANT).running.concentration,
              +two.last<NET_CPC_3703_Instant>(MSG_CPC_3703_INSTANT).running.concentration);
}

TEST(Cpc, BlocksHaveTheLengthAskedFor) {
    SimProbe::Options options;
    options.settings.average_seconds = 10;
    SimProbe probe("cpc_3703", options);
    probe.run(600);
    EXPECT_EQ(probe.count(MSG_CPC_3703_AVERAGE), 60u);
    EXPECT_EQ(probe.count(MSG_CPC_3703_INSTANT), 600u);
}

TEST(Cpc, TheModel3010WarmsUpWithItsWarning) {
    SimProbe probe("cpc_3010");
    probe.run(1);
    const auto cold = probe.last<NET_CPC_3010_Instant>(MSG_CPC_3010_INSTANT);
    expect_between(cold.T_saturator, 22, 26, "T_saturator");
    expect_between(cold.concentration, 0, 50, "a cold counter's concentration");
    EXPECT_EQ(probe.last<NET_CPC_3010_Status>(MSG_CPC_3010_STATUS).flags & 1, 1);
    probe.run(WARM);
    const auto warm = probe.last<NET_CPC_3010_Instant>(MSG_CPC_3010_INSTANT);
    expect_between(warm.T_saturator - warm.T_condenser, 16.5, 17.5, "delta T");
    expect_between(warm.display_concentration / warm.running.concentration, 0.8, 1.25, "display");
    EXPECT_EQ(probe.last<NET_CPC_3010_Status>(MSG_CPC_3010_STATUS).flags & 1, 0);
}

TEST(Cpc, HousekeepingIsWhatAnOperatorExpects) {
    SimProbe p3022("cpc_3022");
    p3022.run(WARM);
    const auto r3022 = p3022.last<NET_CPC_3022_Instant>(MSG_CPC_3022_INSTANT);
    expect_between(r3022.T_optics, 35, 36, "T_optics");
    expect_between(r3022.T_condenser, 9.5, 10.5, "T_condenser");
    expect_between(r3022.Q, 0.29, 0.31, "Q");

    SimProbe p3775("cpc_3775");
    p3775.run(WARM);
    const auto r3775 = p3775.last<NET_CPC_3775_Instant>(MSG_CPC_3775_INSTANT);
    expect_between(r3775.T_cabinet, 28, 32, "T_cabinet");
    expect_between(r3775.P_ambient, 900, 1030, "P_ambient");
    expect_between(r3775.P_nozzle, 1, 5, "P_nozzle");
    expect_between(r3775.I_laser, 40, 60, "I_laser");
    expect_between(r3775.liquid, 1, 2471, "liquid");

    SimProbe p3781("cpc_3781");
    p3781.run(WARM);
    const auto r3781 = p3781.last<NET_CPC_3781_Instant>(MSG_CPC_3781_INSTANT);
    expect_between(r3781.T_growth - r3781.T_saturator, 38, 42, "growth above saturator");

    SimProbe p3783("cpc_3783");
    p3783.run(WARM);
    const auto r3783 = p3783.last<NET_CPC_3783_Instant>(MSG_CPC_3783_INSTANT);
    expect_between(r3783.V_pulse, 1500, 2600, "V_pulse");
    expect_between(r3783.T_condenser, 19, 21, "T_condenser");
    expect_between(r3783.Q_inlet, 2.8, 3.2, "Q_inlet");
}

// Every number that a record has is filled: a misspelt row of the table would leave it missing.
TEST(Cpc, NoReadingIsMissing) {
    for (const SIM_kind& kind : SIM_kinds()) {
        if (!std::string_view(kind.type).starts_with("cpc_")) continue;
        SimProbe probe(kind.type);
        probe.run(120);
        for (const SentMessage& m : probe.sink.sent) {
            if (m.dsd == nullptr || m.time < probe.world.now - 60) continue;
            NETDSD_for_each_leaf(m.dsd, [&](const NETDSD_field& f, std::size_t at) {
                if (f.ft != NETDSD_FT_DOUBLE) return;
                EXPECT_NE(NETDSD_load<double>(m.payload.data() + at), VESK_MISSING)
                    << m.dsd->name << " " << f.name;
            });
        }
    }
}

TEST(Cpc, LowLiquidWarnsAndADryCounterStopsCounting) {
    SimProbe probe("cpc_3022");
    probe.run(WARM);
    ASSERT_EQ(probe.last<NET_CPC_3022_Status>(MSG_CPC_3022_STATUS).flags & 2, 0);
    ASSERT_TRUE(probe.set("liquid", "0.1"));
    EXPECT_EQ(probe.last<NET_CPC_3022_Status>(MSG_CPC_3022_STATUS).flags & 2, 2);
    probe.run(WARM);
    expect_between(probe.last<NET_CPC_3022_Instant>(MSG_CPC_3022_INSTANT).concentration, 100, 20000,
                   "concentration while low");
    ASSERT_TRUE(probe.set("liquid", "0"));
    probe.run(2 * WARM);
    expect_between(probe.last<NET_CPC_3022_Instant>(MSG_CPC_3022_INSTANT).concentration, 0, 10,
                   "concentration when dry");
    ASSERT_TRUE(probe.set("liquid", "1"));
    probe.run(2 * WARM);
    EXPECT_EQ(probe.last<NET_CPC_3022_Status>(MSG_CPC_3022_STATUS).flags & 2, 0);
    expect_between(probe.last<NET_CPC_3022_Instant>(MSG_CPC_3022_INSTANT).concentration, 100, 20000,
                   "concentration when full");
    EXPECT_FALSE(probe.set("liquid", "1.5"));
}

// Butanol and water run low by themselves within a day, and are filled up again.
TEST(Cpc, LiquidRunsLowNowAndThen) {
    SimProbe probe("cpc_3783");
    probe.run(86400);
    const auto statuses = probe.records<NET_CPC_3783_Status>(MSG_CPC_3783_STATUS);
    int warnings = 0;
    for (const auto& status : statuses)
        warnings += !status.full;
    EXPECT_GE(warnings, 2);
    EXPECT_LE(warnings, 6);
    SimProbe butanol("cpc_bmi1710");
    butanol.run(30000);
    EXPECT_GE(butanol.last<NET_CPC_BMI1710_Instant>(MSG_CPC_BMI1710_INSTANT).fill_count, 2);
}

TEST(Cpc, FaultsOfScenariosReachTheStatus) {
    SimProbe probe("cpc_3010");
    probe.run(WARM);
    probe.instrument.set_alarm_flags(4);
    EXPECT_EQ(probe.last<NET_CPC_3010_Status>(MSG_CPC_3010_STATUS).flags & 4, 4);
    ASSERT_TRUE(probe.set("dip", "on"));
    EXPECT_TRUE(probe.last<NET_CPC_3010_Status>(MSG_CPC_3010_STATUS).dip_error);
    probe.instrument.set_comms(FALSE);
    EXPECT_FALSE(probe.last<NET_CPC_3010_Status>(MSG_CPC_3010_STATUS).have_comms);
    probe.instrument.set_comms(TRUE);
    EXPECT_TRUE(probe.last<NET_CPC_3010_Status>(MSG_CPC_3010_STATUS).have_comms);
}

TEST(Cpc, TheBmiAveragesAllItMeasures) {
    SimProbe probe("cpc_bmi1710");
    probe.run(WARM);
    while (std::fmod(probe.world.now + 1, 60) != 0)
        probe.run(1);
    probe.forget();
    probe.run(60);
    SIM_stats n;
    SIM_stats t2;
    for (const auto& r : probe.records<NET_CPC_BMI1710_Instant>(MSG_CPC_BMI1710_INSTANT)) {
        n.add(r.in.N);
        t2.add(r.in.T2);
    }
    const auto avg = probe.last<NET_CPC_BMI1710_Reading>(MSG_CPC_BMI1710_AVERAGE);
    const auto instant = probe.last<NET_CPC_BMI1710_Instant>(MSG_CPC_BMI1710_INSTANT);
    EXPECT_NEAR(avg.N, n.mean(), 1e-9 * n.mean());
    EXPECT_NEAR(avg.T2, t2.mean(), 1e-9);
    EXPECT_DOUBLE_EQ(+avg.Ng, n.stddev());
    EXPECT_NEAR(instant.ra.N, n.mean(), 1e-9 * n.mean());
    EXPECT_EQ(+instant.ra.start_time, +avg.start_time);
}

// Counters that stand side by side agree, each within its own efficiency.
TEST(Cpc, CountersTellTheSameStory) {
    SimProbe a("cpc_3022");
    SimProbe b("cpc_3775");
    SIM_stats ratio;
    for (int i = 0; i < 20; ++i) {
        a.run(WARM);
        b.run(WARM);
        ratio.add(a.last<NET_CPC_3022_Avg>(MSG_CPC_3022_AVERAGE).concentration /
                  b.last<NET_CPC_3775_Avg>(MSG_CPC_3775_AVERAGE).concentration);
    }
    expect_between(ratio.mean(), 0.95, 1.01, "ratio");
    EXPECT_LT(ratio.stddev(), 0.02);
}

}  // namespace
