// Replay and scan, the request's side: every request is checked against the recorded one of its
// step.
#include <exception>
#include <string>

#include "EmulatorSteps.h"
#include "Guard.h"
#include "RefusedMemory.h"
#include "ScenarioIndex.h"
#include "XmlText.h"
#include "ZetNorvBuilders.h"
#include "ZetNorvEmul.h"
#include "ZetNorvMod.h"
#include "ZetNorvToolBox.h"

using zetnorv::ScenarioIndexReader;

namespace {

// The operations whose requests carry identifiers that the answers are rewritten with.
constexpr int kSaveObjects = 321;
constexpr int kNavigate = 319;

bool carriesIdentifiers(int op) { return op == kSaveObjects || op == kNavigate; }

struct IndexFields {
  MString operation;
  MString file;
};

IndexFields fieldsOf(MString line) {
  line.spSplit('<', '>');
  IndexFields fields;
  fields.operation = line.spSplitNext();
  fields.file = line.spSplitNext();
  return fields;
}

// The fields of the line at the cursor, or of the last line when the index is shorter.
//
// A line of operation 26 at the cursor is passed over, for this request and all later ones. The
// test looks at the line's own length only, so "2", or no operation at all, is passed over as well.
IndexFields fieldsAtCursor(const ScenarioIndexReader& index) {
  const MString passedOver("26");
  int& cursor = ZetNorvEmul::_posCursPre;
  IndexFields fields;
  if (index.count() == 0) return fields;
  // Lines before the cursor have no effect, so reading starts at it.
  int number = cursor < 1 ? 1 : (cursor > index.count() ? index.count() : cursor);
  while (true) {
    fields = fieldsOf(index.line(number));
    // A field that got no memory is nothing to pass over.
    if (zetnorv::RefusedMemory::wasMet()) return fields;
    if (number == cursor && fields.operation == passedOver) ++cursor;
    if (number >= cursor || number == index.count()) return fields;
    ++number;
  }
}

struct Extraction {
  long (*extract)(const char* message, int size, ZetNorvDb_Table& table);
  ZetNorvDb_Table& table;
  const char* found;
  const char* none;
  const char* problem;
};

// Fills the table anew from a request of an operation that carries identifiers; for others it keeps
// what the last such request put in.
void collect(const Extraction& extraction, const char* message, int size) {
  if (carriesIdentifiers(ZetNorvEmul::_nOp)) {
    extraction.table.Release();
    const long result = extraction.extract(message, size, extraction.table);
    ZetNorvTrace.TraPutLN(2, result == 0   ? extraction.found
                             : result == 1 ? extraction.none
                                           : extraction.problem);
  }
  ZetNorvTrace.TraPutLN(2, "ZetNorvEmul: Test sur l'ids", extraction.table.getSize());
}

// Forgets the identifiers when memory was refused on the way to them: the answer is served as it
// was recorded rather than with some of them, or with those of an earlier request.
class WholeIdentifiers {
 public:
  WholeIdentifiers() = default;
  ~WholeIdentifiers() {
    const bool whole =
        std::uncaught_exceptions() == _exceptions && !zetnorv::RefusedMemory::wasMet();
    if (whole || !carriesIdentifiers(ZetNorvEmul::_nOp)) return;
    ZetNorvEmul::_ids.Release();
    ZetNorvEmul::_idsRef.Release();
  }
  WholeIdentifiers(const WholeIdentifiers&) = delete;
  WholeIdentifiers& operator=(const WholeIdentifiers&) = delete;

 private:
  const int _exceptions = std::uncaught_exceptions();
};

long compareWithRecording(const char* message, int size, const MString& recorded) {
  ZetNorvTrace.TraPutLN(2, "PelmoMod: microMod run");
  ZetNorvMod mod;
  if (mod.runNorvLike(ZetNorvEmul::_nOp, message, size, recorded.gchar()) != S_OK) {
    ZetNorvTrace.TraPutLN(2, "Problem in ZetNorvEmul::preWensnd with microMod.run");
    return E_FAIL;
  }
  collect({ZetNorvBuilders::extractLogObject, ZetNorvEmul::_ids, "extractLogObject OK",
           "NO LogObject Tags", "extractLogObject: Problem"},
          message, size);
  collect({ZetNorvBuilders::extractRefObject, ZetNorvEmul::_idsRef, "extractRefObject OK",
           "NO RefObject Tags", "extractRefObject: Problem"},
          message, size);
  ZetNorvTrace.TraPutLN(2, " end of if microMod.getMsg... ");
  return S_OK;
}

}  // namespace

namespace zetnorv {

long checkRequest(const char* message, int size) {
  const WholeIdentifiers identifiers;
  ZetNorvTrace.TraPutLN(2, "run.");
  MString path;
  if (ZetNorvToolBox::getScePath(path) != S_OK) {
    ZetNorvTrace.TraPutLN(2, "Problem in ZetNorvEmul::preWensnd with ZetNorvToolBox::getScePath");
    return E_FAIL;
  }
  path + MString("\\Scenario.txt");
  ScenarioIndexReader index;
  if (index.open(path.gchar()) != S_OK) {
    ZetNorvTrace.TraPutLN(2, "Problem in ZetNorvEmul::preWensnd with KelFOpen!");
    return E_FAIL;
  }
  ZetNorvTrace.TraPutLN(2, "PelmoMod: MString spSplit");
  const IndexFields fields = fieldsAtCursor(index);
  if (RefusedMemory::wasMet()) {
    ZetNorvTrace.TraPutLN(2, "Problem in ZetNorvEmul::preWensnd with new");
    return E_FAIL;
  }

  MString recorded;
  if (ZetNorvToolBox::getRefPath(recorded) != S_OK) return E_FAIL;
  // In debug mode the field starts with the reference directory's own name, so that stands in the
  // path twice: recordings made in debug mode are replayed from such a directory.
  recorded + MString("\\");
  recorded + fields.file;
  if (fields.operation.isNull() || fields.operation.parseInt() != ZetNorvEmul::_nOp) {
    ZetNorvTrace.TraPutLN(2, "Problem in ZetNorvEmul::preWensnd with (message != _nOp)");
    return S_OK;
  }
  const RequestParsedOnce once(message, size);
  return compareWithRecording(message, size, recorded);
}

}  // namespace zetnorv
