// Typing at the end of a text: printable characters append, Backspace and Delete take one away.
#include "cursclient/kit/textentry.h"

#include <curses.h>

#include <cstring>

#include "libvesk/support/util.h"
#include "libveskcurs/curskeys.h"

char TEXTENTRY_character(int key) {
    return key >= 1 && key <= 254 && UTIL_is_printable(static_cast<unsigned char>(key))
               ? static_cast<char>(key)
               : '\0';
}

bool TEXTENTRY_is_erase(int key) {
    return CURSKEYS_is_backspace(key) || key == KEY_DC;
}

bool TEXTENTRY_key(char* text, std::size_t size, int key) {
    const std::size_t length = std::strlen(text);
    if (TEXTENTRY_is_erase(key)) {
        if (length == 0) return false;
        text[length - 1] = '\0';
        return true;
    }
    const char c = TEXTENTRY_character(key);
    if (c == '\0' || length + 1 >= size) return false;
    text[length] = c;
    text[length + 1] = '\0';
    return true;
}
