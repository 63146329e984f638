// The file system in memory does what the operating system's does, as far as the foundation's file
// services can tell.
#include "MemoryFileSystem.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "Environment.h"
#include "KelDirectory.h"
#include "KelFile.h"
#include "KelLib.h"
#include "KelUnicodeString.h"
#include "ScratchDirectory.h"

namespace {

using Texts = std::vector<std::string>;

// Uses files in one place and notes what comes of it.
class Notes {
 public:
  explicit Notes(std::string place) : _place(std::move(place)) {}

  void open(const std::string& name, const char* mode, const std::string& text) {
    int descriptor = 0;
    const long opened = KelFOpen(wide(name).ConvertToWide(), mode, &descriptor);
    note("open", opened);
    if (opened != S_OK) return;
    note("write", KelFPuts(text.c_str(), descriptor, nullptr));
    int size = -1;
    note("size", KelFSize(descriptor, &size));
    char line[20] = "";
    while (KelFGets(line, sizeof line, descriptor) == S_OK) lines.push_back(line);
    lines.push_back(std::to_string(size) + " " + std::to_string(KelFEof(descriptor)));
    note("close", KelFClose(descriptor));
    note("close again", KelFClose(descriptor));
  }

  void remove(const std::string& name) { note("remove", KelFRemove(wide(name).ConvertToWide())); }

  void rename(const std::string& from, const std::string& to) {
    note("rename", KelFRename(wide(from).ConvertToWide(), wide(to).ConvertToWide()));
  }

  void copy(const std::string& from, const std::string& to, int mode) {
    note("copy", KelFCopy(wide(from).ConvertToWide(), wide(to).ConvertToWide(), mode));
  }

  void makePath(const std::string& name) {
    note("make", KelMakePath(wide(name).ConvertToWide()) == KelLibSucces ? S_OK : E_FAIL);
  }

  void stamp(const std::string& name) {
    KelFileStamp stamp;
    note("stamp", KelFStamp(wide(name).ConvertToWide(), &stamp));
    lines.push_back(std::to_string(stamp.size));
  }

  void watch(const std::string& directory, const std::string& gone) {
    KelDirectoryWatch watch(wide(directory).ConvertToWide());
    note("changed", watch.Changed() ? E_FAIL : S_OK);
    note("changed", watch.Changed() ? E_FAIL : S_OK);
    remove(gone);
    note("changed", watch.Changed() ? E_FAIL : S_OK);
    note("changed", watch.Changed() ? E_FAIL : S_OK);
  }

  Texts lines;

 private:
  KelUnicodeString wide(const std::string& name) const {
    return KelUnicodeString((_place + name).c_str());
  }

  void note(const char* what, long result) {
    lines.push_back(std::string(what) + (result == S_OK ? ": yes" : ": no"));
  }

  std::string _place;
};

Texts session(const std::string& place) {
  Notes notes(place);
  notes.makePath("/a/b");
  notes.makePath("/a/b");
  for (const char* mode : {"r", "w", "wx", "a+", "r", "w", "a+"}) {
    for (const char* name : {"/a/file", "/a//./b/../file", "/a/b", "/a/none/file", "/a/file/x",
                             "/a/new/", "", "/a/b/new"}) {
      notes.open(name, mode, "one\ntwo, a longer line than fits\n");
    }
  }
  notes.open("/a/" + std::string(300, 'n'), "w", "");
  notes.makePath("/a/file");
  notes.makePath("/a/file/below");
  for (const int mode : {0, 1}) {
    notes.copy("/a/file", "/a/copy", mode);
    notes.copy("/a/none", "/a/copy2", mode);
    notes.copy("/a/b", "/a/copy3", mode);
    notes.copy("/a/file", "/a/b", mode);
    notes.copy("/a/file", "/none/copy", mode);
  }
  notes.open("/a/copy", "a+", "more");
  notes.stamp("/a/copy");
  notes.stamp("/a/b");
  notes.stamp("/a/none");
  notes.rename("/a/copy", "/a/b/moved");
  notes.rename("/a/copy", "/a/b/moved");
  notes.rename("/a/b/moved", "/none/moved");
  notes.rename("/a/b/moved", "/a/b");
  notes.rename("/a/b/moved", "/a/file");
  notes.open("/a/file", "a+", "");
  notes.watch("/a", "/a/file");
  notes.watch("/a", "/a/file");
  notes.watch("/none", "/a/b/new");
  notes.remove("/a/b");
  return notes.lines;
}

TEST(MemoryFileSystemTest, DoesWhatTheOperatingSystemsDoes) {
  const Environment environment;
  const ScratchDirectory scratch;
  const Texts onDisk = session(scratch.path().string());
  const MemoryFileSystem memory;
  EXPECT_EQ(session(""), onDisk);
  EXPECT_GT(onDisk.size(), 150u);
  EXPECT_EQ(memory.openFiles(), 0u);
  EXPECT_EQ(memory.files(), Texts{});
}

TEST(MemoryFileSystemTest, IsFilledAndLookedAtPastTheFileServices) {
  MemoryFileSystem memory;
  memory.put("/a/b/file", "bytes");
  EXPECT_EQ(memory.bytes("/a/b/file"), "bytes");
  EXPECT_EQ(memory.bytes("/a/b/none"), "");
  EXPECT_TRUE(memory.exists("/a/b/file"));
  EXPECT_FALSE(memory.exists("/a/b"));
  EXPECT_EQ(memory.files(), Texts{"/a/b/file"});
  memory.clear();
  EXPECT_EQ(memory.files(), Texts{});
  EXPECT_EQ(KelMakePath(L"/a/b/file"), KelLibSucces);
}

}  // namespace
