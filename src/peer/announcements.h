// Warns of an announcement that may be sent all the same: nobody shows such an instrument, or another one
// answers to its hot key.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "libvesk/link/veskmsg.h"

// The warning about that kind, "" for none.
[[nodiscard]] std::string ANNOUNCEMENTS_kind_fault(std::string_view kind);

// The hot keys of the instruments that are there, from the messages that one link receives.
class ANNOUNCEMENTS {
  public:
    // Follows announcements and departures. The text, when there is one, is said of the announcement of `own`
    // that has come back: all who were there before have announced themselves by then.
    [[nodiscard]] std::string hear(const VESKMSG_proc_msg* pm, std::string_view own);

  private:
    std::map<std::string, char, std::less<>> hot_keys_;
};
