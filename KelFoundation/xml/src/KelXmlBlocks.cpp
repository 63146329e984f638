#include "KelXmlBlocks.h"

#include <cstdlib>
#include <utility>

namespace {

KelXmlBlocks::Watcher* theWatcher = nullptr;

}  // namespace

void* KelXmlBlocks::Get(std::size_t size) noexcept {
  if (theWatcher != nullptr && !theWatcher->OnGet(size)) return nullptr;
  void* block = std::malloc(size);
  if (block == nullptr && theWatcher != nullptr) theWatcher->OnRelease(size);
  return block;
}

void KelXmlBlocks::Release(void* block, std::size_t size) noexcept {
  if (block == nullptr) return;
  if (theWatcher != nullptr) theWatcher->OnRelease(size);
  std::free(block);
}

KelXmlBlocks::Watcher* KelXmlBlocks::SetWatcher(Watcher* watcher) {
  return std::exchange(theWatcher, watcher);
}
