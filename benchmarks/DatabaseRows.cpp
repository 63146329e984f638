// What building the database file costs, and loading it.
#include <ZetNorvDb.h>

#include <filesystem>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "RawFiles.h"
#include "Recording.h"
#include "Rows.h"
#include "SideBySide.h"
#include "SizedMessages.h"
#include "XmlFloor.h"
#include "pdm-client/Messages.h"

namespace bench {

namespace {

constexpr std::uint64_t kSeed = 11;

void building(benchmark::State& state, const std::string& root) {
  const Recording recording(root, scriptWith(3));
  recording.mode("SAVE");
  const std::string answer = answerTo(requestOfReferences(10'000, kSeed), kSeed);
  const std::string text = answer.substr(pdm::kAnswerHeader);
  std::filesystem::create_directories(recording.scenario(""));
  ZetNorvDb database;
  XmlFloor xml;
  compare(
      state, {2.0, 1.3}, 15, [&] { database.buildDB(text.data(), static_cast<int>(text.size())); },
      [&] { benchmark::DoNotOptimize(xml.parseAndWalk(text)); });
}

// The fields of every line, one by one.
std::size_t readAndSplit(const std::string& file) {
  std::string text;
  readRaw(file, text);
  std::vector<std::vector<std::string>> rows;
  std::string_view rest(text);
  while (!rest.empty()) {
    std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    rows.emplace_back();
    for (std::size_t at = 0; (at = line.find('<', at)) != std::string_view::npos; ++at) {
      rows.back().emplace_back(line.substr(at + 1, line.find('>', at) - at - 1));
    }
  }
  return rows.size();
}

// Keeps what is printed to standard output from being seen, and from costing anything.
class ConsoleSilence {
 public:
  ConsoleSilence() : _before(std::cout.rdbuf(nullptr)) {}
  ~ConsoleSilence() {
    std::cout.rdbuf(_before);
    std::cout.clear();
  }
  ConsoleSilence(const ConsoleSilence&) = delete;
  ConsoleSilence& operator=(const ConsoleSilence&) = delete;

 private:
  std::streambuf* _before;
};

void loading(benchmark::State& state, const std::string& root, int lines) {
  const Recording recording(root, scriptWith(3));
  recording.mode("REPLAY");
  std::filesystem::create_directories(recording.scenario(""));
  std::string text;
  for (int i = 0; i < lines; ++i) {
    const std::string number = std::to_string(100'000 + i);
    text += "<0123456789" + number + "><ABCDEFABCD" + number + "><GP-" + number + ".1><GP-" +
            number + "><Reference><UUID BIDON><Reference><Instance><2008/03/12-10:15:30>\n";
  }
  const std::string file = recording.scenario("database.txt");
  writeRaw(file, text);
  // Loading shows every row on the console.
  const ConsoleSilence silence;
  compare(
      state, {}, 5,
      [&] {
        ZetNorvDb::_path.set(nullptr);
        ZetNorvDb::_database.Release();
        const ZetNorvDb database;
      },
      [&] { benchmark::DoNotOptimize(readAndSplit(file)); });
}

}  // namespace

void addDatabaseRows(const std::string& root) {
  addRow("buildDB, 10,000 references / the answer parsed once",
         [=](benchmark::State& state) { building(state, root); });
  addRow("Loading database.txt, 1,000 lines / read and split",
         [=](benchmark::State& state) { loading(state, root, 1'000); });
  addRow("Loading database.txt, 2,000 lines / read and split",
         [=](benchmark::State& state) { loading(state, root, 2'000); });
}

}  // namespace bench
