// Building "database.txt" from answers (buildDB).
#include <filesystem>
#include <string>

#include "FaultyFileSystem.h"
#include "ZetNorvDbTest.h"

namespace database_test {
namespace {

TEST_F(ZetNorvDbTest, ReferenceGivesItsLine) {
  EXPECT_EQ(build(answer(kReference)), S_OK);
  EXPECT_EQ(lines(), kReferenceLine);
}

TEST_F(ZetNorvDbTest, StagedDocumentGivesItsLine) {
  stageExample();
  EXPECT_EQ(build(answer(kDocument)), S_OK);
  EXPECT_EQ(lines(), kDocumentLine);
}

TEST_F(ZetNorvDbTest, ReferencesComeBeforeDocumentsAndTheStepsAreTraced) {
  stageExample();
  EXPECT_EQ(build(answer(kDocument + kReference)), S_OK);
  EXPECT_EQ(lines(), kReferenceLine + kDocumentLine);
  EXPECT_EQ(trace.texts(),
            (Texts{"ZetNorvDb: recherche Reference", "buildDB : Creation de la DB. ds Reference",
                   "ZetNorvDb: recherche Document", "buildDB : Creation de la DB. dans Document"}));
  for (const TraceRecorder::Line& line : trace.lines()) EXPECT_EQ(line.level, 2) << line.text;
}

TEST_F(ZetNorvDbTest, AnswerWithoutObjectsLeavesTheFileUnchanged) {
  writeBytes(recorded(), "before\n");
  EXPECT_EQ(build("<Answer><Other/></Answer>"), S_OK);
  EXPECT_EQ(lines(), "before\n");
  EXPECT_EQ(ZetNorvDb::_nbLoad, 0);
  EXPECT_EQ(trace.texts(),
            (Texts{"ZetNorvDb: recherche Reference", "ZetNorvDb: recherche Document"}));
}

TEST_F(ZetNorvDbTest, LinesAreAppendedToThoseOfEarlierAnswers) {
  EXPECT_EQ(build(answer(kReference)), S_OK);
  EXPECT_EQ(build(answer(kReference)), S_OK);
  EXPECT_EQ(lines(), kReferenceLine + kReferenceLine);
}

TEST_F(ZetNorvDbTest, EveryLineCountsOneOpening) {
  EXPECT_EQ(build(answer(kReference + kReference + kReference)), S_OK);
  EXPECT_EQ(ZetNorvDb::_nbLoad, 3);
}

TEST_F(ZetNorvDbTest, AppendingLeavesTheTableAlone) {
  EXPECT_EQ(build(answer(kReference)), S_OK);
  EXPECT_EQ(ZetNorvDb::_database.getSize(), 0);
}

TEST_F(ZetNorvDbTest, RootElementMayBeTheObject) {
  EXPECT_EQ(build(kReference), S_OK);
  EXPECT_EQ(lines(), kReferenceLine);
}

TEST_F(ZetNorvDbTest, ReferenceNeverShowsItsOwnUuid) {
  EXPECT_EQ(build(answer(reference(kReferenceAttributes + " SourceUuid='77'"))), S_OK);
  EXPECT_EQ(lines(), kReferenceLine);
}

TEST_F(ZetNorvDbTest, EmptyValueCountsAsPresent) {
  EXPECT_EQ(build(answer(reference("Name='' Type='' TimeStamp=''",
                                   attribute("$COID", "") + attribute("$COMPID", "") +
                                       attribute("S_PART_NUMBER", "")))),
            S_OK);
  EXPECT_EQ(lines(), "<><><><><Reference><UUID BIDON><Reference><><>\n");
}

struct Incomplete {
  const char* lacks;
  std::string xml;
};

std::string without(const std::string& text, const std::string& part) {
  const std::size_t at = text.find(part);
  EXPECT_NE(at, std::string::npos) << part;
  return std::string(text).erase(at, part.size());
}

TEST_F(ZetNorvDbTest, IncompleteReferenceIsPassedOverSilently) {
  const Incomplete cases[] = {
      {"Name", without(kReference, "Name='Link1'")},
      {"Type", without(kReference, "Type='Instance'")},
      {"TimeStamp", without(kReference, "TimeStamp='" + kStamp + "'")},
      {"$COID", without(kReference, attribute("$COID", "0C00"))},
      {"$COMPID", without(kReference, attribute("$COMPID", "0003"))},
      {"S_PART_NUMBER", without(kReference, attribute("S_PART_NUMBER", "PN-8"))},
  };
  for (const Incomplete& incomplete : cases) {
    EXPECT_EQ(build(answer(incomplete.xml)), S_OK) << incomplete.lacks;
    EXPECT_EQ(lines(), "") << incomplete.lacks;
    EXPECT_EQ(trace.texts(),
              (Texts{"ZetNorvDb: recherche Reference", "ZetNorvDb: recherche Document"}))
        << incomplete.lacks;
  }
}

TEST_F(ZetNorvDbTest, IncompleteDocumentIsPassedOverSilently) {
  stageExample();
  const Incomplete cases[] = {
      {"Name", without(kDocument, "Name='Bracket.1'")},
      {"FilePath", without(kDocument, "FilePath='C:/work/PN-7.KelPart'")},
      {"Type", without(kDocument, "Type='KelPart'")},
      {"SourceUuid", without(kDocument, "SourceUuid='3F2A'")},
      {"TimeStamp", without(kDocument, "TimeStamp='" + kStamp + "'")},
      {"$COID", without(kDocument, attribute("$COID", "0A1B"))},
      {"$COMPID", without(kDocument, attribute("$COMPID", "0002"))},
      {"S_NAME", without(kDocument, attribute("S_NAME", "Bracket"))},
  };
  for (const Incomplete& incomplete : cases) {
    EXPECT_EQ(build(answer(incomplete.xml)), S_OK) << incomplete.lacks;
    EXPECT_EQ(lines(), "") << incomplete.lacks;
    EXPECT_EQ(trace.texts(),
              (Texts{"ZetNorvDb: recherche Reference", "ZetNorvDb: recherche Document"}))
        << incomplete.lacks;
  }
}

TEST_F(ZetNorvDbTest, FirstDocumentWithoutPartNumberAndTableIsIndefini) {
  stageExample();
  EXPECT_EQ(build(answer(document(kDocumentAttributes))), S_OK);
  EXPECT_EQ(lines(), "<0A1B><0002><Indefini><Bracket><PN-7.KelPart><3F2A><Indefini><KelPart><" +
                         kStamp + ">\n");
}

TEST_F(ZetNorvDbTest, DocumentShowsItsTable) {
  stageExample();
  EXPECT_EQ(build(answer(document(kDocumentAttributes + " Table='DOCUMENT'"))), S_OK);
  EXPECT_EQ(lines(), "<0A1B><0002><Indefini><Bracket><PN-7.KelPart><3F2A><DOCUMENT><KelPart><" +
                         kStamp + ">\n");
}

struct Staged {
  const char* path;
  const char* copy;
  bool written;
};

TEST_F(ZetNorvDbTest, OnlyTheStagedDocumentGivesALine) {
  const Staged cases[] = {
      {"C:/work/PN-7.KelPart", "PN-7.KelPart", true},
      {"C:/work/PN-7", "PN-7.KelPart", true},  // a beginning of the element's path
      {"", "PN-7.KelPart", true},
      {"C:/work/PN-7.KelPart.1", "PN-7.KelPart", false},
      {"D:/work/PN-7.KelPart", "PN-7.KelPart", false},
      {nullptr, "PN-7.KelPart", false},
      {"C:/work/PN-7.KelPart", nullptr, false},
      {nullptr, nullptr, false},
  };
  for (const Staged& staged : cases) {
    std::filesystem::remove(recorded());
    stage(staged.path, staged.copy);
    EXPECT_EQ(build(answer(kDocument)), S_OK);
    EXPECT_EQ(lines(), staged.written ? kDocumentLine : "") << (staged.path ? staged.path : "null");
  }
}

TEST_F(ZetNorvDbTest, DocumentLineHasTheNameOfTheCopyNotThePath) {
  stage("C:/work/", "anything");
  EXPECT_EQ(build(answer(kDocument)), S_OK);
  EXPECT_EQ(lines(),
            "<0A1B><0002><PN-7><Bracket><anything><3F2A><Indefini><KelPart><" + kStamp + ">\n");
}

// --- values that go from one element to the next ---

TEST_F(ZetNorvDbTest, ReferenceInheritsNameTypeAndTimeStamp) {
  EXPECT_EQ(build(answer(kReference + reference(""))), S_OK);
  EXPECT_EQ(lines(), kReferenceLine + kReferenceLine);
}

TEST_F(ZetNorvDbTest, ReferenceInheritsNoAttributeElements) {
  EXPECT_EQ(build(answer(kReference + reference(kReferenceAttributes, ""))), S_OK);
  EXPECT_EQ(lines(), kReferenceLine);
}

TEST_F(ZetNorvDbTest, DocumentInheritsNoAttributeElementsButThePartNumber) {
  stageExample();
  EXPECT_EQ(
      build(answer(kDocument + document(kDocumentAttributes, "") + document(kDocumentAttributes))),
      S_OK);
  EXPECT_EQ(lines(), kDocumentLine + kDocumentLine);
}

TEST_F(ZetNorvDbTest, ElementPassedOverStillLeavesItsValues) {
  EXPECT_EQ(build(answer(reference(kReferenceAttributes, "") + reference(""))), S_OK);
  EXPECT_EQ(lines(), kReferenceLine);
}

TEST_F(ZetNorvDbTest, DocumentInheritsTypeTimeStampAndUuidFromReferences) {
  stageExample();
  EXPECT_EQ(build(answer("<Reference Type='T' TimeStamp='S' SourceUuid='U'/>" +
                         document("Name='n' FilePath='C:/work/PN-7.KelPart'"))),
            S_OK);
  EXPECT_EQ(lines(), "<0A1B><0002><Indefini><Bracket><PN-7.KelPart><U><Indefini><T><S>\n");
}

TEST_F(ZetNorvDbTest, DocumentWithoutPartNumberInheritsTheLastReferencesName) {
  stageExample();
  EXPECT_EQ(build(answer("<Reference Name='First'/><Reference Name='Last'/><Reference/>" +
                         document(kDocumentAttributes))),
            S_OK);
  EXPECT_EQ(lines(),
            "<0A1B><0002><Last><Bracket><PN-7.KelPart><3F2A><Indefini><KelPart><" + kStamp + ">\n");
}

TEST_F(ZetNorvDbTest, ReferenceInheritsNothingFromDocuments) {
  stageExample();
  EXPECT_EQ(build(answer(kDocument + reference(""))), S_OK);
  EXPECT_EQ(lines(), kDocumentLine);
}

TEST_F(ZetNorvDbTest, DocumentDoesNotInheritTheReferencesNameAsItsOwn) {
  stageExample();
  EXPECT_EQ(build(answer("<Reference Name='Link1'/>" + without(kDocument, "Name='Bracket.1'"))),
            S_OK);
  EXPECT_EQ(lines(), "");
}

TEST_F(ZetNorvDbTest, DocumentInheritsNamePathAndTableFromDocuments) {
  stageExample();
  EXPECT_EQ(build(answer(document(kDocumentAttributes + " Table='X'") + document(""))), S_OK);
  const std::string line =
      "<0A1B><0002><Indefini><Bracket><PN-7.KelPart><3F2A><X><KelPart><" + kStamp + ">\n";
  EXPECT_EQ(lines(), line + line);
}

TEST_F(ZetNorvDbTest, DocumentOfAnotherPathLeavesItsPathToTheNext) {
  stageExample();
  EXPECT_EQ(build(answer(document(kDocumentAttributes) +
                         "<Document FilePath='D:/other' Table='X'/>" + document(""))),
            S_OK);
  EXPECT_EQ(lines(), "<0A1B><0002><Indefini><Bracket><PN-7.KelPart><3F2A><Indefini><KelPart><" +
                         kStamp + ">\n");
}

TEST_F(ZetNorvDbTest, NothingIsInheritedFromAnEarlierAnswer) {
  EXPECT_EQ(build(answer(kReference)), S_OK);
  EXPECT_EQ(build(answer(reference(""))), S_OK);
  EXPECT_EQ(lines(), kReferenceLine);
}

// --- names of Attribute elements ---

struct Attributes {
  const char* what;
  std::string children;
  const char* line;
};

TEST_F(ZetNorvDbTest, AttributeNamesMatchByTheirBeginning) {
  const std::string ids = kReferenceIds;
  const char* const unchanged =
      "<0C00><0003><Link1><PN-8><Reference><UUID BIDON><Reference><Instance>";
  const Attributes cases[] = {
      {"$CO is the coid", ids + attribute("$CO", "X"),
       "<X><0003><Link1><PN-8><Reference><UUID BIDON><Reference><Instance>"},
      {"$COM is the compid", ids + attribute("$COM", "X"),
       "<0C00><X><Link1><PN-8><Reference><UUID BIDON><Reference><Instance>"},
      {"S is the part number", ids + attribute("S", "X"),
       "<0C00><0003><Link1><X><Reference><UUID BIDON><Reference><Instance>"},
      {"an empty name is the coid", ids + attribute("", "X"),
       "<X><0003><Link1><PN-8><Reference><UUID BIDON><Reference><Instance>"},
      {"a name with a keyword in front", ids + attribute("$COIDS", "X"), unchanged},
      {"another name", ids + attribute("S_NAME", "X"), unchanged},
      {"another case", ids + attribute("$coid", "X"), unchanged},
      {"no name", ids + "<Attribute Value='X'/>", unchanged},
      {"no value", ids + "<Attribute Name='$COID'/>", unchanged},
      {"the last one counts", attribute("$COID", "X") + ids, unchanged},
      {"at any depth", "<A><B>" + ids + "</B></A>", unchanged},
  };
  for (const Attributes& attributes : cases) {
    std::filesystem::remove(recorded());
    EXPECT_EQ(build(answer(reference(kReferenceAttributes, attributes.children))), S_OK);
    EXPECT_EQ(lines(), attributes.line + ("<" + kStamp + ">\n")) << attributes.what;
  }
}

TEST_F(ZetNorvDbTest, DocumentTestsItsKeywordsInTheirOrder) {
  const Attributes cases[] = {
      {"S_ is the name", attribute("S_", "X"), "<0A1B><0002><PN-7><X>"},
      {"S_P is the part number", attribute("S_P", "X"), "<0A1B><0002><X><Bracket>"},
      {"$ is the coid", attribute("$", "X"), "<X><0002><PN-7><Bracket>"},
  };
  for (const Attributes& attributes : cases) {
    std::filesystem::remove(recorded());
    stageExample();
    EXPECT_EQ(build(answer(document(
                  kDocumentAttributes,
                  kDocumentIds + attribute("S_PART_NUMBER", "PN-7") + attributes.children))),
              S_OK);
    EXPECT_EQ(lines(),
              attributes.line + ("<PN-7.KelPart><3F2A><Indefini><KelPart><" + kStamp + ">\n"))
        << attributes.what;
  }
}

TEST_F(ZetNorvDbTest, AttributesOfNestedObjectsCountForTheOuterOne) {
  const std::string inner =
      reference("Name='Inner'", attribute("$COID", "I1") + attribute("$COMPID", "I2") +
                                    attribute("S_PART_NUMBER", "I3"));
  EXPECT_EQ(build(answer(reference(kReferenceAttributes, kReferenceIds + inner))), S_OK);
  EXPECT_EQ(lines(), "<I1><I2><Link1><I3><Reference><UUID BIDON><Reference><Instance><" + kStamp +
                         ">\n"
                         "<I1><I2><Inner><I3><Reference><UUID BIDON><Reference><Instance><" +
                         kStamp + ">\n");
}

// --- values that are no plain words ---

TEST_F(ZetNorvDbTest, ValuesAreWrittenAsTheyAre) {
  EXPECT_EQ(build(answer(reference("Name='%s%n&lt;a&gt;&#10;b' Type='\xC3\xA9' TimeStamp='t'"))),
            S_OK);
  EXPECT_EQ(lines(),
            "<0C00><0003><%s%n<a>\nb><PN-8><Reference><UUID BIDON><Reference><\xC3\xA9><t>\n");
}

TEST_F(ZetNorvDbTest, LongLineIsWrittenWholeAndReadBackWhole) {
  const std::string name(5000, 'n');
  EXPECT_EQ(build(answer(reference("Name='" + name + "' Type='T' TimeStamp='S'"))), S_OK);
  EXPECT_EQ(lines(), "<0C00><0003><" + name + "><PN-8><Reference><UUID BIDON><Reference><T><S>\n");

  DatabaseState::reset();
  environment.set("ZETNORV_MODE", "REPLAY");
  construct();
  ASSERT_EQ(ZetNorvDb::_database.getSize(), 1);
  EXPECT_EQ(field(0, 2), name);
  EXPECT_EQ(field(0, 8), "S");
}

// --- buildDB that fails ---

TEST_F(ZetNorvDbTest, AnswerCutAnywhereIsAParseFailureWithoutALine) {
  const std::string xml = answer(kReference);
  for (std::size_t n = 0; n < xml.size(); ++n) {
    ASSERT_EQ(build(xml.substr(0, n)), E_FAIL) << n;
    ASSERT_EQ(trace.texts(), Texts{"buildDB Problem XMLParse"}) << n;
  }
  EXPECT_FALSE(exists(recorded()));
}

TEST_F(ZetNorvDbTest, NullBufferHasNoInputSource) {
  construct();
  trace.clear();
  EXPECT_EQ(ZetNorvDb().buildDB(nullptr, 10), E_FAIL);
  EXPECT_EQ(trace.texts(), Texts{"buildDB Problem CreateMemBufInputSourceFromChar"});
}

TEST_F(ZetNorvDbTest, NegativeSizeIsAParseFailure) {
  construct();
  trace.clear();
  EXPECT_EQ(ZetNorvDb().buildDB(kReference.data(), -1), E_FAIL);
  EXPECT_EQ(trace.texts(), Texts{"buildDB Problem XMLParse"});
}

TEST_F(ZetNorvDbTest, BytesBehindTheSizeAreNotRead) {
  construct();
  const std::string xml = answer(kReference);
  const std::string behind = xml + "<";
  EXPECT_EQ(ZetNorvDb().buildDB(behind.data(), static_cast<int>(xml.size())), S_OK);
  EXPECT_EQ(lines(), kReferenceLine);
}

TEST_F(ZetNorvDbTest, FileThatDoesNotOpenEndsTheRun) {
  std::filesystem::create_directory(recorded());
  stageExample();
  EXPECT_EQ(build(answer(kReference + kReference + kDocument)), E_FAIL);
  EXPECT_EQ(trace.texts(),
            (Texts{"ZetNorvDb: recherche Reference", "buildDB : Creation de la DB. ds Reference",
                   "buildDB : Problem with KelFOpen!"}));
  EXPECT_EQ(ZetNorvDb::_nbLoad, 0);
}

TEST_F(ZetNorvDbTest, DocumentThatCannotBeWrittenEndsTheRun) {
  std::filesystem::create_directory(recorded());
  stageExample();
  EXPECT_EQ(build(answer(kDocument + kDocument)), E_FAIL);
  EXPECT_EQ(trace.count("buildDB : Creation de la DB. dans Document"), 1);
  EXPECT_EQ(trace.texts().back(), "buildDB : Problem with KelFOpen!");
}

TEST_F(ZetNorvDbTest, WithoutAScenarioDirectoryNothingIsAppended) {
  environment.unset("BIX_ZET_IN");
  EXPECT_EQ(build(answer(kReference)), E_FAIL);
  EXPECT_EQ(trace.texts().back(), "buildDB : Problem with KelFOpen!");
}

struct AppendFault {
  FaultyFileSystem::Call call;
  const char* line;
  int openings;
  int linesLeft;
};

TEST_F(ZetNorvDbTest, FaultAtTheSecondLineKeepsTheFirstAndEndsTheRun) {
  using Call = FaultyFileSystem::Call;
  const AppendFault cases[] = {
      {Call::kOpenAppend, "buildDB : Problem with KelFOpen!", 1, 1},
      {Call::kWrite, "buildDB : Problem with KelFPuts!", 2, 1},
      // The line may have reached the file: what a failing close means, nobody knows.
      {Call::kClose, "buildDB : Problem with KelFPuts!", 2, 2},
  };
  for (const AppendFault& fault : cases) {
    std::filesystem::remove(recorded());
    DatabaseState::reset();
    construct();
    trace.clear();
    FaultyFileSystem files;
    files.fail(fault.call, 2);
    const std::string xml = answer(kReference + kReference + kReference);
    EXPECT_EQ(ZetNorvDb().buildDB(xml.data(), static_cast<int>(xml.size())), E_FAIL) << fault.line;
    EXPECT_EQ(trace.texts().back(), fault.line);
    EXPECT_EQ(trace.count("buildDB : Creation de la DB. ds Reference"), 2) << fault.line;
    EXPECT_EQ(ZetNorvDb::_nbLoad, fault.openings) << fault.line;
    EXPECT_EQ(lines(), fault.linesLeft == 1 ? kReferenceLine : kReferenceLine + kReferenceLine);
  }
}

TEST_F(ZetNorvDbTest, FullDiskEndsTheRunAndTheLinesBeforeStayWhole) {
  construct();
  FaultyFileSystem files;
  files.fillDiskAtWrite(2);
  const std::string xml = answer(kReference + kReference);
  EXPECT_EQ(ZetNorvDb().buildDB(xml.data(), static_cast<int>(xml.size())), E_FAIL);
  EXPECT_TRUE(trace.has("buildDB : Problem with KelFPuts!"));
  EXPECT_EQ(lines(), kReferenceLine);
}

TEST_F(ZetNorvDbTest, EveryLineIsOneWrite) {
  // So that a reader between two of them never sees a part of one.
  construct();
  FaultyFileSystem files;
  files.fail(FaultyFileSystem::Call::kWrite, 3);
  const std::string xml = answer(kReference + kReference + kReference);
  EXPECT_EQ(ZetNorvDb().buildDB(xml.data(), static_cast<int>(xml.size())), E_FAIL);
  EXPECT_EQ(lines(), kReferenceLine + kReferenceLine);
}

}  // namespace
}  // namespace database_test
