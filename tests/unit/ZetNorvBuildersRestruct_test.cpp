// Completing the name-only children of an XML message.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "MessageModels.h"
#include "TraceRecorder.h"
#include "ZetNorvBuilders.h"

namespace {

using Texts = std::vector<std::string>;

BaliseXML tagWith(const char* name, const std::vector<const char*>& children,
                  const char* value = nullptr) {
  BaliseXML tag(name);
  if (value != nullptr) tag.addAttributP(AttributXML("v", value));
  for (const char* child : children) tag.addChildP(BaliseXML(child));
  return tag;
}

// The operation as it is described, without any help: every child is looked up among all tags.
void restructNaively(MsgXML& msg) {
  for (int i = 0; i < msg.getNbBalises(); ++i) {
    BaliseXML* tag = msg.getBalise(i);
    if (tag == nullptr) return;
    for (int c = 0; c < tag->getNbChildren(); ++c) {
      const MString name = tag->getChildP(c)->getName();
      BaliseXML* found = msg.findBalise(name.gchar());
      if (found == nullptr) continue;
      const BaliseXML copy(*found);
      tag->modifChildP(c, &copy);
    }
  }
}

// Empties the slot of a tag, as a refused allocation leaves it.
void empty(MsgXML& msg, int i) {
  delete msg._balise[i];
  msg._balise[i] = nullptr;
}

}  // namespace

class ZetNorvBuildersRestructTest : public testing::Test {
 protected:
  Texts restruct() {
    ZetNorvBuilders::restructMessage(&msg);
    return describe(msg);
  }

  TraceRecorder trace;
  MsgXML msg;
};

TEST_F(ZetNorvBuildersRestructTest, PutsTheTagsInTheirChildrensPlaces) {
  msg.add(tagWith("Answer", {"Document", "#text"}));
  msg.add(tagWith("Document", {}, "1"));
  EXPECT_EQ(restruct(), (Texts{"Answer(Document[v=1] #text)", "Document[v=1]"}));
  EXPECT_TRUE(trace.texts().empty());
}

TEST_F(ZetNorvBuildersRestructTest, ALaterTagIsCopiedWithItsNameOnlyChildren) {
  msg.add(tagWith("A", {"B"}));
  msg.add(tagWith("B", {"C"}));
  msg.add(tagWith("C", {}, "1"));
  EXPECT_EQ(restruct(), (Texts{"A(B(C))", "B(C[v=1])", "C[v=1]"}));
}

TEST_F(ZetNorvBuildersRestructTest, AnEarlierTagIsCopiedFilled) {
  msg.add(tagWith("C", {}, "1"));
  msg.add(tagWith("B", {"C"}));
  msg.add(tagWith("A", {"B"}));
  EXPECT_EQ(restruct(), (Texts{"C[v=1]", "B(C[v=1])", "A(B(C[v=1]))"}));
}

TEST_F(ZetNorvBuildersRestructTest, TheFirstTagOfANameIsTaken) {
  msg.add(tagWith("B", {}, "1"));
  msg.add(tagWith("B", {}, "2"));
  msg.add(tagWith("A", {"B", "B"}));
  EXPECT_EQ(restruct(), (Texts{"B[v=1]", "B[v=2]", "A(B[v=1] B[v=1])"}));
}

TEST_F(ZetNorvBuildersRestructTest, ATagIsFoundByABeginningOfTheChildsName) {
  msg.add(tagWith("Ref", {}, "1"));
  msg.add(tagWith("Reference", {}, "2"));
  msg.add(tagWith("A", {"Reference", "References", "Re", "Ref"}));
  EXPECT_EQ(restruct().back(), "A(Ref[v=1] Ref[v=1] Re Ref[v=1])");
}

TEST_F(ZetNorvBuildersRestructTest, ALongerNameThatComesFirstIsTakenWhereItMatches) {
  msg.add(tagWith("Reference", {}, "2"));
  msg.add(tagWith("Ref", {}, "1"));
  msg.add(tagWith("A", {"Reference", "Refer"}));
  EXPECT_EQ(restruct().back(), "A(Reference[v=2] Ref[v=1])");
}

TEST_F(ZetNorvBuildersRestructTest, ATagInsideItsOwnNameIsCopiedAsItIsAtTheMoment) {
  msg.add(tagWith("A", {"A", "x", "A"}));
  // The first child gets the tag before any replacement, the last one the tag after the first.
  EXPECT_EQ(restruct(), Texts{"A(A(A x A) x A(A(A x A) x A))"});
}

TEST_F(ZetNorvBuildersRestructTest, ATagWithoutNameIsFoundForEveryChild) {
  msg.add(tagWith("B", {}, "1"));
  msg.add(tagWith("", {}, "2"));
  msg.add(tagWith("C", {}, "3"));
  msg.add(tagWith("A", {"B", "C", "#text"}));
  EXPECT_EQ(restruct().back(), "A(B[v=1] [v=2] [v=2])");
}

TEST_F(ZetNorvBuildersRestructTest, AChildWithoutNameStays) {
  msg.add(tagWith("B", {}, "1"));
  msg.add(tagWith("A", {nullptr}));
  EXPECT_EQ(restruct().back(), "A()");
  EXPECT_EQ(trace.texts(), Texts{"MsgXML: name == NULL"});
}

TEST_F(ZetNorvBuildersRestructTest, AnEmptySlotAmongTheChildrenStays) {
  msg.add(tagWith("B", {}, "1"));
  msg.add(tagWith("A", {"B", "B"}));
  delete msg._balise[1]->_child[0];
  msg._balise[1]->_child[0] = nullptr;
  EXPECT_EQ(restruct().back(), "A(null B[v=1])");
}

