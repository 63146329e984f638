// Paths that lead elsewhere, wherever a path or a name comes in: what is written stays in the
// directories of the scenario, and a document is copied whole under its name, or not at all.
#include <algorithm>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "EmulatorFixture.h"
#include "Files.h"
#include "KelLib.h"
#include "QuietConsole.h"
#include "SpecialFiles.h"
#include "ZetNorvDb.h"
#include "ZetNorvEmul.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kDocument = "the document";
constexpr const char* kScript =
    "<S><MessageChar value=\"12\"><Composant name=\"all\" size=\"1\"/></MessageChar>"
    "<MessageXML value=\"321\"><Composant name=\"Document\" father=\"\"/></MessageXML></S>";
constexpr const char* kNoCopy = nullptr;
constexpr const char* kCopied = "Copie des donnees: OK";
constexpr const char* kNotRead = "Copie des donnees: KO";

struct Case {
  const char* name;
  // "{S}" stands for a directory that has "work", where the client is, and "outside".
  std::string path;
  // The name of the copy; null when there is none.
  std::string copy;
  bool isCopied = true;

  Case(const char* what, std::string where, const char* copied)
      : name(what),
        path(std::move(where)),
        copy(copied == nullptr ? "" : copied),
        isCopied(copied != nullptr) {}
};

// A path to a new document of that name.
Case plain(const char* name, const std::string& file) {
  return {name, "{S}/work/" + file, file.c_str()};
}

std::vector<Case> cases() {
  const std::string longest(255, 'n');
  return {
      plain("plain", "part.KelPart"),
      plain("without a point", "part"),
      plain("hidden", ".part"),
      plain("three points", "..."),
      plain("point at the end", "part."),
      plain("blank at the end", "part "),
      plain("blank at the start", " part"),
      plain("blank alone", " "),
      plain("one character", "p"),
      plain("minus", "-rf"),
      plain("tilde", "~"),
      plain("variable", "$HOME"),
      plain("per cent", "%2e%2e%2fpart"),
      plain("star", "*"),
      plain("question mark", "part?"),
      plain("quotes", "\"part\" 'x'"),
      plain("brackets", "<part>"),
      plain("ampersand", "a&b"),
      plain("pipe", "|part"),
      plain("semicolon", "a;b"),
      plain("colon", "part:stream"),
      plain("drive in the name", "C:part"),
      plain("console", "CON"),
      plain("nothing", "NUL"),
      plain("serial line", "COM1.KelPart"),
      plain("tab", "a\tb"),
      plain("carriage return", "a\rb"),
      plain("accents", "pi\u00e8ce.KelPart"),
      plain("emoji", "\U0001F600"),
      plain("wide slash", "a\uFF0Fb"),
      plain("wide points", "\uFF0E\uFF0E"),
      plain("turned writing", "a\u202Eb"),
      plain("as long as may be", longest),
      plain("as an index", "Scenario.txt"),
      plain("as a recorded request", "save321_0.txt"),
      plain("as the database", "database.txt"),
      plain("as an unfinished copy", ".staging"),
      {"line feed", "{S}/work/a\nb", "a"},
      {"line feed first", "{S}/work/\nb", kNoCopy},
      {"too long", "{S}/work/" + longest + "n", kNoCopy},
      {"much too long", "{S}/work/" + std::string(5000, 'n'), kNoCopy},
      {"on a drive", "C:/work/part", "part"},
      {"on a drive, both separators", "C:\\work/part", "part"},
      {"rooted", "\\work/part", "part"},
      {"above and down again", "{S}/work/../outside/part", "part"},
      {"above the client", "../outside/part", "part"},
      {"beside the client", "./part", "part"},
      {"double separators", "{S}//work///part", "part"},
      {"above", "{S}/work/..", kNoCopy},
      {"itself", "{S}/work/.", kNoCopy},
      {"above by the other separator", "{S}/work/..\\part", kNoCopy},
      {"far above by the other separator", "{S}/work/deep/..\\..\\part", kNoCopy},
      {"so far above that it leads outside", "{S}/1/2/3/4/..\\..\\..\\..\\outside\\part", kNoCopy},
      {"above in the middle", "{S}/work/deep\\..\\part", kNoCopy},
      {"down by the other separator", "{S}/work/deep\\part", kNoCopy},
      {"separator at the end", "{S}/work/", kNoCopy},
      {"other separator at the end", "{S}/work/part\\", kNoCopy},
      {"directory", "{S}/work", kNoCopy},
      {"root", "/", kNoCopy},
      {"empty", "", kNoCopy},
      {"parent alone", "..", kNoCopy},
      {"missing", "{S}/none/part", kNoCopy},
      {"share", "\\\\localhost\\share\\part", kNoCopy},
      {"device path", "\\\\?\\C:\\part", kNoCopy},
      {"null device", "/dev/null", kNoCopy},
      {"endless device", "/dev/zero", kNoCopy},
      {"URL", "file://{S}/work/part", kNoCopy},
      {"network", "http://localhost:1/part", kNoCopy},
      {"link to a file", "{S}/links/file", "file"},
      {"link to a directory", "{S}/links/directory", kNoCopy},
      {"file by way of a link", "{S}/links/directory/part", "part"},
      {"link to nowhere", "{S}/links/nowhere", kNoCopy},
      {"link to itself", "{S}/links/loop", kNoCopy},
      {"pipe with a name", "{S}/links/fifo", kNoCopy},
      {"recorded data", "{S}/in/case1.rec/Reference/save12_0.txt", "save12_0.txt"},
      {"copy of before", "{S}/in/case1.rec/Reference/Kel_Files_Temp/kept", "kept"},
  };
}

