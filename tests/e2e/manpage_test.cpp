// The manual pages tell every option that the programs know.
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

}  // namespace
