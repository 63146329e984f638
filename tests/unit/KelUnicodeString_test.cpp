#include "KelUnicodeString.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "KelLib.h"

namespace {

std::string roundTrip(const std::string& bytes) {
  const KelUnicodeString text(bytes.c_str());
  const KelUnicodeString back(text.ConvertToWide());
  return back.ConvertToChar();
}

}  // namespace

TEST(KelUnicodeStringTest, DefaultIsNullAndReadsAsEmpty) {
  const KelUnicodeString text;
  EXPECT_TRUE(text.IsNull());
  EXPECT_STREQ(text.ConvertToChar(), "");
  EXPECT_STREQ(text.ConvertToWide(), L"");
  EXPECT_EQ(text.GetLength(), 0);
}

TEST(KelUnicodeStringTest, NullPointersGiveANullText) {
  EXPECT_TRUE(KelUnicodeString(static_cast<const char*>(nullptr)).IsNull());
  EXPECT_TRUE(KelUnicodeString(static_cast<const wchar_t*>(nullptr)).IsNull());
}

TEST(KelUnicodeStringTest, EmptyTextsAreNotNull) {
  EXPECT_FALSE(KelUnicodeString("").IsNull());
  EXPECT_FALSE(KelUnicodeString(L"").IsNull());
}

TEST(KelUnicodeStringTest, EqualityComparesWholeTexts) {
  EXPECT_TRUE(KelUnicodeString("abc") == KelUnicodeString("abc"));
  EXPECT_FALSE(KelUnicodeString("abc") == KelUnicodeString("abcd"));
  EXPECT_FALSE(KelUnicodeString("abc") == KelUnicodeString("ab"));
  EXPECT_FALSE(KelUnicodeString("abc") == KelUnicodeString("ABC"));
}

TEST(KelUnicodeStringTest, NullEqualsEmpty) {
  EXPECT_TRUE(KelUnicodeString() == KelUnicodeString(""));
  EXPECT_TRUE(KelUnicodeString("") == KelUnicodeString());
}

TEST(KelUnicodeStringTest, WideFormHoldsTheCharacters) {
  EXPECT_STREQ(KelUnicodeString("A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80").ConvertToWide(),
               L"A\u00E9\u20AC\U0001F600");
}

