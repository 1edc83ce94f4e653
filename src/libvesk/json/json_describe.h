// Descriptors of records, messages and kinds of displays as JSON: what a program in any language needs to
// know of them, from the same tables that libvesk goes by.
#pragma once

#include <string>

#include "libvesk/messages/kinds.h"
#include "libvesk/messages/netmsg.h"

// Each is one JSON object on one line, without newline.
//
// {"record","size","messages":[name...],"fields":[...],"nested":[record...]}; a field has "name", "type",
// "offset", "size", "comment", "count" when it is a list, "unit" when it is a number, "record" when it is
// nested, and where they are known "elements", "range":[least,most], "values" or "bits":[{"value","text",
// "severity"}].
[[nodiscard]] std::string JSONDESC_record(const NETDSD_entry* dsd);
// {"msg","number","record","example"}, with the record as above.
[[nodiscard]] std::string JSONDESC_message(const NETMSG_entry& msg);
// {"kind","made_by","has_display","purpose","messages":[name...],"example"}
[[nodiscard]] std::string JSONDESC_kind(const KINDS_row& kind);
// {"kinds":[...],"messages":[...],"records":[...],"units":[...]}: all there is, in the forms above, but that
// messages only name their records; a unit is {"unit","name","screen_unit","screen_factor"}.
[[nodiscard]] std::string JSONDESC_all();

// A line that vesk.peer sends as it stands, to be edited: a message with every field of its record and no
// value known; the announcement of an instrument of that kind.
[[nodiscard]] std::string JSONDESC_example(const NETMSG_entry& msg);
[[nodiscard]] std::string JSONDESC_announcement(const KINDS_row& kind);

// "fault", "note" or "state".
[[nodiscard]] const char* JSONDESC_severity(NETDSD_severity severity);
// "announcement", "start" or "message".
[[nodiscard]] const char* JSONDESC_made_by(KINDS_origin origin);