TEST_F(ZetNorvBuildersRestructTest, AnEmptySlotEndsTheOperationAndTheSearch) {
  msg.add(tagWith("A", {"B", "C"}));
  msg.add(tagWith("B", {}, "1"));
  msg.add(tagWith("x", {}));
  msg.add(tagWith("C", {"A"}, "2"));
  empty(msg, 2);
  EXPECT_EQ(restruct(), (Texts{"A(B[v=1] C)", "B[v=1]", "null", "C[v=2](A)"}));
  EXPECT_EQ(trace.texts(), Texts{"restructMessage: tmpbal == NULL"});
  EXPECT_EQ(trace.lines().front().level, 2);
}

TEST_F(ZetNorvBuildersRestructTest, OnlyTheChildrenOfTopLevelTagsAreReplaced) {
  BaliseXML outer("A");
  outer.addChildP(tagWith("x", {"B"}));
  msg.add(outer);
  msg.add(tagWith("B", {}, "1"));
  EXPECT_EQ(restruct(), (Texts{"A(x(B))", "B[v=1]"}));
}

TEST_F(ZetNorvBuildersRestructTest, ANullMessageIsTraced) {
  ZetNorvBuilders::restructMessage(nullptr);
  EXPECT_EQ(trace.texts(), Texts{"restructMessage: msg == NULL"});
  EXPECT_EQ(trace.lines().front().level, 2);
}

TEST_F(ZetNorvBuildersRestructTest, AnEmptyMessageStaysEmpty) {
  EXPECT_EQ(restruct(), Texts{});
  EXPECT_TRUE(trace.texts().empty());
}

TEST_F(ZetNorvBuildersRestructTest, AnswersAsASearchThroughAllTagsDoes) {
  std::mt19937 random(20);
  const char* const names[] = {"a", "ab", "abc", "b", "ba", "c", "#text", "abcd"};
  const auto name = [&] { return names[random() % std::size(names)]; };
  for (int round = 0; round < 300; ++round) {
    MsgXML message;
    const auto tags = 1 + random() % 6;
    for (std::size_t i = 0; i < tags; ++i) {
      std::vector<const char*> children(random() % 4);
      for (const char*& child : children) child = name();
      message.add(tagWith(name(), children, std::to_string(i).c_str()));
    }
    MsgXML expected(message);
    ZetNorvBuilders::restructMessage(&message);
    restructNaively(expected);
    ASSERT_EQ(describe(message), describe(expected)) << round;
  }
  EXPECT_FALSE(trace.has("restructMessage: too many copies"));
}

TEST_F(ZetNorvBuildersRestructTest, CopiesThatWouldOutgrowMemoryAreLeftOut) {
  // Each of the 40 children would double the tag.
  msg.add(tagWith("A", std::vector<const char*>(40, "A")));
  msg.add(tagWith("B", {"A"}));
  ZetNorvBuilders::restructMessage(&msg);
  EXPECT_EQ(trace.texts(), Texts{"restructMessage: too many copies"});
  EXPECT_EQ(trace.lines().front().level, 2);
  ASSERT_EQ(msg.getBalise(0)->getNbChildren(), 40);
  EXPECT_EQ(msg.getBalise(0)->getChildP(10)->getNbChildren(), 40);
  EXPECT_EQ(msg.getBalise(0)->getChildP(39)->getNbChildren(), 0);
  EXPECT_EQ(describe(msg.getBalise(1)), "B(A)");
}

TEST_F(ZetNorvBuildersRestructTest, LargeValuesCountAmongTheCopies) {
  const std::string value(1 << 20, 'v');
  msg.add(tagWith("A", {}, value.c_str()));
  msg.add(tagWith("B", std::vector<const char*>(10000, "A")));
  ZetNorvBuilders::restructMessage(&msg);
  EXPECT_EQ(trace.texts(), Texts{"restructMessage: too many copies"});
  EXPECT_EQ(msg.getBalise(1)->getChildP(0)->getNbAttributs(), 1);
  EXPECT_EQ(msg.getBalise(1)->getChildP(9999)->getNbAttributs(), 0);
}

TEST_F(ZetNorvBuildersRestructTest, CopiesNestNoDeeperThanAThousandTags) {
  constexpr int kTags = 1200;
  for (int i = 0; i < kTags; ++i) {
    // Fixed width, so that no name is a beginning of another.
    const std::string name = std::to_string(10000 + i);
    const std::string before = std::to_string(10000 + i - 1);
    msg.add(tagWith(name.c_str(), {before.c_str()}));
  }
  ZetNorvBuilders::restructMessage(&msg);
  EXPECT_EQ(trace.texts(), Texts{"restructMessage: too many copies"});
  int deepest = 0;
  for (int i = 0; i < kTags; ++i) {
    int depth = 0;
    for (const BaliseXML* tag = msg.getBalise(i); tag != nullptr; tag = tag->getChildP(0)) ++depth;
    deepest = std::max(deepest, depth);
  }
  EXPECT_EQ(deepest, 1000);
}

TEST_F(ZetNorvBuildersRestructTest, ManyTagsAndChildrenAreAllFilled) {
  constexpr int kDocuments = 5000;
  msg.add(tagWith("Answer", std::vector<const char*>(kDocuments, "Document")));
  for (int i = 0; i < kDocuments; ++i) msg.add(tagWith("Document", {"Reference", "#text"}, "d"));
  msg.add(tagWith("Reference", {}, "r"));
  ZetNorvBuilders::restructMessage(&msg);
  EXPECT_TRUE(trace.texts().empty());
  EXPECT_EQ(describe(msg.getBalise(0)->getChildP(kDocuments - 1)),
            "Document[v=d](Reference #text)");
  EXPECT_EQ(describe(msg.getBalise(kDocuments)), "Document[v=d](Reference[v=r] #text)");
}
