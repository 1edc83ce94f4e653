// Rows of the table of results, as run.sh puts them together: what was measured, beside what, and the aim.
#pragma once

#include <cstdio>
#include <string>

inline std::string TABLE_number(double value, int decimals = 0) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

inline void TABLE_row(const std::string& what, const std::string& measured, const std::string& beside = "",
                      const std::string& ratio = "", const std::string& aim = "") {
    std::printf("| %s | %s | %s | %s | %s |\n", what.c_str(), measured.c_str(), beside.c_str(), ratio.c_str(),
                aim.c_str());
    std::fflush(stdout);
}
