#include "pdm-client/Queries.h"

#include <ZetNorvDb.h>

#include <algorithm>
#include <ostream>
#include <string>

namespace pdm {

namespace {

constexpr int kReadTimeStamp = 1;

void printAnswer(std::ostream& out, const char* query, long result, const char* text) {
  out << "  " << query << ": " << (result == 0 ? text : "(no answer)") << '\n';
}

void printAnswer(std::ostream& out, const char* query, long result, const KelUnicodeString& text) {
  printAnswer(out, query, result, text.ConvertToChar());
}

// What is known by the object's identifiers.
void askByIdentifiers(ZetNorvDb& database, const KnownObject& object, std::ostream& out) {
  KelDbBinary coid = database.GetCoid(KelUnicodeString((object.coid + object.compid).c_str()));
  KelDbBinary compid = database.GetCompid(KelUnicodeString((object.coid + object.compid).c_str()));
  KelUnicodeString coidText(object.coid.c_str());
  KelUnicodeString compidText(object.compid.c_str());

  KelUnicodeString type, partNumber, pathFile, timeStamp;
  printAnswer(out, "getType", database.getType(coid, compid, type), type);
  printAnswer(out, "getPartnumber", database.getPartnumber(coid, compid, partNumber), partNumber);
  printAnswer(out, "getpathFile", database.getpathFile(coidText, compidText, pathFile), pathFile);
  printAnswer(out, "emulgetTimeStamp",
              database.emulgetTimeStamp(coidText, compidText, timeStamp, kReadTimeStamp),
              timeStamp);
}

// The other way round: the object by what people call it.
void askByName(ZetNorvDb& database, const KnownObject& object, std::ostream& out) {
  KelDbBinary coid, compid;
  const long found = database.getCOIDCOMPID(KelUnicodeString(object.partNumber.c_str()),
                                            KelUnicodeString(object.name.c_str()), coid, compid);
  const std::string both = std::string(coid.GetHexaValue().ConvertToChar()) + ' ' +
                           compid.GetHexaValue().ConvertToChar();
  printAnswer(out, "getCOIDCOMPID", found, both.c_str());

  MString stored;
  const long missing = database.Find(object.name.c_str(), stored);
  printAnswer(out, "Find", missing, stored.isNull() ? "" : stored.gchar());
}

}  // namespace

void askDatabase(const std::vector<KnownObject>& objects, std::ostream& out) {
  out << "Reading the database:\n";
  ZetNorvDb database;  // prints the rows that it reads, one behind the other
  out << '\n';
  for (const char* kind : {"Document", "Reference"}) {
    int asked = 0;
    for (const KnownObject& object : objects) {
      if (object.kind != kind || asked == 3) continue;
      ++asked;
      out << object.kind << ' ' << object.name << " (" << object.coid << ' ' << object.compid
          << ")\n";
      askByIdentifiers(database, object, out);
      askByName(database, object, out);
    }
  }
}

}  // namespace pdm
