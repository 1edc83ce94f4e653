// The dialog that every layer of the console opens.
#pragma once

#include "cursclient/wins.h"
#include "libveskcurs/cursdialog.h"

// A dialog in the console's two attributes; otherwise as CURSDIALOG_create.
[[nodiscard]] CURSDIALOG_type* DIALOG_create(const char* title, int width, const void* user_data = nullptr,
                                             std::size_t user_data_size = 0,
                                             CURSDIALOG_closed_cb closed = nullptr,
                                             CURSDIALOG_cleanup_cb cleanup = nullptr);
