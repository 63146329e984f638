#include "pdm-client/ProductStructure.h"

#include <utility>

namespace pdm {

namespace {

struct SubAssembly {
  const char* name;
  const char* material;
  std::vector<const char*> parts;
};

const std::vector<SubAssembly>& subAssemblyTable() {
  static const std::vector<SubAssembly> table = {
      {"Housing",
       "EN-GJS-400",
       {"Pump housing", "Front cover", "Rear cover & seal seat", "Gehäusefuß", "Locating pin",
        "Drain plug", "Mounting flange", "Name plate"}},
      {"Drive shaft",
       "42CrMo4",
       {"Drive shaft", "Key 8 x 7", "Bearing NU 205", "Distance ring", "Circlip", "Shaft seal",
        "Coupling half", "Set screw M6", "Kupplungsstück"}},
      {"Gear set",
       "16MnCr5",
       {"Driving gear z = 12", "Driven gear z = 12", "Idler shaft", "Bearing bush", "Thrust washer",
        "Spacer", "Pressure plate"}},
      {"Sealing",
       "NBR",
       {"O-ring 60 x 3", "O-ring 42 x 2", "Back-up ring", "Gasket & shim", "Lip seal",
        "Seal carrier", "Gland nut", "Spring \"A\"", "Spring \"B\"", "Dichtring groß"}},
      {"Relief valve",
       "X20Cr13",
       {"Valve body", "Valve cone", "Valve seat", "Pressure spring", "Adjusting screw", "Lock nut",
        "Cap & chain", "Kegelführung"}},
      {"Fasteners",
       "8.8 zinc plated",
       {"Screw M10 x 35", "Screw M10 x 50", "Screw M6 x 16", "Nut M10", "Washer 10", "Washer 6",
        "Stud M12", "Dowel 8 x 24", "Überwurfmutter"}},
      {"Ports & fittings",
       "S355J2",
       {"Suction port", "Pressure port", "Elbow 90°", "Adapter G1/2", "Adapter G3/4",
        "Blanking plug", "Bleed screw", "Hose nozzle", "Gauge & tap"}},
  };
  return table;
}

}  // namespace

ProductStructure::ProductStructure() {
  add({"GP-2000", "Zahnradpumpe GP 20 & Zubehör", "assembly", 0, kPump, {}});
  int hundred = 2100;
  for (const SubAssembly& group : subAssemblyTable()) {
    const std::size_t assembly =
        add({"GP-" + std::to_string(hundred), group.name, "assembly", 0, kPump, {}});
    int number = hundred;
    for (const char* part : group.parts) {
      ++number;
      add({"GP-" + std::to_string(number),
           part,
           group.material,
           7 * (number % 97) + 5,
           assembly,
           {}});
    }
    hundred += 100;
  }
}

// An assembly weighs what its parts weigh.
std::size_t ProductStructure::add(Item item) {
  const std::size_t index = _items.size();
  const std::size_t parent = item.parent;
  _items.push_back(std::move(item));
  if (index == parent) return index;
  _items[parent].children.push_back(index);
  const int grams = _items[index].grams;
  _items[parent].grams += grams;
  if (parent != kPump) _items[kPump].grams += grams;
  return index;
}

}  // namespace pdm
