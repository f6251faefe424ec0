/// A condition that must hold for every input, also in builds without assertions.
#pragma once

#include <cstdlib>

inline void Check(bool holds) {
  if (!holds) std::abort();
}
