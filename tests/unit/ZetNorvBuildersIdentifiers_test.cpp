// Identifiers taken out of requests.
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "ComparisonBench.h"
#include "Environment.h"
#include "Files.h"
#include "KelLib.h"
#include "NullReferenceTo.h"
#include "ScratchDirectory.h"
#include "TraceRecorder.h"
#include "ZetNorvBuilders.h"
#include "ZetNorvDb_Table.h"

namespace {

using Texts = std::vector<std::string>;

// One of the two operations, with the element and the line that are its own.
struct Extraction {
  const char* tag;
  const char* line;
  long (*run)(const char*, int, ZetNorvDb_Table&);
};

constexpr Extraction kExtractions[] = {
    {"LogObject", "ZetNorvBuilders::extractLogObject", ZetNorvBuilders::extractLogObject},
    {"Reference", "ZetNorvBuilders::extractRefObject", ZetNorvBuilders::extractRefObject},
};

Texts rowsOf(const ZetNorvDb_Table& table) {
  Texts rows;
  for (int i = 0; i < table.getSize(); ++i) {
    ZetNorvDb_Record record;
    table.getRecord(i, record);
    EXPECT_EQ(record.getSize(), 2);
    rows.push_back(std::string(record._data[0].gchar()) + "|" + record._data[1].gchar());
  }
  return rows;
}

}  // namespace

class ZetNorvBuildersIdentifiersTest : public testing::TestWithParam<Extraction> {
 protected:
  ZetNorvBuildersIdentifiersTest() : table(2, MString("identifier,info")) {}

  // Debug mode: logs go below the scratch directory.
  void debug() {
    environment.set("ZETNORV_DEBUG", "REPLAY");
    environment.set("ZET_LOG_NAME", "t");
    environment.set("App_ErrFile", scratch.path().string() + "/");
  }
  std::string log() const { return readBytes(scratch.file("t/Error/buildTemp.log")); }

  long extract(const std::string& bytes) {
    const std::vector<char> buffer(bytes.begin(), bytes.end());
    const char nothing = 0;
    return GetParam().run(buffer.empty() ? &nothing : buffer.data(),
                          static_cast<int>(buffer.size()), table);
  }

  // An element of this operation.
  static std::string element(const std::string& attributes, const std::string& content = "") {
    const std::string tag = GetParam().tag;
    return "<" + tag + " " + attributes + ">" + content + "</" + tag + ">";
  }

  Environment environment;
  ScratchDirectory scratch;
  TraceRecorder trace;
  ZetNorvDb_Table table;
};

INSTANTIATE_TEST_SUITE_P(Both, ZetNorvBuildersIdentifiersTest, testing::ValuesIn(kExtractions),
                         [](const auto& which) { return std::string(which.param.tag); });

TEST_P(ZetNorvBuildersIdentifiersTest, TakesTheIdentifiersInDocumentOrder) {
  const std::string xml = "<r>" + element("Identifier=\"1\"", element("Identifier=\"2\"")) +
                          "<deep>" + element("Identifier=\"3\"") + "</deep></r>";
  EXPECT_EQ(extract(message(321, xml)), 0);
  EXPECT_EQ(rowsOf(table), (Texts{"1|NULL", "2|NULL", "3|NULL"}));
  EXPECT_EQ(trace.texts(), Texts{GetParam().line});
  EXPECT_EQ(trace.lines().front().level, 2);
}

TEST_P(ZetNorvBuildersIdentifiersTest, TakesTheRootToo) {
  EXPECT_EQ(extract(message(321, element("Identifier=\"1\""))), 0);
  EXPECT_EQ(rowsOf(table), Texts{"1|NULL"});
}

TEST_P(ZetNorvBuildersIdentifiersTest, CutsAnIdentifierAtACommaIntoTheColumns) {
  const struct {
    const char* identifier;
    const char* row;
  } cases[] = {{"a,b", "a|b"},      {"a,b,c", "a|b"},     {",b", "NULL|b"},
               {"a,", "a|NULL"},    {"", "NULL|NULL"},    {"NULL", "NULL|NULL"},
               {"a b", "a b|NULL"}, {"a&#10;b", "a|NULL"}};
  for (const auto& c : cases) {
    table.Release();
    EXPECT_EQ(extract(message(321, element("Identifier=\"" + std::string(c.identifier) + "\""))),
              0);
    EXPECT_EQ(rowsOf(table), Texts{c.row}) << c.identifier;
  }
}

TEST_P(ZetNorvBuildersIdentifiersTest, AnAbsentIdentifierReadsNull) {
  EXPECT_EQ(extract(message(321, element("identifier=\"1\""))), 0);
  EXPECT_EQ(rowsOf(table), Texts{"NULL|NULL"});
}

TEST_P(ZetNorvBuildersIdentifiersTest, AppendsToTheTable) {
  const std::string bytes = message(321, element("Identifier=\"1\""));
  EXPECT_EQ(extract(bytes), 0);
  EXPECT_EQ(extract(bytes), 0);
  EXPECT_EQ(rowsOf(table), (Texts{"1|NULL", "1|NULL"}));
}

