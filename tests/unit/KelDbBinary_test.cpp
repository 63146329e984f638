#include "KelDbBinary.h"

#include <gtest/gtest.h>

#include <string>

TEST(KelDbBinaryTest, DefaultHasNoBytes) {
  const KelDbBinary none;
  EXPECT_EQ(none.GetSize(), 0);
  EXPECT_STREQ(none.GetHexaValue().ConvertToChar(), "");
}

TEST(KelDbBinaryTest, HexaValueIsUpperCaseTwoCharactersAByte) {
  const unsigned char bytes[] = {0x00, 0x0A, 0xA0, 0x7F, 0x80, 0xFF, 0x12, 0xCD};
  EXPECT_STREQ(KelDbBinary(bytes, 8).GetHexaValue().ConvertToChar(), "000AA07F80FF12CD");
}

TEST(KelDbBinaryTest, HexaValueCoversEveryByte) {
  for (int value = 0; value < 256; ++value) {
    const auto byte = static_cast<unsigned char>(value);
    char expected[3];
    std::snprintf(expected, sizeof expected, "%02X", value);
    EXPECT_STREQ(KelDbBinary(&byte, 1).GetHexaValue().ConvertToChar(), expected);
  }
}

TEST(KelDbBinaryTest, TakesACopyOfAsManyBytesAsItIsTold) {
  unsigned char bytes[] = {0x01, 0x02, 0x03};
  const KelDbBinary binary(bytes, 2);
  bytes[0] = 0xFF;
  EXPECT_EQ(binary.GetSize(), 2);
  EXPECT_STREQ(binary.GetHexaValue().ConvertToChar(), "0102");
}

TEST(KelDbBinaryTest, NullBytesAndSizesBelowOneGiveNone) {
  const unsigned char bytes[] = {0x01};
  EXPECT_EQ(KelDbBinary(nullptr, 8).GetSize(), 0);
  EXPECT_EQ(KelDbBinary(bytes, 0).GetSize(), 0);
  EXPECT_EQ(KelDbBinary(bytes, -1).GetSize(), 0);
}

TEST(KelDbBinaryTest, EqualityComparesSizeAndEveryByte) {
  const unsigned char bytes[] = {0x01, 0x00, 0x02};
  const unsigned char others[] = {0x01, 0x00, 0x03};
  EXPECT_TRUE(KelDbBinary(bytes, 3) == KelDbBinary(bytes, 3));
  EXPECT_FALSE(KelDbBinary(bytes, 3) == KelDbBinary(others, 3));
  EXPECT_TRUE(KelDbBinary(bytes, 2) == KelDbBinary(others, 2));
  EXPECT_FALSE(KelDbBinary(bytes, 2) == KelDbBinary(bytes, 3));
  EXPECT_TRUE(KelDbBinary() == KelDbBinary(bytes, 0));
}
