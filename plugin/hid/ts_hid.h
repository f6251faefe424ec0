/// Access to HID devices: finds interfaces by identity and usage, exchanges feature reports, reads capabilities.
///
/// Keeps no state and takes no lock. A call returns when the platform has answered. Device errors are logged and
/// answered, never thrown. Every operation may throw std::bad_alloc, and then leaves nothing open.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/hid.h"

/// A HID interface that was found.
struct _HIDDevice {  // NOLINT(bugprone-reserved-identifier): the HID library's records are named like this
  std::wstring devicePath;
  std::uint16_t vendorId = 0;
  std::uint16_t productId = 0;
  std::uint16_t usagePage = 0;  // of its top-level collection
  std::uint16_t usage = 0;
  HANDLE handle = INVALID_HANDLE_VALUE;  // that value while it is closed
};

namespace zarn::WRV520 {

class TsHID {
 public:
  /// Predicates must be set.
  using IdentityPredicate = std::function<bool(std::uint16_t vendor_id, std::uint16_t product_id)>;
  using CapabilityPredicate = std::function<bool(const HIDP_CAPS& caps)>;

  /// What GetHIDFeature writes at most.
  static constexpr std::size_t kFeatureBufferSize = 64;

  /// Opens the first present interface that both predicates accept; the caller closes it. INVALID_HANDLE_VALUE when
  /// there is none.
  static HANDLE GetHIDDeviceHandle(const IdentityPredicate& identity, const CapabilityPredicate& capability);
  /// The same, by identity and top-level usage.
  static HANDLE GetHIDDeviceHandle(std::uint16_t vendor_id, std::uint16_t product_id, std::uint16_t usage_page,
                                   std::uint16_t usage);
  /// Appends all such interfaces to `devices`, each with a handle that the caller closes. True when `devices` then
  /// holds any; false also when the platform cannot tell what is present.
  static bool GetHIDDeviceHandle(const IdentityPredicate& identity, const CapabilityPredicate& capability,
                                 std::vector<_HIDDevice>& devices);

  /// Sends a feature report of the device's own length: the id, then as many of `length` bytes as fit, then zeros.
  static bool SetHIDFeature(HANDLE handle, std::uint8_t report_id, const std::uint8_t* data, std::uint16_t length);
  /// Reads a feature report into `buffer` of kFeatureBufferSize bytes, without the id. `*received`, unless null, is set
  /// to the number of bytes written. Nothing is written on failure; then the last error is that of the failed call.
  static bool GetHIDFeature(HANDLE handle, std::uint8_t report_id, std::uint8_t* buffer,
                            std::size_t* received = nullptr);

  static bool GetHIDCapability(HANDLE handle, HIDP_CAPS& caps);
  /// Makes `caps` the feature value capabilities, in the platform's order. A device may have none. So failures go to
  /// the standard error stream, for developers, and not to the log.
  static bool GetHIDValueCapability(HANDLE handle, std::vector<HIDP_VALUE_CAPS>& caps);
};

}  // namespace zarn::WRV520
