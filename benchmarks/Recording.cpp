#include "Recording.h"

#include <ZetNorvDb.h>
#include <ZetNorvEmul.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

namespace bench {

namespace {

constexpr int kChannel = 0;

void insist(long result) {
  if (result == 0) return;
  std::fputs("a hook failed: nothing that follows could be relied on\n", stderr);
  std::exit(2);
}

}  // namespace

Recording::Recording(const std::string& root, const std::string& script) {
  static int made = 0;
  _folder = root + "/recording" + std::to_string(++made);
  std::filesystem::create_directories(_folder + "/zet/Configuration");
  std::filesystem::create_directories(_folder + "/tmp");
  writeScript(script);
  use(_folder);
}

void Recording::use(const std::string& folder) {
  for (const char* other : {"ZETNORV_DEBUG", "ZETNORV_CMD", "KEL_TRACE"}) unsetenv(other);
  setenv("KEL_DRIVE_ROOT", folder.c_str(), 1);
  setenv("BIX_ZET_IN", "\\zet", 1);
  setenv("BIX_ZET_TMP", "\\tmp", 1);
  setenv("ZET_LOG_NAME", "bench", 1);
  rewind();
  ZetNorvDb::_path.set(nullptr);
  ZetNorvDb::_database.Release();
}

void Recording::mode(const char* keyword) const { setenv("ZETNORV_MODE", keyword, 1); }

void Recording::rewind() {
  ZetNorvEmul::_posCursPre = 0;
  ZetNorvEmul::_posCursPost = 0;
}

void Recording::writeScript(const std::string& script) const {
  std::ofstream(this->script(), std::ios::binary) << script;
}

void Recording::record(int count, const std::function<Exchange(int step)>& exchange) const {
  mode("SAVE");
  for (int step = 1; step <= count; ++step) Recording::exchange(exchange(step));
  rewind();
}

void Recording::settle() { std::this_thread::sleep_for(std::chrono::milliseconds(120)); }

void Recording::exchange(const Exchange& what) {
  insist(
      ZetNorvEmul::preWensnd(kChannel, what.request.data(), static_cast<int>(what.request.size())));
  answer(what);
}

void Recording::answer(const Exchange& what) {
  char* answer = new char[what.answer.size()];
  what.answer.copy(answer, what.answer.size());
  int size = static_cast<int>(what.answer.size());
  int status = 0;
  int* sizePointer = &size;
  int* statusPointer = &status;
  insist(ZetNorvEmul::postWensnd(kChannel, answer, sizePointer, statusPointer));
  delete[] answer;
}

std::string Recording::reference(const std::string& name) const {
  return _folder + "/zet/bench.rec/Reference/" + name;
}

std::string Recording::scenario(const std::string& name) const {
  return _folder + "/zet/bench.rec/Scenario/" + name;
}

void Recording::clearErrorLog() const { std::filesystem::remove(_folder + "/error.log"); }

}  // namespace bench
