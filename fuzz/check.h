/// A condition that must hold for every input, whatever the build.
#pragma once

#include <cstdlib>

inline void Check(bool holds) {
  if (!holds) std::abort();
}
