// A host that uses Xerces-C for itself, beside the library that uses it too.
//
// Plays the steps that its arguments name, one after the other, and prints one line for each. The
// exit status is 0 when the host's own work went well; what the library did is in the lines.
#include <ZetNorvEmul.h>

#include <atomic>
#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <thread>
#include <vector>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PanicHandler.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLMsgLoader.hpp>

#include "DOM_Document.h"
#include "DOM_Element.h"
#include "KelLib.h"
#include "KelPDMBaseServices.h"
#include "KelXMLParseServices.h"
#include "pdm-client/Messages.h"
#include "pdm-client/Session.h"
#include "pdm-client/Snapshots.h"

namespace {

using xercesc::XMLPlatformUtils;

[[noreturn]] void giveUp(const std::string& why) {
  std::cout << "host: " << why << std::endl;
  std::_Exit(1);
}

// Lives as long as the host has Xerces-C for itself; whoever comes back to it afterwards is found.
class HostMemory : public xercesc::MemoryManager {
 public:
  ~HostMemory() override = default;
  void* allocate(XMLSize_t size) override {
    insistOnLife();
    ++_pieces;
    return ::operator new(size);
  }
  void deallocate(void* piece) override {
    if (piece == nullptr) return;
    insistOnLife();
    --_pieces;
    ::operator delete(piece);
  }
  xercesc::MemoryManager* getExceptionMemoryManager() override { return this; }

  void retire() {
    _retired = true;
    if (_pieces != 0) giveUp("pieces are left in its memory: " + std::to_string(_pieces));
  }

 private:
  void insistOnLife() const {
    if (_retired) giveUp("its memory is used after the end");
  }

  std::atomic<long> _pieces = 0;
  bool _retired = false;
};

class HostPanic : public xercesc::PanicHandler {
 public:
  void panic(const PanicReasons reason) override { giveUp(getPanicReasonString(reason)); }
};

const std::string kHostDocument =
    "<?xml version=\"1.0\"?><!DOCTYPE list [<!ENTITY e \"entity\">]><list><a/><b "
    "c=\"&e;\"/></list>";

// Whether the host's own parser reads its own document and refuses a broken one.
bool hostParses() {
  using namespace xercesc;
  const auto elements = [](const std::string& text) {
    XercesDOMParser parser;
    MemBufInputSource source(reinterpret_cast<const XMLByte*>(text.data()), text.size(), "host");
    parser.parse(source);
    DOMDocument* document = parser.getDocument();
    if (parser.getErrorCount() > 0 || document == nullptr) return XMLSize_t{0};
    static constexpr XMLCh kAll[] = {'*', 0};
    return document->getElementsByTagName(kAll)->getLength();
  };
  return elements(kHostDocument) == 3 && elements("<list><a></list>") == 0;
}

// What the library's parser makes of `text`: the number of elements, or -1.
int libraryReads(const std::string& text) {
  std::unique_ptr<KelInputSource> source;
  KelPDMBaseServices::CreateMemBufInputSourceFromChar(text.data(), static_cast<int>(text.size()),
                                                      "ours", source);
  DOM_Document document;
  if (KelXMLParseServices::XMLParse(*source, document) != S_OK) return -1;
  return static_cast<int>(document.getElementsByTagName("*").getLength());
}

struct Settings {
  const void* memory = XMLPlatformUtils::fgMemoryManager;
  const void* panic = XMLPlatformUtils::fgUserPanicHandler;
  const void* defaultPanic = XMLPlatformUtils::fgDefaultPanicHandler;
  const void* network = XMLPlatformUtils::fgNetAccessor;
  const void* files = XMLPlatformUtils::fgFileMgr;
  const void* transcoding = XMLPlatformUtils::fgTransService;
  bool newLine = XMLPlatformUtils::isNELRecognized();
  bool strict = XMLPlatformUtils::isStrictIANAEncoding();
  std::string messages = text(xercesc::XMLMsgLoader::getLocale());
  std::string messageFolder = text(xercesc::XMLMsgLoader::getNLSHome());
  std::string locale = text(std::setlocale(LC_ALL, nullptr));
  std::string streams = std::locale().name();

  static std::string text(const char* value) { return value == nullptr ? "(null)" : value; }
  bool operator==(const Settings&) const = default;
};

class Host {
 public:
  int play(const std::vector<std::string>& steps);

 private:
  void initialise(bool own);
  void terminate();
  void parse();
  void library();
  void startThread(bool initialising);
  void endThread();
  void replay();
  void disturb();
  void wander(int steps);
  bool mayUse() const { return _starts > 0; }

