// Where a server is: a socket path, or a host and port. One rule for the console, the tools and the server.
#pragma once

#include <string>
#include <string_view>

#include "libvesk/support/types.h"

inline constexpr std::uint16_t ADDRESS_DEFAULT_PORT = 8375;

struct ADDRESS {
    std::string path;  // of a local socket; empty for a host
    std::string host;  // name or number, without brackets
    std::uint16_t port = ADDRESS_DEFAULT_PORT;
    [[nodiscard]] BOOL is_local() const { return !path.empty(); }
};

// Reads NAME, NAME:PORT, [V6], [V6]:PORT, a bare V6 address, or, with a slash in it, a socket path. FALSE
// leaves `address` alone and puts the reason in `why` ("the port of \"a:x\" is not a number from 0 to
// 65535"). Port 0 lets a listening server choose.
[[nodiscard]] BOOL ADDRESS_parse(std::string_view text, ADDRESS* address, std::string* why);

// The local socket when none is named: $VESK_SOCKET if set; else /run/vesk/server.sock where that directory
// exists; else $XDG_RUNTIME_DIR/vesk/server.sock; else /tmp/vesk-<uid>/server.sock.
[[nodiscard]] ADDRESS ADDRESS_default();

// A client may connect to a socket at that path: it is short enough, and where everybody could have put one,
// in /tmp/vesk-<uid>, directory and socket are this user's or root's. FALSE puts the reason in `why`.
[[nodiscard]] BOOL ADDRESS_may_connect(const std::string& path, std::string* why);

// As a person would write it: the path, "station:8375", "[::1]:8375".
[[nodiscard]] std::string ADDRESS_text(const ADDRESS& address);
