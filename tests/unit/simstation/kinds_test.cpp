// Cases that run over every kind of the table.
#include "simstation/kinds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <ostream>
#include <set>

#include "libvesk/messages/records/server.h"
#include "libvesk/support/util.h"
#include "support/sim_probe.h"

// How a case is named in the list of tests.
static void PrintTo(const SIM_kind& kind, std::ostream* os) {
    *os << kind.type;
}

namespace {

class EveryKind : public testing::TestWithParam<SIM_kind> {
  protected:
    [[nodiscard]] const char* type() const { return GetParam().type; }
    static constexpr int MINUTES_10 = 600;
};

// Whether a kind that is warm and in outer air always has that number.
bool is_measured_by(std::string_view type, std::string_view field) {
    // Scattering of little aerosol can be below zero for a second: no exponent then.
    const bool exponent = field.starts_with("alpha") || field == "aGR" || field == "abGR";
    return !exponent && (type.starts_with("cpc_") || type == "neph" || type == "neph_aurora3000");
}

INSTANTIATE_TEST_SUITE_P(Kinds, EveryKind, testing::ValuesIn(SIM_kinds().begin(), SIM_kinds().end()),
                         [](const auto& param_info) { return std::string(param_info.param.type); });

TEST(KindTable, NamesAndIdentifiersAreUniqueAndFitTheirFields) {
    std::set<std::string> types;
    std::set<std::string> names;
    std::set<char> ids;
    for (const SIM_kind& kind : SIM_kinds()) {
        SCOPED_TRACE(kind.type);
        EXPECT_TRUE(types.insert(kind.type).second);
        EXPECT_TRUE(names.insert(kind.name).second);
        EXPECT_TRUE(ids.insert(kind.id_ch).second) << kind.id_ch;
        EXPECT_TRUE(UTIL_valid_source_name(kind.name));
        EXPECT_LT(std::strlen(kind.type), 32u);
        EXPECT_LT(std::strlen(kind.display_name), 30u);  // " 2" still fits
        EXPECT_TRUE(std::isalnum(static_cast<unsigned char>(kind.id_ch)));
        EXPECT_EQ(SIM_kind_by_type(kind.type)->dcl, kind.dcl);
    }
    EXPECT_EQ(SIM_kind_by_type("no_such_kind"), nullptr);
}

TEST_P(EveryKind, TheSameSeedSendsTheSameBytes) {
    SimProbe one(type());
    SimProbe two(type());
    one.run(MINUTES_10);
    two.run(MINUTES_10);
    EXPECT_EQ(one.sink.sent, two.sink.sent);
}

TEST_P(EveryKind, SendsOnlyFiniteValuesInTheRecordsOfTheirMessages) {
    SimProbe probe(type());
    probe.run(MINUTES_10);
    for (const SentMessage& m : probe.sink.sent) {
        const NETMSG_entry* const entry = NETMSG_by_type(m.msg);
        ASSERT_TRUE(NETMSG_accepts(entry, m.dsd)) << entry->name << " with " << m.dsd->name;
        if (m.dsd == nullptr) continue;
        NETDSD_for_each_leaf(m.dsd, [&](const NETDSD_field& f, std::size_t at) {
            if (NETDSD_element_type(f.ft) != NETDSD_FT_DOUBLE) return;
            const auto value = NETDSD_load<double>(m.payload.data() + at);
            ASSERT_TRUE(std::isfinite(value)) << entry->name << " " << f.name;
            // A misspelt row of a table of channels would leave its field missing.
            const double age = m.time - SimProbe::Options{}.start;
            if (age > 65 && age < 120 && is_measured_by(type(), f.name)) {
                EXPECT_NE(value, VESK_MISSING) << entry->name << " " << f.name;
            }
        });
    }
}

// Plausible numbers of each unit at a station: one that is sent in another unit than its descriptor says
// leaves these bounds.
struct plausible {
    const UNIT* unit;
    double least, most;
    double peak;  // the largest of ten minutes comes up to this, whatever its sign
};
constexpr plausible PLAUSIBLE[] = {
    {&UNIT_per_m, -1e-3, 1e-2, 0}, {&UNIT_per_Mm, -1e4, 1e5, 1e-3}, {&UNIT_degC, -60, 100, 0},
    {&UNIT_percent, -200, 200, 0}, {&UNIT_hPa, 0, 1100, 0.1},       {&UNIT_lpm, 0, 100, 0.01},
    {&UNIT_slpm, -1, 100, 0.01},   {&UNIT_ccm, 0, 2000, 10},        {&UNIT_nm, 1, 5000, 1},
    {&UNIT_um, 0.05, 100, 0.05},   {&UNIT_mA, 0, 2000, 1},          {&UNIT_V, -20, 20000, 0},
    {&UNIT_epoch, -1, 4e9, 0},     {&UNIT_deg, -180, 360, 0},
};

struct extremes {
    const NETDSD_field* field;
    double least = HUGE_VAL;
    double most = -HUGE_VAL;
};

// Of every number that was sent, by record and member.
std::map<std::string, extremes> extremes_of(const std::vector<SentMessage>& sent) {
    std::map<std::string, extremes> found;
    for (const SentMessage& m : sent) {
        if (m.dsd == nullptr) continue;
        NETDSD_for_each_leaf(m.dsd, [&](const NETDSD_field& f, std::size_t at) {
            const double value = NETDSD_visit_type(f.ft, [&]<class T>(std::type_identity<T>) {
                return static_cast<double>(NETDSD_load<T>(m.payload.data() + at));
            });
            if (f.unit == nullptr || VESK_is_missing(value)) return;
            extremes& e = found[std::string(m.dsd->name) + " " + f.name + "@" + std::to_string(at)];
            e = {&f, std::min(e.least, value), std::max(e.most, value)};
        });
    }
    return found;
}

TEST_P(EveryKind, SendsNumbersInTheUnitsAndRangesThatTheirDescriptorsState) {
    SimProbe probe(type());
    probe.run(MINUTES_10);
    for (const auto& [name, e] : extremes_of(probe.sink.sent)) {
        SCOPED_TRACE(name);
        EXPECT_TRUE(!e.field->has_range || e.least >= e.field->min) << e.least;
        EXPECT_TRUE(!e.field->has_range || e.most <= e.field->max) << e.most;
        const auto p = std::find_if(std::begin(PLAUSIBLE), std::end(PLAUSIBLE),
                                    [&e](const plausible& row) { return row.unit == e.field->unit; });
        if (p == std::end(PLAUSIBLE)) continue;
        EXPECT_GE(e.least, p->least);
        EXPECT_LE(e.most, p->most);
        EXPECT_GE(std::max(e.most, -e.least), p->peak);
    }
}

// The demo starts like that: whatever a window shows has been said.
TEST_P(EveryKind, HasSaidOfEverythingSomethingAfterAWarmUp) {
    constexpr int WARM_UP = 4000;
    SimProbe probe(type());
    const auto types = [&] {
        std::set<std::string> names;
        for (const SentMessage& m : probe.sink.sent)
            if ((m.flags & FRAME_KEEP) != 0) names.insert(NETMSG_by_type(m.msg)->name);
        return names;
    };
    probe.run(WARM_UP);
    const auto warm = types();
    probe.run(2 * 3600);
    EXPECT_EQ(types(), warm);
}

TEST_P(EveryKind, LostCommunicationsStopItAndRestoredOnesBringItBack) {
    SimProbe probe(type());
    probe.run(MINUTES_10);
    const BOOL measures = probe.sink.sent.size() > 2;
    probe.forget();
    probe.instrument.set_comms(FALSE);
    const std::size_t said = probe.sink.sent.size();
    EXPECT_EQ(said > 0, GetParam().dcl->status != nullptr) << "who has a status tells";
    probe.run(MINUTES_10);
    EXPECT_EQ(probe.sink.sent.size(), said) << "it went on without communications";

    probe.instrument.set_comms(TRUE);
    probe.run(MINUTES_10);
    EXPECT_EQ(probe.sink.sent.size() > said, measures);
}

TEST_P(EveryKind, LeavesAndComesBackAsNew) {
    SimProbe probe(type());
    probe.run(100);
    probe.instrument.leave();
    probe.forget();
    probe.run(100);
    EXPECT_TRUE(probe.sink.sent.empty());
    probe.instrument.join();
    EXPECT_EQ(probe.sink.sent.size(), SimProbe(type()).sink.sent.size());
}

TEST_P(EveryKind, RefusesWhatIsNoCommandOfItsOwn) {
    SimProbe probe(type());
    EXPECT_FALSE(probe.command(MSG_TEST_ONE));
    const std::string said = probe.last<MSG_LOG_MONITOR>().msg;
    EXPECT_EQ(said, probe.instrument.name() + ": MSG_TEST_ONE refused: not understood");
    const std::size_t lines = probe.sink.lines.size();
    EXPECT_FALSE(probe.broadcast(MSG_TEST_ONE));
    EXPECT_EQ(probe.sink.lines.size(), lines) << "broadcasts that are not for it are no news";
}

// An order that is understood and cannot be carried out.
struct refused_order {
    const char* type;
    void (*order)(SimProbe&);
    const char* says;
};

template <NETMSG_type MSG>
void twice(SimProbe& probe) {
    EXPECT_TRUE(probe.command(MSG));
    EXPECT_FALSE(probe.command(MSG));
}
template <NETMSG_type MSG>
void once(SimProbe& probe) {
    EXPECT_FALSE(probe.command(MSG));
}
template <NETMSG_type MSG, class R>
void with(SimProbe& probe, R record) {
    EXPECT_FALSE(probe.command(MSG, record));
}

constexpr double NO_NUMBER = std::numeric_limits<double>::quiet_NaN();

constexpr refused_order REFUSED_ORDERS[] = {
    {"neph",
     [](SimProbe& p) {
         auto config = p.last<MSG_NEPH_CONFIG>();
         config.stp = -31073;  // 99999 in 16 bits
         with<MSG_NEPH_CONFIG>(p, config);
     },
     "N11: MSG_NEPH_CONFIG refused: -31073 is not within 10 to 32767 (time between automatic zeros)"},
    {"neph", [](SimProbe& p) { with<MSG_NEPH_OVERRIDEPARAMS>(p, NET_NEPH_OverrideParams{7}); },
     "N11: MSG_NEPH_OVERRIDEPARAMS refused: 7 is not within -1 to 1 (zero valve: 0 off, 1 on, -1 unchanged)"},
    {"maap", twice<MSG_MAAP_ADVANCE>, "A82: filter advance refused: the tape moves already"},
    {"caps", twice<MSG_CAPS_ISSUE_ZERO>, "E71: zero refused: one runs already"},
    {"clap3w", once<MSG_CLAP3W_FLOW>, "A13: flow on refused: sampling"},
    {"clap3w", twice<MSG_CLAP3W_WHITECHANGE>, "A13: white filter check refused: one runs already"},
    {"psap", [](SimProbe& p) { with<MSG_PSAP_SETFILTERSATUS>(p, NET_PSAP_FilterStatus{FALSE}); },
     "A11: end of the filter change refused: none runs"},
    {"ccn", once<MSG_CCN_STOP_CALIBRATION>, "N71: end of the calibration refused: none runs"},
    {"ccn", [](SimProbe& p) { with<MSG_CCN_START_CALIBRATION>(p, NET_CCN_StartCalibration{-1}); },
     "N71: MSG_CCN_START_CALIBRATION refused: -1 is not within 1 to 999 (cycles of the calibration scan)"},
    {"ccn",
     [](SimProbe& p) {
         with<MSG_CCN_SET_SCANNING>(p, NET_CCN_ScanningControl{100, FALSE, FALSE});
     },
     "N71: MSG_CCN_SET_SCANNING refused: 100 is not within 0 to 99.99 (new temperature difference, missing "
     "for unchanged)"},
    {"genericpid", [](SimProbe& p) { with<MSG_GENERICPID_SET>(p, NET_GENERICPID_Setpoint{NO_NUMBER}); },
     "C13: set point refused: no number"},
    {"genericpid", once<MSG_GENERICPID_TUNING_STOP>, "C13: end of the tuning refused: none runs"},
    {"lovepid", [](SimProbe& p) { with<MSG_LOVEPID_SET>(p, NET_LOVEPID_Setpoint{.sp = 20, .addr = 0x99}); },
     "C11: set point refused: no controller 99"},
    {"lovepid", [](SimProbe& p) { with<MSG_LOVEPID_SET>(p, NET_LOVEPID_Setpoint{.sp = 1e9, .addr = 0x10}); },
     "C11: MSG_LOVEPID_SET refused: 1e+09 is not within -999.99 to 999.99 (new set point)"},
    {"watlow", [](SimProbe& p) { with<MSG_WATLOW_SET>(p, NET_WATLOW_OneChannel{.chan = 'C', .val = 20}); },
     "C12: set point refused: the channels are A and B"},
    {"watlow",
     [](SimProbe& p) { with<MSG_WATLOW_SET>(p, NET_WATLOW_OneChannel{.chan = 'A', .val = NO_NUMBER}); },
     "C12: MSG_WATLOW_SET refused: nan is not within -99.9 to 99.9 (new set point)"},
    {"verticalprofile",
     [](SimProbe& p) { with<MSG_VERTICALPROFILE_SET_SITE>(p, NET_VERTICALPROFILE_SetWaypoint{"NOWHERE"}); },
     "V11: site refused: no waypoint \"NOWHERE\""},
};

TEST(Refusals, AreErrorLinesThatEveryOperatorSees) {
    for (const refused_order& row : REFUSED_ORDERS) {
        SCOPED_TRACE(row.says);
        SimProbe probe(row.type);
        probe.run(2);
        row.order(probe);
        const auto line = probe.last<MSG_LOG_MONITOR>();
        EXPECT_STREQ(line.msg, row.says);
        EXPECT_EQ(line.flags, NET_LOG_MONITOR_ERROR);
    }
}

}  // namespace
