// The document of all kinds, units, messages and records, docs/records.md, made from their descriptors.
#pragma once

#include <string>

[[nodiscard]] std::string RECORDS_document();
