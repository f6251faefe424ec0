/// The keys of a panel and their light at one moment, for the terminal and for pictures.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "zarnctl/panel.h"

namespace zarnctl {

/// A colour as light: 0 is dark, 1 is full.
struct Light {
  double red;
  double green;
  double blue;
};

/// A key, in columns and rows of a keyboard that is kKeyColumns wide. Keys of a row are one column apart.
struct LitKey {
  int row;
  int left;
  int width;
  Light light;
};
inline constexpr int kKeyColumns = 59;

/// Five rows of keys, or the one row of a bar, from the top left, `seconds` after the effect began. Directions 1 to 6
/// run right, left, up, down, outwards to both sides, and outwards up and down. Pure; any thread.
std::vector<LitKey> LitKeys(const Panel& panel, double seconds);

/// The light on a screen, by channel. A dark key stays visible.
std::array<std::uint8_t, 3> ShownColor(const Light& light);

}  // namespace zarnctl
