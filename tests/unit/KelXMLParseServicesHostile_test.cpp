// Documents that want to harm: by what they load, by how they grow, by how deep they are.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <string>
#include <string_view>

#include "../../KelFoundation/xml/src/KelXmlBlocks.h"
#include "Files.h"
#include "KelInputSource.h"
#include "KelLib.h"
#include "KelXMLParseServices.h"
#include "ParsedXml.h"
#include "ScratchDirectory.h"
#include "TraceRecorder.h"

namespace {

constexpr std::size_t kMegabyte = std::size_t{1024} * 1024;

// Counts the memory of parsers and trees, and refuses one request, or all from it on.
class MemoryWatcher : public KelXmlBlocks::Watcher {
 public:
  MemoryWatcher() : _before(KelXmlBlocks::SetWatcher(this)) {}
  ~MemoryWatcher() override { KelXmlBlocks::SetWatcher(_before); }
  MemoryWatcher(const MemoryWatcher&) = delete;
  MemoryWatcher& operator=(const MemoryWatcher&) = delete;

  bool OnGet(std::size_t size) override {
    ++_requests;
    if (_requests == _refused || (_refuseOn && _requests > _refused)) return false;
    _taken += static_cast<long>(size);
    _peak = std::max(_peak, _taken);
    return true;
  }
  void OnRelease(std::size_t size) override { _taken -= static_cast<long>(size); }

  // Refuses the `count`-th request from now on, and those behind it when `refuseOn`.
  void refuse(long count, bool refuseOn) {
    _requests = 0;
    _refused = count;
    _refuseOn = refuseOn;
  }
  bool hasRefused() const { return _requests >= _refused; }

  // Bytes more than when the watching began; negative when old ones were given back.
  long taken() const { return _taken; }
  std::size_t peak() const { return static_cast<std::size_t>(_peak); }

