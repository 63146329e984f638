// The exchanges of a small session, and the tree of files that comes of recording them.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "EmulatorFixture.h"
#include "Files.h"
#include "KelLib.h"

namespace fault_test {

inline constexpr int kOpen = 12;
inline constexpr int kNavigate = 319;
inline constexpr int kSave = 321;
inline constexpr int kCommit = 325;

inline constexpr const char* kScript =
    "<Scripts><MessageChar value='12'><Composant name='all' size='2000' compare='1'/></MessageChar>"
    "<MessageXML value='319'><Composant name='Ask' father=''/>"
    "<Composant name='LogObject' father='Ask' attributs='Identifier'/>"
    "<Composant name='Reference' father='Ask' attributs='Identifier'/></MessageXML>"
    "<MessageXML value='321'><Composant name='Ask' father=''/>"
    "<Composant name='Document' father='Ask' attributs='FilePath'/>"
    "<Composant name='LogObject' father='Ask' attributs='Identifier'/></MessageXML></Scripts>";

struct Exchange {
  int op;
  int number;  // tells it from others of its operation
  int status;
};

inline bool carriesIdentifiers(const Exchange& exchange) {
  return exchange.op == kNavigate || exchange.op == kSave;
}

// The identifier of the exchange's only LogObject in the session `run`.
inline std::string identifier(const Exchange& exchange, const std::string& run) {
  return run + "-" + std::to_string(exchange.op) + "-" + std::to_string(exchange.number);
}

inline std::string documentName(const Exchange& exchange) {
  return "part" + std::to_string(exchange.number) + ".KelPart";
}
inline std::string documentBytes(const Exchange& exchange) {
  return "geometry of " + std::to_string(exchange.number) + std::string(90, 'g');
}

inline std::string requestOf(const Exchange& exchange, const std::string& folder,
                             const std::string& run) {
  const std::string logObject = "<LogObject Identifier=\"" + identifier(exchange, run) + "\"/>";
  switch (exchange.op) {
    case kNavigate:
      return request(kNavigate, "<Ask>" + logObject + "<Reference Identifier=\"" + run +
                                    "-reference\"/></Ask>");
    case kSave:
      return request(kSave, "<Ask><Document FilePath=\"" + folder + documentName(exchange) +
                                "\"/>" + logObject + "</Ask>");
    default:
      return request(exchange.op, "fields of " + std::to_string(exchange.number));
  }
}

// The answer as the library hands it out: with the server's word only when it is as recorded.
inline std::string answerOf(const Exchange& exchange, const std::string& folder,
                            const std::string& logIdentifier) {
  const std::string number = std::to_string(exchange.number);
  const std::string logObject = "<LogObject Identifier=\"" + logIdentifier + "\"/>";
  switch (exchange.op) {
    case kNavigate:
      return xmlAnswer("<Answer>" + logObject + "<Note>of " + number + "</Note></Answer>");
    case kSave:
      return xmlAnswer(
          "<Answer><Reference Name=\"link" + number +
          "\" TimeStamp=\"2007\" Type=\"Instance\"><Attribute Name=\"$COID\" Value=\"0C" + number +
          "\"/><Attribute Name=\"$COMPID\" Value=\"0003\"/><Attribute Name=\"S_PART_NUMBER\" "
          "Value=\"PN-" +
          number + "\"/></Reference><Document FilePath=\"" + folder + documentName(exchange) +
          "\" Name=\"d\" SourceUuid=\"3F2A\" TimeStamp=\"2008\" Type=\"KelPart\"><Attribute "
          "Name=\"$COID\" Value=\"0A" +
          number +
          "\"/><Attribute Name=\"$COMPID\" Value=\"0002\"/><Attribute Name=\"S_NAME\" "
          "Value=\"Bracket\"/></Document>" +
          logObject + "</Answer>");
    default:
      return "answer " + number + " of " + std::to_string(exchange.op);
  }
}

// The lines of "database.txt" that the answer gives; that of the document only when it was staged.
inline std::string objectLines(const Exchange& exchange, bool staged) {
  if (exchange.op != kSave) return "";
  const std::string number = std::to_string(exchange.number);
  const std::string reference = "<0C" + number + "><0003><link" + number + "><PN-" + number +
                                "><Reference><UUID BIDON><Reference><Instance><2007>\n";
  const std::string document = "<0A" + number + "><0002><link" + number + "><Bracket><" +
                               documentName(exchange) + "><3F2A><Indefini><KelPart><2008>\n";
  return reference + (staged ? document : "");
}

inline std::string contentOf(const std::string& path) {
  return exists(path) ? readBytes(path) : std::string();
}

// Every file below `root` with its bytes.
using Tree = std::map<std::string, std::string>;

inline Tree treeOf(const std::string& root) {
  Tree tree;
  std::error_code missing;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(root, missing)) {
    if (entry.is_regular_file()) tree[entry.path().string()] = readBytes(entry.path().string());
  }
  return tree;
}

// A snapshot of `size` bytes and the five more that its file has.
inline std::string snapshotBytes(int number, int size) {
  return std::string(static_cast<std::size_t>(size) + 5, static_cast<char>('A' + number));
}

inline bool announced(const TraceRecorder& trace, const std::vector<std::string>& lines) {
  for (const std::string& line : lines) {
    if (trace.has(line)) return true;
  }
  return false;
}

}  // namespace fault_test
