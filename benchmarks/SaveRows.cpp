// What recording costs.
#include <filesystem>
#include <map>

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
constexpr int kLongRun = 10'000;
constexpr int kEnd = 1'000;

// Writes the files that a recording has, with the names that it has.
class PlainRecorder {
 public:
  // In the folder of a recording, beside its own files.
  explicit PlainRecorder(const Recording& recording) : _folder(recording.folder() + "/plain") {
    std::filesystem::create_directories(_folder + "/Reference/Kel_Files_Temp");
    std::filesystem::create_directories(_folder + "/Scenario");
  }

  void request(int operation, const std::string& bytes) {
    const std::string name = write("save", operation, bytes);
    appendRaw(_folder + "/Scenario/Scenario.txt",
              '<' + std::to_string(operation) + "><" + name + ">\n");
  }

  void answer(int operation, const std::string& bytes) {
    const std::string name = write("rep", operation, bytes);
    appendRaw(_folder + "/Scenario/Scenario2.txt",
              '<' + std::to_string(operation) + "><" + name + "><0>\n");
    ++_steps;
  }

  const std::string& folder() const { return _folder; }

 private:
  std::string write(const char* prefix, int operation, const std::string& bytes) {
    const std::string name =
        prefix + std::to_string(operation) + '_' + std::to_string(_steps) + ".txt";
    writeRaw(_folder + "/Reference/" + name, bytes);
    return name;
  }

  std::string _folder;
  int _steps = 0;
};

void saveStep(benchmark::State& state, const std::string& root, std::size_t bytes,
              const Bounds& bounds) {
  const Recording recording(root, scriptWith(3));
  recording.mode("SAVE");
  const std::string request = sizedRequest(pdm::kNavigate, bytes, kSeed, 1);
  const Exchange what{request, answerTo(request, kSeed)};
  PlainRecorder plain(recording);
  Recording::exchange(what);
  compare(
      state, bounds, 2'000, [&] { Recording::exchange(what); },
      [&] {
        plain.request(pdm::kNavigate, what.request);
        plain.answer(pdm::kNavigate, what.answer);
      });
}

// Operation 321: the request names a document, which is copied, and the answer's objects go into
// the database file.
void saveObjectsStep(benchmark::State& state, const std::string& root, std::size_t bytes) {
  const Recording recording(root, scriptWith(3));
  recording.mode("SAVE");
  const std::string document = recording.folder() + "/document";
  writeRaw(document, std::string(4096, 'd'));
  std::string request = sizedRequest(pdm::kSave, bytes, kSeed, 1);
  const std::string attribute = "FilePath=\"";
  const std::size_t path = request.find(attribute) + attribute.size();
  request.replace(path, request.find('"', path) - path, document);
  const Exchange what{request, answerTo(request, kSeed)};
  Recording::exchange(what);

  std::string lines;
  readRaw(recording.scenario("database.txt"), lines);
  PlainRecorder plain(recording);
  XmlFloor xml;
  std::string copied;
  compare(
      state, {}, 100, [&] { Recording::exchange(what); },
      [&] {
        plain.request(pdm::kSave, what.request);
        benchmark::DoNotOptimize(xml.parseAndWalk(what.request.substr(pdm::kRequestHeader)));
        readRaw(document, copied);
        writeRaw(plain.folder() + "/Reference/Kel_Files_Temp/document", copied);
        plain.answer(pdm::kSave, what.answer);
        benchmark::DoNotOptimize(xml.parseAndWalk(what.answer.substr(pdm::kAnswerHeader)));
        appendRaw(plain.folder() + "/Scenario/database.txt", lines);
      });
}

void saveEnds(benchmark::State& state, const std::string& root) {
  const std::string request = sizedRequest(pdm::kNavigate, 2'000, kSeed, 1);
  const Exchange what{request, answerTo(request, kSeed)};
  compareEnds(state, {1.3, 1.1}, kEnd, [&](Samples& samples) {
    const Recording recording(root, scriptWith(3));
    recording.mode("SAVE");
    for (int i = 0; i < kLongRun; ++i) samples.add(timeOf([&] { Recording::exchange(what); }));
  });
}

}  // namespace

void addSaveRows(const std::string& root) {
  addRow("SAVE step, 2 KB / the same files by system calls", [=](benchmark::State& state) {
    saveStep(state, root, 2'000, {2.0, 1.3});
  });
  addRow("SAVE step, 20 KB / the same files by system calls", [=](benchmark::State& state) {
    saveStep(state, root, 20'000, {1.6, 1.2});
  });
  addRow("SAVE step of 321, 20 KB / files, and each message parsed once",
         [=](benchmark::State& state) { saveObjectsStep(state, root, 20'000); });
  addRow("SAVE, last 1,000 of 10,000 / first 1,000",
         [=](benchmark::State& state) { saveEnds(state, root); });
}

}  // namespace bench
