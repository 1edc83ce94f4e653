// How many descriptors this process may have open. Every link takes four: its socket, and what it waits with.
#pragma once

#include <cstddef>

// Raises the limit to what the process may raise it to, 16384 at most, and returns what it is then. For
// programs that may have hundreds of links.
std::size_t DESCRIPTORS_raise_limit();
