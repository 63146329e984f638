#include "pdm-client/SessionPlan.h"

#include <random>

namespace pdm {

namespace {

class Planner {
 public:
  Planner(const ProductStructure& product, const PlanOptions& options)
      : _product(product), _options(options), _random(options.mix) {}

  std::vector<Step> plan() {
    if (_options.exchanges == 0) {
      ordinarySession();
    } else {
      while (!isFull()) _options.mix == 0 ? ordinarySession() : mixedStep();
      _steps.resize(static_cast<std::size_t>(_options.exchanges));
    }
    return _steps;
  }

 private:
  bool isFull() const { return _steps.size() >= static_cast<std::size_t>(_options.exchanges); }

  // Opens, looks at the pump, works through its sub-assemblies and makes the work last.
  void ordinarySession() {
    open();
    snapshot();
    navigate(ProductStructure::kPump);
    for (const std::size_t assembly : _product.subAssemblies()) {
      navigate(assembly);
      save(assembly);
      save(_product.item(assembly).children[0]);
      save(_product.item(assembly).children[1]);
    }
    snapshot();
    commit();
  }

  void mixedStep() {
    if (_steps.empty()) return open();
    switch (_random() % 8) {
      case 0:
        return open();
      case 1:
        return _options.snapshots ? snapshot() : navigate(ProductStructure::kPump);
      case 2:
        return commit();
      case 3:
      case 4:
        return navigate(_product.assemblyOf(anyItem()));
      default:
        return save(anyItem());
    }
  }

  // Not the pump itself: its documents belong to another department.
  std::size_t anyItem() { return 1 + _random() % (_product.size() - 1); }

  void open() { _steps.push_back({Action::open, 0, _opened++}); }
  void snapshot() {
    if (_options.snapshots) _steps.push_back({Action::snapshot, 0, _snapshots++});
  }
  void navigate(std::size_t item) { _steps.push_back({Action::navigate, item, 0}); }
  void save(std::size_t item) {
    _steps.push_back({Action::save, item, 0});
    ++_saved;
  }
  void commit() {
    _steps.push_back({Action::commit, 0, _saved});
    _saved = 0;
  }

  const ProductStructure& _product;
  const PlanOptions& _options;
  std::mt19937 _random;  // the same numbers on every platform, unlike the distributions
  std::vector<Step> _steps;
  int _opened = 0;
  int _snapshots = 0;
  int _saved = 0;
};

}  // namespace

std::vector<Step> planSession(const ProductStructure& product, const PlanOptions& options) {
  return Planner(product, options).plan();
}

}  // namespace pdm
