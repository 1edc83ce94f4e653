// A console on a wall: when the server goes away, it stays, says so, and comes back with its windows as soon
// as there is a server again. Only where the settings ask for it; otherwise a lost link ends the console.
#pragma once

// The link is down. FALSE: the console has to end. TRUE: it waits; the displays of instruments are gone, and
// their windows' places are remembered.
[[nodiscard]] bool RECONNECT_wait();
// Once per pass: tries again in good time while the link is down, and tells the operator. Nothing else.
void RECONNECT_update();
