#include "ZetNorvDb.h"

#include <string>

#include "AnswerObjects.h"
#include "DatabaseFile.h"
#include "Guard.h"
#include "KelEnv.h"
#include "XmlText.h"
#include "ZetNorvToolBox.h"

using zetnorv::guarded;

namespace {

constexpr zetnorv::XmlProblems kXmlProblems = {2, "buildDB Problem CreateMemBufInputSourceFromChar",
                                               "buildDB Problem XMLParse"};

// The file that a run starts from. Lines are always appended to the scenario directory's, so
// outside replay that is another one. Null when BIX_ZET_TMP is not set.
MString fileToLoad(const MString& scenario) {
  if (ZetNorvToolBox::inReplayMode() == S_OK) return zetnorv::databaseFile(scenario);
  const char* directory = nullptr;
  KelGetEnvValue("BIX_ZET_TMP", &directory);
  return zetnorv::databaseFile(MString(directory));
}

long loadDatabase() {
  // Composed aside: a path that was given up half way must not pass for a loaded table.
  MString scenario;
  if (ZetNorvToolBox::getScePath(scenario) != S_OK) {
    ZetNorvTrace.TraPutLN(2, "Problem (ZetNorvToolBox::getScePath): E_FAIL.");
    return E_FAIL;
  }
  ZetNorvDb::_path = scenario;
  const MString file = fileToLoad(scenario);
  // A run that has appended nothing yet may well have no file.
  if (zetnorv::readDatabase(file, ZetNorvDb::_database) != S_OK && ZetNorvDb::_nbLoad != 0) {
    ZetNorvTrace.TraPutLN(2, "Problem in ZetNorvDb::ZetNorvDb with KelFOpen!");
    ZetNorvTrace.TraPutLN(2, file.gchar());
    return E_FAIL;
  }
  return S_OK;
}

}  // namespace

ZetNorvDb::ZetNorvDb() {
  if (!_path.isNull()) return;
  guarded("ZetNorvDb::ZetNorvDb", loadDatabase);
}

ZetNorvDb::~ZetNorvDb() = default;

long ZetNorvDb::buildDB(const char* buffer, int size) {
  return guarded("ZetNorvDb::buildDB", [&] {
    DOM_Document answer;
    if (zetnorv::parseXml(buffer, size, "buildDB", kXmlProblems, answer) != S_OK) return E_FAIL;
    const MString file = zetnorv::databaseFile(_path);
    return zetnorv::writeAnswerObjects(answer, _refFile, _copyFile, [&](const std::string& line) {
      return zetnorv::appendToDatabase(file, line, _nbLoad);
    });
  });
}
