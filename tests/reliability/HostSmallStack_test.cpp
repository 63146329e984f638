// A host whose exchange thread has a small stack: nothing that is exchanged, recorded or read
// recurses so deep that 256 KB would not do.
#include "../scenario/SessionFixture.h"
#include "CollectorErrors.h"
#include "DOM_Document.h"
#include "DataScript.h"
#include "KelPDMBaseServices.h"
#include "KelXMLParseServices.h"
#include "KelXMLParser.h"
#include "MsgXML.h"
#include "SmallStack.h"
#include "ZetNorvBuilders.h"
#include "ZetNorvScript.h"

namespace {

using namespace session_test;

constexpr std::size_t kStack = std::size_t{256} * 1024;
// Room to measure in, where the stack itself is not to be what fails.
constexpr std::size_t kRoom = std::size_t{4} * 1024 * 1024;

std::string repeated(const std::string& piece, int times) {
  std::string text;
  text.reserve(piece.size() * static_cast<std::size_t>(times));
  for (int i = 0; i < times; ++i) text += piece;
  return text;
}

// The bytes of stack that reading `text`, and writing what was read, takes. The outcome is `read`.
std::size_t stackToRead(const std::string& text, bool accepted, const std::string& what) {
  long result = -1;
  long written = S_OK;
  const std::size_t used = runOnStack(kRoom, [&] {
    std::unique_ptr<KelInputSource> source;
    KelPDMBaseServices::CreateMemBufInputSourceFromChar(text.data(), static_cast<int>(text.size()),
                                                        "deep", source);
    DOM_Document document;
    result = KelXMLParseServices::XMLParse(*source, document);
    std::string again;
    if (result == S_OK) written = KelXMLParser::WriteXML(document, again);
  });
  EXPECT_EQ(result == S_OK, accepted) << what;
  EXPECT_EQ(written, S_OK) << what;
  return used;
}

// A chain of entities, each of which holds the one before, `depth` of them; the last is "e<depth>".
std::string entityChain(int depth, const std::string& innermost) {
  std::string text = "<!ENTITY e1 \"" + innermost + "\">";
  for (int i = 2; i <= depth; ++i) {
    text += "<!ENTITY e" + std::to_string(i) + " \"&e" + std::to_string(i - 1) + ";\">";
  }
  return text;
}

std::string parameterChain(int depth) {
  std::string text = "<!ENTITY % p1 \"<!ELEMENT b ANY>\">";
  for (int i = 2; i <= depth; ++i) {
    text += "<!ENTITY % p" + std::to_string(i) + " \"&#37;p" + std::to_string(i - 1) + ";\">";
  }
  return text + "%p" + std::to_string(depth) + ";";
}

std::string withType(const std::string& subset, const std::string& root) {
  return "<!DOCTYPE a [" + subset + "]>" + root;
}

std::string nestedModel(int depth, const std::string& separator) {
  return "<!ELEMENT a " + repeated("(b" + separator, depth) + "c" + repeated(")", depth) + ">";
}

std::string names(int count, const std::string& separator) {
  std::string text;
  for (int i = 0; i < count; ++i) text += (i == 0 ? "" : separator) + "n" + std::to_string(i);
  return text;
}

struct Deep {
  std::string what;
  std::string text;
  bool accepted;
};

std::vector<Deep> deepDocuments() {
  const std::string e1000 = "e1000";
  std::string attributes;
  for (int i = 0; i < 40'000; ++i) attributes += " a" + std::to_string(i) + "=\"v\"";
  std::string declared;
  for (int i = 0; i < 40'000; ++i) declared += " a" + std::to_string(i) + " CDATA \"v\"";
  std::vector<Deep> all = {
      {"1,000 elements deep", repeated("<a>", 1000) + repeated("</a>", 1000), true},
      {"1,001 elements deep", repeated("<a>", 1001) + repeated("</a>", 1001), false},
      {"1,000,000 elements deep", repeated("<a>", 1'000'000), false},
      {"1,000 entities deep", withType(entityChain(1000, "x"), "<a>&e1000;</a>"), true},
      {"1,001 entities deep", withType(entityChain(1001, "x"), "<a>&e1001;</a>"), false},
      {"50,000 entities deep", withType(entityChain(50'000, "x"), "<a>&e50000;</a>"), false},
      {"entities in a value", withType(entityChain(1000, "x"), "<a b='&e1000;'/>"), true},
      {"too many in a value", withType(entityChain(1001, "x"), "<a b='&e1001;'/>"), false},
      {"entities in a default",
       withType(entityChain(1000, "x") + "<!ATTLIST a b CDATA '&e1000;'>", "<a/>"), true},
      {"parameter entities", withType(parameterChain(900), "<a/>"), true},
      {"too many parameter entities", withType(parameterChain(5000), "<a/>"), false},
      {"an entity in itself", withType("<!ENTITY e '&f;'><!ENTITY f '&e;'>", "<a>&e;</a>"), false},
      {"elements in entities",
       withType(
           "<!ENTITY e1 \"<b/>\">" +
               [] {
                 std::string text;
                 for (int i = 2; i <= 900; ++i) {
                   text += "<!ENTITY e" + std::to_string(i) + " \"<b>&e" + std::to_string(i - 1) +
                           ";</b>\">";
                 }
                 return text;
               }(),
           "<a>&e900;</a>"),
       true},
      {"40,000 attributes", "<a" + attributes + "/>", true},
      {"40,000 declared attributes", withType("<!ATTLIST a" + declared + ">", "<a/>"), true},
  };
  for (const int depth : {100, 900, 1000, 1100, 5000, 50'000, 1'000'000}) {
    const std::string d = std::to_string(depth);
    for (const char* separator : {",", "|"}) {
      all.push_back({"a model " + d + " deep by " + separator,
                     withType(nestedModel(depth, separator), "<a/>"), depth <= 1000});
    }
    all.push_back(
        {"a model of brackets " + d + " deep",
         withType("<!ELEMENT a " + repeated("(", depth) + "b" + repeated(")", depth) + ">", "<a/>"),
         true});
    all.push_back({"an open model " + d + " deep",
                   "<!DOCTYPE a [<!ELEMENT a " + repeated("(", depth), false});
  }
  for (const int count : {1000, 10'000}) {
    const std::string n = std::to_string(count);
    for (const char* separator : {",", "|"}) {
      all.push_back({"a model of " + n + " by " + separator,
                     withType("<!ELEMENT a (" + names(count, separator) + ")>", "<a/>"), true});
    }
    all.push_back({"a mixed model of " + n,
                   withType("<!ELEMENT a (#PCDATA|" + names(count, "|") + ")*>", "<a/>"), true});
  }
  return all;
}

TEST(HostSmallStackTest, ReadsAnyDocument) {
  std::size_t most = 0;
  for (const Deep& deep : deepDocuments()) {
    const std::size_t used = stackToRead(deep.text, deep.accepted, deep.what);
    EXPECT_LT(used, kStack * kFrameFactor) << deep.what;
    most = std::max(most, used);
  }
  RecordProperty("StackBytes", std::to_string(most));
}

// Tags beside each other, each of which names the one before as its child: filling them in order
// makes a tree as deep as there are tags.
std::string chainedTags(int count) {
  std::string text;
  for (int i = 1; i <= count; ++i) {
    const std::string name = "t" + std::to_string(i) + "x";
    text +=
        "<" + name + ">" + (i == 1 ? "" : "<t" + std::to_string(i - 1) + "x/>") + "</" + name + ">";
  }
  return text;
}

std::string chainedScript(int count) {
  std::string text;
  for (int i = 1; i <= count; ++i) {
    text += "<Composant name=\"t" + std::to_string(i) + "x\" father=\"\" attributs=\"Name\"/>";
  }
  return text;
}

class HostSmallStackSessionTest : public SessionFixture {
 protected:
  void script(int op, const std::string& entries) {
    writeBytes(scratch.file("in/Configuration/xmlStruct.xml"),
               "<Scripts><MessageXML value=\"" + std::to_string(op) + "\">" + entries +
                   "</MessageXML></Scripts>");
  }

  // One exchange in every mode, on a small stack each.
  void exchangeOnSmallStack(int op, const std::string& payload, const std::string& answer) {
    SCOPED_TRACE("operation " + std::to_string(op));
    std::filesystem::remove_all(scratch.file("in/case1.rec"));
    for (const char* value : {"SAVE", "SCAN", "REPLAY"}) {
      SCOPED_TRACE(value);
      resetEmulator();
      mode(value);
      Received received{E_FAIL, "", 0, false};
      onSmallStack([&] {
        EXPECT_EQ(send(request(op, payload)), S_OK);
        received = receive(answer);
      });
      EXPECT_EQ(received.result, S_OK);
      EXPECT_EQ(received.replaced, std::string(value) == "REPLAY");
      EXPECT_TRUE(received.bytes == answer);
    }
  }

  // Does `work` where there is room to measure what it takes.
  void onSmallStack(const std::function<void()>& work) {
    _most = std::max(_most, runOnStack(kRoom, work));
    EXPECT_LT(_most, kStack * kFrameFactor);
  }

  ~HostSmallStackSessionTest() override { RecordProperty("StackBytes", std::to_string(_most)); }

  std::size_t _most = 0;
};

TEST_F(HostSmallStackSessionTest, RecordsAndReplaysWholeSessions) {
  const pdm::PlanOptions plan{.exchanges = 40, .mix = 3, .snapshots = true};
  _most = runOnStack(kStack * kFrameFactor, [&] { record(session(1, plan)); });
  mode("REPLAY");
  std::vector<Replayed> steps;
  const std::size_t used =
      runOnStack(kStack * kFrameFactor, [&] { steps = replay(session(2, plan)); });
  _most = std::max(_most, used);
  EXPECT_EQ(steps.size(), 40u);
  expectTheRecording(steps);
  expectNoFinding(steps);
}

TEST_F(HostSmallStackSessionTest, ExchangesTheDeepestMessages) {
  for (const int op : {319, 321}) {
    for (const std::string tag : {"LogObject", "Reference", "Attribute", "Document", "other"}) {
      SCOPED_TRACE(tag);
      const std::string open = "<" + tag + " Name=\"n\" Value=\"v\" Identifier=\"i\"";
      const std::string deep = "<SaveRequest>" + repeated(open + ">", 998) + open + "/>" +
                               repeated("</" + tag + ">", 998) + "</SaveRequest>";
      exchangeOnSmallStack(op, deep, xmlAnswer(deep));
    }
  }
}

TEST_F(HostSmallStackSessionTest, ExchangesMessagesThatAreFilledToTheDeepest) {
  constexpr int kTags = 1010;
  script(321, chainedScript(kTags));
  const std::string message = "<a>" + chainedTags(kTags) + "</a>";
  exchangeOnSmallStack(321, message, xmlAnswer(message));
  EXPECT_TRUE(trace.has("restructMessage: too many copies"));
}

TEST_F(HostSmallStackSessionTest, ExchangesMessagesWithManyAttributes) {
  std::string attributes;
  for (int i = 0; i < 40'000; ++i) attributes += " a" + std::to_string(i) + "=\"v\"";
  const std::string message =
      "<SaveRequest><LogObject Identifier=\"l\"" + attributes + "/></SaveRequest>";
  exchangeOnSmallStack(321, message, xmlAnswer(message));
}

TEST_F(HostSmallStackSessionTest, ExchangesLongMessages) {
  exchangeOnSmallStack(12, std::string(5'000'000, 'q'), std::string(5'000'000, 'a'));
}

TEST_F(HostSmallStackSessionTest, UsesScriptsThatAreDeepOrLong) {
  const std::string message = "<a><b Name=\"n\"/></a>";
  for (const std::string& entries :
       {repeated("<Composant name=\"b\" father=\"a\" attributs=\"Name\">", 990) +
            repeated("</Composant>", 990),
        repeated("<Composant name=\"b\" father=\"a\" attributs=\"Name\"/>", 10'000)}) {
    script(321, entries);
    exchangeOnSmallStack(321, message, xmlAnswer(message));
  }
}

TEST_F(HostSmallStackSessionTest, HasRoomForTheDeepestModelsOfHosts) {
  const std::string message = request(321, "<a>" + chainedTags(1010) + "</a>");
  script(321, chainedScript(1010));
  onSmallStack([&] {
    const std::unique_ptr<DataScript> entries(ZetNorvScript::buildData(321));
    CollectorErrors findings(321);
    MsgXML sent;
    EXPECT_EQ(ZetNorvBuilders::builderMessage(message.data(), static_cast<int>(message.size()),
                                              entries.get(), sent, &findings),
              S_OK);
    ZetNorvBuilders::restructMessage(&sent);
    const MsgXML copy(sent);
    EXPECT_EQ(sent == copy, 1);
  });
}

}  // namespace
