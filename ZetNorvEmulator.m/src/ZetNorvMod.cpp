#include "ZetNorvMod.h"

#include <cstring>
#include <memory>

#include "CollectorErrors.h"
#include "ComparedMessage.h"
#include "DataScript.h"
#include "Guard.h"
#include "MFile.h"
#include "Msg.h"
#include "ScriptKind.h"
#include "ZetNorvBuilders.h"
#include "ZetNorvScript.h"

namespace {

// The commit of a transaction: it holds nothing that is worth comparing.
constexpr int kCommit = 325;

constexpr const char* kProblem = "Problem";
constexpr const char* kDifference = "Problem with reference file ...";

void trace(const char* line) { ZetNorvTrace.TraPutLN(2, line); }

long fail(const char* line) {
  trace(line);
  return E_FAIL;
}

struct Message {
  const char* buffer;
  int size;
};

// A recorded request.
class Reference {
 public:
  long load(const char* path) {
    char* content = nullptr;
    MFile file;
    // By its length: the path of a file may hold a line feed.
    const MString name(path, static_cast<int>(std::strlen(path)));
    const long result = file.load(name, content, _size);
    _bytes.reset(content);
    return result;
  }

  bool isEmpty() const { return _bytes == nullptr || _size < 1; }
  Message message() const { return {_bytes.get(), _size}; }

 private:
  std::unique_ptr<char[]> _bytes;
  int _size = 0;
};

// One run on its way: what both kinds of messages need.
struct Run {
  int messageNumber;
  Message sent;
  DataScript& script;
  CollectorErrors& collector;

  // The section is written also when nothing was found; the run does not depend on it.
  void writeSection() const { collector.writeLogFile(messageNumber, sent.buffer, sent.size); }
};

long compareXml(const Run& run, const Message& reference) {
  zetnorv::ComparedMessage msg;
  zetnorv::ComparedMessage msgRef;
  trace("ZetNorvMod: Builder::builderMessage msg");
  if (msg.build(run.sent.buffer, run.sent.size, run.script, &run.collector) != S_OK) {
    return fail("ZetNorvMod: Builder::builderMessage msg PROBLEM");
  }
  trace("ZetNorvMod: Builder::builderMessage msgRef");
  if (msgRef.build(reference.buffer, reference.size, run.script, nullptr) != S_OK) {
    return fail("ZetNorvMod: Builder::builderMessage msgRef PROBLEM");
  }

  trace("Builder::restructMessage msg");
  msg.restructure();
  trace("Builder::restructMessage msgRef");
  msgRef.restructure();
  trace("ZetNorvMod: Builder::checkFather msg");
  ZetNorvBuilders::checkFather(&msg.model(), &run.script, &run.collector);

  trace("ZetNorvMod: msg->operator ==");
  if (!(msg.model() == msgRef.model())) run.collector.addError(10, kProblem, kDifference);
  run.writeSection();
  trace("ZetNorvMod:  End of if(MsgXML)");
  return S_OK;
}

long compareChar(const Run& run, const Message& reference) {
  trace("ZetNorvMod: Msg * msg = Builder::builderMessage");
  const std::unique_ptr<Msg> msg(
      ZetNorvBuilders::builderMessage(run.sent.buffer, run.sent.size, &run.script, &run.collector));
  trace("ZetNorvMod: Msg * msgRef = Builder::builderMessage");
  const std::unique_ptr<Msg> msgRef(
      ZetNorvBuilders::builderMessage(reference.buffer, reference.size, &run.script, nullptr));
  if (msg == nullptr || msgRef == nullptr) return E_FAIL;  // the builder has traced it

  if (!(*msg == *msgRef)) run.collector.addError(5, kProblem, kDifference);
  run.writeSection();
  return S_OK;
}

long compare(int messageNumber, const Message& sent, const char* referencePath) {
  trace("ZetNorvMod: Creation du CollectorErrors");
  CollectorErrors collector(messageNumber);

  trace("ZetNorvMod: Creation du DataScript");
  const std::unique_ptr<DataScript> script(ZetNorvScript::buildData(messageNumber));
  if (script == nullptr) return fail("runNorvLike: buildData != S_OK");

  trace("MicroMod: Extraction fichier de reference");
  Reference reference;
  if (reference.load(referencePath) != S_OK) return fail("runNorvLike: load != S_OK");

  const Run run{messageNumber, sent, *script, collector};
  long result = E_FAIL;
  if (!reference.isEmpty() && zetnorv::isOfKind(script->type, zetnorv::kXmlScript)) {
    result = compareXml(run, reference.message());
  } else if (!reference.isEmpty() && zetnorv::isOfKind(script->type, zetnorv::kCharacterScript)) {
    result = compareChar(run, reference.message());
  } else {
    return fail("ZetNorvMod: runNorvLike: typeMsg errone");
  }
  if (result == S_OK) trace("ZetNorvMod: End");
  return result;
}

}  // namespace

long ZetNorvMod::runNorvLike(int messageNumber, const char* buffer, int size,
                             const char* referencePath) {
  if (messageNumber == kCommit) {
    trace("Spe: Commit (325).");
    return S_OK;
  }
  if (buffer == nullptr) return fail("runNorvLike: inputBuf == NULL");
  if (referencePath == nullptr) return fail("runNorvLike: pathFile == NULL");
  return zetnorv::guarded("ZetNorvMod::runNorvLike", [&] {
    return compare(messageNumber, {buffer, size}, referencePath);
  });
}
