#include "MFile.h"

#include <cstddef>

#include "Guard.h"
#include "KelFile.h"
#include "KelUnicodeString.h"
#include "OwningArray.h"

using zetnorv::guarded;

namespace {

// The longest piece of a line that gets(MString*) takes, its NUL included.
constexpr int kLineBytes = 1024;

// Opens `name` through the foundation; `*descriptor` is 0 unless it worked.
long openDescriptor(const char* name, const char* mode, int* descriptor) {
  *descriptor = 0;
  if (name == nullptr || mode == nullptr || zetnorv::RefusedMemory::wasMet()) return E_FAIL;
  return guarded("MFile::open", [&] {
    const KelUnicodeString path(name);
    return KelFOpen(path.ConvertToWide(), mode, descriptor);
  });
}

}  // namespace

MFile::~MFile() { _descriptor = 0; }

long MFile::open(const char* name, const char* mode) {
  return openDescriptor(name, mode, &_descriptor);
}

long MFile::close() {
  const int descriptor = _descriptor;
  _descriptor = 0;
  return KelFClose(descriptor);
}

long MFile::puts(const char* s) {
  int count = 0;
  return KelFPuts(s, _descriptor, &count);
}

long MFile::gets(char* buf, int n) { return KelFGets(buf, n, _descriptor); }

long MFile::gets(MString* s) {
  if (s == nullptr) return E_FAIL;
  char line[kLineBytes] = {};
  const long result = KelFGets(line, kLineBytes, _descriptor);
  s->set(line);
  return result;
}

long MFile::read(char* buf, int n) {
  int count = 0;
  return KelFRead(_descriptor, buf, n, &count);
}

long MFile::write(const char* buf, int n) {
  if (buf == nullptr && n >= 1) return E_FAIL;
  int count = 0;
  return KelFWrite(_descriptor, buf, n, &count);
}

long MFile::eof() { return KelFEof(_descriptor); }

long MFile::load(MString name, char*& buf, int& size) {
  if (name.isNull()) return E_FAIL;
  int descriptor = 0;
  if (openDescriptor(name.gchar(), "r", &descriptor) != S_OK) return E_FAIL;

  int length = 0;
  char* content = nullptr;
  long result = KelFSize(descriptor, &length);
  if (result == S_OK) {
    content = zetnorv::newBytes(static_cast<std::size_t>(length) + 1);
    result = content == nullptr ? E_FAIL : KelFRead(descriptor, content, length, &length);
  }
  KelFClose(descriptor);
  if (result != S_OK) {
    zetnorv::releaseBytes(content);
    return E_FAIL;
  }
  buf = content;
  size = length;
  return S_OK;
}

long MFile::save(const char* name, const char* buf, int n) {
  MFile file;
  if (file.open(name, "w") != S_OK) return E_FAIL;
  // The file is closed also after a failed write, so that a full disk costs no descriptor.
  const long written = file.write(buf, n);
  const long closed = file.close();
  return written == S_OK && closed == S_OK ? S_OK : E_FAIL;
}
