#include "pdm-client/ExchangeLayer.h"

#include <ZetNorvEmul.h>
#include <ZetNorvToolBox.h>

#include <algorithm>

namespace pdm {

namespace {

constexpr int kChannel = 0;

AnswerFrom originOf(const ServerAnswer& sent, std::string_view received, bool online) {
  if (received == sent.bytes) return online ? AnswerFrom::server : AnswerFrom::nowhere;
  return AnswerFrom::recording;
}

}  // namespace

const char* nameOf(AnswerFrom from) {
  switch (from) {
    case AnswerFrom::server:
      return "server";
    case AnswerFrom::recording:
      return "recording";
    case AnswerFrom::nowhere:
      break;
  }
  return "nowhere";
}

Answer ExchangeLayer::exchange(const std::string& request) {
  const long before =
      ZetNorvEmul::preWensnd(kChannel, request.data(), static_cast<int>(request.size()));

  // The hook never stops an exchange: the request goes out whatever it said. Without a server the
  // answer is empty.
  const ServerAnswer sent = _server != nullptr ? _server->serve(request)
                                               : ServerAnswer{.bytes = "", .status = kUnreachable};
  char* buffer = new char[sent.bytes.size()];
  std::copy(sent.bytes.begin(), sent.bytes.end(), buffer);
  int size = static_cast<int>(sent.bytes.size());
  int status = sent.status;

  // In replay the hook deletes the buffer and puts another one, again from new char[], in its
  // place; either way it is the client's.
  int* sizePointer = &size;
  int* statusPointer = &status;
  const long after = ZetNorvEmul::postWensnd(kChannel, buffer, sizePointer, statusPointer);

  Answer answer{.buffer = std::unique_ptr<char[]>(buffer), .size = size, .status = status};
  answer.from = originOf(sent, answer.bytes(), _server != nullptr);
  // Without a run mode the library does nothing, which the first hook calls a failure.
  answer.requestHookFailed = before != 0 && ZetNorvToolBox::inZetMode() == 0;
  answer.answerHookFailed = after != 0;
  return answer;
}

}  // namespace pdm
