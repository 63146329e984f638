#include "HostileLocale.h"

#include <gtest/gtest.h>

#include <clocale>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace {

// The C library forgets the list of folders that it has looked through for a locale; that is not
// for the library's tests to find.
class ForgivenLeaks {
 public:
#if defined(__SANITIZE_ADDRESS__)
  ForgivenLeaks() { __lsan_disable(); }
  ~ForgivenLeaks() { __lsan_enable(); }
#else
  ForgivenLeaks() {}
#endif
  ForgivenLeaks(const ForgivenLeaks&) = delete;
  ForgivenLeaks& operator=(const ForgivenLeaks&) = delete;
};

class OddNumbers : public std::numpunct<char> {
  char do_decimal_point() const override { return '1'; }
  char do_thousands_sep() const override { return '0'; }
  std::string do_grouping() const override { return "\1"; }
  std::string do_truename() const override { return "no"; }
  std::string do_falsename() const override { return "yes"; }
};

class OddLetters : public std::ctype<char> {
 public:
  OddLetters() : std::ctype<char>(table()) {}

 private:
  static const mask* table() {
    static mask odd[table_size];
    for (mask& m : odd) m = upper | alpha;
    for (int c = '0'; c <= '9'; ++c) odd[c] = space;
    for (const char c : {' ', '\n', '\t'}) odd[static_cast<unsigned char>(c)] = digit;
    return odd;
  }
  char do_toupper(char) const override { return 'q'; }
  char do_tolower(char) const override { return 'Q'; }
};

}  // namespace

OddStreams::OddStreams()
    : _before(std::locale::global(
          std::locale(std::locale(std::locale(), new OddNumbers), new OddLetters))) {}

NamedLocale::NamedLocale(Environment& environment, const std::string& folder,
                         const std::string& name)
    : _beforeC(std::setlocale(LC_ALL, nullptr)) {
  environment.set("LOCPATH", folder);
  const ForgivenLeaks forgiven;
  if (std::setlocale(LC_ALL, name.c_str()) == nullptr) {
    ADD_FAILURE() << "no locale " << name << " in " << folder;
    return;
  }
  _before = std::locale::global(std::locale(name));
}

NamedLocale::~NamedLocale() {
  const ForgivenLeaks forgiven;
  std::locale::global(_before);
  std::setlocale(LC_ALL, _beforeC.c_str());
}
