// What the bytes of a source may be: encodings, NULs, and documents that end too early or too late.
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "KelXMLParseServices.h"
#include "ParsedXml.h"

namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

constexpr std::string_view kDocument =
    "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n"
    "<!-- answer \xC3\xA9 -->\n"
    "<!DOCTYPE Answer [<!ENTITY site \"Z\xC3\xBCrich\"><!ATTLIST Document Type CDATA \"Part\">]>\n"
    "<Answer size='2'>\n"
    "  <LogObject Identifier=\"\xE4\xBD\xA0\" Path='C:\\x &amp; &#xE9;'>&site; text</LogObject>\n"
    "  <Document FilePath=\"a/b\"/><![CDATA[<raw>\xF0\x9F\x98\x80]]><?hint do it?>\n"
    "</Answer>\n"
    "<!-- end --><?last?>";

std::string inUtf16(std::string_view ascii, bool littleEndian) {
  std::string text;
  for (const char c : ascii) text += littleEndian ? std::string{c, '\0'} : std::string{'\0', c};
  return text;
}

std::string inUcs4(std::string_view ascii, bool littleEndian) {
  std::string text;
  for (const char c : ascii) {
    text += littleEndian ? std::string{c, '\0', '\0', '\0'} : std::string{'\0', '\0', '\0', c};
  }
  return text;
}

TEST(KelXMLParseServicesBytesTest, ADocumentCutAnywhereIsRefused) {
  ASSERT_TRUE(isAccepted(kDocument));
  const std::size_t rootEnd = kDocument.find("</Answer>") + "</Answer>"sv.size();
  for (std::size_t size = 0; size < kDocument.size(); ++size) {
    const std::string_view rest = kDocument.substr(rootEnd, size < rootEnd ? 0 : size - rootEnd);
    const bool isWhole = size >= rootEnd && (rest.empty() || rest == "\n" || rest.ends_with("-->"));
    EXPECT_EQ(isAccepted(kDocument.substr(0, size)), isWhole) << size;
  }
}

TEST(KelXMLParseServicesBytesTest, ADocumentWithANulAnywhereIsRefused) {
  // The parser would take the NUL in front of the last byte for the end of the document.
  for (std::size_t at = 0; at + 1 < kDocument.size(); ++at) {
    std::string text(kDocument);
    text[at] = '\0';
    EXPECT_FALSE(isAccepted(text)) << at;
    text = kDocument;
    text.insert(at, 1, '\0');
    EXPECT_FALSE(isAccepted(text)) << at;
  }
}

TEST(KelXMLParseServicesBytesTest, NulsBehindTheDocumentAreNoPartOfIt) {
  for (const std::size_t count : {1u, 2u, 3u, 4u, 100u, 100000u}) {
    EXPECT_TRUE(isAccepted("<a/>" + std::string(count, '\0'))) << count;
    EXPECT_TRUE(isAccepted("<a/>\n" + std::string(count, '\0'))) << count;
    EXPECT_FALSE(isAccepted("<a>" + std::string(count, '\0'))) << count;
    EXPECT_FALSE(isAccepted(std::string(count, '\0'))) << count;
    EXPECT_FALSE(isAccepted("<a/>" + std::string(count, '\0') + "x")) << count;
    EXPECT_FALSE(isAccepted("<a/>" + std::string(count, '\0') + "\n")) << count;
    EXPECT_FALSE(isAccepted("<a/>" + std::string(count, '\0') + "<!--c-->")) << count;
  }
}

TEST(KelXMLParseServicesBytesTest, ANulIsReportedWhereItStands) {
  EXPECT_EQ(refusalOf("<a>\nab\0c</a>"sv),
            "test: line 2, column 3: a NUL inside or behind the document");
  EXPECT_EQ(refusalOf(""), "test: line 1, column 1: the document is empty");
  EXPECT_EQ(refusalOf("\0\0"sv), "test: line 1, column 1: the document is empty");
}

