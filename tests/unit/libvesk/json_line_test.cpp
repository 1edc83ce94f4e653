#include "libvesk/json/json_line.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "libvesk/json/json_record.h"
#include "libvesk/messages/records/cpc.h"
#include "libvesk/messages/records/io.h"
#include "libvesk/messages/records/log.h"
#include "libvesk/support/util.h"
#include "support/records.h"

namespace {

std::string written(const JSONLINE_message& m) {
    const VESKMSG_proc_msg pm{m.msg,         m.dsd,          m.flags,
                              m.src.c_str(), m.dest.c_str(), m.dsd != nullptr ? m.payload.data() : nullptr};
    std::string line;
    JSONLINE_write(&line, &pm, m.time);
    return line;
}

JSONLINE_message message_with(const NETDSD_entry* dsd, const std::vector<char>& record) {
    JSONLINE_message message;
    message.msg = NETMSG_by_type(MSG_TEST_ONE);
    message.dsd = dsd;
    message.payload = record;
    return message;
}

JSONLINE_message read_back(const std::string& line) {
    JSONLINE_message message;
    std::string error;
    EXPECT_TRUE(JSONLINE_read(std::string_view(line).substr(0, line.size() - 1), &message, &error)) << error;
    return message;
}

template <class R>
JSONLINE_message message_of(R record) {
    const auto* bytes = reinterpret_cast<const char*>(&record);
    return message_with(NETDSD_of<R>(), {bytes, bytes + sizeof record});
}

TEST(JsonLine, WritesTheMembersInTheirOrder) {
    NET_CPC_3010_Avg avg = NETDSD_default<NET_CPC_3010_Avg>();
    avg.start_time = 1700000000.25;
    avg.concentration = 812.7;
    JSONLINE_message message = message_of(avg);
    message.msg = NETMSG_by_type(MSG_CPC_3010_AVERAGE);
    message.flags = 4294967295U;
    message.src = "N\"11";
    message.dest = "CPC\\1";
    message.time = 1700000060.5;
    EXPECT_EQ(written(message),
              R"({"time":1700000060.5,"src":"N\"11","dest":"CPC\\1","flags":4294967295,)"
              R"("msg":"MSG_CPC_3010_AVERAGE","record":"NET_CPC_3010_Avg","payload":)"
              R"({"start_time":1700000000.25,"concentration":812.7,"stddev_concentration":null}})"
              "\n");
}

// A line that is read and written again states every field, the defaults included.
TEST(JsonLine, ReadsWhatIsLeftOutAsDefaults) {
    const struct {
        const char* line;
        const char* means;
    } rows[] = {
        {R"({"msg":"MSG_LOG_FLUSH"})",
         R"("dest":"","flags":1,"msg":"MSG_LOG_FLUSH","record":null,"payload":null})"},
        {R"({"msg":"MSG_LOG_FLUSH","payload":null,"record":null,"dest":null,"flags":null})",
         R"("dest":"","flags":1,"msg":"MSG_LOG_FLUSH","record":null,"payload":null})"},
        {R"({"msg":"MSG_LOG_INFO","dest":"N11"})",
         R"("dest":"N11","flags":0,"msg":"MSG_LOG_INFO","record":null,"payload":null})"},
        {R"( {"msg":"MSG_LOG_SET_STATE","dest":"N11","flags":1,"payload":{"enable":true}} )"
         "\r",
         R"("dest":"N11","flags":1,"msg":"MSG_LOG_SET_STATE","record":"NET_LOG_SetState","payload":{"enable":true}})"},
        {R"({"msg":"MSG_TEST_TWO","record":"NET_CPC_3703_Instant","payload":{"running":{"concentration":5}}})",
         R"("dest":"","flags":1,"msg":"MSG_TEST_TWO","record":"NET_CPC_3703_Instant","payload":)"
         R"({"start_time":-1,"concentration":null,)"
         R"("running":{"start_time":-1,"concentration":5,"stddev_concentration":null}}})"},
        {R"({"msg":"MSG_SERVER_INSTRUMENTINFO","payload":{"type":"cpc_3010","id_ch":"C","tags":[{},{"tag":"x"}]}})",
         R"("dest":"","flags":1,"msg":"MSG_SERVER_INSTRUMENTINFO","record":"NET_SERVER_InstrumentInfo","payload":)"
         R"({"type":"cpc_3010","display_name":"","id_ch":"C","tags":[{"tag":""},{"tag":"x"},{"tag":""},)"
         R"({"tag":""},{"tag":""},{"tag":""},{"tag":""},{"tag":""}]}})"},
    };
    for (const auto& row : rows) {
        JSONLINE_message message;
        std::string error;
        ASSERT_TRUE(JSONLINE_read(row.line, &message, &error)) << row.line << ": " << error;
        EXPECT_EQ(written(message), std::string(R"({"time":-1,"src":"",)") + row.means + "\n");
    }
}

struct refusal {
    std::string line;
    const char* reason;
};

