#include "KelXmlPlatform.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <typeinfo>
#include <xercesc/internal/MemoryManagerImpl.hpp>
#include <xercesc/util/PanicHandler.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/TransENameMap.hpp>
#include <xercesc/util/TransService.hpp>
#include <xercesc/util/XMLUni.hpp>

using xercesc::XMLPlatformUtils;

namespace {

// No document can ask for an encoding of this name: there is a blank in it.
constexpr XMLCh kWitness[] = {'K', 'E', 'L', ' ', 'X', 'M', 'L', 0};

constinit std::mutex theMutex;
constinit std::atomic<std::uint64_t> theLife = 1;
// The life in which this library holds the platform up for good; 0 when in none yet.
constinit std::uint64_t theHeldLife = 0;
// The life whose end will be told by a witness.
constinit std::uint64_t theWitnessedLife = 0;
constinit bool theStartFailed = false;

// The parser's own answer to trouble is to end the process.
class ThrowingPanicHandler : public xercesc::PanicHandler {
 public:
  void panic(const PanicReasons reason) override {
    throw std::runtime_error(getPanicReasonString(reason));
  }
};

ThrowingPanicHandler& ThePanicHandler() {
  static ThrowingPanicHandler& handler = *new ThrowingPanicHandler;
  return handler;
}

// Lies among the encodings that the platform knows, which go when it is shut down, by whomever.
// Nothing else tells that it was shut down and started again.
class Witness : public xercesc::ENameMap {
 public:
  Witness() : ENameMap(kWitness) {}
  ~Witness() override { ++theLife; }

  xercesc::XMLTranscoder* makeNew(XMLSize_t, xercesc::MemoryManager*) const override {
    return nullptr;
  }
};

void PlaceWitness() {
  if (theWitnessedLife == theLife) return;
  auto witness = std::make_unique<Witness>();
  xercesc::XMLTransService::addEncoding(witness->getKey(), witness.get());
  witness.release();
  theWitnessedLife = theLife;
}

bool IsUp() { return XMLPlatformUtils::fgMemoryManager != nullptr; }

// Whether the platform stands on something that the host takes away when it has ended it: then it
// is to end when the host says so, and not to outlive that for our sake.
bool StandsOnHost() {
  const xercesc::MemoryManager& memory = *XMLPlatformUtils::fgMemoryManager;
  const xercesc::PanicHandler* panic = XMLPlatformUtils::fgUserPanicHandler;
  return typeid(memory) != typeid(xercesc::MemoryManagerImpl) ||
         (panic != nullptr && panic != &ThePanicHandler());
}

void Start() {
  if (theStartFailed) throw std::runtime_error("the parser's library could not be started");
  // What was begun and not finished can be neither used nor undone.
  theStartFailed = true;
  XMLPlatformUtils::Initialize(xercesc::XMLUni::fgXercescDefaultLocale, nullptr,
                               &ThePanicHandler());
  theStartFailed = false;
}

}  // namespace

std::uint64_t KelXmlPlatform::Life() { return theLife; }

KelXmlPlatform::Use::Use() {
  const std::lock_guard lock(theMutex);
  if (theHeldLife == theLife) return;
  const bool borrowed = IsUp() && StandsOnHost();
  Start();
  try {
    PlaceWitness();
  } catch (...) {
    XMLPlatformUtils::Terminate();
    throw;
  }
  (borrowed ? _counted : theHeldLife) = theLife;
}

KelXmlPlatform::Use::~Use() {
  const std::lock_guard lock(theMutex);
  if (_counted == theLife) XMLPlatformUtils::Terminate();
}
