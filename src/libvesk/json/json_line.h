// One message as one line of JSON, both ways:
//
//   {"time":1700000000.25,"src":"N11","dest":"","flags":1,"msg":"MSG_X","record":"NET_X","payload":{...}}
//
// Records go by their descriptors. A line that was written can be read.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "libvesk/link/veskmsg.h"

// The message that a line asks to send.
struct JSONLINE_message {
    const NETMSG_entry* msg = nullptr;
    const NETDSD_entry* dsd = nullptr;  // of the payload, null without one
    DWORD flags = 0;
    std::string dest;           // "" for none
    std::vector<char> payload;  // dsd->total_size bytes, or none
    // Where and when a written line was received; the server stamps what is sent anew.
    std::string src;
    FTIME time = VESK_NO_TIME;
};

// Appends the line of a received message, newline included.
void JSONLINE_write(std::string* out, const VESKMSG_proc_msg* pm, FTIME time);

// Reads a line (without newline). FALSE with the reason in `error` when anything about it is wrong: nothing
// is guessed, except that fields and array elements left out have the values of NETDSD_set_defaults.
[[nodiscard]] BOOL JSONLINE_read(std::string_view line, JSONLINE_message* message, std::string* error);
