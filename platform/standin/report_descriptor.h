/// What a HID report descriptor says of feature reports, as capabilities: the one parser for all machines. Pure; any
/// thread.
///
/// It fills in what the plug-in reads: of a collection its usage and page, the length of its feature reports and the
/// number of their values; of a value its page, its usages and data indexes, report, size and count. All other fields
/// of the records are 0. Input and output reports only have to keep within the limits.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/standin/hid_api.h"

namespace platform {

/// One top-level collection, which the platform treats as an interface of its own.
struct HidCollection {
  HIDP_CAPS caps = {};
  /// The feature values in Windows' order: main items as the descriptor has them, the usages of one from the last named
  /// to the first. Buttons (single bits, and arrays of usages) and padding are not among them.
  std::vector<HIDP_VALUE_CAPS> values;
};

struct ReportDescriptor {
  std::vector<HidCollection> collections;
  /// Whether collections or keys of a keyboard or keypad are anywhere in it, used or not. If so, what is typed comes
  /// out of the device.
  bool has_keys = false;
  /// Why the descriptor was refused; then there are no collections. Empty when it is sound.
  std::string refusal;
};

/// Takes any bytes. Limits are those of the Linux kernel and those of the records, such as 65535 data indexes. Memory
/// grows with the descriptor, not with the ranges and counts in it.
ReportDescriptor ParseReportDescriptor(std::span<const std::uint8_t> descriptor);

}  // namespace platform
