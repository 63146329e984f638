#include "KelEnv.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Environment.h"
#include "KelLib.h"

TEST(KelEnvTest, GetEnvTellsDefinedFromMissing) {
  Environment environment;
  environment.unset("KEL_ENV_TEST");
  EXPECT_EQ(KelGetEnv("KEL_ENV_TEST"), E_FAIL);
  environment.set("KEL_ENV_TEST", "value");
  EXPECT_EQ(KelGetEnv("KEL_ENV_TEST"), S_OK);
}

TEST(KelEnvTest, GetEnvCountsAnEmptyVariableAsDefined) {
  Environment environment;
  environment.set("KEL_ENV_TEST", "");
  EXPECT_EQ(KelGetEnv("KEL_ENV_TEST"), S_OK);
}

TEST(KelEnvTest, GetEnvOfNullFails) { EXPECT_EQ(KelGetEnv(nullptr), E_FAIL); }

TEST(KelEnvTest, GetEnvValueGivesTheText) {
  Environment environment;
  environment.set("KEL_ENV_TEST", "a value");
  const char* value = nullptr;
  EXPECT_EQ(KelGetEnvValue("KEL_ENV_TEST", &value), S_OK);
  EXPECT_STREQ(value, "a value");
}

TEST(KelEnvTest, GetEnvValueIsReadAfreshAtEveryCall) {
  Environment environment;
  const char* value = nullptr;
  environment.set("KEL_ENV_TEST", "one");
  EXPECT_EQ(KelGetEnvValue("KEL_ENV_TEST", &value), S_OK);
  environment.set("KEL_ENV_TEST", "two");
  EXPECT_EQ(KelGetEnvValue("KEL_ENV_TEST", &value), S_OK);
  EXPECT_STREQ(value, "two");
}

TEST(KelEnvTest, GetEnvValueFailsWithoutAText) {
  Environment environment;
  const char* value = "before";
  environment.set("KEL_ENV_TEST", "");
  EXPECT_EQ(KelGetEnvValue("KEL_ENV_TEST", &value), E_FAIL);
  EXPECT_EQ(value, nullptr);

  value = "before";
  environment.unset("KEL_ENV_TEST");
  EXPECT_EQ(KelGetEnvValue("KEL_ENV_TEST", &value), E_FAIL);
  EXPECT_EQ(value, nullptr);
}

TEST(KelEnvTest, GetEnvValueRefusesNullPointers) {
  const char* value = "before";
  EXPECT_EQ(KelGetEnvValue(nullptr, &value), E_FAIL);
  EXPECT_EQ(value, nullptr);
  EXPECT_EQ(KelGetEnvValue("PATH", nullptr), E_FAIL);
}

// Whether the process's user has a name is the system's business, so that both answers are looked
// at: a name that is there, and no text when there is none.
TEST(KelEnvTest, GetLoginNameGivesANameOrAnEmptyText) {
  Environment environment;
  environment.set("LOGNAME", "somebody");
  std::vector<char> buffer(256, '#');
  ASSERT_EQ(KelGetLoginName(buffer.data(), 256), S_OK);
  EXPECT_GT(std::string(buffer.data()).size(), 0u);
}

TEST(KelEnvTest, GetLoginNameIsCutToTheBuffer) {
  Environment environment;
  environment.set("LOGNAME", "somebody");
  char whole[256] = {};
  ASSERT_EQ(KelGetLoginName(whole, 256), S_OK);
  char cut[4] = {'#', '#', '#', '#'};
  EXPECT_EQ(KelGetLoginName(cut, 3), S_OK);
  EXPECT_EQ(std::string(cut), std::string(whole).substr(0, 2));
  EXPECT_EQ(cut[3], '#');
}

TEST(KelEnvTest, GetLoginNameRefusesABufferWithoutRoom) {
  char byte = '#';
  EXPECT_EQ(KelGetLoginName(&byte, 0), E_FAIL);
  EXPECT_EQ(KelGetLoginName(&byte, -1), E_FAIL);
  EXPECT_EQ(KelGetLoginName(nullptr, 25), E_FAIL);
  EXPECT_EQ(byte, '#');
}