void expect_refused(const std::vector<refusal>& rows) {
    for (const refusal& row : rows) {
        JSONLINE_message message;
        std::string error;
        EXPECT_FALSE(JSONLINE_read(row.line, &message, &error)) << row.line.substr(0, 200);
        EXPECT_EQ(error, row.reason) << row.line.substr(0, 200);
    }
}

TEST(JsonLine, RefusesWhatIsNoMessage) {
    expect_refused({
        {"", "no JSON: wrong at byte 1"},
        {"{\"msg\":\"\xff\"}", "no JSON: wrong at byte 9"},
        {R"({"msg":"\ud800"})", "no JSON: wrong at byte 15"},
        {R"({"msg":"MSG_LOG_FLUSH","flags":1e999})", "no JSON: a number beyond every range"},
        {std::string(100000, '['), "no JSON: wrong at byte 100001"},
        {"[]", "a line is a JSON object"},
        {"{}", "no \"msg\""},
        {R"({"msg":5})", "\"msg\" is a text"},
        {R"({"msg":"MSG_\n"})", "unknown message \"MSG_\\u000a\""},
        {R"({"msg":"MSG_LOG_FLUSH","mgs":1})", "unknown key \"mgs\""},
        {R"({"msg":"MSG_LOG_FLUSH","msg":"MSG_LOG_INFO"})", "\"msg\" stands twice"},
        {R"({"msg":"MSG_LOG_INFO","payload":{"logging":true,"logging":false}})", "\"logging\" stands twice"},
        {R"({"msg":"MSG_LOG_FLUSH","flags":-1})", "\"flags\" is an integer from 0 to 4294967295"},
        {R"({"msg":"MSG_LOG_FLUSH","flags":4294967296})", "\"flags\" is an integer from 0 to 4294967295"},
        {R"({"msg":"MSG_LOG_FLUSH","flags":"7"})", "\"flags\" is an integer from 0 to 4294967295"},
        {R"({"msg":"MSG_LOG_FLUSH","dest":7})", "\"dest\" is a text"},
        {R"({"msg":"MSG_LOG_FLUSH","dest":" N11"})", "\"dest\" is no name of an instrument"},
        {R"({"msg":"MSG_LOG_FLUSH","time":"now"})", "\"time\" is a number"},
        {R"({"msg":"MSG_LOG_FLUSH","record":"NET_LOG_Info"})", "a \"record\" without \"payload\""},
        {R"({"msg":"MSG_LOG_FLUSH","payload":{}})", "MSG_LOG_FLUSH needs a \"record\" with its \"payload\""},
        {R"({"msg":"MSG_LOG_FLUSH","record":"NET_X","payload":{}})", "unknown record \"NET_X\""},
        {R"({"msg":"MSG_LOG_INFO","record":"NET_LOG_SetState","payload":{}})",
         "MSG_LOG_INFO carries NET_LOG_Info, not NET_LOG_SetState"},
        {R"({"msg":"MSG_LOG_INFO","payload":[true]})", "\"payload\" is an object"},
    });
}

std::string info(const std::string& members) {
    return R"({"msg":"MSG_SERVER_INSTRUMENTINFO","payload":{)" + members + "}}";
}
std::string instant(const std::string& members) {
    return R"({"msg":"MSG_CPC_3775_INSTANT","payload":{)" + members + "}}";
}
std::string log(const std::string& members) {
    return R"({"msg":"MSG_LOG_MONITOR","payload":{)" + members + "}}";
}

