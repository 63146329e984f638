// The layer through which the client sends every request. This is where a client calls the
// recording library: once before a request goes out, once when its answer is there.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "pdm-client/ToyServer.h"

namespace pdm {

// Where the answer that the client works with comes from.
enum class AnswerFrom { nowhere, server, recording };
const char* nameOf(AnswerFrom from);

struct Answer {
  std::unique_ptr<char[]> buffer;
  int size = 0;
  int status = 0;
  AnswerFrom from = AnswerFrom::nowhere;
  bool requestHookFailed = false;
  bool answerHookFailed = false;

  std::string_view bytes() const { return {buffer.get(), static_cast<std::size_t>(size)}; }
};

class ExchangeLayer {
 public:
  // What the status of an exchange says when no server was reached.
  static constexpr int kUnreachable = 7;

  // `server` is borrowed and must outlive this object; null when the client works offline.
  explicit ExchangeLayer(ToyServer* server) : _server(server) {}

  // Sends one request and waits for its answer.
  Answer exchange(const std::string& request);

 private:
  ToyServer* _server;
};

}  // namespace pdm
