// Any exchanges, recorded and replayed: the files and lines are those of a plain model, and every
// answer comes back byte for byte.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "Emulated.h"
#include "Expect.h"
#include "FuzzInput.h"
#include "KelLib.h"

using fuzz::Emulated;
using fuzz::expect;
using fuzz::expectEqual;

namespace {

constexpr int kOperations[] = {0, 12, 26, 77, 319, 325, 999, -5, 2147483647};

struct Exchange {
  int operation;
  std::string request;
  std::string answer;
  int status;
};

std::vector<Exchange> readExchanges(fuzz::Input& input) {
  std::vector<Exchange> exchanges;
  while (!input.atEnd() && exchanges.size() < 30) {
    const int operation = kOperations[input.upTo(8)];
    const int status = input.number();
    std::string header;
    for (int i = 0; i < 4; ++i) header += static_cast<char>(operation >> (8 * i) & 0xff);
    const std::string request = header + input.textTo('|');
    // An empty answer keeps a line that tells so, and shifts what is replayed behind it.
    exchanges.push_back({operation, request, input.textTo('|') + "#", status});
  }
  return exchanges;
}

std::string exchange(const Exchange& each, const std::string& live, int& status) {
  std::vector<char> sent(each.request.begin(), each.request.end());
  ZetNorvEmul::preWensnd(0, sent.data(), static_cast<int>(sent.size()));
  expect(std::equal(sent.begin(), sent.end(), each.request.begin()), "the request is as it was");
  char* answer = new char[live.size() + 1]();
  std::copy(live.begin(), live.end(), answer);
  int bytes = static_cast<int>(live.size());
  int* sizeAt = &bytes;
  int* statusAt = &status;
  const long result = ZetNorvEmul::postWensnd(0, answer, sizeAt, statusAt);
  expect(result == S_OK, "an answer is recorded, or served");
  const std::string received(answer, static_cast<std::size_t>(bytes));
  delete[] answer;
  return received;
}

// What a recording of the exchanges is.
std::map<std::string, std::string> recordingOf(const std::vector<Exchange>& exchanges) {
  std::map<std::string, std::string> files;
  std::map<int, int> numbers;
  for (const Exchange& each : exchanges) {
    const std::string operation = std::to_string(each.operation);
    const std::string name = operation + "_" + std::to_string(numbers[each.operation]++) + ".txt";
    files[Emulated::reference("save" + name)] = each.request;
    files[Emulated::reference("rep" + name)] = each.answer;
    files[Emulated::scenario("Scenario.txt")] += "<" + operation + "><save" + name + ">\n";
    files[Emulated::scenario("Scenario2.txt")] +=
        "<" + operation + "><rep" + name + "><" + std::to_string(each.status) + ">\n";
  }
  return files;
}

void sameFiles(const std::map<std::string, std::string>& expected) {
  const MemoryFileSystem& files = Emulated::files();
  expect(files.files().size() == expected.size(), "the files are as many");
  for (const auto& [path, bytes] : expected) {
    expect(files.exists(path), "a file is there");
    expectEqual(files.bytes(path), bytes, "a file has its bytes");
  }
  expect(files.openFiles() == 0, "no file is left open");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  fuzz::Input input(bytes, size);
  const std::vector<Exchange> exchanges = readExchanges(input);
  const std::map<std::string, std::string> recording = recordingOf(exchanges);
  Emulated saving("SAVE");
  for (const Exchange& each : exchanges) {
    int status = each.status;
    expectEqual(exchange(each, each.answer, status), each.answer, "the live answer is kept");
    expect(status == each.status, "the live status is kept");
  }
  sameFiles(recording);

  // A new process, in another mode.
  resetEmulator();
  saving.mode("REPLAY");
  for (const Exchange& each : exchanges) {
    int status = ~each.status;
    expectEqual(exchange(each, "live", status), each.answer, "the recorded answer is served");
    expect(status == each.status, "the recorded status is served");
  }
  sameFiles(recording);
  return 0;
}
