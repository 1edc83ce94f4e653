// Typing at the end of a text, as the windows that take free text do it.
#pragma once

#include <cstddef>

#include "libvesk/support/types.h"

// The character that a key types, or 0 when it types none.
[[nodiscard]] char TEXTENTRY_character(int key);
// Backspace or Delete: drops the last character.
[[nodiscard]] bool TEXTENTRY_is_erase(int key);
// Applies an editing or printing key to a terminated text of at most size - 1 characters. TRUE when the key
// was used; a full or empty text does not use what it cannot apply.
bool TEXTENTRY_key(char* text, std::size_t size, int key);
