#include "ZetNorvScript.h"

#include <cstddef>
#include <iostream>
#include <memory>
#include <string_view>

#include "DOM_Document.h"
#include "Guard.h"
#include "MFile.h"
#include "RememberedText.h"
#include "ScriptIndex.h"
#include "XmlText.h"
#include "ZetNorvToolBox.h"

using zetnorv::ScriptIndex;

namespace {

constexpr zetnorv::XmlProblems kProblems = {1, "Out ... CreateMemBufInputSourceFromOstr",
                                            "Out ... XMLParse"};

// Reads the script file. Returns its `size` bytes; null, with the reason told, when there are none.
std::unique_ptr<char[]> readFile(int& size) {
  MString path;
  if (ZetNorvToolBox::getCfgPath(path) != S_OK) {
    ZetNorvTrace.TraPutLN(2, "Problem (App_CfgFile): tselection == NULL.");
    return nullptr;
  }
  path + MString("xmlStruct.xml");

  char* content = nullptr;
  MFile file;
  const long loaded = file.load(path, content, size);
  std::unique_ptr<char[]> bytes(content);
  if (loaded == S_OK && size >= 1) return bytes;
  std::cout << " PRobleme avec le builder de script " << std::endl;
  return nullptr;
}

// The entries of the file whose bytes are `text`: those of the last file when it was the same.
const ScriptIndex* entriesOf(std::string_view text) {
  static zetnorv::RememberedText<ScriptIndex> last;
  if (const ScriptIndex* known = last.find(text)) return known;

  DOM_Document document;
  if (zetnorv::parseXml(text.data(), static_cast<int>(text.size()), "err msg", kProblems,
                        document) != S_OK) {
    return nullptr;
  }
  const DOM_NodeList elements = document.getElementsByTagName("*");
  if (elements.isNull()) {
    ZetNorvTrace.TraPutLN(2, "Script: DOM_NodeList == NULL");
    return nullptr;
  }
  return last.keep(text, std::make_unique<const ScriptIndex>(elements));
}

std::unique_ptr<DataScript> build(int messageNumber) {
  int size = 0;
  const std::unique_ptr<char[]> bytes = readFile(size);
  if (bytes == nullptr) return nullptr;
  const ScriptIndex* entries = entriesOf({bytes.get(), static_cast<std::size_t>(size)});
  return entries == nullptr ? nullptr : entries->build(messageNumber);
}

}  // namespace

DataScript* ZetNorvScript::buildData(int messageNumber) {
  DataScript* script = nullptr;
  zetnorv::guarded("ZetNorvScript::buildData", [&] {
    script = build(messageNumber).release();
    return S_OK;
  });
  return script;
}
