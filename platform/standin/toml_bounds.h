/// What a TOML file may ask of its parser. The library recurses for each part of a dotted key, when it reads keys and
/// when it frees them, so one long key would exhaust the stack of the process. Nested values it bounds itself.
#pragma once

#include <algorithm>
#include <string_view>

namespace platform {

/// More than settings or a profile need, those in comments and texts included.
inline constexpr int kMostDots = 1000;

inline bool HasTooManyDots(std::string_view toml) { return std::ranges::count(toml, '.') > kMostDots; }

}  // namespace platform
