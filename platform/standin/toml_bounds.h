/// What a TOML file may ask of the parser. Its library goes down a level for each part of a dotted key and each nested
/// value, when it reads and when it forgets them, so one long key would exhaust the stack of the process. It bounds
/// nested values itself.
#pragma once

#include <algorithm>
#include <string_view>

namespace platform {

/// As many full stops as no settings and no profile needs, those in comments and texts included.
inline constexpr int kMostFullStops = 1000;

inline bool HasTooManyFullStops(std::string_view toml) { return std::ranges::count(toml, '.') > kMostFullStops; }

}  // namespace platform
