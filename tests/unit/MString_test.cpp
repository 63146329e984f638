#include "MString.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <iostream>
#include <string>
#include <type_traits>

#include "ConsoleCapture.h"
#include "NullReferenceTo.h"
#include "TraceRecorder.h"

namespace {

using std::string_literals::operator""s;

// All bytes of `text`, embedded NULs included; its terminator is checked on the way.
std::string bytesOf(const MString& text) {
  if (text.isNull()) {
    ADD_FAILURE() << "a null string has no bytes";
    return {};
  }
  EXPECT_EQ(text.gchar()[text.glength()], '\0');
  return {text.gchar(), static_cast<std::size_t>(text.glength())};
}

MString exactly(const std::string& bytes) {
  return MString(bytes.data(), static_cast<int>(bytes.size()));
}

void expectNull(const MString& text) {
  EXPECT_EQ(text.isNull(), 1);
  EXPECT_EQ(text.gchar(), nullptr);
  EXPECT_EQ(text.glength(), 0);
}

void expectEmptyButNotNull(const MString& text) {
  EXPECT_EQ(text.isNull(), 0);
  EXPECT_EQ(text.glength(), 0);
  ASSERT_NE(text.gchar(), nullptr);
  EXPECT_EQ(text.gchar()[0], '\0');
}

// A tokenizer in the middle of a text, to see what leaves it alone.
void expectTokenizer(const MString& text, int tokStart, int tokEnd, char sep, char sepClose) {
  EXPECT_EQ(text.tokStart, tokStart);
  EXPECT_EQ(text.tokEnd, tokEnd);
  EXPECT_EQ(text.sep, sep);
  EXPECT_EQ(text.sepClose, sepClose);
}

void setTokenizer(MString& text) {
  text.tokStart = 1;
  text.tokEnd = 2;
  text.sep = '<';
  text.sepClose = '>';
}

TEST(MStringTest, DefaultIsNullWithATokenizerAtRest) {
  const MString text;
  expectNull(text);
  expectTokenizer(text, 0, 0, '\0', '\0');
}

TEST(MStringTest, NullTextGivesANullString) {
  expectNull(MString(static_cast<const char*>(nullptr)));
}

TEST(MStringTest, TakesATextUpToItsFirstLineFeedOrNul) {
  const struct {
    const char* given;
    std::string taken;
  } cases[] = {
      {"abcd", "abcd"},     {"ab\ncd", "ab"},
      {"ab\0cd", "ab"},     {"ab\r\ncd", "ab\r"},
      {"a\0b\n", "a"},      {"a\nb\0c", "a"},
      {" \t\v ", " \t\v "}, {"\xE9\xFF\x80", "\xE9\xFF\x80"},
      {"NULL", "NULL"},     {"%s%n%d", "%s%n%d"},
  };
  for (const auto& [given, taken] : cases) {
    const MString text(given);
    EXPECT_EQ(bytesOf(text), taken);
    EXPECT_EQ(text.glength(), static_cast<int>(taken.size()));
  }
}

TEST(MStringTest, TextThatBeginsWithNulOrLineFeedIsEmptyButNotNull) {
  for (const char* given : {"", "\n", "\nabc", "\0abc"}) expectEmptyButNotNull(MString(given));
}

TEST(MStringTest, ConvertsFromATextWithoutBeingAsked) {
  const MString text = "abc";
  EXPECT_EQ(bytesOf(text), "abc");
}

TEST(MStringTest, TakesALongTextWhole) {
  const std::string given(100'000, 'x');
  EXPECT_EQ(bytesOf(MString(given.c_str())), given);
}

TEST(MStringTest, TakesExactlyTheGivenNumberOfBytes) {
  for (const std::string& given : {"ab\ncd"s, "ab\0cd"s, "\n"s, "\0"s, "\0\0\0"s, "a"s, "abc\n"s}) {
    EXPECT_EQ(bytesOf(exactly(given)), given);
  }
  EXPECT_EQ(bytesOf(MString("abcdef", 2)), "ab");
}

TEST(MStringTest, NoBytesGiveANullString) {
  expectNull(MString("abc", 0));
  expectNull(MString("abc", -1));
  expectNull(MString("abc", INT_MIN));
  expectNull(MString(nullptr, 3));
  expectNull(MString(nullptr, 0));
}

TEST(MStringTest, CopyHasTheSameBytesInABufferOfItsOwn) {
  MString original = exactly("a\0b\nc"s);
  const MString copy(original);
  EXPECT_EQ(bytesOf(copy), "a\0b\nc"s);
  EXPECT_NE(copy.gchar(), original.gchar());
  original.gchar()[0] = 'z';
  EXPECT_EQ(bytesOf(copy), "a\0b\nc"s);
}

TEST(MStringTest, CopyStartsWithATokenizerAtRest) {
  MString original("a;b");
  setTokenizer(original);
  const MString copy(original);
  expectTokenizer(copy, 0, 0, '\0', '\0');
}

TEST(MStringTest, CopyOfANullStringIsNull) {
  const MString original;
  expectNull(MString(original));
}

TEST(MStringTest, CopyOfAnEmptyStringIsEmptyButNotNull) {
  const MString original("");
  expectEmptyButNotNull(MString(original));
}

TEST(MStringTest, CopyOfANullReferenceIsNull) { expectNull(MString(nullReferenceTo<MString>())); }

TEST(MStringTest, AssignmentReplacesTheBytesByACopy) {
  MString target("before");
  MString source = exactly("a\0b\nc"s);
  EXPECT_EQ(&(target = source), &target);
  EXPECT_EQ(bytesOf(target), "a\0b\nc"s);
  EXPECT_NE(target.gchar(), source.gchar());
  source.gchar()[0] = 'z';
  EXPECT_EQ(bytesOf(target), "a\0b\nc"s);
}

TEST(MStringTest, AssignmentToANullStringTakesTheBytes) {
  MString target;
  target = MString("abc");
  EXPECT_EQ(bytesOf(target), "abc");
}

TEST(MStringTest, AssignmentOfATextIsCutAtItsLineFeed) {
  MString target;
  target = "ab\ncd";
  EXPECT_EQ(bytesOf(target), "ab");
}

TEST(MStringTest, AssignmentOfANullStringMakesItNull) {
  MString target("before");
  target = MString();
  expectNull(target);
  MString empty("");
  empty = MString();
  expectNull(empty);
}

TEST(MStringTest, AssignmentOfAnEmptyStringMakesItEmptyButNotNull) {
  MString target("before");
  target = MString("");
  expectEmptyButNotNull(target);
}

TEST(MStringTest, AssignmentOfANullReferenceMakesItNull) {
  MString target("before");
  target = nullReferenceTo<MString>();
  expectNull(target);
}

TEST(MStringTest, SelfAssignmentEmptiesTheString) {
  MString text("abc");
  const MString& same = text;
  EXPECT_EQ(&(text = same), &text);
  expectNull(text);
}

TEST(MStringTest, AssignmentLeavesTheTokenizerOfBothAlone) {
  MString target("a;b");
  setTokenizer(target);
  MString source("c,d");
  source.split(',');
  target = source;
  expectTokenizer(target, 1, 2, '<', '>');
  expectTokenizer(source, -1, -1, ',', '\0');
  const MString& same = target;
  target = same;
  expectTokenizer(target, 1, 2, '<', '>');
}

TEST(MStringTest, SetTakesATextUpToItsFirstLineFeedOrNul) {
  MString text("before");
  text.set("ab\ncd");
  EXPECT_EQ(bytesOf(text), "ab");
  text.set("abcdefgh");
  EXPECT_EQ(bytesOf(text), "abcdefgh");
  text.set("\n");
  expectEmptyButNotNull(text);
  text.set("again");
  EXPECT_EQ(bytesOf(text), "again");
}

TEST(MStringTest, SetToNullMakesItNull) {
  MString text("before");
  text.set(nullptr);
  expectNull(text);
  text.set(nullptr);
  expectNull(text);
}

TEST(MStringTest, SetMayTakeATextInItsOwnBuffer) {
  MString text("abcdef");
  text.set(text.gchar() + 2);
  EXPECT_EQ(bytesOf(text), "cdef");
  text.set(text.gchar());
  EXPECT_EQ(bytesOf(text), "cdef");
  text.set(text.gchar() + 4);
  expectEmptyButNotNull(text);
}

TEST(MStringTest, SetAndAppendLeaveTheTokenizerAlone) {
  MString text("a;b");
  setTokenizer(text);
  text.set("c;d");
  expectTokenizer(text, 1, 2, '<', '>');
  text + MString("e");
  expectTokenizer(text, 1, 2, '<', '>');
  text.set(nullptr);
  expectTokenizer(text, 1, 2, '<', '>');
}

TEST(MStringTest, AppendsInPlaceAndReturnsNothing) {
  MString text("ab");
  const MString more("cd");
  static_assert(std::is_void_v<decltype(text + more)>);
  text + more;
  EXPECT_EQ(bytesOf(text), "abcd");
  EXPECT_EQ(bytesOf(more), "cd");
}

TEST(MStringTest, AppendsATextCutAtItsLineFeed) {
  MString text("ab");
  text + "cd\nef";
  EXPECT_EQ(bytesOf(text), "abcd");
}

TEST(MStringTest, AppendingToANullStringLeavesItNull) {
  MString text;
  text + MString("cd");
  expectNull(text);
  text + MString();
  expectNull(text);
}

TEST(MStringTest, AppendingANullStringChangesNothing) {
  MString text("ab");
  const char* const buffer = text.gchar();
  text + MString();
  EXPECT_EQ(bytesOf(text), "ab");
  EXPECT_EQ(text.gchar(), buffer);
  text + nullReferenceTo<MString>();
  EXPECT_EQ(bytesOf(text), "ab");
}

TEST(MStringTest, AppendsToAnEmptyStringThatIsNotNull) {
  MString text("");
  text + MString("cd");
  EXPECT_EQ(bytesOf(text), "cd");
}

TEST(MStringTest, AppendingAnEmptyStringKeepsTheText) {
  MString text("ab");
  text + MString("");
  EXPECT_EQ(bytesOf(text), "ab");
  MString empty("");
  empty + MString("");
  expectEmptyButNotNull(empty);
}

TEST(MStringTest, AppendsItselfTwice) {
  MString text("ab");
  text + text;
  EXPECT_EQ(bytesOf(text), "abab");
}

TEST(MStringTest, AppendWritesEachOperandUpToItsFirstNulButCountsBothInFull) {
  const struct {
    std::string left;
    std::string right;
    std::string sum;
  } cases[] = {
      {"a\0b"s, "cd"s, "acd\0\0"s},      {"ab"s, "c\0d"s, "abc\0\0"s},
      {"a\0b"s, "c\0d"s, "ac\0\0\0\0"s}, {"\0ab"s, "\0cd"s, "\0\0\0\0\0\0"s},
      {"\0ab"s, "cd"s, "cd\0\0\0"s},     {"a\nb"s, "c\nd"s, "a\nbc\nd"s},
      {"%s"s, "%d%n"s, "%s%d%n"s},
  };
  for (const auto& [left, right, sum] : cases) {
    MString text = exactly(left);
    text + exactly(right);
    EXPECT_EQ(bytesOf(text), sum);
  }
}

TEST(MStringTest, AppendRefusesALengthThatAnIntCannotHold) {
  MString text("ab");
  const char* const buffer = text.gchar();
  text.len = INT_MAX;  // as if the text were that long
  text + MString("c");
  EXPECT_EQ(text.gchar(), buffer);
  EXPECT_EQ(text.glength(), INT_MAX);
  text.len = 2;
  EXPECT_EQ(bytesOf(text), "ab");
}

struct Comparison {
  std::string left;
  std::string right;
  int equal;
};

TEST(MStringTest, EqualityLooksAtTheLengthOfTheLeftOperandOnly) {
  const Comparison cases[] = {
      {"ab"s, "ab"s, 1},   {"ab"s, "abcd"s, 1},    {"abcd"s, "ab"s, 0},    {"ab"s, "ba"s, 0},
      {"ab"s, "aBcd"s, 0}, {"a\0b"s, "a\0b"s, 1},  {"a\0b"s, "a\0bc"s, 1}, {"a\0b"s, "a\0c"s, 0},
      {"a\0b"s, "a"s, 0},  {"a\nb"s, "a\nbc"s, 1}, {"\xE9"s, "\xE9z"s, 1}, {"\xE9"s, "\x69"s, 0},
      {"a\0"s, "a"s, 1},  // the right text's own terminator
      {"b\0"s, "a"s, 0},   {"a\0\0"s, "a"s, 0},    {"abc"s, "ab"s, 0},
  };
  for (const auto& [left, right, equal] : cases) {
    EXPECT_EQ(exactly(left) == exactly(right), equal) << left << " == " << right;
    EXPECT_EQ(exactly(left) != exactly(right), 1 - equal) << left << " != " << right;
  }
}

TEST(MStringTest, StringOfNoLengthEqualsEverything) {
  const MString empty("");
  const MString null;
  for (const MString* left : {&empty, &null}) {
    for (const MString& right : {MString("abc"), MString(""), MString()}) {
      EXPECT_EQ(*left == right, 1);
      EXPECT_EQ(*left != right, 0);
    }
    EXPECT_EQ(*left == nullReferenceTo<MString>(), 1);
    EXPECT_EQ(*left != nullReferenceTo<MString>(), 0);
  }
}

TEST(MStringTest, TextDiffersFromANullStringAndFromAnEmptyOne) {
  const MString text("a");
  EXPECT_EQ(text == MString(), 0);
  EXPECT_EQ(text != MString(), 1);
  EXPECT_EQ(text == MString(""), 0);
  EXPECT_EQ(text == nullReferenceTo<MString>(), 0);
  EXPECT_EQ(text != nullReferenceTo<MString>(), 1);
}

TEST(MStringTest, EqualsItself) {
  const MString text("ab");
  const MString& same = text;
  EXPECT_EQ(text == same, 1);
}

TEST(MStringTest, EqualityOfAMillionBytesFindsTheLastOne) {
  std::string left(1'000'000, 'x');
  std::string right = left;
  EXPECT_EQ(exactly(left) == exactly(right), 1);
  right.back() = 'y';
  EXPECT_EQ(exactly(left) == exactly(right), 0);
}

TEST(MStringTest, ComparesItsOwnLengthWithAText) {
  const Comparison cases[] = {
      {"REPLAY"s, "REPLAY"s, 1}, {"REP"s, "REPLAY"s, 1}, {"REPLAYS"s, "REPLAY"s, 0},
      {"rep"s, "REPLAY"s, 0},    {"x"s, ""s, 0},         {"a\nb"s, "a\nbc"s, 1},
      {"a\0"s, "a"s, 1},         {"a\0b"s, "a"s, 0},     {"\xE9"s, "\xE9z"s, 1},
  };
  for (const auto& [left, right, equal] : cases) {
    EXPECT_EQ(exactly(left).compare(right.c_str()), equal) << left << " with " << right;
  }
}

TEST(MStringTest, StringOfNoLengthComparesEqualToEveryText) {
  for (const MString& text : {MString(""), MString()}) {
    EXPECT_EQ(text.compare("REPLAY"), 1);
    EXPECT_EQ(text.compare(""), 1);
  }
}

TEST(MStringTest, ComparisonWithNullIsFalse) {
  for (const MString& text : {MString("abc"), MString(""), MString()}) {
    EXPECT_EQ(text.compare(nullptr), 0);
  }
}

TEST(MStringTest, ExtractsTheByteAtAnIndex) {
  const MString text = exactly("a\0\n\xE9"s);
  EXPECT_EQ(text.extract(0), 'a');
  EXPECT_EQ(text.extract(1), '\0');
  EXPECT_EQ(text.extract(2), '\n');
  EXPECT_EQ(text.extract(3), '\xE9');
}

TEST(MStringTest, ExtractsNulOutsideTheText) {
  const MString text("abc");
  for (const int index : {3, 4, 100, INT_MAX, -1, INT_MIN}) EXPECT_EQ(text.extract(index), '\0');
  EXPECT_EQ(MString().extract(0), '\0');
  EXPECT_EQ(MString("").extract(0), '\0');
}

TEST(MStringTest, SubstringTakesBothEnds) {
  const MString text("abcdef");
  const struct {
    int first;
    int last;
    const char* taken;
  } cases[] = {
      {0, 2, "abc"}, {0, 1, "ab"},           {2, 4, "cde"},     {0, 5, "abcdef"},
      {4, 5, "ef"},  {0, 6, "abcdef"},       {3, 100, "def"},   {5, 6, "f"},
      {5, 100, "f"}, {0, INT_MAX, "abcdef"}, {5, INT_MAX, "f"},
  };
  for (const auto& [first, last, taken] : cases) {
    EXPECT_EQ(bytesOf(text.substring(first, last)), taken) << first << " to " << last;
  }
  EXPECT_EQ(bytesOf(text), "abcdef");
}

TEST(MStringTest, SubstringIsNullUnlessItsBoundsHold) {
  const MString text("abcdef");
  const struct {
    int first;
    int last;
  } cases[] = {
      {0, 0},  {2, 2},       {5, 5}, {3, 2}, {-1, 2},    {INT_MIN, 2},       {-3, -1},
      {0, -1}, {0, INT_MIN}, {6, 7}, {6, 6}, {100, 200}, {INT_MAX, INT_MAX}, {INT_MAX - 1, INT_MAX},
  };
  for (const auto& [first, last] : cases) expectNull(text.substring(first, last));
  expectNull(MString().substring(0, 1));
  expectNull(MString("").substring(0, 1));
}

TEST(MStringTest, SubstringEndsAtALineFeedOrNulInTheRun) {
  EXPECT_EQ(bytesOf(exactly("ab\ncd"s).substring(0, 4)), "ab");
  EXPECT_EQ(bytesOf(exactly("ab\0cd"s).substring(1, 4)), "b");
  EXPECT_EQ(bytesOf(exactly("ab\0cd"s).substring(3, 4)), "cd");
  expectEmptyButNotNull(exactly("ab\ncd"s).substring(2, 4));
  expectEmptyButNotNull(exactly("ab\0cd"s).substring(2, 4));
}

TEST(MStringTest, SubstringOfOneCharacterNeedsAnEndBeyondIt) {
  const MString text("a");
  expectNull(text.substring(0, 0));
  EXPECT_EQ(bytesOf(text.substring(0, 1)), "a");
}

TEST(MStringTest, ParsesTheDecimalNumberTheTextStartsWith) {
  const struct {
    std::string text;
    int value;
  } cases[] = {
      {"12"s, 12},
      {"12abc"s, 12},
      {"abc"s, 0},
      {"-7"s, -7},
      {"+7"s, 7},
      {"  \t 42 "s, 42},
      {"\n5"s, 5},
      {"0x10"s, 0},
      {"007"s, 7},
      {"1.9"s, 1},
      {"- 7"s, 0},
      {"--7"s, 0},
      {" "s, 0},
      {"1\0002"s, 1},
      {"NULL"s, 0},
      {"\0005"s, 0},
      {"2147483647"s, INT_MAX},
      {"-2147483648"s, INT_MIN},
      {"1e3"s, 1},
  };
  for (const auto& [text, value] : cases) EXPECT_EQ(exactly(text).parseInt(), value) << text;
}

TEST(MStringTest, NullOrEmptyStringParsesAsMinusOne) {
  for (const MString& text : {MString(), MString("")}) {
    EXPECT_EQ(text.parseInt(), -1);
    EXPECT_EQ(text.parseSpeInt(), -1);
    EXPECT_EQ(text.parseDouble(), -1.0);
  }
}

TEST(MStringTest, ParsesFourBytesAsALittleEndianNumber) {
  const struct {
    std::string bytes;
    int value;
  } cases[] = {
      {"\x01\0\0\0"s, 1},        {"\x41\x01\0\0"s, 321},         {"\0\0\0\x01"s, 0x01000000},
      {"\xFF\xFF\xFF\xFF"s, -1}, {"\xFF\xFF\xFF\x7F"s, INT_MAX}, {"\0\0\0\x80"s, INT_MIN},
      {"\x80\0\0\0"s, 128},      {"1234"s, 0x34333231},          {"\x01\0\0\0\x02\x03"s, 1},
  };
  for (const auto& [bytes, value] : cases) EXPECT_EQ(exactly(bytes).parseSpeInt(), value);
}

TEST(MStringTest, ReadsFewerThanFourBytesAsIfNulsFollowed) {
  EXPECT_EQ(exactly("\x07"s).parseSpeInt(), 7);
  EXPECT_EQ(exactly("\x41\x01"s).parseSpeInt(), 321);
  EXPECT_EQ(exactly("\xFF\xFF\xFF"s).parseSpeInt(), 0x00FFFFFF);
}

TEST(MStringTest, ParsesTheNumberWithAFractionTheTextStartsWith) {
  const struct {
    std::string text;
    double value;
  } cases[] = {
      {"1.5"s, 1.5}, {"-2.25x"s, -2.25}, {" 3"s, 3.0}, {"abc"s, 0.0},    {"1e3"s, 1000.0},
      {".5"s, 0.5},  {"1.5.5"s, 1.5},    {"-"s, 0.0},  {"1\0002"s, 1.0}, {"\n4"s, 4.0},
  };
  for (const auto& [text, value] : cases) EXPECT_EQ(exactly(text).parseDouble(), value) << text;
  EXPECT_TRUE(std::isinf(MString("1e999").parseDouble()));
}

TEST(MStringTest, PrintsTheTextWithoutALineEnd) {
  const ConsoleCapture console;
  MString("abc").print();
  MString("d%se").print();
  EXPECT_EQ(console.text(), "abcd%se");
}

TEST(MStringTest, PrintsALineFeedInsideTheTextAndEndsAtANul) {
  const ConsoleCapture console;
  exactly("a\nb\0c"s).print();
  EXPECT_EQ(console.text(), "a\nb");
}

TEST(MStringTest, PrintsAnErrorForANullOrEmptyString) {
  for (const MString& text : {MString(), MString("")}) {
    const ConsoleCapture console;
    text.print();
    EXPECT_EQ(console.text(), "error: NULL ");
  }
}

TEST(MStringTest, PrintsALineWithItsEnd) {
  const ConsoleCapture console;
  MString("abc").println();
  MString().println();
  MString("").println();
  EXPECT_EQ(console.text(), "abc\nerror: NULL \nerror: NULL \n");
}

TEST(MStringTest, PrintingALineFlushesIt) {
  struct Flushes : std::streambuf {
    int count = 0;
    int_type overflow(int_type c) override { return traits_type::not_eof(c); }
    int sync() override {
      ++count;
      return 0;
    }
  } flushes;
  std::streambuf* const before = std::cout.rdbuf(&flushes);
  MString("abc").print();
  const int afterPrint = flushes.count;
  MString("abc").println();
  const int afterPrintln = flushes.count;
  std::cout.rdbuf(before);
  EXPECT_EQ(afterPrint, 0);
  EXPECT_EQ(afterPrintln, 1);
}

TEST(MStringTest, PrintingThrowsNothingWhenStandardOutputDoes) {
  struct Broken : std::streambuf {
    int_type overflow(int_type) override { return traits_type::eof(); }
  } broken;
  const TraceRecorder trace;
  std::streambuf* const before = std::cout.rdbuf(&broken);
  std::cout.exceptions(std::ios::badbit | std::ios::failbit);
  EXPECT_NO_THROW(MString("abc").println());
  std::cout.exceptions(std::ios::goodbit);
  std::cout.clear();
  std::cout.rdbuf(before);
  EXPECT_EQ(trace.count("Problem in MString::print: exception"), 1);
  EXPECT_EQ(trace.count("Problem in MString::println: exception"), 1);
}

}  // namespace