TEST(KelXMLParseServicesBytesTest, AnyByteBehindTheRootIsRefusedUnlessItIsWhiteSpace) {
  for (int byte = 1; byte < 256; ++byte) {
    const char c = static_cast<char>(byte);
    const bool isBlank = c == ' ' || c == '\t' || c == '\r' || c == '\n';
    EXPECT_EQ(isAccepted(std::string("<a/>") + c), isBlank) << byte;
    EXPECT_EQ(isAccepted(std::string("<a/>") + c + "\n"), isBlank) << byte;
    EXPECT_EQ(isAccepted(std::string("<a/>\n") + c + '\0'), isBlank) << byte;
    EXPECT_EQ(isAccepted(std::string("<?xml version='1.0' encoding='ISO-8859-1'?><a/>") + c),
              isBlank)
        << byte;
  }
}

TEST(KelXMLParseServicesBytesTest, ACharacterCutOrBrokenIsRefused) {
  const std::string_view pieces[] = {
      "\xC3",
      "\xE2\x82",
      "\xF0\x9F",
      "\xF0\x9F\x98",
      "\x80",
      "\xBF",
      "\xC0\x80",
      "\xC1\xBF",
      "\xE0\x80\x80",
      "\xE0\x9F\xBF",
      "\xED\xA0\x80",
      "\xED\xBF\xBF",
      "\xF0\x80\x80\x80",
      "\xF0\x8F\xBF\xBF",
      "\xF4\x90\x80\x80",
      "\xF5\x80\x80\x80",
      "\xFE",
      "\xFF",
      "\xC3\x28",
      "\xEF\xBF\xBF",
  };
  for (const std::string_view piece : pieces) {
    const std::string bytes(piece);
    EXPECT_FALSE(isAccepted("<a/>" + bytes)) << testing::PrintToString(bytes);
    EXPECT_FALSE(isAccepted("<a>" + bytes + "</a>")) << testing::PrintToString(bytes);
    EXPECT_FALSE(isAccepted("<a x='" + bytes + "'/>")) << testing::PrintToString(bytes);
    EXPECT_FALSE(isAccepted("<a" + bytes + "/>")) << testing::PrintToString(bytes);
    EXPECT_FALSE(isAccepted("<!--" + bytes + "--><a/>")) << testing::PrintToString(bytes);
    EXPECT_FALSE(isAccepted("<a/>" + bytes + "\n")) << testing::PrintToString(bytes);
  }
}

TEST(KelXMLParseServicesBytesTest, ACharacterBeyondAllIsRefusedHoweverFarBehind) {
  for (const std::size_t before : {0u, 31u, 40u, 1000u, 100000u}) {
    const std::string text = "<a>" + std::string(before, 'x');
    for (const std::string_view piece :
         {"\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xF6\x90\x80\x80", "\xF7\xBF\xBF\xBF"}) {
      const std::string document = text + std::string(piece) + "</a>";
      EXPECT_FALSE(isAccepted(document)) << before;
      EXPECT_FALSE(isAccepted("<?xml version='1.0' encoding='utf-8'?>" + document)) << before;
      EXPECT_FALSE(isAccepted("<?xml version='1.0' encoding='UTF8'?>" + document)) << before;
    }
  }
  EXPECT_EQ(refusalOf("<a>\n" + std::string(40, 'x') + "\xF7\x9F\x98\x80</a>"),
            "test: line 2, column 41: a character beyond U+10FFFF");
}

