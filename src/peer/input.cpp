// The checks that make a line a message.
#include "peer/input.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <span>

#include "libvesk/link/msgcheck.h"
#include "libvesk/support/util.h"
#include "peer/announcements.h"

BOOL INPUT_is_blank(const LINES_line& line) {
    return !line.too_long && line.text.find_first_not_of(" \t\r") == std::string_view::npos;
}

BOOL INPUT_read(const LINES_line& line, JSONLINE_message* message, std::string* error) {
    if (!line.too_long) return JSONLINE_read(line.text, message, error);
    *error = "longer than " + std::to_string(INPUT_LINE_LIMIT) + " bytes";
    return FALSE;
}

// The link asks the same, but its complaint does not know the line.
BOOL INPUT_may_send(const JSONLINE_message& m, std::string* error) {
    MSGCHECK_found found;
    const char* record = m.dsd != nullptr ? m.dsd->name : "";
    const MSGCHECK_fault fault = MSGCHECK_from_peer(
        {m.msg->msg, m.flags, {}, m.dest, record, std::as_bytes(std::span(m.payload))}, &found);
    if (fault != MSGCHECK_OK) *error = std::string(m.msg->name) + ": " + MSGCHECK_text(fault);
    return fault == MSGCHECK_OK;
}

std::string INPUT_warning(const JSONLINE_message& m) {
    if (m.msg->msg != MSG_SERVER_INSTRUMENTINFO || m.dsd != NETDSD_of<NET_SERVER_InstrumentInfo>()) return "";
    auto info = NETDSD_default<NET_SERVER_InstrumentInfo>();
    std::memcpy(&info, m.payload.data(), sizeof info);
    return ANNOUNCEMENTS_kind_fault(UTIL_field(info.type));
}

void INPUT_complain(const LINES_line& line, const std::string& error) {
    UTIL_complain("line %zu: %s", line.number, error.c_str());
}

INPUT_state INPUT_take(int fd, const char* name, std::string* bytes) {
    bytes->resize(INPUT_READ_BYTES);
    const ssize_t n = read(fd, bytes->data(), bytes->size());
    const BOOL again = n < 0 && (errno == EINTR || errno == EAGAIN);
    if (n < 0 && !again) UTIL_complain("cannot read %s: %s", name, std::strerror(errno));
    bytes->resize(n > 0 ? static_cast<std::size_t>(n) : 0);
    if (n > 0 || again) return INPUT_OPEN;
    return n == 0 ? INPUT_ENDED : INPUT_UNREADABLE;
}
