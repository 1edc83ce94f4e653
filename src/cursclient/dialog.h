// The dialogs that every layer of the console opens.
#pragma once

#include <initializer_list>

#include "cursclient/wins.h"
#include "libveskcurs/cursdialog.h"

// A dialog in the console's two attributes; otherwise as CURSDIALOG_create.
[[nodiscard]] CURSDIALOG_type* DIALOG_create(const char* title, int width, const void* user_data = nullptr,
                                             std::size_t user_data_size = 0,
                                             CURSDIALOG_closed_cb closed = nullptr,
                                             CURSDIALOG_cleanup_cb cleanup = nullptr);

// A dialog that only tells: lines of text, and below them one focused button that closes it.
void DIALOG_tell(const char* title, std::initializer_list<const char*> lines, const char* button);
