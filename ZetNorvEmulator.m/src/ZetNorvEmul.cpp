// The hooks: what they do in every mode, and which way they go from there.
#include "ZetNorvEmul.h"

#include <cstdint>
#include <initializer_list>

#include "EmulatorSteps.h"
#include "ExchangeLog.h"
#include "Guard.h"
#include "NullReference.h"
#include "ZetNorvToolBox.h"

namespace {

constexpr int kOperationBytes = 4;

int operationOf(const char* message) {
  std::uint32_t value = 0;
  for (int i = 0; i < kOperationBytes; ++i) {
    value |= static_cast<std::uint32_t>(static_cast<unsigned char>(message[i])) << (8 * i);
  }
  return static_cast<std::int32_t>(value);
}

bool isOneOf(const MString& mode, std::initializer_list<const char*> keywords) {
  for (const char* keyword : keywords) {
    if (mode.compare(keyword)) return true;
  }
  return false;
}

void noteRequest(const char* message, int size) {
  if (message != nullptr && size >= kOperationBytes) {
    ZetNorvEmul::_nOp = operationOf(message);
    ZetNorvTrace.TraPutLN(2, "[nOp] ", ZetNorvEmul::_nOp);
  }
  const bool debugging = ZetNorvToolBox::inDebugMode() == S_OK;
  if (debugging) {
    ZetNorvTrace.TraPutLN(2, "ZetNorvEmul::preWensnd", ZetNorvEmul::_nOp);
    zetnorv::nameExchangeLog();
  }
  ++ZetNorvEmul::_posCursPre;
  if (debugging) zetnorv::logSent(ZetNorvEmul::_nOp, ZetNorvEmul::_posCursPre);
}

void noteAnswer() {
  ++ZetNorvEmul::_posCursPost;
  if (ZetNorvToolBox::inDebugMode() != S_OK) return;
  ZetNorvTrace.TraPutLN(2, "ZetNorvEmul::postWensnd", ZetNorvEmul::_nOp);
  zetnorv::logReceived(ZetNorvEmul::_nOp, ZetNorvEmul::_posCursPost);
}

// The mode is compared over its own length, so a beginning of a keyword counts as the keyword: "S"
// scans requests and saves answers.
long handleRequest(const char* message, int size) {
  noteRequest(message, size);
  MString mode;
  if (ZetNorvToolBox::getModeValue(mode) != S_OK) return E_FAIL;
  if (isOneOf(mode, {"REPLAY", "SCAN", "OLDREPLAY"})) return zetnorv::checkRequest(message, size);
  if (isOneOf(mode, {"SAVE"})) return zetnorv::recordRequest(message, size);
  ZetNorvTrace.TraPutLN(2, "ZetNorvEmul STOP");
  return S_OK;
}

long handleAnswer(char** answer, int* size, int* status) {
  noteAnswer();
  MString mode;
  const bool set = ZetNorvToolBox::getModeValue(mode) == S_OK;
  if (set && isOneOf(mode, {"REPLAY", "OLDREPLAY"})) {
    return zetnorv::replayAnswer(answer, size, status);
  }
  if (set && isOneOf(mode, {"SAVE"})) {
    return zetnorv::recordAnswer(answer == nullptr ? nullptr : *answer, size, status);
  }
  ZetNorvTrace.TraPutLN(1, "ZetNorvEmul STOP");
  return S_OK;
}

}  // namespace

long ZetNorvEmul::preWensnd(int, const char* message, int size) {
  return zetnorv::guarded("ZetNorvEmul::preWensnd", [&] { return handleRequest(message, size); });
}

long ZetNorvEmul::postWensnd(int, char*& answer, int*& size, int*& status) {
  return zetnorv::guarded("ZetNorvEmul::postWensnd", [&] {
    // An old host may hand in references that are null.
    return handleAnswer(zetnorv::isNullReference(answer) ? nullptr : &answer,
                        zetnorv::isNullReference(size) ? nullptr : size,
                        zetnorv::isNullReference(status) ? nullptr : status);
  });
}
