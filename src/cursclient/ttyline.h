// A terminal's line as far as it can be used without waiting for it: it may be held, or nobody may be
// reading. Everything here is safe in the handler of a signal.
#pragma once

#include <cstddef>

// Writes what the line takes within `ms` milliseconds (0: at once); how many bytes it took. A line that is
// gone takes everything.
std::size_t TTYLINE_write(int fd, const char* bytes, std::size_t n, int ms);
// Lets a held line go on and throws away what it has not passed on yet, so that it takes something again.
void TTYLINE_release(int fd);
