// Lines of input as messages that may be sent: what standard input and recordings have in common.
#pragma once

#include <cstddef>
#include <string>

#include "libvesk/json/json_line.h"
#include "peer/lines.h"

inline constexpr std::size_t INPUT_LINE_LIMIT = std::size_t{1} << 20;
// Read at a time. Small, since a short line may become a record of 8 KiB in the link's queue.
inline constexpr std::size_t INPUT_READ_BYTES = std::size_t{16} << 10;

[[nodiscard]] BOOL INPUT_is_blank(const LINES_line& line);
// Reads a line; FALSE with the reason in `error`.
[[nodiscard]] BOOL INPUT_read(const LINES_line& line, JSONLINE_message* message, std::string* error);
// TRUE when a peer may send that message; FALSE with the reason in `error`.
[[nodiscard]] BOOL INPUT_may_send(const JSONLINE_message& message, std::string* error);
// A warning about a message that may be sent all the same; "" for none.
[[nodiscard]] std::string INPUT_warning(const JSONLINE_message& message);
// "line 3: unknown field ..." on standard error.
void INPUT_complain(const LINES_line& line, const std::string& error);

enum INPUT_state {
    INPUT_OPEN,
    INPUT_ENDED,
    INPUT_UNREADABLE,  // said on standard error, with the input's name
};
// Replaces `bytes` by those that can be read now: none when the state is another than open.
[[nodiscard]] INPUT_state INPUT_take(int fd, const char* name, std::string* bytes);
