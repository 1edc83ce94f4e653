// JSON objects made of descriptors. The order of members is the order in which people read them.
#include "libvesk/json/json_describe.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <vector>

#include "libvesk/json/json_record.h"

namespace {

using json = nlohmann::ordered_json;

json number(double value) {
    constexpr double EXACT = 9007199254740992.0;  // 2^53
    if (std::trunc(value) == value && std::abs(value) < EXACT) return static_cast<std::int64_t>(value);
    return value;
}

json meanings(const NETDSD_field& f) {
    json list = json::array();
    for (const NETDSD_meaning& m : f.meanings)
        list.push_back({{"value", m.value}, {"text", m.text}, {"severity", JSONDESC_severity(m.severity)}});
    return list;
}

json field(const NETDSD_field& f) {
    json object = {{"name", f.name}, {"type", f.type_name}, {"offset", f.offset}, {"size", f.size}};
    if (JSONREC_is_list(f)) object["count"] = f.count;
    if (f.unit != nullptr) object["unit"] = f.unit->symbol;
    object["comment"] = f.comment;
    if (f.nested != nullptr) object["record"] = f.nested->name;
    if (f.elements[0] != '\0') object["elements"] = f.elements;
    if (f.has_range) object["range"] = {number(f.min), number(f.max)};
    if (!f.meanings.empty()) object[f.by_bits ? "bits" : "values"] = meanings(f);
    return object;
}

json record(const NETDSD_entry* dsd) {
    json object = {{"record", dsd->name}, {"size", dsd->total_size}};
    object["messages"] = json::array();
    for (const NETMSG_entry& msg : NETMSG_all())
        if (msg.dsd == dsd) object["messages"].push_back(msg.name);
    object["fields"] = json::array();
    for (const NETDSD_field& f : NETDSD_fields(dsd))
        object["fields"].push_back(field(f));
    return object;
}

void add_nested(const NETDSD_entry* dsd, json& list) {
    for (const NETDSD_field& f : NETDSD_fields(dsd)) {
        if (f.nested == nullptr) continue;
        json nested = record(f.nested);
        if (std::find(list.begin(), list.end(), nested) != list.end()) continue;
        list.push_back(std::move(nested));
        add_nested(f.nested, list);
    }
}

json record_with_nested(const NETDSD_entry* dsd) {
    json object = record(dsd);
    object["nested"] = json::array();
    add_nested(dsd, object["nested"]);
    return object;
}

json message(const NETMSG_entry& msg) {
    json object = {{"msg", msg.name}, {"number", static_cast<int>(msg.msg)}, {"record", nullptr}};
    if (msg.dsd != nullptr) object["record"] = msg.dsd->name;
    object["example"] = json::parse(JSONDESC_example(msg));
    return object;
}

json kind(const KINDS_row& row) {
    json object = {{"kind", row.name},
                   {"made_by", JSONDESC_made_by(row.origin)},
                   {"has_display", row.has_display},
                   {"purpose", row.purpose},
                   {"messages", json::array()}};
    for (const NETMSG_entry& msg : NETMSG_all())
        if (KINDS_has_message(row, msg.name)) object["messages"].push_back(msg.name);
    if (row.origin == KINDS_ANNOUNCED) object["example"] = json::parse(JSONDESC_announcement(row));
    return object;
}

json unit(const UNIT& u) {
    return {{"unit", u.symbol},
            {"name", u.name},
            {"screen_unit", UNIT_screen_symbol(u)},
            {"screen_factor", number(u.screen_factor)}};
}

}  // namespace

std::string JSONDESC_record(const NETDSD_entry* dsd) {
    return record_with_nested(dsd).dump();
}

std::string JSONDESC_message(const NETMSG_entry& msg) {
    json object = message(msg);
    if (msg.dsd != nullptr) object["record"] = record_with_nested(msg.dsd);
    return object.dump();
}

std::string JSONDESC_kind(const KINDS_row& row) {
    return kind(row).dump();
}

std::string JSONDESC_all() {
    json all = {{"kinds", json::array()},
                {"messages", json::array()},
                {"records", json::array()},
                {"units", json::array()}};
    for (const KINDS_row& row : KINDS_all())
        all["kinds"].push_back(kind(row));
    for (const NETMSG_entry& msg : NETMSG_all())
        all["messages"].push_back(message(msg));
    for (const NETDSD_entry* dsd : NETDSD_all())
        all["records"].push_back(record(dsd));
    for (const UNIT* u : UNITS)
        all["units"].push_back(unit(*u));
    return all.dump();
}

std::string JSONDESC_example(const NETMSG_entry& msg) {
    std::string line = "{\"msg\":\"" + std::string(msg.name) + '"';
    if (msg.dsd != nullptr) {
        std::vector<char> empty(msg.dsd->total_size);
        NETDSD_set_defaults(msg.dsd, empty.data());
        line += ",\"payload\":";
        JSONREC_append_record(&line, msg.dsd, empty.data());
    }
    return line + '}';
}

std::string JSONDESC_announcement(const KINDS_row& kind) {
    const json payload = {
        {"type", kind.name}, {"display_name", std::string(kind.name) + " 1"}, {"id_ch", ""}};
    return json{{"msg", "MSG_SERVER_INSTRUMENTINFO"}, {"flags", 7}, {"payload", payload}}.dump();
}

const char* JSONDESC_severity(NETDSD_severity severity) {
    if (severity == NETDSD_FAULT) return "fault";
    return severity == NETDSD_NOTE ? "note" : "state";
}

const char* JSONDESC_made_by(KINDS_origin origin) {
    if (origin == KINDS_ANNOUNCED) return "announcement";
    return origin == KINDS_AT_START ? "start" : "message";
}
