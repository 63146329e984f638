#include "pdm-client/Snapshots.h"

#include <ZetNorvEmul.h>
#include <ZetNorvToolBox.h>

#include <cstddef>
#include <memory>
#include <string_view>

namespace pdm {

namespace {

// The library writes five bytes more than the block has, so the buffer must hold them.
constexpr std::size_t kBehind = 5;

// Binary data of a size of its own for every number; the same in every run.
std::string fetchBlock(int number) {
  const auto seed = static_cast<unsigned>(number);
  std::string block(1200 + 64 * (seed % 9), '\0');
  unsigned value = 17 + seed;
  for (char& c : block) {
    value = value * 1103515245u + 12345u;
    c = static_cast<char>((value >> 16) & 0xFFu);
  }
  return block;
}

SnapshotResult saveBlock(std::string block) {
  int size = static_cast<int>(block.size());
  int notRead = 0;
  block.resize(block.size() + kBehind);
  const long result = ZetNorvEmul::SaveKavFirst(size, notRead, block.data());
  return {size, "saved", result == 0 ? "" : "could not be saved"};
}

SnapshotResult readBack(const std::string& expected) {
  int size = 0;
  int allocated = 0;
  char* data = nullptr;
  const long result = ZetNorvEmul::ReplayKavFirst(size, allocated, data);
  const std::unique_ptr<char[]> owned(data);
  if (result != 0 || data == nullptr) return {0, "read back", "could not be read back"};
  const std::string_view block(data, static_cast<std::size_t>(size));
  return {size, "read back", block == expected ? "" : "not the block that was saved"};
}

}  // namespace

SnapshotResult takeSnapshot(int number) {
  const std::string block = fetchBlock(number);
  MString mode;
  if (ZetNorvToolBox::getModeValue(mode) != 0) {
    return {static_cast<int>(block.size()), "fetched", ""};
  }
  if (mode.compare("SAVE") != 0) return saveBlock(block);
  // A snapshot takes a step of the recording in every mode that follows one, so it is read in all
  // of them.
  for (const char* following : {"REPLAY", "SCAN", "OLDREPLAY"}) {
    if (mode.compare(following) != 0) return readBack(block);
  }
  return {static_cast<int>(block.size()), "fetched", ""};
}

}  // namespace pdm
