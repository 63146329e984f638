#include "MsgXML.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <utility>
#include <vector>

#include "ConsoleCapture.h"
#include "CopyOfItself.h"
#include "NullReferenceTo.h"
#include "TraceRecorder.h"

namespace {

using Lines = std::vector<std::string>;
using Names = std::vector<const char*>;

constexpr const char* kNullTag = "BaliseXML operator == : balise == NULL";
constexpr const char* kTag = "Problem with _balise[i]. ";

void fill(MsgXML& msg, const Names& names) {
  for (const char* name : names) msg.add(BaliseXML(name));
}

Lines namesOf(const MsgXML& msg) {
  Lines names;
  for (int i = 0; i < msg._nbBalises; ++i) {
    names.push_back(msg._balise[i] == nullptr ? "-" : msg._balise[i]->_name.gchar());
  }
  return names;
}

// The slot as a refused allocation leaves it.
void empty(MsgXML& msg, int i) {
  delete msg._balise[i];
  msg._balise[i] = nullptr;
}

TEST(MsgXMLTest, StartsWithoutTagsAndRoomFor5) {
  const MsgXML msg;
  EXPECT_EQ(0, msg.getNbBalises());
  EXPECT_EQ(0, msg._nbBalises);
  EXPECT_EQ(5, msg._capacity);
  ASSERT_NE(nullptr, msg._balise);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(nullptr, msg._balise[i]);
}

TEST(MsgXMLTest, AddKeepsADeepCopy) {
  MsgXML msg;
  BaliseXML tag("Document");
  tag.addChildP(BaliseXML("Reference"));
  msg.add(tag);
  tag._name.set("changed");
  tag._child[0]->_name.set("changed");
  EXPECT_EQ(1, msg.getNbBalises());
  EXPECT_STREQ("Document", msg._balise[0]->_name.gchar());
  EXPECT_STREQ("Reference", msg._balise[0]->_child[0]->_name.gchar());
}

TEST(MsgXMLTest, TheSixthTagGrowsTheCapacityFrom5To10) {
  MsgXML msg;
  fill(msg, {"1", "2", "3", "4", "5"});
  EXPECT_EQ(5, msg._capacity);
  msg.add(BaliseXML("6"));
  EXPECT_EQ(10, msg._capacity);
  EXPECT_EQ((Lines{"1", "2", "3", "4", "5", "6"}), namesOf(msg));
}

TEST(MsgXMLTest, ATagOfItsOwnCanBeAddedWhenItIsFull) {
  MsgXML msg;
  fill(msg, {"1", "2", "3", "4", "5"});
  msg.add(*msg._balise[0]);
  EXPECT_EQ((Lines{"1", "2", "3", "4", "5", "1"}), namesOf(msg));
}

TEST(MsgXMLTest, ANullReferenceIsTracedAndNotAdded) {
  TraceRecorder trace;
  MsgXML msg;
  msg.add(nullReferenceTo<BaliseXML>());
  EXPECT_EQ(0, msg.getNbBalises());
  EXPECT_EQ(Lines{"MsgXML: balise == NULL"}, trace.texts());
  EXPECT_EQ(2, trace.lines()[0].level);
}

TEST(MsgXMLTest, GrowingPassesOverAnEmptySlot) {
  MsgXML msg;
  fill(msg, {"1", "2", "3", "4", "5"});
  empty(msg, 0);
  msg.add(BaliseXML("6"));
  EXPECT_EQ((Lines{"-", "2", "3", "4", "5", "6"}), namesOf(msg));
}

TEST(MsgXMLTest, GivesTagsByIndexAndNullOutside) {
  MsgXML msg;
  fill(msg, {"a", "b"});
  EXPECT_EQ(msg._balise[0], msg.getBalise(0));
  EXPECT_EQ(msg._balise[1], msg.getBalise(1));
  for (int i : {-1, 2, 4, 5, INT_MIN, INT_MAX}) EXPECT_EQ(nullptr, msg.getBalise(i)) << i;
  EXPECT_EQ(nullptr, MsgXML().getBalise(0));
}

TEST(MsgXMLTest, FindsTheFirstTagWhoseNameBeginsTheSearchedOne) {
  MsgXML msg;
  fill(msg, {"Reference", "Ref", "Document", "Ref"});
  EXPECT_EQ(msg._balise[0], msg.findBalise("Reference"));
  EXPECT_EQ(msg._balise[1], msg.findBalise("Ref"));
  EXPECT_EQ(msg._balise[1], msg.findBalise("Refer"));
  EXPECT_EQ(msg._balise[2], msg.findBalise("Documents"));
  EXPECT_EQ(nullptr, msg.findBalise("Doc"));
  EXPECT_EQ(nullptr, msg.findBalise("document"));
  EXPECT_EQ(nullptr, msg.findBalise(""));
}

TEST(MsgXMLTest, FindsAFirstTagWithoutNameForEverything) {
  for (const char* name : {"", static_cast<const char*>(nullptr)}) {
    MsgXML msg;
    msg.add(BaliseXML(name));
    msg.add(BaliseXML("Document"));
    for (const char* searched : {"Document", "x", ""}) {
      EXPECT_EQ(msg._balise[0], msg.findBalise(searched)) << searched;
    }
  }
}

TEST(MsgXMLTest, AnEmptySlotEndsTheSearch) {
  MsgXML msg;
  fill(msg, {"a", "b", "c"});
  empty(msg, 1);
  EXPECT_EQ(msg._balise[0], msg.findBalise("a"));
  EXPECT_EQ(nullptr, msg.findBalise("c"));
}

TEST(MsgXMLTest, FindsNothingWhenEmpty) {
  TraceRecorder trace;
  EXPECT_EQ(nullptr, MsgXML().findBalise("a"));
  EXPECT_EQ(Lines{}, trace.texts());
}

TEST(MsgXMLTest, ANullNameIsTracedAndFindsNothing) {
  TraceRecorder trace;
  MsgXML msg;
  msg.add(BaliseXML(""));
  EXPECT_EQ(nullptr, msg.findBalise(nullptr));
  EXPECT_EQ(Lines{"MsgXML: name == NULL"}, trace.texts());
  EXPECT_EQ(2, trace.lines()[0].level);
}

TEST(MsgXMLTest, ComparesTagByTag) {
  struct Case {
    Names left;
    Names right;
    Lines lines;  // none when the two are equal
  };
  const Lines count = {"Problem with _nbBalises."};
  const Lines name = {"Problem with _name.", kTag};
  for (const Case& c : std::vector<Case>{
           {{}, {}, {}},
           {{"a", "b"}, {"a", "b"}, {}},
           {{"a", "b"}, {"b", "a"}, name},
           {{"a", "b"}, {"a", "c"}, name},
           {{"a", "b"}, {"x", "y"}, name},
           {{"Doc"}, {"Document"}, {}},
           {{"Document"}, {"Doc"}, name},
           {{"a"}, {"a", "b"}, count},
           {{"a", "b"}, {"a"}, count},
           {{}, {"a"}, count},
           {{"a"}, {}, count},
       }) {
    MsgXML left;
    MsgXML right;
    fill(left, c.left);
    fill(right, c.right);
    TraceRecorder trace;
    EXPECT_EQ(c.lines.empty() ? 1 : 0, left == right);
    EXPECT_EQ(c.lines, trace.texts());
    for (const TraceRecorder::Line& line : trace.lines()) EXPECT_EQ(2, line.level) << line.text;
  }
}

TEST(MsgXMLTest, ANullReferenceIsTracedAndUnequal) {
  TraceRecorder trace;
  EXPECT_EQ(0, MsgXML() == nullReferenceTo<MsgXML>());
  EXPECT_EQ(Lines{"MsgXML operator == : msg == NULL"}, trace.texts());
  EXPECT_EQ(2, trace.lines()[0].level);
}

TEST(MsgXMLTest, AnEmptySlotOnEitherSideIsADifference) {
  MsgXML whole;
  MsgXML holed;
  fill(whole, {"a"});
  fill(holed, {"a"});
  empty(holed, 0);
  struct Case {
    const MsgXML* left;
    const MsgXML* right;
    Lines lines;
  };
  for (const Case& c : {Case{&whole, &holed, {kNullTag, kTag}}, Case{&holed, &whole, {kTag}},
                        Case{&holed, &holed, {kTag}}}) {
    TraceRecorder trace;
    EXPECT_EQ(0, *c.left == *c.right);
    EXPECT_EQ(c.lines, trace.texts());
    for (const TraceRecorder::Line& line : trace.lines()) EXPECT_EQ(2, line.level) << line.text;
  }
}

TEST(MsgXMLTest, ACopyIsDeep) {
  MsgXML msg;
  fill(msg, {"1", "2", "3", "4", "5", "6"});
  msg._balise[0]->addChildP(BaliseXML("child"));
  empty(msg, 2);
  const MsgXML copy(msg);
  msg._balise[0]->_child[0]->_name.set("changed");
  msg._balise[1]->_name.set("changed");
  EXPECT_EQ((Lines{"1", "2", "-", "4", "5", "6"}), namesOf(copy));
  EXPECT_EQ(10, copy._capacity);
  EXPECT_STREQ("child", copy._balise[0]->_child[0]->_name.gchar());
}

TEST(MsgXMLTest, ACopyOfItselfOrOfANullReferenceHasNoTags) {
  CopyOfItself<MsgXML> self;
  MsgXML none(nullReferenceTo<MsgXML>());
  for (MsgXML* msg : {&*self, &none}) {
    EXPECT_EQ(0, msg->getNbBalises());
    EXPECT_EQ(5, msg->_capacity);
    msg->add(BaliseXML("a"));
    EXPECT_EQ(Lines{"a"}, namesOf(*msg));
  }
}

TEST(MsgXMLTest, AssignmentSharesTheTagsAndFreesNothing) {
  MsgXML source;
  fill(source, {"1", "2", "3", "4", "5", "6"});
  MsgXML target;
  target.add(BaliseXML("kept"));
  BaliseXML** const own = target._balise;
  EXPECT_EQ(&target, &(target = source));
  EXPECT_EQ(source._balise, target._balise);
  EXPECT_EQ(6, target._nbBalises);
  EXPECT_EQ(10, target._capacity);
  EXPECT_STREQ("kept", own[0]->_name.gchar());
  // Given back what it had: the two must not both be destroyed as they are.
  target._balise = own;
  target._nbBalises = 1;
}

TEST(MsgXMLTest, AssignmentFromItselfOrANullReferenceChangesNothing) {
  MsgXML msg;
  fill(msg, {"a", "b"});
  const MsgXML& same = msg;
  msg = same;
  msg = nullReferenceTo<MsgXML>();
  EXPECT_EQ((Lines{"a", "b"}), namesOf(msg));
}

TEST(MsgXMLTest, PrintsOnlyTagsWhoseNameBeginsWithEBom) {
  MsgXML msg;
  fill(msg, {"E-BOM", "E-BOMLine", "E-BO", "E-B", "e-bom", "Document", "XE-BOM", ""});
  TraceRecorder trace;
  ConsoleCapture console;
  msg.print();
  EXPECT_EQ("E-BOM\nE-BOMLine\n", console.text());
  EXPECT_EQ((Lines{"Affichage du message XML:: 8", "################## ", " NBAttr: 0",
                   " nb child 0", "################## ", " NBAttr: 0", " nb child 0"}),
            trace.texts());
  for (const TraceRecorder::Line& line : trace.lines()) EXPECT_EQ(2, line.level);
}

TEST(MsgXMLTest, PrintsAnEmptySlotAsATraceLine) {
  MsgXML msg;
  fill(msg, {"Document", "E-BOM"});
  msg.add(BaliseXML(nullptr));
  empty(msg, 1);
  TraceRecorder trace;
  ConsoleCapture console;
  msg.print();
  EXPECT_EQ("", console.text());
  EXPECT_EQ((Lines{"Affichage du message XML:: 3", " RIEN DE RIEN "}), trace.texts());
  for (const TraceRecorder::Line& line : trace.lines()) EXPECT_EQ(2, line.level) << line.text;
}

TEST(MsgXMLTest, WriteLogDoesNothing) {
  MsgXML msg;
  msg.add(BaliseXML("E-BOM"));
  TraceRecorder trace;
  ConsoleCapture console;
  msg.writeLog();
  EXPECT_EQ("", console.text());
  EXPECT_EQ(Lines{}, trace.texts());
  EXPECT_EQ(Lines{"E-BOM"}, namesOf(msg));
}

}  // namespace
