// A point of calendar time, to the second, in local time.
#pragma once

#include "KelExport.h"

class KEL_FOUNDATION_EXPORT KelTime {
 public:
  // The current local time.
  KelTime();

  // The given fields, kept as they are: nothing is checked or normalised. `month` and `day` count
  // from 1.
  KelTime(int year, int month, int day, int hour, int minute, int second);

  int GetYear() const { return _year; }
  int GetMonth() const { return _month; }
  int GetDay() const { return _day; }
  int GetHour() const { return _hour; }
  int GetMinute() const { return _minute; }
  int GetSecond() const { return _second; }

 private:
  int _year;
  int _month;
  int _day;
  int _hour;
  int _minute;
  int _second;
};
