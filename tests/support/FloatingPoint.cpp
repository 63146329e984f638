#include "FloatingPoint.h"

#include <fenv.h>

#include <cfenv>

namespace {

constexpr int kTraps = FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW;

}  // namespace

FloatingPointTraps::FloatingPointTraps() : _before(fegetexcept()) {
  std::feclearexcept(FE_ALL_EXCEPT);
  feenableexcept(kTraps);
}

FloatingPointTraps::~FloatingPointTraps() {
  fedisableexcept(FE_ALL_EXCEPT);
  feenableexcept(_before);
}

bool FloatingPointTraps::areSet() const { return fegetexcept() == (_before | kTraps); }

Rounding::Rounding(int direction) : _before(std::fegetround()) { std::fesetround(direction); }

Rounding::~Rounding() { std::fesetround(_before); }
