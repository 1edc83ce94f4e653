#include "libvesk/messages/netmsg.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "libvesk/messages/records/cpc.h"
#include "libvesk/messages/records/log.h"

namespace {

// The numbers travel: a name inserted or lost moves all that follow it.
constexpr struct {
    NETMSG_type first;
    int value;
} FAMILIES[] = {
    {MSG_AETHALOMETER_REPORT, 0}, {MSG_CPC_PULSE_AVERAGE, 81},       {MSG_LOVEPID_AVERAGE, 162},
    {MSG_PSAP_AVERAGE, 216},      {MSG_SERVER_CLIENTHANDSHAKE, 232}, {NET_SERVER_ADDFILTER, 268},
};

TEST(Netmsg, FamiliesBeginAtTheirNumbers) {
    for (const auto& family : FAMILIES)
        EXPECT_EQ(family.first, family.value) << NETMSG_by_type(family.value)->name;
}

TEST(Netmsg, EveryTypeIsFoundByNumberAndByName) {
    for (int i = 0; i < NETMSG_COUNT; ++i) {
        const NETMSG_entry* entry = NETMSG_by_type(i);
        ASSERT_NE(entry, nullptr);
        EXPECT_EQ(entry->msg, i);
        EXPECT_EQ(NETMSG_by_name(entry->name), entry) << entry->name;
        EXPECT_TRUE(i == 0 || std::string(NETMSG_by_type(i - 1)->name) < entry->name) << entry->name;
    }
}

TEST(Netmsg, NothingIsFoundForWhatIsNotInTheList) {
    for (const int type : {-1, +NETMSG_COUNT, 65536, INT_MIN, INT_MAX})
        EXPECT_EQ(NETMSG_by_type(type), nullptr) << type;
    for (const char* name : {"", "MSG_CPC_3010", "msg_cpc_3010_status", "MSG_CPC_3010_STATUS "})
        EXPECT_EQ(NETMSG_by_name(name), nullptr) << name;
}

TEST(Netmsg, TiesNameRecordsThatAreFoundByThatName) {
    int tied = 0;
    for (int i = 0; i < NETMSG_COUNT; ++i) {
        const NETMSG_entry* entry = NETMSG_by_type(i);
        EXPECT_EQ(NETDSD_by_name(entry->ds_tie), entry->dsd) << entry->name;
        EXPECT_STREQ(entry->ds_tie, entry->dsd != nullptr ? entry->dsd->name : "") << entry->name;
        tied += entry->dsd != nullptr;
    }
    EXPECT_GE(tied, 40);
    EXPECT_EQ(NETMSG_by_type(MSG_CPC_BMI1710_AVERAGE)->dsd, NETDSD_of<NET_CPC_BMI1710_Reading>());
    EXPECT_EQ(NETMSG_by_type(MSG_LOG_FLUSH)->dsd, nullptr);
}

TEST(Netmsg, ATiedTypeCarriesItsRecordOrNothing) {
    const NETMSG_entry* tied = NETMSG_by_type(MSG_LOG_SET_STATE);
    const NETMSG_entry* untied = NETMSG_by_type(MSG_TEST_ONE);
    EXPECT_TRUE(NETMSG_accepts(tied, NETDSD_of<NET_LOG_SetState>()));
    EXPECT_TRUE(NETMSG_accepts(tied, nullptr));
    EXPECT_FALSE(NETMSG_accepts(tied, NETDSD_of<NET_LOG_Info>()));  // of the same size
    EXPECT_TRUE(NETMSG_accepts(untied, NETDSD_of<NET_LOG_Info>()));
    EXPECT_TRUE(NETMSG_accepts(untied, nullptr));
}

}  // namespace
