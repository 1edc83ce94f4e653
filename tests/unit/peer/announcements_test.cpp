// Warnings about announcements that no console can use.
#include "peer/announcements.h"

#include <gtest/gtest.h>

#include "peer/input.h"

namespace {

TEST(Announcements, OfAKindThatNobodyShowsAreWarnedOf) {
    EXPECT_EQ(ANNOUNCEMENTS_kind_fault("cpc_3010"), "");
    EXPECT_EQ(ANNOUNCEMENTS_kind_fault("gps"), "no console shows the kind \"gps\" yet");
    for (const char* none : {"", "thermometer", "PERSISTENT_HELP"})
        EXPECT_EQ(ANNOUNCEMENTS_kind_fault(none), "no console knows the kind \"" + std::string(none) + '"');
    EXPECT_EQ(ANNOUNCEMENTS_kind_fault("CPC3010"),
              "no console knows the kind \"CPC3010\", did you mean \"cpc_3010\"?");

    JSONLINE_message m;
    std::string error;
    ASSERT_TRUE(
        JSONLINE_read(R"({"msg":"MSG_SERVER_INSTRUMENTINFO","payload":{"type":"a\u001b"}})", &m, &error));
    EXPECT_EQ(INPUT_warning(m), "no console knows the kind \"a?\"");
}

TEST(Announcements, WithAHotKeyThatIsTakenAreWarnedOfWhenTheyComeBack) {
    ANNOUNCEMENTS announcements;
    const auto hear = [&](const char* source, char id_ch) {
        auto info = NETDSD_default<NET_SERVER_InstrumentInfo>();
        info.id_ch = id_ch;
        const VESKMSG_proc_msg pm{NETMSG_by_type(MSG_SERVER_INSTRUMENTINFO),
                                  NETDSD_of<NET_SERVER_InstrumentInfo>(),
                                  7,
                                  source,
                                  "",
                                  &info};
        return announcements.hear(&pm, "N11");
    };
    EXPECT_EQ(hear("N12", 'N'), "");
    EXPECT_EQ(hear("N13", '\0'), "");
    EXPECT_EQ(hear("N11", 'n'), "") << "capitals are keys of their own";
    EXPECT_EQ(hear("N11", '\0'), "") << "no hot key at all";
    EXPECT_EQ(hear("N11", 'N'), "the hot key N is taken by N12");
    const VESKMSG_proc_msg gone{NETMSG_by_type(MSG_NOTIFY_CLIENT_TERMINATE), nullptr, 1, "N12", "", nullptr};
    EXPECT_EQ(announcements.hear(&gone, "N11"), "");
    EXPECT_EQ(hear("N11", 'N'), "");
}

}  // namespace
