// Descriptions as lines for people; the other forms are made elsewhere.
#include "peer/describe.h"

#include <set>
#include <vector>

#include "libvesk/json/json_describe.h"
#include "libvesk/support/suggest.h"
#include "peer/descriptor_text.h"
#include "peer/records_document.h"

namespace {

using texts = std::vector<std::string>;

// Columns side by side, each as wide as its widest cell. A column that says nothing below `head` is left out;
// without a head all are shown.
std::string aligned(const texts& head, std::vector<texts> rows) {
    std::vector<std::size_t> widths(rows.empty() ? 0 : rows.front().size());
    for (const texts& row : rows)
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size());
    for (std::size_t i = 0; i < head.size(); ++i)
        if (widths[i] > 0) widths[i] = std::max(widths[i], head[i].size());
    if (!head.empty()) rows.insert(rows.begin(), head);
    std::string text;
    for (const texts& row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i)
            if (widths[i] > 0) line += "  " + row[i] + std::string(widths[i] - row[i].size(), ' ');
        text += line.substr(0, line.find_last_not_of(' ') + 1) + '\n';
    }
    return text;
}

std::string record_of(const NETMSG_entry& msg) {
    return msg.dsd != nullptr ? msg.dsd->name : "";
}

std::string list_text() {
    std::vector<texts> kinds;
    std::vector<texts> messages;
    std::vector<texts> records;
    for (const KINDS_row& kind : KINDS_all())
        kinds.push_back({kind.name, kind.has_display ? "" : "(no display yet)", kind.purpose});
    for (const NETMSG_entry& msg : NETMSG_all())
        messages.push_back({std::to_string(msg.msg), msg.name, record_of(msg)});
    for (const NETDSD_entry* dsd : NETDSD_all())
        records.push_back({dsd->name, std::to_string(dsd->total_size)});
    return "Kinds of displays\n" + aligned({}, kinds) + "\nMessage types: number, name, record\n" +
           aligned({}, messages) + "\nRecords: name, bytes\n" + aligned({}, records);
}

void append_record(const NETDSD_entry* dsd, std::set<const NETDSD_entry*>* told, std::string& text) {
    if (!told->insert(dsd).second) return;
    std::vector<texts> rows;
    for (const NETDSD_field& f : NETDSD_fields(dsd)) {
        rows.push_back({std::to_string(f.offset), DESCRIPTOR_type(f), f.name, DESCRIPTOR_unit(f),
                        DESCRIPTOR_range(f), DESCRIPTOR_comment(f)});
        for (const std::string& meaning : DESCRIPTOR_meanings(f))
            rows.push_back({"", "", "", "", "", "  " + meaning});
    }
    text += std::string(dsd->name) + ": " + std::to_string(dsd->total_size) + " bytes\n" +
            aligned({"offset", "type", "field", "unit", "range", ""}, rows);
    for (const NETDSD_field& f : NETDSD_fields(dsd)) {
        if (f.nested == nullptr || told->contains(f.nested)) continue;
        text += '\n';
        append_record(f.nested, told, text);
    }
}

std::string record_text(const NETDSD_entry* dsd) {
    std::set<const NETDSD_entry*> told;
    std::string text;
    append_record(dsd, &told, text);
    std::string examples;
    for (const NETMSG_entry& msg : NETMSG_all())
        if (msg.dsd == dsd) examples += JSONDESC_example(msg) + '\n';
    return examples.empty() ? text : text + '\n' + examples;
}

std::string message_text(const NETMSG_entry& msg) {
    const std::string head = std::string(msg.name) + ": message type " + std::to_string(msg.msg);
    if (msg.dsd == nullptr) return head + ", without a record of its own\n\n" + JSONDESC_example(msg) + '\n';
    std::set<const NETDSD_entry*> told;
    std::string text = head + ", carries " + msg.dsd->name + "\n\n";
    append_record(msg.dsd, &told, text);
    return text + '\n' + JSONDESC_example(msg) + '\n';
}

std::string kind_text(const KINDS_row& kind) {
    std::vector<texts> messages;
    for (const NETMSG_entry& msg : NETMSG_all())
        if (KINDS_has_message(kind, msg.name)) messages.push_back({msg.name, record_of(msg)});
    std::string text = std::string(kind.name) + ": " + kind.purpose + '\n';
    if (!kind.has_display) text += "No console has a display of it yet.\n";
    if (kind.origin == KINDS_AT_START) text += "A window of the console's own.\n";
    if (kind.origin == KINDS_MATCHED) text += "One for the station, at the first of its messages.\n";
    if (!messages.empty()) text += "\nMessages\n" + aligned({}, messages);
    return kind.origin == KINDS_ANNOUNCED ? text + '\n' + JSONDESC_announcement(kind) + '\n' : text;
}

std::string unknown(std::string_view name) {
    std::vector<std::string_view> names;
    for (const KINDS_row& kind : KINDS_all())
        names.emplace_back(kind.name);
    for (const NETMSG_entry& msg : NETMSG_all())
        names.emplace_back(msg.name);
    for (const NETDSD_entry* dsd : NETDSD_all())
        names.emplace_back(dsd->name);
    return "no kind, message or record is called \"" + std::string(name) + '"' + SUGGEST_text(name, names);
}

}  // namespace

std::string DESCRIBE_all(DESCRIBE_form form) {
    if (form == DESCRIBE_JSON) return JSONDESC_all() + '\n';
    return form == DESCRIBE_MARKDOWN ? RECORDS_document() : list_text();
}

BOOL DESCRIBE_name(std::string_view name, DESCRIBE_form form, std::string* text) {
    const bool as_json = form == DESCRIBE_JSON;
    const KINDS_row* const kind = KINDS_by_name(name);
    const NETMSG_entry* const msg = NETMSG_by_name(name);
    const NETDSD_entry* const dsd = NETDSD_by_name(name);
    if (kind != nullptr)
        *text = as_json ? JSONDESC_kind(*kind) + '\n' : kind_text(*kind);
    else if (msg != nullptr)
        *text = as_json ? JSONDESC_message(*msg) + '\n' : message_text(*msg);
    else if (dsd != nullptr)
        *text = as_json ? JSONDESC_record(dsd) + '\n' : record_text(dsd);
    else
        *text = unknown(name);
    return kind != nullptr || msg != nullptr || dsd != nullptr;
}
