// The messages that the server keeps for peers that join later: the announcement of every living instrument,
// and the latest kept message per source and type, as the frames that carried them.
#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <string>

#include "libvesk/link/frame.h"

class KEEP {
  public:
    // Bytes that an entry counts beside its frame, so that many small ones are bounded too.
    static constexpr std::size_t ENTRY_BYTES = 256;

    struct entry {
        std::string source;
        int type;
        bool of_instrument;  // goes with its source; a console's lasts as long as the server
        DWORD flags;
        std::string dest;
        FRAME_bytes frame;
        [[nodiscard]] std::size_t size() const { return frame.size() + ENTRY_BYTES; }
    };
    enum outcome { KEPT, KEPT_AND_DROPPED, NO_ROOM };

    // Announcements come before messages; else the order is that of the first sending.
    struct place {
        bool is_message = false;
        std::uint64_t number = 0;
        auto operator<=>(const place&) const = default;
    };
    // How far somebody has read: first what was there when reading began, in its latest form, and not what
    // came after that.
    struct reading {
        place at;
        std::uint64_t last = 0;
    };

    // `limit` bounds the sizes of all entries, the announcements aside, which are one per instrument.
    explicit KEEP(std::size_t limit) : limit_(limit) {}

    // TRUE when it is the first of that source.
    BOOL announce(entry e);
    // A message of the same source and type is replaced and holds its place. Over the limit the oldest
    // messages of consoles make room; when that would not be enough the new one is not kept.
    outcome put(entry e);
    // Forgets an instrument with all that is its own.
    void forget(const std::string& source);

    [[nodiscard]] reading begin_reading() const { return {{}, last_number_}; }
    // The next entry, or null after the last; it lives until the next change.
    [[nodiscard]] const entry* next(reading* r) const;
    // Calls `visit` with every message of that source, in order.
    template <class VISIT>
    void for_messages_of(const std::string& source, VISIT visit) const {
        for (const auto& [at, e] : entries_)
            if (at.is_message && e.source == source) visit(e);
    }
    [[nodiscard]] std::size_t bytes() const { return bytes_; }

  private:
    using entries = std::map<place, entry>;
    using key = std::pair<std::string, int>;
    void add(bool is_message, entry e);
    void drop(entries::iterator at);
    void drop_oldest_of_consoles(entries::iterator but);

    std::size_t limit_;
    std::size_t bytes_ = 0;           // of messages
    std::size_t bytes_consoles_ = 0;  // those of consoles among them
    std::uint64_t last_number_ = 0;
    entries entries_;
    std::map<key, entries::iterator> by_key_;
};
