// The syntax of one line of the configuration file, both ways. Private to conf.
#pragma once

#include <string>
#include <string_view>
#include <vector>

inline constexpr char CONF_SEPARATOR = ';';

using CONF_path = std::vector<std::string>;  // the names along it

// Appends one name of a path, or a value, so that it reads back as it is; neither contains a NUL.
void CONF_append_name(std::string& text, std::string_view name);
void CONF_append_value(std::string& text, std::string_view value);
// Reads "path = value" into the two, which are empty. Null, or what is wrong with the line.
[[nodiscard]] const char* CONF_read_setting(std::string_view line, CONF_path& path, std::string& value);
