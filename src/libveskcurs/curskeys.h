// The key reader: turns the bytes of the terminal into key codes.
#pragma once

#include "libvesk/support/types.h"

// Codes beyond those of curses.
inline constexpr int CURSKEYS_ALT = 0x10000;   // plus the character: Alt pressed with it
inline constexpr int CURSKEYS_BTAB = 0x20001;  // reverse Tab
inline constexpr int CURSKEYS_TAB = 9;
inline constexpr int CURSKEYS_CTRL_D = 4;
inline constexpr int CURSKEYS_CTRL_E = 5;
inline constexpr int CURSKEYS_CTRL_L = 12;
inline constexpr int CURSKEYS_CTRL_W = 23;
inline constexpr int CURSKEYS_ESCAPE = 27;

// Line feed, carriage return or the keypad's Enter.
[[nodiscard]] BOOL CURSKEYS_is_enter(int key);
// KEY_BACKSPACE, 127 or 8, as windows that edit text take it.
[[nodiscard]] BOOL CURSKEYS_is_backspace(int key);

using CURSKEYS_cb = void (*)(int key);

// Reads every pending key: `raw_cb` gets each raw curses code, `key_cb` each interpreted key. KEY_RESIZE is
// passed to both: the receiver lays the screen out again. Keys are told apart by when their bytes arrive, so
// the caller calls this as soon as the descriptor below can be read: a byte within CURSKEYS_ESCAPE_MS of an
// Escape is Alt with it, a later one is a key of its own; two Escapes are two Escapes; the rest of a control
// sequence that has begun is waited for, up to CURSKEYS_SEQUENCE_MS between two bytes; an unknown one is
// swallowed whole; a complete UTF-8 sequence that is not ASCII is dropped, a lone high byte is meta. At most
// a few thousand keys are taken per call, so that a key flood cannot starve the loop. TRUE when at least one
// was read.
[[nodiscard]] BOOL CURSKEYS_handle_keys(CURSKEYS_cb raw_cb, CURSKEYS_cb key_cb);
// Milliseconds. Terminals send a sequence in one piece; only a slow line parts its bytes. Nobody types the
// beginning of a control sequence, so its rest gets more time than what may follow a lone Escape.
inline constexpr int CURSKEYS_ESCAPE_MS = 25;
inline constexpr int CURSKEYS_SEQUENCE_MS = 200;

// The descriptor that the present curses screen reads its keys from; standard input unless told. Whoever
// brings a screen of its own (newterm on a pipe) says so once it stands, and sets standard input again before
// deleting it, since the reader keeps a window of that screen.
void CURSKEYS_set_input_fd(int fd);
[[nodiscard]] int CURSKEYS_input_fd();

// The terminal is gone (end of file or an error on standard input): reading can never succeed again.
[[nodiscard]] BOOL CURSKEYS_terminal_lost();
