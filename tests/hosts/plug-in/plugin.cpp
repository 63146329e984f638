// A plug-in of a client: brings the library along, and uses it from the moment it is loaded until
// it is unloaded.
#include <MString.h>
#include <ZetNorvEmul.h>
#include <ZetNorvTrace.h>

#include "DOM_Document.h"
#include "KelLib.h"
#include "KelPDMBaseServices.h"
#include "KelXMLParseServices.h"

namespace {

class PlugIn {
 public:
  PlugIn() : _name("plug-in") { parse(); }
  ~PlugIn() {
    parse();
    ZetNorvTrace.TraPutLN(2, _name.gchar());
  }

 private:
  static void parse() {
    std::unique_ptr<KelInputSource> source;
    KelPDMBaseServices::CreateMemBufInputSourceFromChar("<a><b/></a>", 11, "plug-in", source);
    DOM_Document document;
    KelXMLParseServices::XMLParse(*source, document);
  }

  MString _name;
};

PlugIn plugIn;

}  // namespace
