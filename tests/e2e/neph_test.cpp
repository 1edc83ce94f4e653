// Nephelometers as the operators run them: zeros, parameters, and the span check on several instruments, seen
// from two consoles and by a monitor. Instruments that a test plays itself show every phase for as long as it
// looks; the simulated station shows that the other end takes the orders.
#include <vector>

#include "journey.h"

namespace {

constexpr TerminalSize WIDE{50, 132};

std::string phase(int number, long until) {
    return R"({"msg":"MSG_COMMON_NEPH_SPANCHECK_PHASE","flags":7,"payload":{"phase":)" +
           std::to_string(number) + R"(,"next_time":)" + std::to_string(until) + "}}";
}

std::string result(double error) {
    return R"({"msg":"MSG_COMMON_NEPH_SPANCHECK_RESULTS","flags":1,"payload":{"avgErr":)" +
           std::to_string(error) + "}}";
}

class Nephelometers : public testing::Test {
  protected:
    void SetUp() override {
        monitor_ = station_.peer({"--monitor", "--only", "MSG_*NEPH*"});
        one_ = station_.console({.arguments = {}, .size = WIDE});
        two_ = station_.console({.arguments = {}, .size = WIDE});
    }
    // Three that the test plays, of two kinds: Alpha (N11, 'a'), Beta (N12, 'b') and Gamma (N31, 'g').
    void play_three() {
        alpha_ = station_.instrument("N11", "neph", "Alpha", 'a');
        beta_ = station_.instrument("N12", "neph", "Beta", 'b');
        gamma_ = station_.instrument("N31", "nephM903", "Gamma", 'g');
        alpha_->write_line(R"({"msg":"MSG_NEPH_STATUS","flags":7,"payload":{"have_comms":true}})");
        alpha_->write_line(R"({"msg":"MSG_NEPH_CONFIG","flags":7,"payload":{"smz":4,"stp":1800,"l":true}})");
        beta_->write_line(R"({"msg":"MSG_NEPH_STATUS","flags":7,"payload":{"have_comms":true}})");
        gamma_->write_line(R"({"msg":"MSG_NEPHM903_STATUS","flags":7,"payload":{"have_comms":true}})");
        for (Terminal* console : {one_.get(), two_.get()}) {
            ASSERT_TRUE(is_up(*console));
            ASSERT_TRUE(console->wait_for(
                [&] { return console->row(WIDE.rows - 1).find("abg") != std::string::npos; }, "indicators"));
        }
    }
    // Brings up an instrument's window and presses a button of its menu.
    static testing::AssertionResult order(Terminal& console, char hot_key, std::string_view entry) {
        console.alt(hot_key);
        if (auto result = console.wait_for([&] { return console.find("Bs") != std::nullopt; }); !result)
            return result;
        console.type("m");
        return choose(console, entry);
    }
    // The next line of the monitor with all this in it is there.
    testing::AssertionResult seen(const std::vector<std::string>& parts) {
        if (monitor_->wait_line(parts)) return testing::AssertionSuccess();
        return testing::AssertionFailure() << "not seen: " << parts.front() << "\n" << monitor_->out();
    }
    [[nodiscard]] bool was_seen(std::string_view text) const {
        return monitor_->out().find(text) != std::string::npos;
    }
    static std::string issued_to(const std::string& name) {
        return R"("src":"CLIENT","dest":")" + name + R"(","flags":)" + (name.empty() ? "1" : "0") +
               R"(,"msg":"MSG_COMMON_NEPH_SPANCHECK_ISSUE")";
    }

