// The server's end of the console's link, in the same process: what the console sends is read back.
#pragma once

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

    // Everything that the console sent since the last call, a line each: "MSG_LOG_FLUSH flags 1" for all,
    // "MSG_MAAP_ADVANCE to A82" for one instrument; with a record, its values in order follow as JSON.
    std::vector<std::string> received();

  private:
    TemporaryFolder folder_;
    std::optional<wire::End> peer_;
};
