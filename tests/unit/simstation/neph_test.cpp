// The nephelometers: zeros, parameters and the span check as an operator with a gas bottle sees them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "libvesk/support/util.h"
#include "simstation/kinds/spancheck.h"
#include "support/sim_probe.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr double MM = 1e6;  // 1/m in 1/Mm
constexpr FTIME REAL_NOW = 1'800'000'000.5;
constexpr const char* EVERY_KIND[] = {"neph", "neph_passive", "nephM903", "neph_aurora3000"};

NET_NEPH_Instant neph_now(const SimProbe& probe) {
    return probe.last<MSG_NEPH_INSTANT>();
}

NET_COMMON_Neph_SpancheckPhase phase_now(const SimProbe& probe) {
    return probe.last<MSG_COMMON_NEPH_SPANCHECK_PHASE>();
}

// The order of a console whose clock shows `t`: 3 minutes of air, 10 and 5 of CO2, 3 and 10 of air.
constexpr int WHOLE_CHECK = 1860;
NET_COMMON_Neph_SpancheckIssue order(FTIME t) {
    return {t + 180, t + 780, t + 1080, t + 1260, t + WHOLE_CHECK};
}

// Real time stands still at REAL_NOW, far from the simulated one.
class Spancheck : public testing::Test {
  protected:
    Spancheck() {
        UTIL_set_clock([] { return REAL_NOW; });
    }
    ~Spancheck() override { UTIL_set_clock(nullptr); }
};

// --- measuring ---

TEST(Neph, SaysWhatTheAirHoldsInTheFormThatAllKindsShare) {
    for (const char* type : EVERY_KIND) {
        SCOPED_TRACE(type);
        SimProbe probe(type);
        probe.run(600);
        const auto r = probe.last<MSG_COMMON_NEPH_INSTANT>();
        EXPECT_EQ(+r.start_time, probe.world.now);
        expect_between(r.ra.bsp[1] * MM / probe.world.air.scattering(550), 0.8, 1.2, "green");
        EXPECT_EQ(VESK_is_missing(+r.in.bsp[0]), std::string_view(type) == "nephM903");
    }
}

// --- zeros ---

TEST(NephZero, CountsDownDecaysAndReportsANewBackground) {
    SimProbe probe("neph");
    probe.run(300);
    const double before = neph_now(probe).s.bsp[1];
    const auto old = probe.last<MSG_NEPH_ZERO>();
    const FTIME begun = probe.world.now;
    ASSERT_TRUE(probe.command(MSG_NEPH_ISSUE_ZERO));
    EXPECT_EQ(+probe.last<MSG_NEPH_ZEROSCHEDULE>().time_next, begun + 3600);
    probe.forget();

    probe.run(9);
    EXPECT_FALSE(neph_now(probe).ambient);
    EXPECT_TRUE(VESK_is_missing(+neph_now(probe).alphaGR)) << "there are no particles to have one";
    EXPECT_EQ(+neph_now(probe).sec_left, 291);
    expect_between(neph_now(probe).s.bsp[1] / before, 0.25, 0.55, "what is left after one flush");
    probe.run(280);
    expect_between(neph_now(probe).s.bsp[1] * MM, -1.5, 1.5, "filtered air");
    EXPECT_EQ(probe.count(MSG_NEPH_ZERO), 0u);

    probe.run(11);
    const auto zero = probe.last<MSG_NEPH_ZERO>();
    EXPECT_NEAR(zero.bspBKshift[1], zero.bspBK[1] - old.bspBK[1], 1e-15);
    EXPECT_STREQ(probe.last<MSG_NEPH_MODES>().mode, "BBXX") << "blanking";
    probe.run(60);
    EXPECT_TRUE(neph_now(probe).ambient);
    expect_between(neph_now(probe).s.bsp[1] / before, 0.7, 1.4, "ambient again");
}

TEST(NephZero, ComesEveryHourAndStaysOutOfTheAverages) {
    SimProbe aurora("neph_aurora3000");
    ASSERT_TRUE(aurora.command(MSG_NEPHAURORA3000_ISSUE_ZERO));
    aurora.run(200);
    EXPECT_FALSE(aurora.last<MSG_NEPHAURORA3000_INSTANT>().ambient);
    aurora.run(3 * 3600 + 400);
    EXPECT_EQ(aurora.count(MSG_NEPHAURORA3000_ZERO), 1u + 1u + 3u) << "the earlier one, this, one each hour";
    SimProbe probe("neph");
    ASSERT_TRUE(probe.command(MSG_NEPH_ISSUE_ZERO));
    probe.run(600);
    for (const auto& avg : probe.records<MSG_NEPH_AVERAGE>()) {
        EXPECT_NE(+avg.pc.sampTS[1], VESK_MISSING);
        if (!VESK_is_missing(+avg.s.bsp[1])) expect_between(avg.s.bsp[1] * MM, 3, 90, "averaged outer air");
    }
    EXPECT_TRUE(VESK_is_missing(+probe.records<MSG_NEPH_AVERAGE>().at(2).s.bsp[1]));
}

