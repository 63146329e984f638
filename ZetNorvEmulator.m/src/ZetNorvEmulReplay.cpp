// Replay, the answer's side: the recorded answer of the step takes the place of the client's.
#include <cstdint>
#include <string>

#include "AnswerRewriter.h"
#include "EmulatorSteps.h"
#include "Guard.h"
#include "MFile.h"
#include "OwningArray.h"
#include "ScenarioIndex.h"
#include "ZetNorvEmul.h"
#include "ZetNorvToolBox.h"

using zetnorv::ScenarioIndexReader;

namespace {

constexpr int kSaveObjects = 321;
constexpr int kNavigate = 319;
constexpr int kHeaderBytes = 8;

long fail(const char* line) {
  ZetNorvTrace.TraPutLN(2, line);
  return E_FAIL;
}

constexpr const char* kNoMemory = "Problem in ZetNorvEmul::postWensnd with new";

// What the index says of one answer.
struct AnswerFields {
  MString path;            // the recorded file; null when the index has no line
  bool hasStatus = false;  // the line has a third field, be it empty
  int status = 0;
};

// Takes the fields of `line`; `operation` gets the number of its message. E_FAIL when there is no
// reference directory.
long takeFields(MString line, AnswerFields& fields, int& operation) {
  line.spSplit('<', '>');
  operation = line.spSplitNext().parseInt();
  const MString file = line.spSplitNext();
  const MString status = line.spSplitNext();
  // A token that found its opening bracket starts behind it: inside the line, or at its end.
  fields.hasStatus = line.tokStart >= 1 && line.tokStart <= line.glength();
  fields.status = status.parseInt();
  if (ZetNorvToolBox::getRefPath(fields.path) != S_OK) return E_FAIL;
  fields.path + MString("\\");
  fields.path + file;
  return S_OK;
}

// Takes the fields of the answer at the cursor, or of the last line when the index is shorter. A
// line of another operation at the cursor is skipped, and the cursor stays behind it.
long fieldsAtCursor(const ScenarioIndexReader& index, AnswerFields& fields) {
  int& cursor = ZetNorvEmul::_posCursPost;
  if (index.count() == 0 || cursor < 1) return S_OK;
  // Lines before the cursor have no effect, so reading starts at it.
  int number = cursor > index.count() ? index.count() : cursor;
  for (; number <= cursor && number <= index.count(); ++number) {
    int operation = 0;
    if (takeFields(index.line(number), fields, operation) != S_OK) return E_FAIL;
    // A field that got no memory is no other operation's.
    if (zetnorv::RefusedMemory::wasMet()) return fail(kNoMemory);
    if (number == cursor && operation != ZetNorvEmul::_nOp) ++cursor;
  }
  return S_OK;
}

// Puts `bytes` in the place of the client's answer.
void hand(char* bytes, int length, char*& answer, int* size) {
  zetnorv::releaseBytes(answer);
  answer = bytes;
  *size = length;
}

// Takes the status of the recorded answer back when the live one stays, whatever the reason.
class StatusOfServed {
 public:
  StatusOfServed(char*& answer, int& status)
      : _answer(answer), _status(status), _live(answer), _liveStatus(status) {}
  ~StatusOfServed() {
    if (_answer == _live) _status = _liveStatus;
  }
  StatusOfServed(const StatusOfServed&) = delete;
  StatusOfServed& operator=(const StatusOfServed&) = delete;

