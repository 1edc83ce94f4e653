// Lines on vesk.peer's standard input: none crashes the reader, and what it took it writes in a form that it
// takes again, with the same meaning.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "libvesk/json/json_line.h"
#include "peer/lines.h"

namespace {

std::string written(const JSONLINE_message& m) {
    const VESKMSG_proc_msg pm{m.msg,         m.dsd,          m.flags,
                              m.src.c_str(), m.dest.c_str(), m.dsd != nullptr ? m.payload.data() : nullptr};
    std::string line;
    JSONLINE_write(&line, &pm, m.time);
    return line;
}

void check_line(std::string_view line) {
    JSONLINE_message message;
    std::string error;
    if (!JSONLINE_read(line, &message, &error)) {
        if (error.empty()) std::abort();
        return;
    }
    const std::string once = written(message);
    if (!JSONLINE_read(std::string_view(once).substr(0, once.size() - 1), &message, &error)) std::abort();
    if (written(message) != once) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    LINES_reader reader(4096);
    const auto check = [](const LINES_line& line) { check_line(line.text); };
    reader.feed({reinterpret_cast<const char*>(data), size}, check);
    reader.finish(check);
    return 0;
}
