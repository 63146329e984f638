#include "ExchangeLog.h"

#include <cstdio>

#include "KelTime.h"
#include "ZetNorvEmul.h"
#include "ZetNorvToolBox.h"

namespace zetnorv {

namespace {

void logLine(const char* direction, int op, int step) {
  char line[80];
  std::snprintf(line, sizeof line, "[%s] Msg %03d  (Nb pas : %02d) \n", direction, op, step);
  ZetNorvToolBox::writeLog(ZetNorvEmul::_date, line);
}

}  // namespace

void nameExchangeLog() {
  if (!ZetNorvEmul::_date.isNull()) return;
  const KelTime now;
  char name[80];
  std::snprintf(name, sizeof name, "%02d%02d-%02d%02dSNDRCV.log", now.GetDay(), now.GetMonth(),
                now.GetHour(), now.GetMinute());
  ZetNorvEmul::_date.set(name);
}

void logSent(int op, int step) { logLine("SND", op, step); }

void logReceived(int op, int step) { logLine("RCV", op, step); }

}  // namespace zetnorv
