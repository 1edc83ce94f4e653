// The lists and descriptions of vesk.peer, and the document that is made of them.
#include "peer/describe.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "libvesk/json/json_describe.h"
#include "libvesk/json/json_line.h"

namespace {

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

std::string described(std::string_view name, DESCRIBE_form form) {
    std::string text;
    EXPECT_TRUE(DESCRIBE_name(name, form, &text)) << text;
    return text;
}

std::string refused(std::string_view name) {
    std::string text;
    EXPECT_FALSE(DESCRIBE_name(name, DESCRIBE_TEXT, &text)) << text;
    return text;
}

TEST(Describe, ARecordTellsFieldsUnitsRangesAndFlags) {
    EXPECT_EQ(described("MSG_CPC_3010_STATUS", DESCRIBE_TEXT),
              R"(MSG_CPC_3010_STATUS: message type 62, carries NET_CPC_3010_Status

NET_CPC_3010_Status: 4 bytes
  offset  type    field       unit
  0       BOOL    have_comms        the instrument answers
                                      false: NO COMMS (fault)
  1       BOOL    dip_error         the switches on the instrument forbid remote control
                                      true: INVALID DIP SWITCH (fault)
  2       uint16  flags       bits  warnings
                                      0x1: LASER/TEMP (fault)
                                      0x2: LOW BUTANOL (note)
                                      0x4: VACUUM (fault)

{"msg":"MSG_CPC_3010_STATUS","payload":{"have_comms":false,"dip_error":false,"flags":0}}
)");
    EXPECT_THAT(described("NET_NEPH_Instant", DESCRIBE_TEXT),
                AllOf(HasSubstr("RH_neph     %             0 to 100  relative humidity of the sample"),
                      HasSubstr("\nNET_NEPH_Scattering: 48 bytes\n"),
                      HasSubstr("bsp    1/m   total scatter (blue, green, red)")))
        << "nested records stand below";
    EXPECT_THAT(described("cpc_3783", DESCRIBE_TEXT),
                HasSubstr("MSG_CPC_3783_INSTANT  NET_CPC_3783_Instant"));
}

TEST(Describe, JsonSaysTheSameToPrograms) {
    const json msg = json::parse(described("MSG_PSAP3_INSTANT", DESCRIBE_JSON));
    EXPECT_EQ(msg["record"]["size"], 232);
    EXPECT_EQ(msg["record"]["fields"][1],
              json::parse(R"({"name":"bap","type":"double","offset":8,"size":24,"count":3,"unit":"1/m",
                 "comment":"absorption coefficient as the instrument reports it",
                 "elements":"blue, green, red"})"));
    const json zero = json::parse(described("NET_NEPH_OverrideParams", DESCRIBE_JSON));
    EXPECT_EQ(zero["fields"][0]["range"], json({-1, 1}));
    EXPECT_EQ(json::parse(described("neph_passive", DESCRIBE_JSON))["messages"][0],
              "MSG_COMMON_NEPH_AVERAGE");
    const json all = json::parse(DESCRIBE_all(DESCRIBE_JSON));
    EXPECT_EQ(all["kinds"].size(), 53U);
    EXPECT_EQ(all["messages"].size(), 270U);
    EXPECT_EQ(all["records"].size(), NETDSD_all().size());
}

TEST(Describe, EveryExampleCanBeSentAsItStands) {
    const auto expect_taken = [](const std::string& line) {
        JSONLINE_message message;
        std::string error;
        EXPECT_TRUE(JSONLINE_read(line, &message, &error)) << error << ": " << line;
    };
    for (const NETMSG_entry& msg : NETMSG_all())
        expect_taken(JSONDESC_example(msg));
    for (const KINDS_row& kind : KINDS_all())
        expect_taken(JSONDESC_announcement(kind));
}

TEST(Describe, NamesThatDoNotExistSayWhatWasMeant) {
    EXPECT_EQ(refused("cpc3010"),
              "no kind, message or record is called \"cpc3010\", did you mean \"cpc_3010\"?");
    EXPECT_THAT(refused("NET_LOG_info"), HasSubstr("did you mean \"NET_LOG_Info\""));
    EXPECT_THAT(refused("MSG_PXA_ZERO"), HasSubstr("did you mean \"MSG_PAX_ZERO\""))
        << "two letters exchanged";
    EXPECT_THAT(refused("aurora"), HasSubstr("did you mean \"neph_aurora3000\"")) << "a part of a name";
    for (const std::string& name :
         {std::string(), std::string("x"), std::string("thermometer"), std::string(9999, 'x')})
        EXPECT_THAT(refused(name), Not(HasSubstr("did you mean"))) << name;
}

TEST(Describe, AWrongLineSaysWhatWasMeant) {
    const struct {
        const char* line;
        const char* error;
    } rows[] = {
        {R"({"msg":"MSG_LOG_INF"})", R"(unknown message "MSG_LOG_INF", did you mean "MSG_LOG_INFO"?)"},
        {R"({"msg":"MSG_TEST_ONE","record":"NET_Log_Info","payload":{}})",
         R"(unknown record "NET_Log_Info", did you mean "NET_LOG_Info"?)"},
        {R"({"msg":"MSG_CPC_3010_INSTANT","payload":{"running":{"concentraton":1}}})",
         R"(did you mean "concentration")"},
    };
    for (const auto& row : rows) {
        JSONLINE_message message;
        std::string error;
        EXPECT_FALSE(JSONLINE_read(row.line, &message, &error));
        EXPECT_THAT(error, HasSubstr(row.error));
    }
}

TEST(RecordsDocument, IsWhatTheDescriptorsSay) {
    std::ifstream file(VESK_DOCS "/records.md");
    const std::string document{std::istreambuf_iterator<char>(file), {}};
    EXPECT_TRUE(document == DESCRIBE_all(DESCRIBE_MARKDOWN))
        << "make it anew: vesk.peer --list --markdown >docs/records.md";
}

}  // namespace
