#include "Msg.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ConsoleCapture.h"
#include "CopyOfItself.h"
#include "NullReferenceTo.h"
#include "TraceRecorder.h"

namespace {

using Lines = std::vector<std::string>;

constexpr const char* kNullComponent = "Composant: &composant == NULL";

Composant field(const char* bytes) {
  return Composant("Field", bytes, static_cast<int>(std::string(bytes).size()), 1, "S");
}

// Adds one field for every text.
void fill(Msg& msg, const std::vector<const char*>& texts) {
  for (const char* text : texts) msg.add(field(text));
}

Lines textsOf(const Msg& msg) {
  Lines texts;
  for (int i = 0; i < msg._nbComposants; ++i) {
    texts.push_back(msg._composants[i] == nullptr ? "-" : msg._composants[i]->_buffer.gchar());
  }
  return texts;
}

// The slot as a refused allocation leaves it.
void empty(Msg& msg, int i) {
  delete msg._composants[i];
  msg._composants[i] = nullptr;
}

TEST(MsgTest, StartsWithoutFieldsAndRoomFor5) {
  const Msg msg;
  EXPECT_EQ(0, msg._nbComposants);
  EXPECT_EQ(5, msg._capacity);
  ASSERT_NE(nullptr, msg._composants);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(nullptr, msg._composants[i]);
}

TEST(MsgTest, AddKeepsACopyInOrder) {
  Msg msg;
  Composant composant = field("one");
  msg.add(composant);
  composant._buffer.set("changed");
  msg.add(composant);
  EXPECT_EQ((Lines{"one", "changed"}), textsOf(msg));
  EXPECT_NE(&composant, msg._composants[1]);
}

TEST(MsgTest, TheSixthFieldGrowsTheCapacityFrom5To10) {
  Msg msg;
  fill(msg, {"1", "2", "3", "4", "5"});
  EXPECT_EQ(5, msg._capacity);
  msg.add(field("6"));
  EXPECT_EQ(10, msg._capacity);
  EXPECT_EQ(6, msg._nbComposants);
  EXPECT_EQ((Lines{"1", "2", "3", "4", "5", "6"}), textsOf(msg));
}

TEST(MsgTest, GrowsBy5EveryTime) {
  Msg msg;
  for (int i = 0; i < 103; ++i) msg.add(field(std::to_string(i).c_str()));
  EXPECT_EQ(105, msg._capacity);
  EXPECT_STREQ("0", msg._composants[0]->_buffer.gchar());
  EXPECT_STREQ("102", msg._composants[102]->_buffer.gchar());
}

TEST(MsgTest, AFieldOfItsOwnCanBeAddedWhenItIsFull) {
  Msg msg;
  fill(msg, {"1", "2", "3", "4", "5"});
  msg.add(*msg._composants[0]);
  EXPECT_EQ((Lines{"1", "2", "3", "4", "5", "1"}), textsOf(msg));
}

TEST(MsgTest, ANullReferenceIsTracedAndNotAdded) {
  TraceRecorder trace;
  Msg msg;
  msg.add(nullReferenceTo<Composant>());
  EXPECT_EQ(0, msg._nbComposants);
  EXPECT_EQ(Lines{"Msg: Composant == NULL"}, trace.texts());
  EXPECT_EQ(2, trace.lines()[0].level);
}

TEST(MsgTest, GrowingPassesOverAnEmptySlot) {
  Msg msg;
  fill(msg, {"1", "2", "3", "4", "5"});
  empty(msg, 1);
  msg.add(field("6"));
  EXPECT_EQ((Lines{"1", "-", "3", "4", "5", "6"}), textsOf(msg));
}

TEST(MsgTest, TwoMessagesWithoutFieldsAreEqual) {
  TraceRecorder trace;
  EXPECT_EQ(1, Msg() == Msg());
  EXPECT_EQ(Lines{}, trace.texts());
}

TEST(MsgTest, ANullReferenceIsUnequalWithoutATrace) {
  TraceRecorder trace;
  const Msg none;
  Msg some;
  some.add(field("1"));
  EXPECT_EQ(0, none == nullReferenceTo<Msg>());
  EXPECT_EQ(0, some == nullReferenceTo<Msg>());
  EXPECT_EQ(Lines{}, trace.texts());
}

TEST(MsgTest, ComparesFieldByField) {
  struct Case {
    std::vector<const char*> left;
    std::vector<const char*> right;
    int equal;
  };
  const Case cases[] = {
      {{"a", "b"}, {"a", "b"}, 1},
      {{"a", "b"}, {"b", "a"}, 0},
      {{"a", "b"}, {"a", "c"}, 0},
      {{"a", "b"}, {"c", "b"}, 0},
      {{"a"}, {"a", "b"}, 0},
      {{"a", "b"}, {"a"}, 0},
      {{}, {"a"}, 0},
      {{"a"}, {}, 0},
      {{"1", "2", "3", "4", "5", "6"}, {"1", "2", "3", "4", "5", "6"}, 1},
      {{"1", "2", "3", "4", "5", "6"}, {"1", "2", "3", "4", "5", "7"}, 0},
  };
  for (const Case& c : cases) {
    Msg left;
    Msg right;
    fill(left, c.left);
    fill(right, c.right);
    EXPECT_EQ(c.equal, left == right)
        << testing::PrintToString(c.left) << testing::PrintToString(c.right);
  }
}

TEST(MsgTest, AFieldThatIsNotComparedMakesItUnequalToItself) {
  Msg msg;
  msg.add(field("a"));
  EXPECT_EQ(1, msg == msg);
  msg.add(Composant("Header", "b", 1, 0, "S"));
  EXPECT_EQ(0, msg == msg);
}

TEST(MsgTest, AnEmptySlotOnEitherSideIsTracedAndUnequal) {
  Msg whole;
  Msg holed;
  fill(whole, {"a", "b"});
  fill(holed, {"a", "b"});
  empty(holed, 1);
  for (const auto& [left, right] :
       {std::pair(&whole, &holed), std::pair(&holed, &whole), std::pair(&holed, &holed)}) {
    TraceRecorder trace;
    EXPECT_EQ(0, *left == *right);
    EXPECT_EQ(Lines{kNullComponent}, trace.texts());
    EXPECT_EQ(2, trace.lines()[0].level);
  }
}

TEST(MsgTest, TheFirstDifferenceEndsTheComparison) {
  Msg left;
  Msg right;
  fill(left, {"a", "b"});
  fill(right, {"x", "b"});
  empty(right, 1);
  TraceRecorder trace;
  EXPECT_EQ(0, left == right);
  EXPECT_EQ(Lines{}, trace.texts());
}

TEST(MsgTest, AssignmentSharesTheFields) {
  Msg source;
  fill(source, {"1", "2", "3", "4", "5", "6"});
  Msg target;
  Composant** const own = target._composants;
  EXPECT_EQ(&target, &(target = source));
  EXPECT_EQ(source._composants, target._composants);
  EXPECT_EQ(6, target._nbComposants);
  EXPECT_EQ(10, target._capacity);
  EXPECT_EQ(1, target == source);
  // Given back what it had: the two must not both be destroyed as they are.
  target._composants = own;
  target._nbComposants = 0;
}

TEST(MsgTest, AssignmentFreesNothing) {
  Msg source;
  Msg target;
  target.add(field("kept"));
  Composant** const own = target._composants;
  target = source;
  EXPECT_STREQ("kept", own[0]->_buffer.gchar());
  target._composants = own;
  target._nbComposants = 1;
}

TEST(MsgTest, AssignmentFromItselfOrANullReferenceChangesNothing) {
  Msg msg;
  fill(msg, {"a", "b"});
  const Msg& same = msg;
  msg = same;
  EXPECT_EQ((Lines{"a", "b"}), textsOf(msg));
  msg = nullReferenceTo<Msg>();
  EXPECT_EQ((Lines{"a", "b"}), textsOf(msg));
}

TEST(MsgTest, ACopyHasFieldsOfItsOwn) {
  Msg msg;
  fill(msg, {"1", "2", "3", "4", "5", "6"});
  empty(msg, 2);
  const Msg copy(msg);
  EXPECT_EQ((Lines{"1", "2", "-", "4", "5", "6"}), textsOf(copy));
  EXPECT_EQ(10, copy._capacity);
  EXPECT_NE(msg._composants[0], copy._composants[0]);
}

TEST(MsgTest, ACopyOfItselfOrOfANullReferenceHasNoFields) {
  CopyOfItself<Msg> self;
  Msg none(nullReferenceTo<Msg>());
  for (Msg* msg : {&*self, &none}) {
    EXPECT_EQ(0, msg->_nbComposants);
    EXPECT_EQ(5, msg->_capacity);
    msg->add(field("a"));
    EXPECT_EQ(Lines{"a"}, textsOf(*msg));
  }
}

TEST(MsgTest, PrintsEveryField) {
  Msg msg;
  fill(msg, {"abc", "x", "de"});
  empty(msg, 1);
  TraceRecorder trace;
  ConsoleCapture console;
  msg.print();
  EXPECT_EQ("FieldSabc\nFieldSde\n", console.text());
  EXPECT_EQ(
      (Lines{"## Message: Nombre de composant : 3", "## Message: Comp: 0",
             "## Composant  Nom : ", "Taille: 3", " Type ", " Buffer : ", "## Message: Comp: 1",
             "## Message: Comp: 2", "## Composant  Nom : ", "Taille: 2", " Type ", " Buffer : "}),
      trace.texts());
  for (const TraceRecorder::Line& line : trace.lines()) EXPECT_EQ(2, line.level) << line.text;
}

TEST(MsgTest, PrintsTheCountOfAnEmptyMessage) {
  TraceRecorder trace;
  ConsoleCapture console;
  Msg().print();
  EXPECT_EQ("", console.text());
  EXPECT_EQ(Lines{"## Message: Nombre de composant : 0"}, trace.texts());
}

}  // namespace
