// Random documents, written and read again: seeded, so that a failure comes back.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "KelXMLParser.h"
#include "ParsedXml.h"

namespace {

class DocumentGenerator {
 public:
  explicit DocumentGenerator(unsigned int seed) : _random(seed) {}

  // A document, with what WriteXML has to give for it.
  std::string document() {
    std::string text;
    _isVersion11 = chance(4);
    if (_isVersion11 || chance(2)) {
      text += std::string("<?xml version=\"1.") + (_isVersion11 ? "1" : "0") + "\"";
      if (chance(2)) text += " encoding=\"UTF-8\"";
      if (chance(3)) text += chance(2) ? " standalone=\"yes\"" : " standalone=\"no\"";
      text += "?>";
    }
    text += misc();
    if (chance(3)) text += "<!DOCTYPE " + name() + ">" + misc();
    return text + element(0) + misc();
  }

 private:
  unsigned int below(unsigned int limit) { return static_cast<unsigned int>(_random() % limit); }
  bool chance(unsigned int outOf) { return below(outOf) == 0; }

  template <std::size_t Count>
  std::string_view oneOf(const std::string_view (&choices)[Count]) {
    return choices[below(Count)];
  }

  std::string name() {
    static constexpr std::string_view kNames[] = {
        "a", "Document", "Attribute", "x:y", "_", "\xC3\xA9t\xC3\xA9", "\xE4\xBD\xA0", "a-b.c",
    };
    return std::string(oneOf(kNames));
  }

  std::string plain() {
    static constexpr std::string_view kPieces[] = {
        "text",
        " ",
        "\n",
        "\t",
        "'",
        "]",
        "-",
        "\xC3\xA9",
        "\xE2\x82\xAC",
        "\xF0\x9F\x98\x80",
        "0123456789abcdef",
        "a",
    };
    std::string text;
    for (unsigned int i = below(6); i > 0; --i) text += oneOf(kPieces);
    return text;
  }

  std::string characters() {
    static constexpr std::string_view kEscaped[] = {"&amp;", "&lt;", "&gt;",
                                                    "&#13;", "\"",   "]]&gt;"};
    static constexpr std::string_view kOf11[] = {"&#1;", "&#127;", "&#133;", "&#159;", "&#8232;"};
    static constexpr std::string_view kOf10[] = {"\x7F", "\xC2\x85", "\xC2\x9F", "\xE2\x80\xA8"};
    std::string text = plain();
    while (chance(2)) {
      text += oneOf(kEscaped);
      if (chance(3)) text += _isVersion11 ? oneOf(kOf11) : oneOf(kOf10);
      text += plain();
    }
    return text;
  }

  std::string attributeValue() {
    std::string value;
    static constexpr std::string_view kPieces[] = {
        "&amp;",      "&lt;", ">", "&#13;", "&#10;",    "&#9;",
        "&quot;",     "'",    " ", "v",     "\xC3\xA9", "\xF0\x9F\x98\x80",
        "1234567890",
    };
    for (unsigned int i = below(8); i > 0; --i) value += oneOf(kPieces);
    return value;
  }

  std::string misc() {
    std::string text;
    while (chance(3)) text += chance(2) ? comment() : instruction();
    return text;
  }

  std::string comment() { return "<!--" + withoutDashes(plain()) + "-->"; }

  std::string instruction() {
    const std::string data = plain();
    const std::size_t start = data.find_first_not_of(" \n\t");
    return "<?" + name() + (start == std::string::npos ? "" : " " + data.substr(start)) + "?>";
  }

  static std::string withoutDashes(std::string text) {
    for (char& c : text) {
      if (c == '-') c = '+';
    }
    return text;
  }

  std::string element(int depth) {
    const std::string tag = name();
    std::string text = "<" + tag;
    for (unsigned int i = below(4), n = 0; n < i; ++n) {
      text += " " + name() + std::to_string(n) + "=\"" + attributeValue() + "\"";
    }
    const std::string inside = content(depth);
    return inside.empty() ? text + "/>" : text + ">" + inside + "</" + tag + ">";
  }

  std::string content(int depth) {
    std::string text;
    for (unsigned int i = below(6); i > 0; --i) {
      switch (below(6)) {
        case 0:
          text += comment();
          break;
        case 1:
          text += instruction();
          break;
        case 2:
          text += "<![CDATA[" + plain() + "<&>]]>";
          break;
        case 3:
          if (depth < 6) text += element(depth + 1);
          break;
        default:
          text += characters();
          break;
      }
    }
    return text;
  }

  std::mt19937 _random;
  bool _isVersion11 = false;
};

TEST(KelXMLParserRoundTripTest, EveryDocumentComesBackAsItWas) {
  for (unsigned int seed = 0; seed < 3000; ++seed) {
    const std::string text = DocumentGenerator(seed).document();
    ASSERT_EQ(rewritten(text), text) << "seed " << seed;
  }
}

TEST(KelXMLParserRoundTripTest, ADamagedDocumentIsRefusedOrComesBackForGood) {
  std::mt19937 random(7);
  int accepted = 0;
  for (unsigned int seed = 0; seed < 3000; ++seed) {
    std::string text = DocumentGenerator(seed).document();
    text[random() % text.size()] = static_cast<char>(random() % 256);
    if (!isAccepted(text)) continue;
    ++accepted;
    const std::string once = rewritten(text);
    ASSERT_EQ(rewritten(once), once) << "seed " << seed;
  }
  EXPECT_GT(accepted, 100);
}

}  // namespace
