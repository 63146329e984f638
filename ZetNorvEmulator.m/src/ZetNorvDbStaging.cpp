// The files of the documents: staging their copies, and looking them up.
#include <algorithm>
#include <limits>
#include <string>

#include "DOM_Document.h"
#include "DatabaseColumns.h"
#include "Guard.h"
#include "KelDOMServices.h"
#include "OwningArray.h"
#include "StagedDocument.h"
#include "XmlText.h"
#include "ZetNorvDb.h"
#include "ZetNorvToolBox.h"
#include "ZetNorvToolBox/EnsureDirectory.h"

using zetnorv::guarded;
using zetnorv::kCoid;
using zetnorv::kCompid;
using zetnorv::kPathFile;
using zetnorv::kTable;
using zetnorv::kType;
using zetnorv::kUuid;

namespace {

constexpr const char* kPayloadLog = "buildTemp.log";
constexpr zetnorv::XmlProblems kXmlProblems = {
    2, "buildTemp Problem CreateMemBufInputSourceFromChar", "buildTemp Problem XMLParse"};

constexpr int kHeaderBytes = 4;

// `size` less the header, also for a size that is none.
int announcedPayload(int size) {
  return std::max(size, std::numeric_limits<int>::min() + kHeaderBytes) - kHeaderBytes;
}

void logPayload(const zetnorv::XmlPayload& payload) {
  ZetNorvToolBox::writeLog(MString(kPayloadLog), "\n ####################### \n");
  if (payload.size < 1) {
    ZetNorvToolBox::writeLog(MString(kPayloadLog), "ca marche pas");
    return;
  }
  // As a text: it ends at its first NUL, or where the message does.
  const std::string text(payload.text, static_cast<std::size_t>(payload.size));
  ZetNorvToolBox::writeLog(MString(kPayloadLog), text.c_str());
}

// The "FilePath" of the last Document that has one; null when none does.
MString lastFilePath(const DOM_Document& request) {
  DOMString last;
  const DOM_NodeList documents = request.getElementsByTagName("Document");
  for (unsigned int i = 0; i < documents.getLength(); ++i) {
    const DOMString path =
        KelDOMServices::NodeToElement(documents.item(i)).getAttribute("FilePath");
    if (!path.isNull()) last = path;
  }
  if (last.isNull()) return MString();
  if (last.length() == 0) return MString("");
  // All of it, a line feed included.
  return MString(last.utf8().c_str(), static_cast<int>(last.length()));
}

// The staging directory, made when missing. False when the reference directory is unknown.
bool stagingDirectory(MString& directory) {
  if (ZetNorvToolBox::getRefPath(directory) != S_OK) return false;
  directory + MString("/Kel_Files_Temp/");
  zetnorv::ensureDirectory(directory);
  return true;
}

// Copies the file `path` into the staging directory and remembers both names.
long stage(const MString& path) {
  ZetNorvDb::_refFile = path;
  ZetNorvTrace.TraPutLN(2, "Debut de la copie");
  MString directory;
  if (!stagingDirectory(directory)) return E_FAIL;
  const zetnorv::FileContent content(path);
  ZetNorvToolBox::writeLog("\n Emplacement initial ...\n");
  ZetNorvToolBox::writeLog(path.gchar());

  const MString name = zetnorv::stagedName(path, content.size());
  ZetNorvTrace.TraPutLN(2, "Nom du fichier a Sauvegarder");
  ZetNorvTrace.TraPutLN(2, name.gchar());
  ZetNorvDb::_copyFile = name;
  if (!content.wasRead() || !zetnorv::staysInDirectory(name)) {
    ZetNorvTrace.TraPutLN(2, "Copie des donnees: KO");
    return S_OK;
  }
  zetnorv::stageCopy(directory, name, content);
  // The line tells that the document was read: it is the same when the copy could not be written.
  ZetNorvTrace.TraPutLN(2, "Copie des donnees: OK");
  return S_OK;
}

// Field `i`, which the caller knows to be there.
const MString& field(const ZetNorvDb_Record& row, int i) { return row._data[i]; }

// Whether the text is one of `keywords`, or a beginning of one.
template <std::size_t N>
bool isOneOf(const MString& text, const char* const (&keywords)[N]) {
  for (const char* keyword : keywords) {
    if (text.compare(keyword)) return true;
  }
  return false;
}

bool hasFile(const ZetNorvDb_Record& row) {
  static constexpr const char* kTables[] = {"Indefini", "DOCUMENT", "Reference"};
  static constexpr const char* kTypes[] = {"KelPart", "KelDrawing", "catalog", "KelProcess",
                                           "Reference"};
  return isOneOf(field(row, kTable), kTables) && isOneOf(field(row, kType), kTypes);
}

// The first row with these identifiers whose table and type are those of a file; null when there is
// none.
const ZetNorvDb_Record* findFile(const KelUnicodeString& coid, const KelUnicodeString& compid) {
  const ZetNorvDb_Table& table = ZetNorvDb::_database;
  for (int i = 0; i < table.getSize(); ++i) {
    const ZetNorvDb_Record* row = table._rows[i];
    if (row == nullptr || row->getSize() <= kType) continue;
    if (coid == KelUnicodeString(field(*row, kCoid).gchar()) &&
        compid == KelUnicodeString(field(*row, kCompid).gchar()) && hasFile(*row)) {
      return row;
    }
  }
  return nullptr;
}

// Always empty: appending to a null string does nothing, and the path starts as one. Hosts are
// handed an empty text and live by the uuid; a path with a start would name a directory of whoever
// made the recording.
MString pathToRead(const ZetNorvDb_Record& row) {
  MString path;
  path + MString("\\KelTemp\\");
  path + field(row, kPathFile);
  return path;
}

}  // namespace

