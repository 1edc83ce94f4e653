// Comes before the first header of Asio, everywhere. Left to itself Asio chooses how it allocates by whether
// a standard header happened to come before it, so that units of one program would not agree on it.
#pragma once

#if defined(ASIO_DETAIL_CONFIG_HPP) && !defined(ASIO_DISABLE_STD_ALIGNED_ALLOC)
#error "include libvesk/asio_config.h before any header of Asio"
#endif
#ifndef ASIO_DISABLE_STD_ALIGNED_ALLOC
#define ASIO_DISABLE_STD_ALIGNED_ALLOC 1
#endif