TEST(NephZero, IsNeverAnnouncedForThePast) {
    UTIL_set_clock([] { return REAL_NOW; });
    for (const char* type : {"neph", "neph_aurora3000", "caps"}) {
        SCOPED_TRACE(type);
        SimProbe probe(type);
        const auto run = [&](int seconds) {
            for (int i = 0; i < seconds; ++i) {
                probe.run(1);
                const NETMSG_type msg = probe.count(MSG_NEPH_ZEROSCHEDULE) > 0 ? MSG_NEPH_ZEROSCHEDULE
                                        : probe.count(MSG_CAPS_ZEROSCHEDULE) > 0
                                            ? MSG_CAPS_ZEROSCHEDULE
                                            : MSG_NEPHAURORA3000_ZEROSCHEDULE;
                FTIME next = 0;
                std::memcpy(&next, probe.of(msg).back().payload.data(), sizeof next);
                ASSERT_GT(next, probe.world.now);
            }
        };
        run(3700);  // over one by schedule
        probe.broadcast(MSG_COMMON_NEPH_SPANCHECK_ISSUE, order(REAL_NOW + 3000));
        run(5000);  // over a span check that lasts longer than the time between zeros
        probe.instrument.set_comms(FALSE);
        probe.run(4000);
        probe.instrument.set_comms(TRUE);
        run(10);
    }
    UTIL_set_clock(nullptr);
}

// --- parameters ---

TEST(NephConfig, IsEchoedAndChangesWhatItSays) {
    SimProbe probe("neph");
    auto wanted = probe.last<MSG_NEPH_CONFIG>();
    wanted.sta = 10;
    wanted.sx = 1500;
    wanted.smb = FALSE;
    ASSERT_TRUE(probe.command(MSG_NEPH_CONFIG, wanted));
    EXPECT_EQ(probe.last<MSG_NEPH_CONFIG>().sta, 10);
    const std::size_t before = probe.count(MSG_NEPH_INSTANT);
    probe.run(25);
    EXPECT_EQ(probe.count(MSG_NEPH_INSTANT), before + 2) << "the averages of ten seconds each";
    EXPECT_EQ(+neph_now(probe).start_time, probe.world.now - 14);
    EXPECT_NEAR(+neph_now(probe).aux_in, 1500, 5);
    wanted.sta = 1;
    ASSERT_TRUE(probe.command(MSG_NEPH_CONFIG, wanted));
    probe.run(30);
    EXPECT_STREQ(probe.last<MSG_NEPH_MODES>().mode, "NTXX");
    EXPECT_TRUE(VESK_is_missing(+neph_now(probe).s.bbsp[0]));

    wanted.l = FALSE;
    EXPECT_FALSE(probe.broadcast(MSG_NEPH_CONFIG, wanted, "N12")) << "another's echo is no order";
    ASSERT_TRUE(probe.command(MSG_NEPH_CONFIG, wanted));
    probe.run(1);
    EXPECT_EQ(+neph_now(probe).lamp_V, 0);
    EXPECT_TRUE(VESK_is_missing(+neph_now(probe).s.bsp[1])) << "measured in the dark";
    EXPECT_EQ(probe.last<MSG_NEPH_MODES>().flags & 1, 1);
}

TEST(NephConfig, TheValveHoldsFilteredAirUntilItIsReleased) {
    SimProbe probe("neph");
    ASSERT_TRUE(probe.command(MSG_NEPH_OVERRIDEPARAMS, NET_NEPH_OverrideParams{1}));
    probe.run(100);
    expect_between(neph_now(probe).s.bsp[1] * MM, -1.5, 1.5, "filtered air");
    ASSERT_TRUE(probe.command(MSG_NEPH_OVERRIDEPARAMS, NET_NEPH_OverrideParams{-1}));
    probe.run(1);
    EXPECT_FALSE(neph_now(probe).ambient) << "unchanged";
    ASSERT_TRUE(probe.command(MSG_NEPH_OVERRIDEPARAMS, NET_NEPH_OverrideParams{0}));
    probe.run(100);
    EXPECT_TRUE(neph_now(probe).ambient);
}

// --- the span check ---

