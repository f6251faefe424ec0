/// Where things lie in a controller's lists: an entry by its index, and a zone's LEDs and colours.
#pragma once

#include <concepts>
#include <cstddef>
#include <utility>

#include "zarn_lighting/records.h"

/// The entry at an index that a host gave, or null.
template <typename List, std::integral Index>
auto* EntryAt(List& list, Index index) {
  return std::cmp_greater_equal(index, 0) && std::cmp_less(index, list.size()) ? &list[static_cast<std::size_t>(index)]
                                                                               : nullptr;
}

/// Sizes `color_table` to the zones' LEDs (kept entries keep their colours, new ones are black) and derives every
/// zone's views and first index. Needed after any change of a list's length or of a zone's `led_total`. Needed after
/// copying records, too: copied views still lead into the original. Moved ones stay good.
void BindZoneStorage(ControllerRecords& records);
