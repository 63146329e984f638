#include "KelPDMBaseServices.h"

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>

#include "KelLib.h"

namespace {

TEST(KelPDMBaseServicesTest, ASourceOverBytesBorrowsThem) {
  const char buffer[] = "<a/>behind";
  std::unique_ptr<KelInputSource> source;
  EXPECT_EQ(KelPDMBaseServices::CreateMemBufInputSourceFromChar(buffer, 4, "buildDB", source),
            S_OK);
  ASSERT_NE(source, nullptr);
  EXPECT_EQ(source->text(), "<a/>");
  EXPECT_EQ(source->text().data(), buffer);
  EXPECT_EQ(source->name(), "buildDB");
}

TEST(KelPDMBaseServicesTest, ASizeOf0MakesAnEmptySource) {
  std::unique_ptr<KelInputSource> source;
  EXPECT_EQ(KelPDMBaseServices::CreateMemBufInputSourceFromChar("x", 0, "n", source), S_OK);
  ASSERT_NE(source, nullptr);
  EXPECT_TRUE(source->text().empty());
}

TEST(KelPDMBaseServicesTest, ANullBufferOrANegativeSizeMakesNone) {
  auto source = std::make_unique<KelInputSource>(std::string("old"), "old");
  EXPECT_EQ(KelPDMBaseServices::CreateMemBufInputSourceFromChar(nullptr, 4, "n", source), E_FAIL);
  EXPECT_EQ(source, nullptr);
  source = std::make_unique<KelInputSource>(std::string("old"), "old");
  EXPECT_EQ(KelPDMBaseServices::CreateMemBufInputSourceFromChar("x", -1, "n", source), E_FAIL);
  EXPECT_EQ(source, nullptr);
}

TEST(KelPDMBaseServicesTest, ANullNameIsNoFailure) {
  std::unique_ptr<KelInputSource> source;
  EXPECT_EQ(KelPDMBaseServices::CreateMemBufInputSourceFromChar("x", 1, nullptr, source), S_OK);
  ASSERT_NE(source, nullptr);
  EXPECT_EQ(source->name(), "");
}

TEST(KelPDMBaseServicesTest, ASourceOverAStreamOwnsItsBytes) {
  std::unique_ptr<KelInputSource> source;
  {
    std::ostringstream stream;
    stream.write("<a/>\0", 5);
    EXPECT_EQ(KelPDMBaseServices::CreateMemBufInputSourceFromOstr(stream, "msgBuildTemp", source),
              S_OK);
    EXPECT_EQ(stream.str(), "");
  }
  ASSERT_NE(source, nullptr);
  EXPECT_EQ(source->text(), std::string_view("<a/>\0", 5));
  EXPECT_EQ(source->name(), "msgBuildTemp");
}

TEST(KelPDMBaseServicesTest, TheStreamCanBeWrittenAgain) {
  std::ostringstream stream;
  stream << "first text that is long enough for the heap, surely";
  std::unique_ptr<KelInputSource> first;
  KelPDMBaseServices::CreateMemBufInputSourceFromOstr(stream, "n", first);
  stream << "second";
  std::unique_ptr<KelInputSource> second;
  KelPDMBaseServices::CreateMemBufInputSourceFromOstr(stream, "n", second);
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(second->text(), "second");
  EXPECT_EQ(first->text(), "first text that is long enough for the heap, surely");
}

TEST(KelPDMBaseServicesTest, AnEmptyStreamMakesAnEmptySource) {
  std::ostringstream stream;
  std::unique_ptr<KelInputSource> source;
  EXPECT_EQ(KelPDMBaseServices::CreateMemBufInputSourceFromOstr(stream, "n", source), S_OK);
  ASSERT_NE(source, nullptr);
  EXPECT_TRUE(source->text().empty());
}

}  // namespace
