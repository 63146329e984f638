#include "KelXmlInput.h"

#include <algorithm>
#include <cstring>
#include <xercesc/util/BinInputStream.hpp>

namespace {

constexpr XMLCh kName[] = {'d', 'o', 'c', 'u', 'm', 'e', 'n', 't', 0};

class Stream : public xercesc::BinInputStream {
 public:
  explicit Stream(const KelXmlSource& document) : _document(document) {}

  XMLFilePos curPos() const override { return _position; }
  const XMLCh* getContentType() const override { return nullptr; }

  XMLSize_t readBytes(XMLByte* out, XMLSize_t most) override {
    XMLSize_t count = Copy(_document.text(), 0, out, most);
    count += Copy(_document.blanks(), _document.text().size(), out + count, most - count);
    return count;
  }

 private:
  // Copies what of `part`, which starts at `start` of the whole, comes next and fits.
  XMLSize_t Copy(std::string_view part, std::size_t start, XMLByte* out, XMLSize_t most) {
    const std::size_t from = _position - start;
    if (from >= part.size()) return 0;
    const XMLSize_t count = std::min<XMLSize_t>(most, part.size() - from);
    std::memcpy(out, part.data() + from, count);
    _position += count;
    return count;
  }

  const KelXmlSource& _document;
  std::size_t _position = 0;
};

}  // namespace

KelXmlInput::KelXmlInput(const KelXmlSource& document, xercesc::MemoryManager& memory)
    : InputSource(kName, &memory), _document(document) {}

xercesc::BinInputStream* KelXmlInput::makeStream() const {
  return new (getMemoryManager()) Stream(_document);
}