TEST_F(Spancheck, RunsItsPhasesForTheOrderedTimesAndReportsPlausibleErrors) {
    for (const char* type : EVERY_KIND) {
        SCOPED_TRACE(type);
        SimProbe probe(type);
        probe.run(30);
        const FTIME begun = probe.world.now;
        probe.forget();
        ASSERT_TRUE(probe.broadcast(MSG_COMMON_NEPH_SPANCHECK_ISSUE, order(REAL_NOW)));
        probe.run(WHOLE_CHECK);

        std::vector<std::pair<int, double>> phases;
        for (const auto& p : probe.records<MSG_COMMON_NEPH_SPANCHECK_PHASE>())
            phases.emplace_back(p.phase, p.next_time < 0 ? p.next_time : p.next_time - begun);
        EXPECT_THAT(phases, ElementsAre(std::pair{1, 180.0}, std::pair{2, 780.0}, std::pair{3, 1080.0},
                                        std::pair{4, 1260.0}, std::pair{5, 1860.0}, std::pair{0, -1.0}));
        const auto r = probe.last<MSG_COMMON_NEPH_SPANCHECK_RESULTS>();
        EXPECT_EQ(probe.of(MSG_COMMON_NEPH_SPANCHECK_RESULTS).back().flags, DWORD{FRAME_TO_ALL});
        const bool green_only = std::string_view(type) == "nephM903";
        for (int i = 0; i < 3; ++i) {
            const bool absent = green_only && i != 1;
            EXPECT_EQ(VESK_is_missing(+r.pcterrTS[i]), absent);
            EXPECT_EQ(VESK_is_missing(+r.pcterrBS[i]), green_only);
            if (!absent) expect_between(std::abs(r.pcterrTS[i]), 0.5, 3, "error");
            if (!green_only) expect_between(std::abs(r.pcterrBS[i]), 0.5, 3, "error of backscatter");
        }
        expect_between(r.avgErr, 0.5, 3, "average error");
        // 2.61 times the 12.26 /Mm of air at 550 nm; the other green lines are a little shorter.
        expect_between(r.bsgCO2[1] * MM, 30.5, 39, "green scattering of CO2");
        expect_between(r.sensTS[1] / MM, 380, 430, "counts per second for 1/Mm");
    }
}

TEST_F(Spancheck, FirstPhaseIsWhatTheRealClockLeavesOfIt) {
    SimProbe probe("neph");
    const FTIME now = probe.world.now;
    ASSERT_TRUE(probe.command(MSG_COMMON_NEPH_SPANCHECK_ISSUE, order(REAL_NOW - 30)));
    EXPECT_EQ(+phase_now(probe).next_time, now + 150);
    ASSERT_TRUE(probe.command(MSG_COMMON_NEPH_SPANCHECK_ISSUE, order(REAL_NOW - 1000)));
    EXPECT_EQ(+phase_now(probe).next_time, now + 1) << "an end that is past";
    probe.run(1);
    EXPECT_EQ(+phase_now(probe).next_time, now + 1 + 600) << "but the others keep their lengths";

    SimProbe::Options in_real_time;
    in_real_time.start = REAL_NOW - 1.4;
    SimProbe live("neph", in_real_time);
    ASSERT_TRUE(live.command(MSG_COMMON_NEPH_SPANCHECK_ISSUE, order(REAL_NOW)));
    EXPECT_EQ(+phase_now(live).next_time, REAL_NOW + 180) << "the very time that the console ordered";
}

TEST_F(Spancheck, ShowsInTheReadingsAndEndsWithAZero) {
    SimProbe probe("neph");
    ASSERT_TRUE(probe.command(MSG_COMMON_NEPH_SPANCHECK_ISSUE, order(REAL_NOW)));
    probe.run(180 + 30);
    const double part = neph_now(probe).s.bsp[1] * MM;
    probe.run(500);
    const double whole = neph_now(probe).s.bsp[1] * MM;
    expect_between(part / whole, 0.55, 0.72, "share of CO2 after one flush");
    expect_between(whole, 1.61 * 12.26 * 0.85, 1.61 * 12.26, "CO2 above air, thin as it is at the station");
    EXPECT_STREQ(probe.last<MSG_NEPH_MODES>().mode, "CBXX");
    EXPECT_FALSE(probe.command(MSG_NEPH_ISSUE_ZERO));
    EXPECT_FALSE(probe.command(MSG_NEPH_OVERRIDEPARAMS, NET_NEPH_OverrideParams{1}));
    probe.run(WHOLE_CHECK - 710);
    EXPECT_EQ(phase_now(probe).phase, NET_COMMON_NEPH_SC_NONE);
    EXPECT_STREQ(probe.last<MSG_NEPH_MODES>().mode, "ZBXX");
}