 private:
  KelXmlBlocks::Watcher* _before;
  long _requests = 0;
  long _refused = std::numeric_limits<long>::max();
  bool _refuseOn = false;
  long _taken = 0;
  long _peak = 0;
};

// Makes the next document meet a parser without anything in stock: none is used again after
// XML 1.1, and no more than a few are kept.
void dropKeptParsers() {
  for (int i = 0; i < 8; ++i) EXPECT_TRUE(isAccepted("<?xml version='1.1'?><a/>"));
}

class KelXMLParseServicesHostileTest : public ::testing::Test {
 protected:
  ScratchDirectory _scratch;
};

TEST_F(KelXMLParseServicesHostileTest, ExternalEntitiesAreNotLoaded) {
  const std::string secret = _scratch.file("secret.txt");
  writeBytes(secret, "secret");
  for (const std::string& name :
       {secret, "file://" + secret, std::string("http://localhost:1/x")}) {
    const std::string general = "<!DOCTYPE a [<!ENTITY e SYSTEM '" + name + "'>]>";
    const std::string refusals[] = {
        refusalOf(general + "<a>&e;</a>"),
        refusalOf("<!DOCTYPE a [<!ENTITY e PUBLIC 'p' '" + name + "'>]><a>&e;</a>"),
        refusalOf("<!DOCTYPE a [<!ENTITY % e SYSTEM '" + name + "'>%e;]><a/>"),
        refusalOf("<!DOCTYPE a [<!ENTITY % e PUBLIC 'p' '" + name + "'>%e;]><a/>"),
        refusalOf("<!DOCTYPE a [<!ENTITY e SYSTEM '" + name + "'><!ENTITY f '&e;'>]><a>&f;</a>"),
    };
    for (const std::string& refusal : refusals) {
      EXPECT_NE(refusal.find("the external entity \"" + name + "\" is not loaded"),
                std::string::npos)
          << refusal;
    }
    EXPECT_FALSE(isAccepted(general + "<a x='&e;'/>"));
    EXPECT_EQ(rewritten(general + "<a>not used</a>"), "<!DOCTYPE a><a>not used</a>");
  }
}

TEST_F(KelXMLParseServicesHostileTest, ExternalDocumentTypesAreNotLoaded) {
  // Had it been read, the document would be refused.
  const std::string broken = _scratch.file("broken.dtd");
  writeBytes(broken, "<!ATTLIST a x CDATA 'secret'> <<< broken");
  for (const std::string& name : {broken, "file://" + broken, _scratch.file("absent.dtd")}) {
    EXPECT_EQ(rewritten("<!DOCTYPE a SYSTEM '" + name + "'><a/>"),
              "<!DOCTYPE a SYSTEM \"" + name + "\"><a/>");
    EXPECT_EQ(rewritten("<!DOCTYPE a PUBLIC 'p' '" + name + "' [<!ENTITY e 'x'>]><a>&e;</a>"),
              "<!DOCTYPE a PUBLIC \"p\" \"" + name + "\"><a>x</a>");
  }
}

TEST_F(KelXMLParseServicesHostileTest, SchemasAreNotLoaded) {
  const std::string text =
      "<a xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" "
      "xsi:noNamespaceSchemaLocation=\"" +
      _scratch.file("absent.xsd") + "\"/>";
  EXPECT_EQ(rewritten(text), text);
}

TEST_F(KelXMLParseServicesHostileTest, AThousandExpansionsAreTheBound) {
  const std::string open = "<!DOCTYPE a [<!ENTITY e 'x'>]><a>";
  EXPECT_EQ(rewritten(open + repeated("&e;", 1000) + "</a>"),
            "<!DOCTYPE a><a>" + std::string(1000, 'x') + "</a>");
  EXPECT_NE(refusalOf(open + repeated("&e;", 1001) + "</a>").find("more than 1,000 entities"),
            std::string::npos);
  EXPECT_FALSE(isAccepted("<!DOCTYPE a [<!ENTITY e 'x'>]><a b='" + repeated("&e;", 1001) + "'/>"));
}

TEST_F(KelXMLParseServicesHostileTest, CharactersAndPredefinedEntitiesAreNoExpansions) {
  EXPECT_EQ(outline(parsed("<a>" + repeated("&lt;&amp;&#65;", 2000) + "</a>")),
            "#document(a(#text=[" + repeated("<&A", 2000) + "]))");
}

TEST_F(KelXMLParseServicesHostileTest, NestedExpansionsAreBounded) {
  std::string declarations = "<!DOCTYPE a [<!ENTITY e0 'ha'>";
  std::string parameters = "<!DOCTYPE a [<!ENTITY % e0 ''>";
  for (int i = 1; i < 20; ++i) {
    const std::string name = "e" + std::to_string(i);
    const std::string inner = "e" + std::to_string(i - 1) + ";";
    declarations += "<!ENTITY " + name + " '" + repeated("&" + inner, 10) + "'>";
    parameters += "<!ENTITY % " + name + " '" + repeated("&#37;" + inner, 10) + "'>";
  }
  const MemoryWatcher memory;
  for (const std::string& text :
       {declarations + "]><a>&e19;</a>", declarations + "]><a x='&e19;'/>",
        declarations + "<!ATTLIST a x CDATA '&e19;'>]><a/>", parameters + "%e19;]><a/>"}) {
    EXPECT_NE(refusalOf(text).find("more than 1,000 entities"), std::string::npos);
  }
  EXPECT_LT(memory.peak(), 16 * kMegabyte);
}

TEST_F(KelXMLParseServicesHostileTest, EntitiesMayBeNestedAsDeepAsTheyMayBeMany) {
  std::string chain = "<!DOCTYPE a [<!ENTITY e1 'x'>";
  for (int i = 2; i <= 1001; ++i) {
    chain += "<!ENTITY e" + std::to_string(i) + " '&e" + std::to_string(i - 1) + ";'>";
  }
  const MemoryWatcher memory;
  EXPECT_EQ(rewritten(chain + "]><a>&e1000;</a>"), "<!DOCTYPE a><a>x</a>");
  EXPECT_EQ(rewritten(chain + "]><a b='&e1000;'/>"), "<!DOCTYPE a><a b=\"x\"/>");
  EXPECT_FALSE(isAccepted(chain + "]><a>&e1001;</a>"));
  EXPECT_LT(memory.peak(), 256 * kMegabyte);
  EXPECT_LT(memory.taken(), static_cast<long>(2 * kMegabyte));
}

TEST_F(KelXMLParseServicesHostileTest, WhatAFewExpansionsGrowToIsBounded) {
  const std::string text = "<!DOCTYPE a [<!ENTITY e '" + std::string(500000, 'x') + "'>]>";
  const std::string nodes = "<!DOCTYPE a [<!ENTITY e '" + repeated("<b/>", 125000) + "'>]>";
  const std::string many = repeated("&e;", 1000);
  const MemoryWatcher memory;
  EXPECT_NE(refusalOf(text + "<a>" + many + "</a>").find("too large"), std::string::npos);
  EXPECT_NE(refusalOf(nodes + "<a>" + many + "</a>").find("too large"), std::string::npos);
  EXPECT_NE(refusalOf(text + "<a x='" + many + "'/>").find("too much memory"), std::string::npos);
  EXPECT_LT(memory.peak(), 128 * kMegabyte);
}

TEST_F(KelXMLParseServicesHostileTest, WhatDefaultAttributesGrowToIsBounded) {
  std::string declarations;
  for (int i = 0; i < 5000; ++i) declarations += " x" + std::to_string(i) + " CDATA 'v'";
  const MemoryWatcher memory;
  EXPECT_FALSE(isAccepted("<!DOCTYPE a [<!ATTLIST b" + declarations + ">]><a>" +
                          repeated("<b/>", 20000) + "</a>"));
  EXPECT_LT(memory.peak(), 64 * kMegabyte);
}

TEST_F(KelXMLParseServicesHostileTest, AttributesDeclaredInVainAreBounded) {
  std::string declarations;
  for (int i = 0; i < 5000; ++i) declarations += " x" + std::to_string(i) + " CDATA #IMPLIED";
  EXPECT_NE(refusalOf("<!DOCTYPE a [<!ATTLIST b" + declarations + ">]><a>" +
                      repeated("<b/>", 20000) + "</a>")
                .find("too many attributes are declared"),
            std::string::npos);
}

TEST_F(KelXMLParseServicesHostileTest, AThousandLevelsAreTheBound) {
  const std::string within = repeated("<a>", 999) + "<a/>" + repeated("</a>", 999);
  EXPECT_EQ(rewritten(within), within);
  EXPECT_EQ(rewritten(repeated("<a>", 1000) + repeated("</a>", 1000)), within);
  const std::string refusal = "test: line 1, column 3004: elements are nested deeper than 1,000";
  EXPECT_EQ(refusalOf(repeated("<a>", 1001) + repeated("</a>", 1001)), refusal);
  EXPECT_EQ(refusalOf(repeated("<a>", 1000000)), refusal);
  EXPECT_FALSE(isAccepted(repeated("<a>", 1000) + "<a/>" + repeated("</a>", 1000)));
}

TEST_F(KelXMLParseServicesHostileTest, DeepAndLongDeclarationsAreRead) {
  EXPECT_TRUE(isAccepted("<!DOCTYPE a [<!ELEMENT a " + repeated("(", 50000) + "b" +
                         repeated(")", 50000) + ">]><a/>"));
  EXPECT_TRUE(isAccepted("<!DOCTYPE a [<!ELEMENT a (b" + repeated(",b", 20000) + ")>]><a/>"));
  EXPECT_TRUE(isAccepted("<!DOCTYPE a [<!ELEMENT a (b" + repeated("|b", 20000) + ")>]><a/>"));
}

TEST_F(KelXMLParseServicesHostileTest, AnElementMayHaveVeryManyAttributes) {
  std::string text = "<a";
  for (int i = 0; i < 40000; ++i) text += " a" + std::to_string(i) + "=\"v\"";
  EXPECT_EQ(rewritten(text + "/>"), text + "/>");
  EXPECT_FALSE(isAccepted(text + " a0=\"v\"/>"));
}

TEST_F(KelXMLParseServicesHostileTest, NoAttributeOfManyMayStandTwice) {
  for (const int count : {28, 29, 30, 60, 113, 114, 115, 300}) {
    for (int again = 0; again < count; ++again) {
      // A new parser, with the smallest tables.
      EXPECT_TRUE(isAccepted("<?xml version='1.1'?><a/>"));
      std::string text = "<a";
      for (int i = 0; i < count; ++i) text += " a" + std::to_string(i) + "=\"v\"";
      const std::string twice = " a" + std::to_string(again) + "=\"v\"/>";
      EXPECT_NE(refusalOf(text + twice).find("is already specified for element 'a'"),
                std::string::npos);
    }
  }
}

TEST_F(KelXMLParseServicesHostileTest, NothingIsLeftBehindByTenThousandDocuments) {
  const std::string whole = "<!DOCTYPE a [<!ENTITY e 'x'><!ATTLIST b y CDATA 'z'>]><a>" +
                            repeated("<b x='1'>&e;</b>", 20) + "</a>";
  const std::string broken = whole.substr(0, whole.size() - 2);
  const auto parseBoth = [&] {
    EXPECT_TRUE(isAccepted(whole));
    EXPECT_FALSE(isAccepted(broken));
  };
  for (int i = 0; i < 10; ++i) parseBoth();
  const MemoryWatcher memory;
  for (int i = 0; i < 5000; ++i) parseBoth();
  EXPECT_EQ(memory.taken(), 0);
  EXPECT_LT(memory.peak(), kMegabyte / 8);
}

TEST_F(KelXMLParseServicesHostileTest, NamesThatAreAlwaysNewDoNotPileUp) {
  const MemoryWatcher memory;
  for (int i = 0; i < 10000; ++i) ASSERT_TRUE(isAccepted("<n" + std::to_string(i) + "/>"));
  EXPECT_LT(memory.peak(), 4 * kMegabyte);
}

TEST_F(KelXMLParseServicesHostileTest, AHugeDocumentDoesNotStayInMemory) {
  EXPECT_TRUE(isAccepted("<a/>"));
  const MemoryWatcher memory;
  std::string text = "<a x='" + std::string(2000000, 'x') + "'>";
  for (int i = 0; i < 20000; ++i) text += "<n" + std::to_string(i) + "/>";
  EXPECT_TRUE(isAccepted(text + "</a>"));
  EXPECT_LT(memory.taken(), static_cast<long>(3 * kMegabyte));
}

// Refuses each request for memory in turn: every time a refusal or the whole document, and
// nothing is lost.
TEST_F(KelXMLParseServicesHostileTest, AFailingAllocationIsARefusalWhereverItFalls) {
  const std::string text =
      "<!DOCTYPE a [<!ENTITY e 'x'><!ATTLIST b y CDATA 'z'><!ELEMENT b (c|d)*>]>"
      "<a><b x='1'>&e;</b><c/>" +
      std::string(40000, 't') + "<!--c--></a>";
  for (const bool refuseOn : {false, true}) {
    for (long count = 1;; ++count) {
      dropKeptParsers();
      MemoryWatcher memory;
      memory.refuse(count, refuseOn);
      const TraceRecorder trace;
      const KelInputSource source(std::string_view(text), "test");
      DOM_Document document;
      const long result = KelXMLParseServices::XMLParse(source, document);
      if (!memory.hasRefused()) {
        EXPECT_EQ(result, S_OK);
        EXPECT_GT(count, 50);
        break;
      }
      EXPECT_EQ(result, E_FAIL) << count;
      EXPECT_TRUE(document.isNull()) << count;
      EXPECT_EQ(trace.lines().size(), 1u) << count;
    }
    EXPECT_TRUE(isAccepted(text));
  }
}

}  // namespace
