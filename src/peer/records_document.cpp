// Markdown made of descriptors.
#include "peer/records_document.h"

#include <algorithm>
#include <cctype>
#include <initializer_list>

#include "libvesk/json/json_describe.h"
#include "peer/descriptor_text.h"

namespace {

constexpr const char* HEAD = R"(# Kinds, messages and records

All that crosses the link, from the descriptors that the programs go by: `vesk.peer --list --markdown` makes this
document, `vesk.peer --describe NAME` tells one entry with a line of JSON to begin from, and `--json` both for programs.
How a driver uses them is told in [drivers.md](drivers.md), how they travel in [protocol.md](protocol.md).

Types: `BOOL` one byte, 0 or 1; `char` and `BYTE` one byte; `int16`, `uint16`, `int32`, `uint32` as they say; `double`
eight bytes, missing as 9.999e-99; `time32` whole seconds and `FTIME` seconds with fraction (a double) since 1970-01-01
UTC, -1 for none; `STRING[N]` a text of at most N-1 characters and a terminating 0; `char[N]` a text of at most N
characters, with a terminating 0 when it is shorter. Offsets and sizes are in bytes; bytes that no field has are 0.
A range is what a valid value keeps to; nothing on the link refuses others. A *fault* is for the operator to mend, a
*note* to know.
)";

// A row of a table. A "|" in a cell would end it.
std::string row(std::initializer_list<std::string> cells) {
    std::string line = "|";
    for (std::string cell : cells) {
        for (std::size_t at = 0; (at = cell.find('|', at)) != std::string::npos; at += 2)
            cell.insert(at, 1, '\\');
        line += ' ' + cell + (cell.empty() ? "|" : " |");
    }
    return line + '\n';
}

std::string code(const std::string& text) {
    return '`' + text + '`';
}

std::string link(const std::string& record) {
    std::string anchor = record;
    std::transform(anchor.begin(), anchor.end(), anchor.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return "[" + record + "](#" + anchor + ")";
}

std::string units() {
    std::string text = "\n## Units\n\n" + row({"Unit", "", "On screens"}) + "|---|---|---|\n";
    for (const UNIT* unit : UNITS) {
        const bool scaled = unit->screen_factor != 1;
        text += row({unit->symbol, unit->name, scaled ? UNIT_screen_symbol(*unit) : ""});
    }
    return text;
}

std::string kinds() {
    std::string text =
        "\n## Kinds of instruments\n\n" + row({"Kind", "", "Display", "Messages"}) + "|---|---|---|---|\n";
    for (const KINDS_row& kind : KINDS_all()) {
        if (kind.origin == KINDS_AT_START) continue;
        std::string families;
        KINDS_for_each_family(kind, [&](std::string_view family) {
            families += (families.empty() ? "`MSG_" : ", `MSG_") + std::string(family) + "_*`";
        });
        const char* const display = kind.origin == KINDS_MATCHED ? "one for the station" : "";
        text += row({code(kind.name), kind.purpose, kind.has_display ? display : "none yet", families});
    }
    return text;
}

std::string messages() {
    std::string text =
        "\n## Messages\n\nOne without a record carries nothing, or a record that it names.\n\n" +
        row({"Number", "Message", "Record"}) + "|---|---|---|\n";
    for (const NETMSG_entry& msg : NETMSG_all())
        text += row({std::to_string(msg.msg), code(msg.name), msg.dsd != nullptr ? link(msg.dsd->name) : ""});
    return text;
}

std::string record(const NETDSD_entry* dsd) {
    std::string text = "\n### " + std::string(dsd->name) + "\n\n" + std::to_string(dsd->total_size) +
                       " bytes.\n\n" + row({"Offset", "Type", "Field", "Unit", "Range", ""}) +
                       "|---|---|---|---|---|---|\n";
    for (const NETDSD_field& f : NETDSD_fields(dsd)) {
        std::string comment = DESCRIPTOR_comment(f);
        for (const std::string& meaning : DESCRIPTOR_meanings(f))
            comment += "<br>" + meaning;
        const bool list = f.nested != nullptr && f.count > 1;
        const std::string count = list ? "[" + std::to_string(f.count) + "]" : "";
        text += row({std::to_string(f.offset),
                     f.nested != nullptr ? link(f.nested->name) + count : DESCRIPTOR_type(f), code(f.name),
                     DESCRIPTOR_unit(f), DESCRIPTOR_range(f), comment});
    }
    return text;
}

}  // namespace

std::string RECORDS_document() {
    std::string text = HEAD + units() + kinds() + messages() + "\n## Records\n";
    for (const NETDSD_entry* dsd : NETDSD_all())
        text += record(dsd);
    return text;
}
