#include "libvesk/netmsg.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "libvesk/records/cpc.h"
#include "libvesk/records/log.h"
#include "libvesk/records/server.h"

namespace {

// The numbers travel: a name inserted or lost anywhere moves the first of some family.
constexpr struct {
    NETMSG_type first;
    int value;
} FAMILIES[] = {
    {MSG_AETHALOMETER_REPORT, 0},
    {MSG_AINSIMPLE_AVERAGE, 2},
    {MSG_BESTUPS_AVERAGE, 5},
    {MSG_CAPS_AVERAGE, 8},
    {MSG_CCN_AVERAGE, 14},
    {MSG_CLAP3W_AVERAGE, 22},
    {MSG_COMMON_CNC_AVERAGE, 37},
    {MSG_COMMON_NEPH_AVERAGE, 39},
    {MSG_COMMON_PSAP_AVERAGE, 46},
    {MSG_CONTAMINATION_BYPASS, 48},
    {MSG_CPC_3010_AVERAGE, 60},
    {MSG_CPC_3022_AVERAGE, 63},
    {MSG_CPC_3703_AVERAGE, 66},
    {MSG_CPC_3775_AVERAGE, 69},
    {MSG_CPC_3781_AVERAGE, 72},
    {MSG_CPC_3783_AVERAGE, 75},
    {MSG_CPC_BMI1710_AVERAGE, 78},
    {MSG_CPC_PULSE_AVERAGE, 81},
    {MSG_CR1000_AVERAGE, 84},
    {MSG_CUTPOINTS_CHANGE_CUTPOINT, 89},
    {MSG_DISPAGGREGATOR_ALL, 93},
    {MSG_FILTER_BYPASS, 94},
    {MSG_FLASK_INFO, 104},
    {MSG_GENERICPID_INFO, 108},
    {MSG_GPS_AVERAGE, 119},
    {MSG_GRIMM_AVERAGE, 124},
    {MSG_HUMIDOGRAPH_CHANGE_SETPOINT, 128},
    {MSG_HYGROMETER_AVERAGE, 132},
    {MSG_IO_AVG, 135},
    {MSG_LASAIR_AVERAGE, 143},
    {MSG_LOG_AVG_BYPASS, 147},
    {MSG_LOVEPID_AVERAGE, 162},
    {MSG_MAAP_ADVANCE, 167},
    {MSG_MESSAGING_MESSAGE, 171},
    {MSG_NEPHAURORA3000_AVERAGE, 172},
    {MSG_NEPHM903_AVERAGE, 179},
    {MSG_NEPH_AVERAGE, 182},
    {MSG_NOTIFY_CLIENT_CONNECT, 191},
    {MSG_OZONEMON_AVERAGE, 193},
    {MSG_PAX_AVERAGE, 199},
    {MSG_PILS_INSTANT, 203},
    {MSG_PSAP3_AVERAGE, 210},
    {MSG_PSAP_AVERAGE, 216},
    {MSG_PWD22_REPORT, 222},
    {MSG_RAWDATAREC_INFO, 224},
    {MSG_SEMS_D, 226},
    {MSG_SERVER_CLIENTHANDSHAKE, 232},
    {MSG_TDL_AVERAGE, 237},
    {MSG_TEST_ONE, 240},
    {MSG_TSITMF_AVERAGE, 243},
    {MSG_UMAC_AVERAGE, 246},
    {MSG_VELOCICALC_AVERAGE, 252},
    {MSG_VERTICALPROFILE_ALL, 256},
    {MSG_WATLOW_AVERAGE, 261},
    {MSG_ZENO_REPORT, 266},
    {NET_SERVER_ADDFILTER, 268},
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
        EXPECT_STREQ(entry->meta_types, "");
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
    EXPECT_EQ(NETMSG_by_type(MSG_SERVER_INSTRUMENTINFO)->dsd, NETDSD_of<NET_SERVER_InstrumentInfo>());
    EXPECT_STREQ(NETMSG_by_type(MSG_MESSAGING_MESSAGE)->ds_tie, "NETDS_MESSAGE_OneMessage");
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
