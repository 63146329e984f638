#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "DOM_Document.h"
#include "Environment.h"
#include "Files.h"
#include "KelLib.h"
#include "KelPDMBaseServices.h"
#include "KelXMLParseServices.h"
#include "ScratchDirectory.h"
#include "pdm-client/AnswerCheck.h"
#include "pdm-client/CommandLine.h"
#include "pdm-client/Messages.h"
#include "pdm-client/Session.h"
#include "pdm-client/SessionPlan.h"
#include "pdm-client/TagText.h"
#include "pdm-client/ToyServer.h"

namespace {

using pdm::Action;

bool isWellFormed(std::string_view xml) {
  std::unique_ptr<KelInputSource> source;
  const long made = KelPDMBaseServices::CreateMemBufInputSourceFromChar(
      xml.data(), static_cast<int>(xml.size()), "message", source);
  DOM_Document document;
  return made == S_OK && KelXMLParseServices::XMLParse(*source, document) == S_OK;
}

// The text with the values of everything that may differ from run to run taken out.
std::string withoutRunNumbers(std::string text) {
  for (const std::string name : {"Identifier", "SourceUuid", "TimeStamp"}) {
    const std::string start = ' ' + name + "=\"";
    for (std::size_t at = text.find(start); at != std::string::npos; at = text.find(start, at)) {
      at += start.size();
      text.erase(at, text.find('"', at) - at);
    }
  }
  return text;
}

std::vector<std::string> identifiers(std::string_view xml, std::string_view tagName) {
  std::vector<std::string> found;
  for (const pdm::Tag& tag : pdm::readTags(xml)) {
    if (tag.name == tagName) found.push_back(tag.get("Identifier"));
  }
  return found;
}

pdm::Answer answerOf(const std::string& bytes, int status = 0) {
  pdm::Answer answer;
  answer.buffer = std::make_unique<char[]>(bytes.size());
  bytes.copy(answer.buffer.get(), bytes.size());
  answer.size = static_cast<int>(bytes.size());
  answer.status = status;
  answer.from = pdm::AnswerFrom::server;
  return answer;
}

class PdmClientTest : public testing::Test {
 protected:
  pdm::SessionOptions options(std::uint64_t seed) {
    pdm::SessionOptions options;
    options.seed = seed;
    options.workFolder = _folder.file("a work & play folder");
    options.documentBytes = 100;
    return options;
  }

