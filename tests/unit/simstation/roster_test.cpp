// The instruments that a command line selects, and the command lines that are refused.
#include "simstation/roster.h"

#include <gmock/gmock.h>

#include <fstream>
#include <set>

#include "simstation/options.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

std::vector<std::string> names(std::string_view list) {
    std::vector<std::string> errors;
    std::vector<std::string> found;
    for (const SIM_member& m : SIM_roster(list, &errors))
        found.push_back(m.name);
    EXPECT_THAT(errors, IsEmpty());
    return found;
}

TEST(Roster, EveryKindOnceUnlessOnDemand) {
    std::vector<std::string> expected;
    for (const SIM_kind& kind : SIM_kinds())
        if (!kind.on_demand) expected.push_back(kind.name);
    EXPECT_EQ(names(""), expected);
}

TEST(Roster, ListsNamesAndCounts) {
    EXPECT_THAT(names("cpc_3022,cpc_3010"), ElementsAre("N62", "N61"));
    EXPECT_THAT(names("cpc_3010=N7,inst_skel"), ElementsAre("N7", "X11"));
    EXPECT_THAT(names("cpc_3010*3"), ElementsAre("N61", "N62", "N63"));
    EXPECT_THAT(names("cpc_3010=Counter*2,cpc_3010"), ElementsAre("Counter", "Counter2", "N61"));
    EXPECT_THAT(names("cpc_3010*2,cpc_3022"), ElementsAre("N61", "N62", "N63")) << "N62 is taken";
}

TEST(Roster, ManyOfAKindStayDistinct) {
    std::vector<std::string> errors;
    const auto members = SIM_roster("cpc_3010*3,cpc_3022", &errors);
    std::set<char> ids;
    for (const SIM_member& m : members)
        EXPECT_TRUE(ids.insert(m.id_ch).second) << m.name;
    EXPECT_EQ(members[2].display_name, "TSI 3010 CPC 3");
    EXPECT_EQ(members[3].id_ch, '2') << "the first of a kind has the kind's own";
}

TEST(Roster, RefusesWhatCannotBe) {
    const std::pair<const char*, const char*> cases[] = {
        {"cpc_9999", "no such kind (see --list)"},
        {"cpc_3010*0", "a count from 1 to 50 follows *"},
        {"cpc_3010*x", "a count from 1 to 50 follows *"},
        {"cpc_3010*99", "a count from 1 to 50 follows *"},
        {"cpc_3010=", "a source name follows ="},
        {"cpc_3010= N1", "no valid source name"},
        {"cpc_3010=N1,cpc_3022=N1", "the name is used twice"},
    };
    for (const auto& [list, wrong] : cases) {
        std::vector<std::string> errors;
        static_cast<void>(SIM_roster(list, &errors));
        ASSERT_THAT(errors, SizeIs(1)) << list;
        EXPECT_THAT(errors[0], testing::EndsWith(std::string("\": ") + wrong));
    }
}

class Options : public testing::Test {
  protected:
    std::optional<int> parse(std::vector<std::string> words) {
        words.insert(words.begin(), "vesk.simstation");
        std::vector<const char*> argv;
        for (const std::string& word : words)
            argv.push_back(word.c_str());
        testing::internal::CaptureStderr();
        testing::internal::CaptureStdout();
        const auto result = SIM_parse_options(static_cast<int>(argv.size()), argv.data(), &options);
        err = testing::internal::GetCapturedStderr();
        out = testing::internal::GetCapturedStdout();
        return result;
    }
    SIM_options options;
    std::string err;
    std::string out;
};

TEST_F(Options, ReadsACommandLine) {
    ASSERT_EQ(parse({"--kinds", "cpc_3010", "--seed", "9", "--start", "1000", "--average", "10", "--chatty"}),
              std::nullopt)
        << err;
    EXPECT_EQ(options.settings.seed, 9u);
    EXPECT_EQ(options.settings.average_seconds, 10);
    EXPECT_EQ(options.start, 1000);
    EXPECT_TRUE(options.logger.chatty);
    EXPECT_THAT(options.members, SizeIs(1));
}

TEST_F(Options, ListShowsKindsAndTheirSettings) {
    EXPECT_EQ(parse({"--list"}), 0);
    EXPECT_THAT(out, testing::HasSubstr("dip "));
}

TEST_F(Options, WrongOnesEndWithTwoAndAReason) {
    const std::pair<std::vector<std::string>, const char*> cases[] = {
        {{"--unknown"}, "--unknown"},
        {{"--kinds", "cpc_1"}, "no such kind"},
        {{"--name", ""}, "--name"},
        {{"--name", "N61"}, "N61 is an instrument"},
        {{"--scenario", "/no/such/file"}, "cannot read the scenario /no/such/file"},
    };
    for (const auto& [words, reason] : cases) {
        EXPECT_EQ(parse(words), 2) << reason;
        EXPECT_THAT(err, testing::HasSubstr(reason));
    }
}

TEST_F(Options, AWrongScenarioIsRefusedWithFileAndLine) {
    const std::string path = testing::TempDir() + "/wrong_scenario.txt";
    std::ofstream(path) << "1 N61 comms off\n2 N61 explode\n3 N99 leave\n";
    EXPECT_EQ(parse({"--scenario", path, "--kinds", "cpc_3010"}), 2);
    EXPECT_THAT(err, testing::HasSubstr(path + ": line 2: unknown event \"explode\""));
    EXPECT_THAT(err, testing::HasSubstr(path + ": line 3: no instrument \"N99\""));
}

}  // namespace
