#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "MString.h"

namespace {

using std::string_literals::operator""s;

MString exactly(const std::string& bytes) {
  return MString(bytes.data(), static_cast<int>(bytes.size()));
}

// A token as a test names it; a null string shows as "(null)".
std::string shown(const MString& token) {
  if (token.isNull()) return "(null)";
  return {token.gchar(), static_cast<std::size_t>(token.glength())};
}

struct State {
  int tokStart;
  int tokEnd;
};

void expectState(const MString& text, int tokStart, int tokEnd, char sep, char sepClose) {
  EXPECT_EQ(text.tokStart, tokStart);
  EXPECT_EQ(text.tokEnd, tokEnd);
  EXPECT_EQ(text.sep, sep);
  EXPECT_EQ(text.sepClose, sepClose);
}

struct Tokens {
  std::string text;
  std::vector<std::string> tokens;  // as many calls are made
};

TEST(MStringTokenizerTest, CleanParamResetsTheTokenizer) {
  MString text("abc");
  text.spSplit('<', '>');
  text.cleanParam();
  expectState(text, 0, 0, '\0', '\0');
}

TEST(MStringTokenizerTest, SplitStartsBeforeTheTextAndKeepsTheClosingCharacter) {
  MString text("abc");
  text.spSplit('<', '>');
  text.split(';');
  expectState(text, -1, -1, ';', '>');
}

TEST(MStringTokenizerTest, SpSplitStartsBeforeTheText) {
  MString text("abc");
  text.spSplit('<', '>');
  expectState(text, -1, -1, '<', '>');
}

TEST(MStringTokenizerTest, SplitsAtEverySeparator) {
  const Tokens cases[] = {
      {"a;;b"s, {"a", "NULL", "b", "NULL", "NULL"}},
      {";a"s, {"NULL", "a", "NULL"}},
      {"a;"s, {"a", "NULL", "NULL"}},
      {"abc"s, {"abc", "NULL"}},
      {";"s, {"NULL", "NULL", "NULL"}},
      {"NULL;b"s, {"NULL", "b", "NULL"}},
      {"a b;\tc "s, {"a b", "\tc ", "NULL"}},
      {"a\nb;c"s, {"a\nb", "c", "NULL"}},
      {"a\0b;c"s, {"a", "b", "c", "NULL"}},  // a NUL ends a token like the separator
      {"a\0;b"s, {"a", "NULL", "b", "NULL"}},
      {"<1>;<2>"s, {"<1>", "<2>", "NULL"}},
  };
  for (const auto& [bytes, tokens] : cases) {
    MString text = exactly(bytes);
    text.split(';');
    for (const std::string& token : tokens) EXPECT_EQ(shown(text.splitNext()), token) << bytes;
  }
}

TEST(MStringTokenizerTest, SplitNextKeepsWhereTheTokenBeganAndEnded) {
  MString text("ab;;c");
  text.split(';');
  // One step for every call, behind the end too.
  for (const State& state : {State{0, 2}, {3, 3}, {4, 5}, {6, 6}, {7, 7}}) {
    text.splitNext();
    expectState(text, state.tokStart, state.tokEnd, ';', '\0');
  }
}

TEST(MStringTokenizerTest, SplitNextOfANullOrEmptyTextIsNullAndLeavesTheState) {
  for (const std::string& bytes : {""s, "\0;a"s}) {
    MString text = bytes.empty() ? MString("") : exactly(bytes);
    text.split(';');
    EXPECT_EQ(shown(text.splitNext()), "NULL");
    expectState(text, -1, -1, ';', '\0');
  }
  MString null;
  null.split(';');
  EXPECT_EQ(shown(null.splitNext()), "NULL");
  expectState(null, -1, -1, ';', '\0');
}

TEST(MStringTokenizerTest, SplitNextWithoutSplitBeginsAtTheSecondByte) {
  MString text("abc");
  EXPECT_EQ(shown(text.splitNext()), "bc");
  expectState(text, 1, 3, '\0', '\0');
}

TEST(MStringTokenizerTest, SplitBeginsAgain) {
  MString text("a;b,c");
  text.split(';');
  text.splitNext();
  text.splitNext();
  text.split(',');
  EXPECT_EQ(shown(text.splitNext()), "a;b");
  EXPECT_EQ(shown(text.splitNext()), "c");
}

TEST(MStringTokenizerTest, SplittingLeavesTheTextAlone) {
  MString text("a;b");
  text.split(';');
  text.splitNext();
  EXPECT_EQ(shown(text), "a;b");
}

TEST(MStringTokenizerTest, SplitGoesOnWhereItWasInATextThatIsSetAnew) {
  MString text("ab;cd");
  text.split(';');
  text.splitNext();
  text.set("xyzuv;w");
  EXPECT_EQ(shown(text.splitNext()), "uv");
  EXPECT_EQ(shown(text.splitNext()), "w");
  text.set("x");  // shorter than where the next token would begin
  EXPECT_EQ(shown(text.splitNext()), "NULL");
}

TEST(MStringTokenizerTest, SplitSeesWhatWasAppended) {
  MString text("1,2");
  text.split(',');
  EXPECT_EQ(shown(text.splitNext()), "1");
  text + MString(",END");
  EXPECT_EQ(shown(text.splitNext()), "2");
  EXPECT_EQ(shown(text.splitNext()), "END");
}

TEST(MStringTokenizerTest, TokenIsAStringOfItsOwn) {
  MString text("a;b");
  text.split(';');
  const MString token = text.splitNext();
  text.set(nullptr);
  EXPECT_EQ(shown(token), "a");
  expectState(token, 0, 0, '\0', '\0');
}

TEST(MStringTokenizerTest, SpSplitTakesTheTextsInBrackets) {
  const Tokens cases[] = {
      {"<3><file.txt><12>"s, {"3", "file.txt", "12", "(null)", "(null)"}},
      {"x<a>y<b>z"s, {"a", "b", "(null)", "(null)"}},
      {"<>"s, {"(null)", "(null)"}},
      {"<><a>"s, {"(null)", "a", "(null)"}},
      {"abc"s, {"(null)", "(null)"}},
      {"a<bc"s, {"bc", "(null)"}},  // no closing character: the rest
      {"a<"s, {"(null)", "(null)"}},
      {"a>b<c>"s, {"c", "(null)"}},
      {"<a<b>c>"s, {"a<b", "(null)"}},
      {"a\0b<c\0d>\n<e\nf>"s, {"c\0d"s, "e\nf", "(null)"}},  // a NUL stops nothing here
  };
  for (const auto& [bytes, tokens] : cases) {
    MString text = exactly(bytes);
    text.spSplit('<', '>');
    for (const std::string& token : tokens) EXPECT_EQ(shown(text.spSplitNext()), token) << bytes;
  }
}

TEST(MStringTokenizerTest, SpSplitNextKeepsWhereTheTokenBeganAndEnded) {
  MString text("x<ab>y<>z");
  text.spSplit('<', '>');
  for (const State& state : {State{2, 4}, {7, 7}, {10, 9}, {11, 10}}) {
    text.spSplitNext();
    expectState(text, state.tokStart, state.tokEnd, '<', '>');
  }
}

TEST(MStringTokenizerTest, SpSplitNextOfANullOrEmptyTextIsNullAndLeavesTheState) {
  for (const std::string& bytes : {""s, "\0<a>"s}) {
    MString text = bytes.empty() ? MString("") : exactly(bytes);
    text.spSplit('<', '>');
    EXPECT_EQ(shown(text.spSplitNext()), "(null)");
    expectState(text, -1, -1, '<', '>');
  }
  MString null;
  null.spSplit('<', '>');
  EXPECT_EQ(shown(null.spSplitNext()), "(null)");
  expectState(null, -1, -1, '<', '>');
}

TEST(MStringTokenizerTest, SameOpeningAndClosingCharacterGivesEmptyTokens) {
  MString text("'a'b'");
  text.spSplit('\'', '\'');
  for (const State& state : {State{1, 0}, {3, 2}, {5, 4}, {6, 5}}) {
    EXPECT_EQ(shown(text.spSplitNext()), "(null)");
    expectState(text, state.tokStart, state.tokEnd, '\'', '\'');
  }
}

TEST(MStringTokenizerTest, SpSplitNextWithoutSpSplitLooksForNulsFromTheSecondByteOn) {
  MString text = exactly("<ab\0cd"s);
  EXPECT_EQ(shown(text.spSplitNext()), "(null)");
  expectState(text, 4, 3, '\0', '\0');
}

TEST(MStringTokenizerTest, BothTokenizersShareOnePlaceInTheText) {
  MString text("a;<b>;c");
  text.split(';');
  EXPECT_EQ(shown(text.splitNext()), "a");
  text.sep = '<';
  text.sepClose = '>';
  EXPECT_EQ(shown(text.spSplitNext()), "b");
  text.sep = ';';
  EXPECT_EQ(shown(text.splitNext()), "NULL");  // between '>' and ';'
  EXPECT_EQ(shown(text.splitNext()), "c");
}

}  // namespace