std::string inXml(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '&' || c == '<' || c == '"' || (c >= '\0' && c < ' ')) {
      escaped += "&#" + std::to_string(static_cast<int>(c)) + ";";
    } else {
      escaped += c;
    }
  }
  return escaped;
}

std::string documentOf(const std::string& path) {
  return "<Q><Document Name=\"n\" FilePath=\"" + inXml(path) +
         "\" Type=\"KelPart\" SourceUuid=\"u\" TimeStamp=\"t\"><Attribute Name=\"$COID\" "
         "Value=\"1\"/><Attribute Name=\"$COMPID\" Value=\"2\"/><Attribute Name=\"S_NAME\" "
         "Value=\"3\"/></Document></Q>";
}

// Everything below a directory: what each thing is, and its bytes or where it points to.
using Tree = std::map<std::string, std::string>;

Tree treeOf(const fs::path& directory) {
  Tree tree;
  for (const auto& entry : fs::recursive_directory_iterator(directory)) {
    std::string what = "other";
    if (entry.is_symlink()) {
      what = "link to " + fs::read_symlink(entry.path()).string();
    } else if (entry.is_directory()) {
      what = "directory";
    } else if (entry.is_regular_file()) {
      what = "file: " + readBytes(entry.path().string());
    }
    tree[entry.path().lexically_relative(directory).string()] = what;
  }
  return tree;
}

class PathsTest : public EmulatorFixture {
 protected:
  PathsTest() : _before(fs::current_path()) {
    fs::create_directories(scratch.path() / "work" / "deep");
    fs::create_directories(scratch.path() / "outside");
    fs::create_directories(scratch.path() / "links");
    writeBytes(scratch.file("outside/victim"), "untouched");
    writeBytes(scratch.file("outside/part"), kDocument);
    fs::create_directories(scratch.path() / "1" / "2" / "3" / "4");
    writeBytes(scratch.file("part"), kDocument);
    writeBytes(scratch.file("work/part"), kDocument);
    writeBytes(scratch.file("work/deep/part"), kDocument);
    fs::create_symlink(scratch.file("outside/part"), scratch.file("links/file"));
    fs::create_symlink(scratch.file("outside"), scratch.file("links/directory"));
    fs::create_symlink(scratch.file("nowhere"), scratch.file("links/nowhere"));
    fs::create_symlink(scratch.file("links/loop"), scratch.file("links/loop"));
    makeFifo(scratch.file("links/fifo"));
    fs::current_path(scratch.path() / "work");
  }
  ~PathsTest() override { fs::current_path(_before); }

