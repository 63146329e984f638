// Staging: which document of a request is copied, under which name, and that nothing is made
// anywhere else.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "Emulated.h"
#include "Expect.h"
#include "FuzzInput.h"
#include "KelFile.h"
#include "KelUnicodeString.h"
#include "Tokens.h"
#include "Tree.h"

using fuzz::Emulated;
using fuzz::expect;
using fuzz::expectEqual;

namespace {

using Text = std::optional<std::string>;

constexpr const char* kKept = "kept from before";
constexpr const char* kDocument = "the document";

std::string stagingDirectory() { return Emulated::reference("Kel_Files_Temp/"); }

Text lastFilePath(const DOM_Document& request) {
  Text last;
  for (const DOM_Element& document : fuzz::elementsNamed(request, "Document")) {
    const DOMString path = fuzz::attribute(document, "FilePath");
    if (!path.isNull()) last = path.utf8();
  }
  return last;
}

// Behind the last '/'; without one, behind as many characters as the document has bytes, which
// counts one more.
Text nameIn(const std::string& path, std::size_t documentBytes) {
  const std::size_t slash = path.rfind('/');
  const std::size_t start = (slash == std::string::npos ? documentBytes : slash) + 1;
  if (start >= path.size()) return {};
  return fuzz::firstLine(path.substr(start));
}

// Where the copy would be, as the file system sees it; empty for no name.
std::string copyOf(const Text& name) {
  if (!name || name->empty()) return "";
  std::string path = stagingDirectory() + *name;
  std::replace(path.begin(), path.end(), '\\', '/');
  return path;
}

bool leavesDirectory(const std::string& path) {
  const std::filesystem::path pieces(path.substr(stagingDirectory().size()));
  return std::find(pieces.begin(), pieces.end(), "..") != pieces.end();
}

// Makes the document's file, where there can be one of that path.
void makeDocument(const std::string& path) {
  int descriptor = 0;
  const KelUnicodeString wide(path.c_str());
  const std::string native = KelNativePath(wide.ConvertToWide());
  if (!native.starts_with('/') || native.find("//") != std::string::npos) return;
  Emulated::files().put(native.substr(0, native.rfind('/') + 1) + "beside", "");
  if (KelFOpen(wide.ConvertToWide(), "w", &descriptor) != S_OK) return;
  KelFPuts(kDocument, descriptor, nullptr);
  KelFClose(descriptor);
}

// What is read of the document; nothing when its file does not open.
Text contentOf(const std::string& path) {
  int descriptor = 0;
  if (KelFOpen(KelUnicodeString(path.c_str()).ConvertToWide(), "r", &descriptor) != S_OK) return {};
  std::string bytes(100, '\0');
  int count = 0;
  KelFRead(descriptor, bytes.data(), static_cast<int>(bytes.size()), &count);
  KelFClose(descriptor);
  return bytes.substr(0, static_cast<std::size_t>(count));
}

// Whether the document was put into the recording, where it may be in the way of what belongs
// there.
bool isInRecording(const std::string& path) {
  return KelNativePath(KelUnicodeString(path.c_str()).ConvertToWide()).starts_with("/drive/in");
}

// `content` is what has to be copied, if anything.
void stagedAsExpected(const std::vector<std::string>& before, const Text& name, const Text& content,
                      bool inTheWay) {
  const std::string copy = copyOf(name);
  const auto& files = Emulated::files();
  for (const std::string& file : files.files()) {
    if (std::find(before.begin(), before.end(), file) != before.end()) continue;
    expect(file.starts_with(stagingDirectory()), "nothing is made outside the staging directory");
    expect(content && file == std::filesystem::path(copy).lexically_normal(),
           "nothing is made but the copy");
    expectEqual(files.bytes(file), *content, "the copy has the document's bytes");
  }
  const std::string rest = copy.empty() ? "" : copy.substr(stagingDirectory().size());
  const bool plainName =
      !rest.empty() && rest.find('/') == std::string::npos && rest != "." && rest != "..";
  if (content && plainName && rest.size() < 256 && !inTheWay) {
    expect(files.exists(copy), "the document is copied");
    expectEqual(files.bytes(copy), *content, "the copy has the document's bytes");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  fuzz::Input input(bytes, size);
  const bool there = input.upTo(3) != 0;
  const std::string text = input.rest();
  const DOM_Document request = fuzz::parse(text);
  const Text path = request.isNull() ? Text() : lastFilePath(request);

  Emulated emulated("SAVE");
  ZetNorvDb::_refFile = MString(kKept);
  ZetNorvDb::_copyFile = MString(kKept);
  Emulated::files().put("/drive/in/case1.rec/Scenario/Scenario.txt", "<12><save12_0.txt>\n");
  Emulated::files().put("/outside/file", "bytes");
  if (there && path) makeDocument(*path);
  const Text content = path ? contentOf(*path) : Text();
  const std::vector<std::string> before = Emulated::files().files();

  const std::string message = "\x41\x01" + std::string(2, '\0') + text;
  const long result = ZetNorvDb().buildTemp(message.data(), static_cast<int>(message.size()));
  expect((result == S_OK) == !request.isNull(), "a request is what the parser takes");
  expect(Emulated::files().openFiles() == 0, "no file is left open");
  if (!path) {
    expectEqual(fuzz::textOf(ZetNorvDb::_refFile), kKept, "without a document the path is kept");
    expectEqual(fuzz::textOf(ZetNorvDb::_copyFile), kKept, "without a document the name is kept");
    expect(Emulated::files().files() == before, "without a document nothing is made");
    return 0;
  }
  const Text name = nameIn(*path, content.value_or("").size());
  expectEqual(fuzz::textOf(ZetNorvDb::_refFile), *path, "the path is the last document's");
  expectEqual(fuzz::textOf(ZetNorvDb::_copyFile), name.value_or(""), "the name is the path's end");
  const std::string copy = copyOf(name);
  const bool copied = content && (copy.empty() || !leavesDirectory(copy));
  const char* const line = copied ? "Copie des donnees: OK" : "Copie des donnees: KO";
  expect(emulated.trace.has(line), "the trace tells whether the document was read");
  stagedAsExpected(before, name, copied ? content : Text(), isInRecording(*path));
  return 0;
}
