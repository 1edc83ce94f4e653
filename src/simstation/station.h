// The running station: connects every instrument and the data logger, lets the simulated clock go, plays the
// scenario, and carries messages both ways until it is told to stop.
#pragma once

#include "simstation/options.h"

// Exit codes: 0 after a signal or a scenario's "quit", 1 when the server went away, 2 when it could not be
// reached or refused a peer; 1 and 2 have then been explained on standard error.
[[nodiscard]] int SIM_run_station(const SIM_options& options);