    Station station_;
    std::unique_ptr<Process> monitor_, alpha_, beta_, gamma_;
    std::unique_ptr<Terminal> one_, two_;
};

TEST_F(Nephelometers, TakeZerosParametersAndTheValve) {
    play_three();
    ASSERT_TRUE(order(*one_, 'a', "3 Start zero now"));
    EXPECT_TRUE(seen({R"("dest":"N11","flags":0,"msg":"MSG_NEPH_ISSUE_ZERO")", R"("payload":null)"}));

    ASSERT_TRUE(order(*one_, 'a', "4 Change parameters"));
    ASSERT_TRUE(one_->shows("STP - Time (sec) between autozeros: 1800"));
    ASSERT_TRUE(choose(*one_, "Apply"));
    EXPECT_TRUE(seen({R"("dest":"N11","flags":0,"msg":"MSG_NEPH_CONFIG")", R"("smz":4)", R"("stp":1800)",
                      R"("l":true)", R"("smb":false)"}));
    ASSERT_TRUE(one_->hides("Change paramters"));
    EXPECT_FALSE(was_seen("MSG_NEPH_OVERRIDEPARAMS")) << "the valve was left alone";

    ASSERT_TRUE(order(*one_, 'a', "4 Change parameters"));
    ASSERT_TRUE(one_->shows("Change paramters"));
    one_->type("7");
    ASSERT_TRUE(one_->shows("average: 7"));
    one_->press(Key::down);
    ASSERT_TRUE(choose(*one_, "Lamp ON"));
    ASSERT_TRUE(choose(*one_, "Zero valve unchanged"));
    ASSERT_TRUE(choose(*one_, "Apply"));
    EXPECT_TRUE(seen({"MSG_NEPH_CONFIG", R"("smz":7)", R"("stp":1800)", R"("l":false)"}));
    EXPECT_TRUE(seen({R"("dest":"N11","flags":0,"msg":"MSG_NEPH_OVERRIDEPARAMS")", R"({"v":0})"}));
}

TEST_F(Nephelometers, GoneWhileItsParametersAreOpenGetsNothing) {
    play_three();
    ASSERT_TRUE(order(*one_, 'a', "4 Change parameters"));
    ASSERT_TRUE(one_->shows("Change paramters"));
    alpha_->close_input();
    ASSERT_TRUE(one_->wait_for([&] { return one_->row(WIDE.rows - 1).find('a') == std::string::npos; }));
    ASSERT_TRUE(choose(*one_, "Apply"));
    ASSERT_TRUE(one_->hides("Change paramters"));
    ASSERT_TRUE(order(*one_, 'b', "3 Start zero now"));
    EXPECT_TRUE(seen({"MSG_NEPH_ISSUE_ZERO", R"("dest":"N12")"}));
    EXPECT_FALSE(was_seen(R"("src":"CLIENT","dest":"N11")"));
}

TEST_F(Nephelometers, AreSpanCheckedTogetherInSightOfAllConsoles) {
    play_three();
    ASSERT_TRUE(order(*one_, 'a', "5 Begin spancheck"));
    ASSERT_TRUE(shows_all(*one_, {"Air flush time (sec):180", "CO2 measure time (sec):300"}));
    ASSERT_TRUE(choose(*one_, "Select nephelometers"));
    ASSERT_TRUE(choose(*one_, "[*] Beta"));
    ASSERT_TRUE(one_->shows("[ ] Beta"));
    ASSERT_TRUE(choose(*one_, "Close"));
    ASSERT_TRUE(one_->hides("[ ] Beta"));
    ASSERT_TRUE(choose(*one_, "Begin"));
    EXPECT_TRUE(
        seen({R"("dest":"","flags":7,"msg":"MSG_COMMON_NEPH_SPANCHECK_DURATION")", R"("air_flush":180)",
              R"("air_sample":600)", R"("co2_flush":600)", R"("co2_sample":300)"}));
    // In the order in which they were announced, which is not the test's to say.
    for (const char* name : {"N11", "N31"})
        EXPECT_TRUE(was_seen(issued_to(name) + R"(,"record":"NET_COMMON_Neph_SpancheckIssue")")) << name;
    EXPECT_FALSE(was_seen(issued_to("N12")));
    ASSERT_TRUE(one_->shows("No spancheck done or in progress."));

    // 22:13:20 UTC and on.
    alpha_->write_line(phase(1, 1700000000));
    EXPECT_TRUE(one_->shows("The CO2 span check will begin at 22:13:20"));
    alpha_->write_line(phase(2, 1700000060));
    EXPECT_TRUE(one_->shows("CO2 will be flushed until 22:14:20"));
    gamma_->write_line(phase(3, 1700000120));
    two_->alt('g');
    EXPECT_TRUE(two_->shows("S. CO2 UNTIL 22:15:20"));
    two_->alt('a');
    EXPECT_TRUE(two_->shows("SPANCHECK: FLUSH CO2 UNTIL 22:14:20"));
    alpha_->write_line(phase(4, 1700000180));
    EXPECT_TRUE(one_->shows("Air will be flushed until 22:16:20"));
    alpha_->write_line(phase(5, 1700000240));
    EXPECT_TRUE(one_->shows("Air will be sampled until 22:17:20"));
    EXPECT_TRUE(two_->shows("SPANCHECK: SAMPLE AIR UNTIL 22:17:20"));

    gamma_->write_line(result(3));
    ASSERT_TRUE(one_->shows("Average error of all nephs:  3.00"));
    alpha_->write_line(result(2));
    for (Terminal* console : {one_.get(), two_.get()}) {
        ASSERT_TRUE(console->shows("Average error of all nephs:  2.50"));
        ASSERT_TRUE(shows_all(*console, {"Spancheck Results", "Alpha:", "Gamma:"}));
        EXPECT_LT(console->find("Alpha:")->row, console->find("Gamma:")->row) << "by source name";
        console->press(Key::enter);
        EXPECT_TRUE(console->hides("Spancheck Results"));
    }
    alpha_->write_line(phase(0, -1));
    ASSERT_TRUE(order(*two_, 'a', "6 Show spancheck window"));
    EXPECT_TRUE(two_->shows("Average error:  2.00"));
    two_->press(Key::enter);
    EXPECT_TRUE(two_->hides("Average error:  2.00"));
}

TEST_F(Nephelometers, KeepTheTimesOfTheLastSpanCheckAndAreAllAborted) {
    play_three();
    ASSERT_TRUE(order(*one_, 'a', "5 Begin spancheck"));
    ASSERT_TRUE(highlight(*one_, "Air flush time (sec):180"));
    one_->type("75");
    ASSERT_TRUE(one_->shows("Air flush time (sec):75"));
    one_->press(Key::down);
    ASSERT_TRUE(choose(*one_, "Begin"));
    EXPECT_TRUE(seen({issued_to(""), R"("end_init_air_flush":)"}));
    EXPECT_TRUE(seen({"MSG_COMMON_NEPH_SPANCHECK_DURATION", R"("air_flush":75)", R"("co2_flush":600)"}));

    auto late = station_.console({.arguments = {}, .size = WIDE});
    ASSERT_TRUE(is_up(*late));
    for (Terminal* console : {two_.get(), late.get()}) {
        ASSERT_TRUE(order(*console, 'b', "5 Begin spancheck"));
        EXPECT_TRUE(shows_all(*console, {"Air flush time (sec):75", "CO2 flush time (sec):600"}));
        console->press(Key::escape);
        EXPECT_TRUE(console->hides("Configure spancheck"));
    }
    gamma_->write_line(phase(2, 1700000000));
    two_->alt('g');
    ASSERT_TRUE(two_->shows("F. CO2 UNTIL 22:13:20"));
    ASSERT_TRUE(order(*two_, 'g', "2 Abort spancheck"));
    EXPECT_TRUE(seen({R"("dest":"","flags":1,"msg":"MSG_COMMON_NEPH_SPANCHECK_ABORT")"}));
}

// Half an hour passes in five seconds: the phases of those that take part, in order, and their results.
TEST_F(Nephelometers, OfTheSimulatedStationGoThroughAllPhases) {
    auto simulated = station_.simstation(
        {"--kinds", "neph=N11,nephM903=N31,neph_aurora3000=N41", "--speed", "400", "--errors", "0"});
    ASSERT_TRUE(is_up(*one_));
    ASSERT_TRUE(one_->wait_for([&] { return one_->row(WIDE.rows - 1).find('N') != std::string::npos; }));
    ASSERT_TRUE(order(*one_, 'N', "5 Begin spancheck"));
    ASSERT_TRUE(choose(*one_, "Select nephelometers"));
    ASSERT_TRUE(choose(*one_, "[*] M903"));
    ASSERT_TRUE(one_->shows("[ ] M903"));
    ASSERT_TRUE(choose(*one_, "Close"));
    ASSERT_TRUE(choose(*one_, "Begin"));
    for (int i = 1; i <= 5; ++i)
        EXPECT_TRUE(seen({R"("src":"N11")", "SPANCHECK_PHASE", R"("phase":)" + std::to_string(i)}));
    ASSERT_TRUE(shows_all(*one_, {"Spancheck Results", "Nephelometer:", "Aurora 3000 neph:"}));
    EXPECT_TRUE(monitor_->wait_for([&] { return was_seen("SPANCHECK_RESULTS"); }));
    EXPECT_FALSE(was_seen(issued_to("N31")));
    EXPECT_FALSE(one_->find("M903 neph:")) << "it did not take part";
    EXPECT_TRUE(one_->shows("Press enter to close this window."));
}

}  // namespace
