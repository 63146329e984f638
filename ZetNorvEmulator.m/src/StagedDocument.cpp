#include "StagedDocument.h"

#include <string>
#include <string_view>

#include "KelFile.h"
#include "KelLib.h"
#include "KelUnicodeString.h"
#include "MFile.h"
#include "OwningArray.h"

namespace zetnorv {

namespace {

// What a copy is called until it is complete: this, with a number behind it when that is taken.
constexpr const char* kUnfinishedName = ".staging";
constexpr int kUnfinishedNames = 100;

MString fileIn(const MString& directory, const MString& name) {
  MString file(directory);
  file + name;
  return file;
}

// Writes the new file `from` and gives it the name `to`; it is gone again when that fails.
void finish(MFile& file, const FileContent& content, const KelUnicodeString& from,
            const KelUnicodeString& to) {
  const long written = file.write(content.bytes(), content.size());
  const long closed = file.close();
  if (written != S_OK || closed != S_OK ||
      KelFRename(from.ConvertToWide(), to.ConvertToWide()) != S_OK) {
    KelFRemove(from.ConvertToWide());
  }
}

}  // namespace

FileContent::FileContent(const MString& path) { MFile().load(path, _bytes, _size); }

FileContent::~FileContent() { releaseBytes(_bytes); }

MString stagedName(const MString& path, int sourceSize) {
  int position = sourceSize;
  for (int i = 0; i < path.glength(); ++i) {
    if (path.extract(i) == '/') position = i;
  }
  if (position >= path.glength()) return MString();
  // The end is one too far, so that a name of one character is taken as well.
  return path.substring(position + 1, path.glength());
}

bool staysInDirectory(const MString& name) {
  if (name.isNull()) return true;
  std::string_view rest(name.gchar());
  while (true) {
    const std::size_t end = rest.find_first_of("/\\");
    if (rest.substr(0, end) == "..") return false;
    if (end == std::string_view::npos) return true;
    rest.remove_prefix(end + 1);
  }
}

void stageCopy(const MString& directory, const MString& name, const FileContent& content) {
  if (name.glength() < 1) return;
  const MString copy = fileIn(directory, name);
  const KelUnicodeString to(copy.gchar());
  for (int i = 0; i < kUnfinishedNames; ++i) {
    const std::string own = kUnfinishedName + (i == 0 ? "" : std::to_string(i));
    if (own == name.gchar()) continue;
    const MString unfinished = fileIn(directory, MString(own.c_str()));
    const KelUnicodeString from(unfinished.gchar());
    MFile file;
    // What is there already stays: it may be the copy of a document that is called so.
    if (file.open(unfinished.gchar(), "wx") == S_OK) return finish(file, content, from, to);
  }
}

}  // namespace zetnorv