  // Runs `way` with the path of every case; what lies outside the recording is as it was.
  template <class Way>
  void all(Way&& way) {
    int count = 0;
    for (const Case& each : cases()) {
      SCOPED_TRACE(each.name);
      const std::string path = completed(each.path);
      const std::string document = prepare(each, path);
      const Tree outside = outsideRecording();
      way(each, path);
      EXPECT_EQ(outsideRecording(), outside);
      if (!document.empty()) fs::remove(document);
      fs::remove_all(scratch.path() / "in");
      if (HasFailure()) return;
      ++count;
    }
    RecordProperty("paths", count);
    EXPECT_GE(count, 70);
  }

  std::string staged(const std::string& name = "") const {
    return reference("Kel_Files_Temp/" + name);
  }

 private:
  std::string completed(std::string path) const {
    const std::size_t at = path.find("{S}");
    return at == std::string::npos ? path : path.replace(at, 3, scratch.path().string());
  }

  // A recording of before, and the document of the case where it has one of its own, which is told.
  std::string prepare(const Case& each, const std::string& path) {
    resetEmulator();
    trace.clear();
    writeBytes(reference("save12_0.txt"), kDocument);
    writeBytes(staged("kept"), kDocument);
    writeBytes(scratch.file("in/Configuration/xmlStruct.xml"), kScript);
    const std::string own = scratch.file("work/");
    if (!each.isCopied || !path.starts_with(own) || path.size() == own.size() || exists(path)) {
      return "";
    }
    writeBytes(path, kDocument);
    return path;
  }

  // All but the recording, the findings and the file that the case itself stands for.
  Tree outsideRecording() const {
    Tree tree = treeOf(scratch.path());
    std::erase_if(tree, [](const auto& each) {
      return each.first == "in" || each.first.starts_with("in/") || each.first == "error.log";
    });
    return tree;
  }

  fs::path _before;
};

TEST_F(PathsTest, OfDocumentsThatAreStagedWriteTheCopyAndNothingElse) {
  mode("SAVE");
  all([&](const Case& each, const std::string& path) {
    Tree expected = treeOf(scratch.path() / "in");
    const std::string message = request(321, documentOf(path));
    EXPECT_EQ(send(message), S_OK);
    EXPECT_TRUE(trace.has(kCopied) || trace.has(kNotRead));
    if (each.isCopied) {
      EXPECT_TRUE(trace.has(kCopied));
      expected["case1.rec/Reference/Kel_Files_Temp/" + each.copy] =
          std::string("file: ") + kDocument;
    }
    expected["case1.rec/Scenario"] = "directory";
    expected["case1.rec/Scenario/Scenario.txt"] = "file: <321><save321_0.txt>\n";
    expected["case1.rec/Reference/save321_0.txt"] = "file: " + message;
    EXPECT_EQ(treeOf(scratch.path() / "in"), expected);
  });
}

TEST_F(PathsTest, OfDocumentsInAnswersAreWrittenDownAndNotUsed) {
  mode("SAVE");
  all([&](const Case&, const std::string& path) {
    EXPECT_EQ(send(request(321, documentOf(path))), S_OK);
    Tree expected = treeOf(scratch.path() / "in");
    const std::string answer = xmlAnswer(documentOf(path));
    EXPECT_EQ(receive(answer, 4).result, S_OK);
    expected["case1.rec/Scenario/Scenario2.txt"] = "file: <321><rep321_0.txt><4>\n";
    expected["case1.rec/Reference/rep321_0.txt"] = "file: " + answer;
    const MString& copy = ZetNorvDb::_copyFile;
    if (copy.isNull() == 0) {
      expected["case1.rec/Scenario/database.txt"] =
          std::string("file: <1><2><Indefini><3><") + copy.gchar() + "><u><Indefini><KelPart><t>\n";
    }
    EXPECT_EQ(treeOf(scratch.path() / "in"), expected);
  });
}