 private:
  char*& _answer;
  int& _status;
  char* const _live;
  const int _liveStatus;
};

// A new answer around the rewritten `text`: the first four bytes of the recorded header are left at
// 0 on purpose, the next four hold the text's length.
char* newAnswer(const std::string& text) {
  char* bytes = zetnorv::newBytes(kHeaderBytes + text.size() + 1);
  if (bytes == nullptr) return nullptr;
  const auto length = static_cast<std::uint32_t>(text.size());
  for (int i = 0; i < 4; ++i) bytes[4 + i] = static_cast<char>((length >> (8 * i)) & 0xFF);
  text.copy(bytes + kHeaderBytes, text.size());
  return bytes;
}

void logRewriting(const std::string& text, const char* sent, const char* recorded) {
  const MString log("fichierXMLretour.log");
  ZetNorvToolBox::writeLog(log, "\n ######FLUX TRANSCODE##### \n");
  ZetNorvToolBox::writeLog(log, text.c_str());
  ZetNorvToolBox::writeLog(log, "\n ###########CHAR########## \n");
  ZetNorvToolBox::writeLog(log, sent);
  ZetNorvToolBox::writeLog(log, "\n ###########CHARXML####### \n");
  ZetNorvToolBox::writeLog(log, recorded);
}

// Serves the recorded answer with the identifiers of this run written into it.
long serveRewritten(const std::string& text, const char* recorded, char*& answer, int* size) {
  const int length = static_cast<int>(text.size());
  ZetNorvTrace.TraPutLN(2, "ZetNorvEmul: Copie des buffers modifies", length);
  char* bytes = newAnswer(text);
  if (bytes == nullptr) return fail(kNoMemory);
  hand(bytes, length + kHeaderBytes, answer, size);
  logRewriting(text, bytes + kHeaderBytes, recorded + kHeaderBytes);
  ZetNorvTrace.TraPutLN(2, "ZetNorvEmul: Fin Copie des buffers modifies");
  return S_OK;
}

// Serves the recorded answer as it is. Takes ownership of `recorded`, which has a NUL behind its
// `length` bytes.
long servePlain(char*& recorded, int length, char*& answer, int* size) {
  ZetNorvTrace.TraPutLN(2, "ZetNorvEmul: Copie des buffers");
  hand(recorded, length, answer, size);
  recorded = nullptr;
  ZetNorvTrace.TraPutLN(2, "Valeur Normale : ", length);
  ZetNorvTrace.TraPutLN(2, "ZetNorvEmul: Fin Copie des buffers");
  return S_OK;
}

bool isRewritten(int length) {
  return length > kHeaderBytes && ZetNorvEmul::_ids.getSize() >= 1 &&
         (ZetNorvEmul::_nOp == kSaveObjects || ZetNorvEmul::_nOp == kNavigate);
}

// Serves the recorded answer, which this call may take over.
long serve(char*& recorded, int length, char*& answer, int* size) {
  ZetNorvTrace.TraPutLN(2, "ZetNorvEmul Post: Test sur l'ids", ZetNorvEmul::_ids.getSize());
  if (!isRewritten(length)) return servePlain(recorded, length, answer, size);
  std::string text;
  switch (zetnorv::rewriteAnswer(recorded + kHeaderBytes, length - kHeaderBytes, text)) {
    case zetnorv::Rewriting::kDone:
      // An identifier may have got no memory.
      if (zetnorv::RefusedMemory::wasMet()) return fail(kNoMemory);
      return serveRewritten(text, recorded, answer, size);
    case zetnorv::Rewriting::kNothingToRewrite:
      return servePlain(recorded, length, answer, size);
    default:
      return E_FAIL;
  }
}

long openAnswerIndex(ScenarioIndexReader& index, bool& missing) {
  missing = false;
  ZetNorvTrace.TraPutLN(2, "ZetNorvEmul: KelGetEnvValue App_SceFile");
  MString path;
  if (ZetNorvToolBox::getScePath(path) != S_OK) {
    return fail("#### Problem Var ZET: App_SceFile");
  }
  path + MString("\\Scenario2.txt");
  ZetNorvTrace.TraPutLN(2, "ZetNorvEmul: MFile Open");
  if (index.open(path.gchar()) == S_OK) return S_OK;
  missing = true;
  return fail("Problem in ZetNorvEmul::postWensnd with KelFOpen!");
}

}  // namespace

namespace zetnorv {

long replayAnswer(char** answer, int* size, int* status) {
  if (size == nullptr || status == nullptr) {
    return fail("Problem in ZetNorvEmul::postWensnd: size or status == NULL");
  }
  if (answer == nullptr) return fail("Problem in ZetNorvEmul::postWensnd: answer == NULL");
  ScenarioIndexReader index;
  bool missing = false;
  // Without an index the live answer stays, and that is no failure.
  if (openAnswerIndex(index, missing) != S_OK) return missing ? S_OK : E_FAIL;
  AnswerFields fields;
  if (fieldsAtCursor(index, fields) != S_OK) return E_FAIL;

  ZetNorvTrace.TraPutLN(2, "ZetNorvEmul: MFile2 load");
  char* recorded = nullptr;
  int length = 0;
  if (MFile().load(fields.path, recorded, length) != S_OK) {
    return fail("ZetNorvEmul: error load file2");
  }
  // Released here unless it became the client's answer.
  const OwnedBytes owner(recorded);
  const StatusOfServed served(*answer, *status);
  if (fields.hasStatus) *status = fields.status;
  return serve(recorded, length, *answer, size);
}

}  // namespace zetnorv
