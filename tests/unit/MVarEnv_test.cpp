#include "MVarEnv.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace {

TEST(MVarEnvTest, HoldsNothingAndAssignmentReturnsItsTarget) {
  static_assert(std::is_empty_v<MVarEnv>);
  MVarEnv target;
  const MVarEnv source;
  EXPECT_EQ(&(target = source), &target);
}

}  // namespace
