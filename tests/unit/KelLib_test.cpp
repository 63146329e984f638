#include "KelLib.h"

#include <gtest/gtest.h>

TEST(KelLibTest, SuccessIsZero) {
  EXPECT_EQ(S_OK, 0);
  EXPECT_EQ(KelLibSucces, 0);
}

TEST(KelLibTest, FailureIsTheBitPatternAsANegativeNumber) {
  EXPECT_LT(E_FAIL, 0);
  EXPECT_EQ(E_FAIL, -2147467259L);
}

TEST(KelLibTest, SucceededAndFailedGoByTheSign) {
  EXPECT_TRUE(SUCCEEDED(S_OK));
  EXPECT_TRUE(SUCCEEDED(1));
  EXPECT_FALSE(SUCCEEDED(E_FAIL));
  EXPECT_FALSE(FAILED(S_OK));
  EXPECT_FALSE(FAILED(1));
  EXPECT_TRUE(FAILED(E_FAIL));
}
