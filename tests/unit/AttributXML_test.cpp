#include "AttributXML.h"

#include <gtest/gtest.h>

#include <string>

#include "ConsoleCapture.h"
#include "CopyOfItself.h"
#include "NullReferenceTo.h"
#include "TraceRecorder.h"

namespace {

void expectEmpty(const AttributXML& attribut) {
  EXPECT_TRUE(attribut._name.isNull());
  EXPECT_TRUE(attribut._value.isNull());
}

TEST(AttributXMLTest, IsEmptyByDefault) { expectEmpty(AttributXML()); }

TEST(AttributXMLTest, KeepsNameAndValue) {
  const AttributXML attribut("Type", "Part");
  EXPECT_STREQ("Type", attribut._name.gchar());
  EXPECT_STREQ("Part", attribut.getValue().gchar());
}

TEST(AttributXMLTest, CutsBothAtTheirFirstLineFeed) {
  const AttributXML attribut("Ty\npe", "Pa\nrt");
  EXPECT_STREQ("Ty", attribut._name.gchar());
  EXPECT_STREQ("Pa", attribut.getValue().gchar());
}

TEST(AttributXMLTest, NullTextsGiveEmptyOnes) { expectEmpty(AttributXML(nullptr, nullptr)); }

TEST(AttributXMLTest, TheValueHandedOutIsACopy) {
  const AttributXML attribut("Type", "Part");
  MString value = attribut.getValue();
  value.set("changed");
  EXPECT_STREQ("Part", attribut.getValue().gchar());
}

TEST(AttributXMLTest, ACopyIsItsOwn) {
  AttributXML attribut("Type", "Part");
  const AttributXML copy(attribut);
  attribut._name.set("changed");
  attribut._value.set("changed");
  EXPECT_STREQ("Type", copy._name.gchar());
  EXPECT_STREQ("Part", copy._value.gchar());
}

TEST(AttributXMLTest, ACopyOfItselfOrOfANullReferenceIsEmpty) {
  CopyOfItself<AttributXML> self;
  expectEmpty(*self);
  expectEmpty(AttributXML(nullReferenceTo<AttributXML>()));
}

TEST(AttributXMLTest, AssignmentCopiesBoth) {
  AttributXML target("old", "old");
  const AttributXML source("Type", "Part");
  EXPECT_EQ(&target, &(target = source));
  EXPECT_STREQ("Type", target._name.gchar());
  EXPECT_STREQ("Part", target._value.gchar());
  EXPECT_NE(source._name.gchar(), target._name.gchar());
}

TEST(AttributXMLTest, AssignmentToItselfEmptiesIt) {
  AttributXML attribut("Type", "Part");
  const AttributXML& same = attribut;
  attribut = same;
  expectEmpty(attribut);
}

TEST(AttributXMLTest, AssignmentFromANullReferenceChangesNothing) {
  AttributXML attribut("Type", "Part");
  attribut = nullReferenceTo<AttributXML>();
  EXPECT_STREQ("Type", attribut._name.gchar());
  EXPECT_STREQ("Part", attribut._value.gchar());
}

TEST(AttributXMLTest, ComparesTheBeginningsOfNamesOnly) {
  struct Case {
    const char* left;
    const char* right;
    int equal;
  };
  for (const Case& c : {Case{"Type", "Type", 1}, Case{"Ref", "Reference", 1},
                        Case{"Reference", "Ref", 0}, Case{"Type", "type", 0}, Case{"", "Type", 1},
                        Case{nullptr, nullptr, 1}, Case{"Type", "", 0}, Case{"Type", nullptr, 0}}) {
    const AttributXML left(c.left, "1");
    const AttributXML right(c.right, "2");
    EXPECT_EQ(c.equal, left == right)
        << testing::PrintToString(c.left) << testing::PrintToString(c.right);
  }
}

TEST(AttributXMLTest, ANullReferenceIsUnequalWithoutATrace) {
  TraceRecorder trace;
  EXPECT_EQ(0, AttributXML("Type", "Part") == nullReferenceTo<AttributXML>());
  EXPECT_EQ(0, AttributXML() == nullReferenceTo<AttributXML>());
  EXPECT_TRUE(trace.texts().empty());
}

TEST(AttributXMLTest, PrintsNameAndValueToTheConsoleOnly) {
  struct Case {
    AttributXML attribut;
    const char* line;
  };
  for (const Case& c : {Case{AttributXML("Type", "Part"), "Type  Part\n"},
                        Case{AttributXML("Type", ""), "Type  error: NULL \n"},
                        Case{AttributXML(nullptr, "Part"), "error: NULL   Part\n"},
                        Case{AttributXML(), "error: NULL   error: NULL \n"},
                        Case{AttributXML("%s", "%d"), "%s  %d\n"}}) {
    TraceRecorder trace;
    ConsoleCapture console;
    c.attribut.print();
    EXPECT_EQ(c.line, console.text());
    EXPECT_TRUE(trace.texts().empty());
  }
}

}  // namespace
