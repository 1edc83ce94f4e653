// The station itself as a peer: its data logger, which carries out the log-wide commands of consoles, writes
// an error line now and then, and can play a second operator who answers messages.
#pragma once

#include <deque>
#include <string>
#include <utility>
#include <vector>

#include "simstation/scenario.h"

struct SIM_logger_settings {
    double errors_per_hour = 4;  // of simulated time
    BOOL chatty = FALSE;         // answers messages
};

class SIM_logger : public SIM_voice {
  public:
    // `names` are the instruments that error lines speak of.
    SIM_logger(SIM_world& world, SIM_sink& sink, std::string name, const SIM_logger_settings& settings,
               std::vector<std::string> names);

    void tick();
    // A message from anybody; those of consoles are carried out and logged.
    void receive(const VESKMSG_proc_msg* pm);
    // Plays a scenario's event of the station; "quit" is the caller's.
    void play(const SIM_event& event);

  private:
    void error_now_and_then();
    void say(const std::string& text);
    void answer(const VESKMSG_proc_msg* pm);
    void set_bypass(BOOL bypassed);
    void set_contamination(BOOL contaminated);

    SIM_logger_settings settings_;
    std::vector<std::string> names_;
    std::deque<std::pair<FTIME, std::string>> answers_;  // when to send what
};
