// The console in memory, with a window of every kind open: its real layers on a terminal that throws its
// output away, and a whole simulated station to draw.
#pragma once

#include "station_feed.h"
#include "support/screen.h"

class CONSOLE_rig {
  public:
    static constexpr int LINES_USED = 60;
    static constexpr int COLUMNS_USED = 200;

    CONSOLE_rig();
    ~CONSOLE_rig();
    CONSOLE_rig(const CONSOLE_rig&) = delete;
    CONSOLE_rig& operator=(const CONSOLE_rig&) = delete;

    // Hands messages to the displays as the link does, and sets the console's clock.
    static void deliver(const std::vector<STATION_message>& messages, FTIME now);

    // The console's screen is the one that curses works on from here on.
    void use_screen() { screen_.use(); }

    STATION_feed station;

  private:
    TestScreen screen_;
};
