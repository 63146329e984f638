// Recording: what the hooks do in SAVE mode, and the recorders that hosts may call themselves.

#include <string>

#include "EmulatorSteps.h"
#include "Guard.h"
#include "KelEnv.h"
#include "RecordedFile.h"
#include "ScenarioIndex.h"
#include "ZetNorvDb.h"
#include "ZetNorvEmul.h"
#include "ZetNorvToolBox.h"
#include "ZetNorvToolBox/EnsureDirectory.h"

using zetnorv::Recorded;
using zetnorv::RecordedFile;
using zetnorv::ScenarioIndexWriter;

namespace {

// The operation whose documents are staged and whose answers feed the database.
constexpr int kSaveObjects = 321;

// What stands before the XML of an answer.
constexpr int kAnswerHeaderBytes = 8;

constexpr const char* kNoFileLine = "ERROR: NO FILE\n";

std::string requestLine(int op, const std::string& name) {
  return "<" + std::to_string(op) + "><" + name + ">\n";
}

std::string answerLine(int op, const std::string& name, int status) {
  return "<" + std::to_string(op) + "><" + name + "><" + std::to_string(status) + ">\n";
}

long fail(const char* line) {
  ZetNorvTrace.TraPutLN(2, line);
  return E_FAIL;
}

// Opens the index file `name` of the scenario directory, which is made when it is missing.
long openIndex(MString directory, const char* name, ScenarioIndexWriter& index) {
  zetnorv::ensureDirectory(directory);
  directory + MString("\\");
  directory + MString(name);
  return index.open(directory.gchar());
}

long saveRequest(int op, const char* message, int size) {
  MString scenario;
  if (ZetNorvToolBox::getScePath(scenario) != S_OK) {
    return fail("Problem in ZetNorvEmul::save with ZetNorvToolBox::getScePath");
  }
  ScenarioIndexWriter index;
  if (openIndex(scenario, "Scenario.txt", index) != S_OK) {
    return fail("Problem in ZetNorvEmul::save with file.open");
  }
  const RecordedFile file = zetnorv::writeRecordedFile(Recorded::kRequest, op, message, size);
  if (file.result != S_OK) return fail("Problem in ZetNorvEmul::save with mod.save");
  const std::string name = zetnorv::indexName(file.path);
  ZetNorvTrace.TraPutLN(2, name.c_str());
  if (index.append(requestLine(op, name)) != S_OK) {
    return fail("Problem in ZetNorvEmul::save with file.puts");
  }
  return S_OK;
}

// Every answer keeps its line, so that line n stays answer n: one without a file says so, and one
// whose file could not be written names a file that is not there.
long saveHookAnswer(int op, const char* answer, int size, int status) {
  MString scenario;
  if (ZetNorvToolBox::getScePath(scenario) != S_OK) {
    return fail("#### Problem Var ZET: App_SceFile");
  }
  ScenarioIndexWriter index;
  if (openIndex(scenario, "Scenario2.txt", index) != S_OK) {
    return fail("Problem with KelFOpen (cf. SaveAnswer)!");
  }
  const RecordedFile file = zetnorv::writeRecordedFile(Recorded::kAnswer, op, answer, size);
  const std::string line =
      file.path.empty() ? kNoFileLine : answerLine(op, zetnorv::indexName(file.path), status);
  if (index.append(line) != S_OK) return fail("Problem with KelFPuts (Cf. SaveAnswer)!");
  return S_OK;
}

// The recorder for hosts: another index file, the file's full path in its line, and no name at all
// for a file that could not be written.
long saveHostAnswer(int op, const char* answer, int size, int status) {
  const char* root = nullptr;
  if (KelGetEnvValue("App_SceFile", &root) != S_OK) {
    return fail("Problem (App_SceFile): tselection == NULL.");
  }
  ScenarioIndexWriter index;
  if (index.open((std::string(root) + "Scenario2.txt").c_str()) != S_OK) {
    return fail("Problem in ZetNorvEmul::saveAnswer with KelFOpen!");
  }
  const RecordedFile file = zetnorv::writeRecordedFile(Recorded::kAnswer, op, answer, size);
  const std::string line = file.result == S_OK ? answerLine(op, file.path, status) : kNoFileLine;
  if (index.append(line) != S_OK) return fail("Problem with KelFPuts!");
  return S_OK;
}

}  // namespace

long ZetNorvEmul::save(int op, const char* message, int size) {
  return zetnorv::guarded("ZetNorvEmul::save", [&] { return saveRequest(op, message, size); });
}

long ZetNorvEmul::saveAnswer(int op, const char* answer, int size, int status) {
  return zetnorv::guarded("ZetNorvEmul::saveAnswer",
                          [&] { return saveHostAnswer(op, answer, size, status); });
}

namespace zetnorv {

long recordRequest(const char* message, int size) {
  if (ZetNorvEmul::save(ZetNorvEmul::_nOp, message, size) != S_OK) {
    return fail("Problem in ZetNorvEmul::preWensnd with save");
  }
  if (ZetNorvEmul::_nOp == kSaveObjects && message != nullptr && size > 0) {
    ZetNorvDb().buildTemp(message, size);
  }
  return S_OK;
}

long recordAnswer(const char* answer, const int* size, const int* status) {
  const bool complete = size != nullptr && status != nullptr;
  if (!complete) {
    ZetNorvTrace.TraPutLN(2, "Problem in ZetNorvEmul::postWensnd: size or status == NULL");
  }
  const int bytes = size == nullptr ? 0 : *size;
  const int op = ZetNorvEmul::_nOp;
  if (saveHookAnswer(op, answer, bytes, status == nullptr ? 0 : *status) != S_OK) return E_FAIL;
  if (op == kSaveObjects && answer != nullptr && bytes > kAnswerHeaderBytes) {
    ZetNorvDb().buildDB(answer + kAnswerHeaderBytes, bytes - kAnswerHeaderBytes);
  }
  return complete ? S_OK : E_FAIL;
}

}  // namespace zetnorv
