// The parts of a field's description, as people read them in lines and in the document.
#pragma once

#include <string>
#include <vector>

#include "libvesk/messages/netdsd.h"

// "double[3]", "char[8]", "NET_CPC_3010_Avg"
[[nodiscard]] std::string DESCRIPTOR_type(const NETDSD_field& f);
// "1/m", "none", "" for what is no number
[[nodiscard]] std::string DESCRIPTOR_unit(const NETDSD_field& f);
// "0 to 100", "" for any
[[nodiscard]] std::string DESCRIPTOR_range(const NETDSD_field& f);
// "total scatter (blue, green, red)"
[[nodiscard]] std::string DESCRIPTOR_comment(const NETDSD_field& f);
// "0x1: LASER/TEMP (fault)" and so on, one for each known value or bit.
[[nodiscard]] std::vector<std::string> DESCRIPTOR_meanings(const NETDSD_field& f);