TEST_F(PathsTest, OfDocumentsInRequestsThatAreCheckedAreNotUsed) {
  for (const char* value : {"REPLAY", "SCAN"}) {
    mode(value);
    all([&](const Case&, const std::string& path) {
      writeBytes(scenario("Scenario.txt"), "<321><save12_0.txt>\n");
      const Tree before = treeOf(scratch.path() / "in");
      send(request(321, documentOf(path)));
      receive("live");
      EXPECT_EQ(treeOf(scratch.path() / "in"), before);
      EXPECT_FALSE(trace.has(kCopied));
    });
  }
}

TEST_F(PathsTest, OfRecordedFilesAreReadAndNotWritten) {
  for (const char* value : {"REPLAY", "SCAN", "OLDREPLAY"}) {
    mode(value);
    all([&](const Case&, const std::string& path) {
      writeBytes(scenario("Scenario.txt"), "<12><" + path + ">\n");
      writeBytes(scenario("Scenario2.txt"), "<12><" + path + "><1>\n");
      const Tree before = treeOf(scratch.path() / "in");
      send(request(12, "x"));
      receive("live");
      EXPECT_EQ(treeOf(scratch.path() / "in"), before);
    });
  }
}

TEST_F(PathsTest, OfRecordedSnapshotsAreReadAndNotWritten) {
  mode("REPLAY");
  all([&](const Case&, const std::string& path) {
    writeBytes(scenario("Scenario.txt"), "<999><" + path + "><4><4>\n");
    const Tree before = treeOf(scratch.path() / "in");
    char* block = nullptr;
    int size = 0;
    int allocated = 0;
    ZetNorvEmul::ReplayKavFirst(size, allocated, block);
    delete[] block;
    EXPECT_EQ(treeOf(scratch.path() / "in"), before);
  });
}

TEST_F(PathsTest, OfDocumentsInTheDatabaseAreHandedOutAndNotUsed) {
  const QuietConsole quiet;
  mode("REPLAY");
  all([&](const Case&, const std::string& path) {
    writeBytes(scenario("database.txt"), "<0102030405060708><0203040506070809><p><n><" + path +
                                             "><u><Indefini><KelPart><t>\n");
    const Tree before = treeOf(scratch.path() / "in");
    ZetNorvDb database;
    MString found;
    database.Find(path.c_str(), found);
    EXPECT_EQ(treeOf(scratch.path() / "in"), before);
  });
}

TEST_F(PathsTest, LinksUnderTheNameOfACopyAreReplacedAndNotFollowed) {
  mode("SAVE");
  for (const char* linked : {"outside/victim", "outside/nothing"}) {
    resetEmulator();
    fs::remove_all(staged());
    fs::create_directories(staged());
    fs::create_symlink(scratch.file(linked), staged("part"));
    const Tree before = treeOf(scratch.path() / "outside");
    EXPECT_EQ(send(request(321, documentOf(scratch.file("work/part")))), S_OK);
    EXPECT_EQ(treeOf(scratch.path() / "outside"), before);
    EXPECT_EQ(treeOf(staged()), (Tree{{"part", std::string("file: ") + kDocument}}));
  }
}

TEST_F(PathsTest, ASecondNameOfAVictimUnderTheNameOfACopyIsReplaced) {
  mode("SAVE");
  fs::create_directories(staged());
  fs::create_hard_link(scratch.file("outside/victim"), staged("part"));
  EXPECT_EQ(send(request(321, documentOf(scratch.file("work/part")))), S_OK);
  EXPECT_EQ(readBytes(scratch.file("outside/victim")), "untouched");
  EXPECT_EQ(readBytes(staged("part")), kDocument);
}

}  // namespace
