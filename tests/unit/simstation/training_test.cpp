// The scenarios of docs/scenarios: every one is played to its end, by the very command that its first lines
// tell the trainee, and what they promise comes true.
#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>

#include "libvesk/support/util.h"
#include "simstation/logger.h"
#include "simstation/roster.h"
#include "simstation/scenario.h"
#include "support/sim_probe.h"

namespace {

using namespace std::string_literals;
using testing::IsEmpty;

constexpr double AFTERMATH = 20;  // seconds played on after an event

const auto FOLDER = std::filesystem::path(__FILE__).parent_path() / "../../../docs/scenarios";

// The instruments that the head of the file asks for.
std::string kinds_of(const std::string& text) {
    std::smatch found;
    const std::regex kinds("\n# +vesk\\.simstation [^\n]*--kinds ([^ \n]+)");
    return std::regex_search(text, found, kinds) ? found[1].str() : "";
}

// A station without links that plays a scenario.
class Training {
  public:
    explicit Training(const std::filesystem::path& path)
        : world({}, SIM_START), logger(world, sink, "LOGGER", {}, {}) {
        std::ifstream file(path);
        text.assign(std::istreambuf_iterator<char>(file), {});
        std::vector<std::string> errors;
        const auto members = SIM_roster(kinds_of(text), &errors);
        events_ = SIM_parse_scenario(text, &errors);
        SIM_check_scenario(events_, members, &errors);
        EXPECT_THAT(errors, IsEmpty());
        EXPECT_FALSE(events_.empty());
        sink.now = &world.now;
        for (const SIM_member& member : members) {
            auto& instrument = instruments[member.name];
            instrument = std::make_unique<SIM_instrument>(world, sink, member);
            instrument->join();
        }
    }

    void run_until(double second) {
        while (world.now < SIM_START + second) {
            world.advance();
            while (!events_.empty() && SIM_START + events_.front().at <= world.now) {
                play(events_.front());
                events_.erase(events_.begin());
            }
            for (const auto& [name, instrument] : instruments)
                if (instrument->present()) instrument->tick();
        }
    }
    // All events, and what comes right after each; the long time between them is left out.
    void run_through() {
        while (!events_.empty()) {
            world.now = std::max(world.now, SIM_START + events_.front().at - 1);
            run_until(events_.front().at + AFTERMATH);
        }
    }

    template <NETMSG_type MSG>
    CarriedBy<MSG> last() const {
        for (auto m = sink.sent.rbegin(); m != sink.sent.rend(); ++m)
            if (m->msg == MSG) return m->as<CarriedBy<MSG>>();
        ADD_FAILURE() << NETMSG_by_type(MSG)->name << " was never sent";
        return NETDSD_default<CarriedBy<MSG>>();
    }
    template <class R>
    void order(const char* name, NETMSG_type msg, R record) {
        EXPECT_TRUE(instruments.at(name)->receive(DeliveredMessage(msg, record, name).get()));
    }

    CollectingSink sink;
    SIM_world world;
    SIM_logger logger;
    std::map<std::string, std::unique_ptr<SIM_instrument>> instruments;
    std::string text;

