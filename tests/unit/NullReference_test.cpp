#include "NullReference.h"

#include <gtest/gtest.h>

#include <string>

#include "NullReferenceTo.h"

namespace {

// Its '&' is not its address.
struct Deceptive {
  const Deceptive* operator&() const { return nullptr; }
};

TEST(NullReferenceTest, TellsANullReference) {
  EXPECT_TRUE(zetnorv::isNullReference(nullReferenceTo<std::string>()));
  EXPECT_TRUE(zetnorv::isNullReference(nullReferenceTo<int>()));
  EXPECT_TRUE(zetnorv::isNullReference(nullReferenceTo<char*>()));
}

TEST(NullReferenceTest, TakesEveryOtherAsItIs) {
  const std::string text;
  char* const pointer = nullptr;
  EXPECT_FALSE(zetnorv::isNullReference(text));
  EXPECT_FALSE(zetnorv::isNullReference(pointer));
  EXPECT_FALSE(zetnorv::isNullReference(Deceptive()));
}

}  // namespace
