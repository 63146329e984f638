// What the client does in a session, step by step, before anything is exchanged.
#pragma once

#include <cstddef>
#include <vector>

#include "pdm-client/ProductStructure.h"

namespace pdm {

enum class Action { open, snapshot, navigate, save, commit };

struct Step {
  Action action;
  std::size_t item = 0;  // navigate, save: the item it is about
  int number = 0;        // open, snapshot: how many came before; commit: saves since the last one
};

struct PlanOptions {
  int exchanges = 0;       // how many steps; 0: one whole session
  unsigned mix = 0;        // 0: the steps of an ordinary session; others: another mixture each
  bool snapshots = false;  // whether there are snapshots among them
};

// The steps, which always begin with `open`. They depend on the arguments alone.
std::vector<Step> planSession(const ProductStructure& product, const PlanOptions& options);

}  // namespace pdm