long ZetNorvDb::buildTemp(const char* buffer, int size) {
  return guarded("ZetNorvDb::buildTemp", [&] {
    ZetNorvTrace.TraPutLN(2, "ZetNorvDb::buildTemp Debut");
    ZetNorvTrace.TraPutLN(2, "Before CreateMemBufInputSourceFromOstr ", announcedPayload(size));
    const zetnorv::XmlPayload payload(buffer, size);
    logPayload(payload);

    DOM_Document request;
    if (zetnorv::parseXml(payload.text, payload.size, "msgBuildTemp", kXmlProblems, request) !=
        S_OK) {
      return E_FAIL;
    }
    // The names of the references are of no use here; the line stays, as readers of the trace
    // follow the steps by it.
    ZetNorvTrace.TraPutLN(2, "buildTemp: recherche Reference");
    ZetNorvTrace.TraPutLN(2, "buildTemp: recherche Document");
    const MString path = lastFilePath(request);
    return path.isNull() ? S_OK : stage(path);
  });
}

long ZetNorvDb::getFile(KelDbBinary& coid, KelDbBinary& compid, char*& path, MString& uuid) {
  return guarded("ZetNorvDb::getFile", [&] {
    ZetNorvTrace.TraPutLN(2, "ZetNorvDb::getFile");
    const ZetNorvDb_Record* row = findFile(coid.GetHexaValue(), compid.GetHexaValue());
    if (row == nullptr) return E_FAIL;
    const MString file = pathToRead(*row);
    char* copy = zetnorv::copyBytes(file.gchar(), static_cast<std::size_t>(file.glength()));
    if (copy == nullptr) return E_FAIL;
    path = copy;
    ZetNorvTrace.TraPutLN(2, "Path fu fichier a lire");
    ZetNorvTrace.TraPutLN(2, path);
    ZetNorvToolBox::writeLog("Fichier Trouve\n");
    ZetNorvToolBox::writeLog(path);
    uuid = field(*row, kUuid);
    return S_OK;
  });
}
