// The command lines of the real programs, as their help tells them: the manual pages know every option, and
// an option that is a number takes nothing but one.
#include <regex>

#include "journey.h"

namespace {

class ManualPage : public testing::TestWithParam<const char*> {};

TEST_P(ManualPage, TellsEveryOption) {
    const std::string page = GetParam();
    Process help({{program(page.substr(0, page.rfind('.'))), "--help"}, {}});
    ASSERT_TRUE(help.wait_exit());
    const std::string shown = help.out() + help.err();
    const std::string told =
        std::regex_replace(read_file(VESK_DOCS "/man/" + page), std::regex(R"(\\-)"), "-");
    const std::regex option("[[ ,](--?[a-z][a-z-]*)");
    int options = 0;
    for (std::sregex_iterator found(shown.begin(), shown.end(), option), end; found != end;
         ++found, ++options)
        EXPECT_NE(told.find((*found)[1]), std::string::npos) << page << " does not tell " << (*found)[1];
    EXPECT_GE(options, 2);
}

INSTANTIATE_TEST_SUITE_P(All, ManualPage,
                         testing::Values("vesk.cursclient.1", "vesk.peer.1", "vesk.server.8",
                                         "vesk.simstation.1"),
                         [](const auto& param) {
                             std::string name = param.param;
                             std::erase(name, '.');
                             return name;
                         });

class NumberOption : public testing::TestWithParam<const char*> {};

TEST_P(NumberOption, TakesNothingButANumberInItsRange) {
    Process help({{program(GetParam()), "--help"}, {}});
    ASSERT_TRUE(help.wait_exit());
    const std::string shown = help.out();
    const std::regex option("(--[a-z-]+) NUMBER");
    int options = 0;
    for (std::sregex_iterator found(shown.begin(), shown.end(), option), end; found != end;
         ++found, ++options) {
        const std::string name = (*found)[1];
        for (const char* word : {"nan", "inf", "-1", "1e999", "12x", ""}) {
            Process refused({{program(GetParam()), name, word}, {{"VESK_SOCKET", "/nonexistent/socket"}}});
            EXPECT_EQ(refused.wait_exit(), 2) << name << ' ' << word;
            EXPECT_NE(refused.err().find(name + ": a number from "), std::string::npos)
                << name << ' ' << word << '\n'
                << refused.err();
        }
    }
    EXPECT_GE(options, 3);
    EXPECT_EQ(shown.find("FLOAT"), std::string::npos) << "declared without a range";
    EXPECT_EQ(shown.find("INT"), std::string::npos) << "declared without a range";
}

INSTANTIATE_TEST_SUITE_P(All, NumberOption, testing::Values("vesk.peer", "vesk.server", "vesk.simstation"),
                         [](const auto& param) { return std::string(param.param).substr(5); });

}  // namespace