TEST(KelXMLParseServicesBytesTest, TheSameBytesAreCharactersOfOtherEncodings) {
  const std::string letters(40, 'x');
  EXPECT_EQ(rewritten("<?xml version='1.0' encoding='ISO-8859-1'?><a>" + letters + "\xF7</a>"),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a>" + letters + "\xC3\xB7</a>");
  const std::string open = "\xFF\xFE" + inUtf16("<a>", true);
  EXPECT_EQ(rewritten(open + "\xF7\xF5"s + inUtf16("</a>", true)), "<a>\xEF\x97\xB7</a>");
}

TEST(KelXMLParseServicesBytesTest, AUnitThatIsNoCharacterIsRefused) {
  const std::string open = inUcs4("<?xml version='1.0' encoding='ISO-10646-UCS-4'?><a>", true);
  const std::string close = inUcs4("</a>", true);
  EXPECT_EQ(rewritten(open + "\x00\xF6\x01\x00"s + close),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a>\xF0\x9F\x98\x80</a>");
  EXPECT_FALSE(isAccepted(open + "\x00\x00\x11\x00"s + close));
  // The scanner would take each of these for U+1F600.
  EXPECT_FALSE(isAccepted(open + "\x3D\xD8\x00\x00\x00\xDE\x00\x00"s + close));
  EXPECT_FALSE(isAccepted(open + "\x00\xF6\x01\x04"s + close));
}

TEST(KelXMLParseServicesBytesTest, AByteOrderMarkIsNoPartOfTheDocument) {
  EXPECT_EQ(rewritten("\xEF\xBB\xBF<a/>"), "<a/>");
  EXPECT_FALSE(isAccepted("\xEF\xBB\xBF"));
  EXPECT_FALSE(isAccepted("\xEF\xBB\xBF\xEF\xBB\xBF<a/>"));
  EXPECT_FALSE(isAccepted("\xEF\xBB<a/>"));
}

TEST(KelXMLParseServicesBytesTest, DeclaredEncodingsAreRead) {
  EXPECT_EQ(rewritten("<?xml version='1.0' encoding='ISO-8859-1'?><a x='\xE9'>\xFC</a>"),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a x=\"\xC3\xA9\">\xC3\xBC</a>");
  EXPECT_EQ(rewritten("<?xml version='1.0' encoding='windows-1252'?><a>\x80</a>"),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a>\xE2\x82\xAC</a>");
  EXPECT_EQ(rewritten("<?xml version='1.0' encoding='US-ASCII'?><a>x</a>"),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a>x</a>");
  EXPECT_EQ(rewritten("<?xml version='1.0' encoding='utf-8'?><a>\xC3\xA9</a>"),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a>\xC3\xA9</a>");
}

TEST(KelXMLParseServicesBytesTest, WideEncodingsAreRead) {
  for (const bool little : {true, false}) {
    const std::string mark16 = little ? "\xFF\xFE" : "\xFE\xFF";
    const std::string declared = "<?xml version='1.0' encoding='UTF-16'?><a>x</a>";
    EXPECT_EQ(rewritten(mark16 + inUtf16(declared, little)),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a>x</a>");
    EXPECT_EQ(rewritten(inUtf16(declared, little)),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a>x</a>");
    EXPECT_EQ(rewritten(mark16 + inUtf16("<a>x</a>\n", little)), "<a>x</a>");
    EXPECT_EQ(rewritten(inUcs4("<?xml version='1.0' encoding='ISO-10646-UCS-4'?><a>x</a>", little)),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?><a>x</a>");
  }
}

TEST(KelXMLParseServicesBytesTest, NulsOfWideEncodingsAreWholeUnits) {
  for (const bool little : {true, false}) {
    const std::string mark = little ? "\xFF\xFE" : "\xFE\xFF";
    const std::string nul = inUtf16("\0"sv, little);
    const std::string document = mark + inUtf16("<a>x</a>", little);
    EXPECT_TRUE(isAccepted(document + nul + nul));
    EXPECT_FALSE(isAccepted(document + "\0"s));
    EXPECT_FALSE(isAccepted(document.substr(0, document.size() - 1)));
    EXPECT_FALSE(isAccepted(document + nul + inUtf16("x", little)));
    EXPECT_FALSE(isAccepted(document + nul + inUtf16("\n", little)));
    EXPECT_FALSE(isAccepted(mark + inUtf16("<a>\0</a>"sv, little)));
    EXPECT_FALSE(isAccepted(mark + nul));
    EXPECT_FALSE(isAccepted(mark));
  }
}

TEST(KelXMLParseServicesBytesTest, SurrogatesComeInPairs) {
  const std::string open = "\xFF\xFE" + inUtf16("<a>", true);
  const std::string close = inUtf16("</a>", true);
  EXPECT_EQ(rewritten(open + "\x3D\xD8\x00\xDE"s + close), "<a>\xF0\x9F\x98\x80</a>");
  EXPECT_FALSE(isAccepted(open + "\x3D\xD8"s + close));
  EXPECT_FALSE(isAccepted(open + "\x00\xDE"s + close));
  EXPECT_FALSE(isAccepted(open + "\x00\xDE\x3D\xD8"s + close));
  EXPECT_FALSE(isAccepted(open + close + "\x3D\xD8"));
}

TEST(KelXMLParseServicesBytesTest, EncodingsThatAreUnknownOrWrongAreRefused) {
  EXPECT_FALSE(isAccepted("<?xml version='1.0' encoding='nonsense'?><a/>"));
  EXPECT_FALSE(isAccepted("<?xml version='1.0' encoding=''?><a/>"));
  EXPECT_FALSE(isAccepted("<?xml version='1.0' encoding='8bit'?><a/>"));
  EXPECT_FALSE(isAccepted("<?xml version='1.0' encoding='UTF-16'?><a/>"));
  EXPECT_FALSE(isAccepted("<?xml version='1.0' encoding='ISO-10646-UCS-4'?><a/>"));
  EXPECT_FALSE(isAccepted("<?xml version='1.0' encoding='UTF-32'?><a/>"));
  EXPECT_EQ(refusalOf("<?xml version='1.0' encoding='utf-16le'?><a/>"),
            "test: line 1, column 42: the document is not encoded in utf-16le");
  EXPECT_FALSE(isAccepted("<?xml version='1.0' encoding='US-ASCII'?><a>\xC3\xA9</a>"));
  EXPECT_FALSE(isAccepted("<?xml version='1.0' encoding='UTF-8'?><a>\xE9</a>"));
  EXPECT_FALSE(
      isAccepted("\xFF\xFE" + inUtf16("<?xml version='1.0' encoding='UTF-8'?><a/>", true)));
  EXPECT_FALSE(
      isAccepted("\xFF\xFE" + inUtf16("<?xml version='1.0' encoding='ISO-8859-1'?><a/>", true)));
  EXPECT_FALSE(isAccepted("\xEF\xBB\xBF<?xml version='1.0' encoding='UTF-16'?><a/>"));
}

TEST(KelXMLParseServicesBytesTest, Xml11MayEndWithItsOwnLineEnds) {
  EXPECT_TRUE(isAccepted("<?xml version='1.1'?><a/>\xC2\x85"));
  EXPECT_TRUE(isAccepted("<?xml version='1.1'?><a/>\xE2\x80\xA8"));
  EXPECT_FALSE(isAccepted("<a/>\xC2\x85"));
  EXPECT_FALSE(isAccepted("<a/>\xE2\x80\xA8"));
}

TEST(KelXMLParseServicesBytesTest, ARefusalIsOneLineWhateverBytesItRepeats) {
  EXPECT_EQ(refusalOf("<a>\xc3\n</a>"),
            "test: line 1, column 1: invalid byte '\\x0A' at position 2 of a 2-byte sequence");
  EXPECT_NE(refusalOf("<a>\xc3\x7f</a>").find("'\\x7F'"), std::string::npos);
  EXPECT_NE(refusalOf("<a>\xc3\x1b</a>").find("'\\x1B'"), std::string::npos);
}

}  // namespace