TEST(KelUnicodeStringTest, WideTextBecomesUtf8) {
  EXPECT_STREQ(
      KelUnicodeString(L"A\u007F\u0080\u07FF\u0800\uFFFD\U00010000\U0010FFFF").ConvertToChar(),
      "A\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBD\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
}

TEST(KelUnicodeStringTest, SurrogatePairsAreOneCharacter) {
  const wchar_t pair[] = {0xD83D, 0xDE00, 0};
  EXPECT_STREQ(KelUnicodeString(pair).ConvertToChar(), "\xF0\x9F\x98\x80");
  EXPECT_EQ(KelUnicodeString(pair).GetLength(), 1);
}

// The second half of this pair has the form of a byte that is no UTF-8.
TEST(KelUnicodeStringTest, SurrogatePairsGoBeforeStrayBytes) {
  const wchar_t pair[] = {0xD83D, 0xDC80, 0};
  EXPECT_STREQ(KelUnicodeString(pair).ConvertToChar(), "\xF0\x9F\x92\x80");
}

TEST(KelUnicodeStringTest, WideValuesBeyondUnicodeAreReplaced) {
  if constexpr (sizeof(wchar_t) > 2) {
    const wchar_t beyond[] = {static_cast<wchar_t>(0x110000), 0};
    EXPECT_STREQ(KelUnicodeString(beyond).ConvertToChar(), "\xEF\xBF\xBD");
  }
}

struct StrayCase {
  const char* what;
  const char* bytes;
  const wchar_t* wide;
};

TEST(KelUnicodeStringTest, BytesThatAreNoUtf8StandForOneCharacterEach) {
  const wchar_t lone[] = {'a', 0xDCE9, 'b', 0};
  const wchar_t continuation[] = {0xDC80, 0xDCBF, 0};
  const wchar_t cut2[] = {0xDCC3, 0};
  const wchar_t cut3[] = {0xDCE2, 0xDC82, 0};
  const wchar_t cut4[] = {0xDCF0, 0xDC9F, 0xDC98, 0};
  const wchar_t interrupted[] = {0xDCE2, 0xDC82, '/', 0};
  const wchar_t surrogate[] = {0xDCED, 0xDCA0, 0xDC80, 0};
  const wchar_t escape[] = {0xDCED, 0xDCB2, 0xDC80, 0};
  const wchar_t overlong2[] = {0xDCC0, 0xDCAF, 0};
  const wchar_t overlong2b[] = {0xDCC1, 0xDCBF, 0};
  const wchar_t overlong3[] = {0xDCE0, 0xDC9F, 0xDCBF, 0};
  const wchar_t overlong4[] = {0xDCF0, 0xDC8F, 0xDCBF, 0xDCBF, 0};
  const wchar_t beyond[] = {0xDCF4, 0xDC90, 0xDC80, 0xDC80, 0};
  const wchar_t five[] = {0xDCF8, 0xDC88, 0xDC80, 0xDC80, 0xDC80, 0};
  const wchar_t never[] = {0xDCFE, 0xDCFF, 0};
  const StrayCase cases[] = {
      {"a Latin-1 letter",
       "a\xE9"
       "b",
       lone},
      {"continuation bytes alone", "\x80\xBF", continuation},
      {"two bytes cut", "\xC3", cut2},
      {"three bytes cut", "\xE2\x82", cut3},
      {"four bytes cut", "\xF0\x9F\x98", cut4},
      {"a sequence interrupted by ASCII", "\xE2\x82/", interrupted},
      {"an encoded high surrogate", "\xED\xA0\x80", surrogate},
      {"an encoded stray byte", "\xED\xB2\x80", escape},
      {"'/' in two bytes", "\xC0\xAF", overlong2},
      {"U+007F in two bytes", "\xC1\xBF", overlong2b},
      {"U+07FF in three bytes", "\xE0\x9F\xBF", overlong3},
      {"U+FFFF in four bytes", "\xF0\x8F\xBF\xBF", overlong4},
      {"beyond U+10FFFF", "\xF4\x90\x80\x80", beyond},
      {"five bytes", "\xF8\x88\x80\x80\x80", five},
      {"bytes never used", "\xFE\xFF", never},
  };
  for (const StrayCase& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_STREQ(KelUnicodeString(c.bytes).ConvertToWide(), c.wide);
    EXPECT_EQ(roundTrip(c.bytes), c.bytes);
  }
}

TEST(KelUnicodeStringTest, EveryPairOfBytesComesBackUnchanged) {
  for (int first = 1; first < 256; ++first) {
    for (int second = 1; second < 256; ++second) {
      const std::string bytes = {static_cast<char>(first), static_cast<char>(second), 'z'};
      ASSERT_EQ(roundTrip(bytes), bytes) << first << " " << second;
    }
  }
}

TEST(KelUnicodeStringTest, EveryCharacterComesBackUnchanged) {
  for (char32_t code = 1; code <= 0x10FFFF; code += code < 0x3000 ? 1 : 97) {
    if (code >= 0xD800 && code <= 0xDFFF) continue;
    std::string bytes;
    if (code < 0x80) {
      bytes = {static_cast<char>(code)};
    } else if (code < 0x800) {
      bytes = {static_cast<char>(0xC0 | code >> 6), static_cast<char>(0x80 | (code & 0x3F))};
    } else if (code < 0x10000) {
      bytes = {static_cast<char>(0xE0 | code >> 12), static_cast<char>(0x80 | (code >> 6 & 0x3F)),
               static_cast<char>(0x80 | (code & 0x3F))};
    } else {
      bytes = {static_cast<char>(0xF0 | code >> 18), static_cast<char>(0x80 | (code >> 12 & 0x3F)),
               static_cast<char>(0x80 | (code >> 6 & 0x3F)),
               static_cast<char>(0x80 | (code & 0x3F))};
    }
    ASSERT_EQ(roundTrip(bytes), bytes) << "U+" << std::hex << static_cast<unsigned>(code);
    ASSERT_EQ(KelUnicodeString(bytes.c_str()).GetLength(), 1);
  }
}

TEST(KelUnicodeStringTest, WideFormFollowsAnAssignment) {
  KelUnicodeString text("first");
  EXPECT_STREQ(text.ConvertToWide(), L"first");
  text = KelUnicodeString("second");
  EXPECT_STREQ(text.ConvertToWide(), L"second");
  text = KelUnicodeString();
  EXPECT_STREQ(text.ConvertToWide(), L"");
}

TEST(KelUnicodeStringTest, WideFormOfACopyIsItsOwn) {
  KelUnicodeString text("first");
  EXPECT_STREQ(text.ConvertToWide(), L"first");
  const KelUnicodeString copy(text);
  text = KelUnicodeString("second");
  EXPECT_STREQ(copy.ConvertToWide(), L"first");
  EXPECT_STREQ(copy.ConvertToChar(), "first");
}

TEST(KelUnicodeStringTest, LengthCountsCharacters) {
  EXPECT_EQ(KelUnicodeString("abc").GetLength(), 3);
  EXPECT_EQ(KelUnicodeString("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80").GetLength(), 3);
  EXPECT_EQ(KelUnicodeString("a\xFF\xC3").GetLength(), 3);
}

struct SubStringCase {
  const char* text;
  int start;
  int length;
  const char* expected;
};

TEST(KelUnicodeStringTest, SubStringTakesWhatTheTextHas) {
  const SubStringCase cases[] = {
      {"2008-03-12", 0, 4, "2008"},
      {"2008-03-12", 5, 2, "03"},
      {"2008-03-12", 8, 2, "12"},
      {"2008-03-12", 8, 20, "12"},
      {"2008-03-12", 0, INT_MAX, "2008-03-12"},
      {"2008-03-12", 9, 1, "2"},
      {"2008-03-12", 10, 1, ""},
      {"2008-03-12", 11, 1, ""},
      {"2008-03-12", INT_MAX, INT_MAX, ""},
      {"2008-03-12", 3, 0, ""},
      {"2008-03-12", -1, 4, ""},
      {"2008-03-12", 0, -1, ""},
      {"", 0, 4, ""},
      {"\xC3\xA9t\xC3\xA9", 1, 2, "t\xC3\xA9"},
      {"a\xE2\x82"
       "b\xFF",
       1, 3,
       "\xE2\x82"
       "b"},
      {"\xF0\x9F\x98\x80x", 1, 1, "x"},
  };
  for (const SubStringCase& c : cases) {
    const KelUnicodeString part = KelUnicodeString(c.text).SubString(c.start, c.length);
    EXPECT_STREQ(part.ConvertToChar(), c.expected) << c.text << " " << c.start << " " << c.length;
    EXPECT_FALSE(part.IsNull());
  }
}

TEST(KelUnicodeStringTest, SubStringOfANullTextIsEmpty) {
  EXPECT_STREQ(KelUnicodeString().SubString(0, 4).ConvertToChar(), "");
}

TEST(KelUnicodeStringTest, SubStringHasItsOwnWideForm) {
  const KelUnicodeString text("abcdef");
  EXPECT_STREQ(text.ConvertToWide(), L"abcdef");
  EXPECT_STREQ(text.SubString(2, 2).ConvertToWide(), L"cd");
}

struct StripCase {
  const char* text;
  KelStripMode mode;
  const char* expected;
};

TEST(KelUnicodeStringTest, StripRemovesBlanksAtTheEndsThatItNames) {
  const StripCase cases[] = {
      {"  a b  ", KelStripLeading, "a b  "},
      {"  a b  ", KelStripTrailing, "  a b"},
      {"  a b  ", KelStripBoth, "a b"},
      {" \t\n\r\v\fa \t\n\r\v\f", KelStripBoth, "a"},
      {"a", KelStripBoth, "a"},
      {"", KelStripBoth, ""},
      {" \t ", KelStripLeading, ""},
      {" \t ", KelStripTrailing, ""},
      {" \t ", KelStripBoth, ""},
      {"\xC2\xA0"
       "a",
       KelStripBoth,
       "\xC2\xA0"
       "a"},
  };
  for (const StripCase& c : cases) {
    EXPECT_STREQ(KelUnicodeString(c.text).Strip(c.mode).ConvertToChar(), c.expected)
        << "'" << c.text << "' " << c.mode;
  }
}

TEST(KelUnicodeStringTest, StripModesAreNumberedForOlderHosts) {
  EXPECT_EQ(KelStripLeading, 0);
  EXPECT_EQ(KelStripTrailing, 1);
  EXPECT_EQ(KelStripBoth, 2);
}

TEST(KelUnicodeStringTest, StripLeavesItsObjectAndMakesAWideFormOfItsOwn) {
  const KelUnicodeString text(" a ");
  EXPECT_STREQ(text.ConvertToWide(), L" a ");
  EXPECT_STREQ(text.Strip(KelStripBoth).ConvertToWide(), L"a");
  EXPECT_STREQ(text.ConvertToChar(), " a ");
}

struct NumberCase {
  const char* text;
  long result;
  int value;
};

TEST(KelUnicodeStringTest, ConvertToNumReadsWhatPercentDReads) {
  const NumberCase cases[] = {
      {"0", S_OK, 0},
      {"2008", S_OK, 2008},
      {"08", S_OK, 8},
      {"-17", S_OK, -17},
      {"+17", S_OK, 17},
      {" \t\n17", S_OK, 17},
      {"17abc", S_OK, 17},
      {"17 18", S_OK, 17},
      {"2147483647", S_OK, INT_MAX},
      {"-2147483648", S_OK, INT_MIN},
      {"2147483648", E_FAIL, 0},
      {"-2147483649", E_FAIL, 0},
      {"99999999999999999999", E_FAIL, 0},
      {"", E_FAIL, 0},
      {"   ", E_FAIL, 0},
      {"abc", E_FAIL, 0},
      {"+", E_FAIL, 0},
      {"-", E_FAIL, 0},
      {"+-17", E_FAIL, 0},
      {"--17", E_FAIL, 0},
      {"++17", E_FAIL, 0},
      {"+ 17", E_FAIL, 0},
  };
  for (const NumberCase& c : cases) {
    int value = 77;
    EXPECT_EQ(KelUnicodeString(c.text).ConvertToNum(&value, "%d"), c.result) << c.text;
    EXPECT_EQ(value, c.value) << c.text;
  }
}

TEST(KelUnicodeStringTest, ConvertToNumOfANullTextIsNoNumber) {
  int value = 77;
  EXPECT_EQ(KelUnicodeString().ConvertToNum(&value, "%d"), E_FAIL);
  EXPECT_EQ(value, 0);
}

TEST(KelUnicodeStringTest, ConvertToNumKnowsOneFormat) {
  for (const char* format : {"%x", "%i", "d", "", "%d ", static_cast<const char*>(nullptr)}) {
    int value = 77;
    EXPECT_EQ(KelUnicodeString("12").ConvertToNum(&value, format), E_FAIL);
    EXPECT_EQ(value, 0);
  }
}

TEST(KelUnicodeStringTest, ConvertToNumRefusesANullValue) {
  EXPECT_EQ(KelUnicodeString("12").ConvertToNum(nullptr, "%d"), E_FAIL);
}
