#include "Composant.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "ConsoleCapture.h"
#include "CopyOfItself.h"
#include "NullReferenceTo.h"
#include "TraceRecorder.h"

namespace {

using Lines = std::vector<std::string>;

constexpr const char* kNullComponent = "Composant: &composant == NULL";

std::string bytesOf(const MString& text) {
  return text.isNull() ? "" : std::string(text.gchar(), static_cast<std::size_t>(text.glength()));
}

Composant field(const std::string& bytes, int type = 1) {
  return Composant("Field", bytes.data(), static_cast<int>(bytes.size()), type, "S");
}

void expectEmpty(const Composant& composant) {
  EXPECT_TRUE(composant._name.isNull());
  EXPECT_TRUE(composant._buffer.isNull());
  EXPECT_EQ(0, composant._size);
  EXPECT_EQ(0, composant._type);
}

TEST(ComposantTest, IsEmptyAndOfKindStringByDefault) {
  const Composant composant;
  expectEmpty(composant);
  EXPECT_STREQ("S", composant._spec.gchar());
}

TEST(ComposantTest, KeepsWhatItIsGiven) {
  const Composant composant("Count", "abcdef", 4, 1, "I");
  EXPECT_STREQ("Count", composant._name.gchar());
  EXPECT_EQ("abcd", bytesOf(composant._buffer));
  EXPECT_EQ(4, composant._size);
  EXPECT_EQ(1, composant._type);
  EXPECT_STREQ("I", composant._spec.gchar());
}

TEST(ComposantTest, KeepsNulsAndLineFeedsOfTheBuffer) {
  const std::string bytes("a\0\nb\0", 5);
  const Composant composant("Field", bytes.data(), 5, 1, "S");
  EXPECT_EQ(bytes, bytesOf(composant._buffer));
  EXPECT_EQ('\0', composant._buffer.gchar()[5]);
}

TEST(ComposantTest, CutsNameAndKindAtTheirFirstLineFeed) {
  const Composant composant("Na\nme", "x", 1, 1, "I\nS");
  EXPECT_STREQ("Na", composant._name.gchar());
  EXPECT_STREQ("I", composant._spec.gchar());
}

TEST(ComposantTest, NullTextsGiveEmptyOnes) {
  const Composant composant(nullptr, nullptr, 3, 1, nullptr);
  EXPECT_TRUE(composant._name.isNull());
  EXPECT_TRUE(composant._spec.isNull());
}

TEST(ComposantTest, HasNoBytesWithoutABufferOrAPositiveSize) {
  struct Case {
    const char* buffer;
    int size;
  };
  for (const Case& c : {Case{nullptr, 4}, Case{"abcd", 0}, Case{"abcd", -1}, Case{"abcd", INT_MIN},
                        Case{nullptr, INT_MAX}}) {
    const Composant composant("Field", c.buffer, c.size, 1, "S");
    EXPECT_TRUE(composant._buffer.isNull()) << c.size;
    EXPECT_EQ(0, composant._buffer.glength()) << c.size;
    EXPECT_EQ(c.size, composant._size);
  }
}

TEST(ComposantTest, ACopyHasEverythingOfItsOwn) {
  const Composant original("Count", "ab\0d", 4, 7, "I");
  const Composant copy(original);
  EXPECT_STREQ("Count", copy._name.gchar());
  EXPECT_EQ(std::string("ab\0d", 4), bytesOf(copy._buffer));
  EXPECT_EQ(4, copy._size);
  EXPECT_EQ(7, copy._type);
  EXPECT_STREQ("I", copy._spec.gchar());
  EXPECT_NE(original._buffer.gchar(), copy._buffer.gchar());
}

TEST(ComposantTest, ACopyOfANullReferenceIsEmpty) {
  const Composant copy(nullReferenceTo<Composant>());
  expectEmpty(copy);
  EXPECT_EQ(0, copy._spec.glength());
}

TEST(ComposantTest, ACopyOfItselfIsEmpty) {
  CopyOfItself<Composant> copy;
  expectEmpty(*copy);
  EXPECT_EQ(0, copy->_spec.glength());
}

TEST(ComposantTest, AssignmentReplacesEverything) {
  Composant target("Old", "old bytes", 9, 0, "S");
  const Composant source("New", "n\0w", 3, 1, "I");
  EXPECT_EQ(&target, &(target = source));
  EXPECT_STREQ("New", target._name.gchar());
  EXPECT_EQ(std::string("n\0w", 3), bytesOf(target._buffer));
  EXPECT_EQ(3, target._size);
  EXPECT_EQ(1, target._type);
  EXPECT_STREQ("I", target._spec.gchar());
  EXPECT_NE(source._buffer.gchar(), target._buffer.gchar());
}

TEST(ComposantTest, AssignmentToItselfEmptiesTheTexts) {
  Composant composant("Count", "ab", 2, 1, "I");
  const Composant& same = composant;
  composant = same;
  EXPECT_TRUE(composant._name.isNull());
  EXPECT_TRUE(composant._buffer.isNull());
  EXPECT_TRUE(composant._spec.isNull());
  EXPECT_EQ(2, composant._size);
  EXPECT_EQ(1, composant._type);
}

TEST(ComposantTest, AssignmentFromANullReferenceChangesNothing) {
  Composant composant("Count", "ab", 2, 1, "I");
  composant = nullReferenceTo<Composant>();
  EXPECT_STREQ("Count", composant._name.gchar());
  EXPECT_EQ("ab", bytesOf(composant._buffer));
}

TEST(ComposantTest, EqualsByTypeSizeAndBytes) {
  struct Case {
    const char* what;
    Composant left;
    Composant right;
    int equal;
  };
  const std::string nul1("a\0b", 3);
  const std::string nul2("a\0c", 3);
  const Case cases[] = {
      {"same bytes", field("abc"), field("abc"), 1},
      {"other bytes", field("abc"), field("abd"), 0},
      {"type 0 on both sides", field("abc", 0), field("abc", 0), 0},
      {"type 1 on the left only", field("abc", 1), field("abc", 0), 1},
      {"type 1 on the right only", field("abc", 0), field("abc", 1), 0},
      {"type 2 on both sides", field("abc", 2), field("abc", 2), 0},
      {"type -1 on both sides", field("abc", -1), field("abc", -1), 0},
      {"other sizes", field("abc"), field("abcd"), 0},
      {"bytes behind a NUL differ", field(nul1), field(nul2), 0},
      {"bytes behind a NUL agree", field(nul1), field(nul1), 1},
      {"no bytes at all", field(""), field(""), 1},
      {"other names and kinds", Composant("A", "x", 1, 1, "S"), Composant("B", "x", 1, 1, "I"), 1},
      {"a size without bytes on the left", Composant("A", nullptr, 3, 1, "S"), field("abc"), 1},
      {"a size without bytes on the right", field("abc"), Composant("A", nullptr, 3, 1, "S"), 0},
      {"negative sizes", Composant("A", "x", -3, 1, "S"), Composant("A", "y", -3, 1, "S"), 1},
  };
  for (const Case& c : cases) EXPECT_EQ(c.equal, c.left == c.right) << c.what;
}

TEST(ComposantTest, ComparesOnlyAsManyBytesAsTheLeftOneHas) {
  Composant shorter("Field", "abc", 3, 1, "S");
  Composant longer("Field", "abcdef", 6, 1, "S");
  shorter._size = 6;
  EXPECT_EQ(1, shorter == longer);
  EXPECT_EQ(0, longer == shorter);
}

TEST(ComposantTest, IsEqualToItselfOnlyWithType1) {
  const Composant compared = field("abc", 1);
  const Composant skipped = field("abc", 0);
  EXPECT_EQ(1, compared == compared);
  EXPECT_EQ(0, skipped == skipped);
}

TEST(ComposantTest, ANullReferenceIsTracedAndUnequal) {
  TraceRecorder trace;
  EXPECT_EQ(0, field("abc") == nullReferenceTo<Composant>());
  EXPECT_EQ(Lines{kNullComponent}, trace.texts());
  EXPECT_EQ(2, trace.lines()[0].level);
}

TEST(ComposantTest, ANullPointerIsTracedAndUnequal) {
  TraceRecorder trace;
  EXPECT_EQ(0, field("abc").equals(nullptr));
  EXPECT_EQ(Lines{kNullComponent}, trace.texts());
}

TEST(ComposantTest, ADifferenceIsNotTraced) {
  TraceRecorder trace;
  EXPECT_EQ(0, field("abc") == field("abd"));
  EXPECT_EQ(Lines{}, trace.texts());
}

TEST(ComposantTest, PrintsTextsToTheConsoleAndNumbersToTheTrace) {
  TraceRecorder trace;
  ConsoleCapture console;
  Composant("Title", "abc", 3, 1, "S").print();
  EXPECT_EQ("TitleSabc\n", console.text());
  EXPECT_EQ((Lines{"## Composant  Nom : ", "Taille: 3", " Type ", " Buffer : "}), trace.texts());
  for (const TraceRecorder::Line& line : trace.lines()) EXPECT_EQ(2, line.level);
}

TEST(ComposantTest, PrintsTheValueOfAnInteger) {
  TraceRecorder trace;
  ConsoleCapture console;
  Composant("Count", "\x01\x02\x00\x00", 4, 1, "I").print();
  EXPECT_EQ("CountI\x01\x02\n", console.text());
  EXPECT_EQ((Lines{"## Composant  Nom : ", "Taille: 4", " Type ", " Spec: 513", " Buffer : "}),
            trace.texts());
}

TEST(ComposantTest, PrintsIntegersOfEverySize) {
  struct Case {
    std::string bytes;
    const char* line;
  };
  for (const Case& c :
       {Case{"", " Spec: -1"}, Case{"\x05", " Spec: 5"}, Case{"\xff\xff\xff\xff", " Spec: -1"},
        Case{"\xfe\xff\xff\xff", " Spec: -2"},
        Case{std::string("\0\0\0\x80", 4), " Spec: -2147483648"},
        Case{std::string("\x07\0\0\0\x09", 5), " Spec: 7"}}) {
    TraceRecorder trace;
    ConsoleCapture console;
    Composant("Count", c.bytes.data(), static_cast<int>(c.bytes.size()), 1, "I").print();
    EXPECT_TRUE(trace.has(c.line)) << c.line;
  }
}

TEST(ComposantTest, OnlyTheExactKindIIsAnInteger) {
  for (const char* spec : {"S", "", "i", "II", "Int", " I"}) {
    TraceRecorder trace;
    ConsoleCapture console;
    Composant("Count", "\x01\x00\x00\x00", 4, 1, spec).print();
    EXPECT_EQ((Lines{"## Composant  Nom : ", "Taille: 4", " Type ", " Buffer : "}), trace.texts())
        << spec;
  }
}

TEST(ComposantTest, PrintsEmptyTextsAsErrors) {
  TraceRecorder trace;
  ConsoleCapture console;
  Composant(nullptr, nullptr, -7, 1, nullptr).print();
  EXPECT_EQ("error: NULL error: NULL error: NULL \n", console.text());
  EXPECT_EQ((Lines{"## Composant  Nom : ", "Taille: -7", " Type ", " Buffer : "}), trace.texts());
}

}  // namespace
