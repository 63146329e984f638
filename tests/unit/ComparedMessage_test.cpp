// The comparison run makes light models of its own. Its outcome must be that of the models that
// hosts build, whatever the messages and the script hold.
#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "CollectorErrors.h"
#include "ComparisonBench.h"
#include "DataScript.h"
#include "KelLib.h"
#include "MsgXML.h"
#include "TraceRecorder.h"
#include "ZetNorvBuilders.h"
#include "ZetNorvScript.h"

namespace {

constexpr int kNumber = 40;

// Names that begin one another, so that tags are found for children of other names.
constexpr const char* kNames[] = {"A", "AB", "ABC", "B", "BA"};
constexpr const char* kAttributes[] = {"n", "na", "x"};
constexpr const char* kValues[] = {"", "v", "FFFF"};

class Chance {
 public:
  explicit Chance(unsigned seed) : _random(seed) {}

  unsigned below(unsigned limit) { return static_cast<unsigned>(_random() % limit); }

  template <std::size_t N>
  const char* oneOf(const char* const (&texts)[N]) {
    return texts[below(N)];
  }

 private:
  std::mt19937 _random;
};

std::string element(Chance& chance, int depth) {
  const std::string name = chance.oneOf(kNames);
  std::string text = "<" + name;
  for (const char* attribute : kAttributes) {
    if (chance.below(2) == 0) continue;
    text.append(" ").append(attribute).append("=\"").append(chance.oneOf(kValues)).append("\"");
  }
  text += ">";
  const unsigned children = depth == 0 ? 0 : chance.below(4);
  for (unsigned i = 0; i < children; ++i) {
    text += chance.below(5) == 0 ? "text" : element(chance, depth - 1);
  }
  return text + "</" + name + ">";
}

// `xml` without one of its attributes.
std::string altered(std::string xml, Chance& chance) {
  std::size_t attributes = 0;
  for (const char c : xml) attributes += c == '=' ? 1 : 0;
  if (attributes == 0) return xml;
  std::size_t equals = xml.find('=');
  for (unsigned i = chance.below(static_cast<unsigned>(attributes)); i > 0; --i) {
    equals = xml.find('=', equals + 1);
  }
  const std::size_t begin = xml.rfind(' ', equals);
  return xml.erase(begin, xml.find('"', equals + 2) + 1 - begin);
}

std::string script(Chance& chance) {
  std::string text = "<s><MessageXML value=\"40\">";
  for (unsigned i = chance.below(6); i > 0; --i) {
    text.append("<Composant name=\"").append(chance.oneOf(kNames));
    text.append("\" father=\"").append(chance.oneOf(kNames));
    text.append("\" attributs=\"").append(chance.oneOf(kAttributes)).append(" ");
    text.append(chance.oneOf(kAttributes)).append("\"/>");
  }
  return text + "</MessageXML></s>";
}

// What is said of the messages, without the steps of the run.
std::vector<std::string> findingLines(const TraceRecorder& trace) {
  std::vector<std::string> lines;
  for (const std::string& line : trace.texts()) {
    if (line.starts_with("Problem with _") || line.starts_with("restructMessage")) {
      lines.push_back(line);
    }
  }
  return lines;
}

int bytesOf(const std::string& message) { return static_cast<int>(message.size()); }

class ComparedMessageTest : public testing::Test {
 protected:
  // The comparison as a host makes it with the public models.
  void compareByModels(const std::string& sent, const std::string& recorded) {
    CollectorErrors collector(kNumber);
    const std::unique_ptr<DataScript> read(ZetNorvScript::buildData(kNumber));
    MsgXML msg;
    MsgXML msgRef;
    ASSERT_EQ(S_OK, ZetNorvBuilders::builderMessage(sent.data(), bytesOf(sent), read.get(), msg,
                                                    &collector));
    ASSERT_EQ(S_OK, ZetNorvBuilders::builderMessage(recorded.data(), bytesOf(recorded), read.get(),
                                                    msgRef, nullptr));
    ZetNorvBuilders::restructMessage(&msg);
    ZetNorvBuilders::restructMessage(&msgRef);
    ZetNorvBuilders::checkFather(&msg, read.get(), &collector);
    if (!(msg == msgRef)) collector.addError(10, "Problem", "Problem with reference file ...");
    ASSERT_EQ(S_OK, collector.writeLogFile(kNumber, sent.data(), bytesOf(sent)));
  }

  void expectTheSame(const std::string& sent, const std::string& recorded) {
    bench.removeLog();
    trace.clear();
    ASSERT_EQ(S_OK, bench.compareWith(kNumber, sent, recorded));
    const std::string log = bench.log();
    const std::vector<std::string> lines = findingLines(trace);

    bench.removeLog();
    trace.clear();
    compareByModels(sent, recorded);
    EXPECT_EQ(bench.log(), log);
    EXPECT_EQ(findingLines(trace), lines);
    if (lines.empty()) ++equal;
  }

  ComparisonBench bench;
  TraceRecorder trace;
  int equal = 0;
};

TEST_F(ComparedMessageTest, FindsWhatTheModelsOfHostsFind) {
  constexpr unsigned kRounds = 100;
  for (unsigned seed = 0; seed < kRounds; ++seed) {
    SCOPED_TRACE(seed);
    Chance chance(seed);
    bench.script(script(chance));
    const std::string xml = element(chance, 3);
    const std::string others[] = {xml, altered(xml, chance), element(chance, 3)};
    for (const std::string& other : others) {
      expectTheSame(message(kNumber, xml), message(kNumber, other));
    }
    if (HasFailure()) return;
  }
  // Both outcomes came often.
  EXPECT_GE(equal, static_cast<int>(kRounds));
  EXPECT_LE(equal, static_cast<int>(2 * kRounds));
}

}  // namespace
