// Cuts a stream of bytes that arrives in pieces into numbered lines, holding no more than one line and that
// one only up to a limit.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "libvesk/support/types.h"

struct LINES_line {
    std::size_t number;     // from 1
    std::string_view text;  // without the newline; valid for the call only
    BOOL too_long;          // over the limit: `text` is empty
};

class LINES_reader {
  public:
    explicit LINES_reader(std::size_t limit) : limit_(limit) {}

    // Calls on_line(LINES_line) for every line that these bytes complete.
    template <class F>
    void feed(std::string_view bytes, F&& on_line) {
        for (;;) {
            const std::size_t newline = bytes.find('\n');
            keep(bytes.substr(0, newline));
            if (newline == std::string_view::npos) return;
            end_line(on_line);
            bytes.remove_prefix(newline + 1);
        }
    }

    // At the end of the stream: a last line without newline counts.
    template <class F>
    void finish(F&& on_line) {
        if (too_long_ || !line_.empty()) end_line(on_line);
    }

  private:
    void keep(std::string_view piece);

    template <class F>
    void end_line(F&& on_line) {
        on_line(LINES_line{++number_, line_, too_long_});
        line_.clear();
        too_long_ = FALSE;
    }

    std::size_t limit_;
    std::size_t number_ = 0;
    std::string line_;
    BOOL too_long_ = FALSE;
};
