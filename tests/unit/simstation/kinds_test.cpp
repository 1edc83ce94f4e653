// What holds for every kind in the table, whoever wrote it: these cases run over all rows.
#include "simstation/kinds.h"

#include <gtest/gtest.h>

#include <cmath>
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
    EXPECT_NE(probe.sink.lines.back().find("not understood"), std::string::npos);
    const std::size_t lines = probe.sink.lines.size();
    EXPECT_FALSE(probe.broadcast(MSG_TEST_ONE));
    EXPECT_EQ(probe.sink.lines.size(), lines) << "broadcasts that are not for it are no news";
}

}  // namespace
