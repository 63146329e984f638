// Sockets, where a test needs one.
#pragma once

// Makes a socket that is connected with nobody, and closes it; the running test fails when that
// cannot be done.
void makeAndCloseSocket();