TEST_F(Spancheck, AbortToAllEndsIt) {
    for (const char* type : EVERY_KIND) {
        SCOPED_TRACE(type);
        SimProbe probe(type);
        ASSERT_TRUE(probe.broadcast(MSG_COMMON_NEPH_SPANCHECK_ISSUE, order(REAL_NOW)));
        probe.run(200);
        ASSERT_EQ(phase_now(probe).phase, NET_COMMON_NEPH_SC_FLUSH_CO2);
        ASSERT_TRUE(probe.broadcast(MSG_COMMON_NEPH_SPANCHECK_ABORT));
        probe.run(WHOLE_CHECK);
        EXPECT_EQ(probe.count(MSG_COMMON_NEPH_SPANCHECK_RESULTS), 0u);
        EXPECT_EQ(phase_now(probe).phase, NET_COMMON_NEPH_SC_NONE);
        EXPECT_TRUE(probe.broadcast(MSG_COMMON_NEPH_SPANCHECK_ABORT)) << "understood, with nothing to abort";
    }
}

TEST_F(Spancheck, IsRefusedWhileBypassedOrContaminatedAsItsKindGoes) {
    for (const char* type : EVERY_KIND) {
        SCOPED_TRACE(type);
        const bool by_bypass = type == std::string_view("neph") || type == std::string_view("neph_passive");
        const auto refused = [&](auto state, NETMSG_type msg) {
            SimProbe probe(type);
            probe.instrument.set_comms(FALSE);  // the station's state is heard all the same
            probe.broadcast(msg, state, "LOGGER");
            probe.instrument.set_comms(TRUE);
            probe.broadcast(MSG_COMMON_NEPH_SPANCHECK_ISSUE, order(REAL_NOW));
            const bool none = phase_now(probe).phase == NET_COMMON_NEPH_SC_NONE;
            EXPECT_EQ(none, probe.sink.lines.back().find("span check refused") != std::string::npos);
            state = {};
            probe.broadcast(msg, state, "LOGGER");
            probe.broadcast(MSG_COMMON_NEPH_SPANCHECK_ISSUE, order(REAL_NOW));
            EXPECT_EQ(phase_now(probe).phase, NET_COMMON_NEPH_SC_FLUSH_AIR_INIT);
            return none;
        };
        EXPECT_EQ(refused(NET_LOG_AVG_Bypass{TRUE, 0}, MSG_LOG_AVG_BYPASS), by_bypass);
        EXPECT_EQ(refused(NET_LOG_AVG_Contamination{TRUE, 0}, MSG_LOG_AVG_CONTAMINATION), !by_bypass);
    }
}

TEST_F(Spancheck, OrdersThatMakeNoSenseAreRefused) {
    SimProbe probe("neph");
    auto backward = order(REAL_NOW);
    backward.end_co2_sample = backward.end_init_air_flush;
    auto nothing = order(REAL_NOW);
    nothing.end_air_sample = std::numeric_limits<double>::quiet_NaN();
    const auto tomorrow = order(REAL_NOW + 90000);
    for (const auto& wrong : {backward, nothing, tomorrow}) {
        probe.command(MSG_COMMON_NEPH_SPANCHECK_ISSUE, wrong);
        EXPECT_EQ(phase_now(probe).phase, NET_COMMON_NEPH_SC_NONE);
        EXPECT_THAT(probe.sink.lines.back(), HasSubstr("span check refused"));
    }
    EXPECT_FALSE(probe.command(MSG_COMMON_NEPH_SPANCHECK_ISSUE)) << "without its record";
    EXPECT_FALSE(probe.receive(DeliveredMessage(MSG_COMMON_NEPH_SPANCHECK_ISSUE, order(REAL_NOW), "N12")));
    EXPECT_EQ(phase_now(probe).phase, NET_COMMON_NEPH_SC_NONE) << "another was meant";
}

TEST_F(Spancheck, LostCommunicationsCostTheResultsOnlyWhenAGasWasMissed) {
    const auto results_when_silent = [](int from, int seconds) {
        SimProbe probe("neph");
        probe.command(MSG_COMMON_NEPH_SPANCHECK_ISSUE, order(REAL_NOW));
        probe.run(from);
        probe.instrument.set_comms(FALSE);
        probe.run(seconds);
        probe.instrument.set_comms(TRUE);
        probe.run(WHOLE_CHECK - from - seconds + 1);
        EXPECT_EQ(phase_now(probe).phase, NET_COMMON_NEPH_SC_NONE);
        return probe.count(MSG_COMMON_NEPH_SPANCHECK_RESULTS);
    };
    EXPECT_EQ(results_when_silent(200, 100), 1u);
    EXPECT_EQ(results_when_silent(700, 500), 0u);

    SimProbe probe("neph");
    probe.command(MSG_COMMON_NEPH_SPANCHECK_ISSUE, order(REAL_NOW));
    probe.run(100);
    probe.instrument.set_comms(FALSE);
    EXPECT_TRUE(probe.broadcast(MSG_COMMON_NEPH_SPANCHECK_ABORT)) << "an abort is heard all the same";
    EXPECT_EQ(phase_now(probe).phase, NET_COMMON_NEPH_SC_NONE);
}

}  // namespace