TEST_P(ZetNorvBuildersIdentifiersTest, TheTableIsAsLargeAsRowsAddedOneByOneMakeIt) {
  for (const bool released : {false, true}) {
    for (int before = 0; before < 6; ++before) {
      for (int count = 0; count < 8; ++count) {
        ZetNorvDb_Table expected(2, MString("identifier,info"));
        ZetNorvDb_Table filled(2, MString("identifier,info"));
        if (released) expected.Release();
        if (released) filled.Release();
        std::string xml = "<r>";
        for (int i = 0; i < before + count; ++i) expected.addRecord(MString("x"));
        for (int i = 0; i < before; ++i) filled.addRecord(MString("x"));
        for (int i = 0; i < count; ++i) xml += element("Identifier=\"x\"");
        const std::string bytes = message(321, xml + "</r>");
        GetParam().run(bytes.data(), static_cast<int>(bytes.size()), filled);
        EXPECT_EQ(rowsOf(filled), rowsOf(expected));
        EXPECT_EQ(filled._capacity, expected._capacity) << before << " and " << count;
      }
    }
  }
}

TEST_P(ZetNorvBuildersIdentifiersTest, OtherElementsAreNotTaken) {
  EXPECT_EQ(extract(message(321,
                            "<r><LogObjects Identifier=\"1\"/><References Identifier=\"2\"/>"
                            "<Document Identifier=\"3\"/></r>")),
            1);
  EXPECT_EQ(table.getSize(), 0);
  EXPECT_EQ(trace.texts(), Texts{GetParam().line});
}

TEST_P(ZetNorvBuildersIdentifiersTest, ARefusedRequestIsCalledAsInStaging) {
  EXPECT_EQ(extract(message(321, "<r>")), E_FAIL);
  EXPECT_EQ(trace.refusedDocument(), "msgBuildTemp");
}

TEST_P(ZetNorvBuildersIdentifiersTest, TextThatIsNoDocumentIsTraced) {
  for (const std::string& bytes :
       {std::string(), std::string("abc"), message(321, ""), message(321, "<r>"),
        message(321, element("Identifier=\"1\"") + "<r/>")}) {
    trace.clear();
    EXPECT_EQ(extract(bytes), E_FAIL);
    EXPECT_EQ(trace.texts(), (Texts{GetParam().line, "buildTemp Problem XMLParse"}));
    EXPECT_EQ(table.getSize(), 0);
  }
}

TEST_P(ZetNorvBuildersIdentifiersTest, AMessageCutAtAnyByteGivesNoRow) {
  const std::string whole = message(321, element("Identifier=\"1\"", "text"));
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_EQ(extract(whole.substr(0, length)), E_FAIL) << length;
  }
  EXPECT_EQ(table.getSize(), 0);
}

TEST_P(ZetNorvBuildersIdentifiersTest, ANullMessageHasNoSource) {
  for (const int size : {8, 0, -1}) {
    trace.clear();
    EXPECT_EQ(GetParam().run(nullptr, size, table), E_FAIL);
    EXPECT_EQ(trace.texts(),
              (Texts{GetParam().line, "buildTemp Problem CreateMemBufInputSourceFromChar"}));
  }
}

TEST_P(ZetNorvBuildersIdentifiersTest, ANegativeSizeIsNoDocument) {
  for (const int size : {-1, INT_MIN}) {
    trace.clear();
    EXPECT_EQ(GetParam().run("abcd", size, table), E_FAIL);
    EXPECT_EQ(trace.texts(), (Texts{GetParam().line, "buildTemp Problem XMLParse"}));
  }
}

TEST_P(ZetNorvBuildersIdentifiersTest, ANullTableIsTraced) {
  const std::string bytes = message(321, element("Identifier=\"1\""));
  EXPECT_EQ(GetParam().run(bytes.data(), static_cast<int>(bytes.size()),
                           nullReferenceTo<ZetNorvDb_Table>()),
            E_FAIL);
  EXPECT_EQ(trace.texts(), (Texts{GetParam().line, "extractObject: table == NULL"}));
}

TEST_P(ZetNorvBuildersIdentifiersTest, InDebugModeTheTextIsLogged) {
  debug();
  const std::string xml = element("Identifier=\"1\"");
  EXPECT_EQ(extract(message(321, xml)), 0);
  EXPECT_EQ(log(), "\n ####################### \n" + xml);
  EXPECT_EQ(extract(message(321, "<r>")), E_FAIL);
  EXPECT_EQ(log(), "\n ####################### \n" + xml + "\n ####################### \n<r>");
}

TEST_P(ZetNorvBuildersIdentifiersTest, TheLoggedTextEndsAtItsFirstNul) {
  debug();
  EXPECT_EQ(extract(message(321, std::string("<r/>\0\0", 6))), 1);
  EXPECT_EQ(log(), "\n ####################### \n<r/>");
}

TEST_P(ZetNorvBuildersIdentifiersTest, AMessageWithoutTextIsLoggedAsSuch) {
  debug();
  for (const std::string& bytes : {std::string("abcd"), std::string("a"), std::string()}) {
    EXPECT_EQ(extract(bytes), E_FAIL);
  }
  EXPECT_EQ(GetParam().run(nullptr, 8, table), E_FAIL);
  std::string expected;
  for (int i = 0; i < 4; ++i) expected += "\n ####################### \nca marche pas";
  EXPECT_EQ(log(), expected);
}

TEST_P(ZetNorvBuildersIdentifiersTest, OutsideDebugModeNothingIsLogged) {
  environment.set("ZET_LOG_NAME", "t");
  environment.set("App_ErrFile", scratch.path().string() + "/");
  EXPECT_EQ(extract(message(321, element("Identifier=\"1\""))), 0);
  EXPECT_EQ(namesIn(scratch.path().string()), Texts{});
}
