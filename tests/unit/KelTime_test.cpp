#include "KelTime.h"

#include <gtest/gtest.h>

#include <ctime>
#include <tuple>

namespace {

using Fields = std::tuple<int, int, int, int, int, int>;

Fields fieldsOf(const KelTime& time) {
  return {time.GetYear(), time.GetMonth(),  time.GetDay(),
          time.GetHour(), time.GetMinute(), time.GetSecond()};
}

Fields localTime() {
  const std::time_t now = std::time(nullptr);
  const std::tm fields = *std::localtime(&now);
  return {fields.tm_year + 1900, fields.tm_mon + 1, fields.tm_mday,
          fields.tm_hour,        fields.tm_min,     fields.tm_sec};
}

}  // namespace

TEST(KelTimeTest, KeepsItsFields) {
  EXPECT_EQ(fieldsOf(KelTime(2008, 3, 12, 10, 15, 30)), Fields(2008, 3, 12, 10, 15, 30));
}

TEST(KelTimeTest, NeitherChecksNorNormalisesItsFields) {
  EXPECT_EQ(fieldsOf(KelTime(0, 13, -1, 25, 60, 99)), Fields(0, 13, -1, 25, 60, 99));
}

TEST(KelTimeTest, DefaultIsTheCurrentLocalTime) {
  const Fields before = localTime();
  const Fields now = fieldsOf(KelTime());
  const Fields after = localTime();
  EXPECT_LE(before, now);
  EXPECT_LE(now, after);
}
