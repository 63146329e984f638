// A host that is not linked with the library: loads it, exchanges messages, and unloads it, again
// and again.
//
//   loading-host <library or plug-in> local|global lazy|now <rounds>
//
// Prints a line for every round, and one about what is left at the end.
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "OwnProcess.h"
#include "SharedLibrary.h"

namespace {

constexpr int kExchanges = 3;

// The hooks as the linker knows them.
constexpr const char* kSendName = "_ZN11ZetNorvEmul9preWensndEiPKci";
constexpr const char* kReceiveName = "_ZN11ZetNorvEmul10postWensndEiRPcRPiS3_";
constexpr const char* kStepName = "_ZN11ZetNorvEmul11_posCursPreE";

using Send = long (*)(int, const char*, int);
using Receive = long (*)(int, char*&, int*&, int*&);

struct Round {
  int stepBefore = -1;
  int sent = 0;
  int received = 0;
  int replaced = 0;
};

std::string request(int number) {
  std::string text(4, '\0');
  text[0] = 0x41;  // 321
  text[1] = 1;
  return text + "<SaveRequest><Document Name=\"d" + std::to_string(number) +
         "\" FilePath=\"\"/><LogObject Identifier=\"L" + std::to_string(number) +
         "\"/></SaveRequest>";
}

std::string answer(int number) {
  const std::string text = "<Answer><LogObject Identifier=\"L" + std::to_string(number) +
                           "\"><Attribute Name=\"COID\" Value=\"" + std::to_string(number) +
                           "\"/></LogObject></Answer>";
  std::string header(8, '\0');
  header[4] = static_cast<char>(text.size());
  return header + text;
}

void exchange(Send send, Receive receive, int number, Round& round) {
  const std::string sent = request(number);
  if (send(0, sent.data(), static_cast<int>(sent.size())) == 0) ++round.sent;
  const std::string live = answer(number);
  char* buffer = new char[live.size() + 1]();
  live.copy(buffer, live.size());
  char* const before = buffer;
  int bytes = static_cast<int>(live.size());
  int status = 0;
  int* size = &bytes;
  int* state = &status;
  if (receive(0, buffer, size, state) == 0) ++round.received;
  if (buffer != before && std::string(buffer, static_cast<std::size_t>(bytes)) == live) {
    ++round.replaced;
  }
  delete[] buffer;
}

bool play(const SharedLibrary& library, Round& round) {
  const auto send = reinterpret_cast<Send>(library.find(kSendName));
  const auto receive = reinterpret_cast<Receive>(library.find(kReceiveName));
  const auto* step = static_cast<const int*>(library.find(kStepName));
  if (send == nullptr || receive == nullptr || step == nullptr) return false;
  round.stepBefore = *step;
  for (int number = 1; number <= kExchanges; ++number) exchange(send, receive, number, round);
  return true;
}

int fail(const std::string& why) {
  std::cout << "host: " << why << '\n';
  return 1;
}

}  // namespace

int main(int count, char* arguments[]) {
  if (count != 5) return fail("bad usage");
  const std::string names = arguments[2];
  const std::string binding = arguments[3];
  const int rounds = std::atoi(arguments[4]);
  int descriptors = 0;
  std::size_t bytes = 0;
  for (int number = 1; number <= rounds; ++number) {
    SharedLibrary library;
    std::string problem;
    if (!library.load(
            arguments[1],
            names == "global" ? SharedLibrary::Names::kGlobal : SharedLibrary::Names::kLocal,
            binding == "now" ? SharedLibrary::Binding::kNow : SharedLibrary::Binding::kLazy,
            problem)) {
      return fail(problem);
    }
    Round round;
    if (!play(library, round)) return fail("a name is not found");
    library.unload();
    std::cout << "round from " << round.stepBefore << " sent " << round.sent << " received "
              << round.received << " replaced " << round.replaced << " mapped "
              << isMapped("libZetNorvEmulator.so") << isMapped("libKelXML.so")
              << isMapped("libKelFoundation.so") << '\n';
    // What is made once and kept is there after a few.
    if (number == 3) {
      descriptors = openDescriptors();
      bytes = allocatedBytes();
    }
  }
  const auto grown = static_cast<std::int64_t>(allocatedBytes()) - static_cast<std::int64_t>(bytes);
  std::cout << "descriptors " << openDescriptors() - descriptors << '\n';
  std::cout << "grown " << (grown > 16 * 1024 ? grown : 0) << '\n';
  return 0;
}
