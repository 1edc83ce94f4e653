// The instruments of a simulated station on a real server: one link each, so that a console takes their
// messages for what they are.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "libvesk/link/inst.h"
#include "station_feed.h"

class STATION_link {
  public:
    // Connects every instrument of the feed, and one more that shows a number in its window.
    STATION_link(STATION_feed& feed, const std::string& socket);

    // From its source to the consoles alone: instruments need not hear each other here.
    void send(const STATION_message& m);
    // A number for the extra instrument's window, in the order of what was sent.
    void show(double number);
    // Moves bytes; TRUE when nothing is left to send.
    BOOL pump();
    // Until nothing is left to send.
    void flush();

    static constexpr const char* MARK_NAME = "Z99";
    static constexpr const char* MARK_TYPE = "cpc_3010";
    static constexpr char MARK_KEY = 'z';

  private:
    void connect(const std::string& name, const std::string& socket);
    void queue(const STATION_message& m, DWORD flags, const char* dest);

    std::map<std::string, std::unique_ptr<INST_link>> links_;
};
