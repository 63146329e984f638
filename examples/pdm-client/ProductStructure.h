// What the client works on: a gear pump of sixty parts in seven sub-assemblies. The same in every
// run.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace pdm {

struct Item {
  std::string number;  // "GP-2103"
  std::string name;    // UTF-8
  std::string material;
  int grams = 0;
  std::size_t parent = 0;             // the pump is its own parent
  std::vector<std::size_t> children;  // none for a part

  bool isPart() const { return children.empty(); }
  // What kind of document describes it.
  std::string documentType() const { return isPart() ? "KelPart" : "KelDrawing"; }
  std::string fileName() const { return number + '.' + documentType(); }
};

class ProductStructure {
 public:
  ProductStructure();

  static constexpr std::size_t kPump = 0;

  std::size_t size() const { return _items.size(); }
  const Item& item(std::size_t index) const { return _items[index]; }
  const std::vector<std::size_t>& subAssemblies() const { return _items[kPump].children; }

  // The assembly that is open when the document of `index` is worked on: the item itself, or for a
  // part the assembly it belongs to.
  std::size_t assemblyOf(std::size_t index) const {
    return _items[index].isPart() ? _items[index].parent : index;
  }

 private:
  std::size_t add(Item item);

  std::vector<Item> _items;
};

}  // namespace pdm