TEST(JsonLine, RefusesFieldsThatDoNotFit) {
    expect_refused({
        {R"({"msg":"MSG_LOG_INFO","payload":{"foo":1}})", "unknown field \"foo\" in NET_LOG_Info"},
        {R"({"msg":"MSG_LOG_INFO","payload":{"logging":1}})", "logging: expects true or false"},
        {log(R"("flags":256)"), "flags: expects an integer from 0 to 255"},
        {log(R"("flags":-1)"), "flags: expects an integer from 0 to 255"},
        {log(R"("flags":"1")"), "flags: expects an integer from 0 to 255"},
        {log(R"("flags":1.5)"), "flags: expects an integer from 0 to 255"},
        {log(R"("msgtime":true)"), R"(msgtime: expects a number, null, "NaN", "Inf" or "-Inf")"},
        {log(R"("msgtime":"now")"), R"(msgtime: expects a number, null, "NaN", "Inf" or "-Inf")"},
        {log(R"("msg":")" + std::string(8192, 'x') + '"'), "msg: longer than 8191 characters"},
        {log(R"("msg":"a\u0000b")"), "msg: holds a character that cannot be sent"},
        {log(R"("msg":"5 €")"), "msg: holds a character that cannot be sent"},
        {log(R"("msg":5)"), "msg: expects a text"},
        {instant(R"("liquid":2147483648)"), "liquid: expects an integer from -2147483648 to 2147483647"},
        {instant(R"("liquid":-1e300)"), "liquid: expects an integer from -2147483648 to 2147483647"},
        {instant(R"("running":{"x":1})"), "running: unknown field \"x\" in NET_CPC_3775_Avg"},
        {instant(R"("running":5)"), "running: expects an object"},
        {R"({"msg":"MSG_VERTICALPROFILE_SET_SITE","payload":{"name":"ABCDEFGHI"}})",
         "name: longer than 8 characters"},
        {info(R"("id_ch":"ab")"), "id_ch: expects a text of one character"},
        {info(R"("id_ch":67)"), "id_ch: expects a text of one character"},
        {info(R"("tags":{})"), "tags: expects an array of at most 8 elements"},
        {info(R"("tags":[{},{},{},{},{},{},{},{},{}])"), "tags: expects an array of at most 8 elements"},
        {info(R"("tags":[{},{},{"tag":5}])"), "tags[2].tag: expects a text"},
    });
}

TEST(JsonLine, TakesWholeNumbersHoweverTheyAreWritten) {
    for (const char* number : {"1000", "1000.0", "1e3", "10000E-1"}) {
        JSONLINE_message message;
        std::string error;
        ASSERT_TRUE(JSONLINE_read(instant(std::string(R"("liquid":)") + number), &message, &error)) << error;
        EXPECT_EQ(+NETDSD_load<NET_CPC_3775_Instant>(message.payload.data()).liquid, 1000) << number;
    }
}

TEST(JsonLine, DoublesComeBackExactly) {
    const struct {
        double value;
        const char* text;
    } rows[] = {
        {VESK_MISSING, "null"},
        {std::nextafter(VESK_MISSING, 1), "9.999000000000002e-99"},
        {std::nan(""), "\"NaN\""},
        {HUGE_VAL, "\"Inf\""},
        {-HUGE_VAL, "\"-Inf\""},
        {0.0, "0"},
        {-0.0, "-0.0"},
        {0.1 + 0.2, "0.30000000000000004"},
        {5e-324, "5e-324"},
        {-18446744073709551616.0, "-18446744073709551616"},
    };
    for (const auto& row : rows) {
        std::string text;
        JSONREC_append_double(&text, row.value);
        EXPECT_EQ(text, row.text);
        const JSONLINE_message back = read_back(R"({"msg":"MSG_IO_AVG","payload":{"value":)" + text + "}}\n");
        const double value = NETDSD_load<NET_IO_Value>(back.payload.data()).value;
        if (std::isnan(row.value)) {
            EXPECT_TRUE(std::isnan(value));
        } else {
            EXPECT_EQ(value, row.value);
            EXPECT_EQ(std::signbit(value), std::signbit(row.value));
        }
    }
}

TEST(JsonLine, EveryByteOfATextComesBack) {
    auto record = NETDSD_default<NET_LOG_MonitorMessage>();
    for (int c = 1; c < 256; ++c)
        record.msg[c - 1] = static_cast<char>(c);
    const std::string line = written(message_of(record));
    EXPECT_TRUE(std::all_of(line.begin(), line.end() - 1, UTIL_is_printable)) << line;
    EXPECT_EQ(read_back(line).payload, message_of(record).payload);

    std::memset(record.msg, 'x', sizeof record.msg);
    const JSONLINE_message back = read_back(written(message_of(record)));
    EXPECT_EQ(UTIL_field(NETDSD_load<NET_LOG_MonitorMessage>(back.payload.data()).msg),
              std::string(8191, 'x'))
        << "without terminator it ends where its field does";
}

BOOL is_same_value(const NETDSD_field& f, const char* a, const char* b) {
    const std::size_t size = f.size / NETDSD_values(f);
    if (std::memcmp(a, b, size) == 0) return TRUE;
    const NETDSD_field_type ft = NETDSD_element_type(f.ft);
    return (ft == NETDSD_FT_DOUBLE || ft == NETDSD_FT_FTIME) && std::isnan(NETDSD_load<double>(a)) &&
           std::isnan(NETDSD_load<double>(b));
}

void expect_comes_back(const NETDSD_entry* dsd, const std::vector<char>& record) {
    const JSONLINE_message sent = message_with(dsd, record);
    const JSONLINE_message back = read_back(written(sent));
    ASSERT_EQ(back.dsd, dsd);
    NETDSD_for_each_leaf(dsd, [&](const NETDSD_field& f, std::size_t at) {
        EXPECT_TRUE(is_same_value(f, record.data() + at, back.payload.data() + at)) << f.name << " @" << at;
    });
    EXPECT_EQ(written(back), written(sent));
}

TEST(JsonLine, EveryRecordComesBackAsItWasPrinted) {
    for (const NETDSD_entry* dsd : all_records()) {
        SCOPED_TRACE(dsd->name);
        expect_comes_back(dsd, default_record(dsd));
        for (unsigned seed = 0; seed < 20; ++seed) {
            std::vector<char> record = random_bytes(dsd->total_size, seed);
            NETDSD_sanitize(dsd, record.data());
            expect_comes_back(dsd, record);
        }
    }
}

}  // namespace
