// How tags compare and print; what they hold is in BaliseXML_test.cpp.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "BaliseXML.h"
#include "ConsoleCapture.h"
#include "NullReferenceTo.h"
#include "TraceRecorder.h"

namespace {

using Lines = std::vector<std::string>;
using Names = std::vector<const char*>;

constexpr const char* kNullTag = "BaliseXML operator == : balise == NULL";
constexpr const char* kName = "Problem with _name.";
constexpr const char* kAttributeCount = "Problem with _nbAttributs.";
constexpr const char* kAttribute = "Problem with _attribut[i].";
constexpr const char* kChildCount = "Problem with _nbChildren.";
constexpr const char* kChild = "Problem with _child[i].";

BaliseXML tag(const char* name, const Names& attributs = {}, const Names& children = {}) {
  BaliseXML result(name);
  for (const char* attribut : attributs) result.addAttributP(AttributXML(attribut, "v"));
  for (const char* child : children) result.addChildP(BaliseXML(child));
  return result;
}

BaliseXML around(const char* name, const BaliseXML& child) {
  BaliseXML result(name);
  result.addChildP(child);
  return result;
}

// Slots as a refused allocation leaves them.
BaliseXML withoutChild(BaliseXML result, int i) {
  delete result._child[i];
  result._child[i] = nullptr;
  return result;
}
BaliseXML withoutAttribut(BaliseXML result, int i) {
  delete result._attribut[i];
  result._attribut[i] = nullptr;
  return result;
}

struct Case {
  const char* what;
  BaliseXML left;
  BaliseXML right;
  Lines lines;  // none when the two are equal
};

void expectEach(const std::vector<Case>& cases) {
  for (const Case& c : cases) {
    TraceRecorder trace;
    EXPECT_EQ(c.lines.empty() ? 1 : 0, c.left == c.right) << c.what;
    EXPECT_EQ(c.lines, trace.texts()) << c.what;
    for (const TraceRecorder::Line& line : trace.lines()) EXPECT_EQ(2, line.level) << c.what;
  }
}

TEST(BaliseXMLComparisonTest, ComparesTheBeginningsOfNames) {
  expectEach({{"same", tag("Doc"), tag("Doc"), {}},
              {"shorter on the left", tag("Doc"), tag("Document"), {}},
              {"shorter on the right", tag("Document"), tag("Doc"), {kName}},
              {"other case", tag("Doc"), tag("doc"), {kName}},
              {"empty on the left", tag(""), tag("Doc"), {}},
              {"none on the left", tag(nullptr), tag("Doc"), {}},
              {"empty on the right", tag("Doc"), tag(""), {kName}},
              {"none on the right", tag("Doc"), tag(nullptr), {kName}},
              {"none on both sides", tag(nullptr), tag(nullptr), {}}});
}

TEST(BaliseXMLComparisonTest, ComparesAttributesPlaceByPlace) {
  expectEach({{"same", tag("T", {"a", "b"}), tag("T", {"a", "b"}), {}},
              {"other order", tag("T", {"a", "b"}), tag("T", {"b", "a"}), {kAttribute}},
              {"second differs", tag("T", {"a", "b"}), tag("T", {"a", "c"}), {kAttribute}},
              {"shorter on the left", tag("T", {"Ref"}), tag("T", {"Reference"}), {}},
              {"shorter on the right", tag("T", {"Reference"}), tag("T", {"Ref"}), {kAttribute}},
              {"more on the left", tag("T", {"a", "b"}), tag("T", {"a"}), {kAttributeCount}},
              {"more on the right", tag("T", {"a"}), tag("T", {"a", "b"}), {kAttributeCount}}});
}

TEST(BaliseXMLComparisonTest, LeavesAttributeValuesOut) {
  BaliseXML left("Document");
  BaliseXML right("Document");
  left.addAttributP(AttributXML("Identifier", "1"));
  right.addAttributP(AttributXML("Identifier", "2"));
  EXPECT_EQ(1, left == right);
}

TEST(BaliseXMLComparisonTest, LeavesLevelsOut) {
  BaliseXML left("Document");
  left._hierarchie = 4;
  EXPECT_EQ(1, left == BaliseXML("Document"));
}

TEST(BaliseXMLComparisonTest, ComparesChildrenPlaceByPlace) {
  expectEach(
      {{"same", tag("T", {}, {"a", "b"}), tag("T", {}, {"a", "b"}), {}},
       {"other order", tag("T", {}, {"a", "b"}), tag("T", {}, {"b", "a"}), {kName, kChild}},
       {"shorter on the left", tag("T", {}, {"Doc"}), tag("T", {}, {"Document"}), {}},
       {"shorter on the right", tag("T", {}, {"Document"}), tag("T", {}, {"Doc"}), {kName, kChild}},
       {"more on the left", tag("T", {}, {"a", "b"}), tag("T", {}, {"a"}), {kChildCount}},
       {"more on the right", tag("T", {}, {"a"}), tag("T", {}, {"a", "b"}), {kChildCount}}});
}

TEST(BaliseXMLComparisonTest, TellsEveryLevelOfADifferenceFromInsideOut) {
  expectEach({{"grandchild's name",
               around("T", around("c", tag("d"))),
               around("T", around("c", tag("e"))),
               {kName, kChild, kChild}},
              {"grandchild's attributes",
               around("T", around("c", tag("d", {"a"}))),
               around("T", around("c", tag("d"))),
               {kAttributeCount, kChild, kChild}},
              {"child's children",
               around("T", around("c", tag("d"))),
               around("T", tag("c")),
               {kChildCount, kChild}}});
}

TEST(BaliseXMLComparisonTest, TellsTheFirstDifferenceOnly) {
  expectEach(
      {{"name before attributes", tag("A", {"a"}), tag("B"), {kName}},
       {"attribute count before children",
        tag("T", {"a"}, {"c"}),
        tag("T", {}, {}),
        {kAttributeCount}},
       {"attributes before children", tag("T", {"a"}, {"c"}), tag("T", {"b"}, {}), {kAttribute}},
       {"one attribute of two", tag("T", {"a", "b"}), tag("T", {"x", "y"}), {kAttribute}},
       {"one child of two", tag("T", {}, {"a", "b"}), tag("T", {}, {"x", "y"}), {kName, kChild}}});
}

TEST(BaliseXMLComparisonTest, AnEmptySlotIsADifference) {
  const BaliseXML whole = tag("T", {"a"}, {"c"});
  const BaliseXML noAttribut = withoutAttribut(whole, 0);
  const BaliseXML noChild = withoutChild(whole, 0);
  expectEach({{"attribute on the right", whole, noAttribut, {kAttribute}},
              {"attribute on the left", noAttribut, whole, {kAttribute}},
              {"attribute on both sides", noAttribut, noAttribut, {kAttribute}},
              {"child on the right", whole, noChild, {kNullTag, kChild}},
              {"child on the left", noChild, whole, {kChild}},
              {"child on both sides", noChild, noChild, {kChild}}});
}

TEST(BaliseXMLComparisonTest, ANullReferenceIsTracedAndUnequal) {
  TraceRecorder trace;
  EXPECT_EQ(0, tag("") == nullReferenceTo<BaliseXML>());
  EXPECT_EQ(Lines{kNullTag}, trace.texts());
  EXPECT_EQ(2, trace.lines()[0].level);
}

TEST(BaliseXMLComparisonTest, ANullPointerIsTracedAndUnequal) {
  TraceRecorder trace;
  EXPECT_EQ(0, tag("").equals(nullptr));
  EXPECT_EQ(Lines{kNullTag}, trace.texts());
}

TEST(BaliseXMLComparisonTest, PrintsNameAndAttributesThenChildren) {
  BaliseXML printed = tag("Document", {"Type"}, {"Reference"});
  printed._child[0]->addAttributP(AttributXML("Name", ""));
  TraceRecorder trace;
  ConsoleCapture console;
  printed.print();
  EXPECT_EQ("Document\nType  v\nReference\nName  error: NULL \n", console.text());
  EXPECT_EQ((Lines{"################## ", " NBAttr: 1", " nb child 1", "################## ",
                   " NBAttr: 1", " nb child 0"}),
            trace.texts());
  for (const TraceRecorder::Line& line : trace.lines()) EXPECT_EQ(2, line.level);
}

TEST(BaliseXMLComparisonTest, PrintsEmptySlotsAsTraceLines) {
  const BaliseXML printed = withoutChild(withoutAttribut(tag("T", {"a", "b"}, {"c", "d"}), 0), 1);
  TraceRecorder trace;
  ConsoleCapture console;
  printed.print();
  EXPECT_EQ("T\nb  v\nc\n", console.text());
  EXPECT_EQ((Lines{"################## ", " NBAttr: 2", "Attribut NULL", " nb child 2",
                   "################## ", " NBAttr: 0", " nb child 0", "Attribut NULL"}),
            trace.texts());
}

TEST(BaliseXMLComparisonTest, PrintsATagWithoutNameAsAnError) {
  TraceRecorder trace;
  ConsoleCapture console;
  BaliseXML(nullptr).print();
  EXPECT_EQ("error: NULL \n", console.text());
  EXPECT_EQ((Lines{"################## ", " NBAttr: 0", " nb child 0"}), trace.texts());
}

}  // namespace
