#include "KelXmlScannerPool.h"

#include <mutex>
#include <vector>

namespace {

constexpr std::size_t kMostIdle = 4;

struct Pool {
  // Room for all of them, so that giving one back cannot fail.
  Pool() { idle.reserve(kMostIdle); }

  std::mutex mutex;
  std::vector<std::unique_ptr<KelXmlScanner>> idle;
};

// Never destroyed: a document may be parsed while the process ends.
Pool& ThePool() {
  static Pool& pool = *new Pool;
  return pool;
}

}  // namespace

std::unique_ptr<KelXmlScanner> KelXmlScannerPool::Take() {
  Pool& pool = ThePool();
  {
    const std::lock_guard lock(pool.mutex);
    std::erase_if(pool.idle, [](const auto& scanner) { return !scanner->IsReusable(); });
    if (!pool.idle.empty()) {
      std::unique_ptr<KelXmlScanner> scanner = std::move(pool.idle.back());
      pool.idle.pop_back();
      return scanner;
    }
  }
  return std::make_unique<KelXmlScanner>();
}

void KelXmlScannerPool::Give(std::unique_ptr<KelXmlScanner> scanner) {
  if (!scanner->IsReusable()) return;
  Pool& pool = ThePool();
  const std::lock_guard lock(pool.mutex);
  if (pool.idle.size() < kMostIdle) pool.idle.push_back(std::move(scanner));
}