  pdm::ProductStructure _product;
  Environment _environment;
  ScratchDirectory _folder;
};

TEST_F(PdmClientTest, ProductHasSixtyPartsInSevenSubAssemblies) {
  int parts = 0;
  std::set<std::string> numbers;
  for (std::size_t i = 0; i < _product.size(); ++i) {
    parts += _product.item(i).isPart() ? 1 : 0;
    numbers.insert(_product.item(i).number);
  }
  EXPECT_EQ(parts, 60);
  EXPECT_EQ(_product.subAssemblies().size(), 7u);
  EXPECT_EQ(numbers.size(), _product.size());
}

TEST_F(PdmClientTest, SaveRequestsOfEveryItemHaveTenToThirtyKilobytesOfXml) {
  const pdm::RunNumbers numbers(1);
  const pdm::RequestBuilder requests(_product, numbers, "/work");
  for (std::size_t item = 1; item < _product.size(); ++item) {
    const std::string request = requests.save(item, 1);
    EXPECT_GE(request.size(), 10'000u) << item;
    EXPECT_LE(request.size(), 30'000u) << item;
    EXPECT_EQ(pdm::operationOf(request), 321);
    EXPECT_TRUE(isWellFormed(std::string_view(request).substr(4))) << request;
  }
}

TEST_F(PdmClientTest, SaveRequestNamesTheItemsFileWithForwardSlashes) {
  pdm::Session session(options(1));
  const std::string request = session.request(4);
  ASSERT_EQ(session.plan()[3].action, Action::save);
  const std::string expected =
      std::filesystem::path(_folder.file("a work & play folder")).generic_string() +
      "/GP-2100.KelDrawing";
  std::vector<std::string> paths;
  for (const pdm::Tag& tag : pdm::readTags(request.substr(4))) {
    if (tag.name == "Document") paths.push_back(tag.get("FilePath"));
  }
  EXPECT_EQ(paths, std::vector<std::string>{expected});
}

TEST_F(PdmClientTest, RequestsOfTwoSeedsDifferInIdentifiersAndTimeStampsOnly) {
  const pdm::Session one(options(1));
  const pdm::Session two(options(2));
  for (int step = 1; step <= static_cast<int>(one.plan().size()); ++step) {
    const std::string first = one.request(step);
    const std::string second = two.request(step);
    const int operation = pdm::operationOf(first);
    EXPECT_EQ(first != second, operation == 319 || operation == 321) << step;
    EXPECT_EQ(withoutRunNumbers(first), withoutRunNumbers(second)) << step;
    EXPECT_EQ(first.size(), second.size()) << step;
  }
}

TEST_F(PdmClientTest, RequestsOfOneSeedAreTheSameInEveryRun) {
  const pdm::Session one(options(7));
  const pdm::Session two(options(7));
  for (int step = 1; step <= static_cast<int>(one.plan().size()); ++step) {
    EXPECT_EQ(one.request(step), two.request(step)) << step;
  }
}

TEST_F(PdmClientTest, NoAttributeValueHoldsTheRunsOfFThatTheComparisonReports) {
  for (std::uint64_t seed = 0; seed < 20; ++seed) {
    const pdm::Session session(options(seed));
    for (const int step : {3, 4}) {
      for (const pdm::Tag& tag : pdm::readTags(session.request(step).substr(4))) {
        EXPECT_EQ(tag.get("Identifier").find("FF"), std::string::npos);
        EXPECT_EQ(tag.get("SourceUuid").find("FF"), std::string::npos);
      }
    }
  }
}

TEST_F(PdmClientTest, EveryObjectOfARequestHasAnIdentifierOfItsOwn) {
  const std::string xml = pdm::Session(options(3)).request(4).substr(4);
  std::set<std::string> seen;
  std::size_t count = 0;
  for (const char* tag : {"LogObject", "Reference"}) {
    for (const std::string& identifier : identifiers(xml, tag)) {
      seen.insert(identifier);
      ++count;
    }
  }
  EXPECT_EQ(count, 17u);  // the housing, its eight parts, and the references to these
  EXPECT_EQ(seen.size(), count);
}

TEST_F(PdmClientTest, OpenRequestCarriesItsNamesBehindTheirLengths) {
  const std::string request = pdm::Session(options(1)).request(1);
  const std::string expected("\x0C\0\0\0KELPDM05\x02\0\0\0\x04\0\0\0anna\x0F\0\0\0", 28);
  EXPECT_EQ(request.substr(0, 28), expected);
  EXPECT_EQ(request.substr(28), std::string("Gear pump GP 20en\0\0\0\0", 21));
}

TEST_F(PdmClientTest, NamesOfSessionsVaryInLengthAndStayBelowAHundredBytes) {
  const pdm::RunNumbers numbers(1);
  const pdm::RequestBuilder requests(_product, numbers, "/work");
  std::set<std::uint32_t> lengths;
  for (int session = 0; session < 8; ++session) {
    const std::string request = requests.open(session);
    const std::uint32_t user = pdm::numberAt(request, 16);
    const std::uint32_t name = pdm::numberAt(request, 20 + user);
    EXPECT_LT(user, 100u);
    EXPECT_LT(name, 100u);
    lengths.insert(name);
  }
  EXPECT_EQ(lengths.size(), 4u);
}

TEST_F(PdmClientTest, AlteredSaveRequestLacksTheTypeOfItsFirstObject) {
  pdm::SessionOptions faulty = options(1);
  faulty.alteredStep = 4;
  const std::string plain = pdm::Session(options(1)).request(4);
  const std::string request = pdm::Session(faulty).request(4);
  EXPECT_EQ(request.size() + std::string(" Type=\"KelProduct\"").size(), plain.size());
  EXPECT_TRUE(isWellFormed(std::string_view(request).substr(4)));
  EXPECT_EQ(pdm::Session(faulty).request(3), pdm::Session(options(1)).request(3));
}

TEST_F(PdmClientTest, AlteredOpenRequestDiffersInOneByte) {
  pdm::SessionOptions faulty = options(1);
  faulty.alteredStep = 1;
  const std::string plain = pdm::Session(options(1)).request(1);
  const std::string request = pdm::Session(faulty).request(1);
  ASSERT_EQ(request.size(), plain.size());
  EXPECT_EQ(request.substr(0, request.size() - 1), plain.substr(0, plain.size() - 1));
  EXPECT_NE(request.back(), plain.back());
}

TEST_F(PdmClientTest, PlanHasExactlyTheStepsAskedFor) {
  for (const unsigned mix : {0u, 1u, 77u}) {
    const auto plan =
        pdm::planSession(_product, {.exchanges = 1000, .mix = mix, .snapshots = true});
    EXPECT_EQ(plan.size(), 1000u) << mix;
    EXPECT_EQ(plan.front().action, Action::open) << mix;
    std::map<Action, int> counts;
    for (const pdm::Step& step : plan) ++counts[step.action];
    EXPECT_EQ(counts.size(), 5u) << mix;
  }
}

TEST_F(PdmClientTest, EveryMixIsAnotherPlan) {
  std::set<std::string> plans;
  for (unsigned mix = 0; mix < 200; ++mix) {
    std::ostringstream text;
    for (const pdm::Step& step : pdm::planSession(_product, {.exchanges = 40, .mix = mix})) {
      EXPECT_NE(step.action, Action::snapshot);
      text << static_cast<int>(step.action) << ':' << step.item << ' ';
    }
    plans.insert(text.str());
  }
  EXPECT_EQ(plans.size(), 200u);
}

TEST_F(PdmClientTest, ServerAnswersEveryObjectInItsPlaceWithIdentifiersOfItsOwn) {
  const std::string request = pdm::Session(options(5)).request(4);
  pdm::ToyServer server(9);
  const pdm::ServerAnswer answer = server.serve(request);
  const std::string_view xml = pdm::textOf(answer.bytes);
  EXPECT_EQ(answer.status, 0);
  EXPECT_EQ(pdm::numberAt(answer.bytes, 4), xml.size());
  EXPECT_TRUE(isWellFormed(xml));
  for (const char* tag : {"LogObject", "Reference"}) {
    EXPECT_EQ(identifiers(xml, tag), identifiers(request, tag));
  }
  const auto objects = pdm::objectsIn(answer.bytes);
  ASSERT_EQ(objects.size(), 9u);  // the document and eight references
  EXPECT_EQ(objects[0].kind, "Document");
  EXPECT_EQ(objects[0].partNumber, "GP-2100");
  std::set<std::string> coids;
  for (const pdm::KnownObject& object : objects) {
    EXPECT_EQ(object.coid.size(), 16u);
    EXPECT_EQ(object.compid.size(), 16u);
    coids.insert(object.coid);
  }
  EXPECT_EQ(coids.size(), objects.size());
}

TEST_F(PdmClientTest, AnswerToARequestOfThisSessionIsUsable) {
  const std::string request = pdm::Session(options(5)).request(4);
  EXPECT_EQ(pdm::problemWith(answerOf(pdm::ToyServer(9).serve(request).bytes), request), "");
}

TEST_F(PdmClientTest, AnswerWithTheIdentifiersOfAnotherSessionIsNotUsable) {
  const std::string request = pdm::Session(options(5)).request(4);
  const std::string other = pdm::Session(options(6)).request(4);
  EXPECT_EQ(pdm::problemWith(answerOf(pdm::ToyServer(9).serve(other).bytes), request),
            "identifiers of another session in LogObject");
}

TEST_F(PdmClientTest, AnswerThatLacksAReferenceIsNotUsable) {
  const std::string request = pdm::Session(options(5)).request(3);
  std::string xml(pdm::textOf(pdm::ToyServer(9).serve(request).bytes));
  const std::size_t last = xml.rfind("<Reference ");
  xml.erase(last, xml.rfind("</Reference>") + 12 - last);
  EXPECT_EQ(pdm::problemWith(answerOf(pdm::answerWith(0, xml)), request),
            "another number of Reference");
}

TEST_F(PdmClientTest, AnswersThatAreNoAnswersAreNotUsable) {
  const std::string request = pdm::Session(options(5)).request(1);
  const std::string good = pdm::answerWith(1, "OPEN");
  EXPECT_EQ(pdm::problemWith(answerOf(good), request), "");
  EXPECT_EQ(pdm::problemWith(answerOf(good, 3), request), "status 3");
  EXPECT_EQ(pdm::problemWith(answerOf("OPEN"), request), "cut short");
  EXPECT_EQ(pdm::problemWith(answerOf(good + "!"), request), "the length in its header is wrong");
  EXPECT_EQ(pdm::problemWith(answerOf(pdm::answerWith(1, "SHUT")), request), "not the text OPEN");
  EXPECT_EQ(pdm::problemWith(pdm::Answer(), request), "no answer");
}

TEST_F(PdmClientTest, SessionWithoutARunModeWorksWithTheServersAnswers) {
  pdm::Session session(options(5));
  const auto reports = session.run();
  ASSERT_EQ(reports.size(), session.plan().size());
  for (const pdm::StepReport& report : reports) {
    EXPECT_EQ(report.problem, "") << report.step;
    EXPECT_EQ(report.what, "server") << report.step;
    EXPECT_EQ(report.remark, "") << report.step;
  }
  EXPECT_EQ(namesIn(_folder.file("a work & play folder")).size(), 21u);
}

TEST_F(PdmClientTest, OfflineSessionWithoutARunModeGetsNoAnswer) {
  pdm::SessionOptions offline = options(5);
  offline.offline = true;
  for (const pdm::StepReport& report : pdm::Session(offline).run()) {
    EXPECT_EQ(report.problem, "no answer") << report.step;
    EXPECT_EQ(report.received, 0) << report.step;
  }
}

TEST_F(PdmClientTest, SavedDocumentHasAtLeastTheSizeAskedFor) {
  pdm::SessionOptions large = options(5);
  large.documentBytes = 5000;
  large.plan.exchanges = 4;
  pdm::Session(large).run();
  const std::string bytes = readBytes(_folder.file("a work & play folder") + "/GP-2100.KelDrawing");
  EXPECT_GE(bytes.size(), 5000u);
  EXPECT_EQ(bytes.substr(0, 36), "KelDrawing GP-2100 saved at step 4\nK");
}

TEST_F(PdmClientTest, WorkFolderThatIsAFileIsAProblemOfTheSaveSteps) {
  pdm::SessionOptions blocked = options(5);
  writeBytes(blocked.workFolder, "in the way");
  for (const pdm::StepReport& report : pdm::Session(blocked).run()) {
    EXPECT_EQ(report.problem != "", report.operation == 321) << report.step;
  }
}

TEST_F(PdmClientTest, TagTextGivesValuesBackAsTheyWereWritten) {
  const std::string value = "Zahnräder & <\"quoted\"> it's";
  pdm::TagWriter writer("Root");
  writer.open("Inner").with("Value", value).close();
  const std::string xml = writer.finish();
  EXPECT_TRUE(isWellFormed(xml));
  const auto tags = pdm::readTags(xml);
  ASSERT_EQ(tags.size(), 2u);
  EXPECT_EQ(tags[1].name, "Inner");
  EXPECT_EQ(tags[1].get("Value"), value);
  EXPECT_EQ(tags[1].get("Other", "none"), "none");
}

TEST_F(PdmClientTest, CommandLineSetsWhatItsOptionsSay) {
  const pdm::CommandLine line = pdm::readCommandLine(
      {"--offline", "--work", "folder", "--seed", "18446744073709551615", "--alter", "1",
       "--exchanges", "30", "--mix", "4", "--snapshots", "--document-bytes", "9", "--quiet"});
  EXPECT_EQ(line.fault, "");
  EXPECT_TRUE(line.session.offline);
  EXPECT_EQ(line.session.workFolder, "folder");
  EXPECT_EQ(line.session.seed, 18446744073709551615u);
  EXPECT_EQ(line.session.alteredStep, 1);
  EXPECT_EQ(line.session.plan.exchanges, 30);
  EXPECT_EQ(line.session.plan.mix, 4u);
  EXPECT_TRUE(line.session.plan.snapshots);
  EXPECT_EQ(line.session.documentBytes, 9u);
  EXPECT_TRUE(line.quiet);
  EXPECT_FALSE(line.queries);
}

TEST_F(PdmClientTest, CommandLineFindsFault) {
  struct Case {
    std::vector<std::string> arguments;
    const char* fault;
  };
  const Case cases[] = {
      {{"--onlien"}, "unknown option --onlien"},
      {{"session"}, "unknown option session"},
      {{"--seed"}, "--seed needs a value that it can use"},
      {{"--seed", "x"}, "--seed needs a value that it can use"},
      {{"--seed", "1x"}, "--seed needs a value that it can use"},
      {{"--exchanges", "0"}, "--exchanges needs a value that it can use"},
      {{"--exchanges", "-3"}, "--exchanges needs a value that it can use"},
      {{"--work", ""}, "--work needs a value that it can use"},
      {{"--mix", "3"}, "--mix needs --exchanges"},
      {{"--alter", "1000"}, "--alter: the session has no such step"},
      {{"--alter", "31"}, "--alter: nothing is compared at this step"},
      {{"--snapshots", "--alter", "2"}, "--alter: nothing is compared at this step"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(pdm::readCommandLine(c.arguments).fault, c.fault) << c.arguments[0];
  }
}

TEST_F(PdmClientTest, EveryRunHasASeedOfItsOwn) {
  EXPECT_NE(pdm::readCommandLine({}).session.seed, pdm::readCommandLine({}).session.seed);
}

}  // namespace
