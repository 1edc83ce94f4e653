// Lays one number out in a field of fixed columns: the "*" conversions. Private to sfmt.
#pragma once

#include <string_view>

#include "libvesk/support/sfmt_spec.h"

// Room for any number: 309 integer digits, the point, the most decimals, a sign; fields are shorter.
inline constexpr std::size_t SFMT_LONGEST_NUMBER = 512;

// Writes the number to `text` and returns what it wrote; sfmt.h tells the rules.
[[nodiscard]] std::string_view SFMT_layout_number(char (&text)[SFMT_LONGEST_NUMBER], const SFMT_spec& conv,
                                                  double value);
