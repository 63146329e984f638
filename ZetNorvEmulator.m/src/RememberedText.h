// Keeps what was made of a text for as long as the same text comes again: a file that is read for
// every message need not be taken apart for every message.
//
// The bytes themselves are compared, so an edit is seen also when it keeps the file's size and time
// stamp. Not synchronised.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace zetnorv {

template <class Made>
class RememberedText {
 public:
  // What was made of `text` when that is the text kept, else null. Borrowed: valid until the next
  // keep().
  const Made* find(std::string_view text) const {
    return _made != nullptr && text == _text ? _made.get() : nullptr;
  }

  // Keeps `made` as what comes of `text`, in the place of what was kept before.
  const Made* keep(std::string_view text, std::unique_ptr<const Made> made) {
    _made.reset();
    _text.assign(text);
    _made = std::move(made);
    return _made.get();
  }

 private:
  std::string _text;
  std::unique_ptr<const Made> _made;
};

}  // namespace zetnorv
