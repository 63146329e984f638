#include "KelXmlScannerPool.h"

#include <mutex>
#include <stdexcept>
#include <vector>
#include <xercesc/util/PanicHandler.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace {

constexpr std::size_t kMostIdle = 4;

// The parser's own answer to trouble is to end the process.
class ThrowingPanicHandler : public xercesc::PanicHandler {
 public:
  void panic(const PanicReasons reason) override {
    throw std::runtime_error(getPanicReasonString(reason));
  }
};

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

// Never undone either: the host may use the parser's library for itself.
void StartPlatform() {
  static ThrowingPanicHandler panicHandler;
  static std::once_flag once;
  std::call_once(once, [] {
    xercesc::XMLPlatformUtils::Initialize(xercesc::XMLUni::fgXercescDefaultLocale, nullptr,
                                          &panicHandler);
  });
}

}  // namespace

std::unique_ptr<KelXmlScanner> KelXmlScannerPool::Take() {
  StartPlatform();
  Pool& pool = ThePool();
  {
    const std::lock_guard lock(pool.mutex);
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
