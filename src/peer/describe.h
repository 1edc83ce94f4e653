// Lists and describes messages, records and kinds for authors of drivers; needs no connection.
#pragma once

#include <string>
#include <string_view>

#include "libvesk/support/types.h"

enum DESCRIBE_form {
    DESCRIBE_TEXT,
    DESCRIBE_JSON,
    DESCRIBE_MARKDOWN,  // of everything only: docs/records.md
};

// Kinds of displays, message types and records, one line each; JSON and Markdown have all about them.
[[nodiscard]] std::string DESCRIBE_all(DESCRIBE_form form);

// Describes the kind, the message or the record of that name. FALSE when there is none, with what may have
// been meant as the text.
[[nodiscard]] BOOL DESCRIBE_name(std::string_view name, DESCRIBE_form form, std::string* text);
