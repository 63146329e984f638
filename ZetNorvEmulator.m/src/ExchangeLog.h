// The exchange log of a debug run: one line for every call of a hook.
#pragma once

namespace zetnorv {

// Names the log of this run after the current day, month, hour and minute, unless it has its name.
void nameExchangeLog();

// Appends the line of request number `step`, or of answer number `step`, of operation `op`.
void logSent(int op, int step);
void logReceived(int op, int step);

}  // namespace zetnorv
