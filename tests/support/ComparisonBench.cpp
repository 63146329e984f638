#include "ComparisonBench.h"

#include <algorithm>
#include <filesystem>
#include <vector>

#include "Files.h"
#include "ZetNorvMod.h"

std::string littleEndian(int number, int size) {
  std::string bytes;
  for (int i = 0; i < size; ++i) {
    bytes += static_cast<char>(static_cast<unsigned int>(number) >> (8 * i) & 0xFFu);
  }
  return bytes;
}

std::string message(int number, const std::string& text) { return littleEndian(number) + text; }

ComparisonBench::ComparisonBench() {
  environment.set("BIX_ZET_IN", directory.path().string());
  environment.set("KEL_DRIVE_ROOT", directory.path().string());
}

void ComparisonBench::script(const std::string& content) { writeBytes(scriptFile(), content); }

std::string ComparisonBench::scriptFile() const {
  return directory.file("Configuration/xmlStruct.xml");
}

std::string ComparisonBench::record(const std::string& content) {
  const std::string path = directory.file("recorded");
  writeBytes(path, content);
  return path;
}

long ComparisonBench::compare(int number, const std::string& sent,
                              const std::string& referencePath) {
  // Without the NUL that ends a string, so that reading beyond the message shows.
  const std::vector<char> bytes(sent.begin(), sent.end());
  const char nothing = 0;
  return ZetNorvMod::runNorvLike(number, bytes.empty() ? &nothing : bytes.data(),
                                 static_cast<int>(bytes.size()), referencePath.c_str());
}

long ComparisonBench::compareWith(int number, const std::string& sent,
                                  const std::string& recorded) {
  return compare(number, sent, record(recorded));
}

bool ComparisonBench::hasLog() const { return exists(directory.file("error.log")); }

std::string ComparisonBench::log() const { return readBytes(directory.file("error.log")); }

void ComparisonBench::removeLog() { std::filesystem::remove(directory.file("error.log")); }

std::string section(int number, const std::string& sent, const std::string& findings) {
  const std::string text =
      sent.size() > 4 ? std::string(sent.begin() + 4, std::find(sent.begin() + 4, sent.end(), '\0'))
                      : std::string();
  return "\n###########   Message " + std::string(number >= 0 && number < 10 ? "0" : "") +
         std::to_string(number) + " \n\n## Taille " + std::to_string(sent.size()) + " \n## Buf:\n" +
         text + "\n## Fin buf\n" + findings;
}
