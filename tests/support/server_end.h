// The server's end of the console's link, in the same process: what the console sends is read back as frames.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "support/wire.h"

class ServerEnd {
  public:
    // Connects g_lnk over a socket of its own and accepts it.
    ServerEnd();
    ~ServerEnd();
    ServerEnd(const ServerEnd&) = delete;
    ServerEnd& operator=(const ServerEnd&) = delete;

    struct Sent {
        int type;
        std::uint32_t flags;
        std::string dest;
        std::string record;
        std::vector<std::uint8_t> payload;
        bool operator==(const Sent&) const = default;
        friend std::ostream& operator<<(std::ostream& out, const Sent& s);
    };
    // Frames for the console; no more at a time than the socket holds.
    void send(FRAME_span frames);
    // Everything that the console sent since the last call.
    std::vector<Sent> received();

  private:
    TemporaryFolder folder_;
    std::optional<wire::End> peer_;
};
