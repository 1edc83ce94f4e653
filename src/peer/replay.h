// Plays a recording: every source is a peer of its own, says what it said when it said it, and leaves when it
// left.
#pragma once

#include "peer/options.h"

// Runs until the recording or the play of it ends; returns what PEER_run does (PEER_exit). `in_fd` is the
// recording when its name is "-".
[[nodiscard]] int REPLAY_run(const PEER_options& options, int in_fd = 0);
