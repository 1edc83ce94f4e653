// Non-blocking line reads on file descriptors.
#pragma once

#include "libvesk/support/types.h"

// Takes the descriptor over for line reads and makes it non-blocking. `flags` is reserved (0).
// Returns a handle not below 0, or -1 (errno says why; the descriptor stays the caller's then).
[[nodiscard]] int VESKFILE_associate_fh(int fd, int flags);
// Reads up to one of the `n_stops` stop characters into `dst` (at most size - 1 characters, terminated). The
// stop character is not stored; a longer line arrives in pieces. Returns the number of bytes consumed
// (positive, the stop character included), 0 when no whole line is there yet, -1 at the end or on an error.
[[nodiscard]] int VESKFILE_readuntil_int(int handle, char* dst, std::size_t size, const char* stops,
                                         std::size_t n_stops);
// Returns the bytes that have arrived without their stop character yet (for a last line at the end of a run);
// consumed.
[[nodiscard]] int VESKFILE_readrest(int handle, char* dst, std::size_t size);
// Closes the descriptor and forgets the handle.
void VESKFILE_close(int handle);
