// The end of a program whose command line asks for help or is wrong. What the caller wrote there may be any
// bytes, which reach the terminal as printable lines only.
#include "libvesk/support/cmdline.h"

#include <sstream>

std::optional<int> CMDLINE_parse(CLI::App& app, int argc, const char* const* argv) {
    try {
        app.parse(argc, argv);
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        std::ostringstream help;
        std::stringstream complaint;
        const int status = app.exit(error, help, complaint);
        std::cout << help.str();
        for (std::string line; std::getline(complaint, line);)
            UTIL_say(line);
        return status == 0 ? 0 : CMDLINE_WRONG;
    }
}
