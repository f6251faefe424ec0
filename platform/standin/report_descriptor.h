/// What a HID report descriptor says, as capabilities: the one parser for all machines. Pure; any thread.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/standin/hid_api.h"

namespace platform {

/// One top-level collection, which the platform treats as an interface of its own.
struct HidCollection {
  HIDP_CAPS caps = {};
  /// The value fields of each HIDP_REPORT_TYPE, in Windows' order: main items as the descriptor has them, the usages of
  /// one from the last named to the first. Buttons (single bits, and arrays of usages) and padding are not among them.
  std::array<std::vector<HIDP_VALUE_CAPS>, 3> values;
};

struct ReportDescriptor {
  std::vector<HidCollection> collections;
  /// Whether a keyboard's or keypad's collections or keys are anywhere in it, used or not: then what is typed comes out
  /// of the device.
  bool has_keys = false;
  /// Why the descriptor was refused; then there are no collections. Empty when it is sound.
  std::string refusal;
};

/// Any bytes end in one or the other. Limits are those of the Linux kernel, and those of the records: what they cannot
/// tell, such as more than 65535 data indexes, is refused as well. Memory grows with the descriptor, not with the
/// ranges and counts in it.
ReportDescriptor ParseReportDescriptor(std::span<const std::uint8_t> descriptor);

}  // namespace platform
