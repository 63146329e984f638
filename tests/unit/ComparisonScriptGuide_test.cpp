// The guide to comparison scripts: its examples do what it says, and it shows them as they are.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "ComparisonBench.h"
#include "Files.h"
#include "KelLib.h"

namespace {

namespace fs = std::filesystem;

const fs::path kDocs = ZETNORV_DOCS_DIR;
const fs::path kExamples = kDocs / "examples" / "comparison";

// The text of a file that a page shows, by the file's path below the examples: the code block
// behind a line "<!-- path -->".
using Shown = std::map<std::string, std::string>;

Shown shownIn(const fs::path& page) {
  Shown shown;
  std::istringstream lines(readBytes(page.string()));
  std::string line;
  std::string path;
  bool inBlock = false;
  while (std::getline(lines, line)) {
    std::smatch marker;
    if (inBlock && line == "```") {
      inBlock = false;
      path.clear();
    } else if (inBlock) {
      shown[path] += line + "\n";
    } else if (std::regex_match(line, marker, std::regex("<!-- (\\S+) -->"))) {
      path = marker[1];
    } else if (!path.empty() && line.rfind("```", 0) == 0) {
      shown[path] = "";
      inBlock = true;
    }
  }
  return shown;
}

std::vector<std::string> exampleNames() { return namesIn(kExamples.string()); }

// The bytes of a message written as hexadecimal pairs with comments.
std::string bytesOf(const std::string& hex) {
  std::string bytes;
  std::istringstream lines(hex);
  std::string line;
  while (std::getline(lines, line)) {
    std::istringstream pairs(line.substr(0, line.find('#')));
    std::string pair;
    while (pairs >> pair) bytes += static_cast<char>(std::stoi(pair, nullptr, 16));
  }
  return bytes;
}

// One example: a folder with a script, two messages and the findings.
struct Example {
  explicit Example(const std::string& name) : folder(kExamples / name) {
    script = read("xmlStruct.xml");
    std::smatch value;
    if (std::regex_search(script, value, std::regex("value=\"(\\d+)\""))) {
      number = std::stoi(value[1]);
    }
    sent = messageIn("sent");
    recorded = messageIn("recorded");
    findings = read("findings.txt");
  }

  bool has(const std::string& name) const { return fs::exists(folder / name); }
  std::string read(const std::string& name) const { return readBytes((folder / name).string()); }

  std::string messageIn(const std::string& name) const {
    return has(name + ".hex") ? bytesOf(read(name + ".hex")) : message(number, read(name + ".xml"));
  }

  fs::path folder;
  int number = -1;
  std::string script;
  std::string sent;
  std::string recorded;
  std::string findings;
};

class ComparisonScriptGuideTest : public testing::TestWithParam<std::string> {};

TEST_P(ComparisonScriptGuideTest, TheExampleLeavesTheFindingsItShows) {
  const Example example(GetParam());
  ASSERT_GE(example.number, 0);
  ComparisonBench bench;
  bench.script(example.script);
  EXPECT_EQ(bench.compareWith(example.number, example.sent, example.recorded), S_OK);
  EXPECT_EQ(bench.log(), section(example.number, example.sent, example.findings));
  if (example.has("error.log")) {
    EXPECT_EQ(bench.log(), example.read("error.log"));
  }
}

INSTANTIATE_TEST_SUITE_P(Examples, ComparisonScriptGuideTest, testing::ValuesIn(exampleNames()),
                         [](const auto& name) {
                           return std::regex_replace(name.param, std::regex("\\W"), "_");
                         });

TEST(ComparisonScriptGuidePagesTest, ShowTheFilesAsTheyAre) {
  for (const char* page : {"comparison-script.md", "findings.md"}) {
    const Shown shown = shownIn(kDocs / page);
    EXPECT_FALSE(shown.empty()) << page;
    for (const auto& [path, text] : shown) {
      EXPECT_EQ(text, readBytes((kExamples / path).string())) << page << ": " << path;
    }
  }
}

TEST(ComparisonScriptGuidePagesTest, ShowTheScriptOfEveryExample) {
  const Shown shown = shownIn(kDocs / "comparison-script.md");
  EXPECT_FALSE(exampleNames().empty());
  for (const std::string& name : exampleNames()) {
    EXPECT_EQ(shown.count(name + "/xmlStruct.xml"), 1u) << name;
  }
}

TEST(ComparisonScriptGuidePagesTest, ExplainEveryFindingAndFailure) {
  const std::string page = readBytes((kDocs / "findings.md").string());
  for (const char* text : {"`No Found BaliseXML`",
                           "`No Found AttributXML`",
                           "`Problem value FFFFF... `",
                           "`Error in hierarchy`",
                           "`Problem Problem with reference file ...`",
                           "`Problem with _nbBalises.`",
                           "`Problem with _name.`",
                           "`Problem with _nbAttributs.`",
                           "`Problem with _attribut[i].`",
                           "`Problem with _nbChildren.`",
                           "`Problem with _child[i].`",
                           "`Problem with _balise[i]. `",
                           "`Spe: Commit (325).`",
                           "`runNorvLike: inputBuf == NULL`",
                           "`runNorvLike: pathFile == NULL`",
                           "`runNorvLike: buildData != S_OK`",
                           "`runNorvLike: load != S_OK`",
                           "`ZetNorvMod: runNorvLike: typeMsg errone`",
                           "`ZetNorvMod: Builder::builderMessage msg PROBLEM`",
                           "`ZetNorvMod: Builder::builderMessage msgRef PROBLEM`"}) {
    EXPECT_NE(page.find(text), std::string::npos) << text;
  }
}

}  // namespace
