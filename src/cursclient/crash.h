// Cleans up when the console dies of a fault of its own: the terminal is given back and the reason,
// which lies in the captured standard error, is let out, before the process ends of its signal as it would
// have. Everything that this needs is prepared while all is well.
#pragma once

#include <termios.h>

// From here on the signals of a crash restore the terminal on standard output first: to these line settings,
// by the sequences of the terminal that curses runs.
void CRASH_arm(const termios& settings);
// The signals do what they did before.
void CRASH_disarm();
// Where standard error really goes and where what was written to it meanwhile can be read; -1 for both when
// it is not captured.
void CRASH_set_captured_stderr(int real, int captured);