  private:
    void play(const SIM_event& event) {
        SCOPED_TRACE("line " + std::to_string(event.line));
        if (event.target == SIM_STATION_TARGET) return logger.play(event);
        for (const auto& [name, instrument] : instruments) {
            if (event.target != SIM_EVERYONE_TARGET && event.target != name) continue;
            if (event.verb == SIM_V_LEAVE || event.verb == SIM_V_JOIN) {
                EXPECT_EQ(instrument->present(), event.verb == SIM_V_LEAVE);
                event.verb == SIM_V_LEAVE ? instrument->leave() : instrument->join();
            } else if (event.verb == SIM_V_SET) {
                EXPECT_TRUE(instrument->set(event.text, event.value)) << event.text;
            } else {
                SIM_play_event(*instrument, event);
            }
        }
    }
    std::vector<SIM_event> events_;
};

class TrainingTest : public testing::Test {
  protected:
    TrainingTest() {
        UTIL_set_clock([] { return SIM_START; });
    }
    ~TrainingTest() override { UTIL_set_clock(nullptr); }
};

TEST_F(TrainingTest, EveryScenarioCanBePlayed) {
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(FOLDER)) {
        SCOPED_TRACE(entry.path());
        Training training(entry.path());
        const std::string command =
            "vesk.simstation --scenario docs/scenarios/" + entry.path().filename().string();
        EXPECT_TRUE(training.text.starts_with("# ")) << "tells the trainee what it is";
        for (const std::string& part : {command, "# Look at  "s, "# Tell  "s, "# Do  "s})
            EXPECT_NE(training.text.find(part), std::string::npos) << part;
        training.run_through();
        ++files;
    }
    EXPECT_GE(files, 5);
}

TEST_F(TrainingTest, ADryCounterFallsAwayFromItsNeighbourAfterTheWarning) {
    Training training(FOLDER / "counter-out-of-butanol.txt");
    const auto share = [&] {
        return training.last<MSG_CPC_3010_INSTANT>().running.concentration /
               training.last<MSG_CPC_3022_INSTANT>().running.concentration;
    };
    const auto low = [&] { return training.last<MSG_CPC_3010_STATUS>().flags & 2; };
    training.run_until(170);
    EXPECT_FALSE(low());
    training.run_until(355);
    EXPECT_TRUE(low());
    EXPECT_GT(share(), 0.85);
    training.run_until(540);
    EXPECT_LT(share(), 0.7);
    training.run_until(1800);
    EXPECT_FALSE(low());
    EXPECT_GT(share(), 0.85);
}

TEST_F(TrainingTest, AFilterIsUsedUpSilentlyAndAnotherDemandsItsChange) {
    Training training(FOLDER / "filter-at-its-end.txt");
    const auto psap = [&] { return training.last<MSG_PSAP_INSTANT>(); };
    const auto clap = [&] { return training.last<MSG_CLAP3W_FILTERSTATUS>().status; };
    training.run_until(590);
    expect_between(psap().tr, 0.4, 0.7, "a used filter that there is time to change");
    const auto said = [](const SentMessage& m) { return m.msg == MSG_LOG_MONITOR; };
    EXPECT_EQ(std::count_if(training.sink.sent.begin(), training.sink.sent.end(), said), 1) << "once";
    EXPECT_THAT(training.last<MSG_LOG_MONITOR>().msg, testing::HasSubstr("used up"));
    training.order("A11", MSG_PSAP_SETFILTERSATUS, NET_PSAP_FilterStatus{TRUE});
    training.run_until(605);
    EXPECT_EQ(clap(), NET_CLAP3W_CHANGE_REQUIRED);
    training.run_through();
    EXPECT_EQ(clap(), NET_CLAP3W_WHITE_REQUIRED);
}

TEST_F(TrainingTest, AClosedBottleShowsInTheResultsOfItsInstrumentOnly) {
    Training training(FOLDER / "span-check-closed-bottle.txt");
    const auto check = [&](const char* name) {
        constexpr FTIME t = SIM_START;
        training.order(name, MSG_COMMON_NEPH_SPANCHECK_ISSUE,
                       NET_COMMON_Neph_SpancheckIssue{t + 180, t + 780, t + 1080, t + 1260, t + 1860});
        training.run_until(training.world.now - SIM_START + 1870);
        return +training.last<MSG_COMMON_NEPH_SPANCHECK_RESULTS>().pcterrTS[1];
    };
    training.run_until(60);
    EXPECT_NEAR(check("N11"), -61, 5);
    training.run_until(2710);
    EXPECT_NEAR(check("N11"), 0, 5);
    EXPECT_NEAR(check("N31"), 0, 5);
}

}  // namespace
