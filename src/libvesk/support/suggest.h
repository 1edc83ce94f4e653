// Suggests the existing name that a wrong name is closest to.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// The names closest to `wanted`, at most three, the closest first: those that few typing errors make of it (a
// character too many, missing, wrong, or two exchanged; case does not count), else those that contain it.
[[nodiscard]] std::vector<std::string_view> SUGGEST_names(std::string_view wanted,
                                                          const std::vector<std::string_view>& names);

// The end of a complaint about `wanted`: ", did you mean \"NET_LOG_Info\" or \"NET_IO_Value\"?"; "" without
// any.
[[nodiscard]] std::string SUGGEST_text(std::string_view wanted, const std::vector<std::string_view>& names);