  int _starts = 0;  // of this host, not yet ended
  std::unique_ptr<HostMemory> _memory;
  std::vector<std::unique_ptr<HostMemory>> _retired;
  HostPanic _panic;
  Settings _settings;
  std::thread _thread;
  std::atomic<bool> _stop = false;
  std::atomic<int> _parsed = 0;
  std::uint32_t _random = 1;
};

void Host::initialise(bool own) {
  if (own && XMLPlatformUtils::fgMemoryManager == nullptr) {
    _memory = std::make_unique<HostMemory>();
    XMLPlatformUtils::Initialize("en_US", nullptr, &_panic, _memory.get());
  } else {
    XMLPlatformUtils::Initialize();
  }
  ++_starts;
}

// Also when the host has not started it: that is its fault.
void Host::terminate() {
  XMLPlatformUtils::Terminate();
  if (_starts > 0) --_starts;
  if (_starts > 0 || _memory == nullptr) return;
  // The host is sure that it was the last.
  _memory->retire();
  _retired.push_back(std::move(_memory));
}

void Host::parse() {
  if (!mayUse()) giveUp("may not parse here");
  if (!hostParses()) giveUp("its own document is not read");
}

void Host::library() {
  constexpr const char* kGood = "<!DOCTYPE a [<!ENTITY e \"x\">]><a><b c=\"&e;\"/>&e;<c/></a>";
  constexpr const char* kLatin =
      "<?xml version=\"1.0\" encoding=\"ISO-8859-15\"?><a><b c=\"\xA4\"/><c/></a>";
  if (libraryReads(kGood) != 3) giveUp("the library does not read a document");
  if (libraryReads(kLatin) != 3) giveUp("the library does not read an encoded document");
  for (const char* refused : {"<a><b></a>", "<a>&e;</a>", "<?xml version=\"1.2\"?><a/>", "",
                              "<?xml version=\"1.0\" encoding=\"KEL XML\"?><a/>",
                              "<?xml version=\"1.0\" encoding=\"no-such\"?><a/>"}) {
    if (libraryReads(refused) != -1) giveUp("the library reads a broken document");
  }
}

void Host::startThread(bool initialising) {
  _stop = false;
  _parsed = 0;
  _thread = std::thread([this, initialising] {
    while (!_stop) {
      if (initialising) XMLPlatformUtils::Initialize();
      if (!hostParses()) giveUp("its own document is not read in its thread");
      if (initialising) XMLPlatformUtils::Terminate();
      ++_parsed;
    }
  });
  while (_parsed == 0) std::this_thread::yield();
}

void Host::endThread() {
  _stop = true;
  _thread.join();
}

// Something that a host may do at any time, and at times more often than it should.
void Host::disturb() {
  _random = _random * 1103515245u + 12345u;
  switch ((_random >> 16) % 6) {
    case 0:
      return initialise(false);
    case 1:
      return initialise(true);
    case 2:
    case 3:
      return terminate();
    case 4:
      return mayUse() ? parse() : initialise(true);
    default:
      return;
  }
}

void Host::wander(int steps) {
  for (int i = 0; i < steps; ++i) {
    disturb();
    if ((_random >> 20) % 3 == 0) library();
  }
}

// Sends the requests of a recorded session; the host is busy around every hook.
void Host::replay() {
  pdm::SessionOptions options;
  options.seed = 5;
  options.workFolder = "work";
  options.plan = {.exchanges = 40, .mix = 3, .snapshots = true};
  const pdm::Session session(options);
  int replaced = 0;
  for (std::size_t i = 0; i < session.plan().size(); ++i) {
    const pdm::Step& step = session.plan()[i];
    if (step.action == pdm::Action::snapshot) {
      if (!pdm::takeSnapshot(step.number).problem.empty()) giveUp("a snapshot is not read back");
      continue;
    }
    const std::string request = session.request(static_cast<int>(i) + 1);
    disturb();
    const long sent = ZetNorvEmul::preWensnd(0, request.data(), static_cast<int>(request.size()));
    disturb();
    char* answer = new char[4]();
    char* const live = answer;
    int bytes = 4;
    int status = 7;
    int* size = &bytes;
    int* state = &status;
    const long received = ZetNorvEmul::postWensnd(0, answer, size, state);
    if (sent == S_OK && received == S_OK && answer != live && status == 0) ++replaced;
    delete[] answer;
  }
  std::cout << "replaced " << replaced << '\n';
}

int Host::play(const std::vector<std::string>& steps) {
  const std::map<std::string, std::function<void()>> known = {
      {"initialise", [this] { initialise(false); }},
      {"initialise-own", [this] { initialise(true); }},
      {"terminate", [this] { terminate(); }},
      {"parse", [this] { parse(); }},
      {"library", [this] { library(); }},
      {"remember", [this] { _settings = Settings(); }},
      {"odd-settings",
       [] {
         XMLPlatformUtils::recognizeNEL(true);
         XMLPlatformUtils::strictIANAEncoding(true);
       }},
      {"compare",
       [this] {
         if (!(_settings == Settings())) giveUp("its settings are changed");
       }},
      {"insist-down",
       [] {
         if (XMLPlatformUtils::fgMemoryManager != nullptr) giveUp("it is still up");
       }},
      {"insist-up",
       [] {
         if (XMLPlatformUtils::fgMemoryManager == nullptr) giveUp("it is down");
       }},
      {"thread", [this] { startThread(false); }},
      {"counting-thread", [this] { startThread(true); }},
      {"join", [this] { endThread(); }},
      {"replay", [this] { replay(); }},
      {"library-often",
       [this] {
         for (int i = 0; i < 50; ++i) library();
       }},
      {"wander", [this] { wander(4000); }},
  };
  for (const std::string& step : steps) {
    const auto found = known.find(step);
    if (found == known.end()) giveUp("knows no step " + step);
    found->second();
    std::cout << step << '\n';
  }
  return 0;
}

}  // namespace

int main(int count, char* arguments[]) {
  try {
    return Host().play({arguments + 1, arguments + count});
  } catch (const xercesc::OutOfMemoryException&) {
    std::cout << "host: an exception of Xerces-C\n";
  } catch (const xercesc::XMLException&) {
    std::cout << "host: an exception of Xerces-C\n";
  } catch (const std::exception& failure) {
    std::cout << "host: " << failure.what() << '\n';
  }
  return 1;
}
