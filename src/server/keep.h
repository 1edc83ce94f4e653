// What the server remembers for those who come later: the announcement of every living instrument, and the
// latest kept message per source and type, as the frames that carried them.
#pragma once

#include <list>
#include <map>
#include <string>

#include "libvesk/link/frame.h"

class KEEP {
  public:
    struct entry {
        std::string source;
        int type;
        bool of_instrument;  // goes with its source; a console's lasts as long as the server
        DWORD flags;
        std::string dest;
        FRAME_bytes frame;
    };
    enum outcome { KEPT, KEPT_AND_DROPPED, NO_ROOM };

    // `limit` bounds the bytes of all frames, the announcements aside, which are one per instrument.
    explicit KEEP(std::size_t limit) : limit_(limit) {}

    void announce(entry e);
    // A message of the same source and type is replaced and holds its place. Over the limit the oldest
    // messages of consoles make room; when that is not enough the new one is not kept.
    outcome put(entry e);
    // Forgets an instrument with all that is its own.
    void forget(const std::string& source);

    // In the order in which they were first sent.
    [[nodiscard]] const std::list<entry>& announcements() const { return announcements_; }
    [[nodiscard]] const std::list<entry>& messages() const { return messages_; }
    [[nodiscard]] std::size_t bytes() const { return bytes_; }

  private:
    using list = std::list<entry>;
    using key = std::pair<std::string, int>;
    void drop(list::iterator at);

    std::size_t limit_;
    std::size_t bytes_ = 0;
    list announcements_;
    list messages_;
    std::map<key, list::iterator> by_key_;
};
