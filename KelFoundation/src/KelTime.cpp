#include "KelTime.h"

#include <ctime>

#include "KelPlatform.h"

namespace {

KelTime Now() {
  std::tm fields{};
  // The first day of 1970 stands for a time that the system cannot tell.
  fields.tm_year = 70;
  fields.tm_mday = 1;
  kel::LocalTime(std::time(nullptr), &fields);
  return KelTime(fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday, fields.tm_hour,
                 fields.tm_min, fields.tm_sec);
}

}  // namespace

KelTime::KelTime() : KelTime(Now()) {}

KelTime::KelTime(int year, int month, int day, int hour, int minute, int second)
    : _year(year), _month(month), _day(day), _hour(hour), _minute(minute), _second(second) {}
