// First-navigation snapshots: blocks of binary data that share the steps and the index of the
// requests.
#include <cstdint>
#include <string>

#include "Guard.h"
#include "KelFile.h"
#include "KelUnicodeString.h"
#include "MFile.h"
#include "NullReference.h"
#include "OwningArray.h"
#include "ScenarioIndex.h"
#include "ZetNorvEmul.h"
#include "ZetNorvToolBox.h"
#include "ZetNorvToolBox/EnsureDirectory.h"

using zetnorv::ScenarioIndexReader;
using zetnorv::ScenarioIndexWriter;

namespace {

// A snapshot file is that much longer than what is read back: files of this length are what replays
// know.
constexpr std::int64_t kTail = 5;

long fail(const char* line) {
  ZetNorvTrace.TraPutLN(2, line);
  return E_FAIL;
}

// Writes the block; a file that could not be written whole is removed.
long writeBlock(const std::string& path, const char* data, int size) {
  const std::int64_t length = size + kTail;
  MFile file;
  if (data == nullptr || file.open(path.c_str(), "w") != S_OK) return E_FAIL;
  const long written = length > 0 && length <= INT32_MAX
                           ? file.write(data, static_cast<int>(length))
                           : (length > 0 ? E_FAIL : S_OK);
  const long closed = file.close();
  if (written == S_OK && closed == S_OK) return S_OK;
  KelFRemove(KelUnicodeString(path.c_str()).ConvertToWide());
  return E_FAIL;
}

std::string snapshotLine(const std::string& path, int size) {
  const std::string bytes = std::to_string(size);
  return "<999><" + path + "><" + bytes + "><" + bytes + ">\n";
}

long appendSnapshotLine(const std::string& path, int size) {
  MString scenario;
  if (ZetNorvToolBox::getScePath(scenario) != S_OK) {
    return fail("Problem in ZetNorvToolBox::KavFirst with ZetNorvToolBox::getScePath");
  }
  zetnorv::ensureDirectory(scenario);
  scenario + MString("\\Scenario.txt");
  ScenarioIndexWriter index;
  if (index.open(scenario.gchar()) != S_OK) {
    return fail("Problem in ZetNorvToolBox::KavFirst with file.open");
  }
  if (index.append(snapshotLine(path, size)) != S_OK) {
    return fail("Problem in ZetNorvToolBox::KavFirst with file.puts");
  }
  return S_OK;
}

long saveSnapshot(int size, const char* data) {
  MString reference;
  if (ZetNorvToolBox::getRefPath(reference) != S_OK) {
    return fail("Problem in ZetNorvToolBox::KavFirst with ZetNorvToolBox::getRefPath");
  }
  zetnorv::ensureDirectory(reference);
  const std::string path = std::string(reference.gchar()) + "\\KavFirst" +
                           std::to_string(ZetNorvEmul::_posCursPre) + ".bin";
  const long written = writeBlock(path, data, size);
  // The step is taken also when the block was not written, as the replay takes it.
  ++ZetNorvEmul::_posKavFirst;
  ++ZetNorvEmul::_posCursPre;
  if (written != S_OK) return fail("Problem in ZetNorvToolBox::KavFirst with file.write");
  return appendSnapshotLine(path, size);
}

// The line of the present step, or the last one when the index is shorter.
MString lineAtCursor(const ScenarioIndexReader& index) {
  const int cursor = ZetNorvEmul::_posCursPre < 1 ? 1 : ZetNorvEmul::_posCursPre;
  return index.line(cursor < index.count() ? cursor : index.count());
}

// Reads up to `size` bytes of the file into a new buffer of `allocated` zero bytes. A missing or
// short file is not told from a whole one: the rest of the buffer stays as it is.
long readBlock(const MString& path, int size, int allocated, char*& data) {
  if (size < 0 || allocated < 0 || size > allocated) {
    return fail("Problem in ZetNorvEmul::ReplayKavFirst with size");
  }
  char* block = zetnorv::newBytes(static_cast<std::size_t>(allocated));
  if (block == nullptr) return fail("Problem in ZetNorvEmul::ReplayKavFirst with new");
  MFile file;
  if (file.open(path.gchar(), "r") == S_OK) {
    file.read(block, size);
    file.close();
  }
  if (zetnorv::RefusedMemory::wasMet()) {
    zetnorv::releaseBytes(block);
    return fail("Problem in ZetNorvEmul::ReplayKavFirst with new");
  }
  data = block;
  return S_OK;
}

long replaySnapshot(int& size, int& allocated, char*& data) {
  ++ZetNorvEmul::_posCursPre;
  MString scenario;
  if (ZetNorvToolBox::getScePath(scenario) != S_OK) {
    return fail("Problem in ZetNorvEmul::ReplayKavFirst with ZetNorvToolBox::getScePath");
  }
  scenario + MString("\\Scenario.txt");
  ScenarioIndexReader index;
  // The request hook's wording, as readers of the trace know it.
  if (index.open(scenario.gchar()) != S_OK) {
    return fail("Problem in ZetNorvEmul::preWensnd with KelFOpen!");
  }
  MString line = lineAtCursor(index);
  line.spSplit('<', '>');
  line.spSplitNext();  // the operation, whatever it is
  const MString path = line.spSplitNext();
  const int readSize = line.spSplitNext().parseInt();
  const int bufferSize = line.spSplitNext().parseInt();
  size = readSize;
  allocated = bufferSize;
  return readBlock(path, readSize, bufferSize, data);
}

}  // namespace

long ZetNorvEmul::SaveKavFirst(int& size, int&, const char* data) {
  return zetnorv::guarded("ZetNorvEmul::SaveKavFirst", [&] {
    if (zetnorv::isNullReference(size)) {
      return fail("Problem in ZetNorvEmul::SaveKavFirst: size == NULL");
    }
    return saveSnapshot(size, data);
  });
}

long ZetNorvEmul::ReplayKavFirst(int& size, int& allocated, char*& data) {
  return zetnorv::guarded("ZetNorvEmul::ReplayKavFirst", [&] {
    if (zetnorv::isNullReference(size) || zetnorv::isNullReference(allocated) ||
        zetnorv::isNullReference(data)) {
      return fail("Problem in ZetNorvEmul::ReplayKavFirst: NULL argument");
    }
    return replaySnapshot(size, allocated, data);
  });
}
