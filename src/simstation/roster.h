// The instruments of the station: every kind once, or those that the operator listed.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "simstation/kinds.h"

// `list` is "" for the whole table (kinds on demand left out), else kinds separated by commas, each
// TYPE, TYPE=NAME (the source name), TYPE*COUNT or TYPE=NAME*COUNT; further ones of a kind get the next free
// name and identifier. A list that cannot be had appends what is wrong with it to `errors`.
[[nodiscard]] std::vector<SIM_member> SIM_roster(std::string_view list, std::vector<std::string>* errors);
